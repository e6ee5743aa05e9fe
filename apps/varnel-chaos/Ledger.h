#pragma once
// What each renewal told the guest, and the comparison with what the server
// charged: order by order (charged more than once), pass by pass (charged on
// two orders), and charge by charge (charged, never confirmed to the guest).

#include <chrono>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace varnel::chaos {

/// What a renewal ended with, as the guest was told.
enum class Told { nothing, confirmed, refused, unknown };

struct RenewalRecord {
  int index = 0;
  std::string passId;
  std::string faultKind;
  bool killed = false;
  /// What the last run that answered for this renewal said.
  Told told = Told::nothing;
  /// Some run said "unknown" (exit 3) before the renewal was finished.
  bool toldUnknown = false;
  /// Orders the guest got a confirmation number for, and orders refused.
  std::map<std::string, std::string> confirmedOrders;
  std::set<std::string> refusedOrders;
  /// Orders the server holds that appeared while this renewal ran.
  std::set<std::string> orders;
  int hangs = 0;
  int crashes = 0;
  /// Runs that ended with exit status 2 (bad input): the soak asked something wrong.
  int badInput = 0;
  /// The last refusal's error case and reason, runs made, time taken (for --verbose).
  std::string lastReason;
  int runs = 1;
  std::chrono::milliseconds elapsed{0};
  /// Crash and anomaly descriptions, for the report.
  std::vector<std::string> notes;
};

struct Figures {
  std::uint64_t seed = 0;
  int renewals = 0;
  int kills = 0;
  /// Renewals per fault kind ("none" for none).
  std::map<std::string, int> faults;
  int confirmed = 0;
  int refused = 0;
  int unknownThenFinished = 0;
  /// Renewals still unknown after their finishing runs.
  int leftUnknown = 0;
  int badInput = 0;
  int doubleCharges = 0;
  int chargedUnconfirmed = 0;
  /// Orders confirmed to the guest that the server never charged.
  int confirmedUncharged = 0;
  int hangs = 0;
  int crashes = 0;
  /// Stopped by the deadline before every renewal ran.
  bool incomplete = false;
  double seconds = 0;

  bool clean() const { return doubleCharges == 0 && chargedUnconfirmed == 0 && hangs == 0 && crashes == 0; }
};

class Ledger {
 public:
  explicit Ledger(std::uint64_t seed) { figures_.seed = seed; }

  /// Counts one batch: its renewals, and the server's final charges per
  /// order. Problems found go to `problems` as one line each.
  void settleBatch(const std::vector<RenewalRecord>& records, const std::map<std::string, int>& charges,
                   std::vector<std::string>& problems);
  /// A crash of the mock server itself.
  void serverCrashed() { ++figures_.crashes; }

  Figures& figures() { return figures_; }

 private:
  Figures figures_;
};

}  // namespace varnel::chaos
