#pragma once
// The renewal road's state. Every member function runs on the main queue's
// thread: request ends and the delegate's replies are brought there first.
// `run_` counts renewals, so that a reply or an answer that belongs to a
// renewal that has ended (or was cancelled) is dropped.

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "WatchedRequests.h"
#include "varnel/checkout/RenewalFlow.h"
#include "varnel/host/Registry.h"
#include "varnel/platform/ConnectionWarmer.h"

namespace varnel {

struct RenewalFlow::Impl : std::enable_shared_from_this<RenewalFlow::Impl> {
  Impl(std::weak_ptr<RenewalFlowDelegate> delegate, std::shared_ptr<RenewalJournal> journal)
      : delegate_(std::move(delegate)), journal_(std::move(journal)) {}

  static std::optional<std::string> signedInGuest();
  const std::shared_ptr<RenewalJournal>& journal() const { return journal_; }

  void start(RenewalRequest request);
  void cancel();
  bool running() const { return running_; }
  void abandon();

 private:
  using Step = RenewalStep;

  // RenewalFlowSteps.cpp: the road up to the checkout.
  void choosePass();
  void listCards();
  void createOrder();
  void orderAnswered(const checkout_detail::RequestEnd& end);
  void cardsAnswered(const checkout_detail::RequestEnd& end);
  void whenOrderAndCardsKnown();
  void cardChosen(std::optional<PaymentAccount> account);
  void termsAnswered(bool accepted);
  void fetchContract();
  void contractRequestEnded(const checkout_detail::RequestEnd& end);
  void contractArrived(std::optional<VNLContractDataModel> contract, std::optional<APError> error,
                       std::string reason);
  void contractSigned(bool signedByGuest);

  // RenewalFlowCheckout.cpp: the checkout, its outcome, and finishing.
  void checkout();
  void resumeEntry(const RenewalJournalEntry& entry);
  /// A confirmed entry whose guest was never told: told now, nothing sent.
  void tellEarlierConfirmation();
  void securityCodeGiven(std::optional<std::string> code);
  void sendCheckout();
  void checkoutAnswered(const checkout_detail::RequestEnd& end);
  /// While the guest decides, the host keeps a connection to where the
  /// checkout goes ready (when it can), so that paying costs one round trip.
  void keepCheckoutConnectionWarm(const std::string& orderId);

  // Ending and telling.
  void refuse(Step step, std::optional<APError> error, std::string reason);
  void unknown(std::string reason);
  void conclude(RenewalOutcome::Kind kind, Step step, std::optional<APError> error, std::string reason);
  void stepStarted(Step step);
  void stepFinished(Step step);
  /// Calls the delegate on the main queue, while this renewal still runs.
  void tell(std::function<void(RenewalFlowDelegate&)> call);
  /// Runs `task` on the main queue if this renewal still runs then.
  void onMain(std::function<void()> task);
  /// Sends one request; `answered` runs on the main queue.
  using Answered = void (Impl::*)(const checkout_detail::RequestEnd&);
  void send(const std::function<void(checkout_detail::WatchedRequest&)>& start, HTTPHeaderFields extraHeaders,
            Answered answered);
  /// A reply for the delegate: runs `member` once, while this renewal runs.
  template <typename... Args>
  std::function<void(Args...)> reply(void (Impl::*member)(Args...)) {
    auto used = std::make_shared<bool>(false);
    return [weak = weak_from_this(), run = run_, member, used](Args... args) {
      auto self = weak.lock();
      if (!self || *used || self->run_ != run || !self->running_) return;
      *used = true;
      ((*self).*member)(std::move(args)...);
    };
  }

  std::weak_ptr<RenewalFlowDelegate> delegate_;
  std::shared_ptr<RenewalJournal> journal_;

  bool running_ = false;
  std::uint64_t run_ = 0;
  /// The checkout is on its way: cancel() no longer stops anything.
  bool checkoutSent_ = false;
  Step currentStep_ = Step::passes;

  RenewalRequest request_;
  std::string guestId_;
  /// The create-order product that renews the pass.
  Json product_;
  RenewalJournalEntry entry_;
  RenewalOutcome outcome_;
  std::optional<std::vector<PaymentAccount>> accounts_;
  std::optional<PaymentAccount> account_;
  bool termsAccepted_ = false;
  bool contractSigned_ = false;
  /// The checkout body with the security code, kept in memory only.
  Json checkoutBody_;
  /// Held from the card step until the checkout is on the wire.
  std::unique_ptr<ConnectionWarmer::Hold> checkoutConnection_;
};

}  // namespace varnel
