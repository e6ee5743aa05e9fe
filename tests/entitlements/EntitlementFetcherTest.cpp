#include <future>

#include <gtest/gtest.h>

#include "ScriptedEntitlementsManager.h"
#include "support/Fakes.h"
#include "varnel/entitlements/EntitlementFetcher.h"
#include "varnel/entitlements/VNLEntitlementAnnualPass.h"
#include "varnel/entitlements/VNLEntitlementParkTicket.h"
#include "varnel/errors/ErrorMapping.h"
#include "varnel/host/Registry.h"
#include "varnel/standalone/FileEntitlementsManager.h"

namespace varnel {
namespace {

/// What the delegate was told; kept apart from the delegate so it can still
/// be read after the delegate is gone.
struct Told {
  int entitlements = 0;
  int affiliations = 0;
  std::vector<std::optional<Error>> failures;
};

class RecordingDelegate final : public EntitlementFetcherDelegate {
 public:
  explicit RecordingDelegate(std::shared_ptr<Told> told) : told_(std::move(told)) {}
  void didRetrieveEntitlements(EntitlementFetcher&) override { ++told_->entitlements; }
  void didRetrieveAffiliations(EntitlementFetcher&) override { ++told_->affiliations; }
  void didFailToRetrieve(const std::optional<Error>& error, EntitlementFetcher&) override {
    told_->failures.push_back(error);
  }

 private:
  std::shared_ptr<Told> told_;
};

ENTMEntitlementRef record(std::string id, std::optional<std::string> category) {
  auto entitlement = std::make_shared<ENTMEntitlement>();
  entitlement->productInstanceId = std::move(id);
  entitlement->categoryId = std::move(category);
  return entitlement;
}

class EntitlementFetcherTest : public testing::HostFixture {
 protected:
  void SetUp() override {
    HostFixture::SetUp();
    host::Registry::set<ENTMEntitlementsManager>(manager);
    fetcher->setDelegate(delegate);
  }
  void answerEntitlements(const ENTMAnyList& list) {
    manager->answer([&](auto& listener) { listener.entitlementsUpdated(list, std::nullopt); });
  }
  void answerAffiliations(const std::optional<std::vector<ENTMAffiliation>>& list) {
    manager->answer([&](auto& listener) { listener.entitlementsManagerUpdatedAffiliations(list, std::nullopt); });
  }
  void answerFailure(const std::optional<Error>& error) {
    manager->answer([&](auto& listener) {
      listener.entitlementsManagerFetchFailed(ENTMEntitlementNameType::entitlements, error, std::nullopt);
    });
  }

  std::shared_ptr<testing::ScriptedEntitlementsManager> manager =
      std::make_shared<testing::ScriptedEntitlementsManager>();
  std::shared_ptr<Told> told = std::make_shared<Told>();
  std::shared_ptr<RecordingDelegate> delegate = std::make_shared<RecordingDelegate>(told);
  std::shared_ptr<EntitlementFetcher> fetcher = EntitlementFetcher::create();
};

TEST_F(EntitlementFetcherTest, FetchAsksForAnnualPassesOnceAndConvertsTheAnswerInOrder) {
  fetcher->fetchAnnualPassRenewals();
  ASSERT_EQ(manager->liveListeners().size(), 1u);
  EXPECT_EQ(manager->liveListeners().front().get(), fetcher.get());
  ASSERT_EQ(manager->requests.size(), 1u);
  EXPECT_EQ(static_cast<int>(manager->requests[0].first), 8);
  EXPECT_FALSE(manager->requests[0].second);

  answerEntitlements({record("AP-1", "AnnualPass"), record("TK-2", "ThemePark"), record("X-3", std::nullopt)});
  EXPECT_TRUE(manager->liveListeners().empty()) << "one-shot: unregistered on the answer";
  EXPECT_EQ(told->entitlements, 1);
  const auto entitlements = fetcher->entitlements().value();
  ASSERT_EQ(entitlements.size(), 3u);
  EXPECT_TRUE(std::dynamic_pointer_cast<VNLEntitlementAnnualPass>(entitlements[0]));
  EXPECT_TRUE(std::dynamic_pointer_cast<VNLEntitlementParkTicket>(entitlements[1]));
  EXPECT_EQ(entitlements[2]->productInstanceID(), "X-3");
}

TEST_F(EntitlementFetcherTest, EveryKindOfAnswerUnregistersAndReportsItsOwnWay) {
  fetcher->fetchAffiliations();
  EXPECT_EQ(manager->affiliationRequests, 1);
  answerAffiliations(std::nullopt);
  EXPECT_TRUE(manager->liveListeners().empty());
  EXPECT_EQ(told->affiliations, 1) << "an absent list is news too";

  const Error unavailable{"Varnel.Services", 503,
                          Json{{kErrorJsonResponseKey, {{"errors", {{{"typeId", "SYSTEM_UNAVAILABLE"}}}}}}}};
  for (const std::optional<Error>& error : {std::optional<Error>(unavailable),
                                            std::optional<Error>(Error{"Varnel.GuestDataFile", 2, Json()}),
                                            std::optional<Error>()}) {
    fetcher->fetchAnnualPassRenewals();
    answerFailure(error);
    EXPECT_TRUE(manager->liveListeners().empty());
  }
  ASSERT_EQ(told->failures.size(), 3u);
  EXPECT_EQ(told->failures[0], toError(APError::SYSTEM_UNAVAILABLE));
  EXPECT_EQ(told->failures[1], toError(APError::GeneralEVASServiceError)) << "a body-less error, mapped";
  EXPECT_FALSE(told->failures[2]) << "an absent error stays absent";
  EXPECT_FALSE(fetcher->entitlements()) << "failures leave the entitlements alone";

  fetcher->fetchAnnualPassRenewals();
  answerEntitlements({record("AP-1", "AnnualPass")});
  fetcher->fetchAnnualPassRenewals();
  answerEntitlements({record("AP-2", "AnnualPass"), Json{{"productInstanceId", "AP-3"}}});
  EXPECT_TRUE(manager->liveListeners().empty());
  EXPECT_EQ(told->entitlements, 1) << "a mistyped list is not reported";
  EXPECT_EQ(fetcher->entitlements()->front()->productInstanceID(), "AP-1") << "and the previous list stays";
  const auto mismatch = log->lines().back();
  EXPECT_FALSE(mismatch.isError);
  EXPECT_EQ(mismatch.message, "entitlementsArray type mismatch, actual: Array<Any>, expected: ENTMEntitlement");
  EXPECT_EQ(mismatch.site.file, "Classes/EntitlementFetcher");
  EXPECT_EQ(mismatch.site.function, "entitlementsUpdated(_:userInfo:)");
}

TEST_F(EntitlementFetcherTest, KnownCauseOrMissingGuestFailsWithoutARequest) {
  const Error known{"NSURLErrorDomain", -1009, Json{{"reason", "offline"}}};
  fetcher->fetchAnnualPassRenewals(known);
  EXPECT_TRUE(log->lines().empty());

  manager->signedInKuid.reset();
  fetcher->fetchAnnualPassRenewals();
  host::Registry::set<ENTMEntitlementsManager>(nullptr);
  fetcher->fetchAnnualPassRenewals();

  EXPECT_EQ(manager->registerCount, 0);
  EXPECT_TRUE(manager->requests.empty());
  const std::vector<std::optional<Error>> expected{known, toError(VNLEntitlementErrors::noKUIDAvailable),
                                                   toError(VNLEntitlementErrors::noKUIDAvailable)};
  EXPECT_EQ(told->failures, expected) << "the known error is handed on as it is";
  const auto lines = log->lines();
  ASSERT_EQ(lines.size(), 2u);
  for (const auto& line : lines) {
    EXPECT_TRUE(line.isError);
    EXPECT_EQ(line.message, "Attempt to fetch w/o KUID available");
    EXPECT_EQ(line.site.file, "Classes/EntitlementFetcher");
    EXPECT_EQ(line.site.function, "fetchAnnualPassRenewals(causeKnownFetchResponse:)");
    EXPECT_EQ(line.site.line, 61);
  }
}

TEST_F(EntitlementFetcherTest, AReleasedDelegateIsNeverCalledAndAReleasedFetcherNeverAnswers) {
  delegate.reset();
  fetcher->fetchAnnualPassRenewals(Error{"d", 1, Json()});
  fetcher->fetchAnnualPassRenewals();
  answerEntitlements({record("AP-1", "AnnualPass")});
  fetcher->fetchAnnualPassRenewals();
  answerFailure(Error{"d", 2, Json()});
  fetcher->fetchAffiliations();
  answerAffiliations(std::nullopt);
  fetcher->flushData();
  EXPECT_EQ(told->entitlements + told->affiliations, 0);
  EXPECT_TRUE(told->failures.empty());

  fetcher->setDelegate(delegate = std::make_shared<RecordingDelegate>(told));
  fetcher->fetchAnnualPassRenewals();
  fetcher.reset();
  EXPECT_TRUE(manager->liveListeners().empty()) << "the manager holds the fetcher weakly";
  answerEntitlements({record("AP-1", "AnnualPass")});
  EXPECT_EQ(told->entitlements, 0);
}

TEST_F(EntitlementFetcherTest, FlushNotifiesEvenWhenEmptyAndKeepsAffiliations) {
  fetcher->flushData();
  EXPECT_EQ(told->entitlements, 1);
  fetcher->fetchAffiliations();
  answerAffiliations(std::vector<ENTMAffiliation>{{"STD_GST", 0}});
  fetcher->fetchAnnualPassRenewals();
  answerEntitlements({record("AP-1", "AnnualPass")});
  fetcher->fetchBlockoutDates("AP-1");  // an empty hook: no request, no report
  EXPECT_EQ(manager->registerCount, 2);

  fetcher->flushData();
  EXPECT_FALSE(fetcher->entitlements());
  EXPECT_TRUE(fetcher->affiliations());
  EXPECT_EQ(told->entitlements, 3);
  EXPECT_EQ(told->affiliations, 1);
}

TEST_F(EntitlementFetcherTest, ContextInitialiserConfiguresTheManager) {
  auto context = std::make_shared<KTVCParkResortContext>(kResortChoiceWest);
  auto configured = EntitlementFetcher::create(context);
  EXPECT_EQ(manager->configuredContext, context);
  EXPECT_FALSE(configured->entitlements() || configured->affiliations() || configured->delegate());
}

// The stand-alone manager answers on its own worker thread.
class PromisingDelegate final : public EntitlementFetcherDelegate {
 public:
  void didRetrieveEntitlements(EntitlementFetcher& sender) override { done.set_value(sender.entitlements()); }
  void didFailToRetrieve(const std::optional<Error>&, EntitlementFetcher&) override {}
  std::promise<std::optional<EntitlementFetcher::Entitlements>> done;
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
  ASSERT_TRUE(entitlements && entitlements->size() == 8u);
  EXPECT_TRUE(std::dynamic_pointer_cast<VNLEntitlementAnnualPass>(entitlements->front()));
}

}  // namespace
}  // namespace varnel
