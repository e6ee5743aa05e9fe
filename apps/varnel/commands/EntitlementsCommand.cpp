// varnel entitlements: every entitlement of the guest, in the facade's order
// (the guest's theater tickets last).
//
//   varnel entitlements [--guest FILE | --mock] [--json]

#include <iostream>
#include <memory>

#include "Command.h"
#include "commands/GuestSource.h"

namespace varnel::cli {
namespace {

void listEntitlements(const GuestOptions& options) {
  GuestSource guest(options);
  VNLVarnel::Entitlements entitlements = guest.varnel.allEntitlements();
  entitlements.insert(entitlements.end(), guest.theaterTickets.begin(), guest.theaterTickets.end());
  if (options.json) {
    std::cout << dumpJson(entitlementsJson(entitlements)) << '\n';
    return;
  }
  std::cout << entitlementTable(entitlements);
}

void registerEntitlementsCommand(CLI::App& app) {
  auto options = std::make_shared<GuestOptions>();
  CLI::App* command = app.add_subcommand("entitlements", "List the guest's entitlements");
  addGuestOptions(*command, *options);
  command->callback([options] { listEntitlements(*options); });
}

const CommandRegistration entitlementsRegistration{"entitlements", &registerEntitlementsCommand};

}  // namespace
}  // namespace varnel::cli
