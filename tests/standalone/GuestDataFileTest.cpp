#include <fstream>
#include <random>

#include <gtest/gtest.h>

#include "varnel/standalone/GuestDataFile.h"

namespace varnel::standalone {
namespace {

const std::filesystem::path kSample = std::filesystem::path(VARNEL_TEST_RESOURCE_DIR) / "guests" / "sample-guest.json";

const ENTMEntitlement& withId(const GuestData& guest, const std::string& id) {
  for (const auto& entitlement : guest.entitlements) {
    if (entitlement->productInstanceId == id) return *entitlement;
  }
  throw std::runtime_error("no entitlement " + id);
}

TEST(GuestDataFileTest, SampleGuestCarriesTheHousehold) {
  auto guest = readGuestDataFile(kSample);
  ASSERT_TRUE(guest) << describeGuestDataError(guest.error());
  const GuestData& data = guest.value();
  EXPECT_EQ(data.kuid, "guest-4f21-aa07");
  EXPECT_EQ(data.userProfile->avatar->avatarId, "avatar-lighthouse");
  EXPECT_EQ(data.affiliations->front(), (ENTMAffiliation{"STD_GST", 0}));
  EXPECT_EQ(data.entitlements.size(), 8u);

  const auto& pass = withId(data, "AP-100201");
  EXPECT_EQ(pass.passExpirationDate, Date::fromTimeIntervalSince1970(1939247999));  // 2031-06-14T23:59:59Z
  EXPECT_EQ(pass.blockoutDates->size(), 3u);
  auto options = asEntitlementList(*pass.apRenewalOptions);
  ASSERT_TRUE(options && options->size() == 3);
  EXPECT_EQ((*options)[0]->productInstanceId, pass.defaultRenewableProductId);
  EXPECT_EQ((*options)[2]->categoryId, "ThemePark");
  EXPECT_TRUE(withId(data, "AP-100202").isShared && withId(data, "AP-100202").isSellable);
  EXPECT_FALSE(withId(data, "AP-100203").defaultRenewableProductId) << "the sunset pass";
  const auto& ticket = withId(data, "TK-300101");
  EXPECT_EQ(ticket.affiliationInfo->size(), 2u);
  EXPECT_EQ(ticket.apUpgradeOptions->at("FL_RES").front()->productInstanceId, "UP-RESIDENT");
}

TEST(GuestDataFileTest, NullIsLeftOutAndAbsentListsStayDistinctFromEmptyOnes) {
  auto sparse = parseGuestData(R"({"entitlements": [{"productInstanceId": null, "totalPrice": null}]})");
  ASSERT_TRUE(sparse);
  EXPECT_FALSE(sparse.value().entitlements[0]->productInstanceId);
  EXPECT_FALSE(sparse.value().entitlements[0]->totalPrice);
  EXPECT_FALSE(sparse.value().affiliations);
  auto empty = parseGuestData(R"({"entitlements": [], "affiliations": []})");
  ASSERT_TRUE(empty && empty.value().affiliations);
  EXPECT_TRUE(empty.value().affiliations->empty());
}

TEST(GuestDataFileTest, BadInputIsAnErrorNamingThePlaceOfTheFault) {
  std::string deep = R"({"entitlements": [)";
  for (int i = 0; i < 12; ++i) deep += R"({"apRenewalOptions": [)";
  deep += "{}";
  for (int i = 0; i < 12; ++i) deep += "]}";
  deep += "]}";
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"{\"entitlements\": [", "not valid JSON"},
      {"[]", "document"},
      {R"({"profile": {"kuid": "a"}})", "missing \"entitlements\""},
      {R"({"entitlements": [{}, {"isRenewable": "yes"}]})", "entitlements[1].isRenewable"},
      {R"({"entitlements": [{"passExpirationDate": "2031-02-30T00:00:00Z"}]})", "not an RFC 3339 date"},
      {R"({"entitlements": [{"productInstanceID": "x"}]})", "entitlements[0].productInstanceID: unknown key"},
      {R"({"entitlements": [{"numberOfDays": 18446744073709551615}]})", "out of range"},
      {R"({"entitlements": [{"tax": 1e300}]})", "out of range"},
      {R"({"entitlements": [{"affiliationInfo": [{"sortOrder": 1}]}]})", "needs an affiliationId"},
      {R"({"entitlements": [{"apUpgradeOptions": {"STD_GST": [1]}}]})", "apUpgradeOptions.STD_GST[0]"},
      {deep, "nested too deeply"},
  };
  for (const auto& [text, expected] : cases) {
    auto guest = parseGuestData(text, "test.json");
    ASSERT_FALSE(guest) << text;
    EXPECT_EQ(guest.error().code, static_cast<long>(GuestDataErrorCode::malformed));
    const std::string message = describeGuestDataError(guest.error());
    EXPECT_NE(message.find("test.json: "), std::string::npos) << message;
    EXPECT_NE(message.find(expected), std::string::npos) << text << " gave " << message;
  }
  auto directory = readGuestDataFile(std::filesystem::temp_directory_path());
  ASSERT_FALSE(directory);
  EXPECT_EQ(directory.error().code, static_cast<long>(GuestDataErrorCode::unreadable));
}

TEST(GuestDataFileTest, Rfc3339AcceptsZoneAndFractionAndRefusesTheRest) {
  EXPECT_EQ(parseRfc3339("2031-06-01T08:30:00.250-04:00"), Date::fromTimeIntervalSince1970(1938083400.25));
  EXPECT_EQ(parseRfc3339("2031-06-01T02:00:00+02:00"), Date::fromTimeIntervalSince1970(1938038400));
  for (const char* bad : {"", "2031-06-01", "2031-06-01T00:00:00", "20310-06-01T00:00:00Z", "2031-13-01T00:00:00Z",
                          "2031-06-01T24:00:00Z", "2031-06-01T00:00:00Z trailing", "2031-06-01 00:00:00Z"}) {
    EXPECT_FALSE(parseRfc3339(bad)) << bad;
  }
}

TEST(GuestDataFileTest, DamagedCopiesOfTheSampleNeverCrashTheParser) {
  std::ifstream input(kSample, std::ios::binary);
  const std::string sample{std::istreambuf_iterator<char>(input), std::istreambuf_iterator<char>()};
  std::mt19937 random(20310614);
  std::uniform_int_distribution<std::size_t> position(0, sample.size() - 1);
  int rejected = 0;
  for (int round = 0; round < 300; ++round) {
    std::string damaged = sample;
    for (int flips = 1 + round % 4; flips > 0; --flips) damaged[position(random)] = static_cast<char>(random());
    if (round % 7 == 0) damaged.resize(position(random));
    rejected += parseGuestData(damaged) ? 0 : 1;
  }
  EXPECT_GT(rejected, 0);
}

}  // namespace
}  // namespace varnel::standalone
