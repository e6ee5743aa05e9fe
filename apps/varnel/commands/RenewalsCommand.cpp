// varnel renewals: the guest's renewable entitlements, soonest first, with
// their count and the first renewal date; with --pending, the guest's
// renewals whose checkout is still unanswered, from the renewal journal.
//
//   varnel renewals [--guest FILE | --mock] [--json]
//   varnel renewals --pending [--guest FILE] [--defaults PATH] [--json]

#include <iostream>
#include <memory>

#include "Command.h"
#include "commands/RenewalSteps.h"
#include "commands/GuestSource.h"
#include "varnel/entitlements/VNLEntitlementAnnualPass.h"
#include "varnel/platform/DefaultsValue.h"
#include "varnel/purchase/RenewableState.h"
#include "varnel/host/ResourceBundle.h"
#include "varnel/standalone/GuestDataFile.h"
#include "varnel/standalone/SqliteRenewalJournal.h"
#include "varnel/standalone/SqliteUserDefaults.h"

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

struct RenewalsOptions {
  GuestOptions guest;
  bool pending = false;
  std::string defaultsPath;
};

void listPending(const RenewalsOptions& options) {
  const std::filesystem::path file = options.guest.guestFile.empty()
                                         ? varnelResourceDirectory() / "guests" / "sample-guest.json"
                                         : std::filesystem::path(options.guest.guestFile);
  auto guest = standalone::readGuestDataFile(file);
  if (!guest) throw UsageError(standalone::describeGuestDataError(guest.error()));
  auto path = standalone::SqliteUserDefaults::resolvePath(
      options.defaultsPath.empty() ? std::nullopt : std::optional<std::filesystem::path>(options.defaultsPath));
  if (!path) throw UsageError(localizedDescription(path.error()));
  std::vector<RenewalJournalEntry> pending;
  // A store that does not exist yet holds nothing, and is not made by a listing.
  if (std::filesystem::exists(path.value()) && guest.value().kuid) {
    auto journal = standalone::SqliteRenewalJournal::open(path.value());
    if (!journal) throw UsageError(localizedDescription(journal.error()));
    pending = journal.value()->unfinished(*guest.value().kuid);
  }
  if (options.guest.json) {
    Json entries = Json::array();
    for (const auto& entry : pending) entries.push_back(entry.toJson());
    std::cout << dumpJson(Json{{"pending", entries}}) << '\n';
    return;
  }
  if (pending.empty()) {
    std::cout << "No unfinished renewals.\n";
    return;
  }
  for (const auto& entry : pending) {
    std::cout << "order " << entry.orderId << "  pass " << entry.passId << "  " << entry.amount << ' '
              << entry.currency << "  card " << entry.cardReference << (entry.securityCodeEntered ? " (needs --cvv)" : "")
              << '\n';
  }
  std::cout << "Finish with: varnel renew --resume\n";
}

void registerRenewalsCommand(CLI::App& app) {
  auto options = std::make_shared<RenewalsOptions>();
  CLI::App* command = app.add_subcommand("renewals", "List the guest's renewable entitlements, soonest first");
  addGuestOptions(*command, options->guest);
  command->add_flag("--pending", options->pending,
                    "List the renewals whose checkout is unanswered (finish them with varnel renew --resume)");
  command->add_option("--defaults", options->defaultsPath,
                      "User-defaults store holding the renewal journal (default: $VARNEL_DEFAULTS, else the per-user store)");
  command->callback([options] { options->pending ? listPending(*options) : listRenewals(options->guest); });
}

const CommandRegistration renewalsRegistration{"renewals", &registerRenewalsCommand};

}  // namespace
}  // namespace varnel::cli
