#include "varnel/entitlements/VNLEntitlementParkTicket.h"

#include <algorithm>

#include "EntitlementJson.h"
#include "varnel/entitlements/VNLEntitlementAnnualPass.h"
#include "varnel/entitlements/VNLEntitlementKeys.h"

namespace varnel {
namespace {

void populatePaymentFieldsFromJson(VNLEntitlementPaymentProtocol& payment, const Json& jsonData) {
  using namespace entitlementjson;
  if (auto v = floatMember(jsonData, VNLEntitlementTotalPriceKey)) payment.setAnnualPayment(*v);
  if (auto v = boolMember(jsonData, VNLEntitlementMonthlyPaymentEligibleKey)) payment.setIsMonthlyPaymentEligible(*v);
  const std::string* currency = jsonString(jsonData, VNLEntitlementCurrencyKey);
  if (currency && *currency == "USD") payment.setCurrencyForPrice(VNLCurrency::usd);
  if (auto* v = jsonString(jsonData, VNLEntitlementDownpaymentKey)) payment.setDownpayment(*v);
  if (auto* v = jsonString(jsonData, VNLEntitlementDiscountKey)) payment.setSavingPercentage(*v);
  if (auto v = floatMember(jsonData, VNLEntitlementSubTotalPriceKey)) payment.setSubTotalPrice(*v);
  if (auto v = floatMember(jsonData, VNLEntitlementTaxKey)) payment.setTax(*v);
}

}  // namespace

// Defined here, not defaulted in the class, so that make_shared runs only
// the member initialisers instead of zeroing the whole object first.
VNLEntitlementParkTicket::VNLEntitlementParkTicket() = default;

std::shared_ptr<VNLEntitlementParkTicket> VNLEntitlementParkTicket::initWithJsonData(const Json& jsonData) {
  auto ticket = std::make_shared<VNLEntitlementParkTicket>();
  populateBasePriceFields(*ticket, jsonData);
  populatePaymentFieldsFromJson(*ticket, jsonData);
  const Json* assignedGuest = jsonMember(jsonData, VNLEntitlementAssignedGuestKey);
  const Json* address = assignedGuest ? jsonMember(*assignedGuest, VNLEntitlementAddressKey) : nullptr;
  if (address && address->is_object()) ticket->populateLocation(*address);
  return ticket;
}

void VNLEntitlementParkTicket::finishInit(const ENTMEntitlement& entitlement) {
  if (entitlement.affiliationInfo) affiliations_ = *entitlement.affiliationInfo;
  populateUpgradeable(entitlement);
}

std::vector<ENTMAffiliation> VNLEntitlementParkTicket::eligibleAffiliations(
    const std::vector<ENTMAffiliation>& affiliations) const {
  std::vector<ENTMAffiliation> eligible;
  // The all-guests affiliation is always eligible.
  for (const ENTMAffiliation& own : affiliations_) {
    if (own.affiliationId == VNLEntitlementAllGuestAffiliationID) eligible.push_back(own);
  }
  for (const ENTMAffiliation& own : affiliations_) {
    if (std::find(affiliations.begin(), affiliations.end(), own) != affiliations.end()) eligible.push_back(own);
  }
  std::stable_sort(eligible.begin(), eligible.end(),
                   [](const ENTMAffiliation& a, const ENTMAffiliation& b) { return a.sortOrder < b.sortOrder; });
  return eligible;
}

std::optional<std::vector<std::shared_ptr<VNLEntitlementAnnualPass>>>
VNLEntitlementParkTicket::upgradeOptionsForAffiliation(const ENTMAffiliation& affiliation) const {
  const auto found = annualPassesUpgradeOptions_.find(affiliation.affiliationId);
  if (found == annualPassesUpgradeOptions_.end()) return std::nullopt;
  return found->second;
}

Json VNLEntitlementParkTicket::toJson() const {
  Json json = VNLEntitlement::toJson();
  json["productType"] = rawValue(productType_);
  json["priceMonthly"] = entitlementjson::number(priceMonthly_);
  Json affiliations = Json::array();
  for (const ENTMAffiliation& affiliation : affiliations_) {
    affiliations.push_back({{"affiliationId", affiliation.affiliationId}, {"sortOrder", affiliation.sortOrder}});
  }
  json["affiliations"] = std::move(affiliations);
  return json;
}

}  // namespace varnel
