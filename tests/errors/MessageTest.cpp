#include <gtest/gtest.h>

#include "support/Fakes.h"
#include "varnel/errors/APErrorMessage.h"
#include "varnel/errors/VNLPhoneUtility.h"
#include "varnel/errors/VarnelLocalizedString.h"
#include "varnel/host/Registry.h"

namespace varnel {
namespace {

class MessageTest : public testing::HostFixture {
 protected:
  void SetUp() override {
    HostFixture::SetUp();
    localization->table = {
        {std::string(VNLAPRenewalsHelpPhoneNumberKeys::oqs), "(407) 555-0100"},
        {std::string(VNLAPRenewalsHelpPhoneNumberKeys::zlt), "(714) 555-0199"},
        {"com.varnel.checkout.serviceError.message", "Trouble (100%% sure), call %@."},
        {"com.varnel.checkout.serviceError.noRetry.message", "Do not retry, call %@."},
        {"com.varnel.checkout.validationError.nonFLResident.message", "Florida only, call %@."},
        {"com.varnel.checkout.validationError.missingCVV.message", "Enter your CVV."},
    };
  }
};

TEST_F(MessageTest, LookupGoesThroughTheHostLocalization) {
  EXPECT_EQ(VarnelLocalizedStringForKey("com.varnel.unknown"), "com.varnel.unknown");
  host::Registry::set<KTVRLocalization>(nullptr);
  EXPECT_EQ(VarnelLocalizedStringForKey(VNLAPRenewalsHelpPhoneNumberKeys::oqs), VNLAPRenewalsHelpPhoneNumberKeys::oqs);
}

TEST_F(MessageTest, HelpPhoneNumberDependsOnlyOnThePark) {
  EXPECT_EQ(VNLPhoneUtility::APPhoneNumber(APError::MissingCVV, kResortChoiceEast), "(407) 555-0100");
  EXPECT_EQ(VNLPhoneUtility::APPhoneNumber(APError::SYSTEM_ERROR, kResortChoiceEast), "(407) 555-0100");
  EXPECT_EQ(VNLPhoneUtility::APPhoneNumber(APError::MissingCVV, kResortChoiceWest), "(714) 555-0199");
  EXPECT_TRUE(log->lines().empty());
  for (KTVCResortChoice park : {3, kResortChoiceAlternate, -1}) {
    log->clear();
    EXPECT_EQ(VNLPhoneUtility::APPhoneNumber(APError::MissingCVV, park), std::nullopt) << park;
    ASSERT_EQ(log->count("Unknown Park used"), 1u);
    EXPECT_EQ(log->lines().front().site.file, "Classes/VNLPhoneUtility");
    EXPECT_EQ(log->lines().front().site.function, "APPhoneNumber(for:for:)");
  }
}

TEST_F(MessageTest, PhoneNumberIsFilledOnlyWhenThereIsOne) {
  EXPECT_EQ(APErrorMessage::message(APError::GeneralEVASServiceError, kResortChoiceWest),
            "Trouble (100% sure), call (714) 555-0199.");
  EXPECT_EQ(APErrorMessage::message(APError::GeneralTransactionalError, kResortChoiceEast),
            "Do not retry, call (407) 555-0100.");
  EXPECT_EQ(APErrorMessage::message(APError::MissingCVV, kResortChoiceWest), "Enter your CVV.");
  // Without a number the text is returned as it is, not used as a format.
  EXPECT_EQ(APErrorMessage::message(APError::SYSTEM_ERROR, 3), "Trouble (100%% sure), call %@.");
}

TEST_F(MessageTest, ResidencyAndConnectionKeys) {
  EXPECT_EQ(APErrorMessage::message(APError::NonFLResident, kResortChoiceEast), "Florida only, call (407) 555-0100.");
  EXPECT_EQ(APErrorMessage::message(APError::NonFLResident, kResortChoiceWest), "");
  EXPECT_EQ(APErrorMessage::message(APError::ConnectionError, kResortChoiceEast), "");
  for (APError residency : {APError::NonFLResident, APError::NonSCAResident, APError::NonCAResident}) {
    const bool east = residency == APError::NonFLResident;
    EXPECT_EQ(APErrorMessage::localizationKey(residency, kResortChoiceEast).empty(), !east);
    EXPECT_EQ(APErrorMessage::localizationKey(residency, kResortChoiceWest).empty(), east);
    EXPECT_EQ(APErrorMessage::localizationKey(residency, kResortChoiceAlternate), "");
  }
}

TEST_F(MessageTest, OnlyNoRetryErrorsUseTheNoRetryText) {
  const std::string noRetry = "com.varnel.checkout.serviceError.noRetry.message";
  for (int value = 0; value < kAPErrorCaseCount; ++value) {
    const APError error = *apErrorFromRawValue(value);
    const bool expectNoRetry = error == APError::ServiceErrorNoRetry || error == APError::GeneralTransactionalError;
    EXPECT_EQ(APErrorMessage::localizationKey(error, kResortChoiceEast) == noRetry, expectNoRetry) << value;
    if (isSeviceError(error) && !expectNoRetry) {
      EXPECT_EQ(APErrorMessage::localizationKey(error, kResortChoiceEast), "com.varnel.checkout.serviceError.message");
    }
  }
}

}  // namespace
}  // namespace varnel
