#include "varnel/mock/MockCommerceServer.h"

#include <httplib.h>
#include <openssl/ssl.h>
#include <pthread.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <thread>

#include "CommerceService.h"
#include "Connection.h"
#include "PipelinedServer.h"

namespace varnel::mock {
namespace {

constexpr const char* kHost = "127.0.0.1";
constexpr std::size_t kBodyLimit = 1 << 20;
// One thread per open connection: this many idle or slow clients at once
// still leave room for a new one. Idle connections are closed after
// MockCommerceOptions::keepAlive, a request that has not fully arrived after
// kReadSeconds.
constexpr std::size_t kServerThreads = 128;
constexpr time_t kReadSeconds = 3;

bool isServedMethod(const std::string& method) {
  for (const char* served : {"GET", "HEAD", "POST", "PUT", "DELETE", "PATCH", "OPTIONS"}) {
    if (method == served) return true;
  }
  return false;
}

/// The refusal of a request that is not served at all: a method the service
/// does not know (405), no Host, or a body length given twice or beside a
/// chunked body (400). None for a request that goes on to its endpoint.
std::optional<Reply> refusalBeforeRouting(const httplib::Request& request) {
  if (!isServedMethod(request.method)) {
    return jsonReply(405, bookingError("METHOD_NOT_ALLOWED", "The method is not allowed here."));
  }
  if (!request.has_header("Host")) return jsonReply(400, bookingError("INVALID_REQUEST", "A Host header is required."));
  const std::size_t lengths = request.get_header_value_count("Content-Length");
  if (lengths > 1 || (lengths == 1 && request.has_header("Transfer-Encoding"))) {
    return jsonReply(400, bookingError("INVALID_REQUEST", "The body's length is given more than once."));
  }
  return std::nullopt;
}

Call callOf(const httplib::Request& request) {
  Call call;
  call.method = request.method;
  call.path = request.path;
  // httplib decodes the whole path; split the path as sent first, so that an
  // encoded slash in a guest identifier is not taken for a separator.
  const std::string& target = request.target.empty() ? request.path : request.target;
  call.segments = pathSegments(std::string_view(target).substr(0, target.find('?')));
  for (auto& segment : call.segments) segment = httplib::detail::decode_url(segment, false);
  call.body = request.body;
  call.connection = request.remote_port;
  for (const auto& [name, value] : request.params) call.query.emplace_back(name, value);
  for (const auto& [name, value] : request.headers) {
    // The server adds these of its own; they were not sent.
    if (name == "REMOTE_ADDR" || name == "REMOTE_PORT" || name == "LOCAL_ADDR" || name == "LOCAL_PORT") continue;
    call.headers.emplace_back(name, value);
  }
  return call;
}

}  // namespace

struct MockCommerceServer::Impl {
  explicit Impl(MockCommerceOptions options) : log(options.requestLog), service(std::move(options)) {}

  void serve(const httplib::Request& request, httplib::Response& response) {
    Reply reply;
    try {
      reply = service.handle(callOf(request));
    } catch (...) {
      reply = jsonReply(500, bookingError("UNEXPECTED_ERROR", "The request could not be handled."));
    }
    ConnectionAddresses connection{request.local_addr, request.local_port, request.remote_addr, request.remote_port};
    std::string outcome;
    if (reply.cut == Cut::reset && resetConnection(connection)) {
      outcome = "reset";
    } else if (reply.cut == Cut::empty && closeConnection(connection)) {
      outcome = "closed";
    } else {
      if (reply.cut != Cut::none) reply = jsonReply(500, bookingError("UNEXPECTED_ERROR", "The connection was not cut."));
      response.status = reply.status;
      if (!reply.body.empty()) response.set_content(reply.body, reply.contentType.c_str());
      outcome = std::to_string(reply.status);
    }
    logLine(request, outcome);
  }

  /// Answers a request refused before routing, and ends its connection: what
  /// follows it on the connection cannot be trusted to start a request.
  httplib::Server::HandlerResponse guard(const httplib::Request& request, httplib::Response& response) {
    std::optional<Reply> refusal = refusalBeforeRouting(request);
    if (!refusal) return httplib::Server::HandlerResponse::Unhandled;
    response.status = refusal->status;
    response.set_content(refusal->body, refusal->contentType.c_str());
    response.set_header("Connection", "close");
    logLine(request, std::to_string(refusal->status));
    return httplib::Server::HandlerResponse::Handled;
  }

  /// Gives the server's own refusals (a request line it cannot read, a body
  /// too large) a booking error body, and ends the connection of a request
  /// not read whole: what follows it cannot be trusted to start a request.
  void explain(const httplib::Request& request, httplib::Response& response) {
    if (!response.body.empty()) return;
    if (response.status != 404) response.set_header("Connection", "close");
    const bool unknownMethod = !request.method.empty() && !isServedMethod(request.method) && response.status == 400;
    if (unknownMethod) response.status = 405;
    const Json body = unknownMethod ? bookingError("METHOD_NOT_ALLOWED", "The method is not allowed here.")
                      : response.status == 413 ? bookingError("INVALID_REQUEST", "The body is larger than 1 MiB.")
                      : response.status == 404 ? bookingError("NOT_FOUND", "No such resource.")
                                               : bookingError("INVALID_REQUEST", "The request could not be read.");
    response.set_content(body.dump(), "application/json");
  }

  void logLine(const httplib::Request& request, const std::string& outcome) {
    if (!log) return;
    try {
      log(request.method + " " + request.path + " " + outcome);
    } catch (...) {
    }
  }

  std::function<void(const std::string&)> log;
  CommerceService service;
  std::unique_ptr<httplib::Server> server;
  SSL_CTX* tls = nullptr;  // the HTTPS server's context; null over plain HTTP
  socket_t listening = INVALID_SOCKET;
  std::thread thread;
  int port = 0;
};

namespace {

/// A plain server, or an HTTPS one over the certificate and key (TLS 1.2 at
/// least); null when the files cannot be loaded.
std::unique_ptr<httplib::Server> makeServer(const std::optional<TlsFiles>& tls, SSL_CTX** context) {
  if (!tls) return makePipelinedServer();
  auto server = makePipelinedTlsServer(tls->certificate.c_str(), tls->key.c_str());
  if (!server->is_valid()) return nullptr;
  *context = server->ssl_context();
  SSL_CTX_set_min_proto_version(*context, TLS1_2_VERSION);
  return server;
}

}  // namespace

Result<std::unique_ptr<MockCommerceServer>> MockCommerceServer::start(MockCommerceOptions options, int port) {
  try {
    if (!options.guest.kuid || options.guest.kuid->empty()) {
      return mockCommerceError(MockCommerceErrorCode::badOption, "the guest file has no signed-in guest (profile.kuid)");
    }
    if (!options.guest.accessToken || options.guest.accessToken->empty()) {
      return mockCommerceError(MockCommerceErrorCode::badOption, "the guest file has no profile.accessToken");
    }
    if (port < 0 || port > 65535) return mockCommerceError(MockCommerceErrorCode::badOption, "the port must be 0 to 65535");
    const std::optional<TlsFiles> tls = options.tls;
    const std::chrono::seconds keepAlive = options.keepAlive;
    auto impl = std::make_unique<Impl>(std::move(options));
    impl->server = makeServer(tls, &impl->tls);
    if (!impl->server) {
      return mockCommerceError(MockCommerceErrorCode::badOption,
                               "cannot load the TLS certificate " + tls->certificate.string() + " and key " +
                                   tls->key.string() + " (PEM files, the key matching the certificate)");
    }
    Impl* state = impl.get();
    auto handler = [state](const httplib::Request& request, httplib::Response& response) { state->serve(request, response); };
    impl->server->Get(".*", handler).Post(".*", handler).Put(".*", handler).Delete(".*", handler).Patch(".*", handler).Options(".*", handler);
    impl->server->set_exception_handler([](const httplib::Request&, httplib::Response& response, std::exception_ptr) {
      response.status = 500;
      response.set_content(bookingError("UNEXPECTED_ERROR", "The request could not be handled.").dump(), "application/json");
    });
    impl->server->set_pre_routing_handler(
        [state](const httplib::Request& request, httplib::Response& response) { return state->guard(request, response); });
    impl->server->set_error_handler(
        [state](const httplib::Request& request, httplib::Response& response) { state->explain(request, response); });
    impl->server->new_task_queue = [] { return new httplib::ThreadPool(kServerThreads); };
    impl->server->set_keep_alive_timeout(std::max<time_t>(1, keepAlive.count()));
    impl->server->set_read_timeout(kReadSeconds);
    impl->server->set_payload_max_length(kBodyLimit);
    // Clients keep their connection for a whole renewal and longer; answers
    // go out at once instead of waiting for the client's acknowledgement.
    impl->server->set_keep_alive_max_count(100000);
    impl->server->set_tcp_nodelay(true);
    // The library's default also sets SO_REUSEPORT, which would let a second
    // server share a busy port instead of refusing it.
    impl->server->set_socket_options([state](socket_t socket) {
      int yes = 1;
      setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
      state->listening = socket;
    });

    impl->port = port == 0 ? impl->server->bind_to_any_port(kHost) : (impl->server->bind_to_port(kHost, port) ? port : -1);
    // The library listens with a backlog of 5: many clients connecting at
    // once would find the queue full and wait for retransmissions.
    if (impl->port > 0 && impl->listening != INVALID_SOCKET) ::listen(impl->listening, SOMAXCONN);
    if (impl->port <= 0) {
      return mockCommerceError(MockCommerceErrorCode::cannotListen,
                               "cannot listen on " + std::string(kHost) + ":" + std::to_string(port));
    }
    impl->service.setBaseUrl((impl->tls ? "https://" : "http://") + std::string(kHost) + ":" + std::to_string(impl->port));
    impl->thread = std::thread([state] {
      // Writing the answer of a cut connection raises SIGPIPE; the server's
      // threads (made by this one) inherit the blocked signal.
      sigset_t pipe;
      sigemptyset(&pipe);
      sigaddset(&pipe, SIGPIPE);
      pthread_sigmask(SIG_BLOCK, &pipe, nullptr);
      state->server->listen_after_bind();
    });
    // The socket already listens; wait for the accepting loop as well.
    for (int i = 0; i < 5000 && !impl->server->is_running(); ++i) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return std::unique_ptr<MockCommerceServer>(new MockCommerceServer(std::move(impl)));
  } catch (const std::exception& error) {
    return mockCommerceError(MockCommerceErrorCode::cannotListen, error.what());
  }
}

MockCommerceServer::MockCommerceServer(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}

MockCommerceServer::~MockCommerceServer() { stop(); }

int MockCommerceServer::port() const { return impl_->port; }

std::string MockCommerceServer::baseUrl() const {
  return (impl_->tls ? "https://" : "http://") + std::string(kHost) + ":" + std::to_string(impl_->port);
}

long MockCommerceServer::tlsHandshakes() const { return impl_->tls ? SSL_CTX_sess_accept_good(impl_->tls) : 0; }

void MockCommerceServer::stop() {
  try {
    impl_->service.interruptDelays();
    impl_->server->stop();
    if (impl_->thread.joinable()) impl_->thread.join();
  } catch (...) {
  }
}

std::optional<Error> MockCommerceServer::setFault(const EndpointFault& fault) { return impl_->service.addFault(fault); }

void MockCommerceServer::clearFaults() { impl_->service.clearFaults(); }

Json MockCommerceServer::journal() const { return impl_->service.journal(); }

void MockCommerceServer::clearJournal() { impl_->service.clearJournal(); }

std::map<std::string, int> MockCommerceServer::charges() const { return impl_->service.charges(); }

}  // namespace varnel::mock
