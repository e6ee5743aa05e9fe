#include "varnel/errors/APError.h"

#include <array>

namespace varnel {
namespace {

constexpr std::array<std::string_view, kAPErrorCaseCount> kCaseNames{
    "ConnectionError",
    "SYSTEM_UNAVAILABLE",
    "UNEXPECTED_ERROR",
    "SYSTEM_ERROR",
    "INTERNAL_SERVICE_ERROR",
    "COMMUNICATION_ERROR",
    "PAYMENT_DECLINED",
    "PAYMENT_AUTHORIZER_OFFLINE",
    "PAYMENT_BAD_EXPIRATION_DATE",
    "GeneralBookingServiceError",
    "ServiceErrorNoRetry",
    "GeneralEVASServiceError",
    "MissingPaymentMethod",
    "MissingCVV",
    "MissingPhoneNumber",
    "NoTermsAndConditions",
    "MissingCVVAndTermsAndConditions",
    "MissingCCAndTermsAndConditions",
    "NoElectronicSignatureTandC",
    "ContractNotSigned",
    "NonFLResident",
    "NonSCAResident",
    "NonCAResident",
    "GeneralTransactionalError",
    "PaymentLostConnection",
};

}  // namespace

std::optional<APError> apErrorFromRawValue(int value) {
  if (value < 0 || value >= kAPErrorCaseCount) return std::nullopt;
  return static_cast<APError>(value);
}

std::string_view description(APError error) {
  const int value = rawValue(error);
  if (value < 0 || value >= kAPErrorCaseCount) return {};
  return kCaseNames[static_cast<std::size_t>(value)];
}

bool isConnectionError(APError error) { return error == APError::ConnectionError; }

bool isSeviceError(APError error) {
  // The declined card and the bad expiry date come from the service but are
  // the guest's to fix, so they count as validation failures.
  const int value = rawValue(error);
  return value >= 1 && value <= 11 && error != APError::PAYMENT_DECLINED &&
         error != APError::PAYMENT_BAD_EXPIRATION_DATE;
}

bool isTransactionalError(APError error) {
  return error == APError::GeneralTransactionalError || error == APError::PaymentLostConnection;
}

bool isValidationError(APError error) {
  return !isConnectionError(error) && !isSeviceError(error) && !isTransactionalError(error);
}

std::optional<std::string> errorCode(APError error) {
  switch (error) {
    case APError::NonFLResident: return "072312";
    case APError::NonSCAResident: return "072313";
    case APError::NonCAResident: return "072316";
    default: return std::nullopt;
  }
}

}  // namespace varnel
