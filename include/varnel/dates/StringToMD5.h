#pragma once
// MD5 digest of a string, as 32 lowercase hexadecimal digits.

#include <string>
#include <string_view>

namespace varnel {

/// Digest of the UTF-8 bytes of `string` up to its first zero byte.
std::string stringToMD5(std::string_view string);

}  // namespace varnel
