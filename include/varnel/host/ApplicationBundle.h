#pragma once
// The application's main bundle: the host app's own resources, apart from the
// module's (ResourceBundle). Canned entitlement-validation data lives here.

#include <filesystem>

namespace varnel {

/// Registered by a host that keeps its resources somewhere of its own.
struct ApplicationBundle {
  std::filesystem::path directory;
};

/// The first of: the registered ApplicationBundle, $VARNEL_APP_RESOURCE_DIR,
/// the "app" folder of the module's resource directory.
std::filesystem::path applicationResourceDirectory();

}  // namespace varnel
