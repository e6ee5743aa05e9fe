#pragma once
// The host's signed-in profile: what the guest's own profile says about them.

#include <memory>
#include <optional>
#include <string>

namespace varnel {

class KTVRUserProfileAuthentication {
 public:
  virtual ~KTVRUserProfileAuthentication() = default;

  /// The profile registered with the host registry, or none.
  static std::shared_ptr<KTVRUserProfileAuthentication> sharedInstance();

  /// The e-mail address of the signed-in profile; none when it has none.
  virtual std::optional<std::string> email() const = 0;
};

}  // namespace varnel
