#pragma once
// The business-requirement switch values: what the remote configuration says,
// what testers set locally, and which of the two a switch shows.
//
// The tables live in memory for the life of the process and are never
// persisted. Every operation is safe from any thread (the tables are guarded
// by one lock), though the callers are screens on the main thread.

#include <map>
#include <string>
#include <string_view>

#include "varnel/host/KTVCParkResortContext.h"

namespace varnel {

using VNLBusinessRequirementValues = std::map<std::string, bool, std::less<>>;

class VNLBusinessRequirementUtil {
 public:
  /// When true, remote values are disregarded and only local values count.
  /// Initially false.
  static bool ignoreAPCommerceRemoteValues();
  static void setIgnoreAPCommerceRemoteValues(bool ignore);

  /// Under each remote key, the last remote value taken into use. Initially empty.
  static VNLBusinessRequirementValues remoteValues();
  static void setRemoteValues(VNLBusinessRequirementValues values);

  /// The testers' values by local key. Initially EVAS on and annual-pass
  /// commerce, renewals, upgrades and sales off; no ride-slot value.
  static VNLBusinessRequirementValues localValues();
  static void setLocalValues(VNLBusinessRequirementValues values);

  /// Puts all three back as they are when the process starts.
  static void resetToInitialValues();

  /// The remote configuration's boolean under `key`; false when the value is
  /// absent, of another type, or there is no remote configuration.
  static bool getRomoteBusinessRequirement(std::string_view key);

  /// Sets ignoreAPCommerceRemoteValues.
  static void ignoreRemoteValuesForAPCommerce(bool isIgnore);

  /// The value the switch of `BRKey` is to show. A usable remote value (a
  /// boolean, not ignored) is shown when `isUsingRemote` asks for it or when
  /// there is no local value, and is then recorded in remoteValues; otherwise
  /// the local value is shown. Asking for a remote value when there is none
  /// usable, or having no local value either, shows false.
  static bool setSwitchByBusinessRequirementKey(const KTVCParkResortContext& context, std::string_view remoteKey,
                                                std::string_view BRKey, bool isUsingRemote);

  // Setters of the local table: each stores `overridingValue` under its key.
  // `context` and `usingRemoteValue` are accepted for the host's sake only.
  static void switchAPRenewals(const KTVCParkResortContext& context, bool usingRemoteValue, bool overridingValue);
  static void switchAPUpgrade(const KTVCParkResortContext& context, bool usingRemoteValue, bool overridingValue);
  static void switchAPSales(const KTVCParkResortContext& context, bool usingRemoteValue, bool overridingValue);
  static void switchCommerce(const KTVCParkResortContext& context, bool usingRemoteValue, bool overridingValue);
  static void switchRideslot(const KTVCParkResortContext& context, bool usingRemoteValue, bool overridingValue);
  static void turnOnEvas(const KTVCParkResortContext& context, bool usingRemoteValue, bool overridingValue);

  /// localValues[key], or false when the table lacks it.
  static bool localValue(std::string_view key);
};

}  // namespace varnel
