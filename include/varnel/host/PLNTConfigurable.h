#pragma once
// A brick with a configuration screen that the host can open.
//
// Screens are the platform's view controllers: Qt widgets. Only the type is
// named here, so the module's core needs no user-interface toolkit; a host
// that shows screens links one.

#include <memory>

#include "varnel/host/PLNTInvocation.h"

class QWidget;

namespace varnel {

/// The platform's view controller.
using PLNTViewController = QWidget;

class PLNTConfigurable {
 public:
  virtual ~PLNTConfigurable() = default;

  /// The brick's configuration screen for `invocation`, owned by the caller;
  /// null when the brick cannot make it.
  virtual std::unique_ptr<PLNTViewController> configurationViewController(const PLNTInvocation& invocation) = 0;
};

}  // namespace varnel
