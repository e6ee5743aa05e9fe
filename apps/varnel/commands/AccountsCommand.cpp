// varnel accounts: the signed-in guest's stored cards, as the payment-accounts
// request returns them.
//
//   varnel accounts [--server URL] [--guest FILE] [--defaults PATH] [--json]
//
// Card numbers are shown masked, never in full.

#include <fmt/format.h>

#include <iostream>
#include <memory>

#include "Command.h"
#include "commands/CommerceSession.h"
#include "commands/ErrorReport.h"
#include "commands/PaymentAccountText.h"
#include "varnel/services/CommerceRequests.h"
#include "varnel/services/VNLParsePaymentAccounts.h"

namespace varnel::cli {
namespace {

int runAccounts(const CommerceOptions& options) {
  CommerceSession session(options);
  const CallbackOutcome outcome =
      session.await([&](auto success, auto failure) { profileAccounts(session.service(), success, failure); });
  if (outcome.silent) return reportSilentOutcome("The payment-accounts request", options.json);
  if (!outcome.succeeded) return reportCommerceFailure(outcome.error, session.park(), options.json);

  const auto accounts = VNLParsePaymentAccounts().parsePaymentAccounts(outcome.value.value_or(Json()));
  if (options.json) {
    OrderedJson array = OrderedJson::array();
    for (const auto& account : accounts) array.push_back(paymentAccountJson(account));
    std::cout << dumpJson(array) << '\n';
  } else {
    std::cout << paymentAccountTable(accounts);
  }
  return 0;
}

void registerAccountsCommand(CLI::App& app) {
  auto options = std::make_shared<CommerceOptions>();
  CLI::App* accounts = app.add_subcommand("accounts", "The signed-in guest's stored cards (numbers masked)");
  addCommerceOptions(*accounts, *options);
  accounts->callback([options] {
    if (const int status = runAccounts(*options); status != 0) throw CommandExit(status);
  });
}

const CommandRegistration accountsRegistration{"accounts", &registerAccountsCommand};

}  // namespace
}  // namespace varnel::cli
