// varnel renewals: the guest's renewable entitlements, soonest first, with
// their count and the first renewal date.
//
//   varnel renewals [--guest FILE | --mock] [--json]

#include <iostream>
#include <memory>

#include "Command.h"
#include "commands/RenewalSteps.h"
#include "commands/GuestSource.h"
#include "varnel/entitlements/VNLEntitlementAnnualPass.h"
#include "varnel/platform/DefaultsValue.h"
#include "varnel/purchase/RenewableState.h"

namespace varnel::cli {
namespace {

void listRenewals(const GuestOptions& options) {
  GuestSource guest(options);
  const VNLVarnel& varnel = guest.varnel;
  const VNLVarnel::Entitlements renewable = varnel.sortedByDateDescending(varnel.renewableEntitlements());
  const bool any = varnel.anyAPAbleToBeRenewed();
  const Date firstRenewal = varnel.firstRenewalDate();

  if (options.json) {
    Json renewableJson = entitlementsJson(renewable);
    for (std::size_t i = 0; i < renewable.size(); ++i) {
      const auto state = renewableState(*renewable[i]);
      renewableJson[i]["renewableState"] = state ? Json(state->rawValue()) : Json(nullptr);
    }
    nlohmann::ordered_json answer{{"count", renewable.size()},
                                  {"anyAPAbleToBeRenewed", any},
                                  {"firstRenewalDate", rfc3339(firstRenewal)},
                                  {"renewable", renewableJson}};
    std::cout << answer.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
    return;
  }
  const EntitlementColumn stateColumn{"RENEWAL STATE", [](const VNLEntitlement& entitlement) {
                                         const auto state = renewableState(entitlement);
                                         return state ? std::string(state->rawValue()) : std::string();
                                       }};
  if (!renewable.empty()) std::cout << entitlementTable(renewable, stateColumn) << '\n';
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

const CommandRegistration renewalsRegistration{"renewals", &registerRenewalsCommand};

}  // namespace
}  // namespace varnel::cli
