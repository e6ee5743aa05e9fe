// The stand-alone entitlements parser: the guest file's entitlement list, and
// nothing else, read through the manager's parser once the host is installed.

#include <sstream>

#include <gmock/gmock.h>

#include "support/Fakes.h"
#include "varnel/host/ENTMParseTicketsAndAPs.h"
#include "varnel/standalone/GuestFileEntitlementsParser.h"
#include "varnel/standalone/StandaloneHost.h"

namespace varnel::standalone {
namespace {

using GuestFileEntitlementsParserTest = testing::HostFixture;

TEST_F(GuestFileEntitlementsParserTest, ReadsOnlyAListOfWellFormedEntitlements) {
  struct Row {
    Json input;
    std::optional<std::size_t> count;  // none: not read
  };
  const std::vector<Row> rows = {
      {Json::array(), 0},
      {Json::parse(R"([{"productInstanceId": "P", "ownerKuid": "G", "apRenewalOptions": [{"barcodeString": "B"}]}])"),
       1},
      {Json::parse(R"([{"productInstanceId": "P"}, {"productInstanceID": "misspelt"}])"), std::nullopt},
      {Json::parse(R"([{"tax": "not a number"}])"), std::nullopt},
      {Json::parse(R"([7])"), std::nullopt},
      {Json::parse(R"({"entitlements": []})"), std::nullopt},
      {"text", std::nullopt},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.input.dump());
    const auto parsed = GuestFileEntitlementsParser().parse(row.input);
    ASSERT_EQ(parsed.has_value(), row.count.has_value());
    if (parsed) {
      ASSERT_EQ(parsed->size(), *row.count);
      EXPECT_TRUE(asEntitlementList(*parsed).has_value());
    }
  }
}

TEST_F(GuestFileEntitlementsParserTest, StandaloneHostRegistersIt) {
  const Json list = Json::parse(R"([{"productInstanceId": "P1", "barcodeString": "B1"}])");
  EXPECT_EQ(ENTMParseTicketsAndAPs().parse(list), std::nullopt) << "no parser before the host is installed";
  std::ostringstream bannerText;
  installStandaloneHost({.verbose = false, .bannerStream = &bannerText});
  const auto parsed = ENTMParseTicketsAndAPs().parse(list);
  ASSERT_TRUE(parsed.has_value());
  const auto entitlements = asEntitlementList(*parsed);
  ASSERT_TRUE(entitlements && entitlements->size() == 1);
  EXPECT_EQ(entitlements->front()->barcodeString, "B1");
}

}  // namespace
}  // namespace varnel::standalone
