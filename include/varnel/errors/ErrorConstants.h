#pragma once
// Texts of the services' JSON error bodies and the domain of the errors the
// module builds itself.

#include <string_view>

namespace varnel {

struct ErrorConstants {
  /// Domain of platform errors the module makes (e.g. for service banners).
  static constexpr std::string_view errorDomain = "varnel.error";

  static constexpr std::string_view kErrorsKey = "errors";
  static constexpr std::string_view kTypeIdKey = "typeId";
  static constexpr std::string_view kStatusCodeKey = "statusCode";
  static constexpr std::string_view kErrorCodeKey = "errorCode";
  static constexpr std::string_view kSystemErrorCodeKey = "systemErrorCode";

  static constexpr std::string_view system_unavailable_typeid = "SYSTEM_UNAVAILABLE";
  static constexpr std::string_view unexpected_error_typeid = "UNEXPECTED_ERROR";
  static constexpr std::string_view system_error_typeid = "SYSTEM_ERROR";
  static constexpr std::string_view payment_declined_typeid = "PAYMENT_DECLINED";
  /// The booking service sends the same code for an offline authorizer as for
  /// a declined card, so the two cannot be told apart; the equal texts are
  /// intentional.
  static constexpr std::string_view payment_authorizer_offline_typeid = "PAYMENT_DECLINED";
  static constexpr std::string_view payment_bad_expiration_date_typeid = "PAYMENT_BAD_EXPIRATION_DATE";
};

/// Numeric codes of the entitlement-validation (EVAS) services.
enum class EVasErrorCode : int {
  eVasInternalServiceError = 500,
  eVasServiceUnavailable = 503,
  eVasCommunicationError = 2000,
};

}  // namespace varnel
