#pragma once
// The stand-alone HTTP transport: one libcurl multi handle driven by one
// worker thread. Connections are kept alive and reused across requests; TLS
// (1.2 at least, 1.3 when the server offers it) always verifies the peer's
// certificate and host name: an extra CA file may be trusted besides the
// system's, nothing more, and no option turns verification off. Completions
// run on the worker thread, one at a time, in the order transfers finish.
//
// No transfer hangs: connecting (TLS handshake included) ends after
// connectTimeout, a transfer that moves fewer than lowSpeedLimit bytes a
// second for lowSpeedTime ends (a server that says nothing, or trickles), and
// a transfer ends after totalTimeout (or its request's own timeout) whatever
// happens; each ends as a failure with libcurl's timeout code.
//
// Destroying the transport cancels every transfer in flight: no completion
// runs after the destructor has returned (nor, when it is called from inside
// a completion, after that completion has returned).

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "varnel/standalone/network/HttpExchange.h"

namespace varnel::standalone {

struct TransportOptions {
  /// A CA certificate file (PEM) trusted in addition to the system's.
  std::optional<std::filesystem::path> extraCaFile;
  /// TCP connection and TLS handshake; a refused connection fails at once.
  std::chrono::milliseconds connectTimeout{2'000};
  /// Slower than this many bytes a second for lowSpeedTime ends the transfer.
  long lowSpeedLimit = 16;
  std::chrono::seconds lowSpeedTime{8};
  /// The whole exchange, connection included.
  std::chrono::milliseconds totalTimeout{10'000};
  /// A connection kept warm (CurlConnectionWarmer) sends its no-op read this
  /// often, well within the idle time after which servers close a connection
  /// (5 s is common), and is kept so for this long at most.
  std::chrono::milliseconds keepWarmEvery{2'000};
  std::chrono::seconds keepWarmFor{180};
};

/// "scheme://host:port/" of an http(s) URL, as libcurl parses it; none for
/// another URL.
std::optional<std::string> originOf(const std::string& url);

class CurlTransport {
 public:
  using Completion = std::function<void(HttpOutcome outcome)>;
  using TransferId = std::uint64_t;

  explicit CurlTransport(TransportOptions options = {});
  ~CurlTransport();
  CurlTransport(const CurlTransport&) = delete;
  CurlTransport& operator=(const CurlTransport&) = delete;

  /// Starts `request` after `delay` (none: at once); `completion` runs once.
  TransferId send(HttpRequest request, Completion completion,
                  std::chrono::milliseconds delay = std::chrono::milliseconds{0});

  /// Runs `task` on the worker thread, after what is already waiting there.
  void post(std::function<void()> task);
  /// Runs `task` on the worker thread once `delay` has passed (never after
  /// the transport is destroyed).
  void postAfter(std::chrono::milliseconds delay, std::function<void()> task);

  /// Ends a transfer that has not completed; its completion reports a
  /// cancelled failure. Unknown or finished transfers are ignored.
  void cancel(TransferId transfer);

  /// Connections opened so far, over all transfers.
  std::int64_t connectionsOpened() const;

  const TransportOptions& options() const;

  /// When a transfer to `origin` (as originOf gives it) last ended with an
  /// answer, its connection then left open for the next; none if never.
  std::optional<std::chrono::steady_clock::time_point> lastAnswered(const std::string& origin) const;

 private:
  struct State;
  std::shared_ptr<State> state_;
};

}  // namespace varnel::standalone
