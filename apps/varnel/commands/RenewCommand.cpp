// varnel renew: the whole road of a renewal for the signed-in guest, from the
// renewable passes to the confirmation, on the module's RenewalFlow as a host
// app drives it; --resume finishes the renewals whose checkout was interrupted.
//
//   varnel renew [--server URL] [--pass PRODUCT_INSTANCE_ID] [--card REFERENCE] [--cvv CODE]
//                [--plan full|monthly] [--park 1|2] [--accept-terms] [--sign-contract]
//                [--guest FILE] [--defaults PATH] [--json]
//   varnel renew --resume [--cvv CODE] [--json]
//
// Progress goes to stderr as each step happens. Exit status: 0 renewed, 1 a
// refusal the guest was shown (nothing charged), 2 bad input, 3 the outcome
// is unknown (the renewal is being confirmed; --resume finishes it). Without
// --server a mock commerce server runs in this process for the command.

#include <iostream>
#include <memory>

#include "Command.h"
#include "OptionChecks.h"
#include "commands/CommerceSession.h"
#include "commands/OrderText.h"
#include "commands/RenewalOutput.h"
#include "commands/RenewalSteps.h"
#include "varnel/host/Registry.h"
#include "varnel/host/KTVRNotificationBanner.h"
#include "varnel/standalone/TerminalBanner.h"

namespace varnel::cli {
namespace {

struct RenewOptions {
  CommerceOptions commerce;
  std::string pass;
  std::string card;
  std::string cvv;
  std::string plan = "full";
  bool acceptTerms = false;
  bool signContract = false;
  bool resume = false;
};

/// The guest's decisions, taken from the options; progress on stderr.
class CommandLineGuest final : public RenewalFlowDelegate {
 public:
  explicit CommandLineGuest(const RenewOptions& options) : options_(options) {}

  void renewalStepStarted(RenewalStep step) override {
    std::cerr << "[" << ++current_ << "] " << stepTitle(step) << '\n';
  }
  void renewalOrderCreated(const RenewalOrder& order) override {
    std::cerr << "      order " << order.orderId << ", total " << order.pricing.total.value_or("?") << ' '
              << order.pricing.currency << '\n';
    if (!options_.commerce.json) std::cout << orderSummary(order);
  }
  void chooseCard(const RenewalOrder&, const std::vector<PaymentAccount>& accounts, CardReply reply) override {
    if (accounts.empty()) return reply(std::nullopt);
    const PaymentAccount& first = accounts.front();
    std::cerr << "      paying with " << first.creditCard().retrievalReferenceNumber() << ' '
              << maskedCardNumber(first.creditCard().cardNumber()) << '\n';
    reply(options_.cvv.empty() ? first : withSecurityCode(first, options_.cvv));
  }
  void acceptTerms(const RenewalOrder&, Reply reply) override { reply(options_.acceptTerms); }
  void signContract(const VNLContractDataModel& contract, Reply reply) override {
    if (!options_.commerce.json) {
      std::cout << "Monthly-payment contract:\n" << plainTextOfHtml(contract.contractForMobile) << "\nLinks:\n";
      for (const auto& [name, link] : contract.linksDictionary) std::cout << "  " << name << ": " << link << '\n';
    }
    std::cerr << "      " << (options_.signContract ? "signed by the guest" : "not signed") << '\n';
    reply(options_.signContract);
  }
  void askSecurityCode(const RenewalJournalEntry&, CodeReply reply) override {
    reply(options_.cvv.empty() ? std::nullopt : std::optional<std::string>(options_.cvv));
  }
  void renewalFlowDidEnd(const RenewalOutcome& ended) override { outcome = ended; }
  // The outcome is printed once the renewal is over; see markPrintedTold().
  bool showsOutcomeLater() const override { return true; }

  std::optional<RenewalOutcome> outcome;

 private:
  static std::string stepTitle(RenewalStep step) {
    switch (step) {
      case RenewalStep::passes: return "Renewable passes";
      case RenewalStep::cards: return "Stored cards";
      case RenewalStep::order: return "Create order";
      case RenewalStep::checks: return "The guest's checks";
      case RenewalStep::contract: return "Monthly-payment contract";
      case RenewalStep::checkout: return "Express checkout";
      case RenewalStep::confirmation: return "Confirmation";
    }
    return "";
  }

  const RenewOptions& options_;
  int current_ = 0;
};

/// Runs one renewal to its end on the session's main queue.
RenewalOutcome runOne(CommerceSession& session, const RenewOptions& options, RenewalRequest request) {
  auto guest = std::make_shared<CommandLineGuest>(options);
  auto flow = RenewalFlow::create(guest);
  request.parkContext = session.parkContext();
  flow->start(std::move(request));
  session.runUntil([&] { return guest->outcome.has_value(); });
  if (guest->outcome) return *guest->outcome;
  RenewalOutcome stuck;
  stuck.reason = "the renewal ended without an outcome";
  return stuck;
}

/// Confirmations printed to a stdout that took them count as told; any
/// other stays in the journal for the next run to tell.
int markPrintedTold(int status, const std::vector<RenewalOutcome>& outcomes) {
  auto journal = host::Registry::get<RenewalJournal>();
  if (!journal || !std::cout.flush().good()) return status;
  for (const RenewalOutcome& outcome : outcomes) {
    if (outcome.kind == RenewalOutcome::Kind::confirmed && outcome.journalEntry != 0) {
      journal->markTold(outcome.journalEntry);
    }
  }
  return status;
}

int renew(const RenewOptions& options) {
  if (options.commerce.json) {
    // Banners would break the one JSON document on stdout.
    host::Registry::set<KTVRNotificationBannerFactory>(std::make_shared<standalone::TerminalBannerFactory>(std::cerr));
  }
  CommerceOptions commerce = options.commerce;
  if (!options.resume && !options.pass.empty()) commerce.namedPasses = {options.pass};
  CommerceSession session(commerce);
  if (options.resume) {
    std::vector<RenewalOutcome> outcomes;
    for (const RenewalJournalEntry& entry : session.pendingRenewals()) {
      RenewalRequest request;
      request.journalEntry = entry.id;
      request.securityCode = options.cvv;
      outcomes.push_back(runOne(session, options, std::move(request)));
    }
    return markPrintedTold(reportResumed(outcomes, session.parkContext(), options.commerce.json), outcomes);
  }
  // A pass the guest does not have, or one that cannot be renewed, is bad input.
  if (!options.pass.empty()) {
    const auto pass = findPass(session.varnel(), options.pass);
    const auto state = renewableState(*pass);
    if (!state) throw UsageError(echoed(options.pass) + " is not an annual pass and cannot be renewed");
  }
  RenewalRequest request;
  request.passId = options.pass;
  request.monthlyPlan = options.plan == "monthly";
  request.cardReference = options.card;
  request.securityCode = options.cvv;
  const RenewalOutcome outcome = runOne(session, options, std::move(request));
  return markPrintedTold(reportRenewal(outcome, session.parkContext(), options.commerce.json), {outcome});
}

void registerRenewCommand(CLI::App& app) {
  auto options = std::make_shared<RenewOptions>();
  CLI::App* command = app.add_subcommand(
      "renew",
      "Renew an annual pass end to end: order, card, contract, checkout.\n"
      "Exit status: 0 renewed, 1 refused (nothing charged), 2 bad input, 3 unknown: the renewal is being\n"
      "confirmed and will not be charged twice; `varnel renew --resume` finishes it");
  addCommerceOptions(*command, options->commerce);
  command->add_option("--pass", options->pass,
                      "Product instance ID of the pass to renew (default: the first renewable now)")
      ->check(reference());
  command->add_option("--card", options->card, "Reference of the stored card to pay with (default: the first)")
      ->check(reference());
  command->add_option("--cvv", options->cvv, "The card's security code")->check(securityCode());
  command->add_option("--plan", options->plan, "Payment plan: full (default) or monthly")
      ->check(CLI::IsMember({"full", "monthly"}));
  command->add_flag("--accept-terms", options->acceptTerms, "The guest accepts the terms and conditions");
  command->add_flag("--sign-contract", options->signContract, "The guest signs the monthly-payment contract");
  command->add_flag("--resume", options->resume,
                    "Finish every renewal of the guest whose checkout was interrupted (same order, same key)");
  command->callback([options] {
    if (const int status = renew(*options); status != 0) throw CommandExit(status);
  });
}

const CommandRegistration renewRegistration{"renew", &registerRenewCommand};

}  // namespace
}  // namespace varnel::cli
