#pragma once
// Whether an annual pass can be renewed, and when.
//
//   RenewableState state(annualPass);
//   if (state == RenewableState::eligibleNow) ...
//   auto parsed = RenewableState::fromRawValue("eligibleForRenewLater");

#include <cstddef>
#include <functional>
#include <optional>
#include <string_view>

namespace varnel {

class VNLEntitlementAnnualPass;

class RenewableState {
 public:
  enum Value { eligibleNow, eligibleLater, ineligible };

  constexpr RenewableState(Value value) : value_(value) {}  // NOLINT: implicit like an enumeration case

  /// The state of `annualPass`, from its renewal options and its renewable,
  /// shared and sellable flags: a shared pass is never renewable now, and only
  /// an absent (not an empty) list of options makes a sellable pass renewable
  /// later.
  explicit RenewableState(const VNLEntitlementAnnualPass& annualPass);

  /// "eligibleForRenewNow", "eligibleForRenewLater" or "ineligibleForRenew".
  std::string_view rawValue() const;
  /// The state with this raw value; none for any other text.
  static std::optional<RenewableState> fromRawValue(std::string_view rawValue);

  /// The case, for a switch.
  constexpr Value value() const { return value_; }

  friend constexpr bool operator==(RenewableState, RenewableState) = default;

 private:
  Value value_;
};

}  // namespace varnel

template <>
struct std::hash<varnel::RenewableState> {
  std::size_t operator()(varnel::RenewableState state) const noexcept {
    return std::hash<int>{}(static_cast<int>(state.value()));
  }
};
