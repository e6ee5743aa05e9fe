#pragma once
// The mock commerce server the soak talks to: a varnel-mock-commerce child
// process on 127.0.0.1, and its admin endpoints (faults, charges).

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace httplib {
class Client;
}

namespace varnel::chaos {

class MockServer {
 public:
  /// Starts `program --guest guestFile --quiet` and waits (up to 30 s) for
  /// its "listening on http://127.0.0.1:PORT" line; none when it does not
  /// come. Its stderr goes to `stderrPath`.
  static std::unique_ptr<MockServer> start(const std::filesystem::path& program,
                                           const std::filesystem::path& guestFile,
                                           const std::filesystem::path& stderrPath, std::string& problem);
  ~MockServer();
  MockServer(const MockServer&) = delete;
  MockServer& operator=(const MockServer&) = delete;

  /// "http://127.0.0.1:PORT".
  const std::string& url() const { return url_; }

  /// POST /__admin/faults {"endpoint": endpoint, "fault": fault}.
  bool addFault(const std::string& endpoint, const std::string& fault);
  /// DELETE /__admin/faults.
  bool clearFaults();
  /// GET /__admin/charges: charges per order ID; none when unanswered.
  std::optional<std::map<std::string, int>> charges();

  /// Still running; once it is not, `crashReport()` says whether it crashed.
  bool alive();
  /// Stops it with SIGTERM (SIGKILL after 10 s). Answers a description of a
  /// crash (a signal not sent here, a sanitizer report, an unexpected exit
  /// status), empty when it ended cleanly.
  std::string stop();

 private:
  MockServer() = default;

  pid_t pid_ = -1;
  int stdoutFd_ = -1;
  bool reaped_ = false;
  int waitStatus_ = 0;
  std::filesystem::path stderrPath_;
  std::string url_;
  std::unique_ptr<httplib::Client> admin_;
};

}  // namespace varnel::chaos
