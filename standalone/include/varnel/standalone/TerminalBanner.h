#pragma once
// Banners shown as a framed block of text on a terminal stream: the title
// (else the banner's kind), the message, the help number and a retry mark.
// A banner without a message (the connection error has no text of its own)
// says that the commerce service could not be reached and to try again.

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
