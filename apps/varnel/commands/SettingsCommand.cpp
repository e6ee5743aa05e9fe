// varnel settings: the module's switches in the user-defaults store, and the
// terms-and-conditions configuration presets.
//
//   varnel settings [--defaults PATH] list [--json]
//   varnel settings [--defaults PATH] get KEY [--json]
//   varnel settings [--defaults PATH] set KEY VALUE [--type bool|int|double|string|json]
//   varnel settings [--defaults PATH] unset KEY
//   varnel settings [--defaults PATH] preset NAME
//   varnel settings [--defaults PATH] current [--json]
//
// The store is PATH, else $VARNEL_DEFAULTS, else the per-user default. A store
// that cannot be used is reported with its path and the reason, and left as it
// is. A value that cannot be read is reported with its key; `unset KEY`
// removes it.

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <iostream>
#include <limits>
#include <memory>
#include <optional>
#include <string>

#include "Command.h"
#include "OptionChecks.h"
#include "varnel/host/Registry.h"
#include "varnel/settings/VNLCommerceSettings.h"
#include "varnel/standalone/SqliteUserDefaults.h"

namespace varnel::cli {
namespace {

using OrderedJson = nlohmann::ordered_json;
using standalone::SqliteUserDefaults;

struct SettingsOptions {
  std::string defaultsPath;
  bool json = false;
  std::string key;
  std::string value;
  std::string type;
  std::string preset;
};

std::string errorMessage(const Error& error) {
  if (const auto* message = jsonString(error.userInfo, "message")) return *message;
  return fmt::format("{} error {}", error.domain, error.code);
}

/// Opens the store and makes it the module's user defaults.
std::shared_ptr<SqliteUserDefaults> openStore(const SettingsOptions& options) {
  std::optional<std::filesystem::path> chosen;
  if (!options.defaultsPath.empty()) chosen = options.defaultsPath;
  auto store = SqliteUserDefaults::openResolved(chosen);
  if (!store) throw UsageError(errorMessage(store.error()));
  host::Registry::set<UserDefaults>(store.value());
  return store.value();
}

void requireWritten(SqliteUserDefaults& store) {
  if (store.synchronize()) return;
  const auto failure = store.writeFailure();
  throw UsageError("could not write the settings to " + store.path().string() + (failure ? ": " + *failure : ""));
}

std::string unreadable(const SqliteUserDefaults& store, const std::string& key, const std::string& problem) {
  return "the value under " + echoed(key) + " in " + store.path().string() + " cannot be read (" + problem +
         "); `varnel settings unset " + key + "` removes it";
}

std::string display(const DefaultsValue& value) {
  return toDisplayJson(value).dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::string validConfigurationNames() {
  std::string names;
  for (auto configuration : kAllVNLConfigurations) {
    names += (names.empty() ? "" : ", ") + std::string(rawValue(configuration));
  }
  return names;
}

/// A plain JSON value as a stored value: objects become dictionaries, arrays
/// arrays (null only as an absent element of one), numbers integers or
/// doubles. False for what the store cannot hold.
bool fromPlainJson(const Json& json, DefaultsValue& out, bool insideArray) {
  switch (json.type()) {
    case Json::value_t::object: {
      DefaultsDictionary dictionary;
      for (const auto& [key, member] : json.items()) {
        if (!fromPlainJson(member, dictionary[key], false)) return false;
      }
      out = DefaultsValue(std::move(dictionary));
      return true;
    }
    case Json::value_t::array: {
      DefaultsArray array(json.size());
      for (std::size_t i = 0; i < json.size(); ++i) {
        if (!fromPlainJson(json[i], array[i], true)) return false;
      }
      out = DefaultsValue(std::move(array));
      return true;
    }
    case Json::value_t::boolean: out = DefaultsValue(json.get<bool>()); return true;
    case Json::value_t::number_integer: out = DefaultsValue(json.get<std::int64_t>()); return true;
    case Json::value_t::number_unsigned:
      if (json.get<std::uint64_t>() > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) return false;
      out = DefaultsValue(static_cast<std::int64_t>(json.get<std::uint64_t>()));
      return true;
    case Json::value_t::number_float: out = DefaultsValue(json.get<double>()); return true;
    case Json::value_t::string: out = DefaultsValue(json.get<std::string>()); return true;
    case Json::value_t::null: out = DefaultsValue(); return insideArray;
    default: return false;
  }
}

DefaultsValue parseJsonValue(const std::string& text) {
  const JsonParse parsed = parseJson(text);
  if (!parsed) throw UsageError(echoed(text) + " is " + parsed.refusal);
  const Json& json = *parsed.value;
  if (!json.is_object() && !json.is_array()) throw UsageError("a json value is an object or an array");
  DefaultsValue value;
  if (!fromPlainJson(json, value, false)) {
    throw UsageError("the settings store cannot hold " + echoed(text) +
                     " (null outside an array, or a number too large)");
  }
  return value;
}

DefaultsValue parseValue(const std::string& text, const std::string& type) {
  const auto invalid = [&] { return UsageError(echoed(text) + " is not a valid " + type); };
  const char* end = text.data() + text.size();
  if (type == "bool") {
    if (text != "true" && text != "false") throw UsageError("a bool is true or false, not " + echoed(text));
    return DefaultsValue(text == "true");
  }
  if (type == "int") {
    std::int64_t number = 0;
    const auto [stop, status] = std::from_chars(text.data(), end, number);
    if (text.empty() || status != std::errc() || stop != end) throw invalid();
    return DefaultsValue(number);
  }
  if (type == "double") {
    double number = 0;
    const auto [stop, status] = std::from_chars(text.data(), end, number);
    if (text.empty() || status != std::errc() || stop != end || !std::isfinite(number)) throw invalid();
    return DefaultsValue(number);
  }
  if (type == "string") return DefaultsValue(text);
  if (type == "json") return parseJsonValue(text);
  // No type given: the words true and false are booleans, the rest is text.
  if (text == "true" || text == "false") return DefaultsValue(text == "true");
  return DefaultsValue(text);
}

void list(const SettingsOptions& options) {
  const auto store = openStore(options);
  const auto [stored, unreadableValues] = store->contents();
  for (const auto& [key, problem] : unreadableValues) {
    std::cerr << "varnel: " << unreadable(*store, key, problem) << '\n';
  }
  if (options.json) {
    OrderedJson all = OrderedJson::object();
    for (const auto& [key, value] : stored) all[key] = toDisplayJson(value);
    std::cout << all.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
    return;
  }
  if (stored.empty() && unreadableValues.empty()) std::cout << "No settings are stored.\n";
  std::size_t width = 0;
  for (const auto& entry : stored) width = std::max(width, entry.first.size());
  for (const auto& [key, value] : stored) std::cout << fmt::format("{:<{}}  {}\n", key, width, display(value));
}

void get(const SettingsOptions& options) {
  const auto store = openStore(options);
  const auto contents = store->contents();
  if (auto problem = contents.unreadable.find(options.key); problem != contents.unreadable.end()) {
    throw UsageError(unreadable(*store, options.key, problem->second));
  }
  const auto found = contents.values.find(options.key);
  if (found == contents.values.end()) throw UsageError("no value is stored under " + echoed(options.key));
  const DefaultsValue* value = &found->second;
  std::cout << (options.json ? toDisplayJson(*value).dump(2, ' ', false, Json::error_handler_t::replace)
                             : display(*value))
            << '\n';
}

void set(const SettingsOptions& options) {
  const DefaultsValue value = parseValue(options.value, options.type);
  const auto store = openStore(options);
  store->setObject(options.key, value);
  requireWritten(*store);
}

void unset(const SettingsOptions& options) {
  const auto store = openStore(options);
  store->removeObjectForKey(options.key);
  requireWritten(*store);
}

void preset(const SettingsOptions& options) {
  // Checked before the store is opened, so a wrong name changes nothing.
  const auto configuration = configurationFromRawValue(options.preset);
  if (!configuration) {
    throw UsageError("unknown configuration " + echoed(options.preset) + "; valid names: " + validConfigurationNames());
  }
  const auto store = openStore(options);
  VNLCommerceSettings::setDefaultsFor(*configuration);
  requireWritten(*store);
  std::cout << "Wrote the " << rawValue(*configuration) << " preset to " << store->path().string() << '\n';
}

void current(const SettingsOptions& options) {
  openStore(options);
  const auto configuration = rawValue(VNLCommerceSettings::currentConfiguration());
  if (!options.json) {
    std::cout << configuration << '\n';
    return;
  }
  const auto settings = VNLCommerceSettings::current();
  OrderedJson stored = OrderedJson::object();
  for (const auto key : VNLCommerceSettings::allKeys) {
    const auto setting = std::find_if(settings.begin(), settings.end(),
                                      [&](const VNLUserDefaultSetting& each) { return each.key == key; });
    if (setting != settings.end()) stored[std::string(key)] = toDisplayJson(setting->value);
  }
  const OrderedJson answer{{"configuration", configuration}, {"settings", stored}};
  std::cout << answer.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
}

void registerSettingsCommand(CLI::App& app) {
  auto options = std::make_shared<SettingsOptions>();
  CLI::App* settings = app.add_subcommand("settings", "The module's settings and configuration presets");
  settings->require_subcommand(1);
  settings->add_option("--defaults", options->defaultsPath,
                       "User-defaults store (default: $VARNEL_DEFAULTS, else ~/.config/varnel/defaults.sqlite3)")
      ->type_name("PATH");

  const auto command = [&](const char* name, const char* description, void (*run)(const SettingsOptions&)) {
    CLI::App* sub = settings->add_subcommand(name, description);
    sub->fallthrough();
    sub->callback([options, run] { run(*options); });
    return sub;
  };
  const auto addJson = [&](CLI::App* sub, const char* description) {
    sub->add_flag("--json", options->json, description);
  };

  addJson(command("list", "Every stored setting with its value", &list), "Print one JSON object");
  CLI::App* getCommand = command("get", "The value stored under one key", &get);
  getCommand->add_option("key", options->key, "User-defaults key")->required();
  addJson(getCommand, "Print the value as JSON");

  CLI::App* setCommand = command("set", "Store a value under a key", &set);
  setCommand->add_option("key", options->key, "User-defaults key")->required();
  allowEmpty(setCommand->add_option("value", options->value,
                                    "The value (true/false are booleans unless --type says otherwise)"))
      ->required();
  setCommand->add_option("--type", options->type,
                         "Kind of the value: bool, int, double, string, or json (an object or array)")
      ->check(CLI::IsMember({"bool", "int", "double", "string", "json"}));

  command("unset", "Remove the value under a key", &unset)
      ->add_option("key", options->key, "User-defaults key")
      ->required();
  command("preset", "Write a configuration preset", &preset)
      ->add_option("name", options->preset, "Configuration: " + validConfigurationNames())
      ->required();
  addJson(command("current", "The configuration the stored settings match", &current),
          "Print the configuration with the settings it was read from");
}

const CommandRegistration settingsRegistration{"settings", &registerSettingsCommand};

}  // namespace
}  // namespace varnel::cli
