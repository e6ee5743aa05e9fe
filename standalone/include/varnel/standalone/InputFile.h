#pragma once
// Input files of the tools (guest data files, remote configurations, captured
// answers and error bodies, string tables): the one way they are read.
//
// A file is read only when it is a regular file, and only up to
// kInputFileMaxBytes (16 MiB, far above any real one). A device (/dev/zero),
// a FIFO without a writer, a socket, a directory or a larger file is refused
// at once, without reading from it: the file is opened without blocking and
// looked at before a byte is read. Standard input, for commands that take
// "-", is read up to the same limit.

#include <cstddef>
#include <filesystem>
#include <string>

#include "varnel/platform/Result.h"

namespace varnel::standalone {

/// The largest input file the tools read.
inline constexpr std::size_t kInputFileMaxBytes = std::size_t{16} << 20;

/// Domain of the errors of reading an input file. Their user information
/// holds "path", "reason" ("not a regular file", "larger than 16 MiB", the
/// system's reason) and "message" ("cannot read PATH: REASON"), which is also
/// the localized description.
inline constexpr const char* kInputFileErrorDomain = "Varnel.InputFile";

enum class InputFileErrorCode : long {
  /// Missing, not readable, or failed while reading.
  unreadable = 1,
  /// A directory, device, FIFO or socket.
  notRegular = 2,
  /// Larger than the limit.
  tooLarge = 3,
};

/// The whole content of the regular file at `path`.
Result<std::string> readInputFile(const std::filesystem::path& path, std::size_t maxBytes = kInputFileMaxBytes);

/// Everything on standard input up to its end; named "standard input" in errors.
Result<std::string> readStandardInput(std::size_t maxBytes = kInputFileMaxBytes);

}  // namespace varnel::standalone
