#include "commands/ErrorReport.h"

#include <fmt/format.h>

#include <charconv>
#include <iostream>

#include "Command.h"
#include "OptionChecks.h"
#include "varnel/errors/APErrorMessage.h"
#include "varnel/errors/VNLPhoneUtility.h"

namespace varnel::cli {
namespace {

OrderedJson optionalJson(const std::optional<std::string>& value) {
  return value ? OrderedJson(*value) : OrderedJson();
}

std::string textOr(const OrderedJson& value, std::string_view absent) {
  return value.is_string() ? value.get<std::string>() : std::string(absent);
}

/// "label:" and the value aligned after it; an empty value leaves the label
/// alone.
std::string line(std::string_view label, std::string_view value) {
  return value.empty() ? fmt::format("{}\n", label) : fmt::format("{:<11}{}\n", label, value);
}

}  // namespace

KTVCResortChoice parsePark(const std::string& text) {
  KTVCResortChoice park = 0;
  const char* end = text.data() + text.size();
  const auto [stop, status] = std::from_chars(text.data(), end, park);
  if (text.empty() || status != std::errc() || stop != end) {
    throw UsageError("--park must be an integer resort value (1 west, 2 east), not " + echoed(text));
  }
  return park;
}

std::string_view kindName(APError error) {
  if (isConnectionError(error)) return "connection";
  if (isSeviceError(error)) return "service";
  if (isTransactionalError(error)) return "transactional";
  return "validation";
}

OrderedJson describeError(APError error, KTVCResortChoice park) {
  return OrderedJson{{"case", description(error)},
                     {"rawValue", rawValue(error)},
                     {"kind", kindName(error)},
                     {"errorCode", optionalJson(errorCode(error))},
                     {"message", APErrorMessage::message(error, park)},
                     {"phone", optionalJson(VNLPhoneUtility::APPhoneNumber(error, park))}};
}

std::string dumpJson(const OrderedJson& value) { return value.dump(2, ' ', false, Json::error_handler_t::replace); }

void printDescription(const OrderedJson& described) {
  std::cout << line("case:", described["case"].get<std::string>())
            << line("raw value:", std::to_string(described["rawValue"].get<int>()))
            << line("kind:", described["kind"].get<std::string>())
            << line("errorCode:", textOr(described["errorCode"], "(none)"))
            << line("message:", described["message"].get<std::string>())
            << line("phone:", textOr(described["phone"], "(none)"));
}

}  // namespace varnel::cli
