#pragma once
// The module's resource directory (string tables, canned answers, sample data).

#include <filesystem>

namespace varnel {

/// Registered by a host that keeps the module's resources somewhere of its own.
struct ResourceBundle {
  std::filesystem::path directory;
};

/// The first of: the registered ResourceBundle, $VARNEL_RESOURCE_DIR, the
/// source tree's resources (while developing), the installed resources.
std::filesystem::path varnelResourceDirectory();

}  // namespace varnel
