#pragma once
// The shared date formatters: one per format string, fixed to en_US_POSIX.
// ICU formatters must not be used by two threads at once, so each thread
// keeps its own formatter per format, built on its first use and reused.

#include <string_view>

#include <unicode/smpdtfmt.h>

namespace varnel::dates {

/// The calling thread's formatter for `format`, or none when ICU rejects the
/// pattern. The formatter lives as long as the thread; callers may change its
/// time zone, and the change stays for later calls on the same thread.
icu::SimpleDateFormat* systemFormatterWithFormat(std::string_view format);

}  // namespace varnel::dates
