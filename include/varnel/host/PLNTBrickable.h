#pragma once
// A brick: one module's entry in the host's list of modules. The host lists
// each brick under its title and hands it the park context it shows.

#include <memory>
#include <string>
#include <vector>

#include "varnel/host/KTVCParkResortContext.h"

namespace varnel {

class PLNTBrickable {
 public:
  virtual ~PLNTBrickable() = default;

  /// The title the host lists the brick under.
  virtual std::string localizedTitle() const = 0;
  /// The names under which the host may invoke the brick.
  virtual std::vector<std::string> supportedBrickNames() const = 0;

  /// The park context the host shows; none until it has one.
  virtual std::shared_ptr<KTVCParkResortContext> parkContext() const = 0;
  virtual void setParkContext(std::shared_ptr<KTVCParkResortContext> context) = 0;
};

}  // namespace varnel
