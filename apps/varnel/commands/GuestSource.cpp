#include "commands/GuestSource.h"

#include <fmt/format.h>

#include <array>
#include <ctime>
#include <filesystem>

#include "Command.h"
#include "OptionChecks.h"
#include "varnel/entitlements/VNLEntitlementAnnualPass.h"
#include "varnel/entitlements/VNLEntitlementParkTicket.h"
#include "varnel/entitlements/VNLEntitlementTheaterTicket.h"
#include "varnel/host/Registry.h"
#include "varnel/host/ResourceBundle.h"
#include "varnel/standalone/FileEntitlementsManager.h"
#include "varnel/standalone/GuestDataFile.h"

namespace varnel::cli {

void addGuestOptions(CLI::App& command, GuestOptions& options) {
  auto* guest = command.add_option("--guest", options.guestFile,
                                   "Guest data file (default: the sample guest, resources/guests/sample-guest.json)")
                    ->check(guestFile());
  command.add_flag("--mock", options.mock, "Use the module's fixed mock entitlements instead of a guest")
      ->excludes(guest);
  command.add_flag("--json", options.json, "Print JSON");
}

GuestSource::GuestSource(const GuestOptions& options) {
  varnel.setIsDataMockedEnable(options.mock);
  if (options.mock) return;
  const std::filesystem::path file = options.guestFile.empty()
                                         ? varnelResourceDirectory() / "guests" / "sample-guest.json"
                                         : std::filesystem::path(options.guestFile);
  auto manager = standalone::FileEntitlementsManager::open(file);
  if (!manager) throw UsageError(standalone::describeGuestDataError(manager.error()));
  host::Registry::set<ENTMEntitlementsManager>(manager.value());
  data = manager.value()->guestData();
  for (const Json& ticket : manager.value()->theaterTickets()) {
    theaterTickets.push_back(VNLEntitlementTheaterTicket::initWithJsonData(ticket));
  }
}

std::string entitlementClassName(const VNLEntitlement& entitlement) {
  if (dynamic_cast<const VNLEntitlementAnnualPass*>(&entitlement)) return "VNLEntitlementAnnualPass";
  if (dynamic_cast<const VNLEntitlementParkTicket*>(&entitlement)) return "VNLEntitlementParkTicket";
  if (dynamic_cast<const VNLEntitlementTheaterTicket*>(&entitlement)) return "VNLEntitlementTheaterTicket";
  return "VNLEntitlement";
}

std::string localDateText(Date date) {
  if (date.isUnknownMarker()) return "unknown";
  const auto seconds = static_cast<std::time_t>(date.timeIntervalSince1970);
  std::tm parts{};
  localtime_r(&seconds, &parts);
  std::array<char, 64> text{};
  const auto length = std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S %Z", &parts);
  return std::string(text.data(), length);
}

std::string entitlementTable(const VNLVarnel::Entitlements& entitlements,
                             const std::optional<EntitlementColumn>& extra) {
  using Row = std::vector<std::string>;
  std::vector<Row> rows{{"CLASS", "PRODUCT INSTANCE ID", "DISPLAY NAME", "CATEGORY", "END OF VALIDITY", "RENEWABLE"}};
  if (extra) rows.front().push_back(extra->heading);
  for (const auto& entitlement : entitlements) {
    Row& row = rows.emplace_back(Row{entitlementClassName(*entitlement), entitlement->productInstanceID(),
                                     entitlement->passDisplayName(), entitlement->categoryID(),
                                     localDateText(entitlement->endValidityDate()),
                                     entitlement->entitlementRenewable() ? "yes" : "no"});
    if (extra) row.push_back(extra->text(*entitlement));
  }
  std::vector<std::size_t> widths(rows.front().size());
  for (const Row& row : rows) {
    for (std::size_t column = 0; column < row.size(); ++column) {
      widths[column] = std::max(widths[column], row[column].size());
    }
  }
  std::string table;
  for (const Row& row : rows) {
    std::string line;
    for (std::size_t column = 0; column < row.size(); ++column) {
      line += fmt::format("{:<{}}", row[column].empty() ? "-" : row[column], widths[column] + 2);
    }
    line.erase(line.find_last_not_of(' ') + 1);
    table += line + '\n';
  }
  return table;
}

Json entitlementsJson(const VNLVarnel::Entitlements& entitlements) {
  Json array = Json::array();
  for (const auto& entitlement : entitlements) array.push_back(entitlement->toJson());
  return array;
}

std::string dumpJson(const Json& value) { return value.dump(2, ' ', false, Json::error_handler_t::replace); }

}  // namespace varnel::cli
