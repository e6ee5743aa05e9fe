#pragma once
// What the four commerce requests share: the tester switches, endpoint
// resolution, the ENV2 headers, the override-header tables and the mapping of
// a failed booking request onto a commerce error.

#include <optional>
#include <string>
#include <string_view>

#include "JsonShapes.h"
#include "varnel/host/KTVCPrintUtility.h"
#include "varnel/host/KTVRPrivateDataService.h"
#include "varnel/platform/URLSession.h"

namespace varnel::services_detail {

/// The user-defaults switch under `key`; off when there is no store.
bool switchIsOn(std::string_view key);

/// The signed-in guest's identifier; none when nobody (or no service) is there.
std::optional<std::string> signedInKuid();

/// The environment's value for `key` with `tokens` when it is a string; none
/// when there is no environment or the value is of another kind.
std::optional<std::string> environmentString(std::string_view key, const KTVRTokens& tokens = {});

/// The ENV2 test headers: service host, ticketing host and path, and (for the
/// create-order and contract requests) the environment name.
HTTPHeaderFields env2Headers(bool withEnvironmentName);

/// Writes `headers` into the create-order table (entries of other names stay).
void mergeCreateOrderOverriddenHeaders(const HTTPHeaderFields& headers);
/// Replaces the whole express-checkout table with `headers`.
void replaceExpressCheckoutOverriddenHeaders(HTTPHeaderFields headers);
/// Sets one entry of the express-checkout table.
void setExpressCheckoutOverriddenHeader(std::string_view name, std::string value);

/// `block` when it holds a function, else one that does nothing.
KTVRSuccessBlock orNothing(KTVRSuccessBlock block);
KTVRFailureBlock orNothing(KTVRFailureBlock block);

/// Calls `failure` with the booking-service mapping of `error` as a platform
/// error; with `error` itself when the mapping gives none; with none when
/// there was no error.
void failWithBookingError(const KTVRFailureBlock& failure, const std::optional<Error>& error);

/// The log line of a request made by nobody.
inline constexpr std::string_view kLoginFirstMessage = "Please, login first";

}  // namespace varnel::services_detail
