#include "JsonShapes.h"

#include <algorithm>
#include <cstdint>

#include <unicode/utf8.h>

namespace varnel::services_detail {

const Json* objectMember(const Json& object, std::string_view key) {
  const Json* member = jsonMember(object, key);
  return member && member->is_object() ? member : nullptr;
}

const Json* stringDictionaryMember(const Json& object, std::string_view key) {
  const Json* member = jsonMember(object, key);
  return member && isStringDictionary(*member) ? member : nullptr;
}

const Json* objectArrayMember(const Json& object, std::string_view key) {
  const Json* member = jsonMember(object, key);
  if (!member || !member->is_array()) return nullptr;
  const bool allObjects =
      std::all_of(member->begin(), member->end(), [](const Json& element) { return element.is_object(); });
  return allObjects ? member : nullptr;
}

std::optional<std::string> stringMember(const Json& object, std::string_view key) {
  if (const std::string* text = jsonString(object, key)) return *text;
  return std::nullopt;
}

std::string stringOrEmpty(const Json& object, std::string_view key) {
  const std::string* text = jsonString(object, key);
  return text ? *text : std::string();
}

std::optional<std::vector<std::string>> stringArrayMember(const Json& object, std::string_view key) {
  const Json* member = jsonMember(object, key);
  if (!member || !member->is_array()) return std::nullopt;
  std::vector<std::string> texts;
  texts.reserve(member->size());
  for (const Json& element : *member) {
    if (!element.is_string()) return std::nullopt;
    texts.push_back(element.get_ref<const std::string&>());
  }
  return texts;
}

namespace {

bool isHexDigit(char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'); }

int hexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return c - 'A' + 10;
}

bool isAlpha(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

// Characters a URL may hold as they stand: unreserved and reserved ones.
bool isUrlCharacter(char c) {
  if (isAlpha(c) || (c >= '0' && c <= '9')) return true;
  return std::string_view("-._~:/?#[]@!$&'()*+,;=").find(c) != std::string_view::npos;
}

// A URL is non-empty text of URL characters and well-formed percent escapes.
bool isUrl(std::string_view text) {
  if (text.empty()) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '%') {
      if (i + 2 >= text.size() || !isHexDigit(text[i + 1]) || !isHexDigit(text[i + 2])) return false;
      i += 2;
    } else if (!isUrlCharacter(text[i])) {
      return false;
    }
  }
  return true;
}

bool isValidUtf8(std::string_view bytes) {
  const auto* data = reinterpret_cast<const std::uint8_t*>(bytes.data());
  const auto length = static_cast<std::int32_t>(bytes.size());
  std::int32_t offset = 0;
  while (offset < length) {
    UChar32 c = 0;
    U8_NEXT(data, offset, length, c);
    if (c < 0) return false;
  }
  return true;
}

// Percent escapes decoded, unless the result would not be UTF-8 text.
std::string percentDecoded(std::string_view component) {
  std::string decoded;
  decoded.reserve(component.size());
  for (std::size_t i = 0; i < component.size(); ++i) {
    if (component[i] == '%') {
      decoded += static_cast<char>(hexValue(component[i + 1]) * 16 + hexValue(component[i + 2]));
      i += 2;
    } else {
      decoded += component[i];
    }
  }
  return isValidUtf8(decoded) ? decoded : std::string(component);
}

// The path of a URL: without fragment, query, scheme and authority.
std::string_view pathOf(std::string_view url) {
  url = url.substr(0, url.find('#'));
  url = url.substr(0, url.find('?'));
  const auto colon = url.find(':');
  if (colon != std::string_view::npos && colon > 0 && isAlpha(url[0])) {
    const auto scheme = url.substr(0, colon);
    const bool isScheme = std::all_of(scheme.begin(), scheme.end(), [](char c) {
      return isAlpha(c) || (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.';
    });
    if (isScheme) url.remove_prefix(colon + 1);
  }
  if (url.starts_with("//")) {
    url.remove_prefix(2);
    const auto slash = url.find('/');
    url = slash == std::string_view::npos ? std::string_view() : url.substr(slash);
  }
  return url;
}

}  // namespace

std::optional<std::string> lastPathComponent(std::string_view text) {
  if (!isUrl(text)) return std::nullopt;
  std::string_view path = pathOf(text);
  if (path.empty()) return std::string();
  const auto lastNonSlash = path.find_last_not_of('/');
  if (lastNonSlash == std::string_view::npos) return std::string("/");
  path = path.substr(0, lastNonSlash + 1);
  const auto slash = path.rfind('/');
  return percentDecoded(slash == std::string_view::npos ? path : path.substr(slash + 1));
}

}  // namespace varnel::services_detail
