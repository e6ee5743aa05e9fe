#pragma once
// Bundles as the host's module-hosting library finds them: a module's
// resources live either in the application's main bundle or in the module's
// own framework, and the library knows which.

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace varnel {

/// A found bundle: its name and the folder of its resources.
struct PLNTBundle {
  std::string name;
  std::filesystem::path directory;
};

/// The host's lookup ("bundleFromMainBundleOrFramework:bundleName:"),
/// registered with host::Registry.
class PLNTBundleLookup {
 public:
  virtual ~PLNTBundleLookup() = default;
  /// The bundle called `bundleName`, from the main bundle or a framework;
  /// none when neither has it.
  virtual std::optional<PLNTBundle> bundleFromMainBundleOrFramework(std::string_view bundleName) const = 0;
};

}  // namespace varnel
