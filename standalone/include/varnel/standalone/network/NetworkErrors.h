#pragma once
// The platform errors of failed stand-alone requests. Their user information
// carries what the module's error mappings read:
//   "isConnectionError"  true when no answer arrived (refused, reset, timeout, TLS)
//   "jsonResponse"       the decoded error body of an HTTP failure; a body that is
//                        not a booking error body (HTML, a 404 page, a redirect,
//                        JSON without "errors") gets a general booking error
//                        element {"typeId": "HTTP_<status>"}, so the guest is
//                        shown the general service error, never nothing
//   "statusCode"         the HTTP status, when there was an answer
//   "NSLocalizedDescription"  a readable reason (never a body or a header value);
//                             "the server's certificate could not be verified: ..."
//                             when TLS verification failed

#include <optional>
#include <string>

#include "varnel/platform/Error.h"
#include "varnel/platform/Json.h"
#include "varnel/standalone/network/HttpExchange.h"

namespace varnel::standalone {

/// Domain of errors whose request got no usable answer; the code is one of
/// NetworkErrorCode.
inline constexpr const char* kNetworkErrorDomain = "Varnel.Network";
/// Domain of answered requests with a status outside 2xx; the code is the status.
inline constexpr const char* kHTTPErrorDomain = "Varnel.HTTP";

enum class NetworkErrorCode : long {
  /// No answer arrived (user information "curlCode" has libcurl's code).
  transportFailed = -1,
  /// A 2xx answer whose body is not JSON.
  notJson = -2,
  /// The endpoint key has no URL in the environment, or the URL is unusable.
  badURL = -3,
};

Error transportError(const TransportFailure& failure);
Error httpStatusError(long status, const std::string& body);
Error notJsonError(long status);
Error badURLError(const std::string& reason);

/// The body decoded as JSON; none when it is empty or not JSON. Never throws.
std::optional<Json> decodeJsonBody(const std::string& body);

}  // namespace varnel::standalone
