#include "OptionChecks.h"

#include <curl/curl.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <memory>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "varnel/host/KTVCParkResortContext.h"
#include "varnel/standalone/GuestDataFile.h"

namespace varnel::cli {
namespace {

std::set<const CLI::Option*>& emptyAllowed() {
  static std::set<const CLI::Option*> options;
  return options;
}

/// Refuses an empty value; inserted before every other check of an option.
CLI::Validator nonEmpty() {
  return CLI::Validator([](std::string& value) { return value.empty() ? "an empty value is not allowed" : ""; },
                        "", "NON_EMPTY");
}

struct Resort {
  KTVCResortChoice value;
  const char* name;
};

CLI::Validator parkOf(std::vector<Resort> accepted, std::string description) {
  std::string list;
  for (const auto& resort : accepted) {
    list += (list.empty() ? "" : ", ") + std::to_string(resort.value) + " (" + resort.name + ")";
  }
  return CLI::Validator(
      [accepted, list](std::string& text) -> std::string {
        int park = 0;
        const char* end = text.data() + text.size();
        const auto [stop, status] = std::from_chars(text.data(), end, park);
        const bool known = status == std::errc() && stop == end &&
                           std::any_of(accepted.begin(), accepted.end(),
                                       [park](const Resort& resort) { return resort.value == park; });
        return known ? "" : echoed(text) + " is not a resort value here; accepted values: " + list;
      },
      std::move(description), "PARK");
}

/// One part of a parsed URL, or none.
std::optional<std::string> urlPart(CURLU* url, CURLUPart part) {
  char* text = nullptr;
  if (curl_url_get(url, part, &text, 0) != CURLUE_OK || !text) return std::nullopt;
  std::string copy(text);
  curl_free(text);
  return copy;
}

std::string lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
  return text;
}

/// Why `text` is no commerce server URL; empty when it is one, and then
/// `text` has a lower-case scheme.
std::string checkServerUrl(std::string& text) {
  const std::string refused = echoed(text) + " is not a commerce server URL: ";
  const std::unique_ptr<CURLU, void (*)(CURLU*)> url(curl_url(), &curl_url_cleanup);
  if (!url || curl_url_set(url.get(), CURLUPART_URL, text.c_str(), 0) != CURLUE_OK) {
    return refused + "expected http://HOST[:PORT][/PATH] or https://...";
  }
  const auto scheme = urlPart(url.get(), CURLUPART_SCHEME);
  if (!scheme || (lower(*scheme) != "http" && lower(*scheme) != "https")) {
    return refused + "the scheme is not http or https";
  }
  const auto host = urlPart(url.get(), CURLUPART_HOST);
  if (!host || host->empty()) return refused + "no host";
  if (const auto port = urlPart(url.get(), CURLUPART_PORT)) {
    int number = 0;
    const auto [stop, status] = std::from_chars(port->data(), port->data() + port->size(), number);
    if (status != std::errc() || stop != port->data() + port->size() || number < 1 || number > 65535) {
      return refused + "the port is not between 1 and 65535";
    }
  }
  if (urlPart(url.get(), CURLUPART_USER) || urlPart(url.get(), CURLUPART_PASSWORD)) {
    return refused + "a user name or password does not belong in it";
  }
  if (text.find_first_of("?#") != std::string::npos) return refused + "a query or fragment does not belong in it";
  const auto colon = text.find(':');
  text = lower(text.substr(0, colon)) + text.substr(colon);
  return "";
}

}  // namespace

CLI::Validator reference() {
  return CLI::Validator(
      [](std::string& text) -> std::string {
        const bool printable = std::all_of(text.begin(), text.end(), [](char c) { return c > 0x20 && c < 0x7f; });
        if (printable && text.size() <= kReferenceMaxLength) return "";
        return echoed(text) + " is not an identifier (1 to " + std::to_string(kReferenceMaxLength) +
               " printable ASCII characters, no spaces)";
      },
      "ID", "REFERENCE");
}

std::string echoed(std::string_view value) {
  std::string shown;
  std::size_t characters = 0;
  for (std::size_t i = 0; i < value.size(); ++i) {
    const auto byte = static_cast<unsigned char>(value[i]);
    const bool continuation = (byte & 0xC0) == 0x80;
    if (!continuation && characters++ == kEchoedValueMaxLength) {
      shown += "...";
      break;
    }
    shown += byte < 0x20 || byte == 0x7f ? '?' : static_cast<char>(byte);
  }
  return "\"" + shown + "\"";
}

void refuseEmptyValues(CLI::App& app) {
  for (CLI::Option* option : app.get_options()) {
    if (option->get_type_size() > 0 && !emptyAllowed().contains(option)) option->transform(nonEmpty());
  }
  for (CLI::App* command : app.get_subcommands([](CLI::App*) { return true; })) refuseEmptyValues(*command);
}

CLI::Option* allowEmpty(CLI::Option* option) {
  emptyAllowed().insert(option);
  return option;
}

CLI::Validator securityCode() {
  return CLI::Validator(
      [](std::string& code) -> std::string {
        const bool digits = std::all_of(code.begin(), code.end(), [](char c) { return c >= '0' && c <= '9'; });
        return digits && (code.size() == 3 || code.size() == 4) ? "" : "a security code is 3 or 4 digits (0-9)";
      },
      "3 or 4 digits", "SECURITY_CODE");
}

CLI::Validator serverUrl() { return CLI::Validator(&checkServerUrl, "http(s) URL", "SERVER_URL"); }

CLI::Validator commercePark() {
  return parkOf({{kResortChoiceWest, "west"}, {kResortChoiceEast, "east"}}, "1|2");
}

CLI::Validator messagePark() {
  return parkOf({{kResortChoiceWest, "west"},
                 {kResortChoiceEast, "east"},
                 {kResortChoiceAlternate, "no help phone number"}},
                "1|2|7");
}

CLI::Validator guestFile() {
  return CLI::Validator(
      [](std::string& path) -> std::string {
        const auto guest = standalone::readGuestDataFile(path);
        return guest ? "" : standalone::describeGuestDataError(guest.error());
      },
      "FILE", "GUEST_FILE");
}

}  // namespace varnel::cli
