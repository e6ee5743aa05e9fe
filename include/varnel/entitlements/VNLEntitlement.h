#pragma once
// The module's own record of one guest entitlement (a pass or ticket), copied
// from the entitlements manager's ENTMEntitlement. Subclasses add fields
// through the capability protocols of protocols/; one initialiser,
// VNLEntitlement::initWith<Class>(entitlement), fills the base fields and the
// fields of every protocol the created object's class adopts.
//
// Entitlements are owned by std::shared_ptr and are plain mutable records:
// every property has a getter `name()` and a setter `setName(value)`.

#include <concepts>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "varnel/entitlements/VNLCurrency.h"
#include "varnel/entitlements/VNLEntitlementErrors.h"
#include "varnel/host/ENTMEntitlement.h"
#include "varnel/platform/Date.h"
#include "varnel/platform/Json.h"

namespace varnel {

class AdoptedProtocols;

class VNLEntitlement {
 public:
  /// The kind of product a subclass's `productType` names.
  enum class Type : std::int64_t { unknown = 0, annualPass = 1, parkTicket = 2, theaterTicket = 3 };

  /// init(): every property at its default.
  VNLEntitlement();
  virtual ~VNLEntitlement();
  VNLEntitlement(const VNLEntitlement&) = delete;
  VNLEntitlement& operator=(const VNLEntitlement&) = delete;

  /// init(with:): makes an `Entitlement` (VNLEntitlement or a subclass) at its
  /// defaults, then copies into it, from `entitlement`:
  ///   1. the base fields, in declaration order (an absent manager value keeps the default);
  ///   2. for each capability protocol the object's class adopts, its copy
  ///      operation, in this order: type, status, sunset, payment, age group,
  ///      linkable, location, multi-day, renewable, time window, assigned seat,
  ///      government ID, guest profile, policy;
  ///   3. the class's own finishing step (the park ticket's upgrade options).
  template <typename Entitlement>
    requires std::derived_from<Entitlement, VNLEntitlement>
  static std::shared_ptr<Entitlement> initWith(const ENTMEntitlement& entitlement) {
    auto object = std::make_shared<Entitlement>();
    // Every object made here is exactly an `Entitlement`, so the protocols its
    // class adopts are decided once, by testing the first one made.
    static const AdoptedProtocols& adopted = adoptedProtocolsOf(*object);
    object->populate(entitlement, adopted);
    return object;
  }

  // --- Stored properties, in declaration order (default; manager property copied) ---

  /// "" ; productInstanceId
  const std::string& productInstanceID() const { return productInstanceID_; }
  void setProductInstanceID(std::string value) { productInstanceID_ = std::move(value); }
  /// "" ; passTypeName
  const std::string& passDisplayName() const { return passDisplayName_; }
  void setPassDisplayName(std::string value) { passDisplayName_ = std::move(value); }
  /// "" ; ticketAgeGroupTitle
  const std::string& passNameAndAge() const { return passNameAndAge_; }
  void setPassNameAndAge(std::string value) { passNameAndAge_ = std::move(value); }
  /// "" ; guestType
  const std::string& guestIDType() const { return guestIDType_; }
  void setGuestIDType(std::string value) { guestIDType_ = std::move(value); }
  /// The URL text, or none ; avatarURL (an empty text is no URL)
  const std::optional<std::string>& avatarImageURL() const { return avatarImageURL_; }
  void setAvatarImageURL(std::optional<std::string> value) { avatarImageURL_ = std::move(value); }
  /// "" ; filled by the type protocol, not by the base copy
  const std::string& avatarId() const { return avatarId_; }
  void setAvatarId(std::string value) { avatarId_ = std::move(value); }
  /// "" ; barcodeString
  const std::string& barcodeID() const { return barcodeID_; }
  void setBarcodeID(std::string value) { barcodeID_ = std::move(value); }
  /// "" ; categoryId
  const std::string& categoryID() const { return categoryID_; }
  void setCategoryID(std::string value) { categoryID_ = std::move(value); }
  /// "" ; categoryName
  const std::string& categoryName() const { return categoryName_; }
  void setCategoryName(std::string value) { categoryName_ = std::move(value); }
  /// the unknown-date marker (1970-01-01 00:00:01 UTC) ; passExpirationDate
  Date endValidityDate() const { return endValidityDate_; }
  void setEndValidityDate(Date value) { endValidityDate_ = value; }
  /// false ; isRenewable
  bool entitlementRenewable() const { return entitlementRenewable_; }
  void setEntitlementRenewable(bool value) { entitlementRenewable_ = value; }
  /// "" ; not copied
  const std::string& sku() const { return sku_; }
  void setSku(std::string value) { sku_ = std::move(value); }
  /// "" ; profileId
  const std::string& profileId() const { return profileId_; }
  void setProfileId(std::string value) { profileId_ = std::move(value); }
  /// "" ; holderName
  const std::string& holderName() const { return holderName_; }
  void setHolderName(std::string value) { holderName_ = std::move(value); }
  /// "" ; nickname
  const std::string& nickname() const { return nickname_; }
  void setNickname(std::string value) { nickname_ = std::move(value); }
  /// false ; monthlyPaymentEligible
  bool monthlyPaymentEligible() const { return monthlyPaymentEligible_; }
  void setMonthlyPaymentEligible(bool value) { monthlyPaymentEligible_ = value; }
  /// "USD" ; currency
  const std::string& currency() const { return currency_; }
  void setCurrency(std::string value) { currency_ = std::move(value); }
  /// 0 ; totalPrice
  float totalPrice() const { return totalPrice_; }
  void setTotalPrice(float value) { totalPrice_ = value; }
  /// 0 ; pricePerMonth (also the payment protocol's pricePerMonth)
  float pricePerMonth() const { return pricePerMonth_; }
  void setPricePerMonth(float value) { pricePerMonth_ = value; }
  /// none ; filled by toVNLEntitlement from the manager's apRenewalOptions
  const std::optional<std::vector<std::shared_ptr<VNLEntitlement>>>& apRenewalOptions() const {
    return apRenewalOptions_;
  }
  void setApRenewalOptions(std::optional<std::vector<std::shared_ptr<VNLEntitlement>>> value) {
    apRenewalOptions_ = std::move(value);
  }
  /// empty ; blockoutDates
  const std::vector<Date>& blockoutDates() const { return blockoutDates_; }
  void setBlockoutDates(std::vector<Date> value) { blockoutDates_ = std::move(value); }
  /// false ; isShared
  bool shared() const { return shared_; }
  void setShared(bool value) { shared_ = value; }
  /// false ; isSellable
  bool sellable() const { return sellable_; }
  void setSellable(bool value) { sellable_ = value; }
  /// "" ; defaultRenewableProductId
  const std::string& defaultRenewableProductId() const { return defaultRenewableProductId_; }
  void setDefaultRenewableProductId(std::string value) { defaultRenewableProductId_ = std::move(value); }
  /// "" ; benefits
  const std::string& benefits() const { return benefits_; }
  void setBenefits(std::string value) { benefits_ = std::move(value); }
  /// 0 ; currentTicketValue
  float currentTicketValue() const { return currentTicketValue_; }
  void setCurrentTicketValue(float value) { currentTicketValue_ = value; }
  /// "" ; shortEntitlementName
  const std::string& shortEntitlementName() const { return shortEntitlementName_; }
  void setShortEntitlementName(std::string value) { shortEntitlementName_ = std::move(value); }

  // --- Computed properties ---

  /// The value of `entitlementRenewable`; setting it sets `entitlementRenewable`
  /// (the type protocol's isRenewable is this same storage).
  bool isRenewable() const { return entitlementRenewable_; }
  void setIsRenewable(bool value) { entitlementRenewable_ = value; }

  /// True when `profileId` equals the signed-in guest's `kuid` of the
  /// entitlements manager. Reading it with no manager or no kuid is a
  /// programming error: the program stops with a message on stderr.
  bool isMe() const;

  /// One line of 21 entries "label: value, " (see the .cpp for the labels).
  virtual std::string debugDescription() const;

  /// Every field under its own name, the fields of the adopted protocols too;
  /// dates as RFC 3339 text, absent values as null.
  virtual Json toJson() const;

 protected:
  /// The last step of initWith, after the protocols' copy operations. Does nothing here.
  virtual void finishInit(const ENTMEntitlement& entitlement);

 private:
  /// The capability protocols of `object`'s own class and their copy
  /// operations, decided on the first object of that class.
  static const AdoptedProtocols& adoptedProtocolsOf(const VNLEntitlement& object);
  void populate(const ENTMEntitlement& entitlement, const AdoptedProtocols& adopted);
  void populateBaseFields(const ENTMEntitlement& entitlement);

  std::string productInstanceID_;
  std::string passDisplayName_;
  std::string passNameAndAge_;
  std::string guestIDType_;
  std::optional<std::string> avatarImageURL_;
  std::string avatarId_;
  std::string barcodeID_;
  std::string categoryID_;
  std::string categoryName_;
  Date endValidityDate_ = Date::unknownMarker();
  bool entitlementRenewable_ = false;
  std::string sku_;
  std::string profileId_;
  std::string holderName_;
  std::string nickname_;
  bool monthlyPaymentEligible_ = false;
  std::string currency_ = "USD";
  float totalPrice_ = 0;
  float pricePerMonth_ = 0;
  std::optional<std::vector<std::shared_ptr<VNLEntitlement>>> apRenewalOptions_;
  std::vector<Date> blockoutDates_;
  bool shared_ = false;
  bool sellable_ = false;
  std::string defaultRenewableProductId_;
  std::string benefits_;
  float currentTicketValue_ = 0;
  std::string shortEntitlementName_;
};

/// The case name ("annualPass"), as the platform prints an enumeration case.
std::string describe(VNLEntitlement::Type type);

constexpr std::int64_t rawValue(VNLEntitlement::Type type) { return static_cast<std::int64_t>(type); }

}  // namespace varnel
