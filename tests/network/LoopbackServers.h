#pragma once
// Servers on 127.0.0.1 for the networking tests: a scripted HTTP(S) server
// whose handlers the test sets, and a listener that takes connections and
// drops them without answering (after reading the request head).

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

/// Accepts connections, reads each request head and closes the connection
/// without a word: a service that resets every request.
class DroppingListener {
 public:
  DroppingListener();
  ~DroppingListener();
  std::string baseUrl() const;
  /// The request heads read so far, one per connection.
  std::vector<std::string> requestHeads() const;

 private:
  int socket_ = -1;
  int port_ = 0;
  std::atomic<bool> stopping_{false};
  mutable std::mutex mutex_;
  std::vector<std::string> heads_;
  std::thread thread_;
};

/// A self-signed certificate for "localhost" and 127.0.0.1, with its key,
/// written into `directory` as cert.pem and key.pem.
void writeSelfSignedCertificate(const std::filesystem::path& directory);

}  // namespace varnel::testing
