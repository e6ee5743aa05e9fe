#pragma once
// The module's entry in the host's module-hosting library: listed as
// "Varnel Config", it opens the mock-switch screen of the storyboard
// "VNLDebug", from which the other tester screens are reached.

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "varnel/host/PLNTBrickable.h"
#include "varnel/host/PLNTConfigurable.h"

namespace varnel {

class VNLConfigurationBrick final : public PLNTBrickable, public PLNTConfigurable {
 public:
  static constexpr std::string_view VNLConfigurationBrickName = "VNLConfigurationBrick";
  static constexpr std::string_view VNLConfigurationStoryboardName = "VNLDebug";
  static constexpr std::string_view kLocalizedTitle = "Varnel Config";

  VNLConfigurationBrick() = default;

  /// "Varnel Config".
  std::string localizedTitle() const override { return std::string(kLocalizedTitle); }
  /// The one brick: VNLConfigurationBrickName.
  std::vector<std::string> supportedBrickNames() const override { return {std::string(VNLConfigurationBrickName)}; }

  std::shared_ptr<KTVCParkResortContext> parkContext() const override { return parkContext_; }
  void setParkContext(std::shared_ptr<KTVCParkResortContext> context) override { parkContext_ = std::move(context); }

  /// The screen "VNLConfigurationViewController" of the storyboard, found in
  /// the module's bundle through the host's bundle lookup (the module's
  /// resource directory when the host registered none). It gets the
  /// invocation's park context, else the brick's. Null when the bundle or the
  /// storyboard is not found; nothing is thrown.
  std::unique_ptr<PLNTViewController> configurationViewController(const PLNTInvocation& invocation) override;

 private:
  std::shared_ptr<KTVCParkResortContext> parkContext_;
};

}  // namespace varnel
