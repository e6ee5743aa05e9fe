#include "varnel/entitlements/VNLEntitlement.h"

#include <cstdio>
#include <cstdlib>

#include "AdoptedProtocols.h"
#include "CopyIfPresent.h"
#include "EntitlementJson.h"
#include "varnel/entitlements/VNLEntitlementProtocols.h"
#include "varnel/host/ENTMEntitlementsManager.h"
#include "varnel/platform/Describe.h"

namespace varnel {
namespace {

[[noreturn]] void stopOnProgrammingError(const char* message) {
  std::fprintf(stderr, "Varnel: programming error: %s\n", message);
  std::fflush(stderr);
  std::abort();
}

std::string describeURL(const std::optional<std::string>& url) {
  return url ? "Optional(" + *url + ")" : "nil";
}

}  // namespace

VNLEntitlement::VNLEntitlement() = default;
VNLEntitlement::~VNLEntitlement() = default;

const AdoptedProtocols& VNLEntitlement::adoptedProtocolsOf(const VNLEntitlement& object) {
  return AdoptedProtocols::of(object);
}

void VNLEntitlement::populate(const ENTMEntitlement& entitlement, const AdoptedProtocols& adopted) {
  populateBaseFields(entitlement);
  adopted.populate(*this, entitlement);
  finishInit(entitlement);
}

void VNLEntitlement::populateBaseFields(const ENTMEntitlement& from) {
  copyIfPresent(from.productInstanceId, [&](const auto& v) { productInstanceID_ = v; });
  copyIfPresent(from.passTypeName, [&](const auto& v) { passDisplayName_ = v; });
  copyIfPresent(from.ticketAgeGroupTitle, [&](const auto& v) { passNameAndAge_ = v; });
  copyIfPresent(from.guestType, [&](const auto& v) { guestIDType_ = v; });
  copyIfPresent(from.avatarURL, [&](const auto& v) {
    if (!v.empty()) avatarImageURL_ = v;
  });
  copyIfPresent(from.barcodeString, [&](const auto& v) { barcodeID_ = v; });
  copyIfPresent(from.categoryId, [&](const auto& v) { categoryID_ = v; });
  copyIfPresent(from.categoryName, [&](const auto& v) { categoryName_ = v; });
  copyIfPresent(from.passExpirationDate, [&](Date v) { endValidityDate_ = v; });
  entitlementRenewable_ = from.isRenewable;
  copyIfPresent(from.profileId, [&](const auto& v) { profileId_ = v; });
  copyIfPresent(from.holderName, [&](const auto& v) { holderName_ = v; });
  copyIfPresent(from.nickname, [&](const auto& v) { nickname_ = v; });
  monthlyPaymentEligible_ = from.monthlyPaymentEligible;
  copyIfPresent(from.currency, [&](const auto& v) { currency_ = v; });
  copyIfPresent(from.totalPrice, [&](float v) { totalPrice_ = v; });
  copyIfPresent(from.pricePerMonth, [&](float v) { pricePerMonth_ = v; });
  copyIfPresent(from.blockoutDates, [&](const auto& v) { blockoutDates_ = v; });
  shared_ = from.isShared;
  sellable_ = from.isSellable;
  copyIfPresent(from.defaultRenewableProductId, [&](const auto& v) { defaultRenewableProductId_ = v; });
  copyIfPresent(from.benefits, [&](const auto& v) { benefits_ = v; });
  copyIfPresent(from.currentTicketValue, [&](float v) { currentTicketValue_ = v; });
  copyIfPresent(from.shortEntitlementName, [&](const auto& v) { shortEntitlementName_ = v; });
}

void VNLEntitlement::finishInit(const ENTMEntitlement&) {}

bool VNLEntitlement::isMe() const {
  const auto manager = ENTMEntitlementsManager::sharedInstance();
  if (!manager) stopOnProgrammingError("VNLEntitlement::isMe() read with no entitlements manager");
  const auto kuid = manager->kuid();
  if (!kuid) stopOnProgrammingError("VNLEntitlement::isMe() read with no signed-in guest (kuid)");
  return profileId_ == *kuid;
}

std::string VNLEntitlement::debugDescription() const {
  std::string text;
  auto entry = [&text](std::string_view label, const std::string& value) {
    text.append(label).append(value).append(", ");
  };
  entry("productInstanceID: ", productInstanceID_);
  entry("passDisplayName: ", passDisplayName_);
  entry("passNameAndAge: ", passNameAndAge_);
  entry("guestIDType: ", guestIDType_);
  entry("avatarImageURL: ", describeURL(avatarImageURL_));
  entry("avatarId: ", avatarId_);
  entry("barcodeID: ", barcodeID_);
  entry("categoryID: ", categoryID_);
  entry("categoryName: ", categoryName_);
  entry("endValidityDate: ", describe(endValidityDate_));
  entry("entitlementRenewable: ", describe(entitlementRenewable_));
  entry("sku: ", sku_);
  entry("profileId: ", profileId_);
  entry("holderName: ", holderName_);
  entry("nickname: ", nickname_);
  entry("monthlyPaymentEligible: ", describe(monthlyPaymentEligible_));
  entry("currency: ", currency_);
  entry("totalPrice: ", describe(totalPrice_));
  entry("pricePerMonth: ", describe(pricePerMonth_));
  entry("apRenewalOptions: ", describe(apRenewalOptions_));
  entry("blockoutDates count: ", std::to_string(blockoutDates_.size()));
  return text;
}

Json VNLEntitlement::toJson() const {
  namespace ej = entitlementjson;
  Json json = Json::object();
  json["productInstanceID"] = productInstanceID_;
  json["passDisplayName"] = passDisplayName_;
  json["passNameAndAge"] = passNameAndAge_;
  json["guestIDType"] = guestIDType_;
  json["avatarImageURL"] = ej::optional(avatarImageURL_);
  json["avatarId"] = avatarId_;
  json["barcodeID"] = barcodeID_;
  json["categoryID"] = categoryID_;
  json["categoryName"] = categoryName_;
  json["endValidityDate"] = ej::date(endValidityDate_);
  json["entitlementRenewable"] = entitlementRenewable_;
  json["sku"] = sku_;
  json["profileId"] = profileId_;
  json["holderName"] = holderName_;
  json["nickname"] = nickname_;
  json["monthlyPaymentEligible"] = monthlyPaymentEligible_;
  json["currency"] = currency_;
  json["totalPrice"] = ej::number(totalPrice_);
  json["pricePerMonth"] = ej::number(pricePerMonth_);
  if (apRenewalOptions_) {
    Json options = Json::array();
    for (const auto& option : *apRenewalOptions_) options.push_back(option ? option->toJson() : Json(nullptr));
    json["apRenewalOptions"] = std::move(options);
  } else {
    json["apRenewalOptions"] = nullptr;
  }
  Json dates = Json::array();
  for (const Date& date : blockoutDates_) dates.push_back(ej::date(date));
  json["blockoutDates"] = std::move(dates);
  json["shared"] = shared_;
  json["sellable"] = sellable_;
  json["defaultRenewableProductId"] = defaultRenewableProductId_;
  json["benefits"] = benefits_;
  json["currentTicketValue"] = ej::number(currentTicketValue_);
  json["shortEntitlementName"] = shortEntitlementName_;

  if (auto* adopted = dynamic_cast<const VNLEntitlementTypeProtocol*>(this)) adopted->writeTypeFields(json);
  if (auto* adopted = dynamic_cast<const VNLEntitlementStatusProtocol*>(this)) adopted->writeStatusFields(json);
  if (auto* adopted = dynamic_cast<const VNLEntitlementSunsetProtocol*>(this)) adopted->writeSunsetFields(json);
  if (auto* adopted = dynamic_cast<const VNLEntitlementPaymentProtocol*>(this)) adopted->writePaymentFields(json);
  if (auto* adopted = dynamic_cast<const VNLEntitlementAgeGroupProtocol*>(this)) adopted->writeAgeGroupFields(json);
  if (auto* adopted = dynamic_cast<const VNLEntitlementLinkableProtocol*>(this)) adopted->writeLinkableFields(json);
  if (auto* adopted = dynamic_cast<const VNLEntitlementLocationProtocol*>(this)) adopted->writeLocationFields(json);
  if (auto* adopted = dynamic_cast<const VNLEntitlementMultiDayProtocol*>(this)) adopted->writeMultiDayFields(json);
  if (auto* adopted = dynamic_cast<const VNLEntitlementRenewableProtocol*>(this)) {
    adopted->writeRenewableFields(json);
  }
  if (auto* adopted = dynamic_cast<const VNLEntitlementTimeWindowProtocol*>(this)) {
    adopted->writeTimeWindowFields(json);
  }
  if (auto* adopted = dynamic_cast<const VNLEntitlementAssignedSeatProtocol*>(this)) {
    adopted->writeAssignedSeatFields(json);
  }
  if (auto* adopted = dynamic_cast<const VNLEntitlementGovernmentIDProtocol*>(this)) {
    adopted->writeGovernmentIDFields(json);
  }
  if (auto* adopted = dynamic_cast<const VNLEntitlementGuestProfileProtocol*>(this)) {
    adopted->writeGuestProfileFields(json);
  }
  if (auto* adopted = dynamic_cast<const VNLEntitlementPolicyProtocol*>(this)) adopted->writePolicyFields(json);
  if (auto* adopted = dynamic_cast<const VNLEntitlementUpgradeableProtocol*>(this)) {
    adopted->writeUpgradeableFields(json);
  }
  return json;
}

std::string describe(VNLEntitlement::Type type) {
  switch (type) {
    case VNLEntitlement::Type::unknown: return "unknown";
    case VNLEntitlement::Type::annualPass: return "annualPass";
    case VNLEntitlement::Type::parkTicket: return "parkTicket";
    case VNLEntitlement::Type::theaterTicket: return "theaterTicket";
  }
  return std::to_string(rawValue(type));
}

}  // namespace varnel
