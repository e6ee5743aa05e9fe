// The shared formatters read numeric fields with their own number format;
// whatever ICU's stock formatter accepts or refuses, they must too.

#include <memory>
#include <string>

#include <gtest/gtest.h>
#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>

#include "varnel/dates/VNLDateUtility.h"

namespace varnel {
namespace {

Date stockIcuParse(const std::string& text, std::string_view format) {
  UErrorCode status = U_ZERO_ERROR;
  icu::SimpleDateFormat formatter(icu::UnicodeString::fromUTF8(std::string(format)), icu::Locale("en_US_POSIX"),
                                  status);
  EXPECT_TRUE(U_SUCCESS(status));
  formatter.setLenient(false);
  formatter.adoptTimeZone(icu::TimeZone::createDefault());
  const auto unicodeText = icu::UnicodeString::fromUTF8(text);
  icu::ParsePosition position(0);
  const UDate millis = formatter.parse(unicodeText, position);
  if (position.getErrorIndex() >= 0 || position.getIndex() != unicodeText.length()) {
    return VNLDateUtility::defaultDate();
  }
  return Date{millis / 1000.0};
}

TEST(DateFieldParsing, AgreesWithTheStockFormatterOnOddInput) {
  const std::string longTexts[] = {
      "2024-03-10T14:35:20.250-0400", "2024-03-10T14:35:20.250Z",  "2024-3-1T4:5:6.7+0000",
      "2024-03-10T14:35:20.25-0400",  "2024-03-10T14:35:20.2500-0400", "02024-03-10T14:35:20.250-0400",
      "2024-13-10T14:35:20.250-0400", "2024-02-30T14:35:20.250-0400",  "-2024-03-10T14:35:20.250-0400",
      "2024-03-10T14:35:20.250",      "2024-03-+1T14:35:20.250-0400",  "\xd9\xa2\xd9\xa0\xd9\xa2\xd9\xa4-03-10T14:35:20.250-0400",
      "9999999999-03-10T14:35:20.250-0400", "", "2024"};
  for (const auto& text : longTexts) {
    EXPECT_EQ(VNLDateUtility::date(text), stockIcuParse(text, VNLEntitlementDateFormatterFormatString)) << text;
  }
  const std::string shortTexts[] = {"2024-03-10T14:35:20Z", "2024-03-10T14:35:20+0000", "2024-03-10T24:00:00Z",
                                    "2024-03-10T14:35:60Z", "2024-03-10 14:35:20Z"};
  for (const auto& text : shortTexts) {
    EXPECT_EQ(VNLDateUtility::shortDate(text), stockIcuParse(text, VNLEntitlementDateFormatterFormatStringShort))
        << text;
  }
}

TEST(DateFieldParsing, FormatsFieldsZeroPadded) {
  const Date date = VNLDateUtility::date("2024-01-02T03:04:05.006+0000");
  const std::string text = VNLDateUtility::dateString(date, "yyyy-MM-dd'T'HH:mm:ss.SSS'Z'");
  const Date back = VNLDateUtility::date(text, "yyyy-MM-dd'T'HH:mm:ss.SSS'Z'");
  EXPECT_EQ(back, date);
  EXPECT_EQ(VNLDateUtility::dateString(VNLDateUtility::date("0007-01-02T03:04:05.006+0000"), "yyyy").size(), 4u);
}

}  // namespace
}  // namespace varnel
