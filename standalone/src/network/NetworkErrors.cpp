#include "varnel/standalone/network/NetworkErrors.h"

#include "varnel/errors/ErrorConstants.h"
#include "varnel/errors/ErrorMapping.h"

namespace varnel::standalone {

Error transportError(const TransportFailure& failure) {
  const std::string reason = failure.certificateRejected()
                                 ? "the server's certificate could not be verified: " + failure.message
                                 : "No answer from the service: " + failure.message;
  return Error{kNetworkErrorDomain, static_cast<long>(NetworkErrorCode::transportFailed),
               Json{{kErrorIsConnectionErrorKey, true},
                    {"curlCode", failure.code},
                    {kErrorLocalizedDescriptionKey, reason}}};
}

Error httpStatusError(long status, const std::string& body) {
  Json userInfo{{kErrorIsConnectionErrorKey, false},
                {kErrorStatusCodeKey, status},
                {kErrorLocalizedDescriptionKey, "The service answered with HTTP status " + std::to_string(status)}};
  std::optional<Json> json = decodeJsonBody(body);
  if (!json || !isBookingErrorBody(*json)) {
    // No booking error body (a proxy's HTML page, a 404 page, a redirect): the
    // service failed all the same, and the guest is told so with the general
    // service error, so the body gets a general booking error element.
    Json general = json && json->is_object() ? std::move(*json) : Json::object();
    general[std::string(ErrorConstants::kErrorsKey)] = Json::array(
        {Json{{std::string(ErrorConstants::kTypeIdKey), "HTTP_" + std::to_string(status)},
              {"message", "The service answered with HTTP status " + std::to_string(status) + "."}}});
    json = std::move(general);
  }
  userInfo[kErrorJsonResponseKey] = std::move(*json);
  return Error{kHTTPErrorDomain, status, std::move(userInfo)};
}

Error notJsonError(long status) {
  return Error{kNetworkErrorDomain, static_cast<long>(NetworkErrorCode::notJson),
               Json{{kErrorIsConnectionErrorKey, false},
                    {kErrorStatusCodeKey, status},
                    {kErrorLocalizedDescriptionKey, "The service's answer is not JSON"}}};
}

Error badURLError(const std::string& reason) {
  return Error{kNetworkErrorDomain, static_cast<long>(NetworkErrorCode::badURL),
               Json{{kErrorIsConnectionErrorKey, false}, {kErrorLocalizedDescriptionKey, reason}}};
}

std::optional<Json> decodeJsonBody(const std::string& body) {
  if (body.empty()) return std::nullopt;
  return parseJson(body).value;
}

}  // namespace varnel::standalone
