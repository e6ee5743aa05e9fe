#include <ctime>

#include <gtest/gtest.h>

#include "ScriptedEntitlementsManager.h"
#include "support/Fakes.h"
#include "varnel/dates/VNLDateUtility.h"
#include "varnel/entitlements/VNLVarnel.h"
#include "varnel/host/Registry.h"
#include "varnel/host/ResourceBundle.h"

namespace varnel {
namespace {

using testing::ScriptedEntitlementsManager;
using Component = VNLDateUtility::CalendarComponent;

class CountRecorder final : public VNLRenewableEntitlementsCountDelegate {
 public:
  void expiredPassesChangedWithCount(std::int64_t count) override { counts.push_back(count); }
  std::vector<std::int64_t> counts;
};

ENTMEntitlementRef pass(std::string id, bool renewable, Date expiration) {
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

// 2031-03-01 and 2031-06-01, 00:00 UTC.
constexpr Date kMarch = Date::fromTimeIntervalSince1970(1930176000);
constexpr Date kJune = Date::fromTimeIntervalSince1970(1938038400);

class VNLVarnelTest : public testing::HostFixture {
 protected:
  void SetUp() override {
    HostFixture::SetUp();
    manager = std::make_shared<ScriptedEntitlementsManager>();
    host::Registry::set<ENTMEntitlementsManager>(manager);
  }
  std::shared_ptr<ScriptedEntitlementsManager> manager;
  VNLVarnel varnel;
};

TEST_F(VNLVarnelTest, MockListIsBuiltFromDateOffsetsAndOrderedCABEDF) {
  varnel.setIsDataMockedEnable(true);
  const Date before = Date::now();
  const auto mocked = varnel.allEntitlements();
  const Date after = Date::now();

  ASSERT_EQ(mocked.size(), 6u);
  const Date marker = Date::unknownMarker();
  const Date bDate = VNLDateUtility::dateFromOffset(marker, Component::day, 1);
  EXPECT_EQ(mocked[0]->endValidityDate(), VNLDateUtility::dateFromOffset(bDate, Component::day, -1));  // C
  EXPECT_EQ(mocked[1]->endValidityDate(), marker);                                                    // A
  EXPECT_EQ(mocked[2]->endValidityDate(), bDate);                                                     // B
  EXPECT_EQ(mocked[3]->endValidityDate(), marker);                                                    // E

  // D and F: from now, with the hour (and seconds) dropped in the local calendar.
  auto oneOf = [](Date actual, Date first, Date second) { return actual == first || actual == second; };
  EXPECT_TRUE(oneOf(mocked[4]->endValidityDate(), VNLDateUtility::dateFromOffset(before, Component::year, 1),
                    VNLDateUtility::dateFromOffset(after, Component::year, 1)));
  EXPECT_TRUE(oneOf(mocked[5]->endValidityDate(), VNLDateUtility::dateFromOffset(before, Component::year, 3),
                    VNLDateUtility::dateFromOffset(after, Component::year, 3)));
  const std::tm d = localParts(mocked[4]->endValidityDate());
  EXPECT_EQ(d.tm_hour, 0);
  EXPECT_EQ(d.tm_sec, 0);
  EXPECT_GE(d.tm_year, localParts(before).tm_year + 1);
  EXPECT_EQ(localParts(mocked[5]->endValidityDate()).tm_year, d.tm_year + 2);

  for (std::size_t i = 0; i < mocked.size(); ++i) EXPECT_EQ(mocked[i]->entitlementRenewable(), i == 4) << i;
  for (const auto& entitlement : mocked) {
    EXPECT_EQ(typeid(*entitlement), typeid(VNLEntitlement)) << "plain entitlements only";
    EXPECT_EQ(entitlement->currency(), "USD");
  }
  EXPECT_TRUE(manager->requestedTypes.empty()) << "the mock list never reads the store";
}

TEST_F(VNLVarnelTest, WithMockingExactlyOneIsRenewableAndItSetsTheFirstRenewal) {
  varnel.setIsDataMockedEnable(true);
  const auto renewable = varnel.renewableEntitlements();
  ASSERT_EQ(renewable.size(), 1u);
  EXPECT_TRUE(varnel.anyAPAbleToBeRenewed());
  EXPECT_EQ(varnel.firstRenewalDate(), renewable.front()->endValidityDate());
  EXPECT_GT(varnel.firstRenewalDate(), Date::now());

  auto recorder = std::make_shared<CountRecorder>();
  varnel.setDelegate(recorder);
  EXPECT_EQ(recorder->counts, (std::vector<std::int64_t>{1}));
}

TEST_F(VNLVarnelTest, DelegateIsToldOnlyWhenAssigned) {
  auto recorder = std::make_shared<CountRecorder>();
  varnel.setDelegate(recorder);
  EXPECT_EQ(recorder->counts, (std::vector<std::int64_t>{0})) << "nothing renewable: told 0";

  manager->persisted = ENTMAnyList{pass("AP-1", true, kJune), pass("AP-2", true, kMarch), pass("AP-3", false, kMarch)};
  varnel.renewableEntitlements();
  EXPECT_EQ(recorder->counts.size(), 1u) << "queries do not notify";

  varnel.setDelegate(nullptr);
  EXPECT_EQ(recorder->counts.size(), 1u) << "assigning none tells nobody";
  EXPECT_FALSE(varnel.delegate());

  varnel.setDelegate(recorder);
  EXPECT_EQ(recorder->counts, (std::vector<std::int64_t>{0, 2}));
  EXPECT_EQ(varnel.delegate(), recorder) << "held strongly";
}

TEST_F(VNLVarnelTest, RenewalsComeFromThePersistedStoreSoonestFirst) {
  manager->persisted = ENTMAnyList{pass("JUNE", true, kJune), pass("NOT", false, Date::fromTimeIntervalSince1970(5)),
                                   pass("MARCH", true, kMarch)};

  EXPECT_EQ(ids(varnel.allEntitlements()), (std::vector<std::string>{"JUNE", "NOT", "MARCH"}));
  EXPECT_EQ(ids(varnel.renewableEntitlements()), (std::vector<std::string>{"JUNE", "MARCH"})) << "store order kept";
  ASSERT_TRUE(varnel.firstRenewableEntitlement());
  EXPECT_EQ(varnel.firstRenewableEntitlement()->productInstanceID(), "MARCH");
  EXPECT_EQ(varnel.firstRenewalDate(), kMarch);
  EXPECT_TRUE(varnel.anyAPAbleToBeRenewed());
  ASSERT_FALSE(manager->requestedTypes.empty());
  EXPECT_EQ(static_cast<int>(manager->requestedTypes.front()), 7);

  // The first renewal agrees with the ascending order of the converted list,
  // an entitlement without an expiration (the unknown-date marker) first.
  auto undated = std::make_shared<ENTMEntitlement>(*pass("UNDATED", true, kJune));
  undated->passExpirationDate.reset();
  manager->persisted->push_back(ENTMEntitlementRef(undated));
  manager->persisted->push_back(pass("EARLIER-NOT-RENEWABLE", false, Date::fromTimeIntervalSince1970(0)));
  const auto ascending = varnel.sortedByDateDescending(varnel.renewableEntitlements());
  ASSERT_EQ(ids(ascending), (std::vector<std::string>{"UNDATED", "MARCH", "JUNE"}));
  EXPECT_EQ(varnel.firstRenewableEntitlement()->productInstanceID(), "UNDATED");
  EXPECT_EQ(varnel.firstRenewalDate(), Date::unknownMarker());

  // Nothing is cached: a changed store changes the answers.
  manager->persisted = ENTMAnyList{pass("LATER", true, kJune)};
  EXPECT_EQ(varnel.firstRenewableEntitlement()->productInstanceID(), "LATER");
}

TEST_F(VNLVarnelTest, SortedByDateDescendingIsInFactAscending) {
  manager->persisted = ENTMAnyList{pass("JUNE", true, kJune), pass("MARCH", true, kMarch),
                                   pass("UNKNOWN", true, Date::unknownMarker()),
                                   pass("FAR", true, kJune.addingTimeInterval(86400 * 365))};
  const auto input = varnel.allEntitlements();
  const auto sorted = varnel.sortedByDateDescending(input);
  EXPECT_EQ(ids(sorted), (std::vector<std::string>{"UNKNOWN", "MARCH", "JUNE", "FAR"}));
  EXPECT_EQ(ids(input), (std::vector<std::string>{"JUNE", "MARCH", "UNKNOWN", "FAR"})) << "the argument is not sorted";
  EXPECT_TRUE(varnel.sortedByDateDescending({}).empty());
}

TEST_F(VNLVarnelTest, NoStoreNoManagerOrAMistypedStoreReadAsEmpty) {
  auto checkEmpty = [&](const char* situation) {
    EXPECT_TRUE(varnel.allEntitlements().empty()) << situation;
    EXPECT_FALSE(varnel.anyAPAbleToBeRenewed()) << situation;
    EXPECT_FALSE(varnel.firstRenewableEntitlement()) << situation;
    EXPECT_EQ(varnel.firstRenewalDate(), Date::unknownMarker()) << situation;
  };
  checkEmpty("absent store");
  manager->persisted = ENTMAnyList{};
  checkEmpty("empty store");
  manager->persisted = ENTMAnyList{pass("AP-1", true, kJune), Json("stray")};
  checkEmpty("mistyped store");
  host::Registry::set<ENTMEntitlementsManager>(nullptr);
  checkEmpty("no manager");
}

TEST_F(VNLVarnelTest, BundleIsTheResourceDirectoryWhenItExists) {
  host::Registry::set<ResourceBundle>(std::make_shared<ResourceBundle>(ResourceBundle{VARNEL_TEST_RESOURCE_DIR}));
  EXPECT_EQ(VNLVarnel::varnelBundle(), std::filesystem::path(VARNEL_TEST_RESOURCE_DIR));
  host::Registry::set<ResourceBundle>(
      std::make_shared<ResourceBundle>(ResourceBundle{std::filesystem::path(VARNEL_TEST_RESOURCE_DIR) / "absent"}));
  EXPECT_FALSE(VNLVarnel::varnelBundle());
}

}  // namespace
}  // namespace varnel
