#include <gtest/gtest.h>

#include "varnel/errors/VNLPhoneNumber.h"

namespace varnel {
namespace {

TEST(VNLPhoneNumber, CleanStringKeepsOnlyAsciiDigitsInOrder) {
  EXPECT_EQ(VNLPhoneNumber("+1 (407) 555-0142").cleanString(), "14075550142");
  EXPECT_EQ(VNLPhoneNumber("no digits here").cleanString(), "");
  const std::string arabicIndicOneThen23 =
      "\xd9\xa1"
      "23";
  EXPECT_EQ(VNLPhoneNumber(arabicIndicOneThen23).cleanString(), "23");
}

TEST(VNLPhoneNumber, PartsAndFormattedString) {
  EXPECT_EQ(VNLPhoneNumber("5550142").locationNumber(), "()");
  EXPECT_EQ(VNLPhoneNumber("75550142").locationNumber(), "(7)");
  EXPECT_EQ(VNLPhoneNumber("407.555.0142").formattedString(), "(407) 555-0142");
  EXPECT_EQ(VNLPhoneNumber("1-407-555-0142").formattedString(), "1-(407) 555-0142");
  EXPECT_EQ(VNLPhoneNumber("+44 (020) 555-0142").locationNumber(), "44-(020)");
  // Fewer than seven digits: the first three and the last four overlap.
  EXPECT_EQ(VNLPhoneNumber("12345").phoneNumber(), "123-2345");
  VNLPhoneNumber number("(407) 555-0142");
  number.originalString = "714-555-0117";
  EXPECT_EQ(number.formattedString(), "(714) 555-0117");
}

TEST(VNLPhoneNumberDeathTest, TooFewDigitsForALocationNumberHalts) {
  EXPECT_DEATH((void)VNLPhoneNumber("555-014").locationNumber(), "fewer than seven digits");
  EXPECT_DEATH((void)VNLPhoneNumber("call me").formattedString(), "fewer than seven digits");
}

}  // namespace
}  // namespace varnel
