#include "varnel/dates/StringToMD5.h"

#include <openssl/evp.h>

namespace varnel {

std::string stringToMD5(std::string_view string) {
  const std::string_view bytes = string.substr(0, string.find('\0'));
  unsigned char digest[EVP_MAX_MD_SIZE];
  unsigned int length = 0;
  if (EVP_Digest(bytes.data(), bytes.size(), digest, &length, EVP_md5(), nullptr) != 1) return {};

  static constexpr char kHexDigits[] = "0123456789abcdef";
  std::string hex;
  hex.reserve(2 * length);
  for (unsigned int i = 0; i < length; ++i) {
    hex.push_back(kHexDigits[digest[i] >> 4]);
    hex.push_back(kHexDigits[digest[i] & 0x0f]);
  }
  return hex;
}

}  // namespace varnel
