#include "varnel/platform/DefaultsValue.h"

#include <cmath>
#include <ctime>
#include <exception>

#include <fmt/format.h>
#include <openssl/evp.h>

namespace varnel {
namespace {

template <typename... Handlers>
struct Overloaded : Handlers... {
  using Handlers::operator()...;
};
// Spelled out for compilers without aggregate deduction (clang 14).
template <typename... Handlers>
Overloaded(Handlers...) -> Overloaded<Handlers...>;

std::string base64(const DefaultsData& data) {
  std::string text(4 * ((data.size() + 2) / 3) + 1, '\0');
  const int length = EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()), data.data(),
                                     static_cast<int>(data.size()));
  text.resize(static_cast<std::size_t>(length));
  return text;
}

std::string hex(const DefaultsData& data) {
  std::string text;
  text.reserve(data.size() * 2);
  for (auto byte : data) text += fmt::format("{:02x}", byte);
  return text;
}

bool unhex(const std::string& text, DefaultsData& out) {
  if (text.size() % 2) return false;
  auto nibble = [](char c) -> int {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
  };
  out.clear();
  out.reserve(text.size() / 2);
  for (std::size_t i = 0; i < text.size(); i += 2) {
    const int high = nibble(text[i]), low = nibble(text[i + 1]);
    if (high < 0 || low < 0) return false;
    out.push_back(static_cast<std::uint8_t>(high * 16 + low));
  }
  return true;
}

}  // namespace

std::string rfc3339(const Date& date) {
  // 0001-01-01T00:00:00Z to 9999-12-31T23:59:59Z; beyond them, the seconds.
  constexpr double kFirst = -62135596800.0, kLast = 253402300799.0;
  const double seconds = std::floor(date.timeIntervalSince1970);
  if (!(seconds >= kFirst && seconds <= kLast)) return fmt::format("{}", date.timeIntervalSince1970);
  const std::time_t time = static_cast<std::time_t>(seconds);
  std::tm parts{};
  gmtime_r(&time, &parts);
  return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}Z", parts.tm_year + 1900, parts.tm_mon + 1,
                     parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec);
}

Json toDisplayJson(const DefaultsValue& value) {
  return std::visit(
      Overloaded{
          [](std::monostate) -> Json { return nullptr; },
          [](bool v) -> Json { return v; },
          [](std::int64_t v) -> Json { return v; },
          [](double v) -> Json { return v; },
          [](const std::string& v) -> Json { return v; },
          [](const Date& v) -> Json { return rfc3339(v); },
          [](const DefaultsData& v) -> Json { return base64(v); },
          [](const DefaultsArray& v) -> Json {
            Json array = Json::array();
            for (const auto& element : v) array.push_back(toDisplayJson(element));
            return array;
          },
          [](const DefaultsDictionary& v) -> Json {
            Json object = Json::object();
            for (const auto& [key, element] : v) object[key] = toDisplayJson(element);
            return object;
          },
      },
      value.storage);
}

Json encodeDefaultsValue(const DefaultsValue& value) {
  return std::visit(
      Overloaded{
          [](std::monostate) -> Json { return nullptr; },
          [](bool v) -> Json { return {{"bool", v}}; },
          [](std::int64_t v) -> Json { return {{"int", v}}; },
          [](double v) -> Json { return {{"double", v}}; },
          [](const std::string& v) -> Json { return {{"string", v}}; },
          [](const Date& v) -> Json { return {{"date", v.timeIntervalSince1970}}; },
          [](const DefaultsData& v) -> Json { return {{"data", hex(v)}}; },
          [](const DefaultsArray& v) -> Json {
            Json array = Json::array();
            for (const auto& element : v) array.push_back(encodeDefaultsValue(element));
            return {{"array", array}};
          },
          [](const DefaultsDictionary& v) -> Json {
            Json object = Json::object();
            for (const auto& [key, element] : v) object[key] = encodeDefaultsValue(element);
            return {{"dict", object}};
          },
      },
      value.storage);
}

bool decodeDefaultsValue(const Json& encoded, DefaultsValue& out) {
  if (encoded.is_null()) {
    out = DefaultsValue();
    return true;
  }
  if (!encoded.is_object() || encoded.size() != 1) return false;
  const auto first = encoded.begin();
  const std::string& kind = first.key();
  const Json& payload = first.value();
  if (kind == "bool" && payload.is_boolean()) {
    out = DefaultsValue(payload.get<bool>());
  } else if (kind == "int" && payload.is_number_integer()) {
    out = DefaultsValue(payload.get<std::int64_t>());
  } else if (kind == "double" && payload.is_number()) {
    out = DefaultsValue(payload.get<double>());
  } else if (kind == "string" && payload.is_string()) {
    out = DefaultsValue(payload.get<std::string>());
  } else if (kind == "date" && payload.is_number()) {
    out = DefaultsValue(Date{payload.get<double>()});
  } else if (kind == "data" && payload.is_string()) {
    DefaultsData data;
    if (!unhex(payload.get<std::string>(), data)) return false;
    out = DefaultsValue(std::move(data));
  } else if (kind == "array" && payload.is_array()) {
    DefaultsArray array;
    for (const auto& element : payload) {
      if (!decodeDefaultsValue(element, array.emplace_back())) return false;
    }
    out = DefaultsValue(std::move(array));
  } else if (kind == "dict" && payload.is_object()) {
    DefaultsDictionary dictionary;
    for (const auto& [key, element] : payload.items()) {
      if (!decodeDefaultsValue(element, dictionary[key])) return false;
    }
    out = DefaultsValue(std::move(dictionary));
  } else {
    return false;
  }
  return true;
}

std::optional<std::string> defaultsValueText(const DefaultsValue& value) {
  try {
    std::string text = encodeDefaultsValue(value).dump();
    const auto back = parseDefaultsValueText(text);
    if (back.value && *back.value == value) return text;
  } catch (const std::exception&) {
    // nlohmann::json refuses to write text that is not UTF-8.
  }
  return std::nullopt;
}

DefaultsValueParse parseDefaultsValueText(std::string_view text) {
  const JsonParse encoded = parseJson(text);
  if (!encoded) return {std::nullopt, encoded.refusal};
  DefaultsValue value;
  if (!decodeDefaultsValue(*encoded.value, value)) return {std::nullopt, "not a value this store wrote"};
  return {std::move(value), {}};
}

}  // namespace varnel
