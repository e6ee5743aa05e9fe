#include <gtest/gtest.h>

#include <set>

#include "varnel/errors/APError.h"
#include "varnel/errors/ErrorMapping.h"

namespace varnel {
namespace {

TEST(APError, RawValuesNamesAndKinds) {
  const std::set<int> service{1, 2, 3, 4, 5, 7, 9, 10, 11};
  std::set<std::string_view> names;
  for (int value = 0; value < kAPErrorCaseCount; ++value) {
    const APError error = *apErrorFromRawValue(value);
    SCOPED_TRACE(value);
    EXPECT_EQ(rawValue(error), value);
    names.insert(description(error));
    EXPECT_EQ(isConnectionError(error), value == 0);
    EXPECT_EQ(isSeviceError(error), service.count(value) == 1);
    EXPECT_EQ(isTransactionalError(error), value == 23 || value == 24);
    EXPECT_EQ(isConnectionError(error) + isSeviceError(error) + isTransactionalError(error) + isValidationError(error),
              1);
    EXPECT_EQ(errorCode(error).has_value(), value >= 20 && value <= 22);
  }
  EXPECT_EQ(names.size(), static_cast<std::size_t>(kAPErrorCaseCount));
  EXPECT_EQ(apErrorFromRawValue(25), std::nullopt);
  EXPECT_EQ(apErrorFromRawValue(-1), std::nullopt);
  EXPECT_EQ(description(APError::PAYMENT_AUTHORIZER_OFFLINE), "PAYMENT_AUTHORIZER_OFFLINE");
  EXPECT_EQ(description(APError::NoElectronicSignatureTandC), "NoElectronicSignatureTandC");
  // Declined cards come from the service but are the guest's to fix.
  EXPECT_TRUE(isValidationError(APError::PAYMENT_DECLINED));
  EXPECT_EQ(errorCode(APError::NonSCAResident), "072313");
}

TEST(APError, BecomesAPlatformErrorInItsOwnDomain) {
  EXPECT_EQ(toError(APError::MissingCVV), (Error{"Varnel.APError", 13, Json()}));
}

}  // namespace
}  // namespace varnel
