#pragma once
// The host's notification banners. A factory (registered with the host
// registry) makes one of three kinds; the module configures it and calls
// show(). Main thread only.

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "varnel/platform/Error.h"

namespace varnel {

enum class KTVRNotificationBannerKind { transactionalError, serviceError, validationError };

class KTVRNotificationBanner;
/// Called when the guest taps retry; receives the banner (possibly none).
using KTVRRetryBlock = std::function<void(std::shared_ptr<KTVRNotificationBanner>)>;

class KTVRNotificationBanner {
 public:
  KTVRNotificationBanner(KTVRNotificationBannerKind kind, std::optional<Error> error, std::string title,
                         std::string message)
      : kind_(kind), error_(std::move(error)), title_(std::move(title)), message_(std::move(message)) {}
  virtual ~KTVRNotificationBanner() = default;

  KTVRNotificationBannerKind kind() const { return kind_; }
  const std::optional<Error>& error() const { return error_; }
  const std::string& title() const { return title_; }
  const std::string& message() const { return message_; }

  const KTVRRetryBlock& retryBlock() const { return retryBlock_; }
  void setRetryBlock(KTVRRetryBlock block) { retryBlock_ = std::move(block); }
  const std::optional<std::string>& phoneNumber() const { return phoneNumber_; }
  void setPhoneNumber(std::optional<std::string> number) { phoneNumber_ = std::move(number); }

  virtual void show() = 0;

 private:
  KTVRNotificationBannerKind kind_;
  std::optional<Error> error_;
  std::string title_;
  std::string message_;
  KTVRRetryBlock retryBlock_;
  std::optional<std::string> phoneNumber_;
};

class KTVRNotificationBannerFactory {
 public:
  virtual ~KTVRNotificationBannerFactory() = default;
  virtual std::shared_ptr<KTVRNotificationBanner> transactionalErrorBanner(const Error& error, std::string title,
                                                                           std::string message) = 0;
  virtual std::shared_ptr<KTVRNotificationBanner> serviceErrorBanner(const Error& error, std::string title,
                                                                     std::string message) = 0;
  virtual std::shared_ptr<KTVRNotificationBanner> validationErrorBanner(std::string title, std::string message) = 0;
};

}  // namespace varnel
