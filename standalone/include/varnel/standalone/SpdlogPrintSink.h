#pragma once
// Diagnostics to the terminal (stderr) through spdlog: level, place, message.

#include <memory>

#include "varnel/host/KTVCPrintUtility.h"

namespace spdlog {
class logger;
}

namespace varnel::standalone {

class SpdlogPrintSink final : public KTVCPrintSink {
 public:
  /// `verbose` shows debug lines too; errors are always shown.
  explicit SpdlogPrintSink(bool verbose);
  void debugPrint(std::string_view message, const LogSite& site) override;
  void errorPrint(std::string_view message, const LogSite& site) override;

 private:
  std::shared_ptr<spdlog::logger> logger_;
};

}  // namespace varnel::standalone
