#include <ctime>

#include <gtest/gtest.h>

#include "ScriptedEntitlementsManager.h"
#include "support/Fakes.h"
#include "varnel/dates/VNLDateUtility.h"
#include "varnel/entitlements/VNLVarnel.h"
#include "varnel/host/Registry.h"

namespace varnel {
namespace {

using Component = VNLDateUtility::CalendarComponent;

class CountRecorder final : public VNLRenewableEntitlementsCountDelegate {
 public:
  void expiredPassesChangedWithCount(std::int64_t count) override { counts.push_back(count); }
  std::vector<std::int64_t> counts;
};

ENTMEntitlementRef pass(std::string id, bool renewable, std::optional<Date> expiration) {
  auto entitlement = std::make_shared<ENTMEntitlement>();
  entitlement->productInstanceId = std::move(id);
  entitlement->categoryId = "AnnualPass";
  entitlement->isRenewable = renewable;
  entitlement->passExpirationDate = expiration;
  return entitlement;
}

std::vector<std::string> ids(const VNLVarnel::Entitlements& entitlements) {
  std::vector<std::string> result;
  for (const auto& entitlement : entitlements) result.push_back(entitlement->productInstanceID());
  return result;
}

std::tm localParts(Date date) {
  const auto seconds = static_cast<std::time_t>(date.timeIntervalSince1970);
  std::tm parts{};
  localtime_r(&seconds, &parts);
  return parts;
}

constexpr Date kMarch = Date::fromTimeIntervalSince1970(1930176000);  // 2031-03-01
constexpr Date kJune = Date::fromTimeIntervalSince1970(1938038400);   // 2031-06-01

class VNLVarnelTest : public testing::HostFixture {
 protected:
  void SetUp() override {
    HostFixture::SetUp();
    host::Registry::set<ENTMEntitlementsManager>(manager);
  }
  std::shared_ptr<testing::ScriptedEntitlementsManager> manager =
      std::make_shared<testing::ScriptedEntitlementsManager>();
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
    EXPECT_EQ(localParts(date).tm_hour, 0) << "the hour is dropped";
    EXPECT_EQ(localParts(date).tm_year, localParts(before).tm_year + years);
  }
  for (std::size_t i = 0; i < mocked.size(); ++i) EXPECT_EQ(mocked[i]->entitlementRenewable(), i == 4) << i;
  EXPECT_TRUE(manager->persistedTypes.empty()) << "the mock list never reads the store";

  ASSERT_EQ(varnel.renewableEntitlements().size(), 1u);
  EXPECT_TRUE(varnel.anyAPAbleToBeRenewed());
  EXPECT_EQ(varnel.firstRenewalDate(), varnel.renewableEntitlements().front()->endValidityDate());
  auto recorder = std::make_shared<CountRecorder>();
  varnel.setDelegate(recorder);
  EXPECT_EQ(recorder->counts, (std::vector<std::int64_t>{1}));
}

TEST_F(VNLVarnelTest, DelegateIsToldTheCountOnlyWhenAssigned) {
  auto recorder = std::make_shared<CountRecorder>();
  varnel.setDelegate(recorder);
  manager->persisted = ENTMAnyList{pass("AP-1", true, kJune), pass("AP-2", true, kMarch), pass("AP-3", false, kMarch)};
  varnel.renewableEntitlements();
  varnel.setDelegate(nullptr);
  varnel.setDelegate(recorder);
  EXPECT_EQ(recorder->counts, (std::vector<std::int64_t>{0, 2})) << "queries and a null delegate tell nobody";
  EXPECT_EQ(varnel.delegate(), recorder);
}

TEST_F(VNLVarnelTest, RenewalsComeFromTheStoreAndTheFirstIsTheEarliestEnding) {
  manager->persisted = ENTMAnyList{pass("JUNE", true, kJune), pass("NOT", false, Date::fromTimeIntervalSince1970(5)),
                                   pass("MARCH", true, kMarch)};
  EXPECT_EQ(ids(varnel.allEntitlements()), (std::vector<std::string>{"JUNE", "NOT", "MARCH"}));
  EXPECT_EQ(ids(varnel.renewableEntitlements()), (std::vector<std::string>{"JUNE", "MARCH"}));
  EXPECT_EQ(varnel.firstRenewableEntitlement()->productInstanceID(), "MARCH");
  EXPECT_EQ(varnel.firstRenewalDate(), kMarch);
  EXPECT_EQ(static_cast<int>(manager->persistedTypes.front()), 7);

  // Agrees with the ascending order of the converted list; no expiration is
  // the unknown-date marker, earliest of all. Nothing is cached.
  manager->persisted->push_back(pass("UNDATED", true, std::nullopt));
  const auto ascending = varnel.sortedByDateDescending(varnel.renewableEntitlements());
  EXPECT_EQ(ids(ascending), (std::vector<std::string>{"UNDATED", "MARCH", "JUNE"})) << "earliest first";
  EXPECT_EQ(varnel.firstRenewableEntitlement()->productInstanceID(), "UNDATED");
  EXPECT_EQ(varnel.firstRenewalDate(), Date::unknownMarker());
}

TEST_F(VNLVarnelTest, NoStoreNoManagerOrAMistypedStoreReadAsEmpty) {
  auto checkEmpty = [&](const char* situation) {
    EXPECT_TRUE(varnel.allEntitlements().empty()) << situation;
    EXPECT_FALSE(varnel.anyAPAbleToBeRenewed()) << situation;
    EXPECT_FALSE(varnel.firstRenewableEntitlement()) << situation;
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
