#include <gtest/gtest.h>

#include <string>

#include "varnel/purchase/RenewalOrder.h"

namespace varnel {
namespace {

RenewableGuest guest(std::string firstName, std::string participantId) {
  return RenewableGuest({.isMe = true, .avatarID = "av-1", .guestFirstName = firstName, .guestLastName = "Lovelace",
                         .guestFullName = firstName + " Lovelace", .guestPassName = "Gold Pass", .dob = "1990-02-03",
                         .streetAddress = "1 Quill Row\nApt 2", .city = "Marrowby",
                         .state = "StateThatMustNotAppear", .country = "US", .zipCode = "00044",
                         .phoneNumber = "555-0100", .emailId = "ada@example.com", .participantId = participantId,
                         .guestKuid = "kuid-1", .phoneNumberType = "MOBILE"});
}

TEST(RenewableProductDescription, ListsParticipantsInListForm) {
  EXPECT_EQ((RenewableProduct{"Gold Pass", {"p1", "p2"}}).debugDescription(),
            "Pass Name: Gold Pass \n ParticipantId: [\"p1\", \"p2\"]");
  EXPECT_EQ(RenewableProduct{}.debugDescription(), "Pass Name:  \n ParticipantId: []");
}

TEST(RenewableGuestDescription, SixteenLabelledLinesWithoutTheState) {
  const std::string text = guest("Ada", "p1").debugDescription();
  EXPECT_EQ(text,
            "isMe: true \n AvtarID: av-1 \n First Name: Ada \n Last Name: Lovelace \n Full Name: Ada Lovelace"
            " \n PassName: Gold Pass \n date of birth: 1990-02-03 \n street Address: 1 Quill Row\nApt 2"
            " \n city: Marrowby \n Country: US \n ZipCode: 00044 \n phone Number: 555-0100"
            " \n emailId: ada@example.com \n participant Id: p1 \n guest Kuid: kuid-1 \n phoneNumber Type: MOBILE");
  EXPECT_EQ(text.find("StateThatMustNotAppear"), std::string::npos);
  EXPECT_EQ(RenewableGuest().debugDescription().rfind("isMe: false", 0), 0u);
}

TEST(RenewalPricingDescription, AbsentAmountsPrintAsEmptyText) {
  EXPECT_EQ(RenewalPricing{}.debugDescription(),
            "subtotal:  \n gratuity:  \n total:  \n currency:  \n taxIncluded: false \n taxAmount:  "
            "\n monthlyPaymentAmount:  \n downPaymentAmount:  \n depositDue: ");
  const RenewalPricing pricing{"100.00", std::nullopt, "108.00", "USD", true, "8.00", "9.00", std::nullopt, ""};
  EXPECT_EQ(pricing.debugDescription(),
            "subtotal: 100.00 \n gratuity:  \n total: 108.00 \n currency: USD \n taxIncluded: true "
            "\n taxAmount: 8.00 \n monthlyPaymentAmount: 9.00 \n downPaymentAmount:  \n depositDue: ");
}

TEST(RenewalPricingJson, AbsentAmountsAreNullAndEmptyOnesStayText) {
  const Json json = RenewalPricing{"1.00", std::nullopt, std::nullopt, "USD", false, std::nullopt, "", {}, {}}.toJson();
  EXPECT_EQ(json, (Json{{"subtotal", "1.00"}, {"gratuity", nullptr}, {"total", nullptr}, {"currency", "USD"},
                        {"taxIncluded", false}, {"taxAmount", nullptr}, {"monthlyPaymentAmount", ""},
                        {"downPaymentAmount", nullptr}, {"depositDue", nullptr}}));
}

TEST(RenewalOrderDescription, DescribesOnlyTheFirstProductAndGuest) {
  RenewalOrder order;
  order.products = {{"Gold Pass", {"p1"}}, {"Silver Pass", {"p2"}}};
  order.guests = {guest("Ada", "p1"), guest("Bob", "p2"), guest("Cy", "p3")};
  order.pricing.currency = "USD";
  order.bookingTermsAndConditions = "Be nice.";
  const std::string expected = "Products: " + order.products[0].debugDescription() + " \n  Guests: " +
                               order.guests[0].debugDescription() + " \n Pricing: " +
                               order.pricing.debugDescription() + " \n Terms and condition Be nice.";
  EXPECT_EQ(order.debugDescription(), expected);
  EXPECT_EQ(expected.find("Silver"), std::string::npos);
  EXPECT_EQ(expected.find("Bob"), std::string::npos);
}

TEST(RenewalOrderDescriptionDeathTest, AnOrderWithoutProductsOrGuestsStopsTheProgram) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  RenewalOrder noProducts;
  noProducts.guests = {guest("Ada", "p1")};
  EXPECT_DEATH((void)noProducts.debugDescription(), "without products or guests");
  RenewalOrder noGuests;
  noGuests.products = {{"Gold Pass", {}}};
  EXPECT_DEATH((void)noGuests.debugDescription(), "without products or guests");
}

}  // namespace
}  // namespace varnel
