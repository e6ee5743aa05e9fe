#include "varnel/errors/ErrorMapping.h"

#include <charconv>
#include <string>
#include <utility>
#include <vector>

#include "varnel/errors/ErrorConstants.h"
#include "varnel/host/KTVCPrintUtility.h"

namespace varnel {
namespace {

const Json& emptyObject() {
  static const Json instance = Json::object();
  return instance;
}

bool reportsConnectionError(const Error& error) {
  const Json* flag = jsonMember(error.userInfo, kErrorIsConnectionErrorKey);
  if (!flag) return false;
  if (flag->is_boolean()) return flag->get<bool>();
  if (flag->is_number_integer()) return flag->get<long long>() != 0;
  return false;
}

/// Whether `value` nests arrays and objects deeper than `limit` levels.
/// Iterative, so that any depth can be measured.
bool nestsDeeperThan(const Json& value, std::size_t limit) {
  std::vector<std::pair<const Json*, std::size_t>> pending{{&value, 0}};
  while (!pending.empty()) {
    const auto [current, depth] = pending.back();
    pending.pop_back();
    if (!current->is_structured()) continue;
    if (depth >= limit) return true;
    for (const Json& child : *current) pending.emplace_back(&child, depth + 1);
  }
  return false;
}

/// The body as JSON text for a log line. The serializer recurses, so a body
/// nested absurdly deep is summarised instead of written out.
std::string logText(const Json& body) {
  constexpr std::size_t kMaxLoggedDepth = 256;
  if (nestsDeeperThan(body, kMaxLoggedDepth)) return "<JSON nested deeper than 256 levels>";
  return body.dump(-1, ' ', false, Json::error_handler_t::replace);
}

/// The first element of the body's "errors" array when it is a dictionary of
/// strings; null otherwise.
const Json* firstErrorElement(const Json& body) {
  const Json* errors = jsonMember(body, ErrorConstants::kErrorsKey);
  if (!errors || !errors->is_array() || errors->empty()) return nullptr;
  const Json& first = errors->front();
  return isStringDictionary(first) ? &first : nullptr;
}

/// A decimal integer with an optional sign and nothing else.
std::optional<long long> parseDecimal(std::string_view text) {
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
  if (text.empty() || text.front() == '+') return std::nullopt;
  long long value = 0;
  const auto [end, status] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (status != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

/// The textual form of a body value: strings as they are, integers in decimal;
/// anything else has no decimal form.
std::optional<long long> decimalValue(const Json& value) {
  if (value.is_string()) return parseDecimal(value.get_ref<const std::string&>());
  if (value.is_number_integer()) return value.get<long long>();
  return std::nullopt;
}

/// The case for the numeric code under `errorCodeKey`; none when the body has
/// nothing there, so the caller can try its next key.
std::optional<APError> validateEvasError(const Json& jsonResponse, std::string_view errorCodeKey) {
  const Json* value = jsonMember(jsonResponse, errorCodeKey);
  if (!value) return std::nullopt;
  const std::optional<long long> code = decimalValue(*value);
  if (!code) return APError::GeneralEVASServiceError;
  switch (*code) {
    case static_cast<long long>(EVasErrorCode::eVasInternalServiceError): return APError::INTERNAL_SERVICE_ERROR;
    case static_cast<long long>(EVasErrorCode::eVasServiceUnavailable): return APError::ServiceErrorNoRetry;
    case static_cast<long long>(EVasErrorCode::eVasCommunicationError): return APError::COMMUNICATION_ERROR;
    default: return APError::GeneralEVASServiceError;
  }
}

}  // namespace

std::optional<APError> APBookingServiceError(const Error& error) {
  if (reportsConnectionError(error)) return APError::ConnectionError;

  const Json* body = jsonMember(error.userInfo, kErrorJsonResponseKey);
  if (!body) return std::nullopt;
  const Json* element = firstErrorElement(*body);
  if (!element) return std::nullopt;

  if (const std::string* typeId = jsonString(*element, ErrorConstants::kTypeIdKey)) {
    if (*typeId == ErrorConstants::system_unavailable_typeid) return APError::SYSTEM_UNAVAILABLE;
    if (*typeId == ErrorConstants::unexpected_error_typeid) return APError::UNEXPECTED_ERROR;
    if (*typeId == ErrorConstants::system_error_typeid) return APError::SYSTEM_ERROR;
    if (*typeId == ErrorConstants::payment_declined_typeid) return APError::PAYMENT_DECLINED;
    // Same text as the declined code above, so this never matches.
    if (*typeId == ErrorConstants::payment_authorizer_offline_typeid) return APError::PAYMENT_AUTHORIZER_OFFLINE;
    if (*typeId == ErrorConstants::payment_bad_expiration_date_typeid) return APError::PAYMENT_BAD_EXPIRATION_DATE;
  }

  if (const std::string* systemCode = jsonString(*element, ErrorConstants::kSystemErrorCodeKey)) {
    for (APError residency : {APError::NonFLResident, APError::NonSCAResident, APError::NonCAResident}) {
      if (*systemCode == errorCode(residency)) return residency;
    }
  }
  return APError::GeneralBookingServiceError;
}

bool isBookingErrorBody(const Json& body) { return firstErrorElement(body) != nullptr; }

std::optional<APError> APEvasError(const Error& error) {
  const Json* member = jsonMember(error.userInfo, kErrorJsonResponseKey);
  const Json& body = member && member->is_object() ? *member : emptyObject();

  if (const Json* element = firstErrorElement(body)) {
    if (const std::string* typeId = jsonString(*element, ErrorConstants::kTypeIdKey)) {
      if (*typeId == ErrorConstants::system_unavailable_typeid) return APError::SYSTEM_UNAVAILABLE;
      if (*typeId == ErrorConstants::unexpected_error_typeid) return APError::UNEXPECTED_ERROR;
      if (*typeId == ErrorConstants::system_error_typeid) return APError::SYSTEM_ERROR;
    }
  }

  for (std::string_view key :
       {ErrorConstants::kErrorCodeKey, ErrorConstants::kStatusCodeKey, ErrorConstants::kTypeIdKey}) {
    if (auto mapped = validateEvasError(body, key)) return mapped;
  }

  KTVCPrintUtility::debugPrint("EVAS Error code not found on JSON response: " + logText(body),
                               LogSite{"Classes/Errors/Error+APError", "APEvasError", __LINE__});
  return APError::GeneralEVASServiceError;
}

Error toError(APError error) { return Error{kAPErrorDomain, rawValue(error), Json()}; }

std::optional<APError> commerceErrorOf(const Error& error) {
  if (error.domain == kAPErrorDomain) {
    if (auto commerceError = apErrorFromRawValue(static_cast<int>(error.code))) return commerceError;
  }
  return APBookingServiceError(error);
}

}  // namespace varnel
