#pragma once
// The host's networking and profile service. It resolves endpoint keys, sends
// JSON requests with the signed-in guest's authorization and decodes the JSON
// answers. Callbacks run on the service's own thread (the stand-alone service:
// its transfer thread), never on the caller's.
//
// Success receives the decoded JSON body (absent when there was none); failure
// receives the error, whose user information carries "jsonResponse" (the
// decoded error body, when it was JSON) and "isConnectionError".

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "varnel/platform/Error.h"
#include "varnel/platform/Json.h"
#include "varnel/platform/URLSession.h"

namespace varnel {

using KTVRSuccessBlock = std::function<void(const std::optional<Json>& result)>;
using KTVRFailureBlock = std::function<void(const std::optional<Error>& error)>;
/// Values that fill the {placeholders} of an endpoint's URL template.
using KTVRTokens = std::map<std::string, std::string>;

class KTVRPrivateDataService {
 public:
  virtual ~KTVRPrivateDataService() = default;

  /// The service registered with the host registry, or none.
  static std::shared_ptr<KTVRPrivateDataService> sharedInstance();

  /// GET of the URL that the environment gives for `endpointKey` with `tokens`;
  /// `parameters` (an object) become the query.
  virtual void getDataUsingEndpoint(std::string_view endpointKey, const KTVRTokens& tokens,
                                    const std::optional<Json>& parameters, KTVRSuccessBlock success,
                                    KTVRFailureBlock failure) = 0;
  /// GET of an absolute URL; `parameters` (an object) become the query.
  virtual void getDataUsingPath(const std::string& url, const std::optional<Json>& parameters,
                                const HTTPHeaderFields& overrideHeaders, KTVRSuccessBlock success,
                                KTVRFailureBlock failure) = 0;
  /// POST of `parameters` as a JSON body; `overrideHeaders` replace defaults of the same name.
  /// An "Idempotency-Key" among them is the write's own key, sent with every retry.
  virtual void postDataUsingPath(const std::string& url, const Json& parameters,
                                 const HTTPHeaderFields& overrideHeaders, KTVRSuccessBlock success,
                                 KTVRFailureBlock failure) = 0;

  /// The default header fields of every request (the request serializer's).
  virtual HTTPHeaderFields requestSerializerHTTPRequestHeaders() const = 0;
  /// Adds the signed-in guest's authorization to `request`; nothing when nobody is signed in.
  virtual void setAuthorizationHeaderForRequest(URLRequest& request) const = 0;
};

}  // namespace varnel
