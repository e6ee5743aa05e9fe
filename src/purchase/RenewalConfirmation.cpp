#include "varnel/purchase/RenewalConfirmation.h"

#include "RecordJson.h"

namespace varnel {

Json RenewalConfirmation::toJson() const {
  return Json{{"products", purchase_detail::arrayOf(fields_.products)},
              {"guests", purchase_detail::arrayOf(fields_.guests)},
              {"pricing", fields_.pricing.toJson()},
              {"payment", fields_.payment.toJson()},
              {"paymentPlan", fields_.paymentPlan},
              {"confirmationNumber", fields_.confirmationNumber},
              {"status", fields_.status}};
}

}  // namespace varnel
