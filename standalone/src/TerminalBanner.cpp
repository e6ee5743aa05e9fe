#include "varnel/standalone/TerminalBanner.h"

#include <ostream>

namespace varnel::standalone {
namespace {

constexpr const char* kUnreachableMessage = "The commerce service could not be reached. Please try again.";

const char* kindLabel(KTVRNotificationBannerKind kind) {
  switch (kind) {
    case KTVRNotificationBannerKind::transactionalError: return "Transaction problem";
    case KTVRNotificationBannerKind::serviceError: return "Service problem";
    case KTVRNotificationBannerKind::validationError: return "Please check";
  }
  return "Notice";
}

class TerminalBanner final : public KTVRNotificationBanner {
 public:
  TerminalBanner(std::ostream& out, KTVRNotificationBannerKind kind, std::optional<Error> error, std::string title,
                 std::string message)
      : KTVRNotificationBanner(kind, std::move(error), std::move(title), std::move(message)), out_(out) {}

  void show() override {
    const std::string rule(60, '-');
    // The connection error has no text in the string table: a blank banner
    // would tell the guest nothing, and the kind's title would not fit it.
    const bool unreachable = message().empty();
    out_ << rule << '\n' << "| " << (unreachable ? "Connection Problem" : title().empty() ? kindLabel(kind()) : title())
         << '\n';
    out_ << "| " << (unreachable ? kUnreachableMessage : message()) << '\n';
    if (phoneNumber()) out_ << "| Call " << *phoneNumber() << '\n';
    if (retryBlock()) out_ << "| [Retry]" << '\n';
    out_ << rule << '\n';
    out_.flush();
  }

 private:
  std::ostream& out_;
};

}  // namespace

TerminalBannerFactory::TerminalBannerFactory(std::ostream& out) : out_(out) {}

std::shared_ptr<KTVRNotificationBanner> TerminalBannerFactory::transactionalErrorBanner(const Error& error,
                                                                                        std::string title,
                                                                                        std::string message) {
  return std::make_shared<TerminalBanner>(out_, KTVRNotificationBannerKind::transactionalError, error,
                                          std::move(title), std::move(message));
}

std::shared_ptr<KTVRNotificationBanner> TerminalBannerFactory::serviceErrorBanner(const Error& error,
                                                                                  std::string title,
                                                                                  std::string message) {
  return std::make_shared<TerminalBanner>(out_, KTVRNotificationBannerKind::serviceError, error, std::move(title),
                                          std::move(message));
}

std::shared_ptr<KTVRNotificationBanner> TerminalBannerFactory::validationErrorBanner(std::string title,
                                                                                     std::string message) {
  return std::make_shared<TerminalBanner>(out_, KTVRNotificationBannerKind::validationError, std::nullopt,
                                          std::move(title), std::move(message));
}

}  // namespace varnel::standalone
