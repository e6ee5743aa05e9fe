#include <ctime>

#include <gtest/gtest.h>

#include "EntitlementTestSupport.h"
#include "varnel/dates/VNLDateUtility.h"
#include "varnel/entitlements/VNLVarnel.h"

namespace varnel {
namespace {

using namespace testing;
using Component = VNLDateUtility::CalendarComponent;

class CountRecorder final : public VNLRenewableEntitlementsCountDelegate {
 public:
  void expiredPassesChangedWithCount(std::int64_t count) override { counts.push_back(count); }
  std::vector<std::int64_t> counts;
};

ENTMEntitlementRef pass(std::string id, bool renewable, std::optional<Date> expiration) {
  return ref(with([&](auto& entitlement) {
    entitlement.productInstanceId = id;
    entitlement.categoryId = "AnnualPass";
    entitlement.isRenewable = renewable;
    entitlement.passExpirationDate = expiration;
  }));
}

constexpr Date kMarch = Date::fromTimeIntervalSince1970(1930176000);  // 2031-03-01
constexpr Date kJune = Date::fromTimeIntervalSince1970(1938038400);   // 2031-06-01

class VNLVarnelTest : public EntitlementFixture {
 protected:
  VNLVarnel varnel;
};

TEST_F(VNLVarnelTest, MockListIsBuiltFromDateOffsetsInTheOrderCABEDF) {
  varnel.setIsDataMockedEnable(true);
  const Date before = Date::now();
  const auto mocked = varnel.allEntitlements();
  const Date after = Date::now();
  ASSERT_EQ(mocked.size(), 6u);
  const Date marker = Date::unknownMarker();
  const Date b = VNLDateUtility::dateFromOffset(marker, Component::day, 1);
  EXPECT_EQ(mocked[0]->endValidityDate(), VNLDateUtility::dateFromOffset(b, Component::day, -1));  // C
  EXPECT_EQ(mocked[1]->endValidityDate(), marker);                                                // A
  EXPECT_EQ(mocked[2]->endValidityDate(), b);                                                     // B
  EXPECT_EQ(mocked[3]->endValidityDate(), marker);                                                // E
  for (auto [index, years] : {std::pair{4, 1}, std::pair{5, 3}}) {                                // D, F
    const Date date = mocked[index]->endValidityDate();
    EXPECT_TRUE(date == VNLDateUtility::dateFromOffset(before, Component::year, years) ||
                date == VNLDateUtility::dateFromOffset(after, Component::year, years));
    const auto seconds = static_cast<std::time_t>(date.timeIntervalSince1970);
    std::tm local{};
    EXPECT_EQ(localtime_r(&seconds, &local)->tm_hour, 0) << "the hour is dropped";
  }
  for (std::size_t i = 0; i < mocked.size(); ++i) EXPECT_EQ(mocked[i]->entitlementRenewable(), i == 4) << i;

  ASSERT_EQ(varnel.renewableEntitlements().size(), 1u);
  EXPECT_TRUE(varnel.anyAPAbleToBeRenewed());
  EXPECT_EQ(varnel.firstRenewalDate(), varnel.renewableEntitlements().front()->endValidityDate());
  auto recorder = std::make_shared<CountRecorder>();
  varnel.setDelegate(recorder);
  EXPECT_EQ(recorder->counts, (std::vector<std::int64_t>{1}));
}

TEST_F(VNLVarnelTest, RenewalsComeFromTheStoreAndTheDelegateIsToldTheirCountOnlyWhenAssigned) {
  auto recorder = std::make_shared<CountRecorder>();
  varnel.setDelegate(recorder);
  manager->persisted = ENTMAnyList{pass("JUNE", true, kJune), pass("NOT", false, Date::fromTimeIntervalSince1970(5)),
                                   pass("MARCH", true, kMarch)};
  EXPECT_EQ(idsOf(varnel.allEntitlements()), (Ids{"JUNE", "NOT", "MARCH"}));
  EXPECT_EQ(idsOf(varnel.renewableEntitlements()), (Ids{"JUNE", "MARCH"}));
  EXPECT_EQ(varnel.firstRenewableEntitlement()->productInstanceID(), "MARCH");
  EXPECT_EQ(varnel.firstRenewalDate(), kMarch);
  varnel.setDelegate(nullptr);
  varnel.setDelegate(recorder);
  EXPECT_EQ(recorder->counts, (std::vector<std::int64_t>{0, 2})) << "queries and a null delegate tell nobody";

  // No expiration is the unknown-date marker, earliest of all; nothing is cached.
  manager->persisted->push_back(pass("UNDATED", true, std::nullopt));
  EXPECT_EQ(idsOf(varnel.sortedByDateDescending(varnel.renewableEntitlements())), (Ids{"UNDATED", "MARCH", "JUNE"}))
      << "earliest first, whatever the name says";
  EXPECT_EQ(varnel.firstRenewableEntitlement()->productInstanceID(), "UNDATED");
  EXPECT_EQ(varnel.firstRenewalDate(), Date::unknownMarker());
}

TEST_F(VNLVarnelTest, EveryStoreQueryConvertsTheWholeStoreInOrder) {
  manager->persisted = ENTMAnyList{ref(with([](auto& entitlement) {
                                     entitlement.productInstanceId = "AP-1";
                                     entitlement.categoryId = "AnnualPass";
                                     entitlement.isRenewable = true;
                                     entitlement.defaultRenewableProductId = "RN-1";
                                     entitlement.apRenewalOptions = ENTMAnyList{ref(withId("RN-1", "AnnualPass"))};
                                   })),
                                   ref(withId("DP-1", "DiningPlan"))};
  const Ids conversionLines{"Varnel entitlement instance with id AP-1 has 1 nested renewal options",
                            "categoryID: DiningPlan not recognized"};
  log->clear();
  EXPECT_EQ(idsOf(varnel.renewableEntitlements()), (Ids{"AP-1"}));
  EXPECT_EQ(log->messages(), conversionLines) << "the entitlement that is not renewable is converted as well";
  log->clear();
  EXPECT_EQ(varnel.firstRenewalDate(), Date::unknownMarker());
  EXPECT_EQ(log->messages(), conversionLines);
}

TEST_F(VNLVarnelTest, NoStoreNoManagerOrAMistypedStoreReadAsEmpty) {
  auto checkEmpty = [&](const char* situation) {
    EXPECT_TRUE(varnel.allEntitlements().empty()) << situation;
    EXPECT_FALSE(varnel.anyAPAbleToBeRenewed() || varnel.firstRenewableEntitlement()) << situation;
    EXPECT_EQ(varnel.firstRenewalDate(), Date::unknownMarker()) << situation;
  };
  checkEmpty("absent store");
  manager->persisted = ENTMAnyList{pass("AP-1", true, kJune), Json("stray")};
  checkEmpty("mistyped store");
  host::Registry::set<ENTMEntitlementsManager>(nullptr);
  checkEmpty("no manager");
}

}  // namespace
}  // namespace varnel
