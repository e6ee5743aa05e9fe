#include <chrono>
#include <future>

#include <gtest/gtest.h>

#include "ScriptedEntitlementsManager.h"
#include "support/Fakes.h"
#include "varnel/entitlements/EntitlementFetcher.h"
#include "varnel/entitlements/VNLEntitlementAnnualPass.h"
#include "varnel/entitlements/VNLEntitlementErrors.h"
#include "varnel/entitlements/VNLEntitlementParkTicket.h"
#include "varnel/errors/ErrorMapping.h"
#include "varnel/host/Registry.h"
#include "varnel/standalone/FileEntitlementsManager.h"

namespace varnel {
namespace {

using testing::ScriptedEntitlementsManager;

/// Counts what it is told. The counters live apart from the delegate so a
/// test can still read them after the delegate is gone.
struct DelegateLog {
  int entitlements = 0;
  int affiliations = 0;
  std::vector<std::optional<Error>> failures;
  EntitlementFetcher* lastSender = nullptr;
};

class CountingDelegate final : public EntitlementFetcherDelegate {
 public:
  explicit CountingDelegate(std::shared_ptr<DelegateLog> log) : log_(std::move(log)) {}
  void didRetrieveEntitlements(EntitlementFetcher& sender) override {
    ++log_->entitlements;
    log_->lastSender = &sender;
  }
  void didRetrieveAffiliations(EntitlementFetcher& sender) override {
    ++log_->affiliations;
    log_->lastSender = &sender;
  }
  void didFailToRetrieve(const std::optional<Error>& error, EntitlementFetcher& sender) override {
    log_->failures.push_back(error);
    log_->lastSender = &sender;
  }

 private:
  std::shared_ptr<DelegateLog> log_;
};

/// Implements only what it must: affiliations go to the default, which does nothing.
class EntitlementsOnlyDelegate final : public EntitlementFetcherDelegate {
 public:
  void didRetrieveEntitlements(EntitlementFetcher&) override { ++entitlements; }
  void didFailToRetrieve(const std::optional<Error>&, EntitlementFetcher&) override {}
  int entitlements = 0;
};

ENTMEntitlementRef managerEntitlement(std::string id, std::optional<std::string> category) {
  auto entitlement = std::make_shared<ENTMEntitlement>();
  entitlement->productInstanceId = std::move(id);
  entitlement->categoryId = std::move(category);
  return entitlement;
}

class EntitlementFetcherTest : public testing::HostFixture {
 protected:
  void SetUp() override {
    HostFixture::SetUp();
    manager = std::make_shared<ScriptedEntitlementsManager>();
    host::Registry::set<ENTMEntitlementsManager>(manager);
    delegate = std::make_shared<CountingDelegate>(record);
    fetcher->setDelegate(delegate);
  }

  std::shared_ptr<ScriptedEntitlementsManager> manager;
  std::shared_ptr<DelegateLog> record = std::make_shared<DelegateLog>();
  std::shared_ptr<CountingDelegate> delegate;
  std::shared_ptr<EntitlementFetcher> fetcher = EntitlementFetcher::create();
};

TEST_F(EntitlementFetcherTest, FetchRegistersRequestsAnnualPassesAndConvertsTheAnswerInOrder) {
  fetcher->fetchAnnualPassRenewals();
  ASSERT_EQ(manager->liveListeners().size(), 1u);
  EXPECT_EQ(manager->liveListeners().front().get(), fetcher.get());
  ASSERT_EQ(manager->requestedFilters.size(), 1u);
  EXPECT_EQ(static_cast<int>(manager->requestedFilters.front()), 8);
  EXPECT_FALSE(manager->requestUserInfo);

  manager->answerEntitlements({managerEntitlement("AP-1", "AnnualPass"), managerEntitlement("TK-2", "ThemePark"),
                               managerEntitlement("X-3", std::nullopt)});

  EXPECT_TRUE(manager->liveListeners().empty()) << "one-shot: unregistered on the answer";
  EXPECT_EQ(record->entitlements, 1);
  EXPECT_EQ(record->lastSender, fetcher.get());
  auto entitlements = fetcher->entitlements();
  ASSERT_TRUE(entitlements);
  ASSERT_EQ(entitlements->size(), 3u);
  EXPECT_EQ((*entitlements)[0]->productInstanceID(), "AP-1");
  EXPECT_TRUE(std::dynamic_pointer_cast<VNLEntitlementAnnualPass>((*entitlements)[0]));
  EXPECT_TRUE(std::dynamic_pointer_cast<VNLEntitlementParkTicket>((*entitlements)[1]));
  EXPECT_EQ((*entitlements)[2]->productInstanceID(), "X-3");

  manager->answerEntitlements({});
  EXPECT_EQ(record->entitlements, 1) << "an unregistered fetcher hears nothing more";
}

TEST_F(EntitlementFetcherTest, EveryKindOfAnswerUnregisters) {
  fetcher->fetchAnnualPassRenewals();
  manager->answerFailure(std::nullopt);
  EXPECT_TRUE(manager->liveListeners().empty());

  fetcher->fetchAffiliations();
  EXPECT_EQ(manager->affiliationRequests, 1);
  ASSERT_EQ(manager->liveListeners().size(), 1u);
  manager->answerAffiliations(std::vector<ENTMAffiliation>{{"STD_GST", 0}, {"FL_RES", 2}});
  EXPECT_TRUE(manager->liveListeners().empty());
  EXPECT_EQ(record->affiliations, 1);
  ASSERT_TRUE(fetcher->affiliations());
  EXPECT_EQ(fetcher->affiliations()->size(), 2u);

  fetcher->fetchAnnualPassRenewals();
  manager->answerEntitlements({Json("not an entitlement")});
  EXPECT_TRUE(manager->liveListeners().empty());
  EXPECT_EQ(manager->registerCount, 3);
}

TEST_F(EntitlementFetcherTest, CauseKnownResponseIsHandedOnWithoutARequest) {
  const Error known{"NSURLErrorDomain", -1009, Json{{"reason", "offline"}}};
  fetcher->fetchAnnualPassRenewals(known);
  ASSERT_EQ(record->failures.size(), 1u);
  EXPECT_EQ(record->failures.front(), known) << "the very error, not a mapped one";
  EXPECT_EQ(manager->registerCount, 0);
  EXPECT_TRUE(manager->requestedFilters.empty());
  EXPECT_TRUE(log->lines().empty());
}

TEST_F(EntitlementFetcherTest, WithoutASignedInGuestNothingIsRequestedAndTheFailureIsLogged) {
  const LogSite expectedSite{"Classes/EntitlementFetcher", "fetchAnnualPassRenewals(causeKnownFetchResponse:)", 61};
  manager->signedInKuid.reset();
  fetcher->fetchAnnualPassRenewals();

  host::Registry::set<ENTMEntitlementsManager>(nullptr);  // no manager at all: the same road
  fetcher->fetchAnnualPassRenewals();

  ASSERT_EQ(record->failures.size(), 2u);
  for (const auto& failure : record->failures) EXPECT_EQ(failure, toError(VNLEntitlementErrors::noKUIDAvailable));
  EXPECT_EQ(manager->registerCount, 0);
  EXPECT_TRUE(manager->requestedFilters.empty());
  const auto lines = log->lines();
  ASSERT_EQ(lines.size(), 2u);
  for (const auto& line : lines) {
    EXPECT_TRUE(line.isError);
    EXPECT_EQ(line.message, "Attempt to fetch w/o KUID available");
    EXPECT_EQ(line.site.file, expectedSite.file);
    EXPECT_EQ(line.site.function, expectedSite.function);
    EXPECT_EQ(line.site.line, expectedSite.line);
  }
}

TEST_F(EntitlementFetcherTest, WronglyTypedListIsLoggedAndChangesNothing) {
  fetcher->fetchAnnualPassRenewals();
  manager->answerEntitlements({managerEntitlement("AP-1", "AnnualPass")});
  ASSERT_EQ(record->entitlements, 1);

  fetcher->fetchAnnualPassRenewals();
  manager->answerEntitlements({managerEntitlement("AP-2", "AnnualPass"), Json{{"productInstanceId", "AP-3"}}});

  EXPECT_EQ(record->entitlements, 1) << "the delegate is not told";
  EXPECT_TRUE(record->failures.empty());
  ASSERT_TRUE(fetcher->entitlements());
  ASSERT_EQ(fetcher->entitlements()->size(), 1u);
  EXPECT_EQ(fetcher->entitlements()->front()->productInstanceID(), "AP-1") << "the previous list stays";
  const auto lines = log->lines();
  ASSERT_FALSE(lines.empty());
  const auto& mismatch = lines.back();
  EXPECT_FALSE(mismatch.isError);
  EXPECT_EQ(mismatch.message, "entitlementsArray type mismatch, actual: Array<Any>, expected: ENTMEntitlement");
  EXPECT_EQ(mismatch.site.file, "Classes/EntitlementFetcher");
  EXPECT_EQ(mismatch.site.function, "entitlementsUpdated(_:userInfo:)");
}

TEST_F(EntitlementFetcherTest, ManagerFailuresReachTheDelegateAsCommerceErrors) {
  const Error unavailable{"Varnel.Services", 503,
                          Json{{kErrorJsonResponseKey, {{"errors", {{{"typeId", "SYSTEM_UNAVAILABLE"}}}}}}}};
  const Error bodiless{"Varnel.GuestDataFile", 2, Json{{"reason", "not valid JSON"}}};
  for (const auto& error : {unavailable, bodiless}) {
    fetcher->fetchAnnualPassRenewals();
    manager->answerFailure(error);
  }
  fetcher->fetchAnnualPassRenewals();
  manager->answerFailure(std::nullopt);

  ASSERT_EQ(record->failures.size(), 3u);
  EXPECT_EQ(record->failures[0], toError(APError::SYSTEM_UNAVAILABLE));
  EXPECT_EQ(record->failures[1], toError(APError::GeneralEVASServiceError));
  EXPECT_FALSE(record->failures[2]) << "an absent error is passed through as absent";
  EXPECT_FALSE(fetcher->entitlements()) << "a failure leaves the entitlements as they were";
}

TEST_F(EntitlementFetcherTest, AReleasedDelegateIsNeverCalled) {
  std::weak_ptr<CountingDelegate> watch = delegate;
  delegate.reset();
  ASSERT_TRUE(watch.expired()) << "the fetcher holds its delegate weakly";

  fetcher->fetchAnnualPassRenewals(Error{"d", 1, Json()});
  fetcher->fetchAnnualPassRenewals();
  manager->answerEntitlements({managerEntitlement("AP-1", "AnnualPass")});
  fetcher->fetchAnnualPassRenewals();
  manager->answerFailure(Error{"d", 2, Json()});
  fetcher->fetchAffiliations();
  manager->answerAffiliations(std::nullopt);
  fetcher->flushData();
  manager->signedInKuid.reset();
  fetcher->fetchAnnualPassRenewals();

  EXPECT_EQ(record->entitlements, 0);
  EXPECT_EQ(record->affiliations, 0);
  EXPECT_TRUE(record->failures.empty());
  EXPECT_TRUE(manager->liveListeners().empty());
}

TEST_F(EntitlementFetcherTest, FlushNotifiesEvenWhenEmptyAndKeepsAffiliations) {
  fetcher->flushData();
  EXPECT_EQ(record->entitlements, 1);

  fetcher->fetchAffiliations();
  manager->answerAffiliations(std::vector<ENTMAffiliation>{{"STD_GST", 0}});
  fetcher->fetchAnnualPassRenewals();
  manager->answerEntitlements({managerEntitlement("AP-1", "AnnualPass")});
  ASSERT_TRUE(fetcher->entitlements());

  fetcher->flushData();
  EXPECT_FALSE(fetcher->entitlements());
  EXPECT_EQ(record->entitlements, 3);
  EXPECT_EQ(record->affiliations, 1);
  EXPECT_TRUE(fetcher->affiliations());
}

TEST_F(EntitlementFetcherTest, AbsentAffiliationsStillNotifyAndTheDefaultHandlerIgnoresThem) {
  fetcher->fetchAffiliations();
  manager->answerAffiliations(std::nullopt);
  EXPECT_EQ(record->affiliations, 1);
  EXPECT_FALSE(fetcher->affiliations());

  auto plain = std::make_shared<EntitlementsOnlyDelegate>();
  fetcher->setDelegate(plain);
  fetcher->fetchAffiliations();
  manager->answerAffiliations(std::vector<ENTMAffiliation>{{"STD_GST", 0}});
  EXPECT_EQ(plain->entitlements, 0);
  EXPECT_TRUE(fetcher->affiliations());
}

TEST_F(EntitlementFetcherTest, BlockoutDatesHookDoesNothing) {
  fetcher->fetchBlockoutDates("AP-1");
  EXPECT_EQ(manager->registerCount, 0);
  EXPECT_TRUE(manager->requestedFilters.empty());
  EXPECT_EQ(manager->affiliationRequests, 0);
  EXPECT_EQ(record->entitlements + record->affiliations, 0);
  EXPECT_TRUE(record->failures.empty());
}

TEST_F(EntitlementFetcherTest, ContextInitialiserConfiguresTheManager) {
  auto context = std::make_shared<KTVCParkResortContext>(kResortChoiceWest);
  auto configured = EntitlementFetcher::create(context);
  EXPECT_EQ(manager->configuredContext, context);
  EXPECT_FALSE(configured->entitlements());
  EXPECT_FALSE(configured->affiliations());
  EXPECT_FALSE(configured->delegate());

  host::Registry::set<ENTMEntitlementsManager>(nullptr);
  EXPECT_TRUE(EntitlementFetcher::create(context)) << "no manager: nothing to configure";
}

TEST_F(EntitlementFetcherTest, AFetcherGoneBeforeTheAnswerIsSimplyNotCalled) {
  fetcher->fetchAnnualPassRenewals();
  fetcher.reset();
  EXPECT_TRUE(manager->liveListeners().empty()) << "the manager holds the listener weakly";
  manager->answerEntitlements({managerEntitlement("AP-1", "AnnualPass")});
  EXPECT_EQ(record->entitlements, 0);
}

// With the stand-alone manager the answer comes on its worker thread.
class PromisingDelegate final : public EntitlementFetcherDelegate {
 public:
  void didRetrieveEntitlements(EntitlementFetcher& sender) override { done.set_value(sender.entitlements()); }
  void didFailToRetrieve(const std::optional<Error>& error, EntitlementFetcher&) override {
    failed.set_value(error);
  }
  std::promise<std::optional<EntitlementFetcher::Entitlements>> done;
  std::promise<std::optional<Error>> failed;
};

TEST_F(EntitlementFetcherTest, FetchesTheSampleGuestFromTheFileManager) {
  auto opened = standalone::FileEntitlementsManager::open(std::filesystem::path(VARNEL_TEST_RESOURCE_DIR) / "guests" /
                                                         "sample-guest.json");
  ASSERT_TRUE(opened);
  host::Registry::set<ENTMEntitlementsManager>(opened.value());
  auto promising = std::make_shared<PromisingDelegate>();
  auto answer = promising->done.get_future();
  fetcher->setDelegate(promising);

  fetcher->fetchAnnualPassRenewals();
  ASSERT_EQ(answer.wait_for(std::chrono::seconds(30)), std::future_status::ready);
  const auto entitlements = answer.get();
  ASSERT_TRUE(entitlements);
  ASSERT_EQ(entitlements->size(), 8u);
  EXPECT_EQ(entitlements->front()->productInstanceID(), "AP-100201");
  EXPECT_TRUE(std::dynamic_pointer_cast<VNLEntitlementAnnualPass>(entitlements->front()));
  host::Registry::set<ENTMEntitlementsManager>(nullptr);
}

TEST_F(EntitlementFetcherTest, AnUnreadableGuestFileIsAFailureForTheDelegate) {
  auto missing = std::make_shared<standalone::FileEntitlementsManager>(std::filesystem::temp_directory_path() /
                                                                       "varnel-fetcher-no-guest.json");
  host::Registry::set<ENTMEntitlementsManager>(missing);
  auto promising = std::make_shared<PromisingDelegate>();
  auto failure = promising->failed.get_future();
  fetcher->setDelegate(promising);

  // Nobody is signed in until the file is read: the fetcher refuses at once.
  fetcher->fetchAnnualPassRenewals();
  ASSERT_EQ(failure.wait_for(std::chrono::seconds(30)), std::future_status::ready);
  EXPECT_EQ(failure.get(), toError(VNLEntitlementErrors::noKUIDAvailable));

  // Affiliations are asked for without a guest check: the download itself
  // fails, on the manager's worker thread.
  auto promisingAgain = std::make_shared<PromisingDelegate>();
  auto failureAgain = promisingAgain->failed.get_future();
  fetcher->setDelegate(promisingAgain);
  fetcher->fetchAffiliations();
  ASSERT_EQ(failureAgain.wait_for(std::chrono::seconds(30)), std::future_status::ready);
  EXPECT_EQ(failureAgain.get(), toError(APError::GeneralEVASServiceError));
  host::Registry::set<ENTMEntitlementsManager>(nullptr);
}

}  // namespace
}  // namespace varnel
