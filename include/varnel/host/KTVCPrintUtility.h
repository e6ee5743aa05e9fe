#pragma once
// Diagnostics through the host context library's printer. Messages are
// written verbatim with the place they come from; nothing here reaches a guest.

#include <source_location>
#include <string>
#include <string_view>

namespace varnel {

/// Where a log line comes from: source file (the module path, no extension),
/// function name and line.
struct LogSite {
  std::string file;
  std::string function;
  int line = 0;

  /// The caller's own location, with the file reduced to its module path
  /// ("src/errors/ApError.cpp" becomes "errors/ApError").
  static LogSite current(std::source_location location = std::source_location::current());
};

/// The host's printer behind KTVCPrintUtility.
class KTVCPrintSink {
 public:
  virtual ~KTVCPrintSink() = default;
  virtual void debugPrint(std::string_view message, const LogSite& site) = 0;
  virtual void errorPrint(std::string_view message, const LogSite& site) = 0;
};

/// Static front of the printer registered with the host registry; without
/// one, lines are dropped.
struct KTVCPrintUtility {
  /// Whether a printer is registered: a caller may skip building a message
  /// that would be dropped.
  static bool isEnabled();
  static void debugPrint(std::string_view message, const LogSite& site = LogSite::current());
  static void errorPrint(std::string_view message, const LogSite& site = LogSite::current());
};

}  // namespace varnel
