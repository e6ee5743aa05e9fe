#pragma once
// Test helpers: switch the device's time zone as a user would (TZ, picked up
// again by ICU), and build instants from wall times.

#include <chrono>
#include <cstdlib>
#include <ctime>
#include <string>

#include <unicode/timezone.h>

#include "varnel/platform/Date.h"

namespace varnel::testing {

/// Sets TZ to `zone` for the lifetime of the object, then restores it.
class DeviceTimeZone {
 public:
  explicit DeviceTimeZone(const char* zone) : previous_(std::getenv("TZ") ? std::getenv("TZ") : "") { apply(zone); }
  ~DeviceTimeZone() { apply(previous_.empty() ? nullptr : previous_.c_str()); }

 private:
  static void apply(const char* zone) {
    zone ? setenv("TZ", zone, 1) : unsetenv("TZ");
    tzset();
    icu::TimeZone::adoptDefault(icu::TimeZone::detectHostTimeZone());
  }
  std::string previous_;
};

/// The instant of a wall time at a fixed offset (hours east of UTC).
inline Date wallTime(int year, unsigned month, unsigned day, int hour, int minute, double second, int utcOffset = 0) {
  const std::chrono::sys_days civil{std::chrono::year{year} / month / day};
  return Date::fromTimeIntervalSince1970(civil.time_since_epoch().count() * 86400.0 + (hour - utcOffset) * 3600.0 +
                                         minute * 60.0 + second);
}

}  // namespace varnel::testing
