#include "DateFieldNumberFormat.h"

#include <cmath>
#include <cstdint>
#include <limits>

#include <unicode/fmtable.h>
#include <unicode/uchar.h>

namespace varnel::dates {

DateFieldNumberFormat::DateFieldNumberFormat() {
  setParseIntegerOnly(true);
  setGroupingUsed(false);
}

DateFieldNumberFormat* DateFieldNumberFormat::clone() const { return new DateFieldNumberFormat(*this); }

bool DateFieldNumberFormat::operator==(const icu::Format& other) const {
  return typeid(other) == typeid(*this) && icu::NumberFormat::operator==(other);
}

UClassID DateFieldNumberFormat::getDynamicClassID() const {
  static char classId = 0;
  return &classId;
}

icu::UnicodeString& DateFieldNumberFormat::format(double number, icu::UnicodeString& appendTo,
                                                  icu::FieldPosition& pos) const {
  constexpr double limit = 9.2e18;
  const double whole = std::isfinite(number) ? std::trunc(std::fmax(-limit, std::fmin(limit, number))) : 0.0;
  return format(static_cast<int64_t>(whole), appendTo, pos);
}

icu::UnicodeString& DateFieldNumberFormat::format(int32_t number, icu::UnicodeString& appendTo,
                                                  icu::FieldPosition& pos) const {
  return format(static_cast<int64_t>(number), appendTo, pos);
}

icu::UnicodeString& DateFieldNumberFormat::format(int64_t number, icu::UnicodeString& appendTo,
                                                  icu::FieldPosition&) const {
  char digits[24];
  int count = 0;
  std::uint64_t magnitude = number < 0 ? 0 - static_cast<std::uint64_t>(number) : static_cast<std::uint64_t>(number);
  do {
    digits[count++] = static_cast<char>('0' + magnitude % 10);
    magnitude /= 10;
  } while (magnitude != 0);
  if (number < 0) appendTo.append(u'-');
  // Pad to the minimum width; keep at most the maximum width of low-order digits.
  for (int i = count; i < getMinimumIntegerDigits(); ++i) appendTo.append(u'0');
  const int kept = count > getMaximumIntegerDigits() ? getMaximumIntegerDigits() : count;
  for (int i = kept - 1; i >= 0; --i) appendTo.append(static_cast<char16_t>(digits[i]));
  return appendTo;
}

void DateFieldNumberFormat::parse(const icu::UnicodeString& text, icu::Formattable& result,
                                  icu::ParsePosition& position) const {
  const int32_t start = position.getIndex();
  int32_t index = start;
  std::int64_t value = 0;
  while (index < text.length()) {
    const int32_t digit = u_charDigitValue(text.char32At(index));
    if (digit < 0 || value > (std::numeric_limits<std::int64_t>::max() - 9) / 10) break;
    value = value * 10 + digit;
    index = text.moveIndex32(index, 1);
  }
  if (index == start) {
    position.setErrorIndex(start);
    return;
  }
  position.setIndex(index);
  result.setInt64(value);
}

}  // namespace varnel::dates
