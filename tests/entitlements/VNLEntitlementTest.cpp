#include <gtest/gtest.h>

#include "EntitlementTestSupport.h"
#include "varnel/entitlements/VNLEntitlementAnnualPass.h"

namespace varnel {
namespace {

using testing::EntitlementFixture;

class EntitlementBase : public EntitlementFixture {};

TEST_F(EntitlementBase, AFreshEntitlementHasTheDefaultsAndTheirDescription) {
  const VNLEntitlement entitlement;
  EXPECT_EQ(entitlement.currency(), "USD");
  EXPECT_EQ(entitlement.endValidityDate(), Date::fromTimeIntervalSince1970(1.0));
  EXPECT_TRUE(entitlement.blockoutDates().empty());
  EXPECT_FALSE(entitlement.apRenewalOptions().has_value());
  EXPECT_EQ(entitlement.debugDescription(),
            "productInstanceID: , passDisplayName: , passNameAndAge: , guestIDType: , avatarImageURL: nil, "
            "avatarId: , barcodeID: , categoryID: , categoryName: , "
            "endValidityDate: 1970-01-01 00:00:01 +0000, entitlementRenewable: false, sku: , profileId: , "
            "holderName: , nickname: , monthlyPaymentEligible: false, currency: USD, totalPrice: 0.0, "
            "pricePerMonth: 0.0, apRenewalOptions: nil, blockoutDates count: 0, ");
}

TEST_F(EntitlementBase, DescriptionPrintsOptionalsAndLeavesOutTheUndescribedFields) {
  VNLEntitlement entitlement;
  entitlement.setAvatarImageURL("https://img.example/a.png");
  entitlement.setTotalPrice(12.5f);
  entitlement.setBenefits("Free parking");
  entitlement.setSellable(true);
  entitlement.setBlockoutDates({Date{1.0e9}, Date{1.1e9}});
  auto option = std::make_shared<VNLEntitlementAnnualPass>();
  entitlement.setApRenewalOptions(std::vector<std::shared_ptr<VNLEntitlement>>{option});

  const std::string text = entitlement.debugDescription();
  EXPECT_NE(text.find("avatarImageURL: Optional(https://img.example/a.png), "), std::string::npos);
  EXPECT_NE(text.find("totalPrice: 12.5, "), std::string::npos);
  EXPECT_NE(text.find("apRenewalOptions: Optional([" + option->debugDescription() + "]), "), std::string::npos);
  EXPECT_TRUE(text.ends_with("blockoutDates count: 2, "));
  EXPECT_EQ(text.find("Free parking"), std::string::npos);
  EXPECT_EQ(text.find("sellable"), std::string::npos);
}

TEST_F(EntitlementBase, CopiesTheBaseFieldsAndKeepsDefaultsWhereTheManagerHasNothing) {
  ENTMEntitlement source;
  source.productInstanceId = "PI-1";
  source.passTypeName = "Cobalt Pass";
  source.ticketAgeGroupTitle = "Adult";
  source.guestType = "RESIDENT";
  source.avatarURL = "https://img.example/b.png";
  source.avatarId = "avatar-7";
  source.barcodeString = "BC-9";
  source.passExpirationDate = Date{1.8e9};
  source.isRenewable = true;
  source.profileId = "guest-kuid";
  source.holderName = "Ada";
  source.monthlyPaymentEligible = true;
  source.totalPrice = 899.0f;
  source.blockoutDates = std::vector<Date>{Date{1.7e9}};
  source.isShared = true;
  source.isSellable = true;
  source.defaultRenewableProductId = "next";
  source.currentTicketValue = 40.5f;
  source.shortEntitlementName = "Cobalt";

  const auto entitlement = VNLEntitlement::initWith<VNLEntitlement>(source);
  EXPECT_EQ(entitlement->productInstanceID(), "PI-1");
  EXPECT_EQ(entitlement->passDisplayName(), "Cobalt Pass");
  EXPECT_EQ(entitlement->passNameAndAge(), "Adult");
  EXPECT_EQ(entitlement->guestIDType(), "RESIDENT");
  EXPECT_EQ(entitlement->avatarImageURL(), "https://img.example/b.png");
  EXPECT_EQ(entitlement->barcodeID(), "BC-9");
  EXPECT_EQ(entitlement->endValidityDate(), Date{1.8e9});
  EXPECT_TRUE(entitlement->entitlementRenewable());
  EXPECT_EQ(entitlement->holderName(), "Ada");
  EXPECT_TRUE(entitlement->monthlyPaymentEligible());
  EXPECT_EQ(entitlement->totalPrice(), 899.0f);
  EXPECT_EQ(entitlement->blockoutDates(), std::vector<Date>{Date{1.7e9}});
  EXPECT_TRUE(entitlement->shared());
  EXPECT_TRUE(entitlement->sellable());
  EXPECT_EQ(entitlement->defaultRenewableProductId(), "next");
  EXPECT_EQ(entitlement->currentTicketValue(), 40.5f);
  EXPECT_EQ(entitlement->shortEntitlementName(), "Cobalt");
  // Absent in the manager: the defaults stay.
  EXPECT_EQ(entitlement->currency(), "USD");
  EXPECT_EQ(entitlement->categoryID(), "");
  EXPECT_EQ(entitlement->pricePerMonth(), 0.0f);
  // A plain entitlement adopts no protocol, so the type protocol's avatar is not copied.
  EXPECT_EQ(entitlement->avatarId(), "");
}

TEST_F(EntitlementBase, IsMeComparesTheProfileWithTheSignedInGuestExactly) {
  VNLEntitlement entitlement;
  entitlement.setProfileId("guest-kuid");
  EXPECT_TRUE(entitlement.isMe());
  entitlement.setProfileId("GUEST-KUID");
  EXPECT_FALSE(entitlement.isMe());
}

using EntitlementBaseDeathTest = EntitlementFixture;

TEST_F(EntitlementBaseDeathTest, IsMeWithoutAGuestStopsTheProgram) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  VNLEntitlement entitlement;
  manager->signedInKuid.reset();
  EXPECT_DEATH((void)entitlement.isMe(), "no signed-in guest");
  host::Registry::set<ENTMEntitlementsManager>(nullptr);
  EXPECT_DEATH((void)entitlement.isMe(), "no entitlements manager");
}

TEST(VNLCurrency, OnlyRawValuesZeroToThreeMakeACurrency) {
  EXPECT_EQ(VNLCurrencyFromRawValue(0), VNLCurrency::usd);
  EXPECT_EQ(VNLCurrencyFromRawValue(3), VNLCurrency::gbp);
  EXPECT_FALSE(VNLCurrencyFromRawValue(-1).has_value());
  EXPECT_FALSE(VNLCurrencyFromRawValue(4).has_value());
}

TEST(VNLEntitlementErrors, NoKuidIsCodeZeroInTheTypesDomain) {
  const Error error = toError(VNLEntitlementErrors::noKUIDAvailable);
  EXPECT_EQ(error.domain, "Varnel.VNLEntitlementErrors");
  EXPECT_EQ(error.code, 0);
}

}  // namespace
}  // namespace varnel
