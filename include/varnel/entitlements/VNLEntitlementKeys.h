#pragma once
// Keys of the JSON dictionaries that passes and tickets are made from, and the
// identifier of the affiliation that stands for all guests.

#include <string_view>

namespace varnel {

inline constexpr std::string_view VNLEntitlementRenewableKey = "renewable";
inline constexpr std::string_view VNLEntitlementProductTypeIdKey = "productTypeId";
inline constexpr std::string_view VNLEntitlementStartDateTime = "startDateTime";
inline constexpr std::string_view VNLEntitlementEndDateTime = "endDateTime";
inline constexpr std::string_view VNLEntitlementAddressKey = "address";
inline constexpr std::string_view VNLEntitlementAssignedGuestKey = "assignedGuest";
inline constexpr std::string_view VNLEntitlementAddressLineKey = "addressLine1";
inline constexpr std::string_view VNLEntitlementStateProvinceKey = "stateProvince";
inline constexpr std::string_view VNLEntitlementCountryKey = "country";
inline constexpr std::string_view VNLEntitlementPostalCodeKey = "postalCode";
inline constexpr std::string_view VNLEntitlementCityKey = "city";
inline constexpr std::string_view VNLEntitlementAllGuestAffiliationID = "STD_GST";

// Price and payment keys of the tickets' JSON.
inline constexpr std::string_view VNLEntitlementTotalPriceKey = "totalPrice";
inline constexpr std::string_view VNLEntitlementPricePerMonthKey = "pricePerMonth";
inline constexpr std::string_view VNLEntitlementSubTotalPriceKey = "subTotalPrice";
inline constexpr std::string_view VNLEntitlementTaxKey = "tax";
inline constexpr std::string_view VNLEntitlementCurrencyKey = "currency";
inline constexpr std::string_view VNLEntitlementMonthlyPaymentEligibleKey = "monthlyPaymentEligible";
inline constexpr std::string_view VNLEntitlementDownpaymentKey = "downpayment";
inline constexpr std::string_view VNLEntitlementDiscountKey = "discount";

}  // namespace varnel
