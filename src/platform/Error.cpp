#include "varnel/platform/Error.h"

namespace varnel {

std::string localizedDescription(const Error& error) {
  if (const std::string* text = jsonString(error.userInfo, kErrorLocalizedDescriptionKey)) return *text;
  return "The operation couldn\u2019t be completed. (" + error.domain + " error " + std::to_string(error.code) + ".)";
}

std::string describe(const Error& error) {
  return "Error Domain=" + error.domain + " Code=" + std::to_string(error.code) + " \"" + localizedDescription(error) +
         "\"";
}

}  // namespace varnel
