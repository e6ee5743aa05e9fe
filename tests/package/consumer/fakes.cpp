// A host app's own test over the installed fakes of Varnel::testing.
#include <iostream>

#include "varnel/errors/VarnelLocalizedString.h"
#include "varnel/testing/Fakes.h"

int main() {
  varnel::testing::FakeHost host;
  host.localization->table["Greeting"] = "Welcome back";
  std::cout << varnel::VarnelLocalizedStringForKey("Greeting") << '\n';
  return host.banners->made.empty() ? 0 : 1;
}
