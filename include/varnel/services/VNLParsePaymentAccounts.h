#pragma once
// Turns the payment-accounts answer (profileAccounts) into the guest's stored
// cards. Never fails, never throws and logs nothing (the answer carries card
// numbers):
//
//   { "paymentAccounts": [ { "holder": {firstName, lastName},
//                            "card": {cardNumber, expirationDate, expirationMonth,
//                                     expirationYear, paymentMethod, paymentMethodType,
//                                     retrievalReferenceNumber, retrievalReferenceKey,
//                                     isActive, chargingPrivileges, isScanned},
//                            "billingAddress": {line1, line2, city, postalCode,
//                                     state {name, code}, country {name, code},
//                                     phone {type, number}, mobilePhone {type, number}} } ] }
//
// Every member is optional: a missing or mistyped text is empty, a flag false,
// an address part absent; an entry without "billingAddress" has no address.
// Entries that are not objects are skipped.

#include <vector>

#include "varnel/platform/Json.h"
#include "varnel/purchase/PaymentAccount.h"

namespace varnel {

class VNLParsePaymentAccounts {
 public:
  std::vector<PaymentAccount> parsePaymentAccounts(const Json& result) const;
};

}  // namespace varnel
