#pragma once
// A TCP relay on 127.0.0.1 that delays every byte by a fixed time in each
// direction, so that a loopback server looks as far away as a phone's
// network: 50 ms each way make a 100 ms round trip. Connections are relayed
// as they come, several at once (TLS passes through untouched). A new
// connection costs one round trip more, as its handshake would: the first
// bytes a client sends on it are held that much longer. It relays nothing after it is destroyed,
// and it stops by itself after `lifetime`.

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace varnel::bench {

class LatencyRelay {
 public:
  using Clock = std::chrono::steady_clock;

  LatencyRelay(int targetPort, std::chrono::milliseconds oneWay,
               std::chrono::seconds lifetime = std::chrono::seconds(600))
      : targetPort_(targetPort), oneWay_(oneWay), deadline_(Clock::now() + lifetime) {
    listener_ = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    bind(listener_, reinterpret_cast<sockaddr*>(&address), sizeof address);
    listen(listener_, 64);
    socklen_t length = sizeof address;
    getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &length);
    port_ = ntohs(address.sin_port);
    acceptor_ = std::thread([this] { acceptLoop(); });
  }
  ~LatencyRelay() {
    stopping_ = true;
    acceptor_.join();
    close(listener_);
    std::lock_guard lock(mutex_);
    for (auto& pipe : pipes_) pipe->stop();
    for (auto& pipe : pipes_) pipe->join();
    for (const int socketFd : sockets_) close(socketFd);
  }
  LatencyRelay(const LatencyRelay&) = delete;
  LatencyRelay& operator=(const LatencyRelay&) = delete;

  int port() const { return port_; }
  /// Connections accepted so far.
  int connections() const { return connections_; }

 private:
  /// One direction of one connection: reads, holds each chunk for the delay, writes.
  class Pipe {
   public:
    Pipe(int from, int to, std::chrono::milliseconds delay, std::chrono::milliseconds firstExtra,
         const std::atomic<bool>& stopping)
        : from_(from), to_(to), delay_(delay), firstExtra_(firstExtra), stopping_(stopping) {
      reader_ = std::thread([this] { read(); });
      writer_ = std::thread([this] { write(); });
    }
    void stop() {
      {
        std::lock_guard lock(mutex_);
        done_ = true;
      }
      ready_.notify_all();
      shutdown(from_, SHUT_RDWR);
      shutdown(to_, SHUT_RDWR);
    }
    void join() {
      reader_.join();
      writer_.join();
    }

   private:
    void read() {
      char buffer[16384];
      while (!stopping_) {
        pollfd wait{from_, POLLIN, 0};
        if (poll(&wait, 1, 100) <= 0) continue;
        const ssize_t count = recv(from_, buffer, sizeof buffer, 0);
        if (count <= 0) break;
        std::lock_guard lock(mutex_);
        chunks_.push_back({Clock::now() + delay_ + firstExtra_, std::string(buffer, static_cast<std::size_t>(count))});
        firstExtra_ = std::chrono::milliseconds(0);
        ready_.notify_all();
      }
      std::lock_guard lock(mutex_);
      chunks_.push_back({Clock::now() + delay_, std::string()});  // the end, delayed too
      ready_.notify_all();
    }
    void write() {
      std::unique_lock lock(mutex_);
      while (true) {
        ready_.wait(lock, [this] { return done_ || !chunks_.empty(); });
        if (done_) return;
        auto [due, bytes] = chunks_.front();
        if (ready_.wait_until(lock, due, [this] { return done_; })) return;
        chunks_.pop_front();
        lock.unlock();
        if (bytes.empty()) {
          shutdown(to_, SHUT_WR);
        } else {
          for (std::size_t sent = 0; sent < bytes.size();) {
            const ssize_t count = send(to_, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
            if (count <= 0) break;
            sent += static_cast<std::size_t>(count);
          }
        }
        lock.lock();
      }
    }

    int from_, to_;
    std::chrono::milliseconds delay_;
    std::chrono::milliseconds firstExtra_;
    const std::atomic<bool>& stopping_;
    std::mutex mutex_;
    std::condition_variable ready_;
    std::deque<std::pair<Clock::time_point, std::string>> chunks_;
    bool done_ = false;
    std::thread reader_, writer_;
  };

  void acceptLoop() {
    while (!stopping_ && Clock::now() < deadline_) {
      pollfd wait{listener_, POLLIN, 0};
      if (poll(&wait, 1, 100) <= 0) continue;
      const int client = accept(listener_, nullptr, nullptr);
      if (client < 0) continue;
      const int server = socket(AF_INET, SOCK_STREAM, 0);
      sockaddr_in address{};
      address.sin_family = AF_INET;
      address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
      address.sin_port = htons(static_cast<uint16_t>(targetPort_));
      if (connect(server, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
        close(client);
        close(server);
        continue;
      }
      for (const int socketFd : {client, server}) {
        const int on = 1;
        setsockopt(socketFd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
      }
      ++connections_;
      std::lock_guard lock(mutex_);
      sockets_.push_back(client);
      sockets_.push_back(server);
      pipes_.push_back(std::make_unique<Pipe>(client, server, oneWay_, 2 * oneWay_, stopping_));
      pipes_.push_back(std::make_unique<Pipe>(server, client, oneWay_, std::chrono::milliseconds(0), stopping_));
    }
  }

  int targetPort_;
  std::chrono::milliseconds oneWay_;
  Clock::time_point deadline_;
  int listener_ = -1;
  int port_ = 0;
  std::atomic<bool> stopping_{false};
  std::atomic<int> connections_{0};
  std::thread acceptor_;
  std::mutex mutex_;
  std::vector<std::unique_ptr<Pipe>> pipes_;
  std::vector<int> sockets_;
};

}  // namespace varnel::bench
