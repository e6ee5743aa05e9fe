#include <iostream>

#include "varnel/host/Registry.h"
#include "varnel/platform/Describe.h"
#include "varnel/standalone/StandaloneHost.h"

int main() {
  varnel::standalone::installStandaloneHost();
  std::cout << varnel::describe(varnel::Date::unknownMarker()) << '\n';
  return varnel::host::Registry::get<varnel::MainQueue>() ? 0 : 1;
}
