#pragma once
// One renewal of an annual pass for the signed-in guest, from the pass to the
// confirmation, on the module's pieces: the create-order request, the stored
// cards, the guest's checks, the monthly contract, the express checkout with
// its idempotency key, and the renewal journal.
//
//   auto flow = RenewalFlow::create(myDelegate);           // delegate held weakly
//   flow->start({.passId = "AP-100201", .monthlyPlan = false});
//   ... the delegate is asked for the guest's decisions and hears each step ...
//   ... and finally renewalFlowDidEnd(outcome), exactly once per start().
//
// Threads: call start(), cancel() and the decisions' replies on the main
// queue's thread. Requests go out on the host's networking; every delegate
// call is posted to the main queue (MainQueue in the host registry; called
// directly when there is none). After the flow is released, or once it has
// ended, the delegate hears nothing more.
//
// Order of events for a new renewal:
//   passes -> [cards, when a card is named up front] -> order (with the cards
//   alongside, when none is) -> chooseCard -> acceptTerms -> checks ->
//   [contract -> signContract] -> checkout -> confirmation
// A pass whose earlier checkout was interrupted is finished instead: its
// recorded checkout is sent again with the same key (askSecurityCode first,
// where the guest had entered one), and no new order is made.
// From chooseCard (or askSecurityCode) until the checkout leaves, a
// ConnectionWarmer in the host registry, when there is one, keeps a
// connection to the checkout's service ready: paying costs one round trip
// however long the guest spent deciding.
//
// Outcomes (RenewalOutcome):
//   confirmed  the answer carries a confirmation number and the booked status;
//   refused    the renewal stopped and nothing was charged: bad choices, a
//              refusal by the service, a cancel before the checkout;
//   unknown    the checkout may have reached the service (its answer was lost
//              or was not a confirmation): the journal keeps it, and the next
//              renewal of the pass, or resumeUnfinished(), finishes it with the
//              same key. The guest is told PaymentLostConnection, never a failure.
// One renewal runs at a time per flow; a pass has one renewal in flight per
// journal (across processes that share the stand-alone journal's file).

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "varnel/checkout/RenewalJournal.h"
#include "varnel/errors/APError.h"
#include "varnel/host/KTVCParkResortContext.h"
#include "varnel/platform/Error.h"
#include "varnel/purchase/PaymentAccount.h"
#include "varnel/purchase/RenewalConfirmation.h"
#include "varnel/purchase/RenewalOrder.h"
#include "varnel/services/VNLContractDataModel.h"

namespace varnel {

enum class RenewalStep { passes, cards, order, checks, contract, checkout, confirmation };
/// "passes", "cards", "order", "checks", "contract", "checkout", "confirmation".
std::string_view renewalStepName(RenewalStep step);

struct RenewalRequest {
  /// The resort the order is made for (required).
  std::shared_ptr<KTVCParkResortContext> parkContext;
  /// The pass to renew (product instance ID); empty: the first one that can be renewed now.
  std::string passId;
  bool monthlyPlan = false;
  /// The stored card named up front (retrieval reference number): the cards are
  /// listed and it is checked, with `securityCode`, before any order is made.
  std::string cardReference;
  std::string securityCode;
  /// Finish this unfinished journal entry instead of renewing a pass.
  std::optional<std::int64_t> journalEntry;
};

struct RenewalOutcome {
  enum class Kind { confirmed, refused, unknown };
  Kind kind = Kind::refused;
  /// The step it ended at.
  RenewalStep step = RenewalStep::passes;
  /// The commerce error the guest is shown (unknown: PaymentLostConnection); none
  /// when the reason is not one of the guest's errors.
  std::optional<APError> error;
  /// Why, for people and logs (no secret).
  std::string reason;
  std::string passId;
  std::string orderId;
  std::optional<RenewalOrder> order;
  std::optional<VNLContractDataModel> contract;
  std::optional<RenewalConfirmation> confirmation;
  /// The card paid with, masked.
  std::string maskedCard;
  /// The service refused because the pass was renewed already.
  bool alreadyRenewed = false;
  /// Unknown because finishing needs the security code that was not given.
  bool needsSecurityCode = false;
  /// Another renewal of the pass is in flight.
  bool busy = false;
  /// The request named a pass or card the guest does not have, or a pass
  /// that cannot be renewed now.
  bool badRequest = false;
  /// This run finished an earlier, interrupted checkout (or told an earlier
  /// confirmation the guest had not seen).
  bool finishedEarlier = false;
  /// The renewal's journal entry; 0 when it never had one.
  std::int64_t journalEntry = 0;
};

/// "confirmed", "refused" or "unknown".
std::string_view renewalOutcomeName(RenewalOutcome::Kind kind);

/// The status the commerce service gives a booked order.
inline constexpr std::string_view kBookedOrderStatus = "BOOKED";
/// A confirmation the guest can be told about: a number and the booked status.
bool isBookedConfirmation(const RenewalConfirmation& confirmation);

/// `account` with the security code the guest entered.
PaymentAccount withSecurityCode(const PaymentAccount& account, const std::string& securityCode);
/// "**** 1234": the last four digits only.
std::string maskedCardNumber(const std::string& number);

class RenewalFlowDelegate {
 public:
  using CardReply = std::function<void(std::optional<PaymentAccount> account)>;
  using Reply = std::function<void(bool yes)>;
  using CodeReply = std::function<void(std::optional<std::string> securityCode)>;

  virtual ~RenewalFlowDelegate() = default;

  virtual void renewalStepStarted(RenewalStep) {}
  virtual void renewalStepFinished(RenewalStep) {}
  /// The order was created (before any decision is asked for).
  virtual void renewalOrderCreated(const RenewalOrder&) {}
  /// The contract arrived (before signContract).
  virtual void renewalContractArrived(const VNLContractDataModel&) {}

  // The guest's decisions. Each reply runs at most once, on the main queue's
  // thread, now or later; a reply after cancel() or after the flow is gone is
  // ignored.
  /// The card to pay with, its security code set where the guest entered one;
  /// none gives the renewal up.
  virtual void chooseCard(const RenewalOrder& order, const std::vector<PaymentAccount>& accounts,
                          CardReply reply) = 0;
  virtual void acceptTerms(const RenewalOrder& order, Reply reply) = 0;
  virtual void signContract(const VNLContractDataModel& contract, Reply reply) = 0;
  /// Finishing an interrupted checkout whose guest had entered a security code.
  virtual void askSecurityCode(const RenewalJournalEntry&, CodeReply reply) { reply(std::nullopt); }

  /// Exactly once per start(). A confirmation counts as shown to the guest
  /// once this returns: its journal entry is marked told. Until then, a run
  /// that ends (a killed process) leaves it to be told by the next one.
  virtual void renewalFlowDidEnd(const RenewalOutcome& outcome) = 0;
  /// True for a host that shows the outcome only later (a tool that prints
  /// after the renewal): it then calls RenewalJournal::markTold with the
  /// outcome's journalEntry once the guest has the confirmation.
  virtual bool showsOutcomeLater() const { return false; }
};

class RenewalFlow : public std::enable_shared_from_this<RenewalFlow> {
 public:
  /// `journal`: the host registry's RenewalJournal when null, else one in memory.
  static std::shared_ptr<RenewalFlow> create(std::weak_ptr<RenewalFlowDelegate> delegate,
                                             std::shared_ptr<RenewalJournal> journal = nullptr);
  ~RenewalFlow();

  /// Starts a renewal; ignored while one runs.
  void start(RenewalRequest request);
  /// Gives the renewal up while it has not reached the checkout (it ends as
  /// refused); ignored once the checkout is being sent.
  void cancel();
  bool isRunning() const;

  /// The signed-in guest's pending journal entries.
  std::vector<RenewalJournalEntry> unfinishedRenewals() const;

  struct Impl;

 private:
  RenewalFlow() = default;
  std::shared_ptr<Impl> impl_;
};

}  // namespace varnel
