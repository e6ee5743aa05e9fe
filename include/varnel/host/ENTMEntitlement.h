#pragma once
// The entitlements manager's record of one guest entitlement, as the manager
// hands it out. Every field the manager may leave out is optional; flags are
// plain booleans (false when not given).

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "varnel/platform/Date.h"
#include "varnel/platform/Json.h"

namespace varnel {

/// An affiliation the manager knows the guest by (all guests, residents, ...).
struct ENTMAffiliation {
  /// The identifying string, for example "STD_GST" for all guests.
  std::string affiliationId;
  /// The manager's ordering value; lower comes first.
  std::int64_t sortOrder = 0;

  friend bool operator==(const ENTMAffiliation&, const ENTMAffiliation&) = default;
};

struct ENTMEntitlement;
using ENTMEntitlementRef = std::shared_ptr<const ENTMEntitlement>;

/// An element of one of the manager's untyped lists: an entitlement, or some
/// other value that the manager put there.
using ENTMAnyObject = std::variant<ENTMEntitlementRef, Json>;
using ENTMAnyList = std::vector<ENTMAnyObject>;

/// The list as entitlements, when every element is one (an empty list is);
/// otherwise none.
std::optional<std::vector<ENTMEntitlementRef>> asEntitlementList(const ENTMAnyList& list);

/// The run-time type name of an untyped list, for diagnostics:
/// "Array<ENTMEntitlement>" when it holds only entitlements, else "Array<Any>".
std::string runtimeTypeName(const ENTMAnyList& list);

struct ENTMEntitlement {
  // Identity and display
  std::optional<std::string> productInstanceId;
  std::optional<std::string> passTypeName;
  std::optional<std::string> ticketAgeGroupTitle;
  std::optional<std::string> guestType;
  std::optional<std::string> avatarURL;
  std::optional<std::string> avatarId;
  std::optional<std::string> barcodeString;
  std::optional<std::string> categoryId;
  std::optional<std::string> categoryName;
  std::optional<std::string> productType;
  std::optional<std::string> shortEntitlementName;
  std::optional<std::string> benefits;

  // Owner
  std::optional<std::string> profileId;
  std::optional<std::string> holderName;
  std::optional<std::string> firstName;
  std::optional<std::string> lastName;
  std::optional<std::string> middleName;
  std::optional<std::string> nickname;
  std::optional<std::string> ownerKuid;
  std::optional<std::string> ownerXid;
  std::optional<std::string> ownerGuid;
  std::optional<std::vector<std::string>> guestIdentifierArray;
  std::optional<Json> optionTypeAndValueArray;
  std::optional<std::string> ageGroup;

  // Status
  std::optional<std::string> status;
  std::optional<std::string> exchangeStatus;
  bool isShared = false;
  bool isSellable = false;
  bool isRenewable = false;

  // Validity
  std::optional<Date> passExpirationDate;
  std::optional<Date> passValidityStartDate;
  std::optional<Date> startDate;
  std::optional<Date> endDate;
  std::optional<std::int64_t> numberOfDays;
  std::optional<double> daysRemaining;
  std::optional<std::string> calendarId;
  std::optional<std::string> admissionDays;
  std::optional<std::vector<Date>> blockoutDates;

  // Price and payment
  bool monthlyPaymentEligible = false;
  std::optional<std::string> currency;
  std::optional<float> totalPrice;
  std::optional<float> pricePerMonth;
  std::optional<float> subTotalPrice;
  std::optional<float> tax;
  std::optional<float> currentTicketValue;
  std::optional<std::string> downpayment;
  std::optional<std::string> discount;

  // Location
  std::optional<std::string> address;
  std::optional<std::string> state;
  std::optional<std::string> postalCode;
  std::optional<std::string> country;
  std::optional<std::string> city;

  // Policy
  std::optional<std::string> policyTitle;
  std::optional<Json> policyArray;
  std::optional<std::string> policyLink;
  std::optional<std::string> calculatedPolicyText;

  // Government ID
  bool govIdLinked = false;
  std::optional<std::string> orderConfirmationNumber;

  // Assigned seat
  std::optional<std::string> seatName;
  std::optional<std::string> rowName;
  std::optional<std::string> sectionName;

  // Renewal and upgrade
  std::optional<std::string> defaultRenewableProductId;
  /// Untyped, as the manager declares it: normally a list of entitlements.
  std::optional<ENTMAnyList> apRenewalOptions;
  /// Annual passes a ticket may be upgraded to, by affiliation identifier.
  std::optional<std::map<std::string, std::vector<ENTMEntitlementRef>>> apUpgradeOptions;
  /// The affiliations that the upgrade options apply to.
  std::optional<std::vector<ENTMAffiliation>> affiliationInfo;
};

}  // namespace varnel
