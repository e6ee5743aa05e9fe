#pragma once
// Test helpers: switch the device's time zone as a user would (TZ, picked up
// again by ICU), and build instants from wall times.

#include <chrono>
#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>

#include <unicode/timezone.h>

#include "varnel/platform/Date.h"

namespace varnel::testing {

/// Sets TZ to `zone` for the lifetime of the object, then restores it.
class DeviceTimeZone {
 public:
  explicit DeviceTimeZone(const char* zone) {
    if (const char* previous = std::getenv("TZ")) previous_ = previous;
    apply(zone);
  }
  ~DeviceTimeZone() { apply(previous_ ? previous_->c_str() : nullptr); }
  DeviceTimeZone(const DeviceTimeZone&) = delete;
  DeviceTimeZone& operator=(const DeviceTimeZone&) = delete;

 private:
  static void apply(const char* zone) {
    zone ? setenv("TZ", zone, 1) : unsetenv("TZ");
    tzset();
    icu::TimeZone::adoptDefault(icu::TimeZone::detectHostTimeZone());
  }
  std::optional<std::string> previous_;
};

/// The instant of a wall time at a fixed offset (hours east of UTC).
inline Date wallTime(int year, unsigned month, unsigned day, int hour, int minute, double second,
                     int utcOffsetHours = 0) {
  using namespace std::chrono;
  const sys_days civil{std::chrono::year{year} / std::chrono::month{month} / std::chrono::day{day}};
  return Date::fromTimeIntervalSince1970(static_cast<double>(civil.time_since_epoch().count()) * 86400.0 +
                                         (hour - utcOffsetHours) * 3600.0 + minute * 60.0 + second);
}

}  // namespace varnel::testing
