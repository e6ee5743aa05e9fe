#include <gtest/gtest.h>

#include <set>

#include "varnel/errors/APError.h"
#include "varnel/errors/ErrorMapping.h"

namespace varnel {
namespace {

std::vector<APError> allCases() {
  std::vector<APError> cases;
  for (int value = 0; value < kAPErrorCaseCount; ++value) cases.push_back(*apErrorFromRawValue(value));
  return cases;
}

TEST(APError, RawValuesRoundTripAndOutOfRangeHasNoCase) {
  for (APError error : allCases()) EXPECT_EQ(apErrorFromRawValue(rawValue(error)), error);
  EXPECT_EQ(apErrorFromRawValue(0), APError::ConnectionError);
  EXPECT_EQ(apErrorFromRawValue(24), APError::PaymentLostConnection);
  EXPECT_EQ(apErrorFromRawValue(25), std::nullopt);
  EXPECT_EQ(apErrorFromRawValue(-1), std::nullopt);
}

TEST(APError, DescriptionIsTheCaseNameAndUnique) {
  EXPECT_EQ(description(APError::ConnectionError), "ConnectionError");
  EXPECT_EQ(description(APError::PAYMENT_AUTHORIZER_OFFLINE), "PAYMENT_AUTHORIZER_OFFLINE");
  EXPECT_EQ(description(APError::NoElectronicSignatureTandC), "NoElectronicSignatureTandC");
  EXPECT_EQ(description(APError::PaymentLostConnection), "PaymentLostConnection");
  std::set<std::string_view> names;
  for (APError error : allCases()) names.insert(description(error));
  EXPECT_EQ(names.size(), static_cast<std::size_t>(kAPErrorCaseCount));
}

TEST(APError, EveryCaseHasExactlyOneKind) {
  const std::set<int> service{1, 2, 3, 4, 5, 7, 9, 10, 11};
  const std::set<int> transactional{23, 24};
  for (APError error : allCases()) {
    const int value = rawValue(error);
    SCOPED_TRACE(description(error));
    EXPECT_EQ(isConnectionError(error), value == 0);
    EXPECT_EQ(isSeviceError(error), service.count(value) == 1);
    EXPECT_EQ(isTransactionalError(error), transactional.count(value) == 1);
    EXPECT_EQ(isConnectionError(error) + isSeviceError(error) + isTransactionalError(error) + isValidationError(error),
              1);
  }
  // Declined cards come from the service but are the guest's to fix.
  EXPECT_TRUE(isValidationError(APError::PAYMENT_DECLINED));
  EXPECT_TRUE(isValidationError(APError::PAYMENT_BAD_EXPIRATION_DATE));
  EXPECT_TRUE(isSeviceError(APError::PAYMENT_AUTHORIZER_OFFLINE));
}

TEST(APError, OnlyResidencyCasesCarryAnErrorCode) {
  EXPECT_EQ(errorCode(APError::NonFLResident), "072312");
  EXPECT_EQ(errorCode(APError::NonSCAResident), "072313");
  EXPECT_EQ(errorCode(APError::NonCAResident), "072316");
  int withCode = 0;
  for (APError error : allCases()) withCode += errorCode(error).has_value();
  EXPECT_EQ(withCode, 3);
}

TEST(APError, BecomesAPlatformErrorInItsOwnDomain) {
  const Error error = toError(APError::MissingCVV);
  EXPECT_EQ(error.domain, "Varnel.APError");
  EXPECT_EQ(error.code, 13);
  EXPECT_TRUE(error.userInfo.is_null());
}

}  // namespace
}  // namespace varnel
