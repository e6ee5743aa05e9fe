#include "varnel/host/KTVCPrintUtility.h"

#include "varnel/host/Registry.h"

namespace varnel {

LogSite LogSite::current(std::source_location location) {
  std::string_view file = location.file_name();
  if (auto src = file.rfind("/src/"); src != std::string_view::npos) {
    file.remove_prefix(src + 5);
  } else if (auto slash = file.rfind('/'); slash != std::string_view::npos) {
    file.remove_prefix(slash + 1);
  }
  if (auto dot = file.rfind('.'); dot != std::string_view::npos) file = file.substr(0, dot);
  return LogSite{std::string(file), location.function_name(), static_cast<int>(location.line())};
}

bool KTVCPrintUtility::isEnabled() { return host::Registry::get<KTVCPrintSink>() != nullptr; }

void KTVCPrintUtility::debugPrint(std::string_view message, const LogSite& site) {
  if (auto sink = host::Registry::get<KTVCPrintSink>()) sink->debugPrint(message, site);
}

void KTVCPrintUtility::errorPrint(std::string_view message, const LogSite& site) {
  if (auto sink = host::Registry::get<KTVCPrintSink>()) sink->errorPrint(message, site);
}

}  // namespace varnel
