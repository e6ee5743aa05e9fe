#pragma once
// What the commerce commands share: the guest signed in from a guest data
// file, the settings store, the park, and the stand-alone networking towards
// a commerce server (the one given with --server, else a mock commerce server
// started in this process for the length of the command).

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "varnel/checkout/RenewalJournal.h"
#include "varnel/entitlements/VNLVarnel.h"
#include "varnel/host/KTVCParkResortContext.h"
#include "varnel/host/KTVRPrivateDataService.h"
#include "varnel/standalone/GuestDataFile.h"
#include "varnel/standalone/RunLoopMainQueue.h"
#include "varnel/standalone/network/StandaloneNetworking.h"

namespace varnel::mock {
class MockCommerceServer;
}

namespace varnel::cli {

struct CommerceOptions {
  /// Base URL of the commerce server; empty starts the embedded mock server.
  std::string server;
  /// The guest data file; the sample guest when empty.
  std::string guestFile;
  /// The settings store; $VARNEL_DEFAULTS, else the per-user default, when empty.
  std::string defaultsPath;
  std::string park = std::to_string(kResortChoiceEast);
  /// A CA file trusted besides the system's; none when empty.
  std::string caFile;
  bool json = false;
  /// Passes the command names: each must be in the guest file, checked
  /// before the settings store is opened (a usage error leaves no store).
  std::vector<std::string> namedPasses;
};

/// Adds --server, --guest, --defaults, --park, --ca-file and --json.
void addCommerceOptions(CLI::App& command, CommerceOptions& options);

/// How an operation with a success and a failure callback ended.
struct CallbackOutcome {
  /// Neither callback ran: nothing was sent, or what came back was not one
  /// the module acts on.
  bool silent = true;
  bool succeeded = false;
  std::optional<Json> value;
  std::optional<Error> error;
};

class CommerceSession {
 public:
  /// Signs the guest in, installs the networking and the renewal journal, and
  /// says on stderr when the guest has renewals to finish; a UsageError for
  /// an unreadable guest file, settings store or server URL.
  explicit CommerceSession(const CommerceOptions& options);
  ~CommerceSession();

  const standalone::GuestData& guest() const { return guest_; }
  std::shared_ptr<KTVCParkResortContext> parkContext() const { return parkContext_; }
  KTVCResortChoice park() const { return parkContext_->resortChoice(); }
  KTVRPrivateDataService& service() const { return *networking_.service; }
  /// The facade over the guest's entitlements.
  const VNLVarnel& varnel() const { return varnel_; }

  /// Starts an operation with callbacks that hand their result to the main
  /// queue, and runs the main queue until one of them has run or the
  /// networking has nothing left in flight that could still call one.
  CallbackOutcome await(const std::function<void(KTVRSuccessBlock, KTVRFailureBlock)>& start);

  /// Runs the main queue until `done()`, or until nothing is in flight and
  /// nothing is queued that could still bring it about.
  bool runUntil(const std::function<bool()>& done);

  /// The signed-in guest's renewals whose checkout has no answer yet.
  std::vector<RenewalJournalEntry> pendingRenewals() const;

 private:
  /// A usage error unless the guest file holds the pass.
  void requirePass(const std::string& productInstanceId) const;
  standalone::GuestData guest_;
  std::shared_ptr<KTVCParkResortContext> parkContext_;
  std::unique_ptr<mock::MockCommerceServer> embeddedServer_;
  standalone::StandaloneNetworking networking_;
  std::shared_ptr<standalone::RunLoopMainQueue> mainQueue_;
  std::shared_ptr<RenewalJournal> journal_;
  VNLVarnel varnel_;
};

/// Prints the guest's view of a failed commerce request at `park` (as
/// `varnel errors explain` does, or as JSON) and answers the exit status 1;
/// an error that maps to no commerce error is reported as it is.
int reportCommerceFailure(const std::optional<Error>& error, KTVCResortChoice park, bool json);

/// Reports an operation that called neither callback; answers exit status 1.
int reportSilentOutcome(std::string_view operation, bool json);

}  // namespace varnel::cli
