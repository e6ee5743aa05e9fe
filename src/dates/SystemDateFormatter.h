#pragma once
// The shared date formatters: one per format string, fixed to en_US_POSIX.
// ICU formatters must not be used by two threads at once, so each thread
// keeps its own formatter per format, built on its first use and reused.

#include <memory>
#include <string_view>

#include <unicode/calendar.h>
#include <unicode/smpdtfmt.h>

namespace varnel::dates {

struct SystemDateFormatter {
  std::unique_ptr<icu::SimpleDateFormat> formatter;
  /// The calendar that parses fill, reused instead of a fresh copy per parse.
  std::unique_ptr<icu::Calendar> parseCalendar;
};

/// The calling thread's formatter for `format`, or none when ICU rejects the
/// pattern. It lives as long as the thread; callers may change its time
/// zone, and the change stays for later calls on the same thread.
SystemDateFormatter* systemFormatterWithFormat(std::string_view format);

}  // namespace varnel::dates
