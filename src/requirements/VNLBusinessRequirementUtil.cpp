#include "varnel/requirements/VNLBusinessRequirementUtil.h"

#include <mutex>
#include <optional>

#include "varnel/host/KTVRRemoteConfiguration.h"
#include "varnel/host/Registry.h"
#include "varnel/requirements/VNLBusinessRequirementsKeys.h"

namespace varnel {
namespace {

using Keys = VNLBusinessRequirementsKeys;

VNLBusinessRequirementValues initialLocalValues() {
  return {
      {std::string(Keys::enableEvasKey), true},
      {std::string(Keys::enableAnnualPassportCommerceKey), false},
      {std::string(Keys::enableAnnualPassportRenewalsKey), false},
      {std::string(Keys::enableAnnualPassportUpgradesKey), false},
      {std::string(Keys::enableAnnualPassportSalesKey), false},
  };
}

struct Tables {
  std::mutex mutex;
  bool ignoreRemote = false;
  VNLBusinessRequirementValues remote;
  VNLBusinessRequirementValues local = initialLocalValues();
};

Tables& tables() {
  static Tables instance;
  return instance;
}

/// Runs `action` on the process-wide tables under their lock.
template <typename Action>
auto withTables(Action action) {
  Tables& shared = tables();
  std::lock_guard lock(shared.mutex);
  return action(shared);
}

/// The remote configuration's value under `key` when it is a boolean.
std::optional<bool> remoteBoolean(std::string_view key) {
  const auto configuration = host::Registry::get<KTVRRemoteConfiguration>();
  if (!configuration) return std::nullopt;
  const auto value = configuration->configurationValueByKey(key);
  if (!value || !value->is_boolean()) return std::nullopt;
  return value->get<bool>();
}

void setLocal(std::string_view key, bool value) {
  withTables([&](Tables& shared) { shared.local.insert_or_assign(std::string(key), value); });
}

}  // namespace

bool VNLBusinessRequirementUtil::ignoreAPCommerceRemoteValues() {
  return withTables([&](Tables& shared) { return shared.ignoreRemote; });
}

void VNLBusinessRequirementUtil::setIgnoreAPCommerceRemoteValues(bool ignore) {
  withTables([&](Tables& shared) { shared.ignoreRemote = ignore; });
}

VNLBusinessRequirementValues VNLBusinessRequirementUtil::remoteValues() {
  return withTables([&](Tables& shared) { return shared.remote; });
}

void VNLBusinessRequirementUtil::setRemoteValues(VNLBusinessRequirementValues values) {
  withTables([&](Tables& shared) { shared.remote = std::move(values); });
}

VNLBusinessRequirementValues VNLBusinessRequirementUtil::localValues() {
  return withTables([&](Tables& shared) { return shared.local; });
}

void VNLBusinessRequirementUtil::setLocalValues(VNLBusinessRequirementValues values) {
  withTables([&](Tables& shared) { shared.local = std::move(values); });
}

void VNLBusinessRequirementUtil::resetToInitialValues() {
  withTables([&](Tables& shared) {
    shared.ignoreRemote = false;
    shared.remote.clear();
    shared.local = initialLocalValues();
  });
}

bool VNLBusinessRequirementUtil::localValue(std::string_view key) {
  return withTables([&](Tables& shared) {
    const auto found = shared.local.find(key);
    return found != shared.local.end() && found->second;
  });
}

bool VNLBusinessRequirementUtil::getRomoteBusinessRequirement(std::string_view key) {
  return remoteBoolean(key).value_or(false);
}

void VNLBusinessRequirementUtil::ignoreRemoteValuesForAPCommerce(bool isIgnore) {
  setIgnoreAPCommerceRemoteValues(isIgnore);
}

bool VNLBusinessRequirementUtil::setSwitchByBusinessRequirementKey(const KTVCParkResortContext&,
                                                                   std::string_view remoteKey,
                                                                   std::string_view BRKey, bool isUsingRemote) {
  // Ask the host before taking the lock: its lookup is not ours to serialise.
  const auto remote = remoteBoolean(remoteKey);
  return withTables([&](Tables& shared) {
    const auto local = shared.local.find(BRKey);
    const bool hasLocal = local != shared.local.end();
    if (remote && !shared.ignoreRemote) {
      if (hasLocal && !isUsingRemote) return local->second;
      shared.remote.insert_or_assign(std::string(remoteKey), *remote);
      return *remote;
    }
    if (!hasLocal || isUsingRemote) return false;
    return local->second;
  });
}

void VNLBusinessRequirementUtil::switchAPRenewals(const KTVCParkResortContext&, bool, bool overridingValue) {
  setLocal(Keys::enableAnnualPassportRenewalsKey, overridingValue);
}

void VNLBusinessRequirementUtil::switchAPUpgrade(const KTVCParkResortContext&, bool, bool overridingValue) {
  setLocal(Keys::enableAnnualPassportUpgradesKey, overridingValue);
}

void VNLBusinessRequirementUtil::switchAPSales(const KTVCParkResortContext&, bool, bool overridingValue) {
  setLocal(Keys::enableAnnualPassportSalesKey, overridingValue);
}

void VNLBusinessRequirementUtil::switchCommerce(const KTVCParkResortContext&, bool, bool overridingValue) {
  setLocal(Keys::enableAnnualPassportCommerceKey, overridingValue);
}

void VNLBusinessRequirementUtil::switchRideslot(const KTVCParkResortContext&, bool, bool overridingValue) {
  setLocal(Keys::enableRideslotKey, overridingValue);
}

void VNLBusinessRequirementUtil::turnOnEvas(const KTVCParkResortContext&, bool, bool overridingValue) {
  setLocal(Keys::enableEvasKey, overridingValue);
}

}  // namespace varnel
