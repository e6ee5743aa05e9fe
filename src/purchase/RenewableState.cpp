#include "varnel/purchase/RenewableState.h"

#include <array>
#include <utility>

namespace varnel {
namespace {

constexpr std::array<std::pair<RenewableState::Value, std::string_view>, 3> kRawValues{{
    {RenewableState::eligibleNow, "eligibleForRenewNow"},
    {RenewableState::eligibleLater, "eligibleForRenewLater"},
    {RenewableState::ineligible, "ineligibleForRenew"},
}};

}  // namespace

std::string_view RenewableState::rawValue() const {
  for (const auto& [value, raw] : kRawValues) {
    if (value == value_) return raw;
  }
  return {};
}

std::optional<RenewableState> RenewableState::fromRawValue(std::string_view rawValue) {
  for (const auto& [value, raw] : kRawValues) {
    if (raw == rawValue) return RenewableState(value);
  }
  return std::nullopt;
}

}  // namespace varnel
