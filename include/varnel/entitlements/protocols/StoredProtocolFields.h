#pragma once
// Storage for the payment and location protocols, shared by the classes that
// adopt them (the annual pass and the park ticket). Written once here so both
// keep the same fields and defaults. The payment protocol's pricePerMonth is
// the base entitlement's own field, reached through the adopting class.
//
//   class VNLEntitlementParkTicket : public VNLEntitlement,
//                                    public StoredPaymentFields<VNLEntitlementParkTicket>, ...

#include <string>

#include "varnel/entitlements/VNLCurrency.h"
#include "varnel/entitlements/VNLEntitlement.h"
#include "varnel/entitlements/protocols/VNLEntitlementLocationProtocol.h"
#include "varnel/entitlements/protocols/VNLEntitlementPaymentProtocol.h"

namespace varnel {

template <typename Entitlement>
class StoredPaymentFields : public VNLEntitlementPaymentProtocol {
 public:
  float annualPayment() const override { return annualPayment_; }
  void setAnnualPayment(float value) override { annualPayment_ = value; }
  float pricePerMonth() const override { return entitlement().VNLEntitlement::pricePerMonth(); }
  void setPricePerMonth(float value) override { entitlement().VNLEntitlement::setPricePerMonth(value); }
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

 private:
  const Entitlement& entitlement() const { return static_cast<const Entitlement&>(*this); }
  Entitlement& entitlement() { return static_cast<Entitlement&>(*this); }

  float annualPayment_ = 0;
  bool isMonthlyPaymentEligible_ = false;
  VNLCurrency currencyForPrice_ = VNLCurrency::usd;
  std::string downpayment_;
  std::string savingPercentage_;
  float subTotalPrice_ = 0;
  float tax_ = 0;
};

class StoredLocationFields : public VNLEntitlementLocationProtocol {
 public:
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

 private:
  std::string address_;
  std::string stateProvince_;
  std::string postalCode_;
  std::string country_;
  std::string city_;
};

}  // namespace varnel
