#include <gtest/gtest.h>

#include <cmath>

#include "EntitlementTestSupport.h"
#include "varnel/entitlements/AnnualPassListOperations.h"
#include "varnel/entitlements/PassHolder.h"
#include "varnel/entitlements/ToVNLEntitlement.h"
#include "varnel/entitlements/VNLEntitlementTheaterTicket.h"

namespace varnel {
namespace {

using testing::entitlementRef;
using testing::EntitlementFixture;
using testing::withId;

const ENTMAffiliation kAllGuests{"STD_GST", 5};
const ENTMAffiliation kResident{"FL_RES", 1};
const ENTMAffiliation kMember{"DVC", 3};
const ENTMAffiliation kCastMember{"CAST", 0};

std::shared_ptr<VNLEntitlementAnnualPass> pricedPass(std::string id, float price) {
  auto pass = std::make_shared<VNLEntitlementAnnualPass>();
  pass->setProductInstanceID(std::move(id));
  pass->setTotalPrice(price);
  return pass;
}

std::vector<std::string> idsOf(const VNLAnnualPassList& passes) {
  std::vector<std::string> ids;
  for (const auto& pass : passes) ids.push_back(pass ? pass->productInstanceID() : "null");
  return ids;
}

std::vector<std::string> idsOf(const std::vector<ENTMAffiliation>& affiliations) {
  std::vector<std::string> ids;
  for (const auto& affiliation : affiliations) ids.push_back(affiliation.affiliationId);
  return ids;
}

class ParkTicket : public EntitlementFixture {};

TEST_F(ParkTicket, UpgradeOptionsAreAnnualPassesForTheTicketsAffiliations) {
  ENTMEntitlement source = withId("TK-1", "ThemePark");
  source.totalPrice = 129.0f;
  source.state = "FL";
  source.currency = "USD";
  source.affiliationInfo = std::vector<ENTMAffiliation>{kAllGuests, kResident};
  source.apUpgradeOptions = std::map<std::string, std::vector<ENTMEntitlementRef>>{
      {"STD_GST", {entitlementRef(withId("UP-1", "ThemePark")), entitlementRef(withId("UP-2"))}},
      {"DVC", {entitlementRef(withId("UP-3", "AnnualPass"))}},
  };

  const auto ticket = std::dynamic_pointer_cast<VNLEntitlementParkTicket>(toVNLEntitlement(source));
  ASSERT_NE(ticket, nullptr);
  EXPECT_EQ(ticket->annualPayment(), 129.0f);
  EXPECT_EQ(ticket->stateProvince(), "FL");
  EXPECT_EQ(ticket->affiliations(), (std::vector<ENTMAffiliation>{kAllGuests, kResident}));

  const auto allGuestOptions = ticket->upgradeOptionsForAffiliation(kAllGuests);
  ASSERT_TRUE(allGuestOptions.has_value());
  EXPECT_EQ(idsOf(*allGuestOptions), (std::vector<std::string>{"UP-1", "UP-2"}));
  EXPECT_EQ(typeid(*allGuestOptions->front()), typeid(VNLEntitlementAnnualPass));
  // Options of an affiliation the ticket does not carry, and affiliations without options, give none.
  EXPECT_FALSE(ticket->upgradeOptionsForAffiliation(kMember).has_value());
  EXPECT_FALSE(ticket->upgradeOptionsForAffiliation(kResident).has_value());
  EXPECT_FALSE(VNLEntitlementParkTicket().upgradeOptionsForAffiliation(kAllGuests).has_value());

  EXPECT_EQ(ticket->toJson()["annualPassesUpgradeOptions"]["STD_GST"][1]["productInstanceID"], "UP-2");
}

TEST_F(ParkTicket, EligibleAffiliationsPutAllGuestsFirstThenMatchesInOrderOfRank) {
  VNLEntitlementParkTicket ticket;
  ticket.setAffiliations({kMember, kAllGuests, kResident, kCastMember});

  // The all-guests affiliation is eligible on its own, and twice when also asked for.
  EXPECT_EQ(idsOf(ticket.eligibleAffiliations({kResident, kAllGuests, kMember})),
            (std::vector<std::string>{"FL_RES", "DVC", "STD_GST", "STD_GST"}));
  EXPECT_EQ(idsOf(ticket.eligibleAffiliations({})), (std::vector<std::string>{"STD_GST"}));
  // Equality is of the whole affiliation, not only its identifier.
  EXPECT_EQ(idsOf(ticket.eligibleAffiliations({ENTMAffiliation{"DVC", 9}})), (std::vector<std::string>{"STD_GST"}));

  ticket.setAffiliations({kMember, kResident});
  EXPECT_TRUE(ticket.eligibleAffiliations({}).empty());
  EXPECT_TRUE(VNLEntitlementParkTicket().eligibleAffiliations({kAllGuests}).empty());
}

TEST_F(ParkTicket, TicketJsonFillsPricePaymentAndLocation) {
  const Json json = {{"totalPrice", 129.5},  {"pricePerMonth", 11},       {"tax", "6.5"},
                     {"currency", "USD"},    {"monthlyPaymentEligible", true}, {"discount", "10%"},
                     {"assignedGuest", {{"address", {{"city", "Orlando"}}}}}};
  const auto ticket = VNLEntitlementParkTicket::initWithJsonData(json);
  EXPECT_EQ(ticket->totalPrice(), 129.5f);
  EXPECT_EQ(ticket->annualPayment(), 129.5f);
  EXPECT_EQ(ticket->pricePerMonth(), 11.0f);
  EXPECT_EQ(ticket->tax(), 0.0f);  // not a number
  EXPECT_TRUE(ticket->monthlyPaymentEligible());
  EXPECT_TRUE(ticket->isMonthlyPaymentEligible());
  EXPECT_EQ(ticket->savingPercentage(), "10%");
  EXPECT_EQ(ticket->city(), "Orlando");
  EXPECT_EQ(ticket->productType(), VNLEntitlement::Type::parkTicket);

  const auto theater = VNLEntitlementTheaterTicket::initWithJsonData({{"totalPrice", 80}, {"currency", "CAD"}});
  EXPECT_EQ(theater->totalPrice(), 80.0f);
  EXPECT_EQ(theater->currency(), "CAD");
  EXPECT_EQ(theater->toJson()["productType"], 3);
}

TEST(PassLists, SortByPriceOrdersACopyAndPutsUnpricedEntriesLast) {
  const VNLAnnualPassList passes{pricedPass("mid", 500.0f), pricedPass("nan", std::nanf("")), nullptr,
                                 pricedPass("low", 99.0f), pricedPass("high", 1299.0f)};
  EXPECT_EQ(idsOf(sortByPrice(passes, true)), (std::vector<std::string>{"low", "mid", "high", "nan", "null"}));
  EXPECT_EQ(idsOf(sortByPrice(passes, false)), (std::vector<std::string>{"high", "mid", "low", "nan", "null"}));
  EXPECT_EQ(idsOf(passes), (std::vector<std::string>{"mid", "nan", "null", "low", "high"}));
  EXPECT_TRUE(sortByPrice({}, true).empty());
}

TEST(PassLists, SunsetCountCountsSunsetPassesOfAPresentList) {
  auto sunset = pricedPass("a", 1.0f);
  sunset->setIsSunsetPass(true);
  EXPECT_EQ(VNLSunsetPassUtility::sunsetPassCountOf(std::nullopt), 0);
  EXPECT_EQ(VNLSunsetPassUtility::sunsetPassCountOf(VNLAnnualPassList{}), 0);
  EXPECT_EQ(VNLSunsetPassUtility::sunsetPassCountOf(VNLAnnualPassList{sunset, pricedPass("b", 1.0f), nullptr, sunset}),
            2);
}

TEST(PassLists, PassHolderResetRestoresThePreselectedPass) {
  const auto preselected = pricedPass("pre", 1.0f);
  PassHolder holder(preselected);
  EXPECT_EQ(holder.ticketToUpgrade(), nullptr);
  EXPECT_EQ(holder.passToPurchase(), preselected);
  holder.setPassToPurchase(pricedPass("other", 2.0f));
  holder.reset();
  EXPECT_EQ(holder.passToPurchase(), preselected);

  const auto ticket = std::make_shared<VNLEntitlementParkTicket>();
  EXPECT_EQ(PassHolder(ticket, preselected).ticketToUpgrade(), ticket);
  EXPECT_EQ(PassHolder::RenewalType::upgrade, "Upgrade");
}

}  // namespace
}  // namespace varnel
