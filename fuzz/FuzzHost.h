#pragma once
// What every harness needs: a host installed once (a print sink that drops
// each line, so the log paths run, and a signed-in guest whose account
// identifier the seed answers use, so the signed-in comparison runs both
// ways), the input as JSON, and the record printed as the CLI prints it.

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
  void debugPrint(std::string_view, const LogSite&) override {}
  void errorPrint(std::string_view, const LogSite&) override {}
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

/// The input as JSON, read as every answer is (parseJson, within the JSON
/// limits), or null when it is not (the parsers get it anyway: they must take
/// any value). Installs the host first.
inline Json answerFrom(const std::uint8_t* data, std::size_t size) {
  installHostOnce();
  return parseJson(std::string_view(reinterpret_cast<const char*>(data), size)).value.value_or(Json());
}

/// Serialises a record as the CLI does, so its text must stay printable.
inline std::size_t printedSize(const Json& record) {
  return record.dump(-1, ' ', false, Json::error_handler_t::replace).size();
}

/// A harness's end: the record's description and its printed form.
inline int described(std::string_view /*description*/, const Json& record) {
  (void)printedSize(record);
  return 0;
}

}  // namespace varnel::fuzz
