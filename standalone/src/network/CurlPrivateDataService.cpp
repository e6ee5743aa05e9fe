#include "varnel/standalone/network/CurlPrivateDataService.h"

#include <curl/curl.h>

#include <algorithm>

#include "varnel/standalone/network/HeaderRules.h"
#include "varnel/standalone/network/NetworkErrors.h"

namespace varnel::standalone {

std::optional<std::string> urlWithQuery(const std::string& url, const std::optional<Json>& parameters) {
  std::unique_ptr<CURLU, decltype(&curl_url_cleanup)> handle(curl_url(), &curl_url_cleanup);
  if (!handle || curl_url_set(handle.get(), CURLUPART_URL, url.c_str(), 0) != CURLUE_OK) return std::nullopt;
  if (parameters && parameters->is_object()) {
    for (const auto& [name, value] : parameters->items()) {
      const std::string text = value.is_string() ? value.get<std::string>()
                                                 : value.dump(-1, ' ', false, Json::error_handler_t::replace);
      const std::string pair = name + "=" + text;
      if (curl_url_set(handle.get(), CURLUPART_QUERY, pair.c_str(), CURLU_APPENDQUERY | CURLU_URLENCODE) !=
          CURLUE_OK) {
        return std::nullopt;
      }
    }
  }
  char* full = nullptr;
  if (curl_url_get(handle.get(), CURLUPART_URL, &full, 0) != CURLUE_OK) return std::nullopt;
  std::string result(full);
  curl_free(full);
  return result;
}

CurlPrivateDataService::CurlPrivateDataService(std::shared_ptr<HttpClient> client, AccessTokenSource accessToken,
                                               std::shared_ptr<KTVREnvironment> environment)
    : client_(std::move(client)), accessToken_(std::move(accessToken)), environment_(std::move(environment)) {}

CurlPrivateDataService::~CurlPrivateDataService() {
  gate_->close();
  calls_.cancelAll();
}

HTTPHeaderFields CurlPrivateDataService::requestSerializerHTTPRequestHeaders() const {
  return {{"Accept", "application/json"}, {"Content-Type", "application/json"}, {"User-Agent", "varnel/0.1.0"}};
}

void CurlPrivateDataService::setAuthorizationHeaderForRequest(URLRequest& request) const {
  if (!accessToken_) return;
  if (auto token = accessToken_(); token && !token->empty()) request.setValue("Bearer " + *token, "Authorization");
}

void CurlPrivateDataService::fail(Error error, KTVRFailureBlock failure) {
  client_->post([gate = gate_, error = std::move(error), failure = std::move(failure)] {
    gate->run([&] {
      if (failure) failure(error);
    });
  });
}

void CurlPrivateDataService::send(HttpRequest request, KTVRSuccessBlock success, KTVRFailureBlock failure) {
  URLRequest authorized;
  setAuthorizationHeaderForRequest(authorized);
  for (auto& [name, value] : authorized.allHTTPHeaderFields) request.headers.insert_or_assign(name, value);

  calls_.track([&] {
    return client_->send(std::move(request), [gate = gate_, success = std::move(success),
                                              failure = std::move(failure)](HttpOutcome outcome) {
      gate->run([&] {
        if (outcome.failure) {
          if (failure) failure(transportError(*outcome.failure));
        } else if (*outcome.status < 200 || *outcome.status > 299) {
          if (failure) failure(httpStatusError(*outcome.status, outcome.body));
        } else if (outcome.body.empty()) {
          if (success) success(std::nullopt);
        } else if (auto json = decodeJsonBody(outcome.body)) {
          if (success) success(json);  // the optional itself: no copy of the document
        } else {
          if (failure) failure(notJsonError(*outcome.status));
        }
      });
    });
  });
}

void CurlPrivateDataService::getDataUsingEndpoint(std::string_view endpointKey, const KTVRTokens& tokens,
                                                  const std::optional<Json>& parameters, KTVRSuccessBlock success,
                                                  KTVRFailureBlock failure) {
  auto environment = environment_ ? environment_ : KTVRServices::environment();
  std::optional<Json> resolved = environment ? environment->valueForKey(endpointKey, tokens) : std::nullopt;
  if (!resolved || !resolved->is_string()) {
    fail(badURLError("No URL for the endpoint " + std::string(endpointKey)), std::move(failure));
    return;
  }
  getDataUsingPath(resolved->get<std::string>(), parameters, {}, std::move(success), std::move(failure));
}

void CurlPrivateDataService::getDataUsingPath(const std::string& url, const std::optional<Json>& parameters,
                                              const HTTPHeaderFields& overrideHeaders, KTVRSuccessBlock success,
                                              KTVRFailureBlock failure) {
  auto target = urlWithQuery(url, parameters);
  if (!target) {
    fail(badURLError("The request's URL is not usable"), std::move(failure));
    return;
  }
  HttpRequest request{"GET", std::move(*target), requestSerializerHTTPRequestHeaders(), std::nullopt};
  request.headers.erase("Content-Type");
  addUntrustedHeaders(request, overrideHeaders, "the override headers");
  send(std::move(request), std::move(success), std::move(failure));
}

void CurlPrivateDataService::postDataUsingPath(const std::string& url, const Json& parameters,
                                               const HTTPHeaderFields& overrideHeaders, KTVRSuccessBlock success,
                                               KTVRFailureBlock failure) {
  if (!urlWithQuery(url, std::nullopt)) {
    fail(badURLError("The request's URL is not usable"), std::move(failure));
    return;
  }
  HttpRequest request{"POST", url, requestSerializerHTTPRequestHeaders(),
                      parameters.dump(-1, ' ', false, Json::error_handler_t::replace)};
  // A write may bring its own idempotency key (a journalled checkout does):
  // taken when it is a plain token; any other is refused at the door below.
  HTTPHeaderFields others = overrideHeaders;
  if (const auto key = others.find(kIdempotencyKeyHeader); key != others.end() && isPlainIdempotencyKey(key->second)) {
    request.headers.insert_or_assign(kIdempotencyKeyHeader, key->second);
    others.erase(key);
  }
  addUntrustedHeaders(request, others, "the override headers");
  send(std::move(request), std::move(success), std::move(failure));
}

}  // namespace varnel::standalone
