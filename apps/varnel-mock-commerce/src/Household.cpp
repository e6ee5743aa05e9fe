#include "Household.h"

#include <cmath>
#include <cstdio>

namespace varnel::mock {
namespace {

std::string textOf(const std::optional<std::string>& text) { return text.value_or(""); }

// The code of a {"name": ..., "code": ...} member, or a plain text member.
std::string codeOf(const Json& object, std::string_view key) {
  const Json* member = jsonMember(object, key);
  if (member && member->is_object()) return memberText(*member, "code");
  return member && member->is_string() ? member->get<std::string>() : "";
}

}  // namespace

std::string memberText(const Json& object, std::string_view key) {
  const std::string* text = jsonString(object, key);
  return text ? *text : "";
}

Cents centsOf(double amount) { return std::llround(amount * 100.0); }

std::optional<Cents> parseAmount(std::string_view text) {
  auto point = text.find('.');
  std::string_view whole = text.substr(0, point);
  std::string_view fraction = point == std::string_view::npos ? std::string_view{} : text.substr(point + 1);
  if (whole.empty() || whole.size() > 12 || fraction.size() > 2 || (point != std::string_view::npos && fraction.empty())) {
    return std::nullopt;
  }
  Cents cents = 0;
  for (char digit : whole) {
    if (digit < '0' || digit > '9') return std::nullopt;
    cents = cents * 10 + (digit - '0');
  }
  for (std::size_t i = 0; i < 2; ++i) {
    char digit = i < fraction.size() ? fraction[i] : '0';
    if (digit < '0' || digit > '9') return std::nullopt;
    cents = cents * 10 + (digit - '0');
  }
  return cents;
}

std::string formatAmount(Cents cents) {
  char text[32];
  std::snprintf(text, sizeof text, "%s%lld.%02lld", cents < 0 ? "-" : "", std::llabs(cents) / 100,
                std::llabs(cents) % 100);
  return text;
}

Household::Household(const standalone::GuestData& guest)
    : kuid_(textOf(guest.kuid)),
      accessToken_(textOf(guest.accessToken)),
      email_(textOf(guest.email)),
      passes_(guest.entitlements),
      paymentAccounts_(guest.paymentAccounts) {
  HouseholdGuest me;
  me.kuid = kuid_;
  if (guest.userProfile && guest.userProfile->avatar) me.avatarId = textOf(guest.userProfile->avatar->avatarId);
  guests_.push_back(std::move(me));
  for (const auto& pass : passes_) {
    if (pass) addHolder(*pass);
  }
  for (std::size_t i = 0; i < guests_.size(); ++i) guests_[i].participantId = "participant-" + std::to_string(i + 1);

  for (const Json& account : paymentAccounts_) {
    const Json* billing = jsonMember(account, "billingAddress");
    if (!billing || !billing->is_object()) continue;
    address_ = Json{{"line1", memberText(*billing, "line1")},
                    {"city", memberText(*billing, "city")},
                    {"stateOrProvince", codeOf(*billing, "state")},
                    {"postalCode", memberText(*billing, "postalCode")},
                    {"country", codeOf(*billing, "country")}};
    if (const std::string* line2 = jsonString(*billing, "line2"); line2 && !line2->empty()) address_["line2"] = *line2;
    for (const char* key : {"mobilePhone", "phone"}) {
      const Json* phone = jsonMember(*billing, key);
      if (phone && phone->is_object() && jsonString(*phone, "number")) {
        phone_ = Json{{"type", memberText(*phone, "type")}, {"number", memberText(*phone, "number")}};
        break;
      }
    }
    break;
  }
}

void Household::addHolder(const ENTMEntitlement& pass) {
  std::string kuid = holderKuid(pass);
  if (kuid.empty()) return;
  HouseholdGuest* holder = nullptr;
  for (auto& guest : guests_) {
    if (guest.kuid == kuid) holder = &guest;
  }
  if (!holder) {
    holder = &guests_.emplace_back();
    holder->kuid = kuid;
  }
  std::string first = textOf(pass.firstName);
  std::string last = textOf(pass.lastName);
  if (first.empty() && last.empty() && pass.holderName) {
    auto blank = pass.holderName->find(' ');
    first = pass.holderName->substr(0, blank);
    if (blank != std::string::npos) last = pass.holderName->substr(blank + 1);
  }
  auto fill = [](std::string& field, const std::string& value) {
    if (field.empty()) field = value;
  };
  fill(holder->firstName, first);
  fill(holder->lastName, last);
  fill(holder->avatarId, textOf(pass.avatarId));
  fill(holder->ageGroup, textOf(pass.ageGroup ? pass.ageGroup : pass.guestType));
}

const HouseholdGuest* Household::guest(std::string_view kuid) const {
  for (const auto& guest : guests_) {
    if (guest.kuid == kuid) return &guest;
  }
  return nullptr;
}

const ENTMEntitlement* Household::pass(std::string_view entitlementId) const {
  if (entitlementId.empty()) return nullptr;
  for (const auto& pass : passes_) {
    if (pass && (pass->productInstanceId == entitlementId || pass->barcodeString == entitlementId)) return pass.get();
  }
  return nullptr;
}

std::string Household::holderKuid(const ENTMEntitlement& pass) {
  return textOf(pass.ownerKuid ? pass.ownerKuid : pass.profileId);
}

std::optional<RenewalPrice> Household::renewalPrice(const ENTMEntitlement& pass) {
  if (pass.categoryId != "AnnualPass" || !pass.isRenewable || !pass.defaultRenewableProductId || !pass.apRenewalOptions) {
    return std::nullopt;
  }
  for (const auto& element : *pass.apRenewalOptions) {
    const auto* option = std::get_if<ENTMEntitlementRef>(&element);
    if (!option || !*option || (*option)->productInstanceId != pass.defaultRenewableProductId) continue;
    const ENTMEntitlement& renewal = **option;
    if (!renewal.totalPrice || *renewal.totalPrice <= 0) return std::nullopt;
    RenewalPrice price;
    price.passName = textOf(renewal.passTypeName ? renewal.passTypeName : pass.passTypeName);
    price.optionId = *renewal.productInstanceId;
    price.currency = textOf(renewal.currency ? renewal.currency : pass.currency);
    if (price.currency.empty()) price.currency = "USD";
    price.total = centsOf(*renewal.totalPrice);
    price.subtotal = renewal.subTotalPrice ? centsOf(*renewal.subTotalPrice) : price.total;
    price.tax = renewal.tax ? centsOf(*renewal.tax) : price.total - price.subtotal;
    if (renewal.monthlyPaymentEligible && renewal.pricePerMonth && *renewal.pricePerMonth > 0) {
      price.perMonth = centsOf(*renewal.pricePerMonth);
      auto down = renewal.downpayment ? parseAmount(*renewal.downpayment) : std::nullopt;
      price.downPayment = down.value_or(*price.perMonth);
    }
    price.policyTitle = renewal.policyTitle;
    price.policyLink = renewal.policyLink;
    price.policyText = renewal.calculatedPolicyText;
    return price;
  }
  return std::nullopt;
}

const Json* Household::paymentAccount(std::string_view referenceNumber, std::string_view referenceKey) const {
  for (const Json& account : paymentAccounts_) {
    const Json* card = jsonMember(account, "card");
    if (!card) continue;
    const std::string* number = jsonString(*card, "retrievalReferenceNumber");
    const std::string* key = jsonString(*card, "retrievalReferenceKey");
    if (number && key && *number == referenceNumber && *key == referenceKey) return &account;
  }
  return nullptr;
}

std::string Household::birthDate(const HouseholdGuest& guest) {
  return guest.ageGroup == "CHILD" ? "2019-05-14" : "1984-09-22";
}

}  // namespace varnel::mock
