#include "varnel/purchase/CreditCardUtility.h"

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

/// The six patterns as one, each in its own group in table order, so that a
/// single whole-input match tries them in turn and its group names the brand.
/// Compiled once; a compiled pattern may be shared by threads.
const icu::RegexPattern* brandPatterns() {
  static const std::unique_ptr<icu::RegexPattern> compiled = [] {
    icu::UnicodeString alternatives;
    for (const auto& brand : kBrandPatterns) {
      if (!alternatives.isEmpty()) alternatives += u'|';
      alternatives += u'(';
      alternatives += brand.pattern;
      alternatives += u')';
    }
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::RegexPattern> pattern(icu::RegexPattern::compile(alternatives, 0, status));
    return U_SUCCESS(status) ? std::move(pattern) : nullptr;
  }();
  return compiled.get();
}

/// The calling thread's matcher over the shared pattern, with the text it reads.
struct ThreadMatcher {
  icu::UnicodeString input;
  std::unique_ptr<icu::RegexMatcher> matcher;

  static ThreadMatcher* get() {
    thread_local ThreadMatcher local;
    if (!local.matcher) {
      const icu::RegexPattern* pattern = brandPatterns();
      UErrorCode status = U_ZERO_ERROR;
      if (pattern == nullptr) return nullptr;
      local.matcher.reset(pattern->matcher(status));
      if (U_FAILURE(status)) local.matcher.reset();
    }
    return local.matcher ? &local : nullptr;
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

  ThreadMatcher* local = ThreadMatcher::get();
  if (local == nullptr) return Type::KTVRCreditCardType_Unknown;
  local->input = icu::UnicodeString::fromUTF8(
      icu::StringPiece(cardNumber.data(), static_cast<int32_t>(cardNumber.size())));
  if (!ascii && !withinLengthBounds(characterCount(local->input))) {
    return Type::KTVRCreditCardType_Unknown;
  }

  UErrorCode status = U_ZERO_ERROR;
  local->matcher->reset(local->input);
  if (!local->matcher->matches(status) || U_FAILURE(status)) return Type::KTVRCreditCardType_Unknown;
  for (std::size_t group = 1; group <= kBrandPatterns.size(); ++group) {
    if (local->matcher->start(static_cast<int32_t>(group), status) >= 0) {
      return kBrandPatterns[group - 1].type;
    }
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
