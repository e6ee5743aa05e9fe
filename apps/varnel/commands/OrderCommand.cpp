// varnel order create: a renewal order for the guest's passes, made with the
// module's create-order parameters and request: a summary for people, or with
// --json the order as the module parses the answer.
//
//   varnel order create --pass PRODUCT_INSTANCE_ID [--pass ...] [--plan full|monthly]
//                       [--server URL] [--guest FILE] [--defaults PATH] [--park 1|2] [--json]

#include <iostream>
#include <memory>
#include <vector>

#include "Command.h"
#include "OptionChecks.h"
#include "commands/CommerceSession.h"
#include "commands/ErrorReport.h"
#include "commands/OrderText.h"
#include "commands/RenewalSteps.h"
#include "varnel/services/VNLParseCreateOrderResponse.h"

namespace varnel::cli {
namespace {

struct OrderOptions {
  CommerceOptions commerce;
  std::vector<std::string> passes;
  std::string plan = "full";
};

int runCreate(const OrderOptions& options) {
  CommerceOptions commerce = options.commerce;
  commerce.namedPasses = options.passes;
  CommerceSession session(commerce);
  std::vector<Json> products;
  for (const auto& pass : options.passes) products.push_back(renewalProduct(*findPass(session.varnel(), pass), session));
  const CallbackOutcome outcome = sendCreateOrder(session, std::move(products), options.plan == "monthly");
  if (outcome.silent) return reportSilentOutcome("The create-order request", options.commerce.json);
  if (!outcome.succeeded) return reportCommerceFailure(outcome.error, session.park(), options.commerce.json);

  RenewalOrder order = VNLParseCreateOrderResponse().parseCreateOrder(*outcome.value);
  // The parser marks every order as monthly; the plan is the one asked for.
  order.paymentPlan = options.plan == "monthly";
  std::cout << (options.commerce.json ? dumpJson(order.toJson()) + "\n" : orderSummary(order));
  return 0;
}

void registerOrderCommand(CLI::App& app) {
  CLI::App* order = app.add_subcommand("order", "Renewal orders with the commerce service");
  order->require_subcommand(1);
  auto options = std::make_shared<OrderOptions>();
  CLI::App* create = order->add_subcommand("create", "Create a renewal order for annual passes");
  addCommerceOptions(*create, options->commerce);
  create->add_option("--pass", options->passes, "Product instance ID of a pass to renew (repeatable)")
      ->required()
      ->check(reference());
  create->add_option("--plan", options->plan, "Payment plan: full (default) or monthly")
      ->check(CLI::IsMember({"full", "monthly"}));
  create->callback([options] {
    if (const int status = runCreate(*options); status != 0) throw CommandExit(status);
  });
}

const CommandRegistration orderRegistration{"order", &registerOrderCommand};

}  // namespace
}  // namespace varnel::cli
