#pragma once
// The number format our date formatters read and write their numeric fields
// with: unsigned runs of decimal digits, zero-padded to the field's width.
// ICU's general number format re-creates a number parser for every field of
// every parse; date fields need none of its features (signs, grouping,
// exponents, affixes), and reading them directly makes a parse about three
// times cheaper with the same results.

#include <unicode/numfmt.h>

namespace varnel::dates {

class DateFieldNumberFormat final : public icu::NumberFormat {
 public:
  DateFieldNumberFormat();

  DateFieldNumberFormat* clone() const override;
  bool operator==(const icu::Format& other) const override;
  UClassID getDynamicClassID() const override;

  using icu::NumberFormat::format;
  icu::UnicodeString& format(double number, icu::UnicodeString& appendTo, icu::FieldPosition& pos) const override;
  icu::UnicodeString& format(int32_t number, icu::UnicodeString& appendTo, icu::FieldPosition& pos) const override;
  icu::UnicodeString& format(int64_t number, icu::UnicodeString& appendTo, icu::FieldPosition& pos) const override;

  using icu::NumberFormat::parse;
  /// Reads the longest run of decimal digits (any script) at the position.
  void parse(const icu::UnicodeString& text, icu::Formattable& result, icu::ParsePosition& position) const override;
};

}  // namespace varnel::dates
