#include <gtest/gtest.h>

#include "EntitlementTestSupport.h"
#include "varnel/entitlements/ToVNLEntitlement.h"
#include "varnel/entitlements/VNLEntitlementAnnualPass.h"
#include "varnel/entitlements/VNLEntitlementParkTicket.h"

namespace varnel {
namespace {

using namespace testing;

const std::string kSite = "Classes/ENTMEntitlement+toVNLEntitlement toVNLEntitlement():";

class Conversion : public EntitlementFixture {};

TEST_F(Conversion, TheCategoryPicksTheClassAndAnUnknownOneIsLoggedAndGivesAPlainEntitlement) {
  const auto pass = toVNLEntitlement(withId("1", "AnnualPass"));
  const auto ticket = toVNLEntitlement(withId("2", "ThemePark"));
  const auto plain = toVNLEntitlement(withId("3"));
  EXPECT_EQ(typeid(*pass), typeid(VNLEntitlementAnnualPass));
  EXPECT_EQ(typeid(*ticket), typeid(VNLEntitlementParkTicket));
  EXPECT_EQ(typeid(*plain), typeid(VNLEntitlement));
  EXPECT_TRUE(log->lines().empty());
  for (const std::string category : {"annualpass", "TheaterTicket", ""}) {
    const auto unknown = toVNLEntitlement(withId("4", category));
    EXPECT_EQ(typeid(*unknown), typeid(VNLEntitlement));
    EXPECT_EQ(unknown->categoryID(), category);
    const auto line = log->lines().back();
    EXPECT_FALSE(line.isError);
    EXPECT_EQ(line.message, "categoryID: " + category + " not recognized");
    EXPECT_EQ(siteOf(line), kSite + "40");
  }
  EXPECT_EQ(log->lines().size(), 3u);
}

TEST_F(Conversion, RenewalOptionsAreAnnualPassesOneLevelDeep) {
  const auto pass = toVNLEntitlement(entry(R"({"productInstanceId": "AP-1", "categoryId": "AnnualPass",
      "apRenewalOptions": [{"productInstanceId": "O-1", "categoryId": "AnnualPass"},
                           {"productInstanceId": "O-2", "categoryId": "ThemePark",
                            "apRenewalOptions": [{"productInstanceId": "N-1", "categoryId": "AnnualPass"}]},
                           {"productInstanceId": "O-3"}]})"));
  ASSERT_TRUE(pass->apRenewalOptions().has_value());
  EXPECT_EQ(idsOf(*pass->apRenewalOptions()), (Ids{"O-1", "O-2", "O-3"}));
  for (const auto& option : *pass->apRenewalOptions()) {
    EXPECT_EQ(typeid(*option), typeid(VNLEntitlementAnnualPass));
    EXPECT_FALSE(option->apRenewalOptions().has_value()) << option->productInstanceID();
  }
  ASSERT_EQ(log->lines().size(), 1u);
  EXPECT_EQ(log->lines()[0].message, "Varnel entitlement instance with id AP-1 has 3 nested renewal options");
  EXPECT_EQ(siteOf(log->lines()[0]), kSite + "53");
}

TEST_F(Conversion, RenewalOptionsOfTheWrongTypeAreIgnoredAndAnEmptyListIsKept) {
  ENTMEntitlement source = withId("AP-1", "AnnualPass");
  source.apRenewalOptions = ENTMAnyList{ref(withId("O-1")), Json("not an entitlement")};
  EXPECT_FALSE(toVNLEntitlement(source)->apRenewalOptions().has_value());
  EXPECT_TRUE(log->lines().empty());

  source.apRenewalOptions = ENTMAnyList{};
  const auto pass = toVNLEntitlement(source);
  ASSERT_TRUE(pass->apRenewalOptions().has_value());
  EXPECT_TRUE(pass->apRenewalOptions()->empty());
  EXPECT_EQ(log->count("Varnel entitlement instance with id AP-1 has 0 nested renewal options"), 1u);
}

TEST_F(Conversion, TheDefaultRenewalIsTheFirstMatchConvertedByItsOwnCategory) {
  ENTMEntitlement source = entry(R"({"productInstanceId": "AP-1", "categoryId": "AnnualPass",
      "defaultRenewableProductId": "O-2", "apRenewalOptions": [{"productInstanceId": "O-1", "categoryId": "AnnualPass"},
          {"productInstanceId": "O-2", "categoryId": "ThemePark"},
          {"productInstanceId": "O-2", "categoryId": "AnnualPass"}]})");
  const auto pass = std::dynamic_pointer_cast<VNLEntitlementAnnualPass>(toVNLEntitlement(source));
  ASSERT_NE(pass, nullptr);
  EXPECT_EQ(typeid(*pass->renewableEntitlement()), typeid(VNLEntitlementParkTicket)) << "the first O-2, as a ticket";
  EXPECT_EQ(typeid(*(*pass->apRenewalOptions())[1]), typeid(VNLEntitlementAnnualPass));

  source.defaultRenewableProductId = "o-2";
  const auto noMatch = std::dynamic_pointer_cast<VNLEntitlementAnnualPass>(toVNLEntitlement(source));
  EXPECT_EQ(noMatch->renewableEntitlement(), nullptr) << "the identifier must match exactly";
}

TEST_F(Conversion, ARenewalChainThatComesBackEndsInsteadOfLooping) {
  auto first = std::make_shared<ENTMEntitlement>(withId("AP-1", "AnnualPass"));
  auto second = std::make_shared<ENTMEntitlement>(withId("AP-2", "AnnualPass"));
  first->defaultRenewableProductId = "AP-2";
  first->apRenewalOptions = ENTMAnyList{ENTMEntitlementRef(second)};
  second->defaultRenewableProductId = "AP-1";
  second->apRenewalOptions = ENTMAnyList{ENTMEntitlementRef(first)};

  Json json = toVNLEntitlement(*first)->toJson();
  second->apRenewalOptions.reset();  // breaks the test data's reference cycle
  EXPECT_EQ(json["renewableEntitlement"]["productInstanceID"], "AP-2");
  EXPECT_EQ(json["renewableEntitlement"]["renewableEntitlement"]["productInstanceID"], "AP-1");
  EXPECT_TRUE(json["renewableEntitlement"]["renewableEntitlement"]["renewableEntitlement"].is_null());
}

}  // namespace
}  // namespace varnel
