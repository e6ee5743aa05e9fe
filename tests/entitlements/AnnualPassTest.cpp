#include <gtest/gtest.h>

#include "EntitlementTestSupport.h"
#include "varnel/entitlements/PassHolder.h"
#include "varnel/entitlements/VNLEntitlementAnnualPass.h"

namespace varnel {
namespace {

using testing::EntitlementFixture;

class AnnualPass : public EntitlementFixture {};

TEST_F(AnnualPass, DescriptionsListTheDescribedFieldsUnderTheirLabels) {
  const std::string marker = "1970-01-01 00:00:01 +0000";
  EXPECT_EQ(VNLEntitlement().debugDescription(),
            "productInstanceID: , passDisplayName: , passNameAndAge: , guestIDType: , avatarImageURL: nil, "
            "avatarId: , barcodeID: , categoryID: , categoryName: , endValidityDate: " + marker +
                ", entitlementRenewable: false, sku: , profileId: , holderName: , nickname: , "
                "monthlyPaymentEligible: false, currency: USD, totalPrice: 0.0, pricePerMonth: 0.0, "
                "apRenewalOptions: nil, blockoutDates count: 0, ");
  EXPECT_EQ(VNLEntitlementAnnualPass().debugDescription(),
            "productType: annualPass, productTypeID: , isRenewable: false, numberOfDays: 0, startDate: " + marker +
                ", endDate: " + marker + ", passValidityStartDate: " + marker + ", passExpirationDate: " + marker +
                ", calendarId: , annualPayment: 0.0, tax: 0.0, currency: usd, isMonthlyPaymentEligible: false, "
                "savingPercentage: , pricePerMonth: 0.0, address: , stateProvince: , postalCode: , country: , "
                "city: , avatarId: , downpayment: , isSunsetPass: false, ageGroup : , renewalType : , ");
}

TEST_F(AnnualPass, BlockoutSummaryOfASpecialPassIgnoresItsAdmissionDays) {
  localization->table["com.varnel.changeYourPass.noBlockOutThroughOutYear"] = "No blockout dates.";
  localization->table["com.varnel.changeYourPass.admissionDaysThroughOutYear"] = "Admission on %@.";
  VNLEntitlementAnnualPass pass;
  pass.setShortEntitlementName("Cobalt");
  pass.setPassDisplayName("Cobalt Annual Pass");
  pass.setBlockoutDates({Date{1720094400.0}, Date{1720094400.0 + 3600}});
  const std::pair<const char*, bool> products[] = {
      {"crestline-plus", true},       {"cobalt-plus-annual-pass", true}, {"cobalt-annual-pass", true},
      {"vantor-after4-pass", true},   {"Cobalt-Annual-Pass", false},     {"cobalt-annual-pass ", false},
      {"sapphire-annual-pass", false}};
  for (const auto& [product, special] : products) {
    pass.setProductTypeID(product);
    pass.setAdmissionDays("Mon-Thu");
    EXPECT_EQ(pass.isSpecialPass(), special) << product;
    EXPECT_EQ(pass.blockoutGroup().summaryDescription, special ? "No blockout dates." : "Admission on Mon-Thu.");
    pass.setAdmissionDays(std::nullopt);
    EXPECT_EQ(pass.blockoutGroup().summaryDescription, "No blockout dates.");
  }
  const BlockoutGroup group = pass.blockoutGroup();
  EXPECT_EQ(group.shortDisplayName + "/" + group.fullName, "Cobalt/Cobalt Annual Pass");
  EXPECT_TRUE(group.blockedOut(Date{1720094400.0 + 7200}));
}

TEST_F(AnnualPass, TheRenewalTakesTheRenewalTypeDownTheChainAndGivesItsMonthlyEligibility) {
  auto pass = std::make_shared<VNLEntitlementAnnualPass>();
  pass->setIsMonthlyPaymentEligible(true);
  EXPECT_TRUE(pass->renewableEntitlementMonthlyPaymentEligible()) << "no renewal: the pass's own";
  auto renewal = std::make_shared<VNLEntitlementAnnualPass>();
  renewal->setIsMonthlyPaymentEligible(true);  // not the flag that counts
  auto renewalOfRenewal = std::make_shared<VNLEntitlementAnnualPass>();
  renewal->setRenewableEntitlement(renewalOfRenewal);
  pass->setRenewableEntitlement(renewal);
  EXPECT_FALSE(pass->renewableEntitlementMonthlyPaymentEligible());
  renewal->setMonthlyPaymentEligible(true);
  EXPECT_TRUE(pass->renewableEntitlementMonthlyPaymentEligible());

  pass->setRenewalType("Upgrade");
  EXPECT_EQ(pass->renewalType() + renewal->renewalType() + renewalOfRenewal->renewalType(), "UpgradeUpgradeUpgrade");
  renewal->setRenewalType("Downgrade");
  EXPECT_EQ(pass->renewalType(), "Upgrade") << "never back up the chain";

  renewalOfRenewal->setRenewableEntitlement(pass);  // a chain that comes back ends the walk
  pass->setRenewalType("Same");
  EXPECT_EQ(renewalOfRenewal->renewalType(), "Same");
  renewalOfRenewal->setRenewableEntitlement(nullptr);

  pass->setRenewableEntitlement(std::make_shared<VNLEntitlement>());
  pass->setRenewalType("Downgrade");
  EXPECT_EQ(pass->renewalType(), "Downgrade");
}

TEST_F(AnnualPass, JsonInitialiserReadsTypeDatesAndAddressButNeverRenewableOrTheDayCount) {
  const auto pass = VNLEntitlementAnnualPass::initWithJsonData(R"({
      "productTypeId": "sapphire-annual-pass", "renewable": true,
      "startDateTime": "2025-03-01T10:00:00.000-0500", "endDateTime": "2026-02-28T10:00:00.000-0500",
      "assignedGuest": {"address": {"addressLine1": "1 Quill Row", "stateProvince": "QZ", "country": "US",
                                    "postalCode": 42, "city": "Wrenfield"}}})"_json);
  testing::expectFields(pass->toJson(), R"({
      "productTypeID": "sapphire-annual-pass", "isRenewable": false, "numberOfDays": 0,
      "startDate": "2025-03-01T15:00:00Z", "passValidityStartDate": "2025-03-01T15:00:00Z",
      "endDate": "2026-02-28T15:00:00Z", "passExpirationDate": "2026-02-28T15:00:00Z",
      "address": "1 Quill Row", "stateProvince": "QZ", "country": "US", "postalCode": "", "city": "Wrenfield"})"_json);

  const Json unusable[] = {
      R"({"productTypeId": 12, "startDateTime": "garbage", "endDateTime": "", "assignedGuest": {"address": "x"}})"_json,
      R"({"endDateTime": 20250301, "assignedGuest": [1, 2]})"_json, nullptr, "text", Json::array({1})};
  for (const Json& json : unusable) {
    EXPECT_EQ(VNLEntitlementAnnualPass::initWithJsonData(json)->toJson(), VNLEntitlementAnnualPass().toJson())
        << json.dump();
  }
}

TEST_F(AnnualPass, IsMeComparesTheHolderWithTheSignedInGuestAndNeedsOne) {
  VNLEntitlementAnnualPass pass;
  pass.setProfileId("guest-kuid");
  EXPECT_TRUE(pass.isMe());
  manager->signedInKuid = "someone-else";
  EXPECT_FALSE(pass.isMe());
  manager->signedInKuid.reset();
  EXPECT_DEATH((void)pass.isMe(), "no signed-in guest");
  host::Registry::set<ENTMEntitlementsManager>(nullptr);
  EXPECT_DEATH((void)pass.isMe(), "no entitlements manager");
}

TEST(PassHolderTest, ResetGoesBackToThePreselectedPass) {
  const auto ticket = std::make_shared<VNLEntitlementParkTicket>();
  const auto preselected = std::make_shared<VNLEntitlementAnnualPass>();
  const auto other = std::make_shared<VNLEntitlementAnnualPass>();
  PassHolder holder(ticket, preselected);
  EXPECT_EQ(holder.passToPurchase(), preselected);
  holder.setPassToPurchase(other);
  holder.reset();
  EXPECT_EQ(holder.passToPurchase(), preselected);
  EXPECT_EQ(holder.preSelectedPass(), preselected);
  EXPECT_EQ(holder.ticketToUpgrade(), ticket);
  EXPECT_EQ(PassHolder(other).ticketToUpgrade(), nullptr);
}

}  // namespace
}  // namespace varnel
