// The renewal road against the mock commerce service over loopback HTTP: the
// three outcomes and what reaches the service for each, an interrupted
// checkout finished with the same key and no second charge, one renewal per
// pass in flight, a cancel before the checkout, and a payment after a long
// pause on a connection kept warm.

#include <algorithm>
#include <thread>

#include <gtest/gtest.h>

#include "checkout/CheckoutTestSupport.h"
#include "checkout/RenewalOverHttp.h"
#include "varnel/checkout/RenewalFlow.h"
#include "varnel/host/ENTMEntitlementsManager.h"
#include "varnel/host/Registry.h"
#include "varnel/mock/MockFault.h"
#include "varnel/standalone/FileEntitlementsManager.h"

namespace varnel::testing {
namespace {

using Kind = RenewalOutcome::Kind;
using State = RenewalJournalEntry::State;

/// A guest who pays with a chosen card (the first when none is named),
/// accepts, signs, and remembers how the renewal ended.
class ScriptedGuest final : public RenewalFlowDelegate {
 public:
  void chooseCard(const RenewalOrder&, const std::vector<PaymentAccount>& accounts, CardReply reply) override {
    reply(accounts.empty() ? std::nullopt : std::optional<PaymentAccount>(accounts.front()));
  }
  void acceptTerms(const RenewalOrder&, Reply reply) override {
    if (holdTerms) {
      heldTerms = reply;
      return;
    }
    reply(true);
  }
  void signContract(const VNLContractDataModel&, Reply reply) override { reply(true); }
  void renewalFlowDidEnd(const RenewalOutcome& ended) override {
    EXPECT_FALSE(outcome.has_value()) << "a renewal ended twice";
    outcome = ended;
  }
  bool showsOutcomeLater() const override { return neverShows; }

  bool holdTerms = false;
  Reply heldTerms;
  /// A host that dies before it shows the outcome.
  bool neverShows = false;
  std::optional<RenewalOutcome> outcome;
};

class RenewalFlowTest : public RenewalOverHttpTest {
 protected:
  void SetUp() override {
    RenewalOverHttpTest::SetUp();
    auto manager =
        standalone::FileEntitlementsManager::open(std::string(VARNEL_TEST_RESOURCE_DIR) + "/guests/sample-guest.json");
    ASSERT_TRUE(manager.ok());
    host::Registry::set<ENTMEntitlementsManager>(manager.value());
  }

  /// Starts a renewal of kRenewablePass and runs network and main queue until both are still.
  std::shared_ptr<ScriptedGuest> renew(RenewalRequest request, std::shared_ptr<ScriptedGuest> guest = nullptr) {
    if (!guest) guest = std::make_shared<ScriptedGuest>();
    auto flow = RenewalFlow::create(guest, journal);
    if (request.passId.empty() && !request.journalEntry) request.passId = kRenewablePass;
    request.parkContext = std::make_shared<KTVCParkResortContext>(kResortChoiceEast);
    flow->start(std::move(request));
    drive();
    flows.push_back(flow);
    return guest;
  }
  void drive() {
    for (int round = 0; round < 1000; ++round) {
      settle();
      if (mainQueue->runAll() == 0 && networking.client->callsInFlight() == 0) return;
    }
    ADD_FAILURE() << "the renewal did not settle";
  }
  void fault(const std::string& endpoint, const std::string& kind) {
    auto parsed = mock::Fault::parse(kind);
    ASSERT_TRUE(parsed.ok()) << kind;
    ASSERT_FALSE(server->setFault({endpoint, parsed.value()})) << kind;
  }
  std::vector<RenewalJournalEntry> journalled() const { return journal->entries(household.kuid.value_or("")); }
  /// Checkouts the module sent, retries included, by its request log. The
  /// service may see more: libcurl sends a request once more, on a new
  /// connection, when the kept one turns out closed before any answer.
  std::size_t checkoutsSent() const {
    std::size_t sent = 0;
    for (const std::string& line : logLinesStartingWith("POST ")) sent += line.find("/express-checkout ") != std::string::npos;
    return sent;
  }

  std::shared_ptr<InMemoryRenewalJournal> journal = std::make_shared<InMemoryRenewalJournal>();
  std::vector<std::shared_ptr<RenewalFlow>> flows;
};

TEST_F(RenewalFlowTest, EachAnswerEndsInOneOfThreeOutcomesAndOnlyABookedAnswerIsConfirmed) {
  struct Row {
    std::string name;
    bool monthly;
    std::string card;
    std::string endpoint, fault;
    Kind kind;
    RenewalStep step;
    int charges;
    std::size_t checkouts;
  };
  const std::vector<Row> rows{
      {"paid in full", false, "", "", "", Kind::confirmed, RenewalStep::confirmation, 1, 1},
      {"monthly with its contract", true, "", "", "", Kind::confirmed, RenewalStep::confirmation, 1, 1},
      {"declined card", false, "CARD-REF-0003", "", "", Kind::refused, RenewalStep::checkout, 0, 1},
      {"answer lost after the charge", false, "", "create-order-purchase", "reset-after*1", Kind::unknown,
       RenewalStep::checkout, 1, 3},
      {"success without a confirmation", false, "", "create-order-purchase", "status:200", Kind::unknown,
       RenewalStep::checkout, 0, 1},
      {"answer that is an array", false, "", "create-order-purchase", "array", Kind::unknown, RenewalStep::checkout,
       0, 1},
      {"answer that is not JSON", false, "", "create-order-purchase", "malformed", Kind::unknown,
       RenewalStep::checkout, 0, 1},
      {"order without identifier", false, "", "create-orders", "status:200", Kind::refused, RenewalStep::order, 0, 0},
      {"unknown card named up front", false, "CARD-REF-0999", "", "", Kind::refused, RenewalStep::cards, 0, 0},
      {"contract without text", true, "", "create-contract", "status:200", Kind::refused, RenewalStep::contract, 0, 0},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    restart();
    journal = std::make_shared<InMemoryRenewalJournal>();
    if (!row.fault.empty()) fault(row.endpoint, row.fault);
    // The retries of a lost checkout meet resets that do not act on them.
    if (row.fault == "reset-after*1") fault(row.endpoint, "reset");
    RenewalRequest request;
    request.monthlyPlan = row.monthly;
    request.cardReference = row.card;
    log->clear();
    const auto guest = renew(request);
    ASSERT_TRUE(guest->outcome);
    const RenewalOutcome& outcome = *guest->outcome;
    EXPECT_EQ(outcome.kind, row.kind) << outcome.reason;
    EXPECT_EQ(outcome.step, row.step) << outcome.reason;
    EXPECT_EQ(checkoutsSent(), row.checkouts);
    EXPECT_GE(requestsTo("create-order-purchase").size(), row.checkouts);
    if (!outcome.orderId.empty()) {
      EXPECT_EQ(chargesOf(outcome.orderId), row.charges);
    }
    if (row.step == RenewalStep::cards) {
      EXPECT_TRUE(requestsTo("create-orders").empty()) << "an orphan order";
    }
    if (row.kind == Kind::confirmed) {
      EXPECT_TRUE(outcome.confirmation && isBookedConfirmation(*outcome.confirmation));
    }
    if (row.kind == Kind::unknown) {
      EXPECT_EQ(outcome.error, APError::PaymentLostConnection);
    }
    // The journal keeps exactly the renewals that reached the checkout, and an
    // unknown one stays to be finished.
    const auto entries = journalled();
    ASSERT_EQ(entries.size(), row.checkouts > 0 ? 1u : 0u);
    if (!entries.empty()) {
      const State expected = row.kind == Kind::confirmed ? State::confirmed
                             : row.kind == Kind::unknown ? State::pending
                                                         : State::refused;
      EXPECT_EQ(entries.front().state, expected);
      EXPECT_FALSE(entries.front().checkoutBody.dump().find("cvv2") != std::string::npos);
    }
  }
}

TEST_F(RenewalFlowTest, AnInterruptedCheckoutIsFinishedWithTheSameKeyAndChargedOnce) {
  fault("create-order-purchase", "reset-after*1");
  fault("create-order-purchase", "reset");
  const auto lost = renew({});
  ASSERT_EQ(lost->outcome->kind, Kind::unknown);
  server->clearFaults();

  // Renewing the pass again finishes the earlier checkout instead of ordering anew.
  const auto finished = renew({});
  ASSERT_EQ(finished->outcome->kind, Kind::confirmed) << finished->outcome->reason;
  EXPECT_TRUE(finished->outcome->finishedEarlier);
  EXPECT_EQ(finished->outcome->orderId, lost->outcome->orderId);
  EXPECT_EQ(requestsTo("create-orders").size(), 1u);
  EXPECT_EQ(chargesOf(lost->outcome->orderId), 1);
  const auto checkouts = requestsTo("create-order-purchase");
  EXPECT_EQ(checkoutsSent(), 4u);  // three tries of the lost one, one to finish it
  ASSERT_GE(checkouts.size(), 4u);
  for (const Json& sent : checkouts) {
    EXPECT_EQ(headerOf(sent, "Idempotency-Key"), headerOf(checkouts.front(), "Idempotency-Key"));
  }
  EXPECT_EQ(journalled().front().state, State::confirmed);
  EXPECT_EQ(journalled().front().confirmationNumber, finished->outcome->confirmation->confirmationNumber());
}

TEST_F(RenewalFlowTest, AConfirmationTheGuestNeverSawIsToldByTheNextRunWithoutSendingAnything) {
  auto dying = std::make_shared<ScriptedGuest>();
  dying->neverShows = true;
  const auto first = renew({}, dying);
  ASSERT_EQ(first->outcome->kind, Kind::confirmed) << first->outcome->reason;
  ASSERT_TRUE(journalled().front().confirmedUntold());

  const auto next = renew({});
  ASSERT_EQ(next->outcome->kind, Kind::confirmed) << next->outcome->reason;
  EXPECT_TRUE(next->outcome->finishedEarlier);
  EXPECT_EQ(next->outcome->confirmation->confirmationNumber(), first->outcome->confirmation->confirmationNumber());
  EXPECT_EQ(requestsTo("create-orders").size(), 1u);
  EXPECT_EQ(requestsTo("create-order-purchase").size(), 1u);
  EXPECT_TRUE(journalled().front().told);
  EXPECT_TRUE(journal->unfinished(household.kuid.value_or("")).empty());
}

TEST_F(RenewalFlowTest, APassHasOneRenewalInFlightAndACancelBeforeCheckoutChargesNothing) {
  auto holding = std::make_shared<ScriptedGuest>();
  holding->holdTerms = true;
  renew({}, holding);
  ASSERT_TRUE(holding->heldTerms) << "the guest was not asked for the terms";

  const auto second = renew({});
  ASSERT_TRUE(second->outcome);
  EXPECT_EQ(second->outcome->kind, Kind::refused);
  EXPECT_TRUE(second->outcome->busy);
  EXPECT_EQ(requestsTo("create-orders").size(), 1u) << "a second order for a pass in flight";

  flows.front()->cancel();
  drive();
  ASSERT_TRUE(holding->outcome);
  EXPECT_EQ(holding->outcome->kind, Kind::refused);
  holding->heldTerms(true);  // too late: ignored
  drive();
  EXPECT_TRUE(requestsTo("create-order-purchase").empty());
  EXPECT_TRUE(journalled().empty());

  const auto after = renew({});
  EXPECT_EQ(after->outcome->kind, Kind::confirmed) << after->outcome->reason;
}

TEST_F(RenewalFlowTest, AfterAPauseLongerThanTheServersKeepAliveThePaymentTravelsOnAConnectionOpenedBeforeIt) {
  // The mock closes a connection idle for a second; the guest reads the terms
  // for longer. Without the warmer the checkout needs a new connection.
  keepAlive = std::chrono::seconds(1);
  for (const bool warmed : {true, false}) {
    SCOPED_TRACE(warmed ? "kept warm" : "no warmer");
    restart();
    journal = std::make_shared<InMemoryRenewalJournal>();
    if (!warmed) host::Registry::set<ConnectionWarmer>(nullptr);
    auto guest = std::make_shared<ScriptedGuest>();
    guest->holdTerms = true;
    renew({}, guest);
    ASSERT_TRUE(guest->heldTerms) << "the terms were not asked for";
    std::this_thread::sleep_for(std::chrono::milliseconds(2'500));
    const std::size_t beforePaying = server->journal().size();
    guest->heldTerms(true);
    drive();
    ASSERT_TRUE(guest->outcome);
    EXPECT_EQ(guest->outcome->kind, Kind::confirmed) << guest->outcome->reason;

    const Json requests = server->journal();
    const auto checkout = std::find_if(requests.begin(), requests.end(), [](const Json& request) {
      return request.value("endpoint", Json()) == "create-order-purchase";
    });
    ASSERT_NE(checkout, requests.end());
    bool openedBefore = false;
    for (std::size_t i = 0; i < beforePaying; ++i) openedBefore |= requests[i]["connection"] == (*checkout)["connection"];
    EXPECT_EQ(openedBefore, warmed);
  }
}

/// The road over fake networking that answers nothing: what leaves before any answer.
class RenewalFlowRoundTripsTest : public CheckoutFixture {
 protected:
  void SetUp() override {
    CheckoutFixture::SetUp();
    host::Registry::set<KTVREnvironment>(std::make_shared<TableEnvironment>(std::map<std::string, Json, std::less<>>{
        {"create-orders", "https://commerce.example.test/guests/{owner_id}/orders"},
        {"get-payment-accounts", "https://commerce.example.test/guests/{kuid}/payment-accounts"}}));
    auto manager =
        standalone::FileEntitlementsManager::open(std::string(VARNEL_TEST_RESOURCE_DIR) + "/guests/sample-guest.json");
    ASSERT_TRUE(manager.ok());
    host::Registry::set<ENTMEntitlementsManager>(manager.value());
  }
  std::vector<std::string> sentBeforeAnyAnswer(const std::string& card) {
    auto guest = std::make_shared<ScriptedGuest>();
    auto flow = RenewalFlow::create(guest, std::make_shared<InMemoryRenewalJournal>());
    RenewalRequest request;
    request.passId = kRenewablePass;
    request.cardReference = card;
    request.parkContext = std::make_shared<KTVCParkResortContext>(kResortChoiceEast);
    service->calls.clear();
    flow->start(std::move(request));
    mainQueue->runAll();
    std::vector<std::string> methods;
    for (const auto& call : service->calls) methods.push_back(call.method);
    service->calls.clear();  // their callbacks hold the requests, which hold the service
    return methods;
  }
};

TEST_F(RenewalFlowRoundTripsTest, TheStoredCardsTravelAlongsideTheOrderUnlessACardNamedUpFrontMustBeCheckedFirst) {
  EXPECT_EQ(sentBeforeAnyAnswer(""), (std::vector<std::string>{"POST", "GET endpoint"}));
  EXPECT_EQ(sentBeforeAnyAnswer("CARD-REF-0001"), (std::vector<std::string>{"GET endpoint"}));
}

}  // namespace
}  // namespace varnel::testing
