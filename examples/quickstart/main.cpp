// Quickstart: the renewable annual passes of a guest, through the installed
// Varnel package and its stand-alone host.
//
//   quickstart [GUEST_FILE]
//
// A host app fills the registry with its own implementation of each host
// interface at start-up; this program uses the stand-alone ones, with the
// entitlements manager reading a guest data file (the sample guest unless a
// file is named).

#include <iostream>
#include <memory>

#include "varnel/entitlements/VNLVarnel.h"
#include "varnel/host/Registry.h"
#include "varnel/host/ResourceBundle.h"
#include "varnel/platform/Describe.h"
#include "varnel/standalone/FileEntitlementsManager.h"
#include "varnel/standalone/GuestDataFile.h"
#include "varnel/standalone/StandaloneHost.h"

int main(int argc, char** argv) {
  using namespace varnel;

  // 1. Logging, string tables, banners and a main queue.
  standalone::installStandaloneHost();

  // 2. The entitlements manager: one guest, read from a file.
  const auto guestFile = argc > 1 ? std::filesystem::path(argv[1])
                                  : varnelResourceDirectory() / "guests" / "sample-guest.json";
  auto manager = standalone::FileEntitlementsManager::open(guestFile);
  if (!manager) {
    std::cerr << standalone::describeGuestDataError(manager.error()) << '\n';
    return 1;
  }
  host::Registry::set<ENTMEntitlementsManager>(manager.value());

  // 3. Ask the facade, which reads the manager's store.
  const VNLVarnel varnel;
  const auto renewable = varnel.sortedByDateDescending(varnel.renewableEntitlements());
  std::cout << renewable.size() << " renewable pass(es)\n";
  for (const auto& pass : renewable) {
    std::cout << pass->productInstanceID() << "  " << pass->passDisplayName() << "  " << pass->holderName()
              << "  expires " << describe(pass->endValidityDate()) << '\n';
  }
  std::cout << "first renewal: " << describe(varnel.firstRenewalDate()) << '\n';

  host::Registry::clear();
  return 0;
}
