#include "varnel/standalone/network/HeaderRules.h"

#include <strings.h>

#include <array>

#include "varnel/host/KTVCPrintUtility.h"

namespace varnel::standalone {
namespace {

constexpr std::array<std::string_view, 5> kReservedHeaders = {"Authorization", "Host", "Content-Type",
                                                              "Content-Length", "Idempotency-Key"};

/// RFC 9110 token characters.
bool isTokenCharacter(unsigned char c) {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
         std::string_view("!#$%&'*+-.^_`|~").find(static_cast<char>(c)) != std::string_view::npos;
}

bool isToken(std::string_view text) {
  if (text.empty()) return false;
  for (unsigned char c : text) {
    if (!isTokenCharacter(c)) return false;
  }
  return true;
}

}  // namespace

std::optional<std::string> untrustedHeaderRefusal(std::string_view name, std::string_view value) {
  if (!isToken(name)) return "its name is not a header name";
  if (value.find_first_of(std::string_view("\r\n\0", 3)) != std::string_view::npos) {
    return "its value holds CR, LF or NUL";
  }
  for (std::string_view reserved : kReservedHeaders) {
    if (name.size() == reserved.size() && strncasecmp(name.data(), reserved.data(), name.size()) == 0) {
      return "the request sets " + std::string(reserved) + " itself";
    }
  }
  return std::nullopt;
}

void addUntrustedHeaders(HttpRequest& request, const HTTPHeaderFields& headers, std::string_view source) {
  for (const auto& [name, value] : headers) {
    if (auto refusal = untrustedHeaderRefusal(name, value)) {
      const std::string shown = isToken(name) ? name : std::string("(unprintable)");
      KTVCPrintUtility::errorPrint("Refused the header " + shown + " of " + std::string(source) + ": " + *refusal);
      continue;
    }
    request.headers.insert_or_assign(name, value);
  }
}

bool isPlainIdempotencyKey(std::string_view key) {
  if (key.empty() || key.size() > 128) return false;
  for (const char c : key) {
    const bool plain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '_';
    if (!plain) return false;
  }
  return true;
}

}  // namespace varnel::standalone
