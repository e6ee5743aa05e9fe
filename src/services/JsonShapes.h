#pragma once
// Typed reads of one member of a JSON object, as the answer parsers need them:
// each gives nothing when the member is missing or has another shape, and
// none of them throws.

#include <optional>
#include <source_location>
#include <string>
#include <string_view>
#include <vector>

#include "varnel/host/KTVCPrintUtility.h"
#include "varnel/platform/Json.h"

namespace varnel::services_detail {

/// The member when it is an object.
const Json* objectMember(const Json& object, std::string_view key);

/// The member when it is an object all of whose values are strings.
const Json* stringDictionaryMember(const Json& object, std::string_view key);

/// The member when it is an array all of whose elements are objects.
const Json* objectArrayMember(const Json& object, std::string_view key);

/// The member's text when it is a string.
std::optional<std::string> stringMember(const Json& object, std::string_view key);

/// The member's text when it is a string, else empty text.
std::string stringOrEmpty(const Json& object, std::string_view key);

/// The member's elements when it is an array all of whose elements are strings.
std::optional<std::vector<std::string>> stringArrayMember(const Json& object, std::string_view key);

/// The last path component of a URL, or none when `text` is not a URL.
std::optional<std::string> lastPathComponent(std::string_view text);

/// A log site of the module: its file and function, with this line.
inline LogSite moduleSite(std::string_view file, std::string_view function,
                          std::source_location location = std::source_location::current()) {
  return LogSite{std::string(file), std::string(function), static_cast<int>(location.line())};
}

/// The module file of the create-order parser, whose groups live in two files.
inline constexpr std::string_view kCreateOrderParserFile = "Classes/Parser/VNLParseCreateOrderResponse";

}  // namespace varnel::services_detail
