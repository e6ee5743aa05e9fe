#include "varnel/services/URLHostEncoding.h"

namespace varnel {
namespace {

bool isHostAllowed(unsigned char c) {
  if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9')) return true;
  return std::string_view("!$&'()*+,-.:;=[]_~").find(static_cast<char>(c)) != std::string_view::npos;
}

}  // namespace

std::string percentEncodedForURLHost(std::string_view text) {
  static constexpr char kHex[] = "0123456789ABCDEF";
  std::string encoded;
  encoded.reserve(text.size());
  for (const char character : text) {
    const auto byte = static_cast<unsigned char>(character);
    if (isHostAllowed(byte)) {
      encoded += character;
    } else {
      encoded += '%';
      encoded += kHex[byte >> 4];
      encoded += kHex[byte & 0x0F];
    }
  }
  return encoded;
}

}  // namespace varnel
