#pragma once
// The stand-alone networking service: the host's private data service over
// libcurl. Endpoint keys resolve through the environment; every request
// carries the default header fields and, when a guest is signed in, the
// guest's bearer token; a caller's override headers replace defaults under
// the rules of HeaderRules.h (never the token, Host, Content-Type,
// Content-Length or Idempotency-Key). Callbacks run on the transport's
// worker thread.
//
// An answer with a 2xx status and a JSON body is a success (an empty body is a
// success with no value); anything else is a failure whose error is described
// in NetworkErrors.h. Destroying the service cancels what is in flight; no
// callback runs after the destructor has returned.

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "varnel/host/KTVREnvironment.h"
#include "varnel/host/KTVRPrivateDataService.h"
#include "varnel/standalone/network/CallbackGate.h"
#include "varnel/standalone/network/HttpClient.h"

namespace varnel::standalone {

/// The signed-in guest's access token, asked for each request; none when
/// nobody is signed in.
using AccessTokenSource = std::function<std::optional<std::string>()>;

class CurlPrivateDataService final : public KTVRPrivateDataService {
 public:
  /// `environment` null: the registered one, asked at each request.
  CurlPrivateDataService(std::shared_ptr<HttpClient> client, AccessTokenSource accessToken,
                         std::shared_ptr<KTVREnvironment> environment = nullptr);
  ~CurlPrivateDataService() override;

  void getDataUsingEndpoint(std::string_view endpointKey, const KTVRTokens& tokens,
                            const std::optional<Json>& parameters, KTVRSuccessBlock success,
                            KTVRFailureBlock failure) override;
  void getDataUsingPath(const std::string& url, const std::optional<Json>& parameters,
                        const HTTPHeaderFields& overrideHeaders, KTVRSuccessBlock success,
                        KTVRFailureBlock failure) override;
  void postDataUsingPath(const std::string& url, const Json& parameters, const HTTPHeaderFields& overrideHeaders,
                         KTVRSuccessBlock success, KTVRFailureBlock failure) override;

  /// Accept and Content-Type "application/json", and the tool's User-Agent.
  HTTPHeaderFields requestSerializerHTTPRequestHeaders() const override;
  /// "Authorization: Bearer TOKEN" when a guest is signed in.
  void setAuthorizationHeaderForRequest(URLRequest& request) const override;


 private:
  void send(HttpRequest request, KTVRSuccessBlock success, KTVRFailureBlock failure);
  void fail(Error error, KTVRFailureBlock failure);

  std::shared_ptr<HttpClient> client_;
  AccessTokenSource accessToken_;
  std::shared_ptr<KTVREnvironment> environment_;
  std::shared_ptr<CallbackGate> gate_ = std::make_shared<CallbackGate>();
  CallTracker<HttpCall> calls_;
};

/// `url` with `parameters` (an object; strings as they are, other values as
/// JSON text) appended to its query, percent-encoded; none when the URL is
/// not usable.
std::optional<std::string> urlWithQuery(const std::string& url, const std::optional<Json>& parameters);

}  // namespace varnel::standalone
