#include "varnel/purchase/RenewableProduct.h"

#include "varnel/platform/Describe.h"

namespace varnel {

std::string RenewableProduct::debugDescription() const {
  return "Pass Name: " + passName + " \n ParticipantId: " + describe(participantId);
}

Json RenewableProduct::toJson() const {
  return Json{{"passName", passName}, {"participantId", participantId}};
}

}  // namespace varnel
