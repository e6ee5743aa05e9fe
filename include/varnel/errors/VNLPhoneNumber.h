#pragma once
// A phone number given as free text, split into its local and location parts.

#include <string>

namespace varnel {

struct VNLPhoneNumber {
  explicit VNLPhoneNumber(std::string withString) : originalString(std::move(withString)) {}

  std::string originalString;

  /// The digits of originalString, in order.
  std::string cleanString() const;
  /// The local number "nnn-nnnn" from the last seven digits.
  std::string phoneNumber() const;
  /// The digits before the local number: "(592)" for an area code alone,
  /// "1-(592)" with a country prefix. Fewer than seven digits in all is a
  /// programming error and stops the process.
  std::string locationNumber() const;
  /// locationNumber, a space, phoneNumber: "(592) 555-0142".
  std::string formattedString() const;
};

}  // namespace varnel
