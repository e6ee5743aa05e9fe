#pragma once
// The guest-facing text of a commerce error at a resort.

#include <string>
#include <string_view>

#include "varnel/errors/APError.h"
#include "varnel/host/KTVCParkResortContext.h"

namespace varnel {

struct APErrorMessage {
  /// The string-table key of the error's message at `park`. Empty for the
  /// connection error and for a residency error at a resort it does not
  /// apply to (Florida residency: east only; California ones: west only).
  static std::string localizationKey(APError error, KTVCResortChoice park);

  /// A text that shows the help number has a companion under its key plus
  /// this suffix: the same message without the number and the words that
  /// introduce it, for a resort without a help number.
  static constexpr std::string_view kWithoutPhoneNumberSuffix = ".withoutPhoneNumber";
  static constexpr std::string_view kPlaceholder = "%@";

  /// The localized message. When the resort has a help phone number, the text
  /// is a format whose one "%@" receives it; without one, a text that would
  /// show it is replaced by its companion, so no placeholder ever reaches the
  /// guest.
  static std::string message(APError error, KTVCResortChoice park);

  /// `text` (the text of `key`) without the help number: the companion text
  /// when the table has one, else `text` without the sentences holding "%@".
  static std::string textWithoutPhoneNumber(std::string_view key, const std::string& text);
};

}  // namespace varnel
