#include <gtest/gtest.h>

#include <tuple>

#include "support/Fakes.h"
#include "varnel/errors/ErrorMapping.h"

namespace varnel {
namespace {

using E = APError;

Error withBody(std::string_view body, bool connection = false) {
  Json userInfo = Json::object();
  userInfo[kErrorJsonResponseKey] = Json::parse(body);  // moved in: deep bodies are never copied
  if (connection) userInfo[kErrorIsConnectionErrorKey] = true;
  return Error{"test", 400, std::move(userInfo)};
}

using ErrorMappingTest = testing::HostFixture;

TEST_F(ErrorMappingTest, BodiesOfBothServiceFamilies) {
  const auto none = std::nullopt;
  const auto general = E::GeneralEVASServiceError, noRetry = E::ServiceErrorNoRetry;
  // Body, booking case, EVAS case, whether EVAS found no code and printed the body.
  const std::tuple<const char*, std::optional<APError>, APError, bool> rows[] = {
      // Named codes of the first element win over any numeric code.
      {R"({"errors":[{"typeId":"SYSTEM_UNAVAILABLE"}]})", E::SYSTEM_UNAVAILABLE, E::SYSTEM_UNAVAILABLE, 0},
      {R"({"errors":[{"typeId":"UNEXPECTED_ERROR"}],"errorCode":"500"})", E::UNEXPECTED_ERROR, E::UNEXPECTED_ERROR, 0},
      {R"({"errors":[{"typeId":"SYSTEM_ERROR"}],"errorCode":"500"})", E::SYSTEM_ERROR, E::SYSTEM_ERROR, 0},
      // The offline authorizer shares the declined card's code and is never told apart.
      {R"({"errors":[{"typeId":"PAYMENT_DECLINED","systemErrorCode":"072312"}],"statusCode":"2000"})",
       E::PAYMENT_DECLINED, E::COMMUNICATION_ERROR, 0},
      {R"({"errors":[{"typeId":"PAYMENT_BAD_EXPIRATION_DATE"}]})", E::PAYMENT_BAD_EXPIRATION_DATE, general, 1},
      {R"({"errors":[{"typeId":"RESIDENCY","systemErrorCode":"072312"}]})", E::NonFLResident, general, 1},
      {R"({"errors":[{"systemErrorCode":"072313"}],"errorCode":"503"})", E::NonSCAResident, noRetry, 0},
      {R"({"errors":[{"systemErrorCode":"072316"}],"errorCode":"+503"})", E::NonCAResident, noRetry, 0},
      {R"({"errors":[{"systemErrorCode":"072399"}],"errorCode":"404"})", E::GeneralBookingServiceError, general, 0},
      {R"({"errors":[{"typeId":"OTHER"},{"typeId":"SYSTEM_ERROR"}]})", E::GeneralBookingServiceError, general, 1},
      // Without a first element of strings there is no booking case; EVAS tries errorCode,
      // statusCode, typeId in turn, and a value that is not a decimal integer ends the search.
      {R"({"errors":[{"typeId":"SYSTEM_ERROR","n":1}],"statusCode":503,"typeId":"500"})", none, noRetry, 0},
      {R"({"errors":["SYSTEM_ERROR"],"typeId":"500"})", none, E::INTERNAL_SERVICE_ERROR, 0},
      {R"({"errors":{"typeId":"SYSTEM_ERROR"},"errorCode":"2000","statusCode":500})", none, E::COMMUNICATION_ERROR, 0},
      {R"("SYSTEM_ERROR")", none, general, 1},
      {R"({"errorCode":"E503","statusCode":"500"})", none, general, 0},
      {R"({"errorCode":"503 ","statusCode":"500"})", none, general, 0},
      {R"({"errorCode":"99999999999999999999","statusCode":"500"})", none, general, 0},
      {R"({"errorCode":true,"statusCode":"500"})", none, general, 0},
  };
  for (const auto& [body, booking, evas, logs] : rows) {
    log->clear();
    EXPECT_EQ(APBookingServiceError(withBody(body)), booking) << body;
    EXPECT_EQ(APEvasError(withBody(body)), evas) << body;
    EXPECT_EQ(log->lines().size(), logs ? 1u : 0u) << body;
  }
}

TEST_F(ErrorMappingTest, NamesAndResidencyCodesAreWhatTheServicesSendBack) {
  // The description is the case's name, which the host shows and logs; the
  // first service names are the booking service's own codes.
  const std::string_view names[] = {
      "ConnectionError", "SYSTEM_UNAVAILABLE", "UNEXPECTED_ERROR", "SYSTEM_ERROR", "INTERNAL_SERVICE_ERROR",
      "COMMUNICATION_ERROR", "PAYMENT_DECLINED", "PAYMENT_AUTHORIZER_OFFLINE", "PAYMENT_BAD_EXPIRATION_DATE",
      "GeneralBookingServiceError", "ServiceErrorNoRetry", "GeneralEVASServiceError", "MissingPaymentMethod",
      "MissingCVV", "MissingPhoneNumber", "NoTermsAndConditions", "MissingCVVAndTermsAndConditions",
      "MissingCCAndTermsAndConditions", "NoElectronicSignatureTandC", "ContractNotSigned", "NonFLResident",
      "NonSCAResident", "NonCAResident", "GeneralTransactionalError", "PaymentLostConnection"};
  ASSERT_EQ(std::size(names), static_cast<std::size_t>(kAPErrorCaseCount));
  int withCode = 0;
  for (int value = 0; value < kAPErrorCaseCount; ++value) {
    const APError error = *apErrorFromRawValue(value);
    EXPECT_EQ(description(error), names[value]) << value;
    if (value >= 1 && value <= 3) {
      const std::string body = R"({"errors":[{"typeId":")" + std::string(names[value]) + R"("}]})";
      EXPECT_EQ(APBookingServiceError(withBody(body)), error) << body;
    }
    // A residency code maps back to the case that carries it.
    if (const auto code = errorCode(error)) {
      ++withCode;
      const std::string body = R"({"errors":[{"typeId":"OTHER","systemErrorCode":")" + *code + R"("}]})";
      EXPECT_EQ(APBookingServiceError(withBody(body)), error) << body;
    }
  }
  EXPECT_EQ(withCode, 3);
}

TEST_F(ErrorMappingTest, ConnectionFailuresAndMissingBodies) {
  EXPECT_EQ(APBookingServiceError(withBody(R"({"errors":[{"typeId":"SYSTEM_ERROR"}]})", true)), E::ConnectionError);
  EXPECT_EQ(APBookingServiceError(Error{"test", 1, Json()}), std::nullopt);
  EXPECT_EQ(APEvasError(Error{"test", 1, Json()}), E::GeneralEVASServiceError);
}

TEST_F(ErrorMappingTest, EvasDebugLineShowsTheBodyWhateverItsDepth) {
  APEvasError(withBody(R"({"errors":[{"message":"nope"}]})"));
  EXPECT_EQ(log->count(R"(EVAS Error code not found on JSON response: {"errors":[{"message":"nope"}]})"), 1u);
  const auto line = log->lines().at(0);
  EXPECT_EQ(line.site.file + " " + line.site.function + (line.isError ? " error" : ""),
            "Classes/Errors/Error+APError APEvasError");
  const std::string deep = R"({"a":)" + std::string(100000, '[') + std::string(100000, ']') + "}";
  EXPECT_EQ(APEvasError(withBody(deep)), E::GeneralEVASServiceError);
  EXPECT_LT(log->lines().back().message.size(), 200u);
}

}  // namespace
}  // namespace varnel
