#pragma once
// One HTTP exchange as the stand-alone transport sees it: the request to send
// and what came of it (an answer with any status, or a transport failure).

#include <chrono>
#include <optional>
#include <string>

#include "varnel/platform/URLSession.h"

namespace varnel::standalone {

struct HttpRequest {
  std::string method = "GET";
  std::string url;
  HTTPHeaderFields headers;
  /// Sent as it is; none sends no body.
  std::optional<std::string> body;
  /// The exchange ends after this long at most (none: the transport's totalTimeout).
  std::optional<std::chrono::milliseconds> timeout = std::nullopt;
  /// The request line's target instead of the URL's path ("*" for a request
  /// to the server itself, as "OPTIONS *").
  std::optional<std::string> requestTarget = std::nullopt;
  /// A no-op read that only keeps a connection to its origin open. Another
  /// request to that origin that comes due while it is in flight waits for
  /// it (the transport's connectTimeout at most) and then takes its
  /// connection, rather than opening one more beside it.
  bool keepsConnectionWarm = false;
};

/// Why no answer arrived: refused, reset, timed out, TLS, cancelled, ...
struct TransportFailure {
  /// libcurl's result code.
  int code = 0;
  std::string message;

  /// The server's certificate failed verification (untrusted, expired, for
  /// another host name).
  bool certificateRejected() const;
};

struct HttpOutcome {
  /// The status line's code; none when the transfer failed.
  std::optional<long> status;
  HTTPHeaderFields headers;
  std::string body;
  std::optional<TransportFailure> failure;

  bool answered() const { return status.has_value() && !failure; }
};

}  // namespace varnel::standalone
