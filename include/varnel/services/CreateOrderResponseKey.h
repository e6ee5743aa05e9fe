#pragma once
// Every JSON key that the commerce answer parsers read. Each value is the
// key's own name, except ktvrName, the name of the display-name table of a
// pass product. Note the lower-case "annualpass".

#include <string_view>

namespace varnel {

struct CreateOrderResponseKey {
  CreateOrderResponseKey() = delete;

  static constexpr std::string_view status = "status";
  static constexpr std::string_view type = "type";
  static constexpr std::string_view kuid = "kuid";
  static constexpr std::string_view monthlyPaymentAmount = "monthlyPaymentAmount";
  static constexpr std::string_view currency = "currency";
  static constexpr std::string_view id = "id";
  static constexpr std::string_view guests = "guests";
  static constexpr std::string_view value = "value";
  static constexpr std::string_view downPaymentAmount = "downPaymentAmount";
  static constexpr std::string_view participantId = "participantId";
  static constexpr std::string_view name = "name";
  static constexpr std::string_view names = "names";
  static constexpr std::string_view ktvrName = "KTVRO Cart Plus Ticket Only";
  static constexpr std::string_view firstName = "firstName";
  static constexpr std::string_view lastName = "lastName";
  static constexpr std::string_view phoneNumber = "phoneNumber";
  static constexpr std::string_view number = "number";
  static constexpr std::string_view emailAddress = "emailAddress";
  static constexpr std::string_view birthDate = "birthDate";
  static constexpr std::string_view address = "address";
  static constexpr std::string_view line1 = "line1";
  static constexpr std::string_view line2 = "line2";
  static constexpr std::string_view city = "city";
  static constexpr std::string_view stateOrProvince = "stateOrProvince";
  static constexpr std::string_view postalCode = "postalCode";
  static constexpr std::string_view country = "country";
  static constexpr std::string_view limit = "limit";
  static constexpr std::string_view total = "total";
  static constexpr std::string_view entries = "entries";
  static constexpr std::string_view components = "components";
  static constexpr std::string_view pricing = "pricing";
  static constexpr std::string_view entitlementAssignment = "entitlementAssignment";
  static constexpr std::string_view guestReferenceIds = "guestReferenceIds";
  static constexpr std::string_view subtotal = "subtotal";
  static constexpr std::string_view tax = "tax";
  static constexpr std::string_view gratuity = "gratuity";
  static constexpr std::string_view taxIncluded = "taxIncluded";
  static constexpr std::string_view annualpass = "annualpass";
  static constexpr std::string_view text = "text";
  static constexpr std::string_view totalDepositDue = "totalDepositDue";
  static constexpr std::string_view orderItems = "orderItems";
  static constexpr std::string_view avatarImage = "avatarImage";
  static constexpr std::string_view payments = "payments";
  static constexpr std::string_view paymentCard = "paymentCard";
  static constexpr std::string_view cardType = "cardType";
  static constexpr std::string_view cardSubType = "cardSubType";
  static constexpr std::string_view maskedCardNumber = "maskedCardNumber";
  static constexpr std::string_view amount = "amount";
  static constexpr std::string_view confirmationNumber = "confirmationNumber";
  static constexpr std::string_view links = "links";
  static constexpr std::string_view self = "self";
  static constexpr std::string_view href = "href";
  static constexpr std::string_view bookingTermsAndConditions = "bookingTermsAndConditions";
  static constexpr std::string_view termsAndConditions = "termsAndConditions";
  static constexpr std::string_view policies = "policies";
  static constexpr std::string_view descriptions = "descriptions";
  static constexpr std::string_view key = "key";
};

}  // namespace varnel
