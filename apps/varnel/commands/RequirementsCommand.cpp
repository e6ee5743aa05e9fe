// varnel requirements: the business-requirement switches as the tester screen
// settles them, and which commerce state may follow which.
//
//   varnel requirements [--remote FILE] [--ignore-remote]
//                       [--local KEY=true|false ...] [--using-remote] [--json]

#include <fmt/format.h>

#include <iostream>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "Command.h"
#include "OptionChecks.h"
#include "varnel/host/Registry.h"
#include "varnel/requirements/BusinessRequirementStateMachine.h"
#include "varnel/requirements/VNLBusinessRequirementUtil.h"
#include "varnel/requirements/VNLBusinessRequirementsKeys.h"
#include "varnel/standalone/JsonRemoteConfiguration.h"

namespace varnel::cli {
namespace {

using OrderedJson = nlohmann::ordered_json;
using Keys = VNLBusinessRequirementsKeys;
using Util = VNLBusinessRequirementUtil;

struct RequirementsOptions {
  std::string remote;
  bool ignoreRemote = false;
  std::vector<std::string> locals;
  bool usingRemote = false;
  bool json = false;
};

using LocalSetter = void (*)(const KTVCParkResortContext&, bool, bool);

/// The local keys a tester may override, with the switch operation of each.
const std::map<std::string, LocalSetter, std::less<>>& localSetters() {
  static const std::map<std::string, LocalSetter, std::less<>> setters = {
      {std::string(Keys::enableEvasKey), &Util::turnOnEvas},
      {std::string(Keys::enableAnnualPassportCommerceKey), &Util::switchCommerce},
      {std::string(Keys::enableAnnualPassportRenewalsKey), &Util::switchAPRenewals},
      {std::string(Keys::enableAnnualPassportUpgradesKey), &Util::switchAPUpgrade},
      {std::string(Keys::enableAnnualPassportSalesKey), &Util::switchAPSales},
      {std::string(Keys::enableRideslotKey), &Util::switchRideslot},
  };
  return setters;
}

struct LocalOverride {
  LocalSetter setter;
  bool value;
};

LocalOverride parseLocal(const std::string& text) {
  const auto equals = text.find('=');
  if (equals == std::string::npos) throw UsageError("--local expects KEY=true|false, not " + echoed(text));
  const std::string key = text.substr(0, equals);
  const std::string value = text.substr(equals + 1);
  const auto setter = localSetters().find(key);
  if (setter == localSetters().end()) {
    std::string known;
    for (const auto& entry : localSetters()) known += (known.empty() ? "" : ", ") + entry.first;
    throw UsageError("unknown business-requirement key " + echoed(key) + "; known keys: " + known);
  }
  if (value != "true" && value != "false") {
    throw UsageError("the value of " + key + " must be true or false, not " + echoed(value));
  }
  return {setter->second, value == "true"};
}

/// The switches of the tester screen, in the order it settles them.
struct Switch {
  const char* name;
  std::string_view remoteKey;
  std::string_view localKey;
};
constexpr Switch kSwitches[] = {
    {"evas", Keys::enableEvasKey, Keys::enableEvasKey},
    {"commerce", Keys::enableAnnualPassportCommerceRemoteKey, Keys::enableAnnualPassportCommerceKey},
    {"renewals", Keys::enableAnnualPassportRenewalsRemoteKey, Keys::enableAnnualPassportRenewalsKey},
    {"upgrades", Keys::enableAnnualPassportUpgradesRemoteKey, Keys::enableAnnualPassportUpgradesKey},
    {"sales", Keys::enableAnnualPassportSalesRemoteKey, Keys::enableAnnualPassportSalesKey},
};

struct StateName {
  const char* name;
  std::type_index stateClass;
};
const StateName kStates[] = {
    {"CommerceOnState", typeid(CommerceOnState)},
    {"CommerceOffState", typeid(CommerceOffState)},
    {"EvasOffState", typeid(EvasOffState)},
};

/// For each state, the states that may follow it under the local table now.
OrderedJson transitions() {
  OrderedJson all = OrderedJson::object();
  for (const auto& from : kStates) {
    BusinessRequirementStateMachine machine(
        {std::make_shared<CommerceOnState>(), std::make_shared<CommerceOffState>(), std::make_shared<EvasOffState>()});
    machine.enter(from.stateClass);
    OrderedJson next = OrderedJson::array();
    for (const auto& to : kStates) {
      if (machine.canEnterState(to.stateClass)) next.push_back(to.name);
    }
    all[from.name] = next;
  }
  return all;
}

void print(const OrderedJson& answer) {
  std::cout << "switches\n";
  for (const auto& [name, on] : answer["switches"].items()) {
    std::cout << fmt::format("  {:<10}{}\n", name, on.get<bool>() ? "on" : "off");
  }
  std::cout << "transitions\n";
  for (const auto& [from, next] : answer["transitions"].items()) {
    std::string targets;
    for (const auto& state : next) targets += (targets.empty() ? "" : ", ") + state.get<std::string>();
    std::cout << fmt::format("  {:<18}-> {}\n", from, targets.empty() ? "(none)" : targets);
  }
}

void run(const RequirementsOptions& options) {
  std::vector<LocalOverride> overrides;
  for (const auto& text : options.locals) overrides.push_back(parseLocal(text));
  if (!options.remote.empty()) {
    auto remote = standalone::JsonRemoteConfiguration::load(options.remote);
    if (!remote) {
      const auto* message = jsonString(remote.error().userInfo, "message");
      throw UsageError(message ? *message : "cannot load " + options.remote);
    }
    host::Registry::set<KTVRRemoteConfiguration>(remote.value());
  }

  const KTVCParkResortContext context;
  Util::ignoreRemoteValuesForAPCommerce(options.ignoreRemote);
  for (const auto& local : overrides) local.setter(context, options.usingRemote, local.value);

  OrderedJson switches = OrderedJson::object();
  for (const auto& each : kSwitches) {
    switches[each.name] =
        Util::setSwitchByBusinessRequirementKey(context, each.remoteKey, each.localKey, options.usingRemote);
  }
  const OrderedJson answer{{"switches", switches}, {"transitions", transitions()}};
  if (options.json) {
    std::cout << answer.dump(2) << '\n';
  } else {
    print(answer);
  }
}

void registerRequirementsCommand(CLI::App& app) {
  auto options = std::make_shared<RequirementsOptions>();
  CLI::App* command = app.add_subcommand(
      "requirements", "Business-requirement switches and the commerce states that may follow each other");
  command->add_option("--remote", options->remote, "JSON object of remote configuration values")
      ->type_name("FILE");
  command->add_flag("--ignore-remote", options->ignoreRemote, "Disregard remote values (local values only)");
  command->add_option("--local", options->locals, "Override a local value, KEY=true|false (repeatable)")
      ->type_name("KEY=BOOL");
  command->add_flag("--using-remote", options->usingRemote, "Ask for the remote values, as the screen's switch does");
  command->add_flag("--json", options->json, "Print one JSON object");
  command->callback([options] { run(*options); });
}

const CommandRegistration requirementsRegistration{"requirements", &registerRequirementsCommand};

}  // namespace
}  // namespace varnel::cli
