#pragma once
// Header fields that a request takes from outside its own making: the
// tester's routing header from the settings store, and the override headers
// a caller passes (the test and mock headers). addUntrustedHeaders is the one
// door they come through, and it holds the rules:
//  - a name must be an HTTP token, and a value must hold no CR, LF or NUL
//    (either could end the field and smuggle in others);
//  - Authorization, Host, Content-Type, Content-Length and Idempotency-Key
//    are never added or replaced (names compared without regard to case).
// A refused header is left out with one error line naming its source and its
// name, never its value.

#include <optional>
#include <string>
#include <string_view>

#include "varnel/standalone/network/HttpExchange.h"

namespace varnel::standalone {

/// Why the header may not be added ("its value holds CR, LF or NUL", ...);
/// none when it may.
std::optional<std::string> untrustedHeaderRefusal(std::string_view name, std::string_view value);

/// 1 to 128 letters, digits, '-' or '_': a key a caller may give its own write.
bool isPlainIdempotencyKey(std::string_view key);

/// Adds `headers` to `request` (replacing fields of the same name) except
/// those the rules refuse; `source` names where they came from in the log.
void addUntrustedHeaders(HttpRequest& request, const HTTPHeaderFields& headers, std::string_view source);

}  // namespace varnel::standalone
