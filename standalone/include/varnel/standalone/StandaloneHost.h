#pragma once
// Fills the host registry with the stand-alone implementations that every
// tool needs: terminal logging, the JSON string tables, terminal banners and
// a run-loop main queue. Tools register the rest (user defaults, entitlements
// manager, ...) as their options say.

#include <iosfwd>
#include <memory>

#include "varnel/standalone/RunLoopMainQueue.h"

namespace varnel::standalone {

struct StandaloneHostOptions {
  /// Show debug lines on stderr, not only errors.
  bool verbose = false;
  /// Where banners are written; std::cout when null.
  std::ostream* bannerStream = nullptr;
};

/// Installs the implementations and returns the main queue to drive.
std::shared_ptr<RunLoopMainQueue> installStandaloneHost(const StandaloneHostOptions& options = {});

}  // namespace varnel::standalone
