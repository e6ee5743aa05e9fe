#pragma once
// The stand-alone HTTP transport: one libcurl multi handle driven by one
// worker thread. Connections are kept alive and reused across requests; TLS
// peers and host names are always verified (an extra CA file may be trusted
// besides the system's, nothing more). Completions run on the worker thread,
// one at a time, in the order transfers finish.
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

#include "varnel/standalone/network/HttpExchange.h"

namespace varnel::standalone {

struct TransportOptions {
  /// A CA certificate file trusted in addition to the system's.
  std::optional<std::filesystem::path> extraCaFile;
  std::chrono::milliseconds connectTimeout{10'000};
  /// The whole exchange, connection included.
  std::chrono::milliseconds totalTimeout{30'000};
};

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

  /// Ends a transfer that has not completed; its completion reports a
  /// cancelled failure. Unknown or finished transfers are ignored.
  void cancel(TransferId transfer);

  /// Connections opened so far, over all transfers.
  std::int64_t connectionsOpened() const;

 private:
  struct State;
  std::shared_ptr<State> state_;
};

}  // namespace varnel::standalone
