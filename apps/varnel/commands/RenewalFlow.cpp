#include "commands/RenewalFlow.h"

#include <iostream>

#include "Command.h"
#include "commands/ErrorReport.h"
#include "commands/PaymentAccountText.h"
#include "commands/RenewalSteps.h"
#include "varnel/checkout/CheckoutChecks.h"
#include "varnel/checkout/ContractFetcher.h"
#include "varnel/checkout/PurchaseHandler.h"
#include "varnel/errors/APNotificationBanner.h"
#include "varnel/errors/ErrorMapping.h"
#include "varnel/host/Registry.h"
#include "varnel/services/CommerceRequests.h"
#include "varnel/services/VNLParseCreateOrderResponse.h"
#include "varnel/services/VNLParsePaymentAccounts.h"
#include "varnel/standalone/TerminalBanner.h"

namespace varnel::cli {
namespace {

/// Raised when a step ends the renewal with a commerce failure.
struct StepFailure {
  std::string step;
  std::optional<APError> error;
  std::string reason;
};

class Progress {
 public:
  explicit Progress(bool monthly) : total_(monthly ? 7 : 6) {}
  void step(const std::string& text) { std::cerr << "[" << ++current_ << "/" << total_ << "] " << text << '\n'; }
  void detail(const std::string& text) { std::cerr << "      " << text << '\n'; }

 private:
  int current_ = 0;
  int total_;
};

[[noreturn]] void fail(const std::string& step, const CallbackOutcome& outcome) {
  if (outcome.silent) throw StepFailure{step, std::nullopt, "the answer was not one the module acts on"};
  throw StepFailure{step, outcome.error ? commerceErrorOf(*outcome.error) : std::nullopt,
                    outcome.error ? describe(*outcome.error) : "the request failed without an error"};
}

std::shared_ptr<VNLEntitlement> choosePass(const CommerceSession& session, const std::string& wanted) {
  if (!wanted.empty()) {
    auto pass = findPass(session.varnel(), wanted);
    const auto state = renewableState(*pass);
    if (!state) throw UsageError("\"" + wanted + "\" is not an annual pass and cannot be renewed");
    if (*state != RenewableState::eligibleNow || !pass->entitlementRenewable()) {
      throw UsageError("the pass \"" + wanted + "\" cannot be renewed now (its renewal state is " +
                       std::string(state->rawValue()) + ")");
    }
    return pass;
  }
  for (const auto& pass : session.varnel().renewableEntitlements()) {
    if (auto state = renewableState(*pass); state && *state == RenewableState::eligibleNow) return pass;
  }
  throw UsageError("the guest has no annual pass that can be renewed now");
}

PaymentAccount chooseCard(const std::vector<PaymentAccount>& accounts, const RenewOptions& options) {
  const PaymentAccount* chosen = accounts.empty() ? nullptr : &accounts.front();
  if (!options.card.empty()) {
    chosen = nullptr;
    std::string known;
    for (const auto& account : accounts) {
      if (account.creditCard().retrievalReferenceNumber() == options.card) chosen = &account;
      known += (known.empty() ? "" : ", ") + account.creditCard().retrievalReferenceNumber();
    }
    if (!chosen) throw UsageError("the guest has no card \"" + options.card + "\" (stored cards: " + known + ")");
  }
  if (!chosen) throw StepFailure{"checks", APError::MissingPaymentMethod, "the guest has no stored card"};
  if (options.cvv.empty()) return *chosen;
  const CreditCard& card = chosen->creditCard();
  return PaymentAccount(chosen->guestDetails(),
                        CreditCard(card.isActive(), card.chargingPrivileges(), card.cardNumber(), card.expirationDate(),
                                   card.expirationMonth(), card.expirationYear(), card.paymentMethod(),
                                   card.paymentMethodType(), card.retrievalReferenceNumber(),
                                   card.retrievalReferenceKey(), options.cvv, card.isScanned()),
                        chosen->cardHolderAddress());
}

/// Hands the handler's outcome to the main queue.
class CheckoutListener final : public PurchaseHandlerDelegate {
 public:
  explicit CheckoutListener(std::shared_ptr<MainQueue> queue) : queue_(std::move(queue)) {}
  void purchaseHandlerDidComplete(PurchaseHandler&) override {
    queue_->post([this] { completed = true; });
  }
  void purchaseHandlerDidFail(const Error& error, PurchaseHandler&) override {
    queue_->post([this, error] { failure = error; });
  }
  bool completed = false;
  std::optional<Error> failure;

 private:
  std::shared_ptr<MainQueue> queue_;
};

struct Renewal {
  RenewalOrder order;
  std::optional<VNLContractDataModel> contract;
  RenewalConfirmation confirmation;
  std::string maskedCard;
};

Renewal renew(CommerceSession& session, const RenewOptions& options) {
  const bool monthly = options.plan == "monthly";
  Progress progress(monthly);
  Renewal renewal;

  progress.step("Renewable passes");
  auto pass = choosePass(session, options.pass);
  progress.detail(pass->productInstanceID() + " " + pass->passDisplayName() + ", eligible for renewal now");

  progress.step(std::string("Create order (") + (monthly ? "monthly plan" : "paid in full") + ")");
  const CallbackOutcome created = sendCreateOrder(session, {renewalProduct(*pass, session)}, monthly);
  if (!created.succeeded) fail("order", created);
  renewal.order = VNLParseCreateOrderResponse().parseCreateOrder(*created.value);
  // The parser marks every order as monthly; the host knows the plan it asked for.
  renewal.order.paymentPlan = monthly;
  progress.detail("order " + renewal.order.orderId + ", total " + renewal.order.pricing.total.value_or("?") + " " +
                  renewal.order.pricing.currency);

  progress.step("Stored cards");
  const CallbackOutcome listed =
      session.await([&](auto success, auto failure) { profileAccounts(session.service(), success, failure); });
  if (!listed.succeeded) fail("cards", listed);
  const PaymentAccount account =
      chooseCard(VNLParsePaymentAccounts().parsePaymentAccounts(listed.value.value_or(Json())), options);
  renewal.maskedCard = maskedCardNumber(account.creditCard().cardNumber());
  progress.detail("paying with " + account.creditCard().retrievalReferenceNumber() + " " + renewal.maskedCard);

  progress.step("The guest's checks");
  CheckoutChoices choices{account, options.acceptTerms, monthly, options.signContract};
  // The signature is asked for once the guest has seen the contract.
  if (auto failed = CheckoutChecks::firstFailure(choices); failed && *failed != APError::ContractNotSigned) {
    throw StepFailure{"checks", failed, "a check before checkout failed"};
  }

  if (monthly) {
    progress.step("Monthly-payment contract");
    bool done = false;
    std::optional<Error> error;
    ContractFetcher().fetchMonthlyContract(
        renewal.order.orderId, account, renewal.order,
        [&](const std::optional<VNLContractDataModel>& contract) { renewal.contract = contract, done = true; },
        [&](const std::optional<Error>& failure) { error = failure, done = true; });
    if (!session.runUntil([&] { return done; }) || !renewal.contract) {
      fail("contract", CallbackOutcome{!done, false, std::nullopt, error});
    }
    if (!options.commerce.json) {
      std::cout << "Monthly-payment contract:\n" << renewal.contract->contractForMobile << '\n';
      for (const auto& [name, link] : renewal.contract->linksDictionary) std::cout << "  " << name << ": " << link << '\n';
    }
    progress.detail(options.signContract ? "signed by the guest" : "not signed");
    if (auto failed = CheckoutChecks::firstFailure(choices)) throw StepFailure{"contract", failed, "not signed"};
  }

  progress.step("Express checkout");
  auto handler = PurchaseHandler::create();
  auto listener = std::make_shared<CheckoutListener>(host::Registry::get<MainQueue>());
  handler->setDelegate(listener);
  handler->beginPurchaseTransaction(renewal.order.orderId, account, renewal.order);
  session.runUntil([&] { return listener->completed || listener->failure.has_value(); });
  if (listener->failure) fail("checkout", CallbackOutcome{false, false, std::nullopt, listener->failure});
  if (!listener->completed || !handler->purchaseResults()) fail("checkout", CallbackOutcome{});
  renewal.confirmation = *handler->purchaseResults();

  progress.step("Confirmation");
  return renewal;
}

void printConfirmation(const Renewal& renewal) {
  const RenewalConfirmation& confirmation = renewal.confirmation;
  const RenewalPayment& payment = confirmation.payment();
  std::cout << "Renewed.\n"
            << "Confirmation number: " << confirmation.confirmationNumber() << '\n'
            << "Status:              " << confirmation.status() << '\n'
            << "Amount charged:      " << payment.amount() << ' ' << confirmation.pricing().currency << '\n'
            << "Card:                " << payment.cardType() << ' '
            << (payment.maskedCardNumber().empty() ? renewal.maskedCard : payment.maskedCardNumber()) << '\n';
}

}  // namespace

int runRenewal(const RenewOptions& options) {
  if (options.commerce.json) {
    // Banners would break the one JSON document on stdout.
    host::Registry::set<KTVRNotificationBannerFactory>(std::make_shared<standalone::TerminalBannerFactory>(std::cerr));
  }
  CommerceSession session(options.commerce);
  try {
    const Renewal renewal = renew(session, options);
    if (options.commerce.json) {
      std::cout << dumpJson(OrderedJson{{"order", renewal.order.toJson()},
                                        {"contract", renewal.contract ? renewal.contract->toJson() : Json()},
                                        {"confirmation", renewal.confirmation.toJson()}})
                << '\n';
    } else {
      printConfirmation(renewal);
    }
    return 0;
  } catch (const StepFailure& failure) {
    std::cerr << "varnel: the renewal stopped at step \"" << failure.step << "\": "
              << (failure.error ? std::string(description(*failure.error)) : failure.reason) << '\n';
    if (options.commerce.json) {
      std::cout << dumpJson(OrderedJson{{"step", failure.step},
                                        {"error", failure.error ? describeError(*failure.error, session.park())
                                                                : OrderedJson{{"case", nullptr}, {"reason", failure.reason}}}})
                << '\n';
    }
    if (failure.error) APNotificationBanner::showNotificationBanner(*failure.error, session.parkContext());
    return 1;
  }
}

}  // namespace varnel::cli
