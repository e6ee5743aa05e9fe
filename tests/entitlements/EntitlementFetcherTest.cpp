#include <gtest/gtest.h>

#include "EntitlementTestSupport.h"
#include "varnel/entitlements/EntitlementFetcher.h"
#include "varnel/entitlements/VNLEntitlementParkTicket.h"
#include "varnel/errors/ErrorMapping.h"

namespace varnel {
namespace {

using namespace testing;

class RecordingDelegate final : public EntitlementFetcherDelegate {
 public:
  void didRetrieveEntitlements(EntitlementFetcher&) override { calls.push_back("entitlements"); }
  void didRetrieveAffiliations(EntitlementFetcher&) override { calls.push_back("affiliations"); }
  void didFailToRetrieve(const std::optional<Error>& error, EntitlementFetcher&) override {
    calls.push_back("failed");
    failures.push_back(error);
  }
  Ids calls;
  std::vector<std::optional<Error>> failures;
};

class EntitlementFetcherTest : public EntitlementFixture {
 protected:
  EntitlementFetcherTest() { fetcher->setDelegate(delegate); }
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

  std::shared_ptr<RecordingDelegate> delegate = std::make_shared<RecordingDelegate>();
  std::shared_ptr<EntitlementFetcher> fetcher = EntitlementFetcher::create();
};

TEST_F(EntitlementFetcherTest, FetchAsksForAnnualPassesOnceAndConvertsTheAnswerInOrder) {
  fetcher->fetchAnnualPassRenewals();
  ASSERT_EQ(manager->listeners.size(), 1u);
  EXPECT_EQ(manager->listeners.front().lock(), fetcher);
  ASSERT_EQ(manager->requests.size(), 1u);
  EXPECT_EQ(static_cast<int>(manager->requests.front().first), 8) << "the manager's annual-pass filter";
  EXPECT_FALSE(manager->requests.front().second);

  answerEntitlements({ref(withId("AP-1", "AnnualPass")), ref(withId("TK-2", "ThemePark")), ref(withId("X-3"))});
  EXPECT_TRUE(manager->listeners.empty()) << "one-shot: unregistered on the answer";
  EXPECT_EQ(delegate->calls, Ids{"entitlements"});
  const auto entitlements = fetcher->entitlements().value();
  EXPECT_EQ(idsOf(entitlements), (Ids{"AP-1", "TK-2", "X-3"}));
  EXPECT_TRUE(std::dynamic_pointer_cast<VNLEntitlementParkTicket>(entitlements[1])) << "converted by category";
}

TEST_F(EntitlementFetcherTest, EveryKindOfAnswerUnregistersAndReportsItsOwnWay) {
  fetcher->fetchAffiliations();
  EXPECT_EQ(manager->affiliationRequests, 1);
  answerAffiliations(std::nullopt);
  EXPECT_TRUE(manager->listeners.empty());
  EXPECT_EQ(delegate->calls, Ids{"affiliations"}) << "an absent list is news too";

  const Error unavailable{"Varnel.Services", 503,
                          Json{{kErrorJsonResponseKey, {{"errors", {{{"typeId", "SYSTEM_UNAVAILABLE"}}}}}}}};
  const std::optional<Error> errors[] = {unavailable, Error{"Varnel.GuestDataFile", 2, Json()}, std::nullopt};
  for (const auto& error : errors) {
    fetcher->fetchAnnualPassRenewals();
    answerFailure(error);
    EXPECT_TRUE(manager->listeners.empty());
  }
  const std::vector<std::optional<Error>> reported{toError(APError::SYSTEM_UNAVAILABLE),
                                                   toError(APError::GeneralEVASServiceError), std::nullopt};
  EXPECT_EQ(delegate->failures, reported) << "mapped when the mapping knows the error; an absent one stays absent";
  EXPECT_FALSE(fetcher->entitlements()) << "failures leave the entitlements alone";

  fetcher->fetchAnnualPassRenewals();
  answerEntitlements({ref(withId("AP-1", "AnnualPass"))});
  fetcher->fetchAnnualPassRenewals();
  answerEntitlements({ref(withId("AP-2", "AnnualPass")), Json{{"productInstanceId", "AP-3"}}});
  EXPECT_TRUE(manager->listeners.empty());
  EXPECT_EQ(delegate->calls.size(), 5u) << "a mistyped list is not reported";
  EXPECT_EQ(idsOf(*fetcher->entitlements()), Ids{"AP-1"}) << "and the previous list stays";
  const auto mismatch = log->lines().back();
  EXPECT_FALSE(mismatch.isError);
  EXPECT_EQ(mismatch.message, "entitlementsArray type mismatch, actual: Array<Any>, expected: ENTMEntitlement");
  EXPECT_TRUE(siteOf(mismatch).starts_with("Classes/EntitlementFetcher entitlementsUpdated(_:userInfo:):"));
}

TEST_F(EntitlementFetcherTest, AKnownCauseOrAMissingGuestFailsWithoutARequest) {
  const Error known{"NSURLErrorDomain", -1009, Json{{"reason", "offline"}}};
  fetcher->fetchAnnualPassRenewals(known);
  EXPECT_TRUE(log->lines().empty());
  manager->signedInKuid.reset();
  fetcher->fetchAnnualPassRenewals();
  host::Registry::set<ENTMEntitlementsManager>(nullptr);
  fetcher->fetchAnnualPassRenewals();

  EXPECT_TRUE(manager->listeners.empty() && manager->requests.empty());
  const auto noKuid = toError(VNLEntitlementErrors::noKUIDAvailable);
  EXPECT_EQ(delegate->failures, (std::vector<std::optional<Error>>{known, noKuid, noKuid}))
      << "the known error is handed on as it is";
  const auto lines = log->lines();
  ASSERT_EQ(lines.size(), 2u);
  for (const auto& line : lines) {
    EXPECT_TRUE(line.isError);
    EXPECT_EQ(line.message, "Attempt to fetch w/o KUID available");
    EXPECT_EQ(siteOf(line), "Classes/EntitlementFetcher fetchAnnualPassRenewals(causeKnownFetchResponse:):61");
  }
}

TEST_F(EntitlementFetcherTest, AReleasedDelegateIsNeverCalledAndAReleasedFetcherNeverAnswers) {
  const std::weak_ptr<RecordingDelegate> released = delegate;
  delegate.reset();
  fetcher->fetchAnnualPassRenewals(Error{"d", 1, Json()});
  fetcher->fetchAnnualPassRenewals();
  answerEntitlements({ref(withId("AP-1", "AnnualPass"))});
  fetcher->fetchAnnualPassRenewals();
  answerFailure(Error{"d", 2, Json()});
  fetcher->fetchAffiliations();
  answerAffiliations(std::nullopt);
  fetcher->flushData();
  EXPECT_TRUE(released.expired()) << "not kept alive to be called";

  fetcher->setDelegate(delegate = std::make_shared<RecordingDelegate>());
  fetcher->fetchAnnualPassRenewals();
  const std::weak_ptr<EntitlementFetcher> watch = fetcher;
  fetcher.reset();
  EXPECT_TRUE(watch.expired()) << "the manager holds the fetcher weakly";
  answerEntitlements({ref(withId("AP-1", "AnnualPass"))});
  EXPECT_TRUE(delegate->calls.empty());
}

TEST_F(EntitlementFetcherTest, FlushNotifiesEvenWhenEmptyAndKeepsAffiliations) {
  fetcher->flushData();
  fetcher->fetchAffiliations();
  answerAffiliations(std::vector<ENTMAffiliation>{{"STD_GST", 0}});
  fetcher->fetchAnnualPassRenewals();
  answerEntitlements({ref(withId("AP-1", "AnnualPass"))});
  fetcher->fetchBlockoutDates("AP-1");  // an empty hook: no request, no report
  fetcher->flushData();
  EXPECT_EQ(manager->requests.size(), 1u);
  EXPECT_FALSE(fetcher->entitlements());
  EXPECT_TRUE(fetcher->affiliations());
  EXPECT_EQ(delegate->calls, (Ids{"entitlements", "affiliations", "entitlements", "entitlements"}));
}

}  // namespace
}  // namespace varnel
