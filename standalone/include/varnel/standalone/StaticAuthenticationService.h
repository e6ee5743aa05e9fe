#pragma once
// An authentication service whose signed-in guest is fixed when it is made,
// for example from a command-line option. Nobody is signed in when no
// account identifier is given.

#include <optional>
#include <string>

#include "varnel/host/KTVRAuthenticationService.h"
#include "varnel/host/KTVRUserProfileAuthentication.h"

namespace varnel::standalone {

class StaticAuthenticationService final : public KTVRAuthenticationService {
 public:
  explicit StaticAuthenticationService(std::optional<std::string> kuid = std::nullopt,
                                       std::optional<std::string> email = std::nullopt);

  std::optional<std::string> kuid() const override;
  std::optional<std::string> email() const override;

 private:
  std::optional<std::string> kuid_;
  std::optional<std::string> email_;
};

/// The signed-in profile of a fixed guest.
class StaticUserProfile final : public KTVRUserProfileAuthentication {
 public:
  explicit StaticUserProfile(std::optional<std::string> email) : email_(std::move(email)) {}
  std::optional<std::string> email() const override { return email_; }

 private:
  std::optional<std::string> email_;
};

}  // namespace varnel::standalone
