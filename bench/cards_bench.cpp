// Card-brand recognition: the shared compiled patterns against compiling the
// patterns on every call, and against a hand-written prefix-and-length test.

#include <array>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <benchmark/benchmark.h>
#include <unicode/regex.h>

#include "RatioSummary.h"
#include "varnel/purchase/CreditCardUtility.h"

namespace {

using varnel::CreditCardUtility;
using Type = CreditCardUtility::CreditCardType;

// One number per brand, one in range but of no brand, one too short.
const std::vector<std::string> kNumbers{
    "4111111111111111", "5555555555554444", "378282246310005", "30569309025904",
    "6011111111111117", "3530111333300000", "2721000000000000", "4222222222222",
};

// The library's own patterns, for the baselines that use them differently.
const std::array<std::pair<Type, const char16_t*>, 6> kPatterns = [] {
  std::array<std::pair<Type, const char16_t*>, 6> patterns{};
  std::size_t next = 0;
  for (Type type : {Type::KTVRCreditCardType_Visa, Type::KTVRCreditCardType_MasterCard,
                    Type::KTVRCreditCardType_AmericanExpress, Type::KTVRCreditCardType_DinersClub,
                    Type::KTVRCreditCardType_Discover, Type::KTVRCreditCardType_JCB}) {
    patterns[next++] = {type, CreditCardUtility::brandPattern(type)};
  }
  return patterns;
}();

bool outOfBounds(std::string_view number) { return number.size() <= 13 || number.size() >= 27; }

// Baseline: build the table of patterns for every number.
Type compileEveryCall(std::string_view number) {
  if (outOfBounds(number)) return Type::KTVRCreditCardType_Unknown;
  const auto text = icu::UnicodeString::fromUTF8(
      icu::StringPiece(number.data(), static_cast<int32_t>(number.size())));
  for (const auto& [type, source] : kPatterns) {
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::RegexPattern> pattern(icu::RegexPattern::compile(source, 0, status));
    std::unique_ptr<icu::RegexMatcher> matcher(pattern->matcher(text, status));
    if (U_SUCCESS(status) && matcher->matches(status)) return type;
  }
  return Type::KTVRCreditCardType_Unknown;
}

// Baseline: six patterns compiled once, each tried with its own matcher.
Type sixPrecompiled(std::string_view number) {
  struct Matchers {
    std::vector<std::unique_ptr<icu::RegexPattern>> patterns;
    std::vector<std::unique_ptr<icu::RegexMatcher>> matchers;
    Matchers() {
      for (const auto& entry : kPatterns) {
        UErrorCode status = U_ZERO_ERROR;
        patterns.emplace_back(icu::RegexPattern::compile(entry.second, 0, status));
        matchers.emplace_back(patterns.back()->matcher(status));
      }
    }
  };
  thread_local Matchers local;
  if (outOfBounds(number)) return Type::KTVRCreditCardType_Unknown;
  const auto text = icu::UnicodeString::fromUTF8(
      icu::StringPiece(number.data(), static_cast<int32_t>(number.size())));
  for (std::size_t i = 0; i < kPatterns.size(); ++i) {
    UErrorCode status = U_ZERO_ERROR;
    local.matchers[i]->reset(text);
    if (local.matchers[i]->matches(status)) return kPatterns[i].first;
  }
  return Type::KTVRCreditCardType_Unknown;
}

// Baseline: the brands' prefix and length rules written out by hand (ASCII digits only).
Type prefixAndLength(std::string_view number) {
  if (outOfBounds(number)) return Type::KTVRCreditCardType_Unknown;
  for (char c : number) {
    if (c < '0' || c > '9') return Type::KTVRCreditCardType_Unknown;
  }
  const std::size_t length = number.size();
  const int two = (number[0] - '0') * 10 + (number[1] - '0');
  const int three = two * 10 + (number[2] - '0');
  const int four = three * 10 + (number[3] - '0');
  if (length == 16 && number[0] == '4') return Type::KTVRCreditCardType_Visa;
  if (length == 16 && ((two >= 51 && two <= 55) || (four >= 2221 && four <= 2720))) {
    return Type::KTVRCreditCardType_MasterCard;
  }
  if (length == 15 && (two == 34 || two == 37)) return Type::KTVRCreditCardType_AmericanExpress;
  if (length == 14 && ((three >= 300 && three <= 305) || two == 36 || two == 38)) {
    return Type::KTVRCreditCardType_DinersClub;
  }
  if (length == 16 && (four == 6011 || two == 65)) return Type::KTVRCreditCardType_Discover;
  if ((length == 15 && (four == 2131 || four == 1800)) || (length == 16 && two == 35)) {
    return Type::KTVRCreditCardType_JCB;
  }
  return Type::KTVRCreditCardType_Unknown;
}

template <Type (*classify)(std::string_view)>
void classifyAll(benchmark::State& state) {
  for (auto _ : state) {
    for (const auto& number : kNumbers) benchmark::DoNotOptimize(classify(number));
  }
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(kNumbers.size()));
}

Type ours(std::string_view number) { return CreditCardUtility::cardType(number); }

BENCHMARK(classifyAll<ours>)->Name("CardTypeShared");
BENCHMARK(classifyAll<compileEveryCall>)->Name("CompileEveryCall");
BENCHMARK(classifyAll<sixPrecompiled>)->Name("SixPrecompiledMatchers");
BENCHMARK(classifyAll<prefixAndLength>)->Name("PrefixAndLength");

bool classifiersAgree() {
  for (const auto& number : kNumbers) {
    const Type expected = ours(number);
    if (compileEveryCall(number) != expected || sixPrecompiled(number) != expected ||
        prefixAndLength(number) != expected) {
      std::fprintf(stderr, "classifiers disagree on %s\n", number.c_str());
      return false;
    }
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  if (!classifiersAgree()) return 1;
  varnel::bench::RatioSummary summary;
  varnel::bench::runWith(summary, argc, argv);
  const double perCall = summary.nanoseconds("CardTypeShared") / static_cast<double>(kNumbers.size());
  if (perCall > 0) std::printf("CardTypeShared %.1f ns per number\n", perCall);
  summary.printRatio("CompileEveryCall", "CardTypeShared", ">= 100");
  summary.printRatio("CardTypeShared", "PrefixAndLength", "<= 3");
  summary.printRatio("SixPrecompiledMatchers", "CardTypeShared", "information");
  return 0;
}
