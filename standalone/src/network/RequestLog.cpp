#include "varnel/standalone/network/RequestLog.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace varnel::standalone {

std::string loggableTarget(std::string_view url) {
  if (auto scheme = url.find("://"); scheme != std::string_view::npos) url.remove_prefix(scheme + 3);
  url = url.substr(0, url.find_first_of("?#"));
  const auto pathStart = url.find('/');
  const auto authority = url.substr(0, pathStart);
  if (auto at = authority.rfind('@'); at != std::string_view::npos) url.remove_prefix(at + 1);
  return std::string(url);
}

bool isLoggableHeader(std::string_view name) {
  static constexpr std::array<std::string_view, 9> kAllowed = {
      "accept", "content-type", "content-length", "user-agent", "idempotency-key",
      "x-orvane-internal-tkxservicepath", "x-orvane-internal-panlook-env", "x-orvane-internal-mock-ap", "date"};
  std::string lower(name);
  std::transform(lower.begin(), lower.end(), lower.begin(), [](unsigned char c) { return std::tolower(c); });
  return std::find(kAllowed.begin(), kAllowed.end(), lower) != kAllowed.end();
}

std::string loggableHeaders(const HTTPHeaderFields& headers) {
  std::string text;
  for (const auto& [name, value] : headers) {
    if (!text.empty()) text += "; ";
    text += name + ": " + (isLoggableHeader(name) ? value : std::string("REDACTED"));
  }
  return text;
}

std::string requestLogLine(const HttpRequest& request, const HttpOutcome& outcome, int attempt) {
  std::string line = request.method + " " + loggableTarget(request.url);
  if (attempt > 1) line += " (attempt " + std::to_string(attempt) + ")";
  if (outcome.failure) {
    line += " -> failed: " + outcome.failure->message;
  } else {
    line += " -> " + std::to_string(outcome.status.value_or(0));
  }
  return line + " [" + loggableHeaders(request.headers) + "]";
}

}  // namespace varnel::standalone
