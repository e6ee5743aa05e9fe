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
/// The HTTP status of a failed request that was answered.
inline constexpr const char* kErrorStatusCodeKey = "statusCode";
/// A readable text of what went wrong, for people (never shown to a guest).
inline constexpr const char* kErrorLocalizedDescriptionKey = "NSLocalizedDescription";

/// The text under "NSLocalizedDescription", else the platform's generic
/// "The operation couldn't be completed. (DOMAIN error CODE.)".
std::string localizedDescription(const Error& error);

/// "Error Domain=DOMAIN Code=CODE \"DESCRIPTION\"", the platform's printed form.
std::string describe(const Error& error);

}  // namespace varnel
