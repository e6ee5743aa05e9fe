#pragma once
// The stand-alone ConnectionWarmer, over the transport's connection pool.
// While a hold lives, whenever nothing to the origin has been answered for
// keepWarmEvery it sends "OPTIONS *" there (HTTP's request to the server
// itself, a no-op: no resource, no body, no credentials), so that the pool
// always has a connection the server has not yet closed for idleness, TLS
// session included. A hold taken when the origin was never answered pings at
// once: a connection opens while the guest decides. A guest who decides
// within keepWarmEvery costs no ping at all. A request to the origin sent
// while a ping is on the wire waits for it and takes its connection (see
// HttpRequest::keepsConnectionWarm). It stops when the hold is released (a
// ping then on the wire is left to end, not cancelled: that would close the
// connection the checkout is waiting for), after keepWarmFor, or when the
// client goes; the status of a ping's answer does not matter, nor does a
// failure. Pings are not requests of the module: they are neither retried,
// logged nor counted in HttpClient::callsInFlight().

#include <memory>
#include <string>

#include "varnel/platform/ConnectionWarmer.h"
#include "varnel/standalone/network/HttpClient.h"

namespace varnel::standalone {

class CurlConnectionWarmer final : public ConnectionWarmer {
 public:
  explicit CurlConnectionWarmer(std::weak_ptr<HttpClient> client) : client_(std::move(client)) {}

  /// A URL that is not http(s) gets a hold that keeps nothing.
  std::unique_ptr<Hold> keepWarm(const std::string& url) override;

 private:
  std::weak_ptr<HttpClient> client_;
};

}  // namespace varnel::standalone
