#include <gtest/gtest.h>

#include <memory>

#include "varnel/purchase/PaymentAccount.h"

namespace varnel {
namespace {

TEST(CreditCard, AbsentFieldsBecomeFalseOrEmptyWithASecurityCodePresent) {
  const CreditCard card;
  EXPECT_FALSE(card.isActive());
  EXPECT_FALSE(card.chargingPrivileges());
  EXPECT_FALSE(card.isScanned());
  for (const std::string* text : {&card.cardNumber(), &card.expirationDate(), &card.expirationMonth(),
                                  &card.expirationYear(), &card.paymentMethod(), &card.paymentMethodType(),
                                  &card.retrievalReferenceNumber(), &card.retrievalReferenceKey()}) {
    EXPECT_EQ(*text, "");
  }
  ASSERT_TRUE(card.securityCode().has_value());
  EXPECT_EQ(*card.securityCode(), "");
}

TEST(CreditCard, KeepsEachGivenFieldInItsPlace) {
  const CreditCard card(true, false, "XXXX1111", "12/29", "12", "2029", "VI", "CREDIT", "rrn-1", "rrk-1",
                        "123", true);
  EXPECT_TRUE(card.isActive());
  EXPECT_FALSE(card.chargingPrivileges());
  EXPECT_EQ(card.cardNumber(), "XXXX1111");
  EXPECT_EQ(card.expirationDate(), "12/29");
  EXPECT_EQ(card.expirationMonth(), "12");
  EXPECT_EQ(card.expirationYear(), "2029");
  EXPECT_EQ(card.paymentMethod(), "VI");
  EXPECT_EQ(card.paymentMethodType(), "CREDIT");
  EXPECT_EQ(card.retrievalReferenceNumber(), "rrn-1");
  EXPECT_EQ(card.retrievalReferenceKey(), "rrk-1");
  EXPECT_EQ(card.securityCode(), "123");
  EXPECT_TRUE(card.isScanned());
  EXPECT_NE(card, CreditCard(true, false, "XXXX1111", "12/29", "12", "2029", "VI", "CREDIT", "rrn-1",
                             "rrk-1", "124", true));
}

TEST(PaymentAccount, SharesTheHostsAddressObject) {
  auto address = std::make_shared<KTVRAddress>();
  address->city = "Orlando";
  address->state = KTVRAddress::Region{"Florida", "FL"};
  const PaymentAccount account(CardGuestDetails("Ada", "Lovelace"), CreditCard(true, true), address);
  EXPECT_EQ(account.guestDetails(), CardGuestDetails("Ada", "Lovelace"));
  EXPECT_TRUE(account.creditCard().chargingPrivileges());
  EXPECT_EQ(account.cardHolderAddress().get(), address.get());
  address->zipCode = "32830";
  EXPECT_EQ(account.cardHolderAddress()->zipCode, "32830");
}

}  // namespace
}  // namespace varnel
