#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <vector>

#include "varnel/entitlements/VNLEntitlementAnnualPass.h"
#include "varnel/purchase/RenewableState.h"

namespace varnel {
namespace {

using Options = std::optional<std::vector<std::shared_ptr<VNLEntitlement>>>;

struct PassFlags {
  Options options;
  bool renewable = false;
  bool shared = false;
  bool sellable = false;
};

RenewableState stateOf(const PassFlags& flags) {
  VNLEntitlementAnnualPass pass;
  pass.setApRenewalOptions(flags.options);
  pass.setEntitlementRenewable(flags.renewable);
  pass.setShared(flags.shared);
  pass.setSellable(flags.sellable);
  return RenewableState(pass);
}

Options oneOption() { return std::vector<std::shared_ptr<VNLEntitlement>>{std::make_shared<VNLEntitlementAnnualPass>()}; }
Options noOptions() { return std::vector<std::shared_ptr<VNLEntitlement>>{}; }

// With options only a renewable unshared pass is eligible now; an empty list
// of options never is; without options a sellable, unshared pass that is not
// renewable yet is eligible later.
TEST(RenewableStateOfAnnualPass, FollowsTheOptionsAndFlags) {
  const std::pair<PassFlags, RenewableState> rows[] = {
      {{oneOption(), true, false, false}, RenewableState::eligibleNow},
      {{oneOption(), true, true, true}, RenewableState::ineligible},
      {{oneOption(), false, false, true}, RenewableState::ineligible},
      {{noOptions(), false, false, true}, RenewableState::ineligible},
      {{noOptions(), true, false, true}, RenewableState::ineligible},
      {{std::nullopt, false, false, true}, RenewableState::eligibleLater},
      {{std::nullopt, false, false, false}, RenewableState::ineligible},
      {{std::nullopt, false, true, true}, RenewableState::ineligible},
      {{std::nullopt, true, false, true}, RenewableState::ineligible},
  };
  for (std::size_t i = 0; i < std::size(rows); ++i) EXPECT_EQ(stateOf(rows[i].first), rows[i].second) << "row " << i;
}

}  // namespace
}  // namespace varnel
