#include "varnel/screens/GuestRenewalPresenter.h"

#include <QString>

#include <utility>

#include "varnel/entitlements/VNLEntitlementAnnualPass.h"
#include "varnel/entitlements/VNLVarnel.h"
#include "varnel/errors/APNotificationBanner.h"
#include "varnel/host/Registry.h"
#include "varnel/host/KTVRNotificationBanner.h"
#include "varnel/platform/Describe.h"
#include "varnel/purchase/RenewableState.h"

namespace varnel {
namespace {

std::string htmlEscaped(const std::string& text) {
  return QString::fromStdString(text).toHtmlEscaped().toStdString();
}

std::string pricedAmount(const std::optional<std::string>& value, const std::string& currency) {
  return value ? htmlEscaped(*value + " " + currency) : std::string("—");
}

std::string renewableStateText(RenewableState state) {
  switch (state.value()) {
    case RenewableState::eligibleNow: return "Renewable now";
    case RenewableState::eligibleLater: return "Renewable later";
    case RenewableState::ineligible: return "Not renewable";
  }
  return "";
}

std::string renewalOrderHtml(const RenewalOrder& order) {
  std::string html = "<p><b>Order " + htmlEscaped(order.orderId) + "</b> — " +
                     (order.paymentPlan ? "monthly plan" : "paid in full") + "</p><p><b>Pass</b>";
  for (const RenewableProduct& product : order.products) html += "<br>" + htmlEscaped(product.passName);
  html += "</p><p><b>Guests</b>";
  for (const RenewableGuest& guest : order.guests) {
    html += "<br>" + htmlEscaped(guest.guestFullName().empty() ? guest.guestFirstName() + " " + guest.guestLastName()
                                                               : guest.guestFullName());
    if (!guest.guestPassName().empty()) html += " — " + htmlEscaped(guest.guestPassName());
  }
  const RenewalPricing& pricing = order.pricing;
  html += "</p><table cellspacing='2'><tr><td>Total</td><td align='right'><b>" +
          pricedAmount(pricing.total, pricing.currency) + "</b></td></tr>";
  if (order.paymentPlan) {
    html += "<tr><td>Due today</td><td align='right'>" + pricedAmount(pricing.downPaymentAmount, pricing.currency) +
            "</td></tr><tr><td>Each month</td><td align='right'>" +
            pricedAmount(pricing.monthlyPaymentAmount, pricing.currency) + "</td></tr>";
  }
  if (pricing.taxAmount) html += "<tr><td>Tax</td><td align='right'>" + pricedAmount(pricing.taxAmount, pricing.currency) + "</td></tr>";
  return html + "</table>";
}

/// The policies' texts are the service's HTML, shown as they stand.
std::string renewalTermsHtml(const RenewalOrder& order) {
  std::string html;
  for (const auto& policy : order.termsAndConditionsPolicies) {
    html += "<h4>" + htmlEscaped(policy.name) + "</h4>";
    for (const auto& description : policy.descriptions) html += description.htmlText;
  }
  if (html.empty() && !order.bookingTermsAndConditions.empty()) html = order.bookingTermsAndConditions;
  return html;
}

std::string renewalContractHtml(const VNLContractDataModel& contract) {
  std::string html = contract.contractForMobile;
  if (contract.linksDictionary.empty()) return html;
  html += "<h4>Links</h4><ul>";
  for (const auto& [name, link] : contract.linksDictionary) {
    html += "<li><a href=\"" + htmlEscaped(link) + "\">" + htmlEscaped(name) + "</a></li>";
  }
  return html + "</ul>";
}

std::string storedCardLabel(const PaymentAccount& account) {
  const CreditCard& card = account.creditCard();
  return card.paymentMethod() + " " + maskedCardNumber(card.cardNumber()) + " — " +
         account.guestDetails().firstName() + " " + account.guestDetails().lastName() + " (" +
         card.retrievalReferenceNumber() + ")";
}

/// Keeps the banner it is asked for instead of showing it.
class CapturingBannerFactory final : public KTVRNotificationBannerFactory {
  class Captured final : public KTVRNotificationBanner {
   public:
    Captured(std::optional<GuestBanner>& into, KTVRNotificationBannerKind kind, std::string title,
             std::string message)
        : KTVRNotificationBanner(kind, std::nullopt, std::move(title), std::move(message)), into_(into) {}
    void show() override { into_ = GuestBanner{title(), message(), phoneNumber()}; }

   private:
    std::optional<GuestBanner>& into_;
  };

 public:
  std::shared_ptr<KTVRNotificationBanner> transactionalErrorBanner(const Error&, std::string title,
                                                                   std::string message) override {
    return std::make_shared<Captured>(banner, KTVRNotificationBannerKind::transactionalError, title, message);
  }
  std::shared_ptr<KTVRNotificationBanner> serviceErrorBanner(const Error&, std::string title,
                                                             std::string message) override {
    return std::make_shared<Captured>(banner, KTVRNotificationBannerKind::serviceError, title, message);
  }
  std::shared_ptr<KTVRNotificationBanner> validationErrorBanner(std::string title, std::string message) override {
    return std::make_shared<Captured>(banner, KTVRNotificationBannerKind::validationError, title, message);
  }
  std::optional<GuestBanner> banner;
};

}  // namespace

std::shared_ptr<GuestRenewalPresenter> GuestRenewalPresenter::create(
    GuestRenewalView& view, std::shared_ptr<KTVCParkResortContext> parkContext) {
  std::shared_ptr<GuestRenewalPresenter> presenter(new GuestRenewalPresenter(view, std::move(parkContext)));
  presenter->reloadPasses();
  return presenter;
}

GuestRenewalPresenter::GuestRenewalPresenter(GuestRenewalView& view, std::shared_ptr<KTVCParkResortContext> parkContext)
    : view_(&view), parkContext_(std::move(parkContext)) {}

GuestRenewalPresenter::~GuestRenewalPresenter() = default;

void GuestRenewalPresenter::changed() {
  if (view_) view_->renewalScreenChanged(screen_);
}

void GuestRenewalPresenter::detach() {
  view_ = nullptr;
  cardReply_ = {};
  signReply_ = {};
  flow_.reset();
}

void GuestRenewalPresenter::reloadPasses() {
  GuestRenewalScreen fresh;
  const VNLVarnel varnel;
  for (const auto& entitlement : varnel.allEntitlements()) {
    const auto* pass = dynamic_cast<const VNLEntitlementAnnualPass*>(entitlement.get());
    if (!pass) continue;
    const RenewableState state(*pass);
    const std::string expires = describe(pass->endValidityDate()).substr(0, 10);
    fresh.passes.push_back({pass->productInstanceID(),
                            pass->passDisplayName() + " — " + pass->holderName() + ", expires " + expires,
                            renewableStateText(state), state == RenewableState::eligibleNow,
                            pass->renewableEntitlementMonthlyPaymentEligible()});
  }
  screen_ = std::move(fresh);
  accounts_.clear();
  cardReply_ = {};
  signReply_ = {};
  termsAtPay_.reset();
  for (std::size_t row = 0; row < screen_.passes.size(); ++row) {
    if (screen_.passes[row].renewableNow) {
      choosePass(static_cast<int>(row));
      return;
    }
  }
  changed();
}

void GuestRenewalPresenter::choosePass(int row) {
  if (row < 0 || row >= static_cast<int>(screen_.passes.size()) || awaitingFlow_) return;
  screen_.chosenPass = row;
  const GuestPassRow& pass = screen_.passes[static_cast<std::size_t>(row)];
  screen_.canRenew = pass.renewableNow;
  if (!pass.monthlyAvailable) screen_.monthlyPlan = false;
  changed();
}

void GuestRenewalPresenter::setMonthlyPlan(bool monthly) {
  if (screen_.chosenPass < 0 || awaitingFlow_) return;
  screen_.monthlyPlan = monthly && screen_.passes[static_cast<std::size_t>(screen_.chosenPass)].monthlyAvailable;
  changed();
}

void GuestRenewalPresenter::renew() {
  if (!screen_.canRenew || awaitingFlow_ || screen_.page != GuestRenewalScreen::Page::passes) return;
  flow_ = RenewalFlow::create(weak_from_this());
  awaitingFlow_ = true;
  screen_.canRenew = false;
  screen_.busyStatus = stepStatus(RenewalStep::passes);
  changed();
  RenewalRequest request;
  request.parkContext = parkContext_;
  request.passId = screen_.passes[static_cast<std::size_t>(screen_.chosenPass)].passId;
  request.monthlyPlan = screen_.monthlyPlan;
  flow_->start(std::move(request));
}

void GuestRenewalPresenter::setTermsAccepted(bool accepted) {
  screen_.termsAccepted = accepted;
  updatePayButton();
  changed();
}

void GuestRenewalPresenter::chooseCard(int row) {
  if (row < 0 || row >= static_cast<int>(accounts_.size())) return;
  screen_.chosenCard = row;
  changed();
}

void GuestRenewalPresenter::setSecurityCode(std::string code) { screen_.securityCode = std::move(code); }

void GuestRenewalPresenter::setContractSigned(bool isSigned) {
  screen_.contractSigned = isSigned;
  updatePayButton();
  changed();
}

void GuestRenewalPresenter::updatePayButton() {
  if (screen_.page == GuestRenewalScreen::Page::checkout) {
    screen_.payEnabled = cardReply_ && screen_.termsAccepted && screen_.chosenCard >= 0;
  } else if (screen_.page == GuestRenewalScreen::Page::contract) {
    screen_.payEnabled = signReply_ && screen_.contractSigned;
  } else {
    screen_.payEnabled = false;
  }
}

void GuestRenewalPresenter::pay() {
  if (!screen_.payEnabled) return;
  screen_.payEnabled = false;
  if (screen_.page == GuestRenewalScreen::Page::checkout && cardReply_) {
    const PaymentAccount& account = accounts_[static_cast<std::size_t>(screen_.chosenCard)];
    termsAtPay_ = screen_.termsAccepted;
    screen_.busyStatus = stepStatus(RenewalStep::checks);
    changed();
    auto reply = std::exchange(cardReply_, {});
    reply(screen_.securityCode.empty() ? account : withSecurityCode(account, screen_.securityCode));
  } else if (screen_.page == GuestRenewalScreen::Page::contract && signReply_) {
    screen_.busyStatus = stepStatus(RenewalStep::checkout);
    changed();
    std::exchange(signReply_, {})(true);
  }
}

void GuestRenewalPresenter::cancel() {
  if (flow_ && flow_->isRunning()) {
    flow_->cancel();
    return;  // the flow ends as refused; the end brings the passes back
  }
  startOver();
}

void GuestRenewalPresenter::startOver() {
  if (flow_ && flow_->isRunning()) return;
  awaitingFlow_ = false;
  flow_.reset();
  reloadPasses();
}

std::string GuestRenewalPresenter::stepStatus(RenewalStep step) {
  switch (step) {
    case RenewalStep::passes: return "Reading the passes…";
    case RenewalStep::cards: return "Reading the stored cards…";
    case RenewalStep::order: return "Creating the order…";
    case RenewalStep::checks: return "Checking the guest's details…";
    case RenewalStep::contract: return "Fetching the monthly-payment contract…";
    case RenewalStep::checkout: return "Paying…";
    case RenewalStep::confirmation: return "Reading the confirmation…";
  }
  return "Working…";
}

void GuestRenewalPresenter::renewalStepStarted(RenewalStep step) {
  screen_.busyStatus = stepStatus(step);
  changed();
}

void GuestRenewalPresenter::renewalOrderCreated(const RenewalOrder& order) {
  screen_.orderHtml = renewalOrderHtml(order);
  screen_.termsHtml = renewalTermsHtml(order);
}

void GuestRenewalPresenter::chooseCard(const RenewalOrder& order, const std::vector<PaymentAccount>& accounts,
                                       CardReply reply) {
  if (screen_.orderHtml.empty()) renewalOrderCreated(order);
  accounts_ = accounts;
  screen_.cards.clear();
  for (const PaymentAccount& account : accounts_) screen_.cards.push_back(storedCardLabel(account));
  screen_.chosenCard = accounts_.empty() ? -1 : 0;
  cardReply_ = std::move(reply);
  screen_.page = GuestRenewalScreen::Page::checkout;
  screen_.payTitle = order.paymentPlan ? "Continue" : "Pay";
  screen_.busyStatus.clear();
  updatePayButton();
  changed();
}

void GuestRenewalPresenter::acceptTerms(const RenewalOrder&, Reply reply) {
  reply(std::exchange(termsAtPay_, std::nullopt).value_or(false));
}

void GuestRenewalPresenter::signContract(const VNLContractDataModel& contract, Reply reply) {
  screen_.contractHtml = renewalContractHtml(contract);
  screen_.contractSigned = false;
  signReply_ = std::move(reply);
  screen_.page = GuestRenewalScreen::Page::contract;
  screen_.payTitle = "Pay";
  screen_.busyStatus.clear();
  updatePayButton();
  changed();
}

void GuestRenewalPresenter::askSecurityCode(const RenewalJournalEntry&, CodeReply reply) {
  reply(screen_.securityCode.empty() ? std::nullopt : std::optional<std::string>(screen_.securityCode));
}

void GuestRenewalPresenter::renewalFlowDidEnd(const RenewalOutcome& outcome) {
  awaitingFlow_ = false;
  cardReply_ = {};
  signReply_ = {};
  screen_.busyStatus.clear();
  screen_.payEnabled = false;
  screen_.outcome = outcome.kind;
  // A renewal the guest gave up shows the passes again.
  if (outcome.kind == RenewalOutcome::Kind::refused && !outcome.error && !outcome.badRequest &&
      !outcome.alreadyRenewed && !outcome.busy) {
    reloadPasses();
    return;
  }
  showEnd(outcome);
  changed();
}

void GuestRenewalPresenter::showEnd(const RenewalOutcome& outcome) {
  screen_.banner.reset();
  if (outcome.kind == RenewalOutcome::Kind::confirmed && outcome.confirmation) {
    const RenewalConfirmation& confirmation = *outcome.confirmation;
    const RenewalPayment& payment = confirmation.payment();
    const std::string card = outcome.maskedCard.empty() ? payment.maskedCardNumber() : outcome.maskedCard;
    screen_.page = GuestRenewalScreen::Page::confirmation;
    screen_.resultTitle = "Renewed";
    screen_.resultHtml = "<table cellspacing='4'><tr><td>Confirmation number</td><td><b>" +
                         htmlEscaped(confirmation.confirmationNumber()) + "</b></td></tr><tr><td>Status</td><td>" +
                         htmlEscaped(confirmation.status()) + "</td></tr><tr><td>Amount charged</td><td>" +
                         htmlEscaped(payment.amount() + " " + confirmation.pricing().currency) +
                         "</td></tr><tr><td>Card</td><td>" + htmlEscaped(payment.cardType() + " " + card) +
                         "</td></tr></table>";
    return;
  }
  screen_.page = GuestRenewalScreen::Page::banner;
  if (outcome.kind == RenewalOutcome::Kind::unknown) {
    screen_.banner = bannerFor(APError::PaymentLostConnection, parkContext_);
    screen_.resultTitle = "Your renewal is being confirmed";
    screen_.resultHtml = "<p>The answer to the payment did not arrive. The renewal is being confirmed and will "
                         "not be charged twice.</p>";
  } else if (outcome.alreadyRenewed) {
    screen_.resultTitle = "Already renewed";
    screen_.resultHtml = "<p>This pass is already renewed. Nothing was charged.</p>";
  } else {
    if (outcome.error) screen_.banner = bannerFor(*outcome.error, parkContext_);
    screen_.resultTitle = "Not renewed";
    screen_.resultHtml = "<p>Nothing was charged.</p>" +
                         (outcome.error ? std::string() : "<p>" + htmlEscaped(outcome.reason) + "</p>");
  }
}

GuestBanner GuestRenewalPresenter::bannerFor(APError error, const std::shared_ptr<KTVCParkResortContext>& park) {
  // The module picks the banner's kind, title, message and help number; the
  // window shows what it made instead of the host's banner.
  const auto shown = host::Registry::get<KTVRNotificationBannerFactory>();
  const auto capture = std::make_shared<CapturingBannerFactory>();
  host::Registry::set<KTVRNotificationBannerFactory>(capture);
  APNotificationBanner::showNotificationBanner(error, park);
  host::Registry::set<KTVRNotificationBannerFactory>(shown);
  GuestBanner banner = capture->banner.value_or(GuestBanner{});
  if (banner.message.empty()) banner.message = std::string(description(error));
  return banner;
}

}  // namespace varnel
