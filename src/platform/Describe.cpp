#include "varnel/platform/Describe.h"

#include <charconv>
#include <cmath>
#include <ctime>

#include <fmt/format.h>

namespace varnel {
namespace {

// Whole values print with ".0"; very large or very small ones in exponent form,
// as the platform does past the point where the type stops holding every integer.
template <typename Float>
std::string describeFloat(Float value, Float exponentFrom) {
  if (std::isnan(value)) return "nan";
  if (std::isinf(value)) return value < 0 ? "-inf" : "inf";
  const Float magnitude = std::fabs(value);
  const bool scientific = magnitude != 0 && (magnitude >= exponentFrom || magnitude < Float(1e-4));
  char buffer[64];
  const auto format = scientific ? std::chars_format::scientific : std::chars_format::fixed;
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, value, format);
  std::string text(buffer, result.ptr);
  if (!scientific && text.find('.') == std::string::npos) text += ".0";
  return text;
}

}  // namespace

std::string describe(std::string_view text) { return std::string(text); }

std::string describe(bool value) { return value ? "true" : "false"; }

std::string describe(float value) { return describeFloat(value, 16777216.0f); }

std::string describe(double value) { return describeFloat(value, 9007199254740992.0); }

std::string describe(const Date& date) {
  const double seconds = std::floor(date.timeIntervalSince1970);
  if (!std::isfinite(seconds) || std::fabs(seconds) > 1e15) return describe(date.timeIntervalSince1970);
  const std::time_t time = static_cast<std::time_t>(seconds);
  std::tm parts{};
  gmtime_r(&time, &parts);
  return fmt::format("{:04}-{:02}-{:02} {:02}:{:02}:{:02} +0000", parts.tm_year + 1900,
                     parts.tm_mon + 1, parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec);
}

std::string quotedDescription(std::string_view text) {
  std::string result = "\"";
  for (char c : text) {
    switch (c) {
      case '"': result += "\\\""; break;
      case '\\': result += "\\\\"; break;
      case '\n': result += "\\n"; break;
      case '\r': result += "\\r"; break;
      case '\t': result += "\\t"; break;
      default: result += c;
    }
  }
  return result + "\"";
}

}  // namespace varnel
