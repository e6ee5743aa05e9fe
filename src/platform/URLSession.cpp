#include "varnel/platform/URLSession.h"

#include <algorithm>
#include <cctype>

namespace varnel {

bool HeaderNameLess::operator()(std::string_view a, std::string_view b) const {
  return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), [](unsigned char x, unsigned char y) {
    return std::tolower(x) < std::tolower(y);
  });
}

std::optional<std::string> URLRequest::valueForHTTPHeaderField(std::string_view headerField) const {
  auto it = allHTTPHeaderFields.find(headerField);
  if (it == allHTTPHeaderFields.end()) return std::nullopt;
  return it->second;
}

}  // namespace varnel

namespace varnel {
namespace {

bool isShownHeader(std::string_view name) {
  static const HTTPHeaderFields::key_compare less;
  for (const std::string_view shown : {"Content-Type", "Content-Length", "Date", "Server", "Cache-Control"}) {
    if (!less(name, shown) && !less(shown, name)) return true;
  }
  return false;
}

}  // namespace

std::string describe(const URLResponse& response) {
  std::string text = "<URLResponse> { URL: " + response.url + " }";
  if (response.statusCode) text += " { Status Code: " + std::to_string(*response.statusCode) + ",";
  text += " Headers {";
  for (auto it = response.allHeaderFields.begin(); it != response.allHeaderFields.end(); ++it) {
    text += it == response.allHeaderFields.begin() ? " " : ", ";
    text += "\"" + it->first + "\": \"" + (isShownHeader(it->first) ? it->second : std::string("REDACTED")) + "\"";
  }
  text += " }";
  if (response.statusCode) text += " }";
  return text;
}

}  // namespace varnel
