#include "varnel/services/VNLParseCreateOrderResponse.h"

#include <algorithm>

#include "CommerceRequestSupport.h"
#include "JsonShapes.h"
#include "varnel/host/KTVCPrintUtility.h"
#include "varnel/services/CreateOrderResponseKey.h"

namespace varnel {

using Key = CreateOrderResponseKey;
using namespace services_detail;

namespace {

// The order identifier: last path component of links → self → href.
std::string orderIdentifier(const Json& result) {
  const Json* links = objectMember(result, Key::links);
  const Json* self = links ? stringDictionaryMember(*links, Key::self) : nullptr;
  const std::string* href = self ? jsonString(*self, Key::href) : nullptr;
  if (!href) return {};
  return lastPathComponent(*href).value_or("");
}

// components → annualpass → names → (display-name table) → text.
const std::string* passNameOfEntry(const Json& entry) {
  const Json* components = objectMember(entry, Key::components);
  const Json* annualPass = components ? objectMember(*components, Key::annualpass) : nullptr;
  const Json* names = annualPass ? objectMember(*annualPass, Key::names) : nullptr;
  const Json* displayNames = names ? stringDictionaryMember(*names, Key::ktvrName) : nullptr;
  return displayNames ? jsonString(*displayNames, Key::text) : nullptr;
}

std::vector<std::string> participantsOfEntry(const Json& entry) {
  const Json* assignment = objectMember(entry, Key::entitlementAssignment);
  if (!assignment) return {};
  return stringArrayMember(*assignment, Key::guestReferenceIds).value_or(std::vector<std::string>{});
}

std::string streetAddressOf(const Json& address) {
  std::string street = stringOrEmpty(address, Key::line1);
  const std::string* line2 = jsonString(address, Key::line2);
  if (line2 && !line2->empty()) street += "\n" + *line2;
  return street;
}

const std::string& passNameFor(const std::string& participantId, const std::vector<RenewableProduct>& products) {
  static const std::string none;
  for (const auto& product : products) {
    const auto& ids = product.participantId;
    if (std::find(ids.begin(), ids.end(), participantId) != ids.end()) return product.passName;
  }
  return none;
}

}  // namespace

RenewalOrder VNLParseCreateOrderResponse::parseCreateOrder(const Json& result) const {
  RenewalOrder order;
  order.pricing = priceAndRemainingBalance(result);
  order.orderId = orderIdentifier(result);
  order.bookingTermsAndConditions = stringOrEmpty(result, Key::bookingTermsAndConditions);
  if (const Json* items = objectMember(result, Key::orderItems)) order.products = orderItems(*items);
  if (const Json* guests = objectArrayMember(result, Key::guests)) {
    order.guests = passHolder(guests->get_ref<const Json::array_t&>(), order.products);
  }
  if (const Json* termsAndConditions = objectMember(result, Key::termsAndConditions)) {
    order.termsAndConditionsPolicies = termsAndConditionsPolicies(*termsAndConditions);
  } else {
    KTVCPrintUtility::debugPrint("WARNING: Could not retrieve terms & conditions policies",
                                 moduleSite(kCreateOrderParserFile, "parseCreateOrder(result:)"));
  }
  // Every parsed order counts as a monthly plan; the amounts tell the kind.
  order.paymentPlan = true;
  return order;
}

RenewalPricing VNLParseCreateOrderResponse::priceAndRemainingBalance(const Json& result) const {
  RenewalPricing pricing;
  if (const Json* prices = objectMember(result, Key::pricing)) {
    pricing.subtotal = stringMember(*prices, Key::subtotal);
    pricing.taxAmount = stringMember(*prices, Key::tax);
    pricing.gratuity = stringMember(*prices, Key::gratuity);
    pricing.total = stringMember(*prices, Key::total);
    pricing.currency = stringOrEmpty(*prices, Key::currency);
    const Json* taxIncluded = jsonMember(*prices, Key::taxIncluded);
    pricing.taxIncluded = taxIncluded && taxIncluded->is_boolean() && taxIncluded->get<bool>();
  }
  if (const Json* deposit = objectMember(result, Key::totalDepositDue)) {
    pricing.depositDue = stringMember(*deposit, Key::total);
  }
  if (const Json* monthly = stringDictionaryMember(result, Key::monthlyPaymentAmount)) {
    pricing.monthlyPaymentAmount = stringMember(*monthly, Key::value);
  }
  if (const Json* downPayment = stringDictionaryMember(result, Key::downPaymentAmount)) {
    pricing.downPaymentAmount = stringMember(*downPayment, Key::value);
  }
  return pricing;
}

std::vector<RenewableProduct> VNLParseCreateOrderResponse::orderItems(const Json& orders) const {
  // "limit" and "total" describe the page; every entry is used regardless.
  const Json* entries = objectArrayMember(orders, Key::entries);
  if (!entries) return {};
  std::vector<RenewableProduct> products;
  products.reserve(entries->size());
  // An entry without a readable name carries the previous entry's name over.
  std::string passName;
  for (const Json& entry : *entries) {
    if (const std::string* name = passNameOfEntry(entry)) passName = *name;
    products.push_back(RenewableProduct{passName, participantsOfEntry(entry)});
  }
  return products;
}

std::vector<RenewableGuest> VNLParseCreateOrderResponse::passHolder(
    std::span<const Json> guests, const std::vector<RenewableProduct>& orders) const {
  const std::optional<std::string> signedIn = signedInKuid();
  std::vector<RenewableGuest> holders;
  holders.reserve(guests.size());
  for (const Json& guest : guests) {
    RenewableGuest::Fields fields;
    fields.participantId = stringOrEmpty(guest, Key::participantId);
    if (const Json* name = stringDictionaryMember(guest, Key::name)) {
      fields.guestFirstName = stringOrEmpty(*name, Key::firstName);
      fields.guestLastName = stringOrEmpty(*name, Key::lastName);
    }
    fields.guestFullName = fields.guestFirstName + " " + fields.guestLastName;
    if (const Json* phone = objectMember(guest, Key::phoneNumber)) {
      fields.phoneNumberType = stringOrEmpty(*phone, Key::type);
      fields.phoneNumber = stringOrEmpty(*phone, Key::number);
    }
    fields.emailId = stringOrEmpty(guest, Key::emailAddress);
    fields.dob = stringOrEmpty(guest, Key::birthDate);
    if (const Json* address = objectMember(guest, Key::address)) {
      fields.streetAddress = streetAddressOf(*address);
      fields.city = stringOrEmpty(*address, Key::city);
      fields.state = stringOrEmpty(*address, Key::stateOrProvince);
      fields.zipCode = stringOrEmpty(*address, Key::postalCode);
      fields.country = stringOrEmpty(*address, Key::country);
    }
    fields.guestKuid = stringOrEmpty(guest, Key::kuid);
    fields.avatarID = stringOrEmpty(guest, Key::avatarImage);
    fields.isMe = signedIn && *signedIn == fields.guestKuid;
    fields.guestPassName = passNameFor(fields.participantId, orders);
    holders.emplace_back(std::move(fields));
  }
  return holders;
}

}  // namespace varnel
