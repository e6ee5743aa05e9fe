#include <filesystem>
#include <fstream>
#include <random>

#include <gtest/gtest.h>

#include "varnel/standalone/GuestDataFile.h"

namespace varnel::standalone {
namespace {

const std::filesystem::path kSample = std::filesystem::path(VARNEL_TEST_RESOURCE_DIR) / "guests" / "sample-guest.json";

std::string readAll(const std::filesystem::path& file) {
  std::ifstream input(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(input), std::istreambuf_iterator<char>()};
}

const ENTMEntitlement& entitlementWithId(const GuestData& guest, const std::string& id) {
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
  ASSERT_TRUE(data.userProfile && data.userProfile->avatar);
  EXPECT_EQ(data.userProfile->avatar->avatarId, "avatar-lighthouse");
  ASSERT_TRUE(data.affiliations);
  EXPECT_EQ(data.affiliations->front(), (ENTMAffiliation{"STD_GST", 0}));
  EXPECT_EQ(data.theaterTickets.size(), 2u);
  EXPECT_EQ(data.entitlements.size(), 8u);

  const auto& pass = entitlementWithId(data, "AP-100201");
  EXPECT_TRUE(pass.isRenewable);
  EXPECT_EQ(pass.passExpirationDate, Date::fromTimeIntervalSince1970(1939247999));  // 2031-06-14T23:59:59Z
  ASSERT_TRUE(pass.blockoutDates);
  EXPECT_EQ(pass.blockoutDates->size(), 3u);
  EXPECT_EQ(pass.totalPrice, 689.0f);
  ASSERT_TRUE(pass.apRenewalOptions);
  auto options = asEntitlementList(*pass.apRenewalOptions);
  ASSERT_TRUE(options);
  ASSERT_EQ(options->size(), 3u);
  EXPECT_EQ((*options)[0]->productInstanceId, pass.defaultRenewableProductId);
  EXPECT_EQ((*options)[2]->categoryId, "ThemePark");

  const auto& shared = entitlementWithId(data, "AP-100202");
  EXPECT_TRUE(shared.isShared && shared.isSellable && shared.isRenewable);

  const auto& sunset = entitlementWithId(data, "AP-100203");
  EXPECT_TRUE(sunset.isRenewable);
  EXPECT_FALSE(sunset.defaultRenewableProductId);

  EXPECT_EQ(entitlementWithId(data, "AP-100204").productType, "cobalt-annual-pass");

  const auto& ticket = entitlementWithId(data, "TK-300101");
  ASSERT_TRUE(ticket.affiliationInfo && ticket.apUpgradeOptions);
  EXPECT_EQ(ticket.affiliationInfo->size(), 2u);
  EXPECT_EQ(ticket.apUpgradeOptions->at("STD_GST").size(), 2u);
  EXPECT_EQ(ticket.apUpgradeOptions->at("FL_RES").front()->productInstanceId, "UP-RESIDENT");
  EXPECT_EQ(ticket.daysRemaining, 2.0);
}

TEST(GuestDataFileTest, LeftOutAndNullFieldsStayAbsent) {
  auto guest = parseGuestData(R"({"entitlements": [{"productInstanceId": null, "totalPrice": null}, {}]})");
  ASSERT_TRUE(guest) << describeGuestDataError(guest.error());
  EXPECT_FALSE(guest.value().kuid);
  EXPECT_FALSE(guest.value().userProfile);
  EXPECT_FALSE(guest.value().affiliations) << "no affiliations key is not an empty list";
  ASSERT_EQ(guest.value().entitlements.size(), 2u);
  EXPECT_FALSE(guest.value().entitlements[0]->productInstanceId);
  EXPECT_FALSE(guest.value().entitlements[0]->totalPrice);
  EXPECT_FALSE(guest.value().entitlements[1]->isRenewable);

  auto empty = parseGuestData(R"({"entitlements": [], "affiliations": [], "profile": {}})");
  ASSERT_TRUE(empty);
  ASSERT_TRUE(empty.value().affiliations);
  EXPECT_TRUE(empty.value().affiliations->empty());
  ASSERT_TRUE(empty.value().userProfile);
  EXPECT_FALSE(empty.value().userProfile->avatar);
}

TEST(GuestDataFileTest, MalformedDocumentsNameThePlaceOfTheFault) {
  const std::string deep = [] {
    std::string text = R"({"entitlements": [)";
    for (int i = 0; i < 12; ++i) text += R"({"apRenewalOptions": [)";
    text += "{}";
    for (int i = 0; i < 12; ++i) text += "]}";
    return text + "]}";
  }();
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"{\"entitlements\": [", "not valid JSON"},
      {"[]", "document"},
      {R"({"profile": {"kuid": "a"}})", "missing \"entitlements\""},
      {R"({"entitlements": {}})", "entitlements: expected a list"},
      {R"({"entitlements": [{"totalPrice": "12"}]})", "entitlements[0].totalPrice"},
      {R"({"entitlements": [{}, {"isRenewable": "yes"}]})", "entitlements[1].isRenewable"},
      {R"({"entitlements": [{"passExpirationDate": "2031-02-30T00:00:00Z"}]})", "not an RFC 3339 date"},
      {R"({"entitlements": [{"blockoutDates": ["2031-01-01T00:00:00Z", 5]}]})", "blockoutDates[1]"},
      {R"({"entitlements": [{"productInstanceID": "x"}]})", "entitlements[0].productInstanceID: unknown key"},
      {R"({"entitlements": [], "guest": {}})", "guest: unknown key"},
      {R"({"entitlements": [{"numberOfDays": 1.5}]})", "whole number"},
      {R"({"entitlements": [{"numberOfDays": 18446744073709551615}]})", "out of range"},
      {R"({"entitlements": [{"tax": 1e300}]})", "out of range"},
      {R"({"entitlements": [{"affiliationInfo": [{"sortOrder": 1}]}]})", "needs an affiliationId"},
      {R"({"entitlements": [{"apUpgradeOptions": {"STD_GST": [1]}}]})", "apUpgradeOptions.STD_GST[0]"},
      {R"({"entitlements": [], "theaterTickets": ["x"]})", "theaterTickets[0]"},
      {R"({"entitlements": [], "profile": {"kuid": 7}})", "profile.kuid"},
      {deep, "nested too deeply"},
  };
  for (const auto& [text, expected] : cases) {
    auto guest = parseGuestData(text, "test.json");
    ASSERT_FALSE(guest) << text;
    EXPECT_EQ(guest.error().domain, kGuestDataErrorDomain);
    EXPECT_EQ(guest.error().code, static_cast<long>(GuestDataErrorCode::malformed));
    const std::string message = describeGuestDataError(guest.error());
    EXPECT_NE(message.find("test.json"), std::string::npos) << message;
    EXPECT_NE(message.find(expected), std::string::npos) << text << " gave " << message;
  }
}

TEST(GuestDataFileTest, UnreadableFilesAreReportedAsSuch) {
  const auto missing = std::filesystem::temp_directory_path() / "varnel-no-such-guest.json";
  auto guest = readGuestDataFile(missing);
  ASSERT_FALSE(guest);
  EXPECT_EQ(guest.error().code, static_cast<long>(GuestDataErrorCode::unreadable));
  EXPECT_NE(describeGuestDataError(guest.error()).find("cannot read " + missing.string()), std::string::npos);

  auto directory = readGuestDataFile(std::filesystem::temp_directory_path());
  ASSERT_FALSE(directory);
  EXPECT_EQ(directory.error().code, static_cast<long>(GuestDataErrorCode::unreadable));
}

TEST(GuestDataFileTest, Rfc3339AcceptsZoneAndFractionAndRefusesTheRest) {
  EXPECT_EQ(parseRfc3339("2031-06-01T00:00:00Z"), Date::fromTimeIntervalSince1970(1938038400));
  EXPECT_EQ(parseRfc3339("2031-06-01T08:30:00.250-04:00"), Date::fromTimeIntervalSince1970(1938083400.25));
  EXPECT_EQ(parseRfc3339("2031-06-01T02:00:00+02:00"), Date::fromTimeIntervalSince1970(1938038400));
  for (const char* bad : {"", "2031-06-01", "2031-06-01T00:00:00", "2031-6-01T00:00:00Z", "20310-06-01T00:00:00Z",
                          "2031-13-01T00:00:00Z", "2031-06-01T24:00:00Z", "2031-06-01T00:00:00Z trailing",
                          "2031-06-01 00:00:00Z"}) {
    EXPECT_FALSE(parseRfc3339(bad)) << bad;
  }
}

TEST(GuestDataFileTest, DamagedCopiesOfTheSampleNeverCrashTheParser) {
  const std::string sample = readAll(kSample);
  ASSERT_FALSE(sample.empty());
  std::mt19937 random(20310614);
  std::uniform_int_distribution<std::size_t> position(0, sample.size() - 1);
  std::uniform_int_distribution<int> byte(0, 255);
  int rejected = 0;
  for (int round = 0; round < 300; ++round) {
    std::string damaged = sample;
    for (int flips = 1 + round % 4; flips > 0; --flips) damaged[position(random)] = static_cast<char>(byte(random));
    if (round % 7 == 0) damaged.resize(position(random));
    auto guest = parseGuestData(damaged);
    if (!guest) {
      ++rejected;
      EXPECT_EQ(guest.error().code, static_cast<long>(GuestDataErrorCode::malformed));
    }
  }
  EXPECT_GT(rejected, 0);
}

}  // namespace
}  // namespace varnel::standalone
