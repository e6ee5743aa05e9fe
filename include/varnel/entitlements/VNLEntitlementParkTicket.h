#pragma once
// A theme-park ticket, which a guest may upgrade to an annual pass. Made by
// toVNLEntitlement (category "ThemePark") or from JSON with initWithJsonData.

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "varnel/entitlements/VNLEntitlement.h"
#include "varnel/entitlements/VNLEntitlementProtocols.h"
#include "varnel/entitlements/protocols/StoredProtocolFields.h"

namespace varnel {

class VNLEntitlementAnnualPass;

class VNLEntitlementParkTicket : public VNLEntitlement,
                                 public StoredPaymentFields<VNLEntitlementParkTicket>,
                                 public StoredLocationFields,
                                 public VNLEntitlementUpgradeableProtocol {
 public:
  /// init(): the base defaults; productType parkTicket; no affiliations, no upgrade options.
  VNLEntitlementParkTicket();

  /// init(jsonData:), from a dictionary of string to any (anything else gives
  /// the defaults). Keys, each read only when of the right kind:
  ///   "totalPrice" (number)            -> totalPrice and annualPayment
  ///   "pricePerMonth" (number)         -> pricePerMonth
  ///   "subTotalPrice", "tax" (numbers) -> subTotalPrice, tax
  ///   "monthlyPaymentEligible" (bool)  -> monthlyPaymentEligible and isMonthlyPaymentEligible
  ///   "currency" (string)              -> currency; currencyForPrice the US dollar when exactly "USD"
  ///   "downpayment", "discount" (strings) -> downpayment, savingPercentage
  ///   "assignedGuest"."address" (dictionaries) -> the location, as for the annual pass
  static std::shared_ptr<VNLEntitlementParkTicket> initWithJsonData(const Json& jsonData);

  // --- Own fields ---
  Type productType() const { return productType_; }
  void setProductType(Type value) { productType_ = value; }
  /// The affiliations the ticket's guest has (the manager's affiliationInfo).
  const std::vector<ENTMAffiliation>& affiliations() const { return affiliations_; }
  void setAffiliations(std::vector<ENTMAffiliation> value) { affiliations_ = std::move(value); }
  /// A monthly price the ticket declares besides pricePerMonth, as the annual
  /// pass does; no copy operation fills it.
  float priceMonthly() const { return priceMonthly_; }
  void setPriceMonthly(float value) { priceMonthly_ = value; }

  // --- Payment and location: StoredPaymentFields, StoredLocationFields ---
  using StoredPaymentFields::pricePerMonth;
  using StoredPaymentFields::setPricePerMonth;


  // --- Upgradeable ---
  const VNLAnnualPassUpgradeOptions& annualPassesUpgradeOptions() const override {
    return annualPassesUpgradeOptions_;
  }
  void setAnnualPassesUpgradeOptions(VNLAnnualPassUpgradeOptions value) override {
    annualPassesUpgradeOptions_ = std::move(value);
  }

  // --- Upgrades ---

  /// The ticket's affiliations that may upgrade: first those with the all-guests
  /// identifier "STD_GST", then each that equals one of `affiliations`, then
  /// ordered by sortOrder (ties keep their order). Duplicates are kept.
  std::vector<ENTMAffiliation> eligibleAffiliations(const std::vector<ENTMAffiliation>& affiliations) const;

  /// The upgrade options of the affiliation's identifier, or none.
  std::optional<std::vector<std::shared_ptr<VNLEntitlementAnnualPass>>> upgradeOptionsForAffiliation(
      const ENTMAffiliation& affiliation) const;

  /// The base JSON with the payment, location and upgrade fields, plus
  /// productType (raw value), priceMonthly and affiliations ([{affiliationId, sortOrder}]).
  Json toJson() const override;

 protected:
  /// Made from a manager entitlement: affiliations from its affiliationInfo
  /// (when present), then populateUpgradeable.
  void finishInit(const ENTMEntitlement& entitlement) override;

 private:
  Type productType_ = Type::parkTicket;
  std::vector<ENTMAffiliation> affiliations_;
  float priceMonthly_ = 0;
  VNLAnnualPassUpgradeOptions annualPassesUpgradeOptions_;

};

}  // namespace varnel
