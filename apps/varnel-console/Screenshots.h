#pragma once
// Pictures of the tester screens, for the README and for reviews: each screen
// rendered offscreen at a fixed size into DIR/configuration.png,
// DIR/presets.png, DIR/business-requirements.png and
// DIR/server-error-routing.png, and the guest's renewal, step by step.

#include <filesystem>
#include <memory>

#include "varnel/host/KTVCParkResortContext.h"
#include "varnel/screens/VNLConfigurationBrick.h"

namespace varnel::console {

/// Width and height of every picture, in pixels (device pixel ratio 1).
inline constexpr int kScreenshotWidth = 480;
inline constexpr int kScreenshotHeight = 720;

/// Writes the four pictures; false (with a message on stderr) when one could
/// not be made or written.
bool takeScreenshots(const std::filesystem::path& directory, VNLConfigurationBrick& brick,
                     const std::shared_ptr<KTVCParkResortContext>& parkContext);

/// Renews the guest's first renewable pass on the installed commerce server
/// (the in-process mock) and writes renewal-passes.png, renewal-checkout.png,
/// renewal-contract.png, renewal-declined.png (the declined test card) and
/// renewal-confirmation.png; false (with a message on stderr) when a step
/// did not come or a picture could not be written.
bool takeRenewalScreenshots(const std::filesystem::path& directory,
                            const std::shared_ptr<KTVCParkResortContext>& parkContext);

}  // namespace varnel::console
