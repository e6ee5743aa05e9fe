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

std::string APErrorMessage::message(APError error, KTVCResortChoice park) {
  const std::optional<std::string> phone = VNLPhoneUtility::APPhoneNumber(error, park);
  const std::string text = VarnelLocalizedStringForKey(localizationKey(error, park));
  if (!phone) return text;
  return stringWithFormat(text, {*phone});
}

}  // namespace varnel
