#include "varnel/purchase/CreditCardUtility.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>

#include <unicode/brkiter.h>
#include <unicode/regex.h>
#include <unicode/unistr.h>

namespace varnel {
namespace {

using Type = CreditCardUtility::CreditCardType;

struct BrandPattern {
  Type type;
  const char16_t* pattern;
};

// Each pattern must match the whole number; no two match the same number.
constexpr std::array<BrandPattern, 6> kBrandPatterns{{
    {Type::KTVRCreditCardType_Visa, u"^4[0-9]{12}(?:[0-9]{3})?$"},
    {Type::KTVRCreditCardType_MasterCard,
     u"^(?:5[1-5][0-9]{2}|222[1-9]|22[3-9][0-9]|2[3-6][0-9]{2}|27[01][0-9]|2720)[0-9]{12}$"},
    {Type::KTVRCreditCardType_AmericanExpress, u"^3[47][0-9]{13}$"},
    {Type::KTVRCreditCardType_DinersClub, u"^3(?:0[0-5]|[68][0-9])[0-9]{11}$"},
    {Type::KTVRCreditCardType_Discover, u"^6(?:011|5[0-9]{2})[0-9]{12}$"},
    {Type::KTVRCreditCardType_JCB, u"^(?:2131|1800|35\\d{3})\\d{11}$"},
}};

// Numbers shorter or longer than this are not tried against any pattern.
constexpr std::size_t kFewestCharacters = 14;
constexpr std::size_t kMostCharacters = 26;

constexpr std::uint8_t kEveryPattern = (1u << kBrandPatterns.size()) - 1;

/// The six patterns, compiled once (a compiled pattern may be shared by
/// threads), and for each ASCII character the patterns that can match a
/// number beginning with it, so that a number is only tried against those.
struct CompiledBrands {
  std::array<std::unique_ptr<icu::RegexPattern>, kBrandPatterns.size()> patterns;
  std::array<std::uint8_t, 128> candidatesByFirstCharacter{};

  static const CompiledBrands* get() {
    static const std::unique_ptr<CompiledBrands> compiled = build();
    return compiled.get();
  }

 private:
  static std::unique_ptr<CompiledBrands> build() {
    auto brands = std::make_unique<CompiledBrands>();
    for (std::size_t i = 0; i < kBrandPatterns.size(); ++i) {
      UErrorCode status = U_ZERO_ERROR;
      brands->patterns[i].reset(icu::RegexPattern::compile(kBrandPatterns[i].pattern, 0, status));
      if (U_FAILURE(status)) return nullptr;
      std::unique_ptr<icu::RegexMatcher> matcher(brands->patterns[i]->matcher(status));
      if (U_FAILURE(status)) return nullptr;
      // A pattern can start with a character when matching that character
      // alone succeeds or runs into the end of the input wanting more.
      for (char16_t first = 0; first < 128; ++first) {
        const icu::UnicodeString alone(first);
        matcher->reset(alone);
        const bool matched = matcher->matches(status);
        if (U_FAILURE(status)) return nullptr;
        if (matched || matcher->hitEnd()) brands->candidatesByFirstCharacter[first] |= 1u << i;
      }
    }
    return brands;
  }
};

/// The calling thread's matchers over the shared patterns, with the text they read.
struct ThreadMatchers {
  icu::UnicodeString input;
  std::array<std::unique_ptr<icu::RegexMatcher>, kBrandPatterns.size()> matchers;

  static ThreadMatchers* get(const CompiledBrands& brands) {
    thread_local ThreadMatchers local;
    if (!local.matchers[0]) {
      for (std::size_t i = 0; i < kBrandPatterns.size(); ++i) {
        UErrorCode status = U_ZERO_ERROR;
        local.matchers[i].reset(brands.patterns[i]->matcher(status));
        if (U_FAILURE(status)) {
          local.matchers[0].reset();
          return nullptr;
        }
      }
    }
    return &local;
  }
};

bool isPlainAscii(std::string_view text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    // A CR LF pair is one character.
    if (byte >= 0x80 || (byte == '\r' && i + 1 < text.size() && text[i + 1] == '\n')) return false;
  }
  return true;
}

/// Characters as a reader counts them: grapheme clusters.
std::size_t characterCount(const icu::UnicodeString& text) {
  thread_local std::unique_ptr<icu::BreakIterator> characters = [] {
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::BreakIterator> iterator(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    return U_SUCCESS(status) ? std::move(iterator) : nullptr;
  }();
  if (!characters) return static_cast<std::size_t>(text.countChar32());
  characters->setText(text);
  std::size_t count = 0;
  characters->first();
  while (characters->next() != icu::BreakIterator::DONE) ++count;
  return count;
}

bool withinLengthBounds(std::size_t count) {
  return count >= kFewestCharacters && count <= kMostCharacters;
}

}  // namespace

CreditCardUtility::CreditCardType CreditCardUtility::cardType(std::string_view cardNumber) {
  if (cardNumber.size() > static_cast<std::size_t>(INT32_MAX)) return Type::KTVRCreditCardType_Unknown;
  const bool ascii = isPlainAscii(cardNumber);
  if (ascii && !withinLengthBounds(cardNumber.size())) return Type::KTVRCreditCardType_Unknown;

  const CompiledBrands* brands = CompiledBrands::get();
  ThreadMatchers* local = brands ? ThreadMatchers::get(*brands) : nullptr;
  if (local == nullptr) return Type::KTVRCreditCardType_Unknown;

  if (ascii) {
    // At most 26 characters here: widen them in place.
    std::array<char16_t, kMostCharacters> widened{};
    std::copy(cardNumber.begin(), cardNumber.end(), widened.begin());
    local->input.setTo(widened.data(), static_cast<int32_t>(cardNumber.size()));
  } else {
    local->input = icu::UnicodeString::fromUTF8(
        icu::StringPiece(cardNumber.data(), static_cast<int32_t>(cardNumber.size())));
    if (!withinLengthBounds(characterCount(local->input))) return Type::KTVRCreditCardType_Unknown;
  }

  const char16_t first = local->input.charAt(0);
  const std::uint8_t candidates =
      first < 128 ? brands->candidatesByFirstCharacter[first] : kEveryPattern;
  for (std::size_t i = 0; i < kBrandPatterns.size(); ++i) {
    if ((candidates & (1u << i)) == 0) continue;
    UErrorCode status = U_ZERO_ERROR;
    icu::RegexMatcher& matcher = *local->matchers[i];
    matcher.reset(local->input);
    if (matcher.matches(status) && U_SUCCESS(status)) return kBrandPatterns[i].type;
  }
  return Type::KTVRCreditCardType_Unknown;
}

const std::string& CreditCardUtility::cardCode(CreditCardType type) const {
  static const std::string none;
  switch (type) {
    case Type::KTVRCreditCardType_Visa: return kCreditcardVisaKey;
    case Type::KTVRCreditCardType_MasterCard: return kCreditcardMasterCardKey;
    case Type::KTVRCreditCardType_AmericanExpress: return kCreditcardAmericanExpressKey;
    case Type::KTVRCreditCardType_Discover: return kCreditcardDiscoverKey;
    case Type::KTVRCreditCardType_DinersClub: return kCreditcardDinersClubKey;
    case Type::KTVRCreditCardType_JCB: return kCreditcardJCBKey;
    case Type::KTVRCreditCardType_Unknown:
    case Type::KTVRCreditCardType_ApplePay: break;
  }
  return none;
}

const char16_t* CreditCardUtility::brandPattern(CreditCardType type) {
  for (const auto& brand : kBrandPatterns) {
    if (brand.type == type) return brand.pattern;
  }
  return nullptr;
}

std::string_view CreditCardUtility::caseName(CreditCardType type) {
  switch (type) {
    case Type::KTVRCreditCardType_Unknown: return "KTVRCreditCardType_Unknown";
    case Type::KTVRCreditCardType_Visa: return "KTVRCreditCardType_Visa";
    case Type::KTVRCreditCardType_MasterCard: return "KTVRCreditCardType_MasterCard";
    case Type::KTVRCreditCardType_AmericanExpress: return "KTVRCreditCardType_AmericanExpress";
    case Type::KTVRCreditCardType_Discover: return "KTVRCreditCardType_Discover";
    case Type::KTVRCreditCardType_DinersClub: return "KTVRCreditCardType_DinersClub";
    case Type::KTVRCreditCardType_JCB: return "KTVRCreditCardType_JCB";
    case Type::KTVRCreditCardType_ApplePay: return "KTVRCreditCardType_ApplePay";
  }
  return "KTVRCreditCardType_Unknown";
}

}  // namespace varnel
