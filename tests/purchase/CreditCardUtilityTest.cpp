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
using Cases = std::vector<std::pair<std::string, Type>>;

void expectTypes(const Cases& cases) {
  for (const auto& [number, type] : cases) {
    EXPECT_EQ(CreditCardUtility::cardType(number), type) << '"' << number << '"';
  }
}

TEST(CreditCardType, EachBrandByPrefixAndLengthAndEverythingElseUnknown) {
  expectTypes({
      {"4111111111111111", Type::KTVRCreditCardType_Visa},
      {"5555555555554444", Type::KTVRCreditCardType_MasterCard},
      {"2221000000000009", Type::KTVRCreditCardType_MasterCard},
      {"2720990000000007", Type::KTVRCreditCardType_MasterCard},
      {"378282246310005", Type::KTVRCreditCardType_AmericanExpress},
      {"30569309025904", Type::KTVRCreditCardType_DinersClub},
      {"38520000023237", Type::KTVRCreditCardType_DinersClub},
      {"6011111111111117", Type::KTVRCreditCardType_Discover},
      {"6500000000000002", Type::KTVRCreditCardType_Discover},
      {"3530111333300000", Type::KTVRCreditCardType_JCB},
      {"213100000000008", Type::KTVRCreditCardType_JCB},
      {"180000000000002", Type::KTVRCreditCardType_JCB},
      // Just outside a brand.
      {"2721000000000000", Type::KTVRCreditCardType_Unknown},
      {"2220990000000000", Type::KTVRCreditCardType_Unknown},
      {"5605105105105100", Type::KTVRCreditCardType_Unknown},
      {"4111111111111111111", Type::KTVRCreditCardType_Unknown},
      {"3782822463100051", Type::KTVRCreditCardType_Unknown},
      {"30600000000000", Type::KTVRCreditCardType_Unknown},
      {"1800000000000002", Type::KTVRCreditCardType_Unknown},
      {"9111111111111111", Type::KTVRCreditCardType_Unknown},
      // Length bounds come first: thirteen digits fit the Visa pattern but are never tried.
      {"4222222222222", Type::KTVRCreditCardType_Unknown},
      {"", Type::KTVRCreditCardType_Unknown},
      {std::string(27, '4'), Type::KTVRCreditCardType_Unknown},
      // Numbers match only exactly as written.
      {"4111 1111 1111 1111", Type::KTVRCreditCardType_Unknown},
      {"4111-1111-1111-1111", Type::KTVRCreditCardType_Unknown},
      {" 4111111111111111", Type::KTVRCreditCardType_Unknown},
      {"4111111111111111\n", Type::KTVRCreditCardType_Unknown},
      {std::string("4111111111111111\0", 17), Type::KTVRCreditCardType_Unknown},
      {"4111111111111111\xff", Type::KTVRCreditCardType_Unknown},
  });
  // Sixteen characters in 30 bytes; only the JCB pattern takes any decimal digit.
  const std::string arabicIndic = "\u0660\u0661\u0662\u0663\u0664\u0665\u0666\u0667\u0668\u0669\u0660\u0661\u0662\u0663";
  EXPECT_EQ(CreditCardUtility::cardType("35" + arabicIndic), Type::KTVRCreditCardType_JCB);
  EXPECT_EQ(CreditCardUtility::cardType("40" + arabicIndic), Type::KTVRCreditCardType_Unknown);
}

TEST(CreditCardType, ThreadsShareTheCompiledPatterns) {
  const Cases cases{{"4111111111111111", Type::KTVRCreditCardType_Visa},
                    {"378282246310005", Type::KTVRCreditCardType_AmericanExpress},
                    {"3530111333300000", Type::KTVRCreditCardType_JCB},
                    {"2721000000000000", Type::KTVRCreditCardType_Unknown}};
  std::vector<int> wrong(cases.size(), 0);
  std::vector<std::thread> threads;
  for (std::size_t t = 0; t < cases.size(); ++t) {
    threads.emplace_back([&, t] {
      for (int round = 0; round < 2000; ++round) wrong[t] += CreditCardUtility::cardType(cases[t].first) != cases[t].second;
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(wrong, std::vector<int>(cases.size(), 0));
}

TEST(CreditCardCode, EachBrandGivesItsOwnCodeAndTheRestNone) {
  const CreditCardUtility codes{"VI", "MC", "AX", "DS", "DC", "JB", "JC"};
  const std::vector<std::string> expected{"", "VI", "MC", "AX", "DS", "DC", "JB", ""};
  for (int raw = 0; raw < 8; ++raw) EXPECT_EQ(codes.cardCode(static_cast<Type>(raw)), expected[raw]) << raw;
}

}  // namespace
}  // namespace varnel
