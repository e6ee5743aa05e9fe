#include "varnel/entitlements/VNLEntitlementAnnualPass.h"

#include <set>
#include <unordered_set>

#include "EntitlementJson.h"
#include "varnel/dates/VNLDateUtility.h"
#include "varnel/entitlements/VNLEntitlementKeys.h"
#include "varnel/errors/VarnelLocalizedString.h"
#include "varnel/platform/Describe.h"
#include "varnel/platform/StringFormat.h"

namespace varnel {
namespace {

constexpr std::string_view kNoBlockoutKey = "com.varnel.changeYourPass.noBlockOutThroughOutYear";
constexpr std::string_view kAdmissionDaysKey = "com.varnel.changeYourPass.admissionDaysThroughOutYear";

// A non-empty date text in the service format; the unknown-date marker otherwise.
Date dateMember(const Json& jsonData, std::string_view key) {
  const std::string* text = jsonString(jsonData, key);
  if (!text || text->empty()) return VNLDateUtility::defaultDate();
  return VNLDateUtility::date(*text, VNLEntitlementDateFormatterFormatString);
}

}  // namespace

// Defined here, not defaulted in the class, so that make_shared runs only
// the member initialisers instead of zeroing the whole object first.
VNLEntitlementAnnualPass::VNLEntitlementAnnualPass() = default;

std::shared_ptr<VNLEntitlementAnnualPass> VNLEntitlementAnnualPass::initWithJsonData(const Json& jsonData) {
  auto pass = std::make_shared<VNLEntitlementAnnualPass>();
  if (const std::string* productTypeId = jsonString(jsonData, VNLEntitlementProductTypeIdKey)) {
    pass->setProductTypeID(*productTypeId);
  }
  // The dictionary's renewability is looked up and deliberately not applied.
  const Json* renewable = jsonMember(jsonData, VNLEntitlementRenewableKey);
  [[maybe_unused]] const bool renewableIsBoolean = renewable && renewable->is_boolean();

  // Taken from the default dates, before the dictionary's dates are read.
  pass->setNumberOfDays(VNLDateUtility::daysBetween(pass->startDate(), pass->endDate()));
  pass->setStartDate(dateMember(jsonData, VNLEntitlementStartDateTime));
  pass->setEndDate(dateMember(jsonData, VNLEntitlementEndDateTime));
  pass->setPassValidityStartDate(pass->startDate());
  pass->setPassExpirationDate(pass->endDate());

  const Json* assignedGuest = jsonMember(jsonData, VNLEntitlementAssignedGuestKey);
  const Json* address = assignedGuest ? jsonMember(*assignedGuest, VNLEntitlementAddressKey) : nullptr;
  if (address && address->is_object()) pass->populateLocation(*address);
  return pass;
}

void VNLEntitlementAnnualPass::setRenewalType(std::string value) {
  // The choice follows the pass to its renewal, and that renewal's renewal.
  std::unordered_set<const VNLEntitlementAnnualPass*> visited;
  for (VNLEntitlementAnnualPass* pass = this; pass && visited.insert(pass).second;
       pass = dynamic_cast<VNLEntitlementAnnualPass*>(pass->renewableEntitlement_.get())) {
    pass->renewalType_ = value;
  }
}

std::string_view VNLEntitlementAnnualPass::specialRawValue(Special special) {
  switch (special) {
    case Special::crestlinePlus: return "crestline-plus";
    case Special::cobaltPlus: return "cobalt-plus-annual-pass";
    case Special::cobalt: return "cobalt-annual-pass";
    case Special::vantor: return "vantor-after4-pass";
  }
  return "";
}

const Json& VNLEntitlementAnnualPass::emptyPolicyArray() {
  static const Json empty = Json::array();
  return empty;
}

bool VNLEntitlementAnnualPass::isSpecialPass() const {
  for (Special special : {Special::crestlinePlus, Special::cobaltPlus, Special::cobalt, Special::vantor}) {
    if (productTypeID_ == specialRawValue(special)) return true;
  }
  return false;
}

BlockoutGroup VNLEntitlementAnnualPass::blockoutGroup() const {
  const std::set<Date> dates(blockoutDates().begin(), blockoutDates().end());
  std::string summary;
  if (isSpecialPass()) {
    summary = VarnelLocalizedStringForKey(kNoBlockoutKey);
  } else if (admissionDays_) {
    summary = stringWithFormat(VarnelLocalizedStringForKey(kAdmissionDaysKey), {*admissionDays_});
  } else {
    summary = VarnelLocalizedStringForKey(kNoBlockoutKey);
  }
  return BlockoutGroup(shortEntitlementName(), passDisplayName(), std::move(summary), dates);
}

bool VNLEntitlementAnnualPass::renewableEntitlementMonthlyPaymentEligible() const {
  if (dynamic_cast<const VNLEntitlementAnnualPass*>(renewableEntitlement_.get())) {
    return renewableEntitlement_->monthlyPaymentEligible();
  }
  return isMonthlyPaymentEligible();
}

std::string VNLEntitlementAnnualPass::debugDescription() const {
  std::string text;
  auto entry = [&text](std::string_view label, const std::string& value) {
    text.append(label).append(value).append(", ");
  };
  entry("productType: ", describe(productType_));
  entry("productTypeID: ", productTypeID_);
  entry("isRenewable: ", describe(isRenewable()));
  entry("numberOfDays: ", describe(numberOfDays_));
  entry("startDate: ", describe(startDate_));
  entry("endDate: ", describe(endDate_));
  entry("passValidityStartDate: ", describe(passValidityStartDate_));
  entry("passExpirationDate: ", describe(passExpirationDate_));
  entry("calendarId: ", calendarId_);
  entry("annualPayment: ", describe(annualPayment()));
  entry("tax: ", describe(tax()));
  entry("currency: ", describe(currencyForPrice()));
  entry("isMonthlyPaymentEligible: ", describe(isMonthlyPaymentEligible()));
  entry("savingPercentage: ", savingPercentage());
  entry("pricePerMonth: ", describe(pricePerMonth()));
  entry("address: ", address());
  entry("stateProvince: ", stateProvince());
  entry("postalCode: ", postalCode());
  entry("country: ", country());
  entry("city: ", city());
  entry("avatarId: ", avatarId());
  entry("downpayment: ", downpayment());
  entry("isSunsetPass: ", describe(isSunsetPass_));
  entry("ageGroup : ", ageGroup_);
  entry("renewalType : ", renewalType_);
  return text;
}

Json VNLEntitlementAnnualPass::toJson() const {
  Json json = VNLEntitlement::toJson();
  json["productType"] = rawValue(productType_);
  json["renewalType"] = renewalType_;
  json["priceMonthly"] = entitlementjson::number(priceMonthly_);
  json["isSpecialPass"] = isSpecialPass();
  return json;
}

}  // namespace varnel
