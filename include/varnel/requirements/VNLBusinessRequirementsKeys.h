#pragma once
// Keys of the business-requirement switches. The *RemoteKey texts are keys of
// the host's remote configuration; the reverse-domain texts are keys of the
// module's local table. EVAS has one key for both. The titles repeat the local
// keys (and, for ride slots, a plain title).

#include <string_view>

namespace varnel {

struct VNLBusinessRequirementsKeys {
  static constexpr std::string_view enableAnnualPassportCommerceRemoteKey = "enableAnnualPassportCommerce";
  static constexpr std::string_view enableAnnualPassportRenewalsRemoteKey = "enableAnnualPassportRenewals";
  static constexpr std::string_view enableAnnualPassportUpgradesRemoteKey = "enableAnnualPassportUpgrades";
  static constexpr std::string_view enableAnnualPassportSalesRemoteKey = "enableAnnualPassportSales";

  static constexpr std::string_view enableAnnualPassportCommerceKey = "com.orvane.enableAnnualPassportCommerce";
  static constexpr std::string_view enableAnnualPassportRenewalsKey = "com.orvane.enableAnnualPassportRenewals";
  static constexpr std::string_view enableAnnualPassportUpgradesKey = "com.orvane.enableAnnualPassportUpgrades";
  static constexpr std::string_view enableAnnualPassportSalesKey = "com.orvane.enableAnnualPassportSales";
  static constexpr std::string_view enableEvasKey = "com.orvane.EvasEnabled";
  static constexpr std::string_view enableRideslotKey = "enableRideslot";

  static constexpr std::string_view kTurnOnAPRenewalsTitle = "com.orvane.enableAnnualPassportRenewals";
  static constexpr std::string_view kTurnOnAPUpgradeTitle = "com.orvane.enableAnnualPassportUpgrades";
  static constexpr std::string_view kTurnOnAPSalesTitle = "com.orvane.enableAnnualPassportSales";
  static constexpr std::string_view kTurnOnCommerceTitle = "com.orvane.enableAnnualPassportCommerce";
  static constexpr std::string_view kTurnOnEvasTitle = "com.orvane.EvasEnabled";
  static constexpr std::string_view kTurnOnRideslotTitle = "Turn on Ride Slot";
};

}  // namespace varnel
