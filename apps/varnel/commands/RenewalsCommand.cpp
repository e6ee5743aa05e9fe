// varnel renewals: the guest's renewable entitlements, soonest first, with
// their count and the first renewal date.
//
//   varnel renewals [--guest FILE | --mock] [--json]

#include <iostream>
#include <memory>

#include "Command.h"
#include "commands/GuestSource.h"
#include "varnel/platform/DefaultsValue.h"

namespace varnel::cli {
namespace {

void listRenewals(const GuestOptions& options) {
  GuestSource guest(options);
  const VNLVarnel& varnel = guest.varnel;
  const VNLVarnel::Entitlements renewable = varnel.sortedByDateDescending(varnel.renewableEntitlements());
  const bool any = varnel.anyAPAbleToBeRenewed();
  const Date firstRenewal = varnel.firstRenewalDate();

  if (options.json) {
    nlohmann::ordered_json answer{{"count", renewable.size()},
                                  {"anyAPAbleToBeRenewed", any},
                                  {"firstRenewalDate", rfc3339(firstRenewal)},
                                  {"renewable", entitlementsJson(renewable)}};
    std::cout << answer.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
    return;
  }
  if (!renewable.empty()) std::cout << entitlementTable(renewable) << '\n';
  std::cout << "renewable:      " << renewable.size() << '\n'
            << "any renewable:  " << (any ? "yes" : "no") << '\n'
            << "first renewal:  " << (firstRenewal.isUnknownMarker() ? "none" : localDateText(firstRenewal)) << '\n';
}

void registerRenewalsCommand(CLI::App& app) {
  auto options = std::make_shared<GuestOptions>();
  CLI::App* command = app.add_subcommand("renewals", "List the guest's renewable entitlements, soonest first");
  addGuestOptions(*command, *options);
  command->callback([options] { listRenewals(*options); });
}

const CommandRegistration registration{"renewals", &registerRenewalsCommand};

}  // namespace
}  // namespace varnel::cli
