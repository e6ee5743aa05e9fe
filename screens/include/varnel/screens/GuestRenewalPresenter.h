#pragma once
// What the guest's renewal screen does, without a widget: the guest's passes
// and their renewal state, the plan, the order with its terms, the stored
// cards and the security code, the monthly contract and its signature, Pay,
// and the end (a confirmation, or the guest's banner). It drives one
// RenewalFlow as the host's RenewalFlowDelegate and keeps everything the
// screen shows in one GuestRenewalScreen; the view is told to redraw it.
//
//   auto presenter = GuestRenewalPresenter::create(view, parkContext);
//   presenter->choosePass(0); presenter->renew();      // ... the order arrives
//   presenter->setTermsAccepted(true); presenter->pay();
//
// Threads: everything on the main queue's thread (the Qt event loop in the
// console); the flow's requests run on the networking's worker and its
// answers come back here. Ownership: the view owns the presenter and calls
// detach() before it goes; the presenter owns the flow, which holds the
// presenter weakly, so a released flow tells nobody anything.

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "varnel/checkout/RenewalFlow.h"
#include "varnel/host/KTVCParkResortContext.h"

namespace varnel {

/// One of the guest's passes as the screen lists it.
struct GuestPassRow {
  std::string passId;
  /// "Name — holder, expires YYYY-MM-DD".
  std::string title;
  /// "Renewable now", "Renewable later", "Not renewable".
  std::string state;
  bool renewableNow = false;
  /// The renewal can be paid monthly.
  bool monthlyAvailable = false;
};

/// The guest's banner for a refusal, as the module configures it.
struct GuestBanner {
  std::string title;
  std::string message;
  std::optional<std::string> phoneNumber;
};

/// Everything the renewal screen shows.
struct GuestRenewalScreen {
  enum class Page { passes, checkout, contract, confirmation, banner };
  Page page = Page::passes;
  /// Non-empty while a request is in flight: what is being done.
  std::string busyStatus;

  std::vector<GuestPassRow> passes;
  int chosenPass = -1;
  bool monthlyPlan = false;
  bool canRenew = false;

  /// The order (guests, pass, pricing) and its terms, as HTML.
  std::string orderHtml;
  std::string termsHtml;
  bool termsAccepted = false;
  /// "VISA **** 1111 — Rowan Ashby (CARD-REF-0001)".
  std::vector<std::string> cards;
  int chosenCard = -1;
  std::string securityCode;
  /// "Pay" in full; "Continue" before a monthly contract.
  std::string payTitle;
  bool payEnabled = false;

  /// The contract as HTML, its links after it.
  std::string contractHtml;
  bool contractSigned = false;

  /// The confirmation, the banner or the unknown outcome's message.
  std::string resultTitle;
  std::string resultHtml;
  std::optional<GuestBanner> banner;
  std::optional<RenewalOutcome::Kind> outcome;
};

class GuestRenewalView {
 public:
  virtual ~GuestRenewalView() = default;
  virtual void renewalScreenChanged(const GuestRenewalScreen& screen) = 0;
};

class GuestRenewalPresenter final : public RenewalFlowDelegate,
                                    public std::enable_shared_from_this<GuestRenewalPresenter> {
 public:
  static std::shared_ptr<GuestRenewalPresenter> create(GuestRenewalView& view,
                                                       std::shared_ptr<KTVCParkResortContext> parkContext);
  ~GuestRenewalPresenter() override;

  const GuestRenewalScreen& screen() const { return screen_; }

  /// Reads the guest's passes again and shows them (the first renewable one chosen).
  void reloadPasses();
  void choosePass(int row);
  /// Ignored where the chosen pass has no monthly plan.
  void setMonthlyPlan(bool monthly);
  /// Starts the renewal of the chosen pass.
  void renew();

  void setTermsAccepted(bool accepted);
  void chooseCard(int row);
  void setSecurityCode(std::string code);
  void setContractSigned(bool isSigned);
  /// Hands the guest's decisions to the flow: the card and the terms on the
  /// checkout page, the signature on the contract page. The button is off
  /// from the click until the flow asks again or ends: a second click sends nothing.
  void pay();
  /// Gives the renewal up (before the checkout) and goes back to the passes.
  void cancel();
  /// After the end: back to the passes.
  void startOver();

  /// The view is going: nothing is drawn any more, and the flow is released.
  void detach();

  // RenewalFlowDelegate
  void renewalStepStarted(RenewalStep step) override;
  void renewalOrderCreated(const RenewalOrder& order) override;
  void chooseCard(const RenewalOrder& order, const std::vector<PaymentAccount>& accounts, CardReply reply) override;
  void acceptTerms(const RenewalOrder& order, Reply reply) override;
  void signContract(const VNLContractDataModel& contract, Reply reply) override;
  void askSecurityCode(const RenewalJournalEntry& entry, CodeReply reply) override;
  void renewalFlowDidEnd(const RenewalOutcome& outcome) override;

  /// The banner the module shows for `error` at `park`, captured instead of shown.
  static GuestBanner bannerFor(APError error, const std::shared_ptr<KTVCParkResortContext>& park);
  /// "Creating the order…" and the like.
  static std::string stepStatus(RenewalStep step);

 private:
  GuestRenewalPresenter(GuestRenewalView& view, std::shared_ptr<KTVCParkResortContext> parkContext);
  void changed();
  void updatePayButton();
  void showEnd(const RenewalOutcome& outcome);

  GuestRenewalView* view_;
  std::shared_ptr<KTVCParkResortContext> parkContext_;
  std::shared_ptr<RenewalFlow> flow_;
  GuestRenewalScreen screen_;
  std::vector<PaymentAccount> accounts_;
  CardReply cardReply_;
  Reply signReply_;
  /// The terms as accepted when Pay was clicked, for the flow's question after the card.
  std::optional<bool> termsAtPay_;
  bool awaitingFlow_ = false;
};

}  // namespace varnel
