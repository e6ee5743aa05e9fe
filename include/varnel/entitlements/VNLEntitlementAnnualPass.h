#pragma once
// A guest's annual pass: the object that renewal is about. Made by
// toVNLEntitlement (category "AnnualPass", and every renewal option) or from a
// JSON dictionary with initWithJsonData.

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "varnel/dates/BlockoutGroup.h"
#include "varnel/entitlements/VNLEntitlement.h"
#include "varnel/entitlements/VNLEntitlementProtocols.h"
#include "varnel/entitlements/protocols/StoredProtocolFields.h"

namespace varnel {

class VNLEntitlementAnnualPass : public VNLEntitlement,
                                 public VNLEntitlementTypeProtocol,
                                 public VNLEntitlementTimeWindowProtocol,
                                 public StoredPaymentFields<VNLEntitlementAnnualPass>,
                                 public StoredLocationFields,
                                 public VNLEntitlementSunsetProtocol,
                                 public VNLEntitlementAgeGroupProtocol,
                                 public VNLEntitlementPolicyProtocol,
                                 public VNLEntitlementRenewableProtocol {
 public:
  /// init(): the base defaults; productType annualPass; the four dates at the
  /// unknown-date marker; numbers 0, texts "", currencyForPrice the US dollar.
  VNLEntitlementAnnualPass();

  /// init(jsonData:), from a dictionary of string to any (anything else gives
  /// the defaults). In order:
  ///   1. productTypeID from "productTypeId" when it is a string;
  ///   2. "renewable" is looked up and never changes the pass;
  ///   3. numberOfDays = daysBetween(startDate, endDate) of the two default
  ///      dates, before they are read: always 0;
  ///   4. startDate from "startDateTime", 5. endDate from "endDateTime": parsed
  ///      with VNLEntitlementDateFormatterFormatString when a non-empty string,
  ///      otherwise (and when unparsable) the unknown-date marker;
  ///   6. passValidityStartDate = startDate, passExpirationDate = endDate;
  ///   7. the location from "assignedGuest"."address" when both are dictionaries.
  static std::shared_ptr<VNLEntitlementAnnualPass> initWithJsonData(const Json& jsonData);

  // --- Own fields ---
  Type productType() const { return productType_; }
  void setProductType(Type value) { productType_ = value; }
  /// PassHolder::RenewalType text ("Same", "Upgrade", "Downgrade") or "".
  /// Setting it also sets it on renewableEntitlement when that is an annual
  /// pass (and so on down the chain of renewals).
  const std::string& renewalType() const { return renewalType_; }
  void setRenewalType(std::string value);
  /// A monthly price the pass declares besides pricePerMonth; no copy operation fills it.
  float priceMonthly() const { return priceMonthly_; }
  void setPriceMonthly(float value) { priceMonthly_ = value; }

  // --- Type ---
  const std::string& productTypeID() const override { return productTypeID_; }
  void setProductTypeID(std::string value) override { productTypeID_ = std::move(value); }
  bool isRenewable() const override { return VNLEntitlement::isRenewable(); }
  void setIsRenewable(bool value) override { VNLEntitlement::setIsRenewable(value); }
  const std::string& avatarId() const override { return VNLEntitlement::avatarId(); }
  void setAvatarId(std::string value) override { VNLEntitlement::setAvatarId(std::move(value)); }

  // --- Time window ---
  std::int64_t numberOfDays() const override { return numberOfDays_; }
  void setNumberOfDays(std::int64_t value) override { numberOfDays_ = value; }
  Date startDate() const override { return startDate_; }
  void setStartDate(Date value) override { startDate_ = value; }
  Date endDate() const override { return endDate_; }
  void setEndDate(Date value) override { endDate_ = value; }
  Date passValidityStartDate() const override { return passValidityStartDate_; }
  void setPassValidityStartDate(Date value) override { passValidityStartDate_ = value; }
  Date passExpirationDate() const override { return passExpirationDate_; }
  void setPassExpirationDate(Date value) override { passExpirationDate_ = value; }
  const std::string& calendarId() const override { return calendarId_; }
  void setCalendarId(std::string value) override { calendarId_ = std::move(value); }
  const std::optional<std::string>& admissionDays() const override { return admissionDays_; }
  void setAdmissionDays(std::optional<std::string> value) override { admissionDays_ = std::move(value); }

  // --- Payment and location: StoredPaymentFields, StoredLocationFields ---
  using StoredPaymentFields::pricePerMonth;
  using StoredPaymentFields::setPricePerMonth;


  // --- Sunset ---
  bool isSunsetPass() const override { return isSunsetPass_; }
  void setIsSunsetPass(bool value) override { isSunsetPass_ = value; }

  // --- Age group ---
  const std::string& ageGroup() const override { return ageGroup_; }
  void setAgeGroup(std::string value) override { ageGroup_ = std::move(value); }

  // --- Policy ---
  const std::string& policyTitle() const override { return policyTitle_; }
  void setPolicyTitle(std::string value) override { policyTitle_ = std::move(value); }
  const Json& policyArray() const override { return policyArray_ ? *policyArray_ : emptyPolicyArray(); }
  void setPolicyArray(Json value) override { policyArray_ = std::move(value); }
  const std::string& policyLink() const override { return policyLink_; }
  void setPolicyLink(std::string value) override { policyLink_ = std::move(value); }
  const std::string& policyText() const override { return policyText_; }
  void setPolicyText(std::string value) override { policyText_ = std::move(value); }

  // --- Renewable ---
  const std::shared_ptr<VNLEntitlement>& renewableEntitlement() const override { return renewableEntitlement_; }
  void setRenewableEntitlement(std::shared_ptr<VNLEntitlement> value) override {
    renewableEntitlement_ = std::move(value);
  }

  // --- Computed ---

  /// True exactly when productTypeID is one of the specially treated pass
  /// products (exact, case-sensitive).
  bool isSpecialPass() const;

  /// The pass's blocked-out days, named with shortEntitlementName and
  /// passDisplayName. Its summary: "no blockout through the year" for a
  /// special pass; otherwise the admission-days text with admissionDays when
  /// present; otherwise "no blockout through the year".
  BlockoutGroup blockoutGroup() const;

  /// The renewal's base monthlyPaymentEligible when renewableEntitlement is an
  /// annual pass; otherwise this pass's own isMonthlyPaymentEligible.
  bool renewableEntitlementMonthlyPaymentEligible() const;

  /// The pass's own fields, each "label: value, " ("ageGroup : " and
  /// "renewalType : " are written with a blank before the colon).
  std::string debugDescription() const override;

  /// The base JSON with every protocol field, plus productType (raw value),
  /// renewalType, priceMonthly, isSpecialPass.
  Json toJson() const override;

 private:
  /// Pass products that are treated specially (no blockout summary).
  enum class Special { crestlinePlus, cobaltPlus, cobalt, vantor };
  static std::string_view specialRawValue(Special special);
  static const Json& emptyPolicyArray();

  Type productType_ = Type::annualPass;
  std::string renewalType_;
  float priceMonthly_ = 0;

  std::string productTypeID_;
  std::int64_t numberOfDays_ = 0;
  Date startDate_ = Date::unknownMarker();
  Date endDate_ = Date::unknownMarker();
  Date passValidityStartDate_ = Date::unknownMarker();
  Date passExpirationDate_ = Date::unknownMarker();
  std::string calendarId_;
  std::optional<std::string> admissionDays_;
  bool isSunsetPass_ = false;
  std::string ageGroup_;
  std::string policyTitle_;
  /// Unset until assigned; an unset list reads as one shared empty list, so
  /// that making a pass allocates nothing for it.
  std::optional<Json> policyArray_;
  std::string policyLink_;
  std::string policyText_;
  std::shared_ptr<VNLEntitlement> renewableEntitlement_;
};

}  // namespace varnel
