#pragma once
// Card brands: recognising a card's brand from its number, and the code by
// which the commerce service names each brand. The codes are the service's
// and are given by whoever makes the record:
//
//   CreditCardUtility codes{"VI", "MC", "AX", "DS", "DC", "JC", "JCB"};
//   codes.cardCode(CreditCardUtility::cardType("4111111111111111"));  // "VI"

#include <string>
#include <string_view>

namespace varnel {

struct CreditCardUtility {
  enum class CreditCardType : int {
    KTVRCreditCardType_Unknown = 0,
    KTVRCreditCardType_Visa = 1,
    KTVRCreditCardType_MasterCard = 2,
    KTVRCreditCardType_AmericanExpress = 3,
    KTVRCreditCardType_Discover = 4,
    KTVRCreditCardType_DinersClub = 5,
    KTVRCreditCardType_JCB = 6,
    KTVRCreditCardType_ApplePay = 7,
  };

  std::string kCreditcardVisaKey;
  std::string kCreditcardMasterCardKey;
  std::string kCreditcardAmericanExpressKey;
  std::string kCreditcardDiscoverKey;
  std::string kCreditcardDinersClubKey;
  std::string kCreditcardJCBKey;
  /// Held for the service, but no brand is given this code.
  std::string kCreditcardJCKey;

  /// The brand whose number pattern matches the whole of `cardNumber`, as
  /// given (blanks or dashes make every pattern fail). Numbers of 13 or
  /// fewer, or 27 or more characters are Unknown without trying a pattern.
  /// Safe to call from several threads at once.
  static CreditCardType cardType(std::string_view cardNumber);

  /// The service's code of `type`; empty text for Unknown and ApplePay.
  const std::string& cardCode(CreditCardType type) const;

  /// The regular expression (ICU syntax) a number of brand `type` matches;
  /// null for Unknown and ApplePay, which have none.
  static const char16_t* brandPattern(CreditCardType type);

  /// The case name of `type`, such as "KTVRCreditCardType_Visa".
  static std::string_view caseName(CreditCardType type);
};

}  // namespace varnel
