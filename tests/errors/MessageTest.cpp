#include <gtest/gtest.h>

#include "support/Fakes.h"
#include "varnel/errors/APErrorMessage.h"
#include "varnel/errors/VNLPhoneUtility.h"
#include "varnel/errors/VarnelLocalizedString.h"
#include "varnel/host/Registry.h"

namespace varnel {
namespace {

constexpr const char* kEastPhone = "(407) 555-0100";
constexpr const char* kWestPhone = "(714) 555-0199";

class MessageTest : public testing::HostFixture {
 protected:
  void SetUp() override {
    HostFixture::SetUp();
    localization->table = {
        {std::string(VNLAPRenewalsHelpPhoneNumberKeys::oqs), kEastPhone},
        {std::string(VNLAPRenewalsHelpPhoneNumberKeys::zlt), kWestPhone},
        {"com.varnel.checkout.serviceError.message", "Service trouble, call %@."},
        {"com.varnel.checkout.serviceError.noRetry.message", "Do not retry, call %@."},
        {"com.varnel.checkout.validationError.nonFLResident.message", "Florida only, call %@."},
        {"com.varnel.checkout.validationError.nonCAResident.message", "California only, call %@."},
        {"com.varnel.checkout.validationError.missingCVV.message", "Enter your CVV."},
    };
  }
};

TEST_F(MessageTest, LookupGoesThroughTheHostLocalization) {
  EXPECT_EQ(VarnelLocalizedStringForKey(VNLAPRenewalsHelpPhoneNumberKeys::oqs), kEastPhone);
  EXPECT_EQ(VarnelLocalizedStringForKey("com.varnel.unknown"), "com.varnel.unknown");
  host::Registry::set<KTVRLocalization>(nullptr);
  EXPECT_EQ(VarnelLocalizedStringForKey(VNLAPRenewalsHelpPhoneNumberKeys::oqs), VNLAPRenewalsHelpPhoneNumberKeys::oqs);
}

TEST_F(MessageTest, HelpPhoneNumberDependsOnlyOnThePark) {
  EXPECT_EQ(VNLPhoneUtility::APPhoneNumber(APError::MissingCVV, kResortChoiceEast), kEastPhone);
  EXPECT_EQ(VNLPhoneUtility::APPhoneNumber(APError::SYSTEM_ERROR, kResortChoiceEast), kEastPhone);
  EXPECT_EQ(VNLPhoneUtility::APPhoneNumber(APError::MissingCVV, kResortChoiceWest), kWestPhone);
  EXPECT_TRUE(log->lines().empty());
}

TEST_F(MessageTest, UnknownParkHasNoPhoneAndLogsOnce) {
  for (KTVCResortChoice park : {3, kResortChoiceAlternate, 0, -1}) {
    log->clear();
    EXPECT_EQ(VNLPhoneUtility::APPhoneNumber(APError::MissingCVV, park), std::nullopt) << park;
    ASSERT_EQ(log->count("Unknown Park used"), 1u);
    EXPECT_EQ(log->lines().front().site.file, "Classes/VNLPhoneUtility");
    EXPECT_EQ(log->lines().front().site.function, "APPhoneNumber(for:for:)");
  }
}

TEST_F(MessageTest, MessageFillsTheResortPhoneNumber) {
  EXPECT_EQ(APErrorMessage::message(APError::SYSTEM_ERROR, kResortChoiceEast), "Service trouble, call (407) 555-0100.");
  EXPECT_EQ(APErrorMessage::message(APError::GeneralEVASServiceError, kResortChoiceWest),
            "Service trouble, call (714) 555-0199.");
  EXPECT_EQ(APErrorMessage::message(APError::ServiceErrorNoRetry, kResortChoiceEast),
            "Do not retry, call (407) 555-0100.");
  EXPECT_EQ(APErrorMessage::message(APError::GeneralTransactionalError, kResortChoiceEast),
            "Do not retry, call (407) 555-0100.");
  // A text without a placeholder is shown as it is.
  EXPECT_EQ(APErrorMessage::message(APError::MissingCVV, kResortChoiceWest), "Enter your CVV.");
}

TEST_F(MessageTest, WithoutAPhoneNumberTheTextIsNotFormatted) {
  localization->table["com.varnel.checkout.serviceError.message"] = "Service trouble (100%% sure), call %@.";
  EXPECT_EQ(APErrorMessage::message(APError::SYSTEM_ERROR, 3), "Service trouble (100%% sure), call %@.");
  EXPECT_EQ(APErrorMessage::message(APError::SYSTEM_ERROR, kResortChoiceEast),
            "Service trouble (100% sure), call (407) 555-0100.");
}

TEST_F(MessageTest, ResidencyMessagesOnlyAtTheirResort) {
  EXPECT_EQ(APErrorMessage::message(APError::NonFLResident, kResortChoiceEast), "Florida only, call (407) 555-0100.");
  EXPECT_EQ(APErrorMessage::message(APError::NonFLResident, kResortChoiceWest), "");
  EXPECT_EQ(APErrorMessage::message(APError::NonCAResident, kResortChoiceWest),
            "California only, call (714) 555-0199.");
  EXPECT_EQ(APErrorMessage::message(APError::NonCAResident, kResortChoiceEast), "");

  for (APError residency : {APError::NonFLResident, APError::NonSCAResident, APError::NonCAResident}) {
    const bool east = residency == APError::NonFLResident;
    EXPECT_EQ(APErrorMessage::localizationKey(residency, kResortChoiceEast).empty(), !east);
    EXPECT_EQ(APErrorMessage::localizationKey(residency, kResortChoiceWest).empty(), east);
    EXPECT_EQ(APErrorMessage::localizationKey(residency, kResortChoiceAlternate), "");
  }
}

TEST_F(MessageTest, ConnectionErrorHasTheEmptyKey) {
  EXPECT_EQ(APErrorMessage::localizationKey(APError::ConnectionError, kResortChoiceEast), "");
  EXPECT_EQ(APErrorMessage::message(APError::ConnectionError, kResortChoiceEast), "");
}

TEST_F(MessageTest, RetryWording) {
  const std::string general = "com.varnel.checkout.serviceError.message";
  const std::string noRetry = "com.varnel.checkout.serviceError.noRetry.message";
  for (int value = 1; value <= 11; ++value) {
    const APError error = *apErrorFromRawValue(value);
    if (!isSeviceError(error)) continue;
    EXPECT_EQ(APErrorMessage::localizationKey(error, kResortChoiceEast),
              error == APError::ServiceErrorNoRetry ? noRetry : general)
        << description(error);
  }
  EXPECT_EQ(APErrorMessage::localizationKey(APError::GeneralTransactionalError, kResortChoiceEast), noRetry);
  EXPECT_EQ(APErrorMessage::localizationKey(APError::PAYMENT_BAD_EXPIRATION_DATE, kResortChoiceEast),
            "com.varnel.checkout.serviceError.paymentDeclined.message");
}

}  // namespace
}  // namespace varnel
