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

TEST(RenewableStateOfAnnualPass, WithOptionsOnlyARenewableUnsharedPassIsEligibleNow) {
  EXPECT_EQ(stateOf({oneOption(), true, false, false}), RenewableState::eligibleNow);
  EXPECT_EQ(stateOf({oneOption(), true, true, true}), RenewableState::ineligible) << "shared";
  EXPECT_EQ(stateOf({oneOption(), false, false, true}), RenewableState::ineligible) << "not renewable";
}

TEST(RenewableStateOfAnnualPass, AnEmptyListOfOptionsIsNeverEligible) {
  EXPECT_EQ(stateOf({noOptions(), false, false, true}), RenewableState::ineligible);
  EXPECT_EQ(stateOf({noOptions(), true, false, true}), RenewableState::ineligible);
}

TEST(RenewableStateOfAnnualPass, WithoutOptionsASellableUnsharedPassIsEligibleLater) {
  EXPECT_EQ(stateOf({std::nullopt, false, false, true}), RenewableState::eligibleLater);
  EXPECT_EQ(stateOf({std::nullopt, false, false, false}), RenewableState::ineligible) << "not sellable";
  EXPECT_EQ(stateOf({std::nullopt, false, true, true}), RenewableState::ineligible) << "shared";
  EXPECT_EQ(stateOf({std::nullopt, true, false, true}), RenewableState::ineligible) << "renewable already";
}

}  // namespace
}  // namespace varnel
