#include "varnel/services/VNLParseUpdateSubmitResponse.h"

#include <optional>
#include <vector>

#include "JsonShapes.h"
#include "varnel/host/KTVCPrintUtility.h"
#include "varnel/services/CreateOrderResponseKey.h"
#include "varnel/services/VNLParseCreateOrderResponse.h"

namespace varnel {

using Key = CreateOrderResponseKey;
using namespace services_detail;

namespace {

constexpr std::string_view kUpdateSubmitParserFile = "Classes/Parser/VNLParseUpdateSubmitResponse";

void log(std::string_view message, std::string_view function,
         std::source_location location = std::source_location::current()) {
  KTVCPrintUtility::debugPrint(message, moduleSite(kUpdateSubmitParserFile, function, location));
}

}  // namespace

RenewalConfirmation VNLParseUpdateSubmitResponse::parse(const Json& result) const {
  constexpr std::string_view function = "parse(result:)";
  const VNLParseCreateOrderResponse order;
  RenewalConfirmation::Fields fields;
  fields.pricing = order.priceAndRemainingBalance(result);

  // Products exist only when "orderItems" is an object; guests are read only
  // alongside them.
  const Json* items = objectMember(result, Key::orderItems);
  std::optional<std::vector<RenewableProduct>> products;
  if (items) products = order.orderItems(*items);

  const Json* entries = items ? objectArrayMember(*items, Key::entries) : nullptr;
  const std::string* confirmationNumber =
      entries && !entries->empty() ? jsonString(entries->front(), Key::confirmationNumber) : nullptr;
  if (confirmationNumber) {
    fields.confirmationNumber = *confirmationNumber;
  } else {
    log("Entries is not valid [[String:AnyObject]] or confirmation number is not valid String", function);
  }

  const Json* guests = objectArrayMember(result, Key::guests);
  if (guests && products) {
    fields.guests = order.passHolder(guests->get_ref<const Json::array_t&>(), *products);
  } else {
    log("Guests is not valid [[String:AnyObject]] or products is nil", function);
  }

  const Json* payments = objectArrayMember(result, Key::payments);
  if (payments && !payments->empty()) {
    fields.payment = payment(payments->front());
  } else {
    log("Payments is not valid [[String:AnyObject]] or first payment index is not valid [String:AnyObject]",
        function);
  }

  if (const std::string* status = jsonString(result, Key::status)) {
    fields.status = *status;
  } else {
    log("Status is not valid String or status is nil", function);
  }

  if (products) fields.products = std::move(*products);
  // Every confirmation counts as a monthly plan, as every parsed order does.
  fields.paymentPlan = true;
  return RenewalConfirmation(std::move(fields));
}

RenewalPayment VNLParseUpdateSubmitResponse::payment(const Json& payment) const {
  constexpr std::string_view function = "payment(_:)";
  RenewalPayment::Fields fields;
  if (const Json* card = objectMember(payment, Key::paymentCard)) {
    if (const std::string* cardType = jsonString(*card, Key::cardType)) {
      fields.cardType = *cardType;
    } else {
      log("Payment card type is not valid String", function);
    }
    if (const std::string* cardSubType = jsonString(*card, Key::cardSubType)) {
      fields.cardSubType = *cardSubType;
    } else {
      log("Payment card sub type is not valid String", function);
    }
    if (const std::string* masked = jsonString(*card, Key::maskedCardNumber)) {
      fields.maskedCardNumber = *masked;
    } else {
      log("Payment card maskedCardNumber is not valid String", function);
    }
  } else {
    log("Payment card is not valid [String:AnyObject]", function);
  }
  if (const std::string* amount = jsonString(payment, Key::amount)) {
    fields.amount = *amount;
  } else {
    log("Payment amount is not valid String", function);
  }
  return RenewalPayment(std::move(fields));
}

}  // namespace varnel
