#include "varnel/purchase/RenewalOrder.h"

#include <cstdio>
#include <cstdlib>

#include "RecordJson.h"

namespace varnel {

std::string RenewalOrder::debugDescription() const {
  // Only orders filled by the create-order parser are described, and those
  // always hold a product and a guest. Anything else is a programming error.
  if (products.empty() || guests.empty()) {
    std::fputs("RenewalOrder::debugDescription: an order without products or guests cannot be described\n",
               stderr);
    std::fflush(stderr);
    std::abort();
  }
  return "Products: " + products.front().debugDescription() + " \n  Guests: " + guests.front().debugDescription() +
         " \n Pricing: " + pricing.debugDescription() + " \n Terms and condition " + bookingTermsAndConditions;
}

Json RenewalOrder::toJson() const {
  return Json{{"products", purchase_detail::arrayOf(products)},
              {"guests", purchase_detail::arrayOf(guests)},
              {"pricing", pricing.toJson()},
              {"paymentPlan", paymentPlan},
              {"orderId", orderId},
              {"bookingTermsAndConditions", bookingTermsAndConditions},
              {"termsAndConditionsPolicies", purchase_detail::arrayOf(termsAndConditionsPolicies)}};
}

}  // namespace varnel
