#include "ChildProcess.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <thread>

namespace varnel::chaos {
namespace {

using Clock = std::chrono::steady_clock;

void redirect(int fd, int target, int flags) {
  if (fd < 0) {
    fd = ::open("/dev/null", flags);
    if (fd < 0) return;
  }
  if (fd != target) ::dup2(fd, target);
}

std::chrono::milliseconds since(Clock::time_point start) {
  return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start);
}

}  // namespace

pid_t spawnProcess(const std::vector<std::string>& argv, const std::vector<std::string>& environment, int stdoutFd,
                   int stderrFd) {
  // Everything exec needs is prepared before fork: the child only calls
  // async-signal-safe functions.
  std::vector<char*> arguments;
  for (const auto& argument : argv) arguments.push_back(const_cast<char*>(argument.c_str()));
  arguments.push_back(nullptr);
  std::vector<std::string> names;
  std::vector<std::string> entries(environment);
  for (const auto& entry : environment) names.push_back(entry.substr(0, entry.find('=') + 1));
  for (char** variable = ::environ; *variable != nullptr; ++variable) {
    const std::string entry(*variable);
    bool replaced = false;
    for (const auto& name : names) replaced = replaced || entry.starts_with(name);
    if (!replaced) entries.push_back(entry);
  }
  std::vector<char*> envp;
  for (auto& entry : entries) envp.push_back(entry.data());
  envp.push_back(nullptr);

  const pid_t pid = ::fork();
  if (pid != 0) return pid;
  // Children do not outlive the soak.
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  redirect(-1, STDIN_FILENO, O_RDONLY);
  redirect(stdoutFd, STDOUT_FILENO, O_WRONLY);
  redirect(stderrFd, STDERR_FILENO, O_WRONLY);
  ::execve(arguments[0], arguments.data(), envp.data());
  ::_exit(127);
}

ChildRun runChild(const std::vector<std::string>& argv, const std::vector<std::string>& environment,
                  const ChildLimits& limits, const std::filesystem::path& scratch) {
  const auto outPath = scratch / "child.out";
  const auto errPath = scratch / "child.err";
  const int outFd = ::open(outPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  const int errFd = ::open(errPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  ChildRun run;
  const auto start = Clock::now();
  const pid_t pid = (outFd >= 0 && errFd >= 0) ? spawnProcess(argv, environment, outFd, errFd) : -1;
  if (outFd >= 0) ::close(outFd);
  if (errFd >= 0) ::close(errFd);
  if (pid < 0) {
    run.status = 127;
    run.err = "cannot start " + argv.front();
    return run;
  }

  int wstatus = 0;
  bool sentKill = false;
  while (true) {
    const pid_t done = ::waitpid(pid, &wstatus, sentKill ? 0 : WNOHANG);
    if (done == pid) break;
    if (done < 0 && errno != EINTR) break;
    const auto elapsed = since(start);
    if (!sentKill && limits.killAfter && elapsed >= *limits.killAfter) {
      ::kill(pid, SIGKILL);
      sentKill = true;
      run.end = ChildRun::End::killed;
    } else if (!sentKill && elapsed >= limits.timeout) {
      ::kill(pid, SIGKILL);
      sentKill = true;
      run.end = ChildRun::End::timedOut;
    } else if (!sentKill) {
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
  }
  run.elapsed = since(start);
  if (WIFEXITED(wstatus)) {
    // A child that exited before the kill landed ended by itself.
    run.end = ChildRun::End::exited;
    run.status = WEXITSTATUS(wstatus);
  } else if (WIFSIGNALED(wstatus)) {
    run.signal = WTERMSIG(wstatus);
    if (!sentKill || run.signal != SIGKILL) run.end = ChildRun::End::signaled;
  }
  run.out = readWholeFile(outPath);
  run.err = readWholeFile(errPath);
  return run;
}

std::string sanitizerReport(const std::string& text) {
  for (const char* marker : {"ERROR: AddressSanitizer", "ERROR: LeakSanitizer", "runtime error:",
                             "UndefinedBehaviorSanitizer", "ThreadSanitizer"}) {
    const auto at = text.find(marker);
    if (at == std::string::npos) continue;
    const auto lineStart = text.rfind('\n', at);
    const auto begin = lineStart == std::string::npos ? 0 : lineStart + 1;
    return text.substr(begin, text.find('\n', at) - begin);
  }
  return {};
}

std::string readWholeFile(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

}  // namespace varnel::chaos
