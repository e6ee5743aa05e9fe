#include "varnel/settings/VNLUserDefaultSetting.h"

#include <cmath>
#include <optional>

namespace varnel {
namespace {

/// An integer and a floating-point number are equal when the latter is
/// exactly that whole number.
bool sameNumber(std::int64_t integer, double floating) {
  constexpr double kTwoToThe63 = 9223372036854775808.0;
  if (!std::isfinite(floating) || std::trunc(floating) != floating) return false;
  if (floating < -kTwoToThe63 || floating >= kTwoToThe63) return false;
  return static_cast<std::int64_t>(floating) == integer;
}

/// Whether two numbers are equal; none when either value is not a number.
std::optional<bool> numbersEqual(const DefaultsValue& lhs, const DefaultsValue& rhs) {
  const auto* leftInteger = lhs.get<std::int64_t>();
  const auto* rightInteger = rhs.get<std::int64_t>();
  const auto* leftFloating = lhs.get<double>();
  const auto* rightFloating = rhs.get<double>();
  if (leftInteger && rightInteger) return *leftInteger == *rightInteger;
  if (leftFloating && rightFloating) return *leftFloating == *rightFloating;
  if (leftInteger && rightFloating) return sameNumber(*leftInteger, *rightFloating);
  if (leftFloating && rightInteger) return sameNumber(*rightInteger, *leftFloating);
  return std::nullopt;
}

}  // namespace

bool userDefaultValuesEqual(const DefaultsValue& lhs, const DefaultsValue& rhs) {
  if (const auto equalNumbers = numbersEqual(lhs, rhs)) return *equalNumbers;
  if (lhs.storage.index() != rhs.storage.index()) return false;

  if (const auto* left = lhs.get<DefaultsArray>()) {
    const auto& right = *rhs.get<DefaultsArray>();
    if (left->size() != right.size()) return false;
    for (std::size_t i = 0; i < left->size(); ++i) {
      if (!userDefaultValuesEqual((*left)[i], right[i])) return false;
    }
    return true;
  }
  if (const auto* left = lhs.get<DefaultsDictionary>()) {
    const auto& right = *rhs.get<DefaultsDictionary>();
    if (left->size() != right.size()) return false;
    for (const auto& [key, element] : *left) {
      const auto other = right.find(key);
      if (other == right.end() || !userDefaultValuesEqual(element, other->second)) return false;
    }
    return true;
  }
  // Absent (null), booleans, strings, dates and data: same kind, same contents.
  return lhs == rhs;
}

}  // namespace varnel
