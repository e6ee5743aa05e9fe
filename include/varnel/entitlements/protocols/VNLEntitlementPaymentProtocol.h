#pragma once
// Capability: the price and payment terms of a product.

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "varnel/host/ENTMEntitlement.h"
#include "varnel/platform/Date.h"
#include "varnel/platform/Json.h"
#include "varnel/entitlements/VNLCurrency.h"
namespace varnel {

/// pricePerMonth is the base entitlement's own storage in every class that
/// adopts this protocol.
class VNLEntitlementPaymentProtocol {
 public:
  virtual ~VNLEntitlementPaymentProtocol() = default;

  virtual float annualPayment() const = 0;
  virtual void setAnnualPayment(float value) = 0;
  virtual float pricePerMonth() const = 0;
  virtual void setPricePerMonth(float value) = 0;
  virtual bool isMonthlyPaymentEligible() const = 0;
  virtual void setIsMonthlyPaymentEligible(bool value) = 0;
  virtual VNLCurrency currencyForPrice() const = 0;
  virtual void setCurrencyForPrice(VNLCurrency value) = 0;
  virtual const std::string& downpayment() const = 0;
  virtual void setDownpayment(std::string value) = 0;
  virtual const std::string& savingPercentage() const = 0;
  virtual void setSavingPercentage(std::string value) = 0;
  virtual float subTotalPrice() const = 0;
  virtual void setSubTotalPrice(float value) = 0;
  virtual float tax() const = 0;
  virtual void setTax(float value) = 0;

  /// annualPayment from totalPrice, pricePerMonth, isMonthlyPaymentEligible
  /// from monthlyPaymentEligible, downpayment, savingPercentage from discount,
  /// subTotalPrice, tax. currencyForPrice becomes the US dollar only when the
  /// manager's currency is exactly "USD"; any other currency changes nothing.
  void populatePaymentFields(const ENTMEntitlement& from);
  void writePaymentFields(Json& json) const;
};

}  // namespace varnel
