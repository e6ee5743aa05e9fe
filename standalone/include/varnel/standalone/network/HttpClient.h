#pragma once
// The policies every stand-alone request goes through, over one CurlTransport:
//  - the tester's server-error routing header, while routing is switched on,
//    through the rules of HeaderRules.h (it never replaces the request's own);
//  - an Idempotency-Key on every write, kept until the write is answered;
//  - retries of transport failures (never of an HTTP answer), writes only
//    with their key, all within the deadline of RetryPolicy.h;
//  - one debug line per attempt: method, host and path, and the outcome.
// Completions run on the transport's worker thread.

#include <atomic>
#include <functional>
#include <memory>
#include <random>

#include "varnel/platform/UserDefaults.h"
#include "varnel/settings/ServerErrorRoutingKeys.h"
#include "varnel/standalone/network/CurlTransport.h"
#include "varnel/standalone/network/IdempotencyKeys.h"
#include "varnel/standalone/network/RetryPolicy.h"

namespace varnel::standalone {

inline constexpr const char* kIdempotencyKeyHeader = "Idempotency-Key";

struct HttpClientOptions {
  TransportOptions transport;
  RetryPolicy retry;
  /// The settings store (routing switch, kept idempotency keys); the
  /// registered one when null.
  std::shared_ptr<UserDefaults> settings;
};

/// A request on its way; cancel() ends it, and its completion then never runs.
class HttpCall {
 public:
  virtual ~HttpCall() = default;
  virtual void cancel() = 0;
};

class HttpClient {
 public:
  using Completion = std::function<void(HttpOutcome outcome)>;

  explicit HttpClient(HttpClientOptions options = {});

  /// Sends `request` with the policies above.
  std::shared_ptr<HttpCall> send(HttpRequest request, Completion completion);

  /// Requests sent whose completion has not yet returned (cancelled ones
  /// excluded). Once it reads 0, every callback of what was sent has run.
  std::size_t callsInFlight() const { return inFlight_->load(); }

  /// Runs `task` on the worker thread.
  void post(std::function<void()> task) { transport_->post(std::move(task)); }

  CurlTransport& transport() { return *transport_; }

 private:
  struct Call;
  std::shared_ptr<UserDefaults> settings() const;
  void addRoutingHeader(HttpRequest& request) const;
  void dispatch(const std::shared_ptr<Call>& call, std::chrono::milliseconds delay);
  void finish(const std::shared_ptr<Call>& call, HttpOutcome outcome);

  HttpClientOptions options_;
  IdempotencyKeys keys_;
  std::mt19937_64 random_;
  // Shared, so that a completion that releases the client can still count itself out.
  std::shared_ptr<std::atomic<std::size_t>> inFlight_ = std::make_shared<std::atomic<std::size_t>>(0);
  // Last, so that it is destroyed first: no completion runs once it is gone.
  std::unique_ptr<CurlTransport> transport_;
};

}  // namespace varnel::standalone
