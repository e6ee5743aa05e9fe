#include "varnel/errors/VNLPhoneNumber.h"

#include <cstdio>
#include <cstdlib>

namespace varnel {
namespace {

constexpr std::size_t kLocalDigits = 7;
constexpr std::size_t kAreaCodeDigits = 3;

std::string_view lastCharacters(std::string_view text, std::size_t count) {
  return text.size() <= count ? text : text.substr(text.size() - count);
}

}  // namespace

std::string VNLPhoneNumber::cleanString() const {
  std::string digits;
  for (char c : originalString) {
    if (c >= '0' && c <= '9') digits += c;
  }
  return digits;
}

std::string VNLPhoneNumber::phoneNumber() const {
  const std::string clean = cleanString();
  const std::string_view local = lastCharacters(clean, kLocalDigits);
  return std::string(local.substr(0, 3)) + "-" + std::string(lastCharacters(local, 4));
}

std::string VNLPhoneNumber::locationNumber() const {
  const std::string clean = cleanString();
  if (clean.size() < kLocalDigits) {
    // Callers only build numbers from the string table's help numbers; a short
    // one is a broken table, not something to show a guest.
    std::fprintf(stderr, "VNLPhoneNumber: \"%s\" has fewer than seven digits; no location number\n",
                 originalString.c_str());
    std::fflush(stderr);
    std::abort();
  }
  const std::string_view leading = std::string_view(clean).substr(0, clean.size() - kLocalDigits);
  const std::string_view areaCode = lastCharacters(leading, kAreaCodeDigits);
  std::string location;
  if (leading.size() > kAreaCodeDigits) location.append(leading.substr(0, leading.size() - kAreaCodeDigits)).append("-");
  location.append("(").append(areaCode).append(")");
  return location;
}

std::string VNLPhoneNumber::formattedString() const { return locationNumber() + " " + phoneNumber(); }

}  // namespace varnel
