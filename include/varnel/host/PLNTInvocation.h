#pragma once
// How the host's module-hosting library asks a brick for one of its screens:
// which brick, for which park, with what the host wants to pass along.

#include <map>
#include <memory>
#include <string>

#include "varnel/host/KTVCParkResortContext.h"

namespace varnel {

class PLNTInvocation {
 public:
  virtual ~PLNTInvocation() = default;

  /// The brick the host opens (one of the brick's supportedBrickNames).
  virtual std::string brickName() const = 0;
  /// The park the host is showing; none before the guest chose one.
  virtual std::shared_ptr<KTVCParkResortContext> parkContext() const = 0;
  /// Free-form values the host passes to the brick.
  virtual std::map<std::string, std::string> parameters() const = 0;
};

}  // namespace varnel
