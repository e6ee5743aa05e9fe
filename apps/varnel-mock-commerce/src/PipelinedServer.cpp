#include "PipelinedServer.h"

#include <netdb.h>
#include <openssl/err.h>
#include <openssl/ssl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <chrono>
#include <cstdlib>
#include <cstring>

namespace varnel::mock {
namespace {

// How often a connection waiting for its next request looks whether the
// server is stopping.
constexpr int kStopCheckMilliseconds = 100;

// Whether the answer this thread wrote last said "Connection: close": the
// server then closes, and bytes that followed its request are not read as a
// next one (after a request it could not read, they cannot be trusted).
thread_local bool answerClosedConnection = false;

void noteWhetherAnswerCloses(const httplib::Request&, const httplib::Response& answer) {
  answerClosedConnection = answer.get_header_value("Connection") == "close";
}

int milliseconds(time_t seconds, time_t microseconds) { return static_cast<int>(seconds * 1000 + microseconds / 1000); }

/// Whether the socket becomes ready for `events` within the time. A hang-up
/// or an error counts as ready: the read or write that follows tells which.
bool ready(socket_t socket, short events, int milliseconds) {
  pollfd descriptor{socket, events, 0};
  int count = 0;
  do {
    count = ::poll(&descriptor, 1, milliseconds);
  } while (count < 0 && errno == EINTR);
  return count > 0;
}

void printAddress(socket_t socket, bool peer, std::string& ip, int& port) {
  sockaddr_storage address{};
  socklen_t size = sizeof address;
  auto* generic = reinterpret_cast<sockaddr*>(&address);
  if ((peer ? getpeername(socket, generic, &size) : getsockname(socket, generic, &size)) != 0) return;
  char host[NI_MAXHOST] = {};
  char service[NI_MAXSERV] = {};
  if (getnameinfo(generic, size, host, sizeof host, service, sizeof service, NI_NUMERICHOST | NI_NUMERICSERV) != 0) return;
  ip = host;
  port = std::atoi(service);
}

struct Timeouts {
  int readMilliseconds = 0;
  int writeMilliseconds = 0;
};

/// One connection's bytes, read through one buffer for the connection's
/// whole life: what arrived beyond one request waits there for the next.
class ConnectionStream : public httplib::Stream {
 public:
  ConnectionStream(socket_t socket, Timeouts timeouts) : socket_(socket), timeouts_(timeouts) {
    // Bounds the blocking calls as well (a TLS record that never completes).
    setTimeout(SO_RCVTIMEO, timeouts.readMilliseconds);
    setTimeout(SO_SNDTIMEO, timeouts.writeMilliseconds);
  }

  /// Waits up to `idleMilliseconds` for a next request to start. False when
  /// none did, or once `running` turns false.
  template <class Running>
  bool awaitRequest(int idleMilliseconds, Running running) const {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(idleMilliseconds);
    while (running()) {
      if (holdsBytes()) return true;
      const auto left =
          std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now()).count();
      if (left <= 0) return false;
      if (ready(socket_, POLLIN, static_cast<int>(std::min<long long>(left, kStopCheckMilliseconds)))) return true;
    }
    return false;
  }

  bool is_readable() const override { return holdsBytes() || ready(socket_, POLLIN, timeouts_.readMilliseconds); }
  bool is_writable() const override { return ready(socket_, POLLOUT, timeouts_.writeMilliseconds); }

  ssize_t read(char* destination, size_t size) override {
    if (begin_ == end_) {
      if (!is_readable()) return -1;
      const ssize_t received = receive(buffer_.data(), buffer_.size());
      if (received <= 0) return received;
      begin_ = 0;
      end_ = static_cast<std::size_t>(received);
    }
    const std::size_t count = std::min(size, end_ - begin_);
    std::memcpy(destination, buffer_.data() + begin_, count);
    begin_ += count;
    return static_cast<ssize_t>(count);
  }

  ssize_t write(const char* source, size_t size) override { return is_writable() ? transmit(source, size) : -1; }

  void get_remote_ip_and_port(std::string& ip, int& port) const override { printAddress(socket_, true, ip, port); }
  void get_local_ip_and_port(std::string& ip, int& port) const override { printAddress(socket_, false, ip, port); }
  socket_t socket() const override { return socket_; }

 protected:
  /// Reads what is there, up to `size`: the count, 0 at the end, -1 on failure.
  virtual ssize_t receive(char* destination, std::size_t size) = 0;
  virtual ssize_t transmit(const char* source, std::size_t size) = 0;
  /// Bytes received but held below this stream (a decrypted TLS record).
  virtual bool holdsPending() const { return false; }

  socket_t socket_;

 private:
  bool holdsBytes() const { return begin_ != end_ || holdsPending(); }

  void setTimeout(int option, int milliseconds) {
    timeval limit{milliseconds / 1000, (milliseconds % 1000) * 1000};
    setsockopt(socket_, SOL_SOCKET, option, &limit, sizeof limit);
  }

  Timeouts timeouts_;
  std::array<char, 16 * 1024> buffer_{};
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
};

class PlainStream final : public ConnectionStream {
 public:
  using ConnectionStream::ConnectionStream;

 protected:
  ssize_t receive(char* destination, std::size_t size) override {
    ssize_t count = 0;
    do {
      count = ::recv(socket_, destination, size, 0);
    } while (count < 0 && errno == EINTR);
    return count < 0 ? -1 : count;
  }
  ssize_t transmit(const char* source, std::size_t size) override {
    ssize_t count = 0;
    do {
      count = ::send(socket_, source, size, MSG_NOSIGNAL);
    } while (count < 0 && errno == EINTR);
    return count;
  }
};

class TlsStream final : public ConnectionStream {
 public:
  TlsStream(socket_t socket, SSL* tls, Timeouts timeouts) : ConnectionStream(socket, timeouts), tls_(tls) {}

 protected:
  ssize_t receive(char* destination, std::size_t size) override {
    const int count = SSL_read(tls_, destination, static_cast<int>(std::min<std::size_t>(size, INT_MAX)));
    if (count > 0) return count;
    return SSL_get_error(tls_, count) == SSL_ERROR_ZERO_RETURN ? 0 : -1;
  }
  ssize_t transmit(const char* source, std::size_t size) override {
    const int count = SSL_write(tls_, source, static_cast<int>(std::min<std::size_t>(size, INT_MAX)));
    return count > 0 ? count : -1;
  }
  bool holdsPending() const override { return SSL_pending(tls_) > 0; }

 private:
  SSL* tls_;
};

/// The library's server with the connection loop replaced by one that reads
/// every request of a connection from the same stream.
template <class Server>
class Pipelined : public Server {
 public:
  using Server::Server;

 protected:
  Timeouts timeouts() const {
    return {milliseconds(this->read_timeout_sec_, this->read_timeout_usec_),
            milliseconds(this->write_timeout_sec_, this->write_timeout_usec_)};
  }

  /// Answers the connection's requests in the order they came, until the
  /// client or an answer closes it, it idles past the keep-alive, or the
  /// server stops.
  bool serveRequests(ConnectionStream& stream) {
    const int idle = milliseconds(this->keep_alive_timeout_sec_, 0);
    bool served = false;
    for (std::size_t left = this->keep_alive_max_count_; left > 0; --left) {
      if (!stream.awaitRequest(idle, [this] { return this->svr_sock_ != INVALID_SOCKET; })) break;
      bool closed = false;
      answerClosedConnection = false;
      served = this->process_request(stream, left == 1, closed, nullptr);
      if (!served || closed || answerClosedConnection) break;
    }
    return served;
  }

  static void closeSocket(socket_t socket) {
    ::shutdown(socket, SHUT_RDWR);
    ::close(socket);
  }
};

class PlainServer final : public Pipelined<httplib::Server> {
 private:
  bool process_and_close_socket(socket_t socket) override {
    PlainStream stream(socket, timeouts());
    const bool served = serveRequests(stream);
    closeSocket(socket);
    return served;
  }
};

class TlsServer final : public Pipelined<httplib::SSLServer> {
 public:
  using Pipelined::Pipelined;

 private:
  bool process_and_close_socket(socket_t socket) override {
    bool served = false;
    SSL* tls = SSL_new(ssl_context());
    if (tls && SSL_set_fd(tls, static_cast<int>(socket)) == 1) {
      TlsStream stream(socket, tls, timeouts());  // the handshake is bounded by its timeouts
      if (SSL_accept(tls) == 1) {
        served = serveRequests(stream);
        if (served) SSL_shutdown(tls);
      }
    }
    SSL_free(tls);
    ERR_clear_error();  // the thread serves other connections next
    closeSocket(socket);
    return served;
  }
};

}  // namespace

std::unique_ptr<httplib::Server> makePipelinedServer() {
  auto server = std::make_unique<PlainServer>();
  server->set_logger(noteWhetherAnswerCloses);
  return server;
}

std::unique_ptr<httplib::SSLServer> makePipelinedTlsServer(const char* certificate, const char* key) {
  auto server = std::make_unique<TlsServer>(certificate, key);
  server->set_logger(noteWhetherAnswerCloses);
  return server;
}

}  // namespace varnel::mock
