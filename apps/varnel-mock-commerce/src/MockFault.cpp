#include "varnel/mock/MockFault.h"

#include <algorithm>
#include <charconv>

namespace varnel::mock {
namespace {

std::optional<int> wholeNumber(std::string_view text, int low, int high) {
  int value = 0;
  const char* end = text.data() + text.size();
  auto [stop, failure] = std::from_chars(text.data(), end, value);
  if (text.empty() || failure != std::errc() || stop != end || value < low || value > high) return std::nullopt;
  return value;
}

Error badOption(std::string reason) { return mockCommerceError(MockCommerceErrorCode::badOption, std::move(reason)); }

struct Simple {
  std::string_view name;
  FaultKind kind;
};
constexpr Simple kSimpleKinds[] = {{"reset", FaultKind::reset},         {"reset-after", FaultKind::resetAfter},
                                   {"empty", FaultKind::empty},         {"malformed", FaultKind::malformed},
                                   {"array", FaultKind::array}};

// Splits "LEFT=RIGHT" at the first '='; both sides non-empty.
std::optional<std::pair<std::string_view, std::string_view>> splitAssignment(std::string_view text) {
  auto equals = text.find('=');
  if (equals == std::string_view::npos || equals == 0 || equals + 1 == text.size()) return std::nullopt;
  return std::pair{text.substr(0, equals), text.substr(equals + 1)};
}

}  // namespace

Error mockCommerceError(MockCommerceErrorCode code, std::string reason) {
  return Error{kMockCommerceErrorDomain, static_cast<long>(code), Json{{"reason", std::move(reason)}}};
}

bool isMockEndpointKey(std::string_view key) {
  return std::find(kMockEndpointKeys.begin(), kMockEndpointKeys.end(), key) != kMockEndpointKeys.end();
}

Result<Fault> Fault::parse(std::string_view text) {
  Fault fault;
  std::string_view kind = text;
  if (auto star = text.rfind('*'); star != std::string_view::npos) {
    auto count = wholeNumber(text.substr(star + 1), 1, 1'000'000);
    if (!count) return badOption("fault \"" + std::string(text) + "\": *N needs a whole number above 0");
    fault.remaining = *count;
    kind = text.substr(0, star);
  }
  for (const auto& simple : kSimpleKinds) {
    if (kind == simple.name) {
      fault.kind = simple.kind;
      return fault;
    }
  }
  auto colon = kind.find(':');
  std::string_view name = kind.substr(0, colon);
  std::string_view argument = colon == std::string_view::npos ? std::string_view{} : kind.substr(colon + 1);
  if ((name == "booking" || name == "residency") && !argument.empty()) {
    fault.kind = name == "booking" ? FaultKind::booking : FaultKind::residency;
    fault.text = std::string(argument);
    return fault;
  }
  if (name == "status" || name == "delay") {
    auto number = name == "status" ? wholeNumber(argument, 200, 599) : wholeNumber(argument, 0, 600'000);
    if (number) {
      fault.kind = name == "status" ? FaultKind::status : FaultKind::delay;
      fault.number = *number;
      return fault;
    }
  }
  return badOption("fault \"" + std::string(text) +
                   "\": expected booking:TYPEID, residency:CODE, status:CODE (200-599), delay:MS, reset, "
                   "reset-after, empty, malformed or array, optionally followed by *N");
}

std::string Fault::describe() const {
  std::string written;
  switch (kind) {
    case FaultKind::booking: written = "booking:" + text; break;
    case FaultKind::residency: written = "residency:" + text; break;
    case FaultKind::status: written = "status:" + std::to_string(number); break;
    case FaultKind::delay: written = "delay:" + std::to_string(number); break;
    default:
      for (const auto& simple : kSimpleKinds) {
        if (simple.kind == kind) written = std::string(simple.name);
      }
  }
  // Appended piece by piece: GCC 12 at -O3 reports a false overlap (-Wrestrict) in "*" + text.
  if (remaining) written.append("*").append(std::to_string(*remaining));
  return written;
}

Result<EndpointFault> EndpointFault::parse(std::string_view text) {
  auto parts = splitAssignment(text);
  if (!parts) return badOption("fault \"" + std::string(text) + "\": expected KEY=KIND");
  if (!isMockEndpointKey(parts->first)) {
    return badOption("fault \"" + std::string(text) + "\": unknown endpoint key \"" + std::string(parts->first) + "\"");
  }
  auto fault = Fault::parse(parts->second);
  if (!fault) return fault.error();
  return EndpointFault{std::string(parts->first), std::move(fault.value())};
}

Result<RouteFault> RouteFault::parse(std::string_view text) {
  auto parts = splitAssignment(text);
  if (!parts) return badOption("route fault \"" + std::string(text) + "\": expected VALUE=KIND");
  auto fault = Fault::parse(parts->second);
  if (!fault) return fault.error();
  return RouteFault{std::string(parts->first), std::move(fault.value())};
}

Result<Route> Route::parse(std::string_view text) {
  auto parts = splitAssignment(text);
  auto comma = parts ? parts->second.rfind(',') : std::string_view::npos;
  if (comma == std::string_view::npos || comma == 0 || comma + 1 == parts->second.size()) {
    return badOption("route \"" + std::string(text) + "\": expected NAME=ENDPOINT,HEADER");
  }
  return Route{std::string(parts->first), std::string(parts->second.substr(0, comma)),
               std::string(parts->second.substr(comma + 1))};
}

}  // namespace varnel::mock
