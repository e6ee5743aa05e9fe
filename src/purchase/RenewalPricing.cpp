#include "varnel/purchase/RenewalPricing.h"

#include "varnel/platform/Describe.h"

namespace varnel {
namespace {

// Amounts print bare, and as empty text when absent.
std::string amountText(const std::optional<std::string>& amount) { return amount.value_or(""); }

Json amountJson(const std::optional<std::string>& amount) { return amount ? Json(*amount) : Json(nullptr); }

}  // namespace

std::string RenewalPricing::debugDescription() const {
  std::string text;
  text.reserve(192);
  text += "subtotal: " + amountText(subtotal);
  text += " \n gratuity: " + amountText(gratuity);
  text += " \n total: " + amountText(total);
  text += " \n currency: " + currency;
  text += " \n taxIncluded: " + describe(taxIncluded);
  text += " \n taxAmount: " + amountText(taxAmount);
  text += " \n monthlyPaymentAmount: " + amountText(monthlyPaymentAmount);
  text += " \n downPaymentAmount: " + amountText(downPaymentAmount);
  text += " \n depositDue: " + amountText(depositDue);
  return text;
}

Json RenewalPricing::toJson() const {
  return Json{{"subtotal", amountJson(subtotal)},
              {"gratuity", amountJson(gratuity)},
              {"total", amountJson(total)},
              {"currency", currency},
              {"taxIncluded", taxIncluded},
              {"taxAmount", amountJson(taxAmount)},
              {"monthlyPaymentAmount", amountJson(monthlyPaymentAmount)},
              {"downPaymentAmount", amountJson(downPaymentAmount)},
              {"depositDue", amountJson(depositDue)}};
}

}  // namespace varnel
