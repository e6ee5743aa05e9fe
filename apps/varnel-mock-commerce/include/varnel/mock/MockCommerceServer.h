#pragma once
// The commerce service's stand-in: a real HTTP server on 127.0.0.1 that serves
// one guest file's household (stored cards, renewal orders, monthly contracts,
// express checkouts) under the paths of resources/environments/mock.json.
//
//   auto server = MockCommerceServer::start({.guest = guest});   // a free port
//   if (!server) ...server.error()...
//   environment.base = server.value()->baseUrl();                // http://127.0.0.1:PORT
//
// It checks what the service checks: the bearer token of the guest file
// (401), the guest of the path and the owner of an order (403), JSON bodies
// (400), unknown orders (404); it charges an order at most once, answers a
// repeated Idempotency-Key with the earlier answer, declines the documented
// decline card, and injects the scripted faults of MockFault.h. OPTIONS of
// any target (a client's no-op, "OPTIONS *") is answered 204 with nothing
// checked. Every request is journalled (/__admin/requests), with the client
// port of its connection. apps/varnel-mock-commerce/README.md
// lists the rules and the error bodies.
//
// With MockCommerceOptions::tls it speaks HTTPS (TLS 1.2 or later) instead.
//
// Threads: requests are served on the server's own threads; every method may
// be called from any thread. Nothing throws out of this class.

#include <chrono>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "varnel/mock/MockFault.h"
#include "varnel/platform/Json.h"
#include "varnel/platform/Result.h"
#include "varnel/standalone/GuestDataFile.h"

namespace varnel::mock {

/// The test header that selects a route fault, and the value that asks a
/// checkout to answer as for an order pending with the ticketing system.
inline constexpr const char* kMockHeaderName = "X-Orvane-Internal-Mock-AP";
inline constexpr const char* kPendingOrderHeaderValue = "tkx_error_871";

/// The PEM files of an HTTPS server: its certificate (chain) and private key.
struct TlsFiles {
  std::filesystem::path certificate;
  std::filesystem::path key;
};

struct MockCommerceOptions {
  /// The household served: profile (kuid, accessToken, email), passes, cards.
  standalone::GuestData guest;
  /// Faults in force from the start, in order per endpoint.
  std::vector<EndpointFault> faults;
  /// Answers of the routing service.
  std::vector<Route> routes;
  /// Faults by test-header value.
  std::vector<RouteFault> routeFaults;
  /// Receives one line per request ("POST /path 200"); none logs nothing.
  std::function<void(const std::string&)> requestLog;
  /// HTTPS with this certificate and key instead of plain HTTP.
  std::optional<TlsFiles> tls = std::nullopt;
  /// A connection idle this long is closed (one second at least).
  std::chrono::seconds keepAlive{5};
};

class MockCommerceServer {
 public:
  /// Listens on 127.0.0.1:`port` (0 picks a free port) and returns once the
  /// server accepts connections; an Error of kMockCommerceErrorDomain when it
  /// cannot (a busy port, a guest without kuid or token, TLS files that
  /// cannot be loaded).
  static Result<std::unique_ptr<MockCommerceServer>> start(MockCommerceOptions options, int port = 0);

  /// Stops the server.
  ~MockCommerceServer();
  MockCommerceServer(const MockCommerceServer&) = delete;
  MockCommerceServer& operator=(const MockCommerceServer&) = delete;

  int port() const;
  /// "http://127.0.0.1:PORT" ("https://" with TLS), the {server} of mock.json.
  std::string baseUrl() const;
  /// TLS handshakes completed so far (0 over plain HTTP).
  long tlsHandshakes() const;
  /// Stops accepting, finishes the requests under way and joins the threads.
  /// Idempotent.
  void stop();

  /// Adds a fault after those of the endpoint (as POST /__admin/faults); an
  /// error for an unknown endpoint key.
  std::optional<Error> setFault(const EndpointFault& fault);
  /// Removes every endpoint fault (as DELETE /__admin/faults).
  void clearFaults();
  /// The requests so far, oldest first (as GET /__admin/requests).
  Json journal() const;
  void clearJournal();
  /// Charges by order identifier; orders not charged count 0 (as GET /__admin/charges).
  std::map<std::string, int> charges() const;

  struct Impl;

 private:
  explicit MockCommerceServer(std::unique_ptr<Impl> impl);
  std::unique_ptr<Impl> impl_;
};

}  // namespace varnel::mock
