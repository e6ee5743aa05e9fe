#pragma once
// What the networking service writes about a request: method, host and path
// and the outcome, at debug level. Never a body, a query string, an
// Authorization value, a card number or a security code: header values are
// shown only for an allow-list of names, every other one as "REDACTED".

#include <string>
#include <string_view>

#include "varnel/standalone/network/HttpExchange.h"

namespace varnel::standalone {

/// "POST 127.0.0.1:8080/commerce/orders/ord-1/express-checkout": the URL
/// without scheme, user information, query or fragment.
std::string loggableTarget(std::string_view url);

/// Whether a header's value may be logged.
bool isLoggableHeader(std::string_view name);

/// "Name: value" lines joined by "; ", values outside the allow-list "REDACTED".
std::string loggableHeaders(const HTTPHeaderFields& headers);

/// "GET host/path -> 200 [Accept: application/json; Authorization: REDACTED]"
/// or "GET host/path (attempt 2) -> failed: reason [...]": the request's
/// headers as loggableHeaders() shows them.
std::string requestLogLine(const HttpRequest& request, const HttpOutcome& outcome, int attempt);

}  // namespace varnel::standalone
