#include <gtest/gtest.h>

#include "support/Fakes.h"
#include "varnel/errors/ErrorMapping.h"

namespace varnel {
namespace {

using Expected = std::optional<APError>;

Error withBody(std::string_view body, bool connection = false) {
  Json userInfo = Json::object();
  userInfo[kErrorJsonResponseKey] = Json::parse(body);  // moved in: deep bodies are never copied
  if (connection) userInfo[kErrorIsConnectionErrorKey] = true;
  return Error{"test", 400, std::move(userInfo)};
}

class ErrorMappingTest : public testing::HostFixture {
 protected:
  std::size_t evasDebugLines() const {
    std::size_t count = 0;
    for (const auto& line : log->lines()) {
      count += line.message.starts_with("EVAS Error code not found on JSON response:");
    }
    return count;
  }
};

TEST_F(ErrorMappingTest, Booking) {
  const std::pair<const char*, Expected> cases[] = {
      {R"({"errors":[{"typeId":"SYSTEM_UNAVAILABLE"}]})", APError::SYSTEM_UNAVAILABLE},
      {R"({"errors":[{"typeId":"UNEXPECTED_ERROR"}]})", APError::UNEXPECTED_ERROR},
      {R"({"errors":[{"typeId":"SYSTEM_ERROR"}]})", APError::SYSTEM_ERROR},
      // The offline authorizer shares the declined card's code and is never told apart.
      {R"({"errors":[{"typeId":"PAYMENT_DECLINED","systemErrorCode":"072312"}]})", APError::PAYMENT_DECLINED},
      {R"({"errors":[{"typeId":"PAYMENT_BAD_EXPIRATION_DATE"}]})", APError::PAYMENT_BAD_EXPIRATION_DATE},
      {R"({"errors":[{"typeId":"RESIDENCY","systemErrorCode":"072312"}]})", APError::NonFLResident},
      {R"({"errors":[{"typeId":"RESIDENCY","systemErrorCode":"072313"}]})", APError::NonSCAResident},
      {R"({"errors":[{"systemErrorCode":"072316"}]})", APError::NonCAResident},
      {R"({"errors":[{"typeId":"RESIDENCY","systemErrorCode":"072399"}]})", APError::GeneralBookingServiceError},
      {R"({"errors":[{"typeId":"OTHER"},{"typeId":"SYSTEM_ERROR"}]})", APError::GeneralBookingServiceError},
      // No usable first element: no case at all.
      {R"({"errors":[{"typeId":"SYSTEM_ERROR","httpStatus":500}]})", std::nullopt},
      {R"({"errors":["SYSTEM_ERROR"]})", std::nullopt},
      {R"({"errors":{"typeId":"SYSTEM_ERROR"}})", std::nullopt},
      {R"({})", std::nullopt},
      {R"("SYSTEM_ERROR")", std::nullopt},
  };
  for (const auto& [body, expected] : cases) EXPECT_EQ(APBookingServiceError(withBody(body)), expected) << body;
}

TEST_F(ErrorMappingTest, BookingConnectionFailureWinsOverAnyBody) {
  EXPECT_EQ(APBookingServiceError(withBody(R"({"errors":[{"typeId":"SYSTEM_ERROR"}]})", true)),
            APError::ConnectionError);
  EXPECT_EQ(APBookingServiceError(Error{"net", -1, Json{{kErrorIsConnectionErrorKey, true}}}),
            APError::ConnectionError);
  EXPECT_EQ(APBookingServiceError(Error{"net", -1, Json{{kErrorIsConnectionErrorKey, false}}}), std::nullopt);
  EXPECT_EQ(APBookingServiceError(Error{"test", 1, Json()}), std::nullopt);
}

TEST_F(ErrorMappingTest, Evas) {
  const std::pair<const char*, APError> cases[] = {
      // Named codes of the first element win over any numeric code.
      {R"({"errors":[{"typeId":"SYSTEM_UNAVAILABLE"}],"errorCode":"500"})", APError::SYSTEM_UNAVAILABLE},
      {R"({"errors":[{"typeId":"UNEXPECTED_ERROR"}],"errorCode":"500"})", APError::UNEXPECTED_ERROR},
      {R"({"errors":[{"typeId":"SYSTEM_ERROR"}],"errorCode":"500"})", APError::SYSTEM_ERROR},
      {R"({"errors":[{"typeId":"PAYMENT_DECLINED"}],"statusCode":"2000"})", APError::COMMUNICATION_ERROR},
      {R"({"errorCode":"500"})", APError::INTERNAL_SERVICE_ERROR},
      {R"({"errorCode":"503"})", APError::ServiceErrorNoRetry},
      {R"({"errorCode":"+503"})", APError::ServiceErrorNoRetry},
      {R"({"errorCode":"404"})", APError::GeneralEVASServiceError},
      // Keys are tried in the order errorCode, statusCode, typeId.
      {R"({"errorCode":"2000","statusCode":"500"})", APError::COMMUNICATION_ERROR},
      {R"({"statusCode":"503","typeId":"500"})", APError::ServiceErrorNoRetry},
      {R"({"typeId":"500"})", APError::INTERNAL_SERVICE_ERROR},
      // A value that is not a decimal integer ends the search at once.
      {R"({"errorCode":"E503","statusCode":"500"})", APError::GeneralEVASServiceError},
      {R"({"errorCode":"503 ","statusCode":"500"})", APError::GeneralEVASServiceError},
      {R"({"errorCode":"99999999999999999999","statusCode":"500"})", APError::GeneralEVASServiceError},
      {R"({"errorCode":true,"statusCode":"500"})", APError::GeneralEVASServiceError},
      {R"({"typeId":"SYSTEM_ERROR"})", APError::GeneralEVASServiceError},
  };
  for (const auto& [body, expected] : cases) EXPECT_EQ(APEvasError(withBody(body)), expected) << body;
  EXPECT_EQ(evasDebugLines(), 0u);
}

TEST_F(ErrorMappingTest, EvasWithoutAnyCodeFallsBackAndPrintsTheBody) {
  EXPECT_EQ(APEvasError(withBody(R"({"errors":[{"message":"nope"}]})")), APError::GeneralEVASServiceError);
  ASSERT_EQ(evasDebugLines(), 1u);
  const auto line = log->lines().front();
  EXPECT_FALSE(line.isError);
  EXPECT_NE(line.message.find("\"nope\""), std::string::npos);
  EXPECT_EQ(line.site.file, "Classes/Errors/Error+APError");
  EXPECT_EQ(line.site.function, "APEvasError");

  EXPECT_EQ(APEvasError(Error{"test", 1, Json()}), APError::GeneralEVASServiceError);
  EXPECT_EQ(APEvasError(withBody("[1, 2]", true)), APError::GeneralEVASServiceError);
  EXPECT_EQ(evasDebugLines(), 3u);
}

TEST_F(ErrorMappingTest, EvasLogsAnyBodyWithoutCrashing) {
  const std::string deep = R"({"a":)" + std::string(100000, '[') + std::string(100000, ']') + "}";
  EXPECT_EQ(APEvasError(withBody(deep)), APError::GeneralEVASServiceError);
  ASSERT_EQ(evasDebugLines(), 1u);
  EXPECT_LT(log->lines().front().message.size(), 200u);
}

}  // namespace
}  // namespace varnel
