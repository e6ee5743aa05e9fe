#include "varnel/host/ResourceBundle.h"

#include <cstdlib>
#include <system_error>

#include "varnel/host/Registry.h"

namespace varnel {

std::filesystem::path varnelResourceDirectory() {
  if (auto bundle = host::Registry::get<ResourceBundle>()) return bundle->directory;
  if (const char* fromEnvironment = std::getenv("VARNEL_RESOURCE_DIR"); fromEnvironment && *fromEnvironment) {
    return fromEnvironment;
  }
  std::error_code error;
  if (std::filesystem::is_directory(VARNEL_SOURCE_RESOURCE_DIR, error)) return VARNEL_SOURCE_RESOURCE_DIR;
  return VARNEL_INSTALL_RESOURCE_DIR;
}

}  // namespace varnel
