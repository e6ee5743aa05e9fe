#include "varnel/standalone/TerminalBanner.h"

#include <ostream>

namespace varnel::standalone {
namespace {

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
    out_ << rule << '\n' << "| " << kindLabel(kind());
    if (!title().empty()) out_ << ": " << title();
    out_ << '\n' << "| " << message() << '\n';
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
