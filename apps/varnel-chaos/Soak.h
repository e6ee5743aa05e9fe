#pragma once
// The soak itself: batches of renewals, each batch against a fresh mock
// commerce server with its own guest file and settings store. A renewal is
// one `varnel renew` child with the renewal's fault in force (killed at a
// random instant for a share of them), then, with the faults cleared, up to
// four finishing runs (`varnel renew` of the same pass again, or
// `varnel renew --resume`) until the guest is told confirmed or refused.

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
  };

  RenewalRecord renew(const RenewalScenario& scenario, MockServer& server, const Batch& batch);
  /// Reads one run into the record; true once the guest was told confirmed or refused.
  bool account(RenewalRecord& record, const ChildRun& run, bool resume, bool& finishedNothing);
  std::vector<std::string> renewArguments(const RenewalScenario& scenario, const MockServer& server,
                                          const Batch& batch) const;
  std::vector<std::string> resumeArguments(const RenewalScenario& scenario, const MockServer& server,
                                           const Batch& batch) const;
  ChildRun runVarnel(const std::vector<std::string>& arguments, std::optional<std::chrono::milliseconds> killAfter);

  const ChaosOptions& options_;
  std::filesystem::path work_;
  std::vector<std::string> environment_;
  /// The usual length of an unfaulted first run, which kill instants scale.
  double usualRunMs_ = 800;
  int usualRuns_ = 0;
};

}  // namespace varnel::chaos
