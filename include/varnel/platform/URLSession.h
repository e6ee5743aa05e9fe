#pragma once
// The platform URL session: a request record, an HTTP response and data tasks
// whose completion runs on the session's own thread. The module sends the
// monthly contract through it; the stand-alone host implements it with libcurl.

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "varnel/platform/Error.h"

namespace varnel {

/// Header fields by name. Names compare without regard to case, as HTTP's do.
struct HeaderNameLess {
  using is_transparent = void;
  bool operator()(std::string_view a, std::string_view b) const;
};
using HTTPHeaderFields = std::map<std::string, std::string, HeaderNameLess>;

/// A mutable URL request.
struct URLRequest {
  std::string url;
  std::string httpMethod = "GET";
  HTTPHeaderFields allHTTPHeaderFields;
  /// The body; none sends no body at all.
  std::optional<std::string> httpBody;

  void setValue(std::string value, std::string_view headerField) {
    allHTTPHeaderFields.insert_or_assign(std::string(headerField), std::move(value));
  }
  std::optional<std::string> valueForHTTPHeaderField(std::string_view headerField) const;
};

/// What answered a request. An HTTP answer has a status code; a response of
/// another kind (a file URL, say) has none.
struct URLResponse {
  std::string url;
  std::optional<long> statusCode;
  HTTPHeaderFields allHeaderFields;

  bool isHTTPResponse() const { return statusCode.has_value(); }
};

/// The printed form of a response, for log lines: its URL, status code and
/// header names. Only the values of a few harmless headers are shown, the
/// rest print as "REDACTED" (cookies and tokens never reach a log).
std::string describe(const URLResponse& response);

/// One transfer. Nothing is sent before resume(); after cancel() its
/// completion never runs.
class URLSessionDataTask {
 public:
  virtual ~URLSessionDataTask() = default;
  virtual void resume() = 0;
  virtual void cancel() = 0;
};

class URLSession {
 public:
  /// Data (absent when nothing arrived), the response (absent when none came)
  /// and the transport error (absent on an answer, whatever its status).
  using Completion =
      std::function<void(std::optional<std::string> data, std::optional<URLResponse> response, std::optional<Error> error)>;

  virtual ~URLSession() = default;

  /// The session registered with the host registry, or none.
  static std::shared_ptr<URLSession> shared();

  /// A task for `request`; the completion runs once, on the session's thread.
  virtual std::shared_ptr<URLSessionDataTask> dataTask(URLRequest request, Completion completion) = 0;
};

}  // namespace varnel
