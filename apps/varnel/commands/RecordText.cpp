#include "commands/RecordText.h"

#include <vector>

namespace varnel::cli {
namespace {

template <typename Record>
std::string bulletList(const std::vector<Record>& records) {
  if (records.empty()) return " none\n";
  std::string text = "\n";
  for (const auto& record : records) text += "- " + record.debugDescription() + "\n";
  return text;
}

}  // namespace

// An order can be described only with a product and a guest; any other order
// is shown field by field instead.
std::string readableOrder(const RenewalOrder& order) {
  if (!order.products.empty() && !order.guests.empty()) return order.debugDescription() + "\n";
  return "Order: " + order.orderId + "\nPayment plan: " + (order.paymentPlan ? "true" : "false") +
         "\nProducts:" + bulletList(order.products) + "Guests:" + bulletList(order.guests) +
         "Pricing: " + order.pricing.debugDescription() + "\nTerms and condition " + order.bookingTermsAndConditions +
         "\nPolicies: " + std::to_string(order.termsAndConditionsPolicies.size()) + "\n";
}

std::string readableConfirmation(const RenewalConfirmation& confirmation) {
  const RenewalPayment& payment = confirmation.payment();
  return "Confirmation number: " + confirmation.confirmationNumber() + "\nStatus: " + confirmation.status() +
         "\nPayment plan: " + (confirmation.paymentPlan() ? "true" : "false") + "\nPayment: " + payment.cardType() +
         " " + payment.cardSubType() + " " + payment.maskedCardNumber() + ", amount " + payment.amount() +
         "\nPricing: " + confirmation.pricing().debugDescription() + "\nProducts:" +
         bulletList(confirmation.products()) + "Guests:" + bulletList(confirmation.guests());
}

}  // namespace varnel::cli
