#include "varnel/host/ApplicationBundle.h"

#include <cstdlib>

#include "varnel/host/Registry.h"
#include "varnel/host/ResourceBundle.h"

namespace varnel {

std::filesystem::path applicationResourceDirectory() {
  if (auto bundle = host::Registry::get<ApplicationBundle>()) return bundle->directory;
  if (const char* fromEnvironment = std::getenv("VARNEL_APP_RESOURCE_DIR"); fromEnvironment && *fromEnvironment) {
    return fromEnvironment;
  }
  return varnelResourceDirectory() / "app";
}

}  // namespace varnel
