#pragma once
// The service's orders and the JSON answers it gives about them: the order,
// the monthly contract, the checkout confirmation and the booking error body.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Household.h"
#include "varnel/platform/Json.h"

namespace varnel::mock {

/// One pass renewed by an order.
struct OrderLine {
  std::string entitlementId;
  std::string holderKuid;
  std::string avatarImage;
  RenewalPrice price;
};

struct Order {
  std::string id;
  std::string ownerKuid;
  bool paymentPlan = false;
  std::string currency;
  std::string destinationId;
  std::string storeId;
  std::vector<OrderLine> lines;
  Cents total = 0;
  Cents subtotal = 0;
  Cents tax = 0;
  Cents perMonth = 0;
  Cents downPayment = 0;
  int charges = 0;
  /// Given when the order is charged.
  std::string confirmationNumber;

  /// What a checkout charges: the down payment under a monthly plan, else the total.
  Cents dueNow() const { return paymentPlan ? downPayment : total; }
};

/// {"errors":[{"typeId", "message", "systemErrorCode"?}], "status":"FAILED"}.
Json bookingError(std::string_view typeId, std::string_view message,
                  std::optional<std::string_view> systemErrorCode = std::nullopt);

/// {"paymentAccounts": [...]}.
Json paymentAccountsAnswer(const Household& household);

/// The created order; its "links"."self"."href" ends in the order id.
Json orderAnswer(const Order& order, const Household& household, const std::string& baseUrl);

/// The monthly-payment contract of an order paid with `account`.
Json contractAnswer(const Order& order, const Json& account, const std::string& baseUrl);

/// The checkout's answer: the order again, booked, with the payment and the
/// confirmation number.
Json confirmationAnswer(const Order& order, const Household& household, const Json& account,
                        const std::string& baseUrl);

/// "XXXXXXXXXXXX1111" for the card of `account`.
std::string maskedCardNumber(const Json& account);

}  // namespace varnel::mock
