#pragma once
// Banners shown as a framed block of text on a terminal stream.

#include <iosfwd>

#include "varnel/host/KTVRNotificationBanner.h"

namespace varnel::standalone {

class TerminalBannerFactory final : public KTVRNotificationBannerFactory {
 public:
  /// Banners are written to `out` (which must outlive the factory and its banners).
  explicit TerminalBannerFactory(std::ostream& out);
  std::shared_ptr<KTVRNotificationBanner> transactionalErrorBanner(const Error& error, std::string title,
                                                                   std::string message) override;
  std::shared_ptr<KTVRNotificationBanner> serviceErrorBanner(const Error& error, std::string title,
                                                             std::string message) override;
  std::shared_ptr<KTVRNotificationBanner> validationErrorBanner(std::string title, std::string message) override;

 private:
  std::ostream& out_;
};

}  // namespace varnel::standalone
