// The renewal road up to the checkout: the pass and its claim, the order and
// the stored cards, the guest's choices and checks, the monthly contract.

#include "RenewalFlowImpl.h"
#include "RenewalFlowSupport.h"
#include "varnel/checkout/CheckoutChecks.h"
#include "varnel/checkout/ContractFetcher.h"
#include "varnel/checkout/PurchaseHandler.h"
#include "varnel/entitlements/VNLVarnel.h"
#include "varnel/errors/ErrorMapping.h"
#include "varnel/host/KTVRAuthenticationService.h"
#include "varnel/platform/Describe.h"
#include "varnel/platform/MainQueue.h"
#include "varnel/platform/UserDefaults.h"
#include "varnel/services/CommerceRequests.h"
#include "varnel/services/VNLCreateOrderParameters.h"
#include "varnel/services/VNLParseContractResponse.h"
#include "varnel/services/VNLParseCreateOrderResponse.h"
#include "varnel/services/VNLParsePaymentAccounts.h"

namespace varnel {

using checkout_detail::RequestEnd;
using checkout_detail::WatchedRequest;
using Claim = RenewalJournal::Claim;

namespace {

std::string failureText(const RequestEnd& end) {
  if (end.failed) return end.error ? describe(*end.error) : std::string("the request failed without an error");
  if (!end.sent) return "nothing was sent (nobody is signed in, or the endpoint is unknown)";
  return "the answer was not one the module acts on";
}

std::optional<APError> commerceErrorOfEnd(const RequestEnd& end) {
  return end.error ? commerceErrorOf(*end.error) : std::nullopt;
}

}  // namespace

std::optional<std::string> RenewalFlow::Impl::signedInGuest() {
  auto authentication = host::Registry::get<KTVRAuthenticationService>();
  auto kuid = authentication ? authentication->kuid() : std::nullopt;
  if (!kuid || kuid->empty()) return std::nullopt;
  return kuid;
}

void RenewalFlow::Impl::start(RenewalRequest request) {
  if (running_) return;
  running_ = true;
  ++run_;
  request_ = std::move(request);
  entry_ = {};
  outcome_ = {};
  accounts_.reset();
  account_.reset();
  termsAccepted_ = contractSigned_ = checkoutSent_ = false;
  checkoutBody_ = Json();

  const auto guest = signedInGuest();
  if (!guest) return refuse(Step::passes, std::nullopt, "nobody is signed in");
  if (!request_.parkContext) return refuse(Step::passes, std::nullopt, "no resort was given for the order");
  guestId_ = *guest;
  if (!request_.journalEntry) return choosePass();

  stepStarted(Step::passes);
  const Claim claim = journal_->claimEntry(*request_.journalEntry);
  if (claim.kind == Claim::Kind::busy) {
    outcome_.busy = true;
    outcome_.orderId = claim.entry.orderId;
    return refuse(Step::passes, std::nullopt, "this renewal is being finished by another process");
  }
  if (claim.kind != Claim::Kind::unfinished || claim.entry.guestId != guestId_) {
    return refuse(Step::passes, std::nullopt, claim.reason.empty() ? "no such unfinished renewal" : claim.reason);
  }
  stepFinished(Step::passes);
  resumeEntry(claim.entry);
}

void RenewalFlow::Impl::choosePass() {
  stepStarted(Step::passes);
  const VNLVarnel varnel;
  std::shared_ptr<VNLEntitlement> pass;
  if (!request_.passId.empty()) {
    for (const auto& entitlement : varnel.allEntitlements()) {
      if (entitlement->productInstanceID() == request_.passId) pass = entitlement;
    }
    outcome_.badRequest = true;
    if (!pass) return refuse(Step::passes, std::nullopt, "the guest has no pass \"" + request_.passId + "\"");
    if (!checkout_detail::renewableNow(*pass)) {
      return refuse(Step::passes, std::nullopt, "the pass \"" + request_.passId + "\" cannot be renewed now");
    }
  } else {
    for (const auto& entitlement : varnel.renewableEntitlements()) {
      if (!pass && checkout_detail::renewableNow(*entitlement)) pass = entitlement;
    }
    if (!pass) return refuse(Step::passes, std::nullopt, "the guest has no annual pass that can be renewed now");
  }
  outcome_.badRequest = false;
  outcome_.passId = pass->productInstanceID();

  const Claim claim = journal_->claim(guestId_, outcome_.passId);
  switch (claim.kind) {
    case Claim::Kind::busy:
      outcome_.busy = true;
      return refuse(Step::passes, std::nullopt,
                    "a renewal of the pass \"" + outcome_.passId + "\" is in flight; nothing was sent");
    case Claim::Kind::failed:
      return refuse(Step::passes, std::nullopt, "the renewal journal cannot be written (" + claim.reason +
                                                    "); nothing was sent");
    case Claim::Kind::unfinished:
      stepFinished(Step::passes);
      return resumeEntry(claim.entry);
    case Claim::Kind::fresh:
      entry_ = claim.entry;
      break;
  }
  product_ = checkout_detail::renewalProduct(*pass, guestId_);
  stepFinished(Step::passes);
  request_.cardReference.empty() ? createOrder() : listCards();
}

void RenewalFlow::Impl::listCards() {
  stepStarted(Step::cards);
  send([](WatchedRequest& request) { profileAccounts(request.service(), request.success(), request.failure()); },
       {}, &Impl::cardsAnswered);
}

void RenewalFlow::Impl::createOrder() {
  stepStarted(Step::order);
  const VNLCreateOrderParameters parameters(*request_.parkContext, guestId_, {product_}, request_.monthlyPlan);
  send([&parameters](WatchedRequest& request) {
         createOrderRequest(request.service(), parameters, request.success(), request.failure());
       },
       {}, &Impl::orderAnswered);
  // The stored cards do not depend on the order: they travel alongside it.
  if (!accounts_) listCards();
}

void RenewalFlow::Impl::orderAnswered(const RequestEnd& end) {
  if (!end.succeeded || !end.value || !end.value->is_object()) {
    return refuse(Step::order, end.failed ? commerceErrorOfEnd(end) : std::nullopt, failureText(end));
  }
  RenewalOrder order = VNLParseCreateOrderResponse().parseCreateOrder(*end.value);
  // The parser marks every order as monthly; the plan is the one asked for.
  order.paymentPlan = request_.monthlyPlan;
  if (order.orderId.empty() || !order.pricing.total || order.pricing.total->empty()) {
    return refuse(Step::order, APError::GeneralBookingServiceError,
                  "the order answer has no order identifier or no total; nothing was paid");
  }
  outcome_.orderId = order.orderId;
  outcome_.order = order;
  stepFinished(Step::order);
  tell([order](RenewalFlowDelegate& delegate) { delegate.renewalOrderCreated(order); });
  whenOrderAndCardsKnown();
}

void RenewalFlow::Impl::cardsAnswered(const RequestEnd& end) {
  if (!end.succeeded) return refuse(Step::cards, commerceErrorOfEnd(end), failureText(end));
  accounts_ = VNLParsePaymentAccounts().parsePaymentAccounts(end.value.value_or(Json()));
  stepFinished(Step::cards);
  if (request_.cardReference.empty()) return whenOrderAndCardsKnown();

  // A card named up front is checked before any order is made.
  const PaymentAccount* named = checkout_detail::findCard(*accounts_, request_.cardReference);
  if (!named) {
    // Naming a card the guest does not have is bad input; a listing that
    // holds no card at all is the service's answer, not the guest's mistake.
    outcome_.badRequest = !accounts_->empty();
    std::string known;
    for (const auto& account : *accounts_) {
      known += (known.empty() ? "" : ", ") + account.creditCard().retrievalReferenceNumber();
    }
    return refuse(Step::cards, outcome_.badRequest ? std::nullopt : std::optional(APError::GeneralBookingServiceError),
                  "the guest has no card \"" + request_.cardReference + "\" (stored cards: " +
                      (known.empty() ? "none" : known) + ")");
  }
  if (CheckoutChecks::needsSecurityCode(named->creditCard()) && request_.securityCode.empty()) {
    return refuse(Step::checks, APError::MissingCVV, "the card needs its security code");
  }
  createOrder();
}

void RenewalFlow::Impl::whenOrderAndCardsKnown() {
  if (!outcome_.order || !accounts_) return;
  keepCheckoutConnectionWarm(outcome_.orderId);
  if (!request_.cardReference.empty()) {
    const PaymentAccount* named = checkout_detail::findCard(*accounts_, request_.cardReference);
    if (!named) return refuse(Step::cards, std::nullopt, "the card \"" + request_.cardReference + "\" is gone");
    return cardChosen(request_.securityCode.empty() ? *named : withSecurityCode(*named, request_.securityCode));
  }
  tell([order = *outcome_.order, accounts = *accounts_, reply = reply(&Impl::cardChosen)](
           RenewalFlowDelegate& delegate) { delegate.chooseCard(order, accounts, reply); });
}

void RenewalFlow::Impl::cardChosen(std::optional<PaymentAccount> account) {
  account_ = std::move(account);
  if (account_) outcome_.maskedCard = maskedCardNumber(account_->creditCard().cardNumber());
  tell([order = *outcome_.order, reply = reply(&Impl::termsAnswered)](RenewalFlowDelegate& delegate) {
    delegate.acceptTerms(order, reply);
  });
}

void RenewalFlow::Impl::termsAnswered(bool accepted) {
  termsAccepted_ = accepted;
  stepStarted(Step::checks);
  const CheckoutChoices choices{account_, termsAccepted_, request_.monthlyPlan, false};
  // The signature is asked for once the guest has seen the contract.
  if (auto failed = CheckoutChecks::firstFailure(choices); failed && *failed != APError::ContractNotSigned) {
    return refuse(Step::checks, failed, "a check before the checkout failed");
  }
  stepFinished(Step::checks);
  request_.monthlyPlan ? fetchContract() : checkout();
}

void RenewalFlow::Impl::fetchContract() {
  stepStarted(Step::contract);
  auto defaults = host::Registry::get<UserDefaults>();
  if (defaults && defaults->boolForKey(VNLVarnel::Constants::varnelContractMockKey)) {
    auto weak = weak_from_this();
    const auto run = run_;
    ContractFetcher().mockData(
        [weak, run](const std::optional<VNLContractDataModel>& contract) {
          if (auto self = weak.lock(); self && self->run_ == run) self->contractArrived(contract, std::nullopt, "");
        },
        [weak, run](const std::optional<Error>& error) {
          if (auto self = weak.lock(); self && self->run_ == run) {
            self->contractArrived(std::nullopt, std::nullopt, error ? describe(*error) : "no canned contract");
          }
        });
    return;
  }
  const Json body = PurchaseHandler::parameterDictionaryForPurchase(*account_, *outcome_.order);
  const std::string orderId = outcome_.orderId;
  send([&](WatchedRequest& request) {
         monthlyContractRequest(request.service(), request.session(), orderId, body, request.success(),
                                request.failure());
       },
       {}, &Impl::contractRequestEnded);
}

void RenewalFlow::Impl::contractRequestEnded(const RequestEnd& end) {
  if (end.succeeded && end.value && end.value->is_object()) {
    return contractArrived(VNLParseContractResponse().parseContract(*end.value), std::nullopt, "");
  }
  std::optional<APError> error = end.failed ? commerceErrorOfEnd(end) : std::nullopt;
  std::string reason = failureText(end);
  if (!error && end.transportError) {
    error = APBookingServiceError(*end.transportError);
    reason = "the service refused the contract (" + (end.refusalType().empty() ? describe(*end.transportError)
                                                                                : end.refusalType()) + ")";
  }
  contractArrived(std::nullopt, error, std::move(reason));
}

void RenewalFlow::Impl::contractArrived(std::optional<VNLContractDataModel> contract, std::optional<APError> error,
                                        std::string reason) {
  if (!running_) return;
  if (!contract) return refuse(Step::contract, error, std::move(reason));
  if (contract->contractForMobile.empty() && contract->contractForEmail.empty()) {
    return refuse(Step::contract, std::nullopt,
                  "the contract arrived without its text, so it cannot be signed; nothing was paid");
  }
  outcome_.contract = contract;
  tell([contract = *contract, reply = reply(&Impl::contractSigned)](RenewalFlowDelegate& delegate) {
    delegate.renewalContractArrived(contract);
    delegate.signContract(contract, reply);
  });
}

void RenewalFlow::Impl::contractSigned(bool signedByGuest) {
  contractSigned_ = signedByGuest;
  const CheckoutChoices choices{account_, termsAccepted_, request_.monthlyPlan, contractSigned_};
  if (auto failed = CheckoutChecks::firstFailure(choices)) {
    return refuse(Step::contract, failed, "the guest did not sign the contract");
  }
  stepFinished(Step::contract);
  checkout();
}

}  // namespace varnel
