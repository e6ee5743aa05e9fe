#include "varnel/standalone/StaticAuthenticationService.h"

#include <utility>

namespace varnel::standalone {

StaticAuthenticationService::StaticAuthenticationService(std::optional<std::string> kuid,
                                                         std::optional<std::string> email)
    : kuid_(std::move(kuid)), email_(std::move(email)) {}

std::optional<std::string> StaticAuthenticationService::kuid() const { return kuid_; }

std::optional<std::string> StaticAuthenticationService::email() const { return email_; }

}  // namespace varnel::standalone
