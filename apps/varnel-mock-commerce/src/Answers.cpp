#include "Answers.h"

namespace varnel::mock {
namespace {

constexpr const char* kPassNameKey = "KTVRO Cart Plus Ticket Only";
constexpr const char* kBookingTerms =
    "Renewed passes are non-transferable and non-refundable. The renewal starts the day after the current pass "
    "expires.";

Json money(const char* key, Cents cents, const std::string& currency) {
  return Json{{key, formatAmount(cents)}, {"currency", currency}};
}

std::string orderHref(const Order& order, const std::string& baseUrl) { return baseUrl + "/commerce/orders/" + order.id; }

const HouseholdGuest* participantOf(const Household& household, const std::string& kuid) {
  const HouseholdGuest* guest = household.guest(kuid);
  return guest ? guest : household.guest(household.kuid());
}

Json orderItems(const Order& order, const Household& household) {
  Json entries = Json::array();
  for (std::size_t i = 0; i < order.lines.size(); ++i) {
    const OrderLine& line = order.lines[i];
    const HouseholdGuest* holder = participantOf(household, line.holderKuid);
    entries.push_back(Json{
        {"id", "item-" + std::to_string(i + 1)},
        {"entitlementId", line.entitlementId},
        {"productId", line.price.optionId},
        {"entitlementAssignment", {{"guestReferenceIds", Json::array({holder ? holder->participantId : ""})}}},
        {"components", {{"annualpass", {{"names", {{kPassNameKey, {{"text", line.price.passName}}}}}}}}},
        {"pricing", {{"total", formatAmount(line.price.total)}, {"currency", order.currency}}}});
  }
  return Json{{"limit", 25}, {"total", entries.size()}, {"entries", std::move(entries)}};
}

Json guests(const Order& order, const Household& household) {
  Json list = Json::array();
  for (const HouseholdGuest& guest : household.guests()) {
    Json entry{{"participantId", guest.participantId},
               {"kuid", guest.kuid},
               {"name", {{"firstName", guest.firstName}, {"lastName", guest.lastName}}},
               {"emailAddress", household.email()},
               {"birthDate", Household::birthDate(guest)}};
    std::string avatar = guest.avatarId;
    for (const OrderLine& line : order.lines) {
      if (line.holderKuid == guest.kuid && !line.avatarImage.empty()) avatar = line.avatarImage;
    }
    if (!avatar.empty()) entry["avatarImage"] = avatar;
    if (!household.phone().is_null()) entry["phoneNumber"] = household.phone();
    if (!household.address().is_null()) entry["address"] = household.address();
    list.push_back(std::move(entry));
  }
  return list;
}

Json policy(std::string id, std::string name, Json descriptions) {
  return Json{{"id", std::move(id)}, {"name", std::move(name)}, {"descriptions", std::move(descriptions)}};
}

Json termsAndConditions(const Order& order) {
  Json policies = Json::array();
  policies.push_back(policy(
      "pol-renewal", "Annual Pass Renewal Terms",
      Json::array({Json{{"id", "d-1"}, {"key", "summary"},
                        {"text", "<p>Each renewed pass is valid for twelve months from its renewal start date.</p>"}},
                   Json{{"id", "d-2"}, {"key", "refunds"},
                        {"text", "<p>Renewals are non-transferable and non-refundable.</p>"}}})));
  if (order.paymentPlan) {
    policies.push_back(policy("pol-monthly", "Monthly Payment Terms",
                              Json::array({Json{{"id", "d-3"},
                                                {"key", "payment"},
                                                {"text", "<p>Twelve monthly payments of " + formatAmount(order.perMonth) +
                                                             " " + order.currency +
                                                             " are charged to the card on file after the down "
                                                             "payment of " +
                                                             formatAmount(order.downPayment) + " " + order.currency +
                                                             ".</p>"}}})));
  }
  int next = 4;
  for (const OrderLine& line : order.lines) {
    if (!line.price.policyTitle) continue;
    Json descriptions = Json::array();
    if (line.price.policyText) {
      descriptions.push_back(
          Json{{"id", "d-" + std::to_string(next++)}, {"key", "details"}, {"text", "<p>" + *line.price.policyText + "</p>"}});
    }
    if (line.price.policyLink) {
      descriptions.push_back(Json{{"id", "d-" + std::to_string(next++)}, {"key", "link"}, {"text", *line.price.policyLink}});
    }
    policies.push_back(policy("pol-" + line.price.optionId, *line.price.policyTitle, std::move(descriptions)));
  }
  return Json{{"policies", std::move(policies)}};
}

// The order's pricing members, shared by the order and the confirmation.
void addPricing(Json& answer, const Order& order) {
  answer["pricing"] = Json{{"subtotal", formatAmount(order.subtotal)},
                           {"tax", formatAmount(order.tax)},
                           {"gratuity", "0.00"},
                           {"total", formatAmount(order.total)},
                           {"currency", order.currency},
                           {"taxIncluded", false}};
  answer["totalDepositDue"] = money("total", order.dueNow(), order.currency);
  if (order.paymentPlan) {
    answer["monthlyPaymentAmount"] = money("value", order.perMonth, order.currency);
    answer["downPaymentAmount"] = money("value", order.downPayment, order.currency);
  }
}

}  // namespace

Json bookingError(std::string_view typeId, std::string_view message, std::optional<std::string_view> systemErrorCode) {
  Json error{{"typeId", typeId}, {"message", message}};
  if (systemErrorCode) error["systemErrorCode"] = *systemErrorCode;
  return Json{{"errors", Json::array({std::move(error)})}, {"status", "FAILED"}};
}

Json paymentAccountsAnswer(const Household& household) {
  return Json{{"paymentAccounts", household.paymentAccounts()}};
}

Json orderAnswer(const Order& order, const Household& household, const std::string& baseUrl) {
  Json answer{{"id", order.id},
              {"status", "PENDING"},
              {"kuid", order.ownerKuid},
              {"destinationId", order.destinationId},
              {"storeId", order.storeId},
              {"paymentPlan", order.paymentPlan},
              {"links", {{"self", {{"href", orderHref(order, baseUrl)}}}}},
              {"bookingTermsAndConditions", kBookingTerms}};
  addPricing(answer, order);
  answer["orderItems"] = orderItems(order, household);
  answer["guests"] = guests(order, household);
  answer["termsAndConditions"] = termsAndConditions(order);
  return answer;
}

Json contractAnswer(const Order& order, const Json& account, const std::string& baseUrl) {
  std::string terms = "a down payment of " + formatAmount(order.downPayment) + " " + order.currency +
                      ", then twelve monthly payments of " + formatAmount(order.perMonth) + " " + order.currency +
                      " charged to the card " + maskedCardNumber(account);
  std::string href = orderHref(order, baseUrl);
  return Json{
      {"contractForEmail", "<html><body><h1>Monthly Payment Agreement</h1><p>Order " + order.id + ": " + terms +
                               ".</p></body></html>"},
      {"contractForMobile", "<h2>Monthly Payment Agreement</h2><p>Order " + order.id + ": " + terms + ".</p>"},
      {"keySections",
       {{"paymentSchedule", href + "/contract/schedule"},
        {"cancellationPolicy", href + "/contract/cancellation"},
        {"summary", "Twelve payments of " + formatAmount(order.perMonth) + " " + order.currency +
                        " after a down payment of " + formatAmount(order.downPayment) + " " + order.currency + "."}}}};
}

Json confirmationAnswer(const Order& order, const Household& household, const Json& account, const std::string& baseUrl) {
  Json answer{{"id", order.id}, {"status", "BOOKED"}, {"links", {{"self", {{"href", orderHref(order, baseUrl)}}}}}};
  addPricing(answer, order);
  Json items = orderItems(order, household);
  for (std::size_t i = 0; i < items["entries"].size(); ++i) {
    // Appended piece by piece: GCC 12 at -O3 reports a false overlap (-Wrestrict) in "-" + text.
    std::string number = order.confirmationNumber;
    if (i > 0) number.append("-").append(std::to_string(i + 1));
    items["entries"][i]["confirmationNumber"] = std::move(number);
  }
  answer["orderItems"] = std::move(items);
  answer["guests"] = guests(order, household);

  const Json* card = jsonMember(account, "card");
  std::string type = card ? memberText(*card, "paymentMethodType") : "";
  std::string subType = type == "DEBIT_CARD" ? "DEBIT" : "CREDIT";
  answer["payments"] = Json::array({Json{
      {"amount", formatAmount(order.dueNow())},
      {"currency", order.currency},
      {"paymentCard",
       {{"cardType", card ? memberText(*card, "paymentMethod") : ""},
        {"cardSubType", subType},
        {"maskedCardNumber", maskedCardNumber(account)}}}}});
  return answer;
}

std::string maskedCardNumber(const Json& account) {
  const Json* card = jsonMember(account, "card");
  std::string number = card ? memberText(*card, "cardNumber") : "";
  if (number.size() < 4) return std::string(12, 'X');
  return std::string(number.size() - 4, 'X') + number.substr(number.size() - 4);
}

}  // namespace varnel::mock
