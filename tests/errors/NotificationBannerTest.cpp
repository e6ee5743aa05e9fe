#include <gtest/gtest.h>

#include "support/Fakes.h"
#include "varnel/errors/APNotificationBanner.h"
#include "varnel/errors/VNLPhoneUtility.h"

namespace varnel {
namespace {

constexpr const char* kEastPhone = "(407) 555-0100";
constexpr const char* kWestPhone = "(714) 555-0199";

class NotificationBannerTest : public testing::HostFixture {
 protected:
  void SetUp() override {
    HostFixture::SetUp();
    localization->table = {
        {std::string(VNLAPRenewalsHelpPhoneNumberKeys::oqs), kEastPhone},
        {std::string(VNLAPRenewalsHelpPhoneNumberKeys::zlt), kWestPhone},
        {"com.varnel.checkout.serviceError.message", "Service trouble, call %@."},
        {"com.varnel.checkout.validationError.missingCVV.message", "Enter your CVV, or call %@."},
    };
  }

  static std::shared_ptr<KTVCParkResortContext> resort(KTVCResortChoice choice) {
    return std::make_shared<KTVCParkResortContext>(choice);
  }

  const testing::RecordingBanner& onlyBanner() const {
    EXPECT_EQ(banners->made.size(), 1u);
    return *banners->made.at(0);
  }
};

TEST_F(NotificationBannerTest, WithoutContextNothingIsShown) {
  bool retried = false;
  APNotificationBanner::showNotificationBanner(APError::SYSTEM_ERROR, nullptr,
                                               [&](std::shared_ptr<KTVRNotificationBanner>) { retried = true; });
  EXPECT_TRUE(banners->made.empty());
  EXPECT_FALSE(retried);
  EXPECT_EQ(log->count("KTVCParkResortContext must be supplied!"), 1u);
}

TEST_F(NotificationBannerTest, ServiceBannerCarriesErrorRetryAndPhone) {
  int retries = 0;
  APNotificationBanner::showNotificationBanner(APError::COMMUNICATION_ERROR, resort(kResortChoiceWest),
                                               [&](std::shared_ptr<KTVRNotificationBanner>) { ++retries; });
  const auto& banner = onlyBanner();
  EXPECT_EQ(banner.kind(), KTVRNotificationBannerKind::serviceError);
  ASSERT_TRUE(banner.error().has_value());
  EXPECT_EQ(banner.error()->domain, "varnel.error");
  EXPECT_EQ(banner.error()->code, 5);
  EXPECT_EQ(banner.message(), "Service trouble, call (714) 555-0199.");
  EXPECT_EQ(banner.phoneNumber(), kWestPhone);
  EXPECT_EQ(banner.shownCount, 1);
  ASSERT_TRUE(banner.retryBlock());
  banner.retryBlock()(nullptr);
  EXPECT_EQ(retries, 1);
}

TEST_F(NotificationBannerTest, ServiceBannerWithoutRetryBlockOffersNoRetry) {
  APNotificationBanner::showNotificationBanner(APError::GeneralBookingServiceError, resort(kResortChoiceEast));
  const auto& banner = onlyBanner();
  EXPECT_EQ(banner.kind(), KTVRNotificationBannerKind::serviceError);
  EXPECT_FALSE(banner.retryBlock());
  EXPECT_EQ(banner.phoneNumber(), kEastPhone);
  EXPECT_EQ(banner.shownCount, 1);
}

TEST_F(NotificationBannerTest, NoRetryServiceErrorIgnoresTheRetryBlock) {
  APNotificationBanner::showNotificationBanner(APError::ServiceErrorNoRetry, resort(kResortChoiceEast),
                                               [](std::shared_ptr<KTVRNotificationBanner>) {});
  EXPECT_EQ(onlyBanner().kind(), KTVRNotificationBannerKind::serviceError);
  EXPECT_FALSE(onlyBanner().retryBlock());
  EXPECT_EQ(onlyBanner().error()->code, 10);
}

TEST_F(NotificationBannerTest, BannerKindFollowsTheErrorKind) {
  const auto context = resort(kResortChoiceEast);
  const auto retry = [](std::shared_ptr<KTVRNotificationBanner>) {};
  for (int value = 0; value < kAPErrorCaseCount; ++value) {
    const APError error = *apErrorFromRawValue(value);
    banners->made.clear();
    APNotificationBanner::showNotificationBanner(error, context, retry);
    ASSERT_EQ(banners->made.size(), 1u) << description(error);
    const auto& banner = *banners->made.front();
    EXPECT_EQ(banner.shownCount, 1);
    const auto expected = isTransactionalError(error) ? KTVRNotificationBannerKind::transactionalError
                          : isSeviceError(error)      ? KTVRNotificationBannerKind::serviceError
                                                      : KTVRNotificationBannerKind::validationError;
    EXPECT_EQ(banner.kind(), expected) << description(error);
    // Only service banners get the retry action and the phone number.
    if (expected != KTVRNotificationBannerKind::serviceError) {
      EXPECT_FALSE(banner.retryBlock()) << description(error);
      EXPECT_FALSE(banner.phoneNumber()) << description(error);
    }
  }
}

TEST_F(NotificationBannerTest, ValidationAndConnectionBannersStillShowTheNumberInTheText) {
  APNotificationBanner::showNotificationBanner(APError::MissingCVV, resort(kResortChoiceEast));
  EXPECT_EQ(onlyBanner().kind(), KTVRNotificationBannerKind::validationError);
  EXPECT_EQ(onlyBanner().message(), "Enter your CVV, or call (407) 555-0100.");

  banners->made.clear();
  APNotificationBanner::showNotificationBanner(APError::ConnectionError, resort(kResortChoiceEast));
  EXPECT_EQ(onlyBanner().kind(), KTVRNotificationBannerKind::validationError);
  EXPECT_EQ(onlyBanner().message(), "");
}

TEST_F(NotificationBannerTest, UnknownResortShowsTheMessageWithoutANumber) {
  APNotificationBanner::showNotificationBanner(APError::SYSTEM_ERROR, resort(4));
  const auto& banner = onlyBanner();
  EXPECT_EQ(banner.message(), "Service trouble, call %@.");
  EXPECT_FALSE(banner.phoneNumber());
  EXPECT_EQ(banner.shownCount, 1);
  bool fromBanner = false;
  for (const auto& line : log->lines()) {
    fromBanner =
        fromBanner || (line.message == "Unknown Park used" && line.site.file == "Classes/Errors/APNotificationBanner" &&
                       line.site.function == "message(for:for:)");
  }
  EXPECT_TRUE(fromBanner);
}

TEST_F(NotificationBannerTest, AlternateResortIsAcceptedButHasNoNumber) {
  APNotificationBanner::showNotificationBanner(APError::SYSTEM_ERROR, resort(kResortChoiceAlternate));
  EXPECT_FALSE(onlyBanner().phoneNumber());
  for (const auto& line : log->lines()) EXPECT_NE(line.site.file, "Classes/Errors/APNotificationBanner");
}

}  // namespace
}  // namespace varnel
