#pragma once
// Turning a failed service call's platform error into a commerce error, and a
// commerce error into a platform error.

#include <optional>

#include "varnel/errors/APError.h"
#include "varnel/platform/Error.h"

namespace varnel {

/// Domain of an APError seen as a platform error.
inline constexpr const char* kAPErrorDomain = "Varnel.APError";

/// The case for an error from the booking services (order, contract,
/// checkout): ConnectionError for a transport failure, otherwise read from the
/// "jsonResponse" body; none when there is no usable body.
std::optional<APError> APBookingServiceError(const Error& error);

/// Whether `body` is a booking error body, one the booking-service mapping
/// reads: an object whose "errors" array starts with a dictionary of strings.
bool isBookingErrorBody(const Json& body);

/// The case for an error from the entitlement-validation services; a body it
/// cannot read gives GeneralEVASServiceError.
std::optional<APError> APEvasError(const Error& error);

/// The commerce error as a platform error: domain "Varnel.APError", code = raw
/// value, no user information.
Error toError(APError error);

/// The commerce error a failed booking call ends with: the case itself when
/// `error` is one (toError), else the booking-service mapping.
std::optional<APError> commerceErrorOf(const Error& error);

}  // namespace varnel
