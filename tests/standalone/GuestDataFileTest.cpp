#include <gtest/gtest.h>

#include "varnel/entitlements/ToVNLEntitlement.h"
#include "varnel/platform/DefaultsValue.h"
#include "varnel/standalone/GuestDataFile.h"

namespace varnel::standalone {
namespace {

TEST(GuestDataFileTest, ZonedDatesAreReadAndNullIsLeftOutButAnEmptyListIsKept) {
  auto guest = parseGuestData(R"({"entitlements": [{"productInstanceId": null,
      "passExpirationDate": "2031-06-01T08:30:00.250-04:00"}], "affiliations": []})");
  ASSERT_TRUE(guest) << describeGuestDataError(guest.error());
  EXPECT_FALSE(guest.value().entitlements.at(0)->productInstanceId);
  EXPECT_EQ(guest.value().entitlements.at(0)->passExpirationDate, Date::fromTimeIntervalSince1970(1938083400.25));
  EXPECT_TRUE(guest.value().affiliations && guest.value().affiliations->empty());
  EXPECT_FALSE(parseGuestData(R"({"entitlements": []})").value().affiliations);
}

TEST(GuestDataFileTest, DatesPrintAsWrittenInTheOneCalendarAndEveryFourDigitYearIsKept) {
  const std::pair<const char*, const char*> rows[] = {
      {"9999-12-31T23:59:59Z", "9999-12-31T23:59:59Z"},  // "never expires"
      {"2031-06-01t08:30:00z", "2031-06-01T08:30:00Z"},  // lower-case separator and zone
      {"2031-06-01t08:30:00.5+02:00", "2031-06-01T06:30:00Z"},
      {"1500-03-01T00:00:00Z", "1500-03-01T00:00:00Z"},  // before the Gregorian reform
      {"1582-10-10T12:00:00Z", "1582-10-10T12:00:00Z"},  // a day the reform skipped
      {"0001-01-01T00:00:00Z", "0001-01-01T00:00:00Z"},
  };
  for (const auto& [written, printed] : rows) {
    const auto date = parseRfc3339(written);
    ASSERT_TRUE(date) << written;
    EXPECT_EQ(rfc3339(*date), printed);
    ENTMEntitlement entitlement;
    entitlement.passExpirationDate = date;
    EXPECT_EQ(toVNLEntitlement(entitlement)->toJson()["endValidityDate"], printed) << "--json shows it";
  }
  for (const char* refused : {"2031-06-01 08:30:00Z", "2031-06-01x08:30:00Z", "2031-06-01T08:30:00y", "10000-01-01T00:00:00Z"}) {
    EXPECT_FALSE(parseRfc3339(refused)) << refused;
  }
}

TEST(GuestDataFileTest, BadInputIsAnErrorNamingTheFileAndThePlaceOfTheFault) {
  std::string deep = "{}";
  for (int i = 0; i < 12; ++i) deep = R"({"apRenewalOptions": [)" + deep + "]}";
  deep = R"({"entitlements": [)" + deep + "]}";
  const std::pair<std::string, std::string> cases[] = {
      {"{\"entitlements\": [", "not valid JSON"},
      {R"({"profile": {"kuid": "a"}})", "missing \"entitlements\""},
      {R"({"entitlements": [{}, {"isRenewable": "yes"}]})", "entitlements[1].isRenewable"},
      {R"({"entitlements": [{"passExpirationDate": "2031-02-30T00:00:00Z"}]})", "not an RFC 3339 date"},
      {R"({"entitlements": [{"productInstanceID": "x"}]})", "entitlements[0].productInstanceID: unknown key"},
      {R"({"entitlements": [{"apUpgradeOptions": {"STD_GST": [1]}}]})", "apUpgradeOptions.STD_GST[0]"},
      {deep, "nested too deeply"},
      {R"({"entitlements": [], "theaterTickets": [)" + std::string(200, '[') + std::string(200, ']') + "]}",
       "nested deeper than 128 levels"},
      {R"({"entitlements": [{"tax": 1, "tax": 2}]})", R"(the key "tax" appears twice)"},
  };
  for (const auto& [text, expected] : cases) {
    auto guest = parseGuestData(text, "test.json");
    ASSERT_FALSE(guest) << text;
    EXPECT_EQ(guest.error().code, static_cast<long>(GuestDataErrorCode::malformed));
    EXPECT_NE(describeGuestDataError(guest.error()).find("test.json: "), std::string::npos);
    EXPECT_NE(describeGuestDataError(guest.error()).find(expected), std::string::npos) << text;
  }
}

}  // namespace
}  // namespace varnel::standalone
