#include "LoopbackServers.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <stdexcept>

namespace varnel::testing {

ScriptedServer::ScriptedServer() : server_(std::make_unique<httplib::Server>()) {}

ScriptedServer::ScriptedServer(const std::filesystem::path& certificate, const std::filesystem::path& key)
    : server_(std::make_unique<httplib::SSLServer>(certificate.c_str(), key.c_str())), scheme_("https") {}

void ScriptedServer::start() {
  server_->set_keep_alive_max_count(1000);
  server_->set_tcp_nodelay(true);
  server_->set_keep_alive_timeout(1);  // stop() waits this long for idle connections
  port_ = server_->bind_to_any_port("127.0.0.1");
  if (port_ <= 0) throw std::runtime_error("cannot bind a loopback port");
  thread_ = std::thread([this] { server_->listen_after_bind(); });
  while (!server_->is_running()) std::this_thread::yield();
}

ScriptedServer::~ScriptedServer() {
  server_->stop();
  if (thread_.joinable()) thread_.join();
}

std::string ScriptedServer::baseUrl() const { return scheme_ + "://127.0.0.1:" + std::to_string(port_); }

DroppingListener::DroppingListener(Misbehaviour misbehaviour) : misbehaviour_(misbehaviour) {
  socket_ = ::socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof address;
  if (::bind(socket_, reinterpret_cast<sockaddr*>(&address), length) != 0 || ::listen(socket_, 16) != 0 ||
      ::getsockname(socket_, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
    throw std::runtime_error("cannot listen on loopback");
  }
  port_ = ntohs(address.sin_port);
  thread_ = std::thread([this] {
    while (!stopping_) {
      pollfd ready{socket_, POLLIN, 0};
      if (::poll(&ready, 1, 50) <= 0) continue;
      const int connection = ::accept(socket_, nullptr, nullptr);
      if (connection < 0) continue;
      std::string head;
      char buffer[4096];
      while (head.find("\r\n\r\n") == std::string::npos) {
        pollfd readable{connection, POLLIN, 0};
        if (::poll(&readable, 1, 5000) <= 0) break;
        const ssize_t count = ::recv(connection, buffer, sizeof buffer, 0);
        if (count <= 0) break;
        head.append(buffer, static_cast<std::size_t>(count));
      }
      {
        std::lock_guard lock(mutex_);
        heads_.push_back(head.substr(0, head.find("\r\n\r\n")));
      }
      misbehave(connection);
      ::close(connection);
    }
  });
}

void DroppingListener::misbehave(int connection) const {
  if (misbehaviour_ == Misbehaviour::drop) return;
  if (misbehaviour_ == Misbehaviour::trickle) {
    const std::string head = "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: 100000\r\n\r\n";
    if (::send(connection, head.data(), head.size(), MSG_NOSIGNAL) < 0) return;
  }
  // Until the client hangs up (or the listener stops): silence, or a byte now and then.
  while (!stopping_) {
    pollfd readable{connection, POLLIN, 0};
    if (::poll(&readable, 1, 100) > 0) {
      char buffer[256];
      if (::recv(connection, buffer, sizeof buffer, 0) <= 0) return;
    }
    if (misbehaviour_ == Misbehaviour::trickle && ::send(connection, " ", 1, MSG_NOSIGNAL) < 0) return;
  }
}

DroppingListener::~DroppingListener() {
  stopping_ = true;
  thread_.join();
  ::close(socket_);
}

std::string DroppingListener::baseUrl() const { return "http://127.0.0.1:" + std::to_string(port_); }

std::vector<std::string> DroppingListener::requestHeads() const {
  std::lock_guard lock(mutex_);
  return heads_;
}

}  // namespace varnel::testing
