#include <gtest/gtest.h>

#include "support/Fakes.h"
#include "varnel/errors/ErrorMapping.h"

namespace varnel {
namespace {

constexpr std::string_view kEvasDebugPrefix = "EVAS Error code not found on JSON response:";

Error serviceError(Json body) { return Error{"test", 400, Json{{kErrorJsonResponseKey, std::move(body)}}}; }

Error bookingError(Json firstElement) { return serviceError(Json{{"errors", Json::array({std::move(firstElement)})}}); }

class ErrorMappingTest : public testing::HostFixture {
 protected:
  std::size_t evasDebugLines() const {
    std::size_t count = 0;
    for (const auto& line : log->lines()) count += line.message.starts_with(kEvasDebugPrefix);
    return count;
  }
};

TEST_F(ErrorMappingTest, BookingConnectionFailureWinsOverAnyBody) {
  Error error = bookingError({{"typeId", "SYSTEM_ERROR"}});
  error.userInfo[kErrorIsConnectionErrorKey] = true;
  EXPECT_EQ(APBookingServiceError(error), APError::ConnectionError);

  error.userInfo[kErrorIsConnectionErrorKey] = false;
  EXPECT_EQ(APBookingServiceError(error), APError::SYSTEM_ERROR);

  EXPECT_EQ(APBookingServiceError(Error{"net", -1, Json{{kErrorIsConnectionErrorKey, true}}}),
            APError::ConnectionError);
}

TEST_F(ErrorMappingTest, BookingTypeIdsMapToTheirCases) {
  EXPECT_EQ(APBookingServiceError(bookingError({{"typeId", "SYSTEM_UNAVAILABLE"}})), APError::SYSTEM_UNAVAILABLE);
  EXPECT_EQ(APBookingServiceError(bookingError({{"typeId", "UNEXPECTED_ERROR"}})), APError::UNEXPECTED_ERROR);
  EXPECT_EQ(APBookingServiceError(bookingError({{"typeId", "SYSTEM_ERROR"}})), APError::SYSTEM_ERROR);
  EXPECT_EQ(APBookingServiceError(bookingError({{"typeId", "PAYMENT_BAD_EXPIRATION_DATE"}})),
            APError::PAYMENT_BAD_EXPIRATION_DATE);
  // The offline authorizer shares the declined card's code and is never told apart.
  EXPECT_EQ(APBookingServiceError(bookingError({{"typeId", "PAYMENT_DECLINED"}})), APError::PAYMENT_DECLINED);
}

TEST_F(ErrorMappingTest, BookingTypeIdTakesPrecedenceOverResidencyCode) {
  EXPECT_EQ(APBookingServiceError(bookingError({{"typeId", "PAYMENT_DECLINED"}, {"systemErrorCode", "072312"}})),
            APError::PAYMENT_DECLINED);
}

TEST_F(ErrorMappingTest, BookingResidencyCodesAndFallback) {
  EXPECT_EQ(APBookingServiceError(bookingError({{"typeId", "RESIDENCY"}, {"systemErrorCode", "072312"}})),
            APError::NonFLResident);
  EXPECT_EQ(APBookingServiceError(bookingError({{"typeId", "RESIDENCY"}, {"systemErrorCode", "072313"}})),
            APError::NonSCAResident);
  EXPECT_EQ(APBookingServiceError(bookingError({{"systemErrorCode", "072316"}})), APError::NonCAResident);
  EXPECT_EQ(APBookingServiceError(bookingError({{"typeId", "RESIDENCY"}, {"systemErrorCode", "072399"}})),
            APError::GeneralBookingServiceError);
  EXPECT_EQ(APBookingServiceError(bookingError(Json::object())), APError::GeneralBookingServiceError);
  // Case matters: the services send upper-case codes.
  EXPECT_EQ(APBookingServiceError(bookingError({{"typeId", "system_error"}})), APError::GeneralBookingServiceError);
}

TEST_F(ErrorMappingTest, BookingWithoutAUsableBodyHasNoCase) {
  EXPECT_EQ(APBookingServiceError(Error{"test", 1, Json()}), std::nullopt);
  EXPECT_EQ(APBookingServiceError(Error{"test", 1, Json{{"other", 1}}}), std::nullopt);
  EXPECT_EQ(APBookingServiceError(serviceError("not a body")), std::nullopt);
  EXPECT_EQ(APBookingServiceError(serviceError(Json::object())), std::nullopt);
  EXPECT_EQ(APBookingServiceError(serviceError({{"errors", Json::array()}})), std::nullopt);
  EXPECT_EQ(APBookingServiceError(serviceError({{"errors", {{"typeId", "SYSTEM_ERROR"}}}})), std::nullopt);
  EXPECT_EQ(APBookingServiceError(serviceError({{"errors", Json::array({"SYSTEM_ERROR"})}})), std::nullopt);
  // The first element must hold only strings.
  EXPECT_EQ(APBookingServiceError(bookingError({{"typeId", "SYSTEM_ERROR"}, {"httpStatus", 500}})), std::nullopt);
}

TEST_F(ErrorMappingTest, BookingLooksOnlyAtTheFirstElement) {
  const Json body{{"errors", Json::array({Json{{"typeId", "OTHER"}}, Json{{"typeId", "SYSTEM_ERROR"}}})}};
  EXPECT_EQ(APBookingServiceError(serviceError(body)), APError::GeneralBookingServiceError);
}

TEST_F(ErrorMappingTest, EvasNamedTypeIdsIgnoreNumericCodes) {
  for (const auto& [typeId, expected] :
       {std::pair{"SYSTEM_UNAVAILABLE", APError::SYSTEM_UNAVAILABLE},
        std::pair{"UNEXPECTED_ERROR", APError::UNEXPECTED_ERROR}, std::pair{"SYSTEM_ERROR", APError::SYSTEM_ERROR}}) {
    const Json body{{"errors", Json::array({Json{{"typeId", typeId}}})}, {"errorCode", "500"}};
    EXPECT_EQ(APEvasError(serviceError(body)), expected) << typeId;
  }
  // A booking-only code is not one of the named EVAS codes.
  const Json declined{{"errors", Json::array({Json{{"typeId", "PAYMENT_DECLINED"}}})}, {"statusCode", "2000"}};
  EXPECT_EQ(APEvasError(serviceError(declined)), APError::COMMUNICATION_ERROR);
  EXPECT_EQ(evasDebugLines(), 0u);
}

TEST_F(ErrorMappingTest, EvasNumericCodes) {
  EXPECT_EQ(APEvasError(serviceError({{"errorCode", "500"}})), APError::INTERNAL_SERVICE_ERROR);
  EXPECT_EQ(APEvasError(serviceError({{"errorCode", "503"}})), APError::ServiceErrorNoRetry);
  EXPECT_EQ(APEvasError(serviceError({{"errorCode", "2000"}})), APError::COMMUNICATION_ERROR);
  EXPECT_EQ(APEvasError(serviceError({{"errorCode", "404"}})), APError::GeneralEVASServiceError);
  EXPECT_EQ(APEvasError(serviceError({{"errorCode", "-500"}})), APError::GeneralEVASServiceError);
  EXPECT_EQ(APEvasError(serviceError({{"errorCode", "+503"}})), APError::ServiceErrorNoRetry);
  EXPECT_EQ(evasDebugLines(), 0u);
}

TEST_F(ErrorMappingTest, EvasKeysAreTriedInOrder) {
  EXPECT_EQ(APEvasError(serviceError({{"errorCode", "2000"}, {"statusCode", "500"}})), APError::COMMUNICATION_ERROR);
  EXPECT_EQ(APEvasError(serviceError({{"statusCode", "503"}, {"typeId", "500"}})), APError::ServiceErrorNoRetry);
  EXPECT_EQ(APEvasError(serviceError({{"typeId", "500"}})), APError::INTERNAL_SERVICE_ERROR);
}

TEST_F(ErrorMappingTest, EvasNonDecimalCodeStopsTheSearch) {
  EXPECT_EQ(APEvasError(serviceError({{"errorCode", "E503"}, {"statusCode", "500"}})),
            APError::GeneralEVASServiceError);
  for (const Json& code : {Json("503 "), Json(""), Json("5.0e2"), Json("99999999999999999999999"), Json(true)}) {
    EXPECT_EQ(APEvasError(serviceError({{"errorCode", code}, {"statusCode", "500"}})), APError::GeneralEVASServiceError)
        << code.dump();
  }
  // A top-level "typeId" that is a code name rather than a number is not decimal either.
  EXPECT_EQ(APEvasError(serviceError({{"typeId", "SYSTEM_ERROR"}})), APError::GeneralEVASServiceError);
  EXPECT_EQ(evasDebugLines(), 0u);
}

TEST_F(ErrorMappingTest, EvasWithoutAnyCodePrintsTheBodyOnce) {
  const Json body{{"errors", Json::array({Json{{"message", "nope"}}})}};
  EXPECT_EQ(APEvasError(serviceError(body)), APError::GeneralEVASServiceError);
  ASSERT_EQ(evasDebugLines(), 1u);
  const auto line = log->lines().front();
  EXPECT_FALSE(line.isError);
  EXPECT_NE(line.message.find("\"nope\""), std::string::npos);
  EXPECT_EQ(line.site.file, "Classes/Errors/Error+APError");
  EXPECT_EQ(line.site.function, "APEvasError");
}

TEST_F(ErrorMappingTest, EvasWithoutABodyFallsBack) {
  EXPECT_EQ(APEvasError(Error{"test", 1, Json()}), APError::GeneralEVASServiceError);
  EXPECT_EQ(APEvasError(serviceError(Json::array({1, 2}))), APError::GeneralEVASServiceError);
  EXPECT_EQ(APEvasError(Error{"net", -1, Json{{kErrorIsConnectionErrorKey, true}}}), APError::GeneralEVASServiceError);
  EXPECT_EQ(evasDebugLines(), 3u);
}

}  // namespace
}  // namespace varnel
