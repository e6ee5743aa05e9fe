// A host app's own test over the installed fakes of Varnel::testing.
#include <iostream>

#include "varnel/errors/VarnelLocalizedString.h"
#include "varnel/host/Registry.h"
#include "varnel/testing/Fakes.h"
#include "varnel/testing/ScriptedEntitlementsManager.h"

int main() {
  varnel::testing::FakeHost host;
  host.localization->table["Greeting"] = "Welcome back";
  auto manager = std::make_shared<varnel::testing::ScriptedEntitlementsManager>();
  manager->signedInKuid = "guest-1";
  varnel::host::Registry::set<varnel::ENTMEntitlementsManager>(manager);
  std::cout << varnel::VarnelLocalizedStringForKey("Greeting") << ", "
            << varnel::ENTMEntitlementsManager::sharedInstance()->kuid().value_or("nobody") << '\n';
  return host.banners->made.empty() ? 0 : 1;
}
