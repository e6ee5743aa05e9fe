#include <gtest/gtest.h>

#include "support/Fakes.h"
#include "varnel/errors/APNotificationBanner.h"
#include "varnel/errors/VNLPhoneUtility.h"

namespace varnel {
namespace {

class NotificationBannerTest : public testing::HostFixture {
 protected:
  void SetUp() override {
    HostFixture::SetUp();
    localization->table = {
        {std::string(VNLAPRenewalsHelpPhoneNumberKeys::oqs), "(407) 555-0100"},
        {std::string(VNLAPRenewalsHelpPhoneNumberKeys::zlt), "(714) 555-0199"},
        {"com.varnel.checkout.serviceError.message", "Trouble, call %@."},
    };
  }

  const testing::RecordingBanner& show(APError error, KTVCResortChoice resort, KTVRRetryBlock retry = {}) {
    banners->made.clear();
    APNotificationBanner::showNotificationBanner(error, std::make_shared<KTVCParkResortContext>(resort), retry);
    EXPECT_EQ(banners->made.size(), 1u);
    EXPECT_EQ(banners->made.at(0)->shownCount, 1);
    return *banners->made.at(0);
  }
};

TEST_F(NotificationBannerTest, WithoutContextNothingIsShown) {
  APNotificationBanner::showNotificationBanner(APError::SYSTEM_ERROR, nullptr);
  EXPECT_TRUE(banners->made.empty());
  EXPECT_EQ(log->count("KTVCParkResortContext must be supplied!"), 1u);
}

TEST_F(NotificationBannerTest, ServiceBannerCarriesErrorRetryAndPhone) {
  int retries = 0;
  const auto& banner = show(APError::COMMUNICATION_ERROR, kResortChoiceWest,
                            [&](std::shared_ptr<KTVRNotificationBanner>) { ++retries; });
  EXPECT_EQ(banner.kind(), KTVRNotificationBannerKind::serviceError);
  EXPECT_EQ(banner.error(), (Error{"varnel.error", 5, Json()}));
  EXPECT_EQ(banner.message(), "Trouble, call (714) 555-0199.");
  EXPECT_EQ(banner.phoneNumber(), "(714) 555-0199");
  ASSERT_TRUE(banner.retryBlock());
  banner.retryBlock()(nullptr);
  EXPECT_EQ(retries, 1);

  EXPECT_FALSE(show(APError::GeneralBookingServiceError, kResortChoiceEast).retryBlock());
  // The guest is told not to retry, so no retry action is offered.
  EXPECT_FALSE(show(APError::ServiceErrorNoRetry, kResortChoiceEast, [](auto) {}).retryBlock());
}

TEST_F(NotificationBannerTest, BannerKindFollowsTheErrorKind) {
  for (int value = 0; value < kAPErrorCaseCount; ++value) {
    const APError error = *apErrorFromRawValue(value);
    const auto& banner = show(error, kResortChoiceEast, [](auto) {});
    const auto expected = isTransactionalError(error) ? KTVRNotificationBannerKind::transactionalError
                          : isSeviceError(error)      ? KTVRNotificationBannerKind::serviceError
                                                      : KTVRNotificationBannerKind::validationError;
    EXPECT_EQ(banner.kind(), expected) << value;
    if (expected != KTVRNotificationBannerKind::serviceError) {
      EXPECT_FALSE(banner.retryBlock() || banner.phoneNumber()) << value;
    }
  }
}

TEST_F(NotificationBannerTest, UnknownResortShowsTheMessageWithoutANumber) {
  const auto& banner = show(APError::SYSTEM_ERROR, 4);
  EXPECT_EQ(banner.message(), "Trouble, call %@.");
  EXPECT_FALSE(banner.phoneNumber());
  const auto lines = log->lines();
  EXPECT_TRUE(std::any_of(lines.begin(), lines.end(), [](const auto& line) {
    return line.message == "Unknown Park used" && line.site.file == "Classes/Errors/APNotificationBanner" &&
           line.site.function == "message(for:for:)";
  }));
  // The alternate resort is accepted for messages but has no help number.
  log->clear();
  EXPECT_FALSE(show(APError::SYSTEM_ERROR, kResortChoiceAlternate).phoneNumber());
  for (const auto& line : log->lines()) EXPECT_NE(line.site.file, "Classes/Errors/APNotificationBanner");
}

}  // namespace
}  // namespace varnel
