#pragma once
// One HTTP exchange as the stand-alone transport sees it: the request to send
// and what came of it (an answer with any status, or a transport failure).

#include <cstdint>
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
};

/// Why no answer arrived: refused, reset, timed out, TLS, cancelled, ...
struct TransportFailure {
  /// libcurl's result code.
  int code = 0;
  std::string message;
  /// The caller cancelled the transfer (or destroyed the transport).
  bool cancelled = false;
};

struct HttpOutcome {
  /// The status line's code; none when the transfer failed.
  std::optional<long> status;
  HTTPHeaderFields headers;
  std::string body;
  std::optional<TransportFailure> failure;
  /// New connections this exchange had to open (0 when one was reused).
  std::int64_t connectionsOpened = 0;

  bool answered() const { return status.has_value() && !failure; }
};

}  // namespace varnel::standalone
