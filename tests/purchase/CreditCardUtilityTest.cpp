#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "varnel/purchase/CreditCardUtility.h"

namespace varnel {

void PrintTo(CreditCardUtility::CreditCardType type, std::ostream* out) {
  *out << CreditCardUtility::caseName(type);
}

namespace {

using Type = CreditCardUtility::CreditCardType;

void expectTypes(const std::vector<std::pair<std::string, Type>>& cases) {
  for (const auto& [number, type] : cases) {
    EXPECT_EQ(CreditCardUtility::cardType(number), type) << '"' << number << '"';
  }
}

TEST(CreditCardType, RecognisesEachBrandByPrefixAndLength) {
  expectTypes({
      {"4111111111111111", Type::KTVRCreditCardType_Visa},
      {"5105105105105100", Type::KTVRCreditCardType_MasterCard},
      {"5555555555554444", Type::KTVRCreditCardType_MasterCard},
      {"2221000000000009", Type::KTVRCreditCardType_MasterCard},
      {"2720990000000007", Type::KTVRCreditCardType_MasterCard},
      {"378282246310005", Type::KTVRCreditCardType_AmericanExpress},
      {"341111111111111", Type::KTVRCreditCardType_AmericanExpress},
      {"30569309025904", Type::KTVRCreditCardType_DinersClub},
      {"38520000023237", Type::KTVRCreditCardType_DinersClub},
      {"36000000000008", Type::KTVRCreditCardType_DinersClub},
      {"6011111111111117", Type::KTVRCreditCardType_Discover},
      {"6500000000000002", Type::KTVRCreditCardType_Discover},
      {"3530111333300000", Type::KTVRCreditCardType_JCB},
      {"213100000000008", Type::KTVRCreditCardType_JCB},
      {"180000000000002", Type::KTVRCreditCardType_JCB},
  });
}

TEST(CreditCardType, NumbersJustOutsideABrandsRangeAreUnknown) {
  expectTypes({
      {"2721000000000000", Type::KTVRCreditCardType_Unknown},  // past the 2-series
      {"2220990000000000", Type::KTVRCreditCardType_Unknown},  // before it
      {"5605105105105100", Type::KTVRCreditCardType_Unknown},
      {"4111111111111111111", Type::KTVRCreditCardType_Unknown},  // Visa is 13 or 16 digits
      {"3782822463100051", Type::KTVRCreditCardType_Unknown},     // American Express is 15
      {"351111111111111", Type::KTVRCreditCardType_Unknown},
      {"30600000000000", Type::KTVRCreditCardType_Unknown},
      {"6221000000000000", Type::KTVRCreditCardType_Unknown},
      {"1800000000000002", Type::KTVRCreditCardType_Unknown},  // 2131 and 1800 take 15 digits
      {"35300000000000000", Type::KTVRCreditCardType_Unknown},
      {"9111111111111111", Type::KTVRCreditCardType_Unknown},
  });
}

TEST(CreditCardType, LengthBoundsComeBeforeAnyPattern) {
  // Thirteen digits fit the Visa pattern but are never tried.
  expectTypes({
      {"4222222222222", Type::KTVRCreditCardType_Unknown},
      {"", Type::KTVRCreditCardType_Unknown},
      {"4", Type::KTVRCreditCardType_Unknown},
      {std::string(27, '4'), Type::KTVRCreditCardType_Unknown},
      {std::string(100000, '4'), Type::KTVRCreditCardType_Unknown},
  });
  // Characters, not bytes, are counted: sixteen characters in 30 bytes.
  const std::string arabicIndicDigits = "35\u0660\u0661\u0662\u0663\u0664\u0665\u0666\u0667\u0668"
                                        "\u0669\u0660\u0661\u0662\u0663";
  ASSERT_EQ(arabicIndicDigits.size(), 30u);
  EXPECT_EQ(CreditCardUtility::cardType(arabicIndicDigits), Type::KTVRCreditCardType_JCB);
  // Only the JCB pattern takes any decimal digit; the others want 0-9.
  EXPECT_EQ(CreditCardUtility::cardType("4\u0661\u0661\u0661\u0661\u0661\u0661\u0661\u0661\u0661"
                                        "\u0661\u0661\u0661\u0661\u0661\u0661"),
            Type::KTVRCreditCardType_Unknown);
}

TEST(CreditCardType, NumbersMatchOnlyExactlyAsWritten) {
  expectTypes({
      {"4111 1111 1111 1111", Type::KTVRCreditCardType_Unknown},
      {"4111-1111-1111-1111", Type::KTVRCreditCardType_Unknown},
      {" 4111111111111111", Type::KTVRCreditCardType_Unknown},
      {"4111111111111111\n", Type::KTVRCreditCardType_Unknown},
      {std::string("4111111111111111\0", 17), Type::KTVRCreditCardType_Unknown},
      {"4111111111111111\xff", Type::KTVRCreditCardType_Unknown},
      {"41111111111111x1", Type::KTVRCreditCardType_Unknown},
  });
}

TEST(CreditCardType, ThreadsShareTheCompiledPatterns) {
  const std::vector<std::pair<std::string, Type>> cases{
      {"4111111111111111", Type::KTVRCreditCardType_Visa},
      {"378282246310005", Type::KTVRCreditCardType_AmericanExpress},
      {"3530111333300000", Type::KTVRCreditCardType_JCB},
      {"2721000000000000", Type::KTVRCreditCardType_Unknown},
  };
  std::vector<int> wrong(cases.size(), 0);
  std::vector<std::thread> threads;
  for (std::size_t t = 0; t < cases.size(); ++t) {
    threads.emplace_back([&, t] {
      for (int round = 0; round < 2000; ++round) {
        if (CreditCardUtility::cardType(cases[t].first) != cases[t].second) ++wrong[t];
      }
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(wrong, std::vector<int>(cases.size(), 0));
}

TEST(CreditCardCode, EachBrandGivesItsOwnCodeAndTheRestNone) {
  const CreditCardUtility codes{"VI", "MC", "AX", "DS", "DC", "JB", "JC"};
  EXPECT_EQ(codes.cardCode(Type::KTVRCreditCardType_Visa), "VI");
  EXPECT_EQ(codes.cardCode(Type::KTVRCreditCardType_MasterCard), "MC");
  EXPECT_EQ(codes.cardCode(Type::KTVRCreditCardType_AmericanExpress), "AX");
  EXPECT_EQ(codes.cardCode(Type::KTVRCreditCardType_Discover), "DS");
  EXPECT_EQ(codes.cardCode(Type::KTVRCreditCardType_DinersClub), "DC");
  EXPECT_EQ(codes.cardCode(Type::KTVRCreditCardType_JCB), "JB");
  EXPECT_EQ(codes.cardCode(Type::KTVRCreditCardType_Unknown), "");
  EXPECT_EQ(codes.cardCode(Type::KTVRCreditCardType_ApplePay), "");
  EXPECT_EQ(codes.cardCode(CreditCardUtility::cardType("3566002020360505")), "JB");
}

}  // namespace
}  // namespace varnel
