// The commerce endpoints of the mock service: what each checks and does.
// Every refusal is a booking error body; the typeIds are listed in
// apps/varnel-mock-commerce/README.md.

#include <ctime>

#include "CommerceService.h"

#include <strings.h>

namespace varnel::mock {
namespace {

/// A stored card with this number is declined by the card's issuer.
constexpr std::string_view kDeclinedCardNumber = "4000000000000002";

constexpr std::string_view kDestinations[] = {"80007798", "80008297"};
constexpr std::string_view kStores[] = {"oqs_mobile", "zlt_mobile", "oqs", "zlt"};

Reply invalid(const std::string& message) { return jsonReply(400, bookingError("INVALID_REQUEST", message)); }

template <std::size_t N>
bool oneOf(const std::string* text, const std::string_view (&allowed)[N]) {
  if (!text) return false;
  for (std::string_view value : allowed) {
    if (*text == value) return true;
  }
  return false;
}

// Whether the card's expiration month has passed (a card without a readable
// date is taken as valid).
bool expired(const Json& card) {
  auto year = parseAmount(memberText(card, "expirationYear"));
  auto month = parseAmount(memberText(card, "expirationMonth"));
  if (!year || !month) return false;
  std::time_t now = std::time(nullptr);
  std::tm utc{};
  gmtime_r(&now, &utc);
  long long current = (utc.tm_year + 1900LL) * 12 + utc.tm_mon + 1;
  return *year / 100 * 12 + *month / 100 < current;
}

}  // namespace

// "Bearer TOKEN", the scheme in any case (schemes are case-insensitive), the token exactly.
std::optional<Reply> CommerceService::authorize(const Call& call) const {
  const std::string* authorization = call.header("Authorization");
  constexpr std::string_view kScheme = "Bearer ";
  const bool valid = authorization && !household_.accessToken().empty() && authorization->size() > kScheme.size() &&
                     strncasecmp(authorization->data(), kScheme.data(), kScheme.size()) == 0 &&
                     authorization->substr(kScheme.size()) == household_.accessToken();
  if (!valid) return jsonReply(401, bookingError("UNAUTHORIZED", "A valid bearer token is required."));
  return std::nullopt;
}

Reply CommerceService::paymentAccounts(const Endpoint& endpoint) const {
  if (endpoint.parameter != household_.kuid()) {
    return jsonReply(403, bookingError("FORBIDDEN", "The token does not belong to this guest."));
  }
  return jsonReply(200, paymentAccountsAnswer(household_));
}

Reply CommerceService::createOrder(const Endpoint& endpoint, const std::optional<Json>& body) {
  if (endpoint.parameter != household_.kuid()) {
    return jsonReply(403, bookingError("FORBIDDEN", "The token does not belong to this guest."));
  }
  if (!body || !body->is_object()) return invalid("The body is not a JSON object.");
  const std::string* kuid = jsonString(*body, "kuid");
  if (!kuid) return invalid("\"kuid\" is missing.");
  if (*kuid != household_.kuid()) return jsonReply(403, bookingError("FORBIDDEN", "The order is for another guest."));
  if (!oneOf(jsonString(*body, "destinationId"), kDestinations)) return invalid("\"destinationId\" is not a resort.");
  if (!oneOf(jsonString(*body, "storeId"), kStores)) return invalid("\"storeId\" is not a store.");
  const Json* plan = jsonMember(*body, "paymentPlan");
  if (!plan || !plan->is_boolean()) return invalid("\"paymentPlan\" must be true or false.");
  const Json* products = jsonMember(*body, "products");
  if (!products || !products->is_array() || products->empty()) return invalid("\"products\" must list the passes.");

  Order order;
  order.ownerKuid = *kuid;
  order.paymentPlan = plan->get<bool>();
  order.destinationId = *jsonString(*body, "destinationId");
  order.storeId = *jsonString(*body, "storeId");
  for (const Json& product : *products) {
    const Json* quantity = jsonMember(product, "quantity");
    const std::string* entitlementId = jsonString(product, "entitlementId");
    const std::string* guestId = jsonString(product, "guestId");
    if (memberText(product, "categoryId") != "AnnualPassRenewal" || memberText(product, "guestIdType") != "kuid" ||
        !quantity || !quantity->is_number_integer() || quantity->get<long long>() != 1 || !entitlementId || !guestId) {
      return invalid("Each product needs categoryId \"AnnualPassRenewal\", quantity 1, an entitlementId, "
                     "guestIdType \"kuid\" and a guestId.");
    }
    if (!household_.guest(*guestId)) return invalid("The guest of a product is not of this household.");
    const ENTMEntitlement* pass = household_.pass(*entitlementId);
    if (!pass) return jsonReply(400, bookingError("ENTITLEMENT_NOT_FOUND", "No such pass in this household."));
    auto price = Household::renewalPrice(*pass);
    std::string passId = pass->productInstanceId.value_or(*entitlementId);
    if (!price || renewedPasses_.contains(passId)) {
      return jsonReply(400, bookingError("ENTITLEMENT_NOT_RENEWABLE", "This pass cannot be renewed."));
    }
    for (const OrderLine& line : order.lines) {
      if (line.entitlementId == passId) return invalid("A pass is listed twice.");
    }
    if (order.paymentPlan && !price->perMonth) {
      return jsonReply(400, bookingError("PAYMENT_PLAN_NOT_AVAILABLE", "This renewal cannot be paid monthly."));
    }
    if (!order.lines.empty() && price->currency != order.currency) return invalid("The passes are priced in different currencies.");
    order.currency = price->currency;
    std::string holder = Household::holderKuid(*pass);
    order.total += price->total;
    order.subtotal += price->subtotal;
    order.tax += price->tax;
    order.perMonth += price->perMonth.value_or(0);
    order.downPayment += price->downPayment.value_or(0);
    order.lines.push_back(OrderLine{passId, holder.empty() ? *guestId : holder, memberText(product, "avatarImage"),
                                    std::move(*price)});
  }
  order.id = "ORD" + std::to_string(700000 + ++orderCount_);
  Json answer = orderAnswer(order, household_, baseUrl_);
  orders_[order.id] = std::move(order);
  return jsonReply(200, answer);
}

std::variant<Order*, Reply> CommerceService::ownOrder(const Endpoint& endpoint) {
  auto found = orders_.find(endpoint.parameter);
  if (found == orders_.end()) return jsonReply(404, bookingError("ORDER_NOT_FOUND", "No such order."));
  if (found->second.ownerKuid != household_.kuid()) {
    return jsonReply(403, bookingError("FORBIDDEN", "The order belongs to another guest."));
  }
  return &found->second;
}

std::variant<const Json*, Reply> CommerceService::payingAccount(const Order& order, const std::optional<Json>& body) const {
  if (!body || !body->is_object()) return invalid("The body is not a JSON object.");
  const Json* payments = jsonMember(*body, "payments");
  const Json* payment = payments && payments->is_array() && !payments->empty() ? &payments->front() : nullptr;
  const Json* reference = payment ? jsonMember(*payment, "paymentReference") : nullptr;
  const std::string* amount = payment ? jsonString(*payment, "amount") : nullptr;
  if (!reference || !jsonString(*reference, "id") || !jsonString(*reference, "key") || !amount) {
    return invalid("\"payments\" must hold a payment with a paymentReference (id, key) and an amount.");
  }
  auto cents = parseAmount(*amount);
  if (!cents || *cents != (order.paymentPlan ? 0 : order.total)) {
    return jsonReply(400, bookingError("PAYMENT_AMOUNT_MISMATCH", "The amount does not match the order."));
  }
  const Json* account = household_.paymentAccount(*jsonString(*reference, "id"), *jsonString(*reference, "key"));
  if (!account) return jsonReply(400, bookingError("INVALID_PAYMENT_REFERENCE", "No such stored card."));
  return account;
}

Reply CommerceService::contract(const Endpoint& endpoint, const std::optional<Json>& body) {
  auto order = ownOrder(endpoint);
  if (auto* refusal = std::get_if<Reply>(&order)) return *refusal;
  const Order& owned = *std::get<Order*>(order);
  if (!owned.paymentPlan) {
    return jsonReply(400, bookingError("CONTRACT_NOT_AVAILABLE", "The order is not paid monthly."));
  }
  auto account = payingAccount(owned, body);
  if (auto* refusal = std::get_if<Reply>(&account)) return *refusal;
  return jsonReply(200, contractAnswer(owned, *std::get<const Json*>(account), baseUrl_));
}

Reply CommerceService::checkout(const Call& call, const Endpoint& endpoint, const std::optional<Json>& body) {
  auto found = ownOrder(endpoint);
  if (auto* refusal = std::get_if<Reply>(&found)) return *refusal;
  Order& order = *std::get<Order*>(found);
  if (!body || !body->is_object()) return invalid("The body is not a JSON object.");
  if (const std::string* mock = call.header(kMockHeaderName); mock && *mock == kPendingOrderHeaderValue) {
    return jsonReply(500, bookingError("ORDER_PENDING", "The order is pending with the ticketing system.", "871"));
  }
  if (order.charges > 0) {
    return jsonReply(409, bookingError("ORDER_ALREADY_PURCHASED", "The order has already been paid for."));
  }
  // Orders made at the same time may renew the same pass: only the first paid one does.
  for (const OrderLine& line : order.lines) {
    if (renewedPasses_.contains(line.entitlementId)) {
      return jsonReply(409, bookingError("ENTITLEMENT_ALREADY_RENEWED", "Another order has already renewed this pass."));
    }
  }
  auto paying = payingAccount(order, body);
  if (auto* refusal = std::get_if<Reply>(&paying)) return *refusal;
  const Json& account = *std::get<const Json*>(paying);
  const Json* card = jsonMember(account, "card");
  if (card && expired(*card)) {
    return jsonReply(402, bookingError("PAYMENT_BAD_EXPIRATION_DATE", "The card has expired."));
  }
  const Json* privileges = card ? jsonMember(*card, "chargingPrivileges") : nullptr;
  if (!card || memberText(*card, "cardNumber") == kDeclinedCardNumber || (privileges && *privileges == false)) {
    return jsonReply(402, bookingError("PAYMENT_DECLINED", "The card issuer declined the authorization request.",
                                       "051004"));
  }
  order.charges = 1;
  order.confirmationNumber = "KX" + order.id.substr(3);
  for (const OrderLine& line : order.lines) renewedPasses_.insert(line.entitlementId);
  return jsonReply(200, confirmationAnswer(order, household_, account, baseUrl_));
}

Reply CommerceService::routing(const Call& call) const {
  const std::string* name = call.parameter("uid");
  for (const Route& route : options_.routes) {
    if (name && route.name == *name) {
      return jsonReply(200, Json{{"field_endpoint", Json::array({Json{{"value", route.endpoint}}})},
                                 {"field_simulator_header", Json::array({Json{{"value", route.header}}})}});
    }
  }
  return jsonReply(404, Json{{"error", "unknown user"}});
}

}  // namespace varnel::mock
