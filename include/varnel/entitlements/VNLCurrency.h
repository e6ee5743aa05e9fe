#pragma once
// The currency of a pass's prices, as the payment fields carry it.

#include <cstdint>
#include <optional>
#include <string>

namespace varnel {

/// Four currencies with raw values 0 to 3; 0 is the US dollar.
enum class VNLCurrency : std::int64_t { usd = 0, cad = 1, eur = 2, gbp = 3 };

/// The currency of a raw value; none outside 0 to 3.
std::optional<VNLCurrency> VNLCurrencyFromRawValue(std::int64_t rawValue);

constexpr std::int64_t rawValue(VNLCurrency currency) { return static_cast<std::int64_t>(currency); }

/// The case name ("usd"), as the platform prints an enumeration case.
std::string describe(VNLCurrency currency);

}  // namespace varnel
