#pragma once
// How the tool reports a commerce error: everything a guest (and a developer)
// learns about it at one park, as aligned lines or one JSON object.

#include <optional>
#include <string>
#include <string_view>

#include "varnel/errors/APError.h"
#include "varnel/host/KTVCParkResortContext.h"
#include "varnel/platform/Json.h"

namespace varnel::cli {

/// JSON whose keys keep the order a reader expects them in.
using OrderedJson = nlohmann::ordered_json;

/// A resort value given on the command line; a UsageError for anything else.
KTVCResortChoice parsePark(const std::string& text);

/// "connection", "service", "transactional" or "validation".
std::string_view kindName(APError error);

/// {"case", "rawValue", "kind", "errorCode", "message", "phone"}.
OrderedJson describeError(APError error, KTVCResortChoice park);

std::string dumpJson(const OrderedJson& value);

/// One "label: value" line per member of describeError's object.
void printDescription(const OrderedJson& described);

}  // namespace varnel::cli
