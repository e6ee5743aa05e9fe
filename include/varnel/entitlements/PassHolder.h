#pragma once
// The selection during an upgrade or change of pass: the ticket being
// upgraded (if any), the pass chosen first, and the pass to buy.

#include <memory>
#include <string_view>

#include "varnel/entitlements/VNLEntitlementAnnualPass.h"
#include "varnel/entitlements/VNLEntitlementParkTicket.h"

namespace varnel {

class PassHolder {
 public:
  /// The direction of a change of pass; the texts of an annual pass's renewalType.
  struct RenewalType {
    RenewalType() = delete;
    static constexpr std::string_view same = "Same";
    static constexpr std::string_view upgrade = "Upgrade";
    static constexpr std::string_view downgrade = "Downgrade";
  };

  /// init(ticket:preSelectedPass:); passToPurchase starts as the preselected pass.
  PassHolder(std::shared_ptr<VNLEntitlementParkTicket> ticket, std::shared_ptr<VNLEntitlementAnnualPass> preSelectedPass);
  /// Without a ticket to upgrade.
  explicit PassHolder(std::shared_ptr<VNLEntitlementAnnualPass> preSelectedPass);

  const std::shared_ptr<VNLEntitlementParkTicket>& ticketToUpgrade() const { return ticketToUpgrade_; }
  const std::shared_ptr<VNLEntitlementAnnualPass>& preSelectedPass() const { return preSelectedPass_; }
  const std::shared_ptr<VNLEntitlementAnnualPass>& passToPurchase() const { return passToPurchase_; }
  void setPassToPurchase(std::shared_ptr<VNLEntitlementAnnualPass> pass) { passToPurchase_ = std::move(pass); }

  /// Sets passToPurchase back to the preselected pass.
  void reset();

 private:
  std::shared_ptr<VNLEntitlementParkTicket> ticketToUpgrade_;
  std::shared_ptr<VNLEntitlementAnnualPass> preSelectedPass_;
  std::shared_ptr<VNLEntitlementAnnualPass> passToPurchase_;
};

}  // namespace varnel
