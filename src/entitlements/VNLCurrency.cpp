#include "varnel/entitlements/VNLCurrency.h"

namespace varnel {

std::optional<VNLCurrency> VNLCurrencyFromRawValue(std::int64_t rawValue) {
  if (rawValue < 0 || rawValue > 3) return std::nullopt;
  return static_cast<VNLCurrency>(rawValue);
}

std::string describe(VNLCurrency currency) {
  switch (currency) {
    case VNLCurrency::usd: return "usd";
    case VNLCurrency::cad: return "cad";
    case VNLCurrency::eur: return "eur";
    case VNLCurrency::gbp: return "gbp";
  }
  return std::to_string(rawValue(currency));
}

}  // namespace varnel
