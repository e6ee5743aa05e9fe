#include "varnel/platform/UserDefaults.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <limits>

#include "varnel/platform/Describe.h"

namespace varnel {

bool UserDefaults::boolForKey(std::string_view key) const {
  const auto value = objectForKey(key);
  if (!value) return false;
  if (auto b = value->get<bool>()) return *b;
  if (auto i = value->get<std::int64_t>()) return *i != 0;
  if (auto d = value->get<double>()) return *d != 0.0;
  if (auto s = value->get<std::string>()) {
    std::string lower(*s);
    std::transform(lower.begin(), lower.end(), lower.begin(), [](unsigned char c) { return std::tolower(c); });
    return lower == "yes" || lower == "true" || lower == "1";
  }
  return false;
}

std::int64_t UserDefaults::integerForKey(std::string_view key) const {
  const auto value = objectForKey(key);
  if (!value) return 0;
  if (auto b = value->get<bool>()) return *b ? 1 : 0;
  if (auto i = value->get<std::int64_t>()) return *i;
  if (auto d = value->get<double>()) {
    // Saturated at the ends of the range; not a number reads as 0.
    constexpr double kLimit = 9223372036854775808.0;  // 2^63
    if (std::isnan(*d)) return 0;
    if (*d >= kLimit) return std::numeric_limits<std::int64_t>::max();
    if (*d < -kLimit) return std::numeric_limits<std::int64_t>::min();
    return static_cast<std::int64_t>(*d);
  }
  if (auto s = value->get<std::string>()) {
    try {
      return std::stoll(*s);
    } catch (const std::exception&) {
      return 0;
    }
  }
  return 0;
}

double UserDefaults::doubleForKey(std::string_view key) const {
  const auto value = objectForKey(key);
  if (!value) return 0.0;
  if (auto b = value->get<bool>()) return *b ? 1.0 : 0.0;
  if (auto i = value->get<std::int64_t>()) return static_cast<double>(*i);
  if (auto d = value->get<double>()) return *d;
  if (auto s = value->get<std::string>()) {
    try {
      return std::stod(*s);
    } catch (const std::exception&) {
      return 0.0;
    }
  }
  return 0.0;
}

std::optional<std::string> UserDefaults::stringForKey(std::string_view key) const {
  const auto value = objectForKey(key);
  if (!value) return std::nullopt;
  if (auto s = value->get<std::string>()) return *s;
  if (auto i = value->get<std::int64_t>()) return std::to_string(*i);
  if (auto d = value->get<double>()) return describe(*d);
  return std::nullopt;
}

}  // namespace varnel
