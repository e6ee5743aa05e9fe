// The renewal road's checkout: written down first, sent with its idempotency
// key, and judged into one of three outcomes; an interrupted one is finished
// by sending the same checkout with the same key. And the road's plumbing:
// ending, telling the delegate, and sending requests.

#include <chrono>
#include <random>

#include "RenewalFlowImpl.h"
#include "RenewalFlowSupport.h"
#include "varnel/checkout/PurchaseHandler.h"
#include "varnel/errors/ErrorMapping.h"
#include "varnel/platform/Describe.h"
#include "varnel/platform/MainQueue.h"
#include "varnel/services/CommerceRequests.h"
#include "varnel/services/VNLParseUpdateSubmitResponse.h"

namespace varnel {

using checkout_detail::RequestEnd;
using checkout_detail::WatchedRequest;
using State = RenewalJournalEntry::State;

namespace {

/// The service's refusal of a checkout for a pass another charged order renewed.
constexpr std::string_view kAlreadyRenewedType = "ENTITLEMENT_ALREADY_RENEWED";
/// The same key came back with another body: here, another security code.
constexpr std::string_view kKeyReusedType = "IDEMPOTENCY_KEY_REUSED";
/// The order is paid, by an earlier try of this very checkout whose answer
/// has not been kept yet: the service will tell it once that try is over.
constexpr std::string_view kAlreadyPurchasedType = "ORDER_ALREADY_PURCHASED";

/// A random version-4 UUID.
std::string newIdempotencyKey() {
  std::random_device device;
  std::uniform_int_distribution<int> byte(0, 255);
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string key;
  for (int i = 0; i < 16; ++i) {
    int value = byte(device);
    if (i == 6) value = (value & 0x0f) | 0x40;
    if (i == 8) value = (value & 0x3f) | 0x80;
    if (i == 4 || i == 6 || i == 8 || i == 10) key += '-';
    key += kDigits[value >> 4];
    key += kDigits[value & 0x0f];
  }
  return key;
}

std::string textAt(const Json& body, const char* member) {
  const Json& payments = body.is_object() && body.contains("payments") ? body["payments"] : Json();
  if (!payments.is_array() || payments.empty() || !payments.front().is_object()) return {};
  const auto value = payments.front().find(member);
  return value != payments.front().end() && value->is_string() ? value->get<std::string>() : std::string();
}

}  // namespace

void RenewalFlow::Impl::checkout() {
  stepStarted(Step::checkout);
  const RenewalOrder& order = *outcome_.order;
  checkoutBody_ = PurchaseHandler::parameterDictionaryForPurchase(*account_, order);
  entry_.orderId = order.orderId;
  entry_.monthlyPlan = request_.monthlyPlan;
  entry_.cardReference = account_->creditCard().retrievalReferenceNumber();
  entry_.securityCodeEntered = !account_->creditCard().securityCode().value_or("").empty();
  entry_.amount = textAt(checkoutBody_, "amount");
  entry_.currency = textAt(checkoutBody_, "currency");
  entry_.idempotencyKey = newIdempotencyKey();
  entry_.checkoutBody = RenewalJournalEntry::withoutSecurityCode(checkoutBody_);
  if (auto error = journal_->recordCheckout(entry_)) {
    return refuse(Step::checkout, std::nullopt,
                  "the renewal could not be written down before paying (" + localizedDescription(*error) +
                      "); nothing was sent");
  }
  entry_.state = State::pending;
  sendCheckout();
}

void RenewalFlow::Impl::resumeEntry(const RenewalJournalEntry& entry) {
  entry_ = entry;
  outcome_.finishedEarlier = true;
  outcome_.passId = entry.passId;
  outcome_.orderId = entry.orderId;
  if (entry.confirmedUntold()) return tellEarlierConfirmation();
  stepStarted(Step::checkout);
  if (!entry.securityCodeEntered) return securityCodeGiven(std::string(PurchaseHandler::ParameterDictionaryConstants::tempraryCVV));
  if (!request_.securityCode.empty()) return securityCodeGiven(request_.securityCode);
  keepCheckoutConnectionWarm(entry.orderId);
  tell([entry, reply = reply(&Impl::securityCodeGiven)](RenewalFlowDelegate& delegate) {
    delegate.askSecurityCode(entry, reply);
  });
}

void RenewalFlow::Impl::tellEarlierConfirmation() {
  RenewalConfirmation::Fields fields;
  fields.confirmationNumber = entry_.confirmationNumber;
  fields.status = std::string(kBookedOrderStatus);
  fields.paymentPlan = entry_.monthlyPlan;
  outcome_.confirmation = RenewalConfirmation(std::move(fields));
  stepStarted(Step::confirmation);
  stepFinished(Step::confirmation);
  conclude(RenewalOutcome::Kind::confirmed, Step::confirmation, std::nullopt, "");
}

void RenewalFlow::Impl::securityCodeGiven(std::optional<std::string> code) {
  if (!code || code->empty()) {
    outcome_.needsSecurityCode = true;
    return unknown("finishing this renewal needs the card's security code");
  }
  checkoutBody_ = checkout_detail::withSecurityCodeOf(entry_.checkoutBody, *code);
  sendCheckout();
}

void RenewalFlow::Impl::sendCheckout() {
  checkoutSent_ = true;
  send([orderId = entry_.orderId, this](WatchedRequest& request) {
         createExpressCheckout(request.service(), orderId, checkoutBody_, request.success(), request.failure());
       },
       {{"Idempotency-Key", entry_.idempotencyKey}}, &Impl::checkoutAnswered);
  checkoutConnection_.reset();
}

void RenewalFlow::Impl::keepCheckoutConnectionWarm(const std::string& orderId) {
  auto warmer = host::Registry::get<ConnectionWarmer>();
  if (!warmer || checkoutConnection_) return;
  if (const auto url = expressCheckoutURL(orderId)) checkoutConnection_ = warmer->keepWarm(*url);
}

void RenewalFlow::Impl::checkoutAnswered(const RequestEnd& end) {
  checkoutBody_ = Json();  // the security code goes with it
  if (end.succeeded) {
    const RenewalConfirmation confirmation = end.value && end.value->is_object()
                                                 ? VNLParseUpdateSubmitResponse().parse(*end.value)
                                                 : RenewalConfirmation();
    if (!isBookedConfirmation(confirmation)) {
      return unknown("the service answered without a booked confirmation (status \"" + confirmation.status() +
                     "\")");
    }
    journal_->finish(entry_.id, State::confirmed, confirmation.confirmationNumber());
    outcome_.confirmation = confirmation;
    stepFinished(Step::checkout);
    stepStarted(Step::confirmation);
    stepFinished(Step::confirmation);
    return conclude(RenewalOutcome::Kind::confirmed, Step::confirmation, std::nullopt, "");
  }
  if (!end.sent) {
    journal_->finish(entry_.id, State::refused, "");
    return refuse(Step::checkout, std::nullopt, "the checkout could not be sent (nobody is signed in, or the "
                                                "endpoint is unknown); nothing was charged");
  }
  if (end.failed && end.refusedByService() && !end.answerLost()) {
    const std::string type = end.refusalType();
    if (type == kKeyReusedType) {
      return unknown("the security code does not match the one of the interrupted checkout");
    }
    if (type == kAlreadyPurchasedType) return unknown("the order is paid, its confirmation is not ready yet");
    journal_->finish(entry_.id, State::refused, "");
    outcome_.alreadyRenewed = type == kAlreadyRenewedType;
    return refuse(Step::checkout, end.error ? commerceErrorOf(*end.error) : std::nullopt,
                  "the service refused the checkout (" + type + "); nothing was charged");
  }
  if (end.answerLost()) {
    return unknown("the checkout's answer was lost: " + localizedDescription(*end.transportError));
  }
  unknown(end.failed ? "the checkout failed without the service's refusal: " +
                           (end.error ? describe(*end.error) : std::string("no error"))
                     : "the checkout's answer was not one the module acts on");
}

// Ending and telling.

void RenewalFlow::Impl::cancel() {
  if (!running_ || checkoutSent_) return;
  if (entry_.state == State::pending) return unknown("finishing the interrupted renewal was cancelled");
  refuse(currentStep_, std::nullopt, "the renewal was cancelled; nothing was charged");
}

void RenewalFlow::Impl::abandon() {
  if (running_ && entry_.id != 0) journal_->release(entry_.id);
  running_ = false;
  checkoutConnection_.reset();
}

void RenewalFlow::Impl::refuse(Step step, std::optional<APError> error, std::string reason) {
  conclude(RenewalOutcome::Kind::refused, step, error, std::move(reason));
}

void RenewalFlow::Impl::unknown(std::string reason) {
  conclude(RenewalOutcome::Kind::unknown, Step::checkout, APError::PaymentLostConnection, std::move(reason));
}

void RenewalFlow::Impl::conclude(RenewalOutcome::Kind kind, Step step, std::optional<APError> error, std::string reason) {
  if (!running_) return;
  running_ = false;
  checkoutSent_ = false;
  checkoutConnection_.reset();
  if (entry_.id != 0) journal_->release(entry_.id);
  outcome_.kind = kind;
  outcome_.step = step;
  outcome_.error = error;
  outcome_.reason = std::move(reason);
  outcome_.journalEntry = entry_.state == State::claimed ? 0 : entry_.id;
  // A confirmation counts as told once the delegate has had it; a process
  // that ends before tells it on its next run.
  const std::int64_t toldEntry = kind == RenewalOutcome::Kind::confirmed ? outcome_.journalEntry : 0;
  tell([outcome = outcome_, journal = journal_, toldEntry](RenewalFlowDelegate& delegate) {
    delegate.renewalFlowDidEnd(outcome);
    if (toldEntry != 0 && !delegate.showsOutcomeLater()) journal->markTold(toldEntry);
  });
}

void RenewalFlow::Impl::stepStarted(Step step) {
  currentStep_ = step;
  tell([step](RenewalFlowDelegate& delegate) { delegate.renewalStepStarted(step); });
}

void RenewalFlow::Impl::stepFinished(Step step) {
  tell([step](RenewalFlowDelegate& delegate) { delegate.renewalStepFinished(step); });
}

void RenewalFlow::Impl::tell(std::function<void(RenewalFlowDelegate&)> call) {
  auto weak = weak_from_this();
  const auto run = run_;
  auto deliver = [weak, run, call = std::move(call)] {
    auto self = weak.lock();
    if (!self || self->run_ != run) return;
    if (auto delegate = self->delegate_.lock()) call(*delegate);
  };
  if (auto queue = host::Registry::get<MainQueue>()) {
    queue->post(std::move(deliver));
  } else {
    deliver();
  }
}

void RenewalFlow::Impl::send(const std::function<void(WatchedRequest&)>& start, HTTPHeaderFields extraHeaders,
                             Answered answered) {
  auto weak = weak_from_this();
  const auto run = run_;
  auto deliver = [weak, run, answered](RequestEnd end) {
    auto bringBack = [weak, run, answered, end = std::move(end)] {
      auto self = weak.lock();
      if (self && self->run_ == run && self->running_) ((*self).*answered)(end);
    };
    if (auto queue = host::Registry::get<MainQueue>()) {
      queue->post(std::move(bringBack));
    } else {
      bringBack();
    }
  };
  auto service = KTVRPrivateDataService::sharedInstance();
  if (!service) return deliver(RequestEnd{});
  auto request = WatchedRequest::create(std::move(service), std::move(extraHeaders), std::move(deliver));
  start(*request);
  request->nothingSent();
}

}  // namespace varnel
