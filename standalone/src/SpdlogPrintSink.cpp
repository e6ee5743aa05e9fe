#include "varnel/standalone/SpdlogPrintSink.h"

#include <spdlog/sinks/stdout_color_sinks.h>
#include <spdlog/spdlog.h>

namespace varnel::standalone {

SpdlogPrintSink::SpdlogPrintSink(bool verbose)
    : logger_(std::make_shared<spdlog::logger>("varnel", std::make_shared<spdlog::sinks::stderr_color_sink_mt>())) {
  logger_->set_pattern("%^[%l]%$ %v");
  logger_->set_level(verbose ? spdlog::level::debug : spdlog::level::err);
}

void SpdlogPrintSink::debugPrint(std::string_view message, const LogSite& site) {
  logger_->debug("{} ({}:{} {})", message, site.file, site.line, site.function);
}

void SpdlogPrintSink::errorPrint(std::string_view message, const LogSite& site) {
  logger_->error("{} ({}:{} {})", message, site.file, site.line, site.function);
}

}  // namespace varnel::standalone
