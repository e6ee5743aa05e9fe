#pragma once
// Child processes of the soak: started with fork and exec, their output
// captured in files, waited for with a waitpid poll loop so that a hard
// timeout and a SIGKILL at a chosen instant can be applied.

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace varnel::chaos {

/// Starts `argv` with `environment` added to this process's environment,
/// stdin from /dev/null and stdout/stderr into the given descriptors (-1:
/// /dev/null). Answers the process ID, or -1 when fork failed.
pid_t spawnProcess(const std::vector<std::string>& argv, const std::vector<std::string>& environment, int stdoutFd,
                   int stderrFd);

struct ChildRun {
  enum class End {
    /// Exited by itself; `status` is its exit status.
    exited,
    /// Ended by a signal this program did not send (`signal`).
    signaled,
    /// Killed with SIGKILL at the instant asked for.
    killed,
    /// Still running at the timeout, then killed: a hang.
    timedOut,
  };
  End end = End::exited;
  int status = 0;
  int signal = 0;
  std::string out;
  std::string err;
  std::chrono::milliseconds elapsed{0};
};

struct ChildLimits {
  std::chrono::milliseconds timeout{30'000};
  /// SIGKILL the child this long after its start, if it still runs.
  std::optional<std::chrono::milliseconds> killAfter;
};

/// Runs `argv` to its end under `limits`; its output goes through files in
/// `scratch`. A child that cannot be started ends as exited with status 127.
ChildRun runChild(const std::vector<std::string>& argv, const std::vector<std::string>& environment,
                  const ChildLimits& limits, const std::filesystem::path& scratch);

/// The first sanitizer report line in `text` (AddressSanitizer, LeakSanitizer,
/// UndefinedBehaviorSanitizer), empty when none.
std::string sanitizerReport(const std::string& text);

/// Reads a whole file; empty when it cannot be read.
std::string readWholeFile(const std::filesystem::path& path);

}  // namespace varnel::chaos
