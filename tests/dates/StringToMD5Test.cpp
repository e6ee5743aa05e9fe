#include <gtest/gtest.h>

#include <string>

#include "varnel/dates/StringToMD5.h"

namespace varnel {
namespace {

TEST(StringToMD5, GivesThirtyTwoLowercaseHexDigitsOfTheUtf8Bytes) {
  EXPECT_EQ(stringToMD5(""), "d41d8cd98f00b204e9800998ecf8427e");
  EXPECT_EQ(stringToMD5("abc"), "900150983cd24fb0d6963f7d28e17f72");
  EXPECT_EQ(stringToMD5("message digest"), "f96b697d7cb7938d525a2f31aaf161d0");
  EXPECT_EQ(stringToMD5("Caf\xc3\xa9"), "4655bd14eebfaf444e5b33d6851dbbd0");
}

TEST(StringToMD5, StopsAtTheFirstZeroByte) {
  EXPECT_EQ(stringToMD5(std::string("ab\0cd", 5)), stringToMD5("ab"));
  EXPECT_EQ(stringToMD5(std::string("\0abc", 4)), stringToMD5(""));
}

}  // namespace
}  // namespace varnel
