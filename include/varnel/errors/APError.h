#pragma once
// The closed set of commerce failures a guest can be shown, with integer raw
// values 0 to 24, and their classification.

#include <optional>
#include <string>
#include <string_view>

namespace varnel {

// Case names are the texts the services send and the host reads; they are
// kept exactly, hence the mixed naming style.
enum class APError : int {
  ConnectionError = 0,
  SYSTEM_UNAVAILABLE = 1,
  UNEXPECTED_ERROR = 2,
  SYSTEM_ERROR = 3,
  INTERNAL_SERVICE_ERROR = 4,
  COMMUNICATION_ERROR = 5,
  PAYMENT_DECLINED = 6,
  PAYMENT_AUTHORIZER_OFFLINE = 7,
  PAYMENT_BAD_EXPIRATION_DATE = 8,
  GeneralBookingServiceError = 9,
  ServiceErrorNoRetry = 10,
  GeneralEVASServiceError = 11,
  MissingPaymentMethod = 12,
  MissingCVV = 13,
  MissingPhoneNumber = 14,
  NoTermsAndConditions = 15,
  MissingCVVAndTermsAndConditions = 16,
  MissingCCAndTermsAndConditions = 17,
  NoElectronicSignatureTandC = 18,
  ContractNotSigned = 19,
  NonFLResident = 20,
  NonSCAResident = 21,
  NonCAResident = 22,
  GeneralTransactionalError = 23,
  PaymentLostConnection = 24,
};

/// Number of cases; raw values run from 0 to kAPErrorCaseCount - 1.
inline constexpr int kAPErrorCaseCount = 25;

/// The case for a raw value, or none outside 0...24.
std::optional<APError> apErrorFromRawValue(int rawValue);

/// The raw value of a case.
constexpr int rawValue(APError error) { return static_cast<int>(error); }

/// The case's name, e.g. "PAYMENT_DECLINED" or "MissingCVV".
std::string_view description(APError error);

/// A transport failure: only ConnectionError.
bool isConnectionError(APError error);
/// A failure the service reported (raw values 1 to 11 except 6 and 8).
/// The misspelled name is part of the host contract.
bool isSeviceError(APError error);
/// A failure after payment was attempted (raw values 23 and 24).
bool isTransactionalError(APError error);
/// Everything else: raw values 6, 8 and 12 to 22.
bool isValidationError(APError error);

/// The service's code of a residency failure ("072312", "072313", "072316");
/// none for every other case.
std::optional<std::string> errorCode(APError error);

}  // namespace varnel
