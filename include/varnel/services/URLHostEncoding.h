#pragma once
// Percent-encoding of text that goes into a URL's host part: ASCII letters,
// digits and !$&'()*+,-.:;=[]_~ stay as they are; every other byte (reserved
// characters, spaces, the UTF-8 bytes of other characters) becomes %XX with
// upper-case hex digits. Guest identifiers are encoded this way before they
// fill an endpoint's tokens ("{A1-B2}" becomes "%7BA1-B2%7D").

#include <string>
#include <string_view>

namespace varnel {

std::string percentEncodedForURLHost(std::string_view text);

}  // namespace varnel
