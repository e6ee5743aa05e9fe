#pragma once
// Servers on 127.0.0.1 for the networking tests: a scripted HTTP(S) server
// whose handlers the test sets, and a listener that reads each request head
// and then misbehaves: drops the connection, holds it without a word, or
// trickles an answer a byte at a time.

#include <httplib.h>

#include <atomic>
#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace varnel::testing {

/// An httplib server on a free loopback port, running until destroyed.
class ScriptedServer {
 public:
  /// Plain HTTP, or HTTPS with the given certificate and key files.
  ScriptedServer();
  ScriptedServer(const std::filesystem::path& certificate, const std::filesystem::path& key);
  ~ScriptedServer();

  httplib::Server& server() { return *server_; }
  /// Starts listening; call after the handlers are set.
  void start();
  std::string baseUrl() const;
  int port() const { return port_; }

 private:
  std::unique_ptr<httplib::Server> server_;
  std::string scheme_ = "http";
  int port_ = 0;
  std::thread thread_;
};

/// What a DroppingListener does once it has read a request head.
enum class Misbehaviour {
  drop,     ///< closes the connection without a word
  hold,     ///< keeps it open, silent, until the client gives up
  trickle,  ///< sends a status line and headers, then one body byte every 100 ms
};

/// Accepts connections one at a time, reads each request head and then
/// misbehaves; by default a service that resets every request.
class DroppingListener {
 public:
  explicit DroppingListener(Misbehaviour misbehaviour = Misbehaviour::drop);
  ~DroppingListener();
  std::string baseUrl() const;
  /// The request heads read so far, one per connection.
  std::vector<std::string> requestHeads() const;

 private:
  void misbehave(int connection) const;

  Misbehaviour misbehaviour_;
  int socket_ = -1;
  int port_ = 0;
  std::atomic<bool> stopping_{false};
  mutable std::mutex mutex_;
  std::vector<std::string> heads_;
  std::thread thread_;
};

}  // namespace varnel::testing
