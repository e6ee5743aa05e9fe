#include "varnel/errors/APErrorMessage.h"

#include "varnel/errors/VNLPhoneUtility.h"
#include "varnel/errors/VarnelLocalizedString.h"
#include "varnel/platform/StringFormat.h"

namespace varnel {
namespace {

constexpr std::string_view kServiceErrorKey = "com.varnel.checkout.serviceError.message";
constexpr std::string_view kNoRetryKey = "com.varnel.checkout.serviceError.noRetry.message";
constexpr std::string_view kPaymentDeclinedKey = "com.varnel.checkout.serviceError.paymentDeclined.message";

}  // namespace

std::string APErrorMessage::localizationKey(APError error, KTVCResortChoice park) {
  switch (error) {
    case APError::ConnectionError: return {};
    case APError::SYSTEM_UNAVAILABLE:
    case APError::UNEXPECTED_ERROR:
    case APError::SYSTEM_ERROR:
    case APError::INTERNAL_SERVICE_ERROR:
    case APError::COMMUNICATION_ERROR:
    case APError::PAYMENT_AUTHORIZER_OFFLINE:
    case APError::GeneralBookingServiceError:
    case APError::GeneralEVASServiceError: return std::string(kServiceErrorKey);
    case APError::ServiceErrorNoRetry:
    case APError::GeneralTransactionalError: return std::string(kNoRetryKey);
    case APError::PAYMENT_DECLINED:
    case APError::PAYMENT_BAD_EXPIRATION_DATE: return std::string(kPaymentDeclinedKey);
    case APError::MissingPaymentMethod: return "com.varnel.checkout.validationError.missingPaymentMethod.message";
    case APError::MissingCVV: return "com.varnel.checkout.validationError.missingCVV.message";
    case APError::MissingPhoneNumber: return "com.varnel.checkout.validationError.missingPhoneNumber.message";
    case APError::NoTermsAndConditions: return "com.varnel.checkout.validationError.noTermsAndConditions.message";
    case APError::MissingCVVAndTermsAndConditions:
      return "com.varnel.checkout.validationError.missingCVVAndTermsAndConditions.message";
    case APError::MissingCCAndTermsAndConditions:
      return "com.varnel.checkout.validationError.missingCCAndTermsAndConditions.message";
    case APError::NoElectronicSignatureTandC:
      return "com.varnel.checkout.validationError.noElectronicSignatureTandC.message";
    case APError::ContractNotSigned: return "com.varnel.checkout.validationError.contractNotSigned.message";
    case APError::NonFLResident:
      return park == kResortChoiceEast ? "com.varnel.checkout.validationError.nonFLResident.message" : "";
    case APError::NonSCAResident:
      return park == kResortChoiceWest ? "com.varnel.checkout.validationError.nonSCAResident.message" : "";
    case APError::NonCAResident:
      return park == kResortChoiceWest ? "com.varnel.checkout.validationError.nonCAResident.message" : "";
    case APError::PaymentLostConnection: return "com.varnel.checkout.transactionalError.paymentLostConnection.message";
  }
  return {};
}

std::string APErrorMessage::textWithoutPhoneNumber(std::string_view key, const std::string& text) {
  const std::string companionKey = std::string(key) + std::string(kWithoutPhoneNumberSuffix);
  if (std::string companion = VarnelLocalizedStringForKey(companionKey);
      !companion.empty() && companion != companionKey && companion.find(kPlaceholder) == std::string::npos) {
    return companion;
  }
  // A table without the companion text: drop each sentence that would show the number.
  std::string kept;
  std::size_t start = 0;
  while (start < text.size()) {
    std::size_t end = text.find(". ", start);
    end = end == std::string::npos ? text.size() : end + 1;
    const std::string_view sentence(text.data() + start, end - start);
    if (sentence.find(kPlaceholder) == std::string_view::npos) {
      if (!kept.empty()) kept += ' ';
      kept += sentence;
    }
    start = text.find_first_not_of(' ', end);
    if (start == std::string::npos) break;
  }
  return kept;
}

std::string APErrorMessage::message(APError error, KTVCResortChoice park) {
  const std::optional<std::string> phone = VNLPhoneUtility::APPhoneNumber(error, park);
  const std::string key = localizationKey(error, park);
  const std::string text = VarnelLocalizedStringForKey(key);
  if (phone) return stringWithFormat(text, {*phone});
  if (text.find(kPlaceholder) == std::string::npos) return text;
  return textWithoutPhoneNumber(key, text);
}

}  // namespace varnel
