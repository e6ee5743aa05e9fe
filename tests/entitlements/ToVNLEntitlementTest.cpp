#include <gtest/gtest.h>

#include "EntitlementTestSupport.h"
#include "varnel/entitlements/ToVNLEntitlement.h"
#include "varnel/entitlements/VNLEntitlementAnnualPass.h"
#include "varnel/entitlements/VNLEntitlementParkTicket.h"

namespace varnel {
namespace {

using testing::entitlementRef;
using testing::EntitlementFixture;
using testing::withId;

const char* const kFile = "Classes/ENTMEntitlement+toVNLEntitlement";
const char* const kFunction = "toVNLEntitlement()";

class Conversion : public EntitlementFixture {};

TEST_F(Conversion, TheCategoryPicksTheClass) {
  const auto pass = toVNLEntitlement(withId("1", "AnnualPass"));
  EXPECT_NE(std::dynamic_pointer_cast<VNLEntitlementAnnualPass>(pass), nullptr);
  const auto ticket = toVNLEntitlement(withId("2", "ThemePark"));
  EXPECT_NE(std::dynamic_pointer_cast<VNLEntitlementParkTicket>(ticket), nullptr);
  const auto plain = toVNLEntitlement(withId("3"));
  EXPECT_EQ(typeid(*plain), typeid(VNLEntitlement));
  EXPECT_EQ(plain->productInstanceID(), "3");
  EXPECT_TRUE(log->lines().empty());
}

TEST_F(Conversion, AnUnknownCategoryIsLoggedAndConvertedAsAPlainEntitlement) {
  for (const char* category : {"annualpass", "TheaterTicket", ""}) {
    log->clear();
    const auto entitlement = toVNLEntitlement(withId("1", category));
    EXPECT_EQ(typeid(*entitlement), typeid(VNLEntitlement)) << category;
    EXPECT_EQ(entitlement->categoryID(), category);
    const auto lines = log->lines();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_FALSE(lines[0].isError);
    EXPECT_EQ(lines[0].message, std::string("categoryID: ") + category + " not recognized");
    EXPECT_EQ(lines[0].site.file, kFile);
    EXPECT_EQ(lines[0].site.function, kFunction);
    EXPECT_EQ(lines[0].site.line, 40);
  }
}

TEST_F(Conversion, RenewalOptionsAreAnnualPassesOneLevelDeep) {
  ENTMEntitlement nestedOption = withId("N-1", "AnnualPass");
  ENTMEntitlement themeParkOption = withId("O-2", "ThemePark");
  themeParkOption.apRenewalOptions = ENTMAnyList{entitlementRef(nestedOption)};
  ENTMEntitlement source = withId("AP-1", "AnnualPass");
  source.apRenewalOptions =
      ENTMAnyList{entitlementRef(withId("O-1", "AnnualPass")), entitlementRef(themeParkOption),
                  entitlementRef(withId("O-3"))};

  const auto pass = toVNLEntitlement(source);
  ASSERT_TRUE(pass->apRenewalOptions().has_value());
  const auto& options = *pass->apRenewalOptions();
  ASSERT_EQ(options.size(), 3u);
  const char* ids[] = {"O-1", "O-2", "O-3"};
  for (std::size_t i = 0; i < options.size(); ++i) {
    EXPECT_EQ(typeid(*options[i]), typeid(VNLEntitlementAnnualPass));
    EXPECT_EQ(options[i]->productInstanceID(), ids[i]);
    EXPECT_FALSE(options[i]->apRenewalOptions().has_value());
  }
  ASSERT_EQ(log->lines().size(), 1u);
  EXPECT_EQ(log->lines()[0].message, "Varnel entitlement instance with id AP-1 has 3 nested renewal options");
  EXPECT_EQ(log->lines()[0].site.line, 53);
  EXPECT_EQ(log->lines()[0].site.file, kFile);
}

TEST_F(Conversion, RenewalOptionsOfTheWrongTypeAreIgnoredAndAnEmptyListIsKept) {
  ENTMEntitlement source = withId("AP-1", "AnnualPass");
  source.apRenewalOptions = ENTMAnyList{entitlementRef(withId("O-1")), Json("not an entitlement")};
  EXPECT_FALSE(toVNLEntitlement(source)->apRenewalOptions().has_value());
  EXPECT_TRUE(log->lines().empty());

  source.apRenewalOptions = ENTMAnyList{};
  const auto pass = toVNLEntitlement(source);
  ASSERT_TRUE(pass->apRenewalOptions().has_value());
  EXPECT_TRUE(pass->apRenewalOptions()->empty());
  EXPECT_EQ(log->count("Varnel entitlement instance with id AP-1 has 0 nested renewal options"), 1u);
}

TEST_F(Conversion, TheDefaultRenewalIsFullyConvertedByItsCategory) {
  ENTMEntitlement source = withId("AP-1", "AnnualPass");
  source.isRenewable = true;
  source.defaultRenewableProductId = "O-2";
  source.apRenewalOptions = ENTMAnyList{entitlementRef(withId("O-1", "AnnualPass")),
                                        entitlementRef(withId("O-2", "ThemePark")),
                                        entitlementRef(withId("O-2", "AnnualPass"))};

  const auto pass = std::dynamic_pointer_cast<VNLEntitlementAnnualPass>(toVNLEntitlement(source));
  ASSERT_NE(pass, nullptr);
  // The first match, converted by its own category; the option list holds it as an annual pass.
  EXPECT_EQ(typeid(*pass->renewableEntitlement()), typeid(VNLEntitlementParkTicket));
  EXPECT_EQ(pass->renewableEntitlement()->productInstanceID(), "O-2");
  EXPECT_EQ(typeid(*(*pass->apRenewalOptions())[1]), typeid(VNLEntitlementAnnualPass));
  EXPECT_FALSE(pass->isSunsetPass());

  source.defaultRenewableProductId = "o-2";
  const auto noMatch = std::dynamic_pointer_cast<VNLEntitlementAnnualPass>(toVNLEntitlement(source));
  EXPECT_EQ(noMatch->renewableEntitlement(), nullptr);

  source.defaultRenewableProductId.reset();
  const auto sunset = std::dynamic_pointer_cast<VNLEntitlementAnnualPass>(toVNLEntitlement(source));
  EXPECT_EQ(sunset->renewableEntitlement(), nullptr);
  EXPECT_TRUE(sunset->isSunsetPass());
}

TEST_F(Conversion, ARenewalChainThatComesBackEndsInsteadOfLooping) {
  auto first = std::make_shared<ENTMEntitlement>(withId("AP-1", "AnnualPass"));
  auto second = std::make_shared<ENTMEntitlement>(withId("AP-2", "AnnualPass"));
  first->defaultRenewableProductId = "AP-2";
  first->apRenewalOptions = ENTMAnyList{ENTMEntitlementRef(second)};
  second->defaultRenewableProductId = "AP-1";
  second->apRenewalOptions = ENTMAnyList{ENTMEntitlementRef(first)};

  const auto pass = std::dynamic_pointer_cast<VNLEntitlementAnnualPass>(toVNLEntitlement(*first));
  const auto renewal = std::dynamic_pointer_cast<VNLEntitlementAnnualPass>(pass->renewableEntitlement());
  ASSERT_NE(renewal, nullptr);
  EXPECT_EQ(renewal->productInstanceID(), "AP-2");
  const auto back = std::dynamic_pointer_cast<VNLEntitlementAnnualPass>(renewal->renewableEntitlement());
  ASSERT_NE(back, nullptr);
  EXPECT_EQ(back->productInstanceID(), "AP-1");
  EXPECT_EQ(back->renewableEntitlement(), nullptr);

  // Break the reference cycle of the test data.
  second->apRenewalOptions.reset();
}

}  // namespace
}  // namespace varnel
