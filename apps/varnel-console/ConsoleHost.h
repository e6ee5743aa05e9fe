#pragma once
// The console's part of the host's module-hosting library: the invocation it
// hands a brick and the bundle lookup it answers.

#include <map>
#include <memory>
#include <string>

#include "varnel/host/PLNTBundle.h"
#include "varnel/host/PLNTInvocation.h"

namespace varnel::console {

class ConsoleInvocation final : public PLNTInvocation {
 public:
  ConsoleInvocation(std::string brickName, std::shared_ptr<KTVCParkResortContext> parkContext)
      : brickName_(std::move(brickName)), parkContext_(std::move(parkContext)) {}
  std::string brickName() const override { return brickName_; }
  std::shared_ptr<KTVCParkResortContext> parkContext() const override { return parkContext_; }
  std::map<std::string, std::string> parameters() const override { return {}; }

 private:
  std::string brickName_;
  std::shared_ptr<KTVCParkResortContext> parkContext_;
};

/// Knows one bundle: the module's ("Varnel"), in its resource directory.
class ConsoleBundleLookup final : public PLNTBundleLookup {
 public:
  std::optional<PLNTBundle> bundleFromMainBundleOrFramework(std::string_view bundleName) const override;
};

/// "east resort (2)", "west resort (1)".
std::string parkName(const KTVCParkResortContext& context);

}  // namespace varnel::console
