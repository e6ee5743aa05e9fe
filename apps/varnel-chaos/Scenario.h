#pragma once
// What each renewal of a soak does, drawn from the seed before anything runs:
// the pass, the plan, the card, the fault of the mock server (an endpoint and
// a kind, or none), whether its first `varnel renew` is killed and when, and
// how it is finished afterwards. The same seed gives the same scenario.

#include <array>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace varnel::chaos {

/// The endpoints a renewal goes through, as the mock server names them.
inline constexpr std::array<std::string_view, 4> kRenewalEndpoints = {
    "get-payment-accounts", "create-orders", "create-contract", "create-order-purchase"};

/// The fault kinds, as the soak counts them: every kind of the mock server,
/// with its delays split into one the client waits out and one past its timeout.
inline constexpr std::array<std::string_view, 10> kFaultKinds = {
    "booking", "residency", "status",   "delay",     "delay-past-timeout",
    "reset",   "reset-after", "empty", "malformed", "array"};

struct FaultChoice {
  std::string endpoint;
  /// One of kFaultKinds.
  std::string kind;
  /// As the mock server reads it: "delay:1800*1", "status:503", ...
  std::string written;
  /// The delay of a delay fault.
  std::chrono::milliseconds delay{0};
};

/// The stored cards of the soak's guest (the sample guest's).
struct CardChoice {
  std::string reference;
  /// A scanned card: the guest enters its security code.
  bool needsSecurityCode = false;
};

struct RenewalScenario {
  int index = 0;
  std::string passId;
  bool monthly = false;
  CardChoice card;
  std::optional<FaultChoice> fault;
  /// Kill the first run at this fraction of the time a run usually takes.
  std::optional<double> killAt;
  /// For each later run: finish with `--resume` (true) or renew the pass again.
  std::array<bool, 4> resumeRuns{};
};

/// Product instance ID of the soak's pass number `index` (from 0).
std::string chaosPassId(int index);

/// The security code the soak enters for a scanned card.
inline constexpr const char* kChaosSecurityCode = "737";

/// `renewals` scenarios, `kills` of them with a kill, from `seed`;
/// `requestTimeout` is what the children's requests may take.
std::vector<RenewalScenario> drawScenarios(std::uint64_t seed, int renewals, int kills,
                                           std::chrono::milliseconds requestTimeout);

/// A renewal's choices in one line, for --verbose.
std::string describe(const RenewalScenario& scenario);

}  // namespace varnel::chaos
