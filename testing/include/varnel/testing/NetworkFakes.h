#pragma once
// Fakes of the host's networking (Varnel::testing): a private data service and
// a URL session that record every request and let the test answer it, an
// environment from a table of URL templates, and a signed-in profile. Nothing
// is answered until the test calls a recorded callback, on the test's thread.

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "varnel/host/KTVREnvironment.h"
#include "varnel/host/KTVRPrivateDataService.h"
#include "varnel/host/KTVRUserProfileAuthentication.h"
#include "varnel/platform/URLSession.h"

namespace varnel::testing {

/// Records each call; the test calls the recorded success or failure.
class FakePrivateDataService final : public KTVRPrivateDataService {
 public:
  struct Call {
    std::string method;  // "GET endpoint", "GET" or "POST"
    std::string target;  // the endpoint key or the URL
    KTVRTokens tokens;
    std::optional<Json> parameters;
    HTTPHeaderFields overrideHeaders;
    KTVRSuccessBlock success;
    KTVRFailureBlock failure;
  };

  void getDataUsingEndpoint(std::string_view endpointKey, const KTVRTokens& tokens,
                            const std::optional<Json>& parameters, KTVRSuccessBlock success,
                            KTVRFailureBlock failure) override;
  void getDataUsingPath(const std::string& url, const std::optional<Json>& parameters,
                        const HTTPHeaderFields& overrideHeaders, KTVRSuccessBlock success,
                        KTVRFailureBlock failure) override;
  void postDataUsingPath(const std::string& url, const Json& parameters, const HTTPHeaderFields& overrideHeaders,
                         KTVRSuccessBlock success, KTVRFailureBlock failure) override;
  HTTPHeaderFields requestSerializerHTTPRequestHeaders() const override { return defaultHeaders; }
  /// Sets "Authorization" to `authorization` when there is one.
  void setAuthorizationHeaderForRequest(URLRequest& request) const override;

  std::vector<Call> calls;
  HTTPHeaderFields defaultHeaders;
  std::optional<std::string> authorization;
};

/// Endpoint keys to values; string values are templates whose {name} parts
/// take the tokens.
class TableEnvironment final : public KTVREnvironment {
 public:
  explicit TableEnvironment(std::map<std::string, Json, std::less<>> entries = {}) : table(std::move(entries)) {}
  std::optional<Json> valueForKey(std::string_view key,
                                  const std::map<std::string, std::string>& tokens) const override;
  std::map<std::string, Json, std::less<>> table;
};

/// Records each task; nothing is answered until the test calls complete().
class FakeURLSession final : public URLSession {
 public:
  struct Task : URLSessionDataTask {
    URLRequest request;
    Completion completion;
    bool resumed = false;
    void resume() override { resumed = true; }
    void cancel() override {}
  };

  std::shared_ptr<URLSessionDataTask> dataTask(URLRequest request, Completion completion) override;
  /// Answers the task at `index`.
  void complete(std::size_t index, std::optional<std::string> data, std::optional<URLResponse> response,
                std::optional<Error> error);

  std::vector<std::shared_ptr<Task>> tasks;
};

class FakeUserProfileAuthentication final : public KTVRUserProfileAuthentication {
 public:
  explicit FakeUserProfileAuthentication(std::optional<std::string> email = {}) : address(std::move(email)) {}
  std::optional<std::string> email() const override { return address; }
  std::optional<std::string> address;
};

}  // namespace varnel::testing
