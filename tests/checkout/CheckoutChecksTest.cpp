// The guest's checks before a checkout: which failure the guest is told
// first, for each combination of what is missing.

#include <gtest/gtest.h>

#include "checkout/CheckoutTestSupport.h"
#include "varnel/checkout/CheckoutChecks.h"

namespace varnel::testing {
namespace {

TEST(CheckoutChecks, TellsTheFirstMissingChoice) {
  using Phone = KTVRAddress::Phone;
  const auto stored = testAccount();
  const auto scannedWithCode = testAccount({.securityCode = "737", .scanned = true});
  const auto scannedWithoutCode = testAccount({.scanned = true});
  const auto scannedEmptyCode = testAccount({.securityCode = "", .scanned = true});
  const auto noPhone = testAccount({.phone = std::nullopt, .mobile = std::nullopt});
  const auto blankPhones = testAccount({.phone = Phone{"HOME", ""}, .mobile = Phone{"MOBILE", std::nullopt}});
  const auto mobileOnly = testAccount({.phone = std::nullopt});
  const auto phoneOnly = testAccount({.mobile = std::nullopt});
  const auto noAddress = testAccount({.withAddress = false});

  struct Row {
    const char* name;
    CheckoutChoices choices;
    std::optional<APError> expected;
  };
  const Row rows[] = {
      // Payment method first, with the terms when both are missing.
      {"no card", {std::nullopt, true, false, false}, APError::MissingPaymentMethod},
      {"no card, no terms", {std::nullopt, false, false, false}, APError::MissingCCAndTermsAndConditions},
      {"no card, no terms, unsigned contract", {std::nullopt, false, true, false},
       APError::MissingCCAndTermsAndConditions},
      // The security code of a scanned card.
      {"scanned card without code", {scannedWithoutCode, true, false, false}, APError::MissingCVV},
      {"scanned card with empty code", {scannedEmptyCode, true, false, false}, APError::MissingCVV},
      {"scanned card without code, no terms", {scannedWithoutCode, false, false, false},
       APError::MissingCVVAndTermsAndConditions},
      {"scanned card without code, no phone either", {testAccount({.scanned = true, .phone = {}, .mobile = {}}), true,
                                                      false, false},
       APError::MissingCVV},
      {"stored card needs no code", {stored, true, false, false}, std::nullopt},
      {"scanned card with code", {scannedWithCode, true, false, false}, std::nullopt},
      // A billing phone, before the terms.
      {"no phone", {noPhone, true, false, false}, APError::MissingPhoneNumber},
      {"no phone, no terms", {noPhone, false, true, false}, APError::MissingPhoneNumber},
      {"blank phones", {blankPhones, true, false, false}, APError::MissingPhoneNumber},
      {"no billing address", {noAddress, true, false, false}, APError::MissingPhoneNumber},
      {"mobile only", {mobileOnly, true, false, false}, std::nullopt},
      {"home phone only", {phoneOnly, true, false, false}, std::nullopt},
      // Terms and, on the monthly plan, the signed contract.
      {"no terms", {stored, false, false, false}, APError::NoTermsAndConditions},
      {"no terms, contract signed", {stored, false, true, true}, APError::NoTermsAndConditions},
      {"no terms, contract unsigned", {stored, false, true, false}, APError::NoElectronicSignatureTandC},
      {"contract unsigned", {stored, true, true, false}, APError::ContractNotSigned},
      {"paid in full needs no signature", {stored, true, false, false}, std::nullopt},
      {"monthly plan, all given", {stored, true, true, true}, std::nullopt},
  };
  for (const Row& row : rows) {
    const std::optional<APError> failed = CheckoutChecks::firstFailure(row.choices);
    EXPECT_EQ(failed, row.expected) << row.name << ": got "
                                    << (failed ? std::string(description(*failed)) : std::string("none"));
  }
}

}  // namespace
}  // namespace varnel::testing
