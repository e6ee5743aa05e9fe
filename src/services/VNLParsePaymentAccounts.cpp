#include "varnel/services/VNLParsePaymentAccounts.h"

#include "JsonShapes.h"

namespace varnel {

using namespace services_detail;

namespace {

const Json kNoObject = Json::object();

/// The member when it is an object, else an empty object.
const Json& objectOrEmpty(const Json& object, std::string_view key) {
  const Json* member = objectMember(object, key);
  return member ? *member : kNoObject;
}

/// The member's flag; false when it is missing or not a boolean.
bool flag(const Json& object, std::string_view key) {
  const Json* member = jsonMember(object, key);
  return member && member->is_boolean() && member->get<bool>();
}

std::optional<KTVRAddress::Region> region(const Json& address, std::string_view key) {
  const Json* member = objectMember(address, key);
  if (!member) return std::nullopt;
  return KTVRAddress::Region{stringMember(*member, "name"), stringMember(*member, "code")};
}

std::optional<KTVRAddress::Phone> phone(const Json& address, std::string_view key) {
  const Json* member = objectMember(address, key);
  if (!member) return std::nullopt;
  return KTVRAddress::Phone{stringMember(*member, "type"), stringMember(*member, "number")};
}

std::shared_ptr<const KTVRAddress> address(const Json& account) {
  const Json* billing = objectMember(account, "billingAddress");
  if (!billing) return nullptr;
  auto made = std::make_shared<KTVRAddress>();
  made->line1 = stringMember(*billing, "line1");
  made->line2 = stringMember(*billing, "line2");
  made->city = stringMember(*billing, "city");
  made->state = region(*billing, "state");
  made->country = region(*billing, "country");
  made->zipCode = stringMember(*billing, "postalCode");
  made->phoneNumber = phone(*billing, "phone");
  made->mobilePhone = phone(*billing, "mobilePhone");
  return made;
}

CreditCard card(const Json& account) {
  const Json& card = objectOrEmpty(account, "card");
  return CreditCard(flag(card, "isActive"), flag(card, "chargingPrivileges"), stringMember(card, "cardNumber"),
                    stringMember(card, "expirationDate"), stringMember(card, "expirationMonth"),
                    stringMember(card, "expirationYear"), stringMember(card, "paymentMethod"),
                    stringMember(card, "paymentMethodType"), stringMember(card, "retrievalReferenceNumber"),
                    stringMember(card, "retrievalReferenceKey"), std::nullopt, flag(card, "isScanned"));
}

}  // namespace

std::vector<PaymentAccount> VNLParsePaymentAccounts::parsePaymentAccounts(const Json& result) const {
  std::vector<PaymentAccount> accounts;
  const Json* list = jsonMember(result, "paymentAccounts");
  if (!list || !list->is_array()) return accounts;
  for (const Json& account : *list) {
    if (!account.is_object()) continue;
    const Json& holder = objectOrEmpty(account, "holder");
    accounts.emplace_back(CardGuestDetails(stringOrEmpty(holder, "firstName"), stringOrEmpty(holder, "lastName")),
                          card(account), address(account));
  }
  return accounts;
}

}  // namespace varnel
