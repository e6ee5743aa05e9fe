#include <gtest/gtest.h>

#include "varnel/errors/VNLPhoneNumber.h"

namespace varnel {
namespace {

TEST(VNLPhoneNumber, CleanStringKeepsOnlyDigitsInOrder) {
  EXPECT_EQ(VNLPhoneNumber("+1 (407) 555-0142").cleanString(), "14075550142");
  EXPECT_EQ(VNLPhoneNumber("call us: 555.01.42 ext").cleanString(), "5550142");
  EXPECT_EQ(VNLPhoneNumber("no digits here").cleanString(), "");
  EXPECT_EQ(VNLPhoneNumber("").cleanString(), "");
  // Digits from other scripts are not "0123456789".
  EXPECT_EQ(VNLPhoneNumber("\xd9\xa1"
                           "23")
                .cleanString(),
            "23");
}

TEST(VNLPhoneNumber, OriginalStringCanBeReplaced) {
  VNLPhoneNumber number("(407) 555-0142");
  number.originalString = "714-555-0117";
  EXPECT_EQ(number.formattedString(), "(714) 555-0117");
}

TEST(VNLPhoneNumber, LocalPartComesFromTheLastSevenDigits) {
  EXPECT_EQ(VNLPhoneNumber("4075550142").phoneNumber(), "555-0142");
  EXPECT_EQ(VNLPhoneNumber("5550142").phoneNumber(), "555-0142");
  // Fewer than seven digits: the first three and the last four overlap.
  EXPECT_EQ(VNLPhoneNumber("12345").phoneNumber(), "123-2345");
  EXPECT_EQ(VNLPhoneNumber("").phoneNumber(), "-");
}

TEST(VNLPhoneNumber, LocationNumberByLengthOfThePrefix) {
  EXPECT_EQ(VNLPhoneNumber("5550142").locationNumber(), "()");
  EXPECT_EQ(VNLPhoneNumber("75550142").locationNumber(), "(7)");
  EXPECT_EQ(VNLPhoneNumber("4075550142").locationNumber(), "(407)");
  EXPECT_EQ(VNLPhoneNumber("1 407 555 0142").locationNumber(), "1-(407)");
  EXPECT_EQ(VNLPhoneNumber("+44 (020) 555-0142").locationNumber(), "44-(020)");
}

TEST(VNLPhoneNumber, FormattedString) {
  EXPECT_EQ(VNLPhoneNumber("407.555.0142").formattedString(), "(407) 555-0142");
  EXPECT_EQ(VNLPhoneNumber("1-407-555-0142").formattedString(), "1-(407) 555-0142");
}

TEST(VNLPhoneNumberDeathTest, TooFewDigitsForALocationNumberHalts) {
  EXPECT_DEATH((void)VNLPhoneNumber("555-014").locationNumber(), "fewer than seven digits");
  EXPECT_DEATH((void)VNLPhoneNumber("call me").formattedString(), "fewer than seven digits");
}

}  // namespace
}  // namespace varnel
