#include <gtest/gtest.h>

#include <cmath>

#include "EntitlementTestSupport.h"
#include "varnel/entitlements/AnnualPassListOperations.h"
#include "varnel/entitlements/VNLEntitlementParkTicket.h"
#include "varnel/entitlements/ToVNLEntitlement.h"
#include "varnel/entitlements/VNLEntitlementTheaterTicket.h"

namespace varnel {
namespace {

using namespace testing;

const ENTMAffiliation kAllGuests{"STD_GST", 5};
const ENTMAffiliation kResident{"FL_RES", 1};
const ENTMAffiliation kMember{"DVC", 3};
const ENTMAffiliation kCastMember{"CAST", 0};

std::shared_ptr<VNLEntitlementAnnualPass> pricedPass(std::string id, float price, bool sunset = false) {
  auto pass = std::make_shared<VNLEntitlementAnnualPass>();
  pass->setProductInstanceID(std::move(id));
  pass->setTotalPrice(price);
  pass->setIsSunsetPass(sunset);
  return pass;
}

using Affiliations = std::vector<ENTMAffiliation>;

class ParkTicket : public EntitlementFixture {};

TEST_F(ParkTicket, UpgradeOptionsAreAnnualPassesForTheTicketsOwnAffiliations) {
  const auto ticket = std::dynamic_pointer_cast<VNLEntitlementParkTicket>(toVNLEntitlement(entry(R"({
      "productInstanceId": "TK-1", "categoryId": "ThemePark", "totalPrice": 129, "state": "QZ",
      "affiliationInfo": [{"affiliationId": "STD_GST", "sortOrder": 5}, {"affiliationId": "FL_RES", "sortOrder": 1}],
      "apUpgradeOptions": {"STD_GST": [{"productInstanceId": "UP-1", "categoryId": "ThemePark"},
                                       {"productInstanceId": "UP-2"}],
                           "DVC": [{"productInstanceId": "UP-3", "categoryId": "AnnualPass"}]}})")));
  ASSERT_NE(ticket, nullptr);
  EXPECT_EQ(ticket->annualPayment(), 129.0f);
  EXPECT_EQ(ticket->stateProvince(), "QZ");
  EXPECT_EQ(ticket->affiliations(), (Affiliations{kAllGuests, kResident}));

  const auto options = ticket->upgradeOptionsForAffiliation(kAllGuests);
  ASSERT_TRUE(options.has_value());
  EXPECT_EQ(idsOf(*options), (Ids{"UP-1", "UP-2"}));
  EXPECT_EQ(typeid(*options->front()), typeid(VNLEntitlementAnnualPass));
  EXPECT_FALSE(ticket->upgradeOptionsForAffiliation(kMember)) << "not an affiliation of the ticket";
  EXPECT_FALSE(ticket->upgradeOptionsForAffiliation(kResident)) << "an affiliation without options";
  ticket->setPriceMonthly(52.5f);
  Json json = ticket->toJson();
  EXPECT_EQ(json["annualPassesUpgradeOptions"]["STD_GST"][1]["productInstanceID"], "UP-2");
  EXPECT_EQ(json["priceMonthly"], 52.5);
}

TEST_F(ParkTicket, EligibleAffiliationsPutAllGuestsFirstThenMatchesInOrderOfRank) {
  VNLEntitlementParkTicket ticket;
  ticket.setAffiliations({kMember, kAllGuests, kResident, kCastMember});
  EXPECT_EQ(ticket.eligibleAffiliations({kResident, kAllGuests, kMember}),
            (Affiliations{kResident, kMember, kAllGuests, kAllGuests}))
      << "all guests is eligible on its own, and twice when also asked for";
  EXPECT_EQ(ticket.eligibleAffiliations({}), Affiliations{kAllGuests});
  EXPECT_EQ(ticket.eligibleAffiliations({ENTMAffiliation{"DVC", 9}}), Affiliations{kAllGuests})
      << "an affiliation matches as a whole, not by its identifier";
  ticket.setAffiliations({kMember, kResident});
  EXPECT_TRUE(ticket.eligibleAffiliations({}).empty());
}

TEST_F(ParkTicket, TicketsFromJsonTakeOnlyValuesOfTheRightKind) {
  expectFields(VNLEntitlementParkTicket::initWithJsonData(R"({"totalPrice": 129.5, "tax": "6.5", "currency": "USD",
      "monthlyPaymentEligible": true, "discount": "10%", "assignedGuest": {"address": {"city": "Wrenfield"}},
      "priceMonthly": 9})"_json)
                   ->toJson(),
               R"({"totalPrice": 129.5, "annualPayment": 129.5, "tax": 0, "isMonthlyPaymentEligible": true,
                   "savingPercentage": "10%", "city": "Wrenfield", "productType": 2, "priceMonthly": 0})"_json);
  expectFields(VNLEntitlementTheaterTicket::initWithJsonData({{"totalPrice", "80"}, {"currency", "CAD"}})->toJson(),
               R"({"totalPrice": 0, "currency": "CAD", "productType": 3})"_json);
}

TEST(PassLists, SortByPriceOrdersACopyWithUnpricedEntriesLastAndSunsetPassesCount) {
  const VNLAnnualPassList passes{pricedPass("mid", 500.0f, true), pricedPass("nan", std::nanf("")), nullptr,
                                 pricedPass("low", 99.0f, true), pricedPass("high", 1299.0f)};
  EXPECT_EQ(idsOf(sortByPrice(passes, true)), (Ids{"low", "mid", "high", "nan", "null"}));
  EXPECT_EQ(idsOf(sortByPrice(passes, false)), (Ids{"high", "mid", "low", "nan", "null"}));
  EXPECT_EQ(idsOf(passes), (Ids{"mid", "nan", "null", "low", "high"}));
  EXPECT_EQ(VNLSunsetPassUtility::sunsetPassCountOf(passes), 2);
  EXPECT_EQ(VNLSunsetPassUtility::sunsetPassCountOf(std::nullopt), 0);
}

}  // namespace
}  // namespace varnel
