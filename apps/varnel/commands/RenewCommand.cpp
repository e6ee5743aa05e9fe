// varnel renew: the whole road of a renewal for the signed-in guest, from the
// renewable passes to the confirmation, through the module as a host app
// drives it.
//
//   varnel renew [--server URL] [--pass PRODUCT_INSTANCE_ID] [--card REFERENCE] [--cvv CODE]
//                [--plan full|monthly] [--park 1|2] [--accept-terms] [--sign-contract]
//                [--guest FILE] [--defaults PATH] [--json]
//
// Progress goes to stderr as each step happens. Success prints the
// confirmation (exit 0); a commerce failure shows the guest's banner (exit 1);
// bad input exits 2. Without --server a mock commerce server runs in this
// process for the length of the command.

#include <iostream>
#include <memory>

#include "Command.h"
#include "OptionChecks.h"
#include "commands/CommerceSession.h"
#include "commands/ErrorReport.h"
#include "commands/RenewalFlow.h"

namespace varnel::cli {
namespace {

void registerRenewCommand(CLI::App& app) {
  auto options = std::make_shared<RenewOptions>();
  CLI::App* renew = app.add_subcommand("renew", "Renew an annual pass end to end: order, card, contract, checkout");
  addCommerceOptions(*renew, options->commerce);
  renew->add_option("--pass", options->pass,
                    "Product instance ID of the pass to renew (default: the first renewable now)");
  renew->add_option("--card", options->card, "Reference of the stored card to pay with (default: the first)");
  renew->add_option("--cvv", options->cvv, "The card's security code")->check(securityCode());
  renew->add_option("--plan", options->plan, "Payment plan: full (default) or monthly")
      ->check(CLI::IsMember({"full", "monthly"}));
  renew->add_flag("--accept-terms", options->acceptTerms, "The guest accepts the terms and conditions");
  renew->add_flag("--sign-contract", options->signContract, "The guest signs the monthly-payment contract");
  renew->callback([options] {
    if (const int status = runRenewal(*options); status != 0) throw CommandExit(status);
  });
}

const CommandRegistration renewRegistration{"renew", &registerRenewCommand};

}  // namespace
}  // namespace varnel::cli
