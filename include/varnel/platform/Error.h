#pragma once
// The platform error: a domain, a code and user information.

#include <string>

#include "varnel/platform/Json.h"

namespace varnel {

struct Error {
  std::string domain;
  long code = 0;
  /// User information; an object (or null when there is none).
  Json userInfo;

  friend bool operator==(const Error&, const Error&) = default;
};

/// Keys of the user information that the service layer fills on a failed request.
inline constexpr const char* kErrorJsonResponseKey = "jsonResponse";
inline constexpr const char* kErrorIsConnectionErrorKey = "isConnectionError";

}  // namespace varnel
