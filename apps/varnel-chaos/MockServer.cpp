#include "MockServer.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <httplib.h>
#include <nlohmann/json.hpp>

#include "varnel/platform/Json.h"

#include <regex>
#include <thread>

#include "ChildProcess.h"

namespace varnel::chaos {
namespace {

using Clock = std::chrono::steady_clock;

/// Reads from `fd` until a newline or `until`; the line without it.
std::optional<std::string> readLine(int fd, Clock::time_point until) {
  std::string line;
  while (Clock::now() < until) {
    pollfd ready{fd, POLLIN, 0};
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(until - Clock::now()).count();
    if (::poll(&ready, 1, static_cast<int>(std::max<long long>(left, 1))) <= 0) continue;
    char c = 0;
    if (::read(fd, &c, 1) != 1) return std::nullopt;
    if (c == '\n') return line;
    if (line.size() > 4096) return std::nullopt;
    line.push_back(c);
  }
  return std::nullopt;
}

}  // namespace

std::unique_ptr<MockServer> MockServer::start(const std::filesystem::path& program,
                                              const std::filesystem::path& guestFile,
                                              const std::filesystem::path& stderrPath, std::string& problem) {
  int pipeFds[2];
  if (::pipe2(pipeFds, O_CLOEXEC) != 0) {
    problem = "cannot make a pipe";
    return nullptr;
  }
  const int errFd = ::open(stderrPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  std::unique_ptr<MockServer> server(new MockServer());
  server->stderrPath_ = stderrPath;
  server->pid_ = spawnProcess({program.string(), "--guest", guestFile.string(), "--quiet"}, {}, pipeFds[1], errFd);
  ::close(pipeFds[1]);
  if (errFd >= 0) ::close(errFd);
  server->stdoutFd_ = pipeFds[0];
  if (server->pid_ < 0) {
    problem = "cannot start " + program.string();
    return nullptr;
  }
  const auto line = readLine(server->stdoutFd_, Clock::now() + std::chrono::seconds(30));
  static const std::regex announced(R"(listening on (http://127\.0\.0\.1:([0-9]+)))");
  std::smatch match;
  if (!line || !std::regex_match(*line, match, announced)) {
    problem = "the mock commerce server did not announce a loopback address" +
              (line ? ": \"" + *line + "\"" : std::string()) + "; " + readWholeFile(stderrPath);
    server->stop();
    return nullptr;
  }
  server->url_ = match[1];
  server->admin_ = std::make_unique<httplib::Client>("127.0.0.1", std::stoi(match[2]));
  server->admin_->set_connection_timeout(std::chrono::seconds(5));
  server->admin_->set_read_timeout(std::chrono::seconds(10));
  server->admin_->set_write_timeout(std::chrono::seconds(5));
  return server;
}

MockServer::~MockServer() { stop(); }

bool MockServer::addFault(const std::string& endpoint, const std::string& fault) {
  const auto body = nlohmann::json{{"endpoint", endpoint}, {"fault", fault}}.dump();
  const auto answer = admin_->Post("/__admin/faults", body, "application/json");
  return answer && answer->status / 100 == 2;
}

bool MockServer::clearFaults() {
  const auto answer = admin_->Delete("/__admin/faults");
  return answer && answer->status / 100 == 2;
}

std::optional<std::map<std::string, int>> MockServer::charges() {
  const auto answer = admin_->Get("/__admin/charges");
  if (!answer || answer->status != 200) return std::nullopt;
  const JsonParse parsed = parseJson(answer->body);
  if (!parsed || !parsed.value->is_object()) return std::nullopt;
  const Json& json = *parsed.value;
  std::map<std::string, int> charges;
  for (const auto& [order, count] : json.items()) {
    if (!count.is_number_integer()) return std::nullopt;
    charges[order] = count.get<int>();
  }
  return charges;
}

bool MockServer::alive() {
  if (pid_ < 0 || reaped_) return false;
  if (::waitpid(pid_, &waitStatus_, WNOHANG) == pid_) reaped_ = true;
  return !reaped_;
}

std::string MockServer::stop() {
  if (pid_ < 0) return {};
  bool crashedBefore = !alive();
  if (!reaped_) {
    ::kill(pid_, SIGTERM);
    const auto until = Clock::now() + std::chrono::seconds(10);
    while (!reaped_ && Clock::now() < until) {
      if (::waitpid(pid_, &waitStatus_, WNOHANG) == pid_) reaped_ = true;
      else std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    if (!reaped_) {
      ::kill(pid_, SIGKILL);
      ::waitpid(pid_, &waitStatus_, 0);
      reaped_ = true;
      crashedBefore = true;  // a server that ignores SIGTERM hangs
    }
  }
  pid_ = -1;
  if (stdoutFd_ >= 0) ::close(stdoutFd_);
  stdoutFd_ = -1;
  std::string crash;
  const std::string report = sanitizerReport(readWholeFile(stderrPath_));
  if (!report.empty()) crash = report;
  else if (WIFSIGNALED(waitStatus_) && WTERMSIG(waitStatus_) != SIGTERM) crash = "killed by signal " + std::to_string(WTERMSIG(waitStatus_));
  else if (WIFEXITED(waitStatus_) && WEXITSTATUS(waitStatus_) != 0) crash = "exit status " + std::to_string(WEXITSTATUS(waitStatus_));
  else if (crashedBefore) crash = "ended before it was stopped";
  return crash;
}

}  // namespace varnel::chaos
