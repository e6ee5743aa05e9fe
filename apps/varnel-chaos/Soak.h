#pragma once
// The soak itself: batches of renewals, each batch against a fresh mock
// commerce server with its own guest file and settings store. A renewal is
// one `varnel renew` child with the renewal's fault in force (killed at a
// random instant for a share of them), then, with the faults cleared, up to
// four finishing runs (`varnel renew` of the same pass again, or
// `varnel renew --resume`) until the guest is told confirmed or refused.
// With --parallel N, N batches run at once (each on its own thread, server,
// guest file and store); the renewals of one batch run one after another.

#include <chrono>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "ChaosOptions.h"
#include "ChildProcess.h"
#include "Ledger.h"
#include "MockServer.h"
#include "Scenario.h"

namespace varnel::chaos {

class Soak {
 public:
  /// `work` holds the scratch files.
  Soak(const ChaosOptions& options, std::filesystem::path work);

  /// Runs every renewal (or as many as the deadline allows) and answers the
  /// figures; problems found go to `problems`, one line each. False when a
  /// mock server could not be started (then the figures are partial).
  bool run(Figures& figures, std::vector<std::string>& problems);

 private:
  struct Batch {
    std::filesystem::path guestFile;
    std::filesystem::path defaults;
    /// The batch's own scratch directory (its children's output).
    std::filesystem::path directory;
  };
  /// The usual length of an unfaulted first run in a batch, which kill instants scale.
  struct Pace {
    double usualRunMs = 800;
    int usualRuns = 0;
  };
  /// What one batch ran, and what its server charged.
  struct BatchResult {
    std::vector<RenewalRecord> records;
    std::optional<std::map<std::string, int>> charges;
    std::vector<std::string> problems;
    bool serverStarted = true;
    bool serverCrashed = false;
    bool incomplete = false;
  };

  BatchResult runBatch(int first, int count, const std::vector<RenewalScenario>& scenarios,
                       std::chrono::steady_clock::time_point deadline);
  RenewalRecord renew(const RenewalScenario& scenario, MockServer& server, const Batch& batch, Pace& pace);
  /// Reads one run into the record; true once the guest was told confirmed or refused.
  bool account(RenewalRecord& record, const ChildRun& run, bool resume, bool& finishedNothing);
  std::vector<std::string> renewArguments(const RenewalScenario& scenario, const MockServer& server,
                                          const Batch& batch) const;
  std::vector<std::string> resumeArguments(const RenewalScenario& scenario, const MockServer& server,
                                           const Batch& batch) const;
  ChildRun runVarnel(const std::vector<std::string>& arguments, std::optional<std::chrono::milliseconds> killAfter,
                     const Batch& batch);

  const ChaosOptions& options_;
  std::filesystem::path work_;
  std::vector<std::string> environment_;
  /// Guards --verbose lines written by several batches at once.
  std::mutex verboseMutex_;
};

}  // namespace varnel::chaos
