#pragma once
// What the entitlement commands share: the guest they read (a guest data file
// served by the stand-alone entitlements manager, or the facade's mock list),
// and how entitlements are printed.

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "varnel/entitlements/VNLVarnel.h"
#include "varnel/platform/Date.h"
#include "varnel/platform/Json.h"
#include "varnel/standalone/GuestDataFile.h"

namespace varnel::cli {

struct GuestOptions {
  /// The guest data file; the sample guest when empty.
  std::string guestFile;
  bool mock = false;
  bool json = false;
};

/// Adds --guest, --mock and --json to `command`.
void addGuestOptions(CLI::App& command, GuestOptions& options);

/// A facade over the chosen guest. Without --mock the guest data file is read
/// into a FileEntitlementsManager registered as the host's entitlements
/// manager; a file that cannot be read or parsed is a UsageError.
struct GuestSource {
  explicit GuestSource(const GuestOptions& options);

  VNLVarnel varnel;
  /// The guest's theater tickets (none with --mock), made from the file's JSON.
  VNLVarnel::Entitlements theaterTickets;
  /// The guest data file as read (none with --mock).
  std::optional<standalone::GuestData> data;
};

/// The class of an entitlement as the host sees it ("VNLEntitlementAnnualPass").
std::string entitlementClassName(const VNLEntitlement& entitlement);

/// A date in local time for people; "unknown" for the unknown-date marker.
std::string localDateText(Date date);

/// An extra column of the entitlement table: its heading and each row's text.
struct EntitlementColumn {
  std::string heading;
  std::function<std::string(const VNLEntitlement&)> text;
};

/// An aligned table: class, product instance ID, display name, category, end
/// of validity, renewable, and the extra column when one is given. One line
/// per entitlement after the heading.
std::string entitlementTable(const VNLVarnel::Entitlements& entitlements,
                             const std::optional<EntitlementColumn>& extra = std::nullopt);

/// One toJson() object per entitlement.
Json entitlementsJson(const VNLVarnel::Entitlements& entitlements);

/// JSON indented for reading, invalid UTF-8 replaced.
std::string dumpJson(const Json& value);

}  // namespace varnel::cli
