#include <gtest/gtest.h>

#include "EntitlementTestSupport.h"
#include "varnel/entitlements/VNLEntitlementAnnualPass.h"

namespace varnel {
namespace {

using testing::EntitlementFixture;

constexpr const char* kNoBlockoutKey = "com.varnel.changeYourPass.noBlockOutThroughOutYear";
constexpr const char* kAdmissionDaysKey = "com.varnel.changeYourPass.admissionDaysThroughOutYear";

class AnnualPass : public EntitlementFixture {
 protected:
  void SetUp() override {
    EntitlementFixture::SetUp();
    localization->table[kNoBlockoutKey] = "No blockout dates throughout the year.";
    localization->table[kAdmissionDaysKey] = "Admission on %@ throughout the year.";
  }
};

TEST_F(AnnualPass, AFreshPassDescribesItsOwnFieldsWithTheirLabels) {
  const VNLEntitlementAnnualPass pass;
  const std::string marker = "1970-01-01 00:00:01 +0000";
  EXPECT_EQ(pass.debugDescription(),
            "productType: annualPass, productTypeID: , isRenewable: false, numberOfDays: 0, startDate: " + marker +
                ", endDate: " + marker + ", passValidityStartDate: " + marker + ", passExpirationDate: " + marker +
                ", calendarId: , annualPayment: 0.0, tax: 0.0, currency: usd, isMonthlyPaymentEligible: false, "
                "savingPercentage: , pricePerMonth: 0.0, address: , stateProvince: , postalCode: , country: , "
                "city: , avatarId: , downpayment: , isSunsetPass: false, ageGroup : , renewalType : , ");
}

TEST_F(AnnualPass, OnlyTheFourSpecialProductsAreSpecial) {
  VNLEntitlementAnnualPass pass;
  for (const char* id : {"crestline-plus", "cobalt-plus-annual-pass", "cobalt-annual-pass", "vantor-after4-pass"}) {
    pass.setProductTypeID(id);
    EXPECT_TRUE(pass.isSpecialPass()) << id;
  }
  for (const char* id : {"Cobalt-Annual-Pass", "cobalt-annual-pass ", "", "sapphire-annual-pass"}) {
    pass.setProductTypeID(id);
    EXPECT_FALSE(pass.isSpecialPass()) << id;
  }
}

TEST_F(AnnualPass, BlockoutSummaryIgnoresAdmissionDaysOfASpecialPass) {
  VNLEntitlementAnnualPass pass;
  pass.setShortEntitlementName("Cobalt");
  pass.setPassDisplayName("Cobalt Annual Pass");
  pass.setAdmissionDays("Mon-Thu");
  pass.setBlockoutDates({Date{1720094400.0}, Date{1720094400.0 + 3600}});

  pass.setProductTypeID("cobalt-annual-pass");
  const BlockoutGroup special = pass.blockoutGroup();
  EXPECT_EQ(special.summaryDescription, "No blockout dates throughout the year.");
  EXPECT_EQ(special.shortDisplayName, "Cobalt");
  EXPECT_EQ(special.fullName, "Cobalt Annual Pass");
  EXPECT_EQ(special.blockoutDateNumericalValues.size(), 2u);
  EXPECT_TRUE(special.blockedOut(Date{1720094400.0 + 7200}));

  pass.setProductTypeID("sapphire-annual-pass");
  EXPECT_EQ(pass.blockoutGroup().summaryDescription, "Admission on Mon-Thu throughout the year.");

  pass.setAdmissionDays(std::nullopt);
  EXPECT_EQ(pass.blockoutGroup().summaryDescription, "No blockout dates throughout the year.");
}

TEST_F(AnnualPass, RenewalTypeFollowsThePassDownItsRenewals) {
  auto pass = std::make_shared<VNLEntitlementAnnualPass>();
  pass->setRenewalType("Same");
  EXPECT_EQ(pass->renewalType(), "Same");

  auto renewal = std::make_shared<VNLEntitlementAnnualPass>();
  auto renewalOfRenewal = std::make_shared<VNLEntitlementAnnualPass>();
  renewal->setRenewableEntitlement(renewalOfRenewal);
  pass->setRenewableEntitlement(renewal);
  pass->setRenewalType("Upgrade");
  EXPECT_EQ(renewal->renewalType(), "Upgrade");
  EXPECT_EQ(renewalOfRenewal->renewalType(), "Upgrade");

  // Setting it on the renewal does not reach back to the pass.
  renewal->setRenewalType("Downgrade");
  EXPECT_EQ(pass->renewalType(), "Upgrade");

  // A renewal that leads back to the pass ends the walk.
  renewalOfRenewal->setRenewableEntitlement(pass);
  pass->setRenewalType("Same");
  EXPECT_EQ(renewalOfRenewal->renewalType(), "Same");
  renewalOfRenewal->setRenewableEntitlement(nullptr);

  pass->setRenewableEntitlement(std::make_shared<VNLEntitlement>());
  pass->setRenewalType("Downgrade");
  EXPECT_EQ(pass->renewalType(), "Downgrade");
}

TEST_F(AnnualPass, MonthlyEligibilityOfTheRenewalIsTheRenewalsBaseFlag) {
  VNLEntitlementAnnualPass pass;
  pass.setIsMonthlyPaymentEligible(true);
  EXPECT_TRUE(pass.renewableEntitlementMonthlyPaymentEligible());

  auto renewal = std::make_shared<VNLEntitlementAnnualPass>();
  renewal->setIsMonthlyPaymentEligible(true);  // not the flag that counts
  pass.setRenewableEntitlement(renewal);
  EXPECT_FALSE(pass.renewableEntitlementMonthlyPaymentEligible());
  renewal->setMonthlyPaymentEligible(true);
  EXPECT_TRUE(pass.renewableEntitlementMonthlyPaymentEligible());

  auto plain = std::make_shared<VNLEntitlement>();
  pass.setRenewableEntitlement(plain);
  pass.setIsMonthlyPaymentEligible(false);
  plain->setMonthlyPaymentEligible(true);
  EXPECT_FALSE(pass.renewableEntitlementMonthlyPaymentEligible());
}

TEST_F(AnnualPass, JsonInitialiserReadsTypeDatesAndAddress) {
  const Json json = {
      {"productTypeId", "sapphire-annual-pass"},
      {"renewable", true},
      {"startDateTime", "2025-03-01T10:00:00.000-0500"},
      {"endDateTime", "2026-02-28T10:00:00.000-0500"},
      {"assignedGuest",
       {{"address",
         {{"addressLine1", "1 Main St"}, {"stateProvince", "FL"}, {"country", "US"}, {"postalCode", 32830},
          {"city", "Bay Lake"}}}}},
  };
  const auto pass = VNLEntitlementAnnualPass::initWithJsonData(json);
  EXPECT_EQ(pass->productTypeID(), "sapphire-annual-pass");
  EXPECT_FALSE(pass->isRenewable());  // the dictionary's "renewable" never applies
  EXPECT_EQ(pass->numberOfDays(), 0);  // taken before the dates were read
  EXPECT_EQ(pass->startDate(), Date{1740841200.0});
  EXPECT_EQ(pass->endDate(), Date{1772290800.0});
  EXPECT_EQ(pass->passValidityStartDate(), pass->startDate());
  EXPECT_EQ(pass->passExpirationDate(), pass->endDate());
  EXPECT_EQ(pass->address(), "1 Main St");
  EXPECT_EQ(pass->stateProvince(), "FL");
  EXPECT_EQ(pass->country(), "US");
  EXPECT_EQ(pass->postalCode(), "");  // not a string
  EXPECT_EQ(pass->city(), "Bay Lake");
}

TEST_F(AnnualPass, JsonInitialiserFallsBackToTheMarkerAndDefaults) {
  const Json badDates = {{"productTypeId", 12},
                         {"startDateTime", "garbage"},
                         {"endDateTime", ""},
                         {"assignedGuest", {{"address", "1 Main St"}}}};
  const auto pass = VNLEntitlementAnnualPass::initWithJsonData(badDates);
  EXPECT_EQ(pass->productTypeID(), "");
  EXPECT_EQ(pass->startDate(), Date::unknownMarker());
  EXPECT_EQ(pass->endDate(), Date::unknownMarker());
  EXPECT_EQ(pass->passExpirationDate(), Date::unknownMarker());
  EXPECT_EQ(pass->address(), "");

  const Json guestNotADictionary = {{"endDateTime", 20250301}, {"assignedGuest", Json::array({1, 2})}};
  const auto other = VNLEntitlementAnnualPass::initWithJsonData(guestNotADictionary);
  EXPECT_EQ(other->endDate(), Date::unknownMarker());
  EXPECT_EQ(other->address(), "");

  for (const Json& notADictionary : {Json(nullptr), Json("text"), Json::array({1})}) {
    const auto fallback = VNLEntitlementAnnualPass::initWithJsonData(notADictionary);
    EXPECT_EQ(fallback->startDate(), Date::unknownMarker());
    EXPECT_EQ(fallback->productType(), VNLEntitlement::Type::annualPass);
  }
}

TEST_F(AnnualPass, JsonUsesFieldNamesAndRfc3339Dates) {
  auto pass = std::make_shared<VNLEntitlementAnnualPass>();
  pass->setProductInstanceID("AP-1");
  pass->setProductTypeID("cobalt-annual-pass");
  pass->setEndValidityDate(Date{1740841200.0});
  pass->setTotalPrice(0.1f);
  pass->setBlockoutDates({Date{1720094400.0}});
  pass->setRenewalType("Same");
  auto renewal = std::make_shared<VNLEntitlementAnnualPass>();
  renewal->setProductInstanceID("AP-2");
  pass->setRenewableEntitlement(renewal);

  Json json = pass->toJson();
  EXPECT_EQ(json["productInstanceID"], "AP-1");
  EXPECT_EQ(json["endValidityDate"], "2025-03-01T15:00:00Z");
  EXPECT_EQ(json["startDate"], "1970-01-01T00:00:01Z");
  EXPECT_EQ(json["totalPrice"].dump(), "0.1");
  EXPECT_EQ(json["currency"], "USD");
  EXPECT_EQ(json["currencyForPrice"], 0);
  EXPECT_EQ(json["blockoutDates"], Json::array({"2024-07-04T12:00:00Z"}));
  EXPECT_TRUE(json["apRenewalOptions"].is_null());
  EXPECT_EQ(json["renewableEntitlement"]["productInstanceID"], "AP-2");
  EXPECT_EQ(json["renewalType"], "Same");
  EXPECT_EQ(json["isSpecialPass"], true);
  EXPECT_EQ(json["productType"], 1);
  EXPECT_TRUE(json["admissionDays"].is_null());

  pass->setApRenewalOptions(std::vector<std::shared_ptr<VNLEntitlement>>{renewal});
  json = pass->toJson();
  ASSERT_TRUE(json["apRenewalOptions"].is_array());
  EXPECT_EQ(json["apRenewalOptions"][0]["productInstanceID"], "AP-2");
}

}  // namespace
}  // namespace varnel
