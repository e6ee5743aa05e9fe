#pragma once
// Shared by the answer-parser suites: signing a guest in and reading samples.

#include <fstream>
#include <optional>
#include <sstream>
#include <string>

#include "support/Fakes.h"
#include "varnel/host/Registry.h"
#include "varnel/platform/Json.h"
#include "varnel/standalone/StaticAuthenticationService.h"

namespace varnel::testing {

class ParserFixture : public HostFixture {
 protected:
  /// Installs an authentication service with `kuid` signed in (nobody when none).
  void signIn(std::optional<std::string> kuid) {
    host::Registry::set<KTVRAuthenticationService>(
        std::make_shared<standalone::StaticAuthenticationService>(std::move(kuid)));
  }

  /// A sample answer shipped with the tool.
  static Json sample(const std::string& name) {
    std::ifstream file(std::string(VARNEL_TEST_RESOURCE_DIR) + "/samples/" + name);
    std::stringstream content;
    content << file.rdbuf();
    return Json::parse(content.str(), nullptr, false);
  }

  /// The log lines' messages, in order.
  std::vector<std::string> logged() const { return log->messages(); }
};

}  // namespace varnel::testing
