#pragma once
// A theme-park ticket, which a guest may upgrade to an annual pass. Made by
// toVNLEntitlement (category "ThemePark") or from JSON with initWithJsonData.

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "varnel/entitlements/VNLEntitlement.h"
#include "varnel/entitlements/VNLEntitlementProtocols.h"

namespace varnel {

class VNLEntitlementAnnualPass;

class VNLEntitlementParkTicket : public VNLEntitlement,
                                 public VNLEntitlementPaymentProtocol,
                                 public VNLEntitlementLocationProtocol,
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

  // --- Payment ---
  float annualPayment() const override { return annualPayment_; }
  void setAnnualPayment(float value) override { annualPayment_ = value; }
  float pricePerMonth() const override { return VNLEntitlement::pricePerMonth(); }
  void setPricePerMonth(float value) override { VNLEntitlement::setPricePerMonth(value); }
  bool isMonthlyPaymentEligible() const override { return isMonthlyPaymentEligible_; }
  void setIsMonthlyPaymentEligible(bool value) override { isMonthlyPaymentEligible_ = value; }
  VNLCurrency currencyForPrice() const override { return currencyForPrice_; }
  void setCurrencyForPrice(VNLCurrency value) override { currencyForPrice_ = value; }
  const std::string& downpayment() const override { return downpayment_; }
  void setDownpayment(std::string value) override { downpayment_ = std::move(value); }
  const std::string& savingPercentage() const override { return savingPercentage_; }
  void setSavingPercentage(std::string value) override { savingPercentage_ = std::move(value); }
  float subTotalPrice() const override { return subTotalPrice_; }
  void setSubTotalPrice(float value) override { subTotalPrice_ = value; }
  float tax() const override { return tax_; }
  void setTax(float value) override { tax_ = value; }

  // --- Location ---
  const std::string& address() const override { return address_; }
  void setAddress(std::string value) override { address_ = std::move(value); }
  const std::string& stateProvince() const override { return stateProvince_; }
  void setStateProvince(std::string value) override { stateProvince_ = std::move(value); }
  const std::string& postalCode() const override { return postalCode_; }
  void setPostalCode(std::string value) override { postalCode_ = std::move(value); }
  const std::string& country() const override { return country_; }
  void setCountry(std::string value) override { country_ = std::move(value); }
  const std::string& city() const override { return city_; }
  void setCity(std::string value) override { city_ = std::move(value); }

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
  /// productType (raw value) and affiliations ([{affiliationId, sortOrder}]).
  Json toJson() const override;

 protected:
  /// Made from a manager entitlement: affiliations from its affiliationInfo
  /// (when present), then populateUpgradeable.
  void finishInit(const ENTMEntitlement& entitlement) override;

 private:
  Type productType_ = Type::parkTicket;
  std::vector<ENTMAffiliation> affiliations_;
  VNLAnnualPassUpgradeOptions annualPassesUpgradeOptions_;

  float annualPayment_ = 0;
  bool isMonthlyPaymentEligible_ = false;
  VNLCurrency currencyForPrice_ = VNLCurrency::usd;
  std::string downpayment_;
  std::string savingPercentage_;
  float subTotalPrice_ = 0;
  float tax_ = 0;
  std::string address_;
  std::string stateProvince_;
  std::string postalCode_;
  std::string country_;
  std::string city_;
};

}  // namespace varnel
