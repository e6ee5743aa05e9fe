#include "commands/PaymentAccountText.h"

#include <fmt/format.h>

#include "varnel/purchase/CreditCardUtility.h"

namespace varnel::cli {

std::string maskedCardNumber(const std::string& number) {
  if (number.size() <= 4) return std::string(number.size(), '*');
  return "**** " + number.substr(number.size() - 4);
}

std::string cardBrand(const CreditCard& card) {
  return std::string(CreditCardUtility::caseName(CreditCardUtility::cardType(card.cardNumber())));
}

namespace {

std::string expiry(const CreditCard& card) {
  if (card.expirationMonth().empty() && card.expirationYear().empty()) return card.expirationDate();
  return card.expirationMonth() + "/" + card.expirationYear();
}

std::string holder(const PaymentAccount& account) {
  return account.guestDetails().firstName() + " " + account.guestDetails().lastName();
}

}  // namespace

OrderedJson paymentAccountJson(const PaymentAccount& account) {
  const CreditCard& card = account.creditCard();
  return OrderedJson{{"reference", card.retrievalReferenceNumber()},
                     {"holder", OrderedJson{{"firstName", account.guestDetails().firstName()},
                                            {"lastName", account.guestDetails().lastName()}}},
                     {"brand", cardBrand(card)},
                     {"paymentMethod", card.paymentMethod()},
                     {"number", maskedCardNumber(card.cardNumber())},
                     {"expires", expiry(card)},
                     {"active", card.isActive()},
                     {"chargingPrivileges", card.chargingPrivileges()}};
}

std::string paymentAccountTable(const std::vector<PaymentAccount>& accounts) {
  if (accounts.empty()) return "The guest has no stored cards.\n";
  std::string table = fmt::format("{:<18}{:<22}{:<36}{:<12}{}\n", "REFERENCE", "HOLDER", "BRAND", "NUMBER", "EXPIRES");
  for (const auto& account : accounts) {
    const CreditCard& card = account.creditCard();
    table += fmt::format("{:<18}{:<22}{:<36}{:<12}{}\n", card.retrievalReferenceNumber(), holder(account),
                         cardBrand(card), maskedCardNumber(card.cardNumber()), expiry(card));
  }
  return table;
}

}  // namespace varnel::cli
