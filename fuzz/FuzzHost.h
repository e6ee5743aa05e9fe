#pragma once
// What every harness installs once: a print sink that formats and drops each
// line (so the log paths run), and a signed-in guest whose account identifier
// the seed answers use, so that the signed-in comparison runs both ways.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "varnel/host/KTVCPrintUtility.h"
#include "varnel/host/Registry.h"
#include "varnel/platform/Json.h"
#include "varnel/standalone/StaticAuthenticationService.h"

namespace varnel::fuzz {

class DroppingPrintSink final : public KTVCPrintSink {
 public:
  void debugPrint(std::string_view message, const LogSite& site) override { consume(message, site); }
  void errorPrint(std::string_view message, const LogSite& site) override { consume(message, site); }

 private:
  void consume(std::string_view message, const LogSite& site) {
    length_ += message.size() + site.file.size() + site.function.size();
  }
  std::size_t length_ = 0;
};

inline void installHostOnce() {
  static const bool installed = [] {
    host::Registry::set<KTVCPrintSink>(std::make_shared<DroppingPrintSink>());
    host::Registry::set<KTVRAuthenticationService>(
        std::make_shared<standalone::StaticAuthenticationService>("{A1B2C3D4-0001}"));
    return true;
  }();
  (void)installed;
}

/// The input as JSON, or null when it is not JSON (the parsers get it anyway:
/// they must take any value).
inline Json answerFrom(const std::uint8_t* data, std::size_t size) {
  Json answer = Json::parse(data, data + size, nullptr, false);
  return answer.is_discarded() ? Json() : answer;
}

/// Serialises a record as the CLI does, so its text must stay printable.
inline std::size_t printedSize(const Json& record) {
  return record.dump(-1, ' ', false, Json::error_handler_t::replace).size();
}

}  // namespace varnel::fuzz
