#pragma once
// VNLVarnel: the module's facade. It answers, synchronously and from the
// entitlements manager's persisted store (or from a fixed mock list), which
// entitlements the guest has, which are renewable, how many, and when the
// first renewal falls due. Every query reads the store again and converts
// (toVNLEntitlement) every persisted entitlement; nothing is cached.
//
// The count of renewable entitlements is reported to the delegate once, when
// a delegate is assigned; a host that wants a fresh count assigns again.

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "varnel/entitlements/VNLEntitlement.h"
#include "varnel/platform/Date.h"

namespace varnel {

/// Told the number of renewable entitlements.
class VNLRenewableEntitlementsCountDelegate {
 public:
  virtual ~VNLRenewableEntitlementsCountDelegate() = default;
  virtual void expiredPassesChangedWithCount(std::int64_t count) = 0;
};

class VNLVarnel {
 public:
  using Entitlements = std::vector<std::shared_ptr<VNLEntitlement>>;

  /// The module's fixed names, and the user-defaults keys of the mock and
  /// header switches.
  struct Constants {
    static constexpr std::string_view varnelBundleName = "Varnel";
    static constexpr std::string_view varnelFrameworkName = "Varnel";
    static constexpr std::string_view varnelEntitlementMockKey = "VarnelEntitlementMockKey";
    static constexpr std::string_view varnelCreateOrderMockKey = "VarnelCreateOrderMockKey";
    static constexpr std::string_view varnelContractMockKey = "VarnelContractMockKey";
    static constexpr std::string_view varnelEnv2HeaderKey = "VarnelENV2HeaderKey";
    static constexpr std::string_view VarnelENV2ForPaymentKey = "VarnelENV2ForPaymentCards";
    static constexpr std::string_view VarnelPendingOrderHeaderKey = "VarnelPendingOrderHeader";
  };

  /// init(): no delegate, mocking off.
  VNLVarnel() = default;

  /// Held strongly. Assigning a delegate tells it the current count of
  /// renewableEntitlements() at once; assigning none tells nobody.
  const std::shared_ptr<VNLRenewableEntitlementsCountDelegate>& delegate() const { return delegate_; }
  void setDelegate(std::shared_ptr<VNLRenewableEntitlementsCountDelegate> delegate);

  /// Answers every query from the fixed mock list instead of the manager.
  bool isDataMockedEnable() const { return isDataMockedEnable_; }
  void setIsDataMockedEnable(bool enabled) { isDataMockedEnable_ = enabled; }

  /// The mock list when mocking, else the manager's persisted entitlements
  /// (of the annual-pass type), converted in the manager's order.
  Entitlements allEntitlements() const;

  /// Those of allEntitlements() whose entitlementRenewable is set, in order.
  Entitlements renewableEntitlements() const;
  /// True when renewableEntitlements() is not empty.
  bool anyAPAbleToBeRenewed() const;
  /// The renewable entitlement whose validity ends soonest; null when none.
  std::shared_ptr<VNLEntitlement> firstRenewableEntitlement() const;
  /// Its endValidityDate, or the unknown-date marker (1970 + 1 s) when none.
  Date firstRenewalDate() const;

  /// A copy ordered by endValidityDate, EARLIEST FIRST despite the name (the
  /// first renewal depends on it). Unstable: ties keep no defined order.
  Entitlements sortedByDateDescending(const Entitlements& entitlementArray) const;

  /// The module's resource directory, when there is one.
  static std::optional<std::filesystem::path> varnelBundle();

 private:
  Entitlements commerceEntitlements() const;
  Entitlements mockedEntitlements() const;

  std::shared_ptr<VNLRenewableEntitlementsCountDelegate> delegate_;
  bool isDataMockedEnable_ = false;
};

}  // namespace varnel
