#pragma once
// The host's authentication service: who is signed in on the device.

#include <memory>
#include <optional>
#include <string>

namespace varnel {

class KTVRAuthenticationService {
 public:
  virtual ~KTVRAuthenticationService() = default;

  /// The service registered with the host registry, or none.
  static std::shared_ptr<KTVRAuthenticationService> sharedInstance();

  /// The signed-in guest's account identifier; none when nobody is signed in.
  virtual std::optional<std::string> kuid() const = 0;
  /// The signed-in guest's e-mail address, when the host knows it.
  virtual std::optional<std::string> email() const = 0;
};

}  // namespace varnel
