#include "varnel/standalone/InputFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <optional>

namespace varnel::standalone {
namespace {

Error inputError(InputFileErrorCode code, const std::string& name, const std::string& reason) {
  const std::string message = "cannot read " + name + ": " + reason;
  return Error{kInputFileErrorDomain, static_cast<long>(code),
               Json{{"path", name},
                    {"reason", reason},
                    {"message", message},
                    {kErrorLocalizedDescriptionKey, message}}};
}

std::string sizeText(std::size_t bytes) {
  return bytes % (std::size_t{1} << 20) == 0 ? std::to_string(bytes >> 20) + " MiB" : std::to_string(bytes) + " bytes";
}

/// Reads `fd` to its end, refusing more than `maxBytes`.
Result<std::string> readAll(int fd, const std::string& name, std::size_t maxBytes) {
  std::string content;
  char buffer[65536];
  for (;;) {
    const ssize_t count = ::read(fd, buffer, sizeof buffer);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return inputError(InputFileErrorCode::unreadable, name, std::strerror(errno));
    if (count == 0) return content;
    if (content.size() + static_cast<std::size_t>(count) > maxBytes) {
      return inputError(InputFileErrorCode::tooLarge, name, "larger than " + sizeText(maxBytes));
    }
    content.append(buffer, static_cast<std::size_t>(count));
  }
}

/// The refusal of a file that fstat describes as `status`, if any.
std::optional<Error> refusal(const struct stat& status, const std::string& name, std::size_t maxBytes) {
  if (S_ISDIR(status.st_mode)) return inputError(InputFileErrorCode::notRegular, name, "a directory");
  if (!S_ISREG(status.st_mode)) {
    return inputError(InputFileErrorCode::notRegular, name, "not a regular file (a device, a FIFO or a socket)");
  }
  if (static_cast<std::uintmax_t>(status.st_size) > maxBytes) {
    return inputError(InputFileErrorCode::tooLarge, name, "larger than " + sizeText(maxBytes));
  }
  return std::nullopt;
}

}  // namespace

Result<std::string> readInputFile(const std::filesystem::path& path, std::size_t maxBytes) {
  const std::string name = path.string();
  if (name.empty()) return inputError(InputFileErrorCode::unreadable, "\"\"", "no file named");
  // Without O_NONBLOCK, opening a FIFO waits for a writer.
  const int fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
  if (fd < 0) return inputError(InputFileErrorCode::unreadable, name, std::strerror(errno));
  struct stat status {};
  Result<std::string> content = inputError(InputFileErrorCode::unreadable, name, "cannot look at the file");
  if (::fstat(fd, &status) == 0) {
    if (auto refused = refusal(status, name, maxBytes)) {
      content = *refused;
    } else {
      content = readAll(fd, name, maxBytes);
    }
  }
  ::close(fd);
  return content;
}

Result<std::string> readStandardInput(std::size_t maxBytes) {
  const std::string name = "standard input";
  struct stat status {};
  // A regular file redirected to standard input is judged by its size at once;
  // a pipe or a terminal is read until its end or the limit.
  if (::fstat(STDIN_FILENO, &status) == 0 && S_ISREG(status.st_mode) &&
      static_cast<std::uintmax_t>(status.st_size) > maxBytes) {
    return inputError(InputFileErrorCode::tooLarge, name, "larger than " + sizeText(maxBytes));
  }
  return readAll(STDIN_FILENO, name, maxBytes);
}

}  // namespace varnel::standalone
