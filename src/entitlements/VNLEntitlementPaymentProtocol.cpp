#include "varnel/entitlements/protocols/VNLEntitlementPaymentProtocol.h"

#include "CopyIfPresent.h"
#include "EntitlementJson.h"

namespace varnel {

void VNLEntitlementPaymentProtocol::populatePaymentFields(const ENTMEntitlement& from) {
  copyIfPresent(from.totalPrice, [this](float v) { setAnnualPayment(v); });
  copyIfPresent(from.pricePerMonth, [this](float v) { setPricePerMonth(v); });
  setIsMonthlyPaymentEligible(from.monthlyPaymentEligible);
  // Only the US dollar is mapped; every other currency keeps the current value.
  if (from.currency == "USD") setCurrencyForPrice(VNLCurrency::usd);
  copyIfPresent(from.downpayment, [this](const std::string& v) { setDownpayment(v); });
  copyIfPresent(from.discount, [this](const std::string& v) { setSavingPercentage(v); });
  copyIfPresent(from.subTotalPrice, [this](float v) { setSubTotalPrice(v); });
  copyIfPresent(from.tax, [this](float v) { setTax(v); });
}

void VNLEntitlementPaymentProtocol::writePaymentFields(Json& json) const {
  json["annualPayment"] = entitlementjson::number(annualPayment());
  json["pricePerMonth"] = entitlementjson::number(pricePerMonth());
  json["isMonthlyPaymentEligible"] = isMonthlyPaymentEligible();
  json["currencyForPrice"] = rawValue(currencyForPrice());
  json["downpayment"] = downpayment();
  json["savingPercentage"] = savingPercentage();
  json["subTotalPrice"] = entitlementjson::number(subTotalPrice());
  json["tax"] = entitlementjson::number(tax());
}

}  // namespace varnel
