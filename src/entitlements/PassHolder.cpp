#include "varnel/entitlements/PassHolder.h"

namespace varnel {

PassHolder::PassHolder(std::shared_ptr<VNLEntitlementParkTicket> ticket,
                       std::shared_ptr<VNLEntitlementAnnualPass> preSelectedPass)
    : ticketToUpgrade_(std::move(ticket)),
      preSelectedPass_(std::move(preSelectedPass)),
      passToPurchase_(preSelectedPass_) {}

PassHolder::PassHolder(std::shared_ptr<VNLEntitlementAnnualPass> preSelectedPass)
    : PassHolder(nullptr, std::move(preSelectedPass)) {}

void PassHolder::reset() { passToPurchase_ = preSelectedPass_; }

}  // namespace varnel
