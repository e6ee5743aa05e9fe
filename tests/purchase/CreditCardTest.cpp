#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "varnel/purchase/CreditCard.h"

namespace varnel {
namespace {

TEST(CreditCard, AbsentFieldsBecomeFalseOrEmptyWithASecurityCodePresent) {
  const CreditCard card;
  EXPECT_FALSE(card.isActive() || card.chargingPrivileges() || card.isScanned());
  for (const std::string* text : {&card.cardNumber(), &card.expirationDate(), &card.expirationMonth(),
                                  &card.expirationYear(), &card.paymentMethod(), &card.paymentMethodType(),
                                  &card.retrievalReferenceNumber(), &card.retrievalReferenceKey()}) {
    EXPECT_EQ(*text, "");
  }
  EXPECT_EQ(card.securityCode(), std::optional<std::string>(""));
}

TEST(CreditCard, KeepsEachGivenFieldInItsPlace) {
  const CreditCard card(true, false, "XXXX1111", "12/29", "12", "2029", "VI", "CREDIT", "rrn-1", "rrk-1",
                        "123", true);
  EXPECT_TRUE(card.isActive() && !card.chargingPrivileges() && card.isScanned());
  EXPECT_EQ((std::vector<std::string>{card.cardNumber(), card.expirationDate(), card.expirationMonth(),
                                      card.expirationYear(), card.paymentMethod(), card.paymentMethodType(),
                                      card.retrievalReferenceNumber(), card.retrievalReferenceKey(),
                                      card.securityCode().value_or("none")}),
            (std::vector<std::string>{"XXXX1111", "12/29", "12", "2029", "VI", "CREDIT", "rrn-1", "rrk-1", "123"}));
}

}  // namespace
}  // namespace varnel
