#include "SystemDateFormatter.h"

#include "DateFieldNumberFormat.h"

#include <functional>
#include <map>
#include <memory>
#include <string>

#include <unicode/locid.h>
#include <unicode/unistr.h>

namespace varnel::dates {
namespace {

// Strict parsing, as the platform's formatters parse by default: the text
// must follow the pattern, and field values must exist in the calendar.
std::unique_ptr<SystemDateFormatter> makeFormatter(std::string_view format) {
  UErrorCode status = U_ZERO_ERROR;
  const auto pattern = icu::UnicodeString::fromUTF8(
      icu::StringPiece(format.data(), static_cast<int32_t>(format.size())));
  auto formatter =
      std::make_unique<icu::SimpleDateFormat>(pattern, icu::Locale("en_US_POSIX"), status);
  if (U_FAILURE(status)) return nullptr;
  formatter->setLenient(false);
  formatter->adoptNumberFormat(new DateFieldNumberFormat());
  std::unique_ptr<icu::Calendar> calendar(formatter->getCalendar()->clone());
  if (!calendar) return nullptr;
  return std::make_unique<SystemDateFormatter>(SystemDateFormatter{std::move(formatter), std::move(calendar)});
}

}  // namespace

SystemDateFormatter* systemFormatterWithFormat(std::string_view format) {
  // A rejected pattern is remembered as none, so it is not rebuilt each time.
  thread_local std::map<std::string, std::unique_ptr<SystemDateFormatter>, std::less<>> cache;
  auto found = cache.find(format);
  if (found == cache.end()) {
    found = cache.emplace(std::string(format), makeFormatter(format)).first;
  }
  return found->second.get();
}

}  // namespace varnel::dates
