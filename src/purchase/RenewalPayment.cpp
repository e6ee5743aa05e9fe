#include "varnel/purchase/RenewalPayment.h"

namespace varnel {

Json RenewalPayment::toJson() const {
  return Json{{"cardType", fields_.cardType},
              {"cardSubType", fields_.cardSubType},
              {"amount", fields_.amount},
              {"maskedCardNumber", fields_.maskedCardNumber}};
}

}  // namespace varnel
