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
