#include "varnel/entitlements/VNLEntitlementTheaterTicket.h"

#include "EntitlementJson.h"

namespace varnel {

std::shared_ptr<VNLEntitlementTheaterTicket> VNLEntitlementTheaterTicket::initWithJsonData(const Json& jsonData) {
  auto ticket = std::make_shared<VNLEntitlementTheaterTicket>();
  populateBasePriceFields(*ticket, jsonData);
  return ticket;
}

Json VNLEntitlementTheaterTicket::toJson() const {
  Json json = VNLEntitlement::toJson();
  json["productType"] = rawValue(productType_);
  return json;
}

}  // namespace varnel
