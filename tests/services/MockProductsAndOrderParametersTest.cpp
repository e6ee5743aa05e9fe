// The canned entitlement data of the application's bundle, the product list
// made from it, and the create-order body with its tester switches.

#include <gmock/gmock.h>

#include "standalone/TemporaryDirectory.h"
#include "support/Fakes.h"
#include "varnel/host/ApplicationBundle.h"
#include "varnel/host/ENTMDebugSettings.h"
#include "varnel/host/Registry.h"
#include "varnel/services/DebugProductsClass.h"
#include "varnel/services/VNLCreateOrderParameters.h"
#include "varnel/services/VNLEVASParse.h"
#include "varnel/standalone/GuestFileEntitlementsParser.h"

namespace varnel {
namespace {

using ::testing::IsEmpty;

const Json kPass = {{"productInstanceId", "P1"}, {"barcodeString", "B1"}, {"ownerKuid", "G1"},
                    {"avatarURL", "https://a.varnel.invalid/1.png"}};
const Json kPassWithoutAvatar = {{"productInstanceId", "P2"}, {"barcodeString", "B2"}, {"ownerKuid", "G2"}};
const Json kPassWithoutBarcode = {{"productInstanceId", "P3"}, {"ownerKuid", "G3"}};

Json productOf(const std::string& id, const std::string& barcode, const std::string& owner,
               const std::string& avatar) {
  return {{"id", id},           {"contextId", "progenstr"}, {"categoryId", "AnnualPassRenewal"},
          {"quantity", 1},      {"entitlementId", barcode}, {"guestIdType", "kuid"},
          {"guestId", owner},   {"avatarImage", avatar}};
}

class MockDataTest : public testing::HostFixture {
 protected:
  void SetUp() override {
    HostFixture::SetUp();
    host::Registry::set(std::make_shared<ApplicationBundle>(ApplicationBundle{bundle.path}));
    host::Registry::set<ENTMTicketsAndAPsParsing>(std::make_shared<standalone::GuestFileEntitlementsParser>());
  }
  void writeMock(const std::string& text) const { bundle.write("mockEVAS2.json", text); }

  testing::TemporaryDirectory bundle;
};

TEST_F(MockDataTest, ResourcesDecodeOrGiveAnEmptyObject) {
  struct Row {
    std::string name;
    std::optional<std::string> content;  // none: no such resource
    Json decoded;
    std::vector<std::string> logged;
  };
  const std::vector<Row> rows = {
      {"missing", std::nullopt, Json::object(), {}},
      {"a list", R"([{"a": 1}])", Json::parse(R"([{"a": 1}])"), {}},
      {"a quoted string", R"("just text")", "just text", {}},
      {"a number", "42", 42, {}},
      {"broken JSON", "[{", Json::object(), {"Failed to load json file"}},
      {"empty", "", Json::object(), {"Failed to load json file"}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    log->clear();
    if (row.content) bundle.write(row.name + ".json", *row.content);
    EXPECT_EQ(VNLEVASParse::dataFromJsonFile(row.name), row.decoded);
    EXPECT_EQ(log->messages(), row.logged);
    for (const auto& line : log->lines()) EXPECT_EQ(line.site.file, "Classes/VNKEVASParse");
  }
}

TEST_F(MockDataTest, ProductsComeFromEveryCompleteEntitlementInOrder) {
  struct Row {
    std::string name;
    std::optional<std::string> content;
    std::vector<Json> products;
    std::vector<std::string> logged;
  };
  const std::vector<Row> rows = {
      {"no resource", std::nullopt, {}, {}},
      {"not JSON", "nope", {}, {"Failed to load json file"}},
      {"not a list of entitlements", R"({"entitlements": []})", {}, {}},
      {"a malformed entitlement", Json::array({kPass, Json{{"tax", "x"}}}).dump(), {}, {}},
      {"complete, without avatar, incomplete",
       Json::array({kPass, kPassWithoutAvatar, kPassWithoutBarcode}).dump(),
       {productOf("P1", "B1", "G1", "https://a.varnel.invalid/1.png"), productOf("P2", "B2", "G2", "")},
       {}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    log->clear();
    std::filesystem::remove(bundle.path / "mockEVAS2.json");
    if (row.content) writeMock(*row.content);
    EXPECT_EQ(DebugProductsClass::createProductsArray(), row.products);
    EXPECT_EQ(log->messages(), row.logged);
  }
}

TEST_F(MockDataTest, OrderBodyFollowsResortAndSwitches) {
  writeMock(Json::array({kPassWithoutAvatar}).dump());
  const std::vector<Json> hostProducts = {
      {{"categoryId", "AnnualPassRenewal"}, {"quantity", 2}, {"entitlementId", "H1"}, {"guestIdType", "kuid"},
       {"guestId", "G9"}}};
  struct Row {
    KTVCResortChoice resort;
    bool debugContext;
    bool mocked;
    const char* destinationId;
    const char* storeId;
    std::vector<Json> products;
  };
  const std::vector<Row> rows = {
      {kResortChoiceEast, false, false, "80007798", "oqs_mobile", hostProducts},
      {kResortChoiceWest, false, false, "80008297", "zlt_mobile", hostProducts},
      {kResortChoiceEast, true, false, "80007798", "oqs", hostProducts},
      {kResortChoiceWest, true, true, "80008297", "zlt", {productOf("P2", "B2", "G2", "")}},
      {kResortChoiceAlternate, false, true, "80007798", "oqs_mobile", {productOf("P2", "B2", "G2", "")}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(std::to_string(row.resort) + (row.debugContext ? " debug" : "") + (row.mocked ? " mocked" : ""));
    defaults->setBool(ENTMDebugSettings::contextKey, row.debugContext);
    defaults->setBool("VarnelEntitlementMockKey", row.mocked);
    const VNLCreateOrderParameters parameters(KTVCParkResortContext(row.resort), "{G-1}", hostProducts, true);
    const Json expected = {{"kuid", "{G-1}"},
                           {"products", row.products},
                           {"destinationId", row.destinationId},
                           {"storeId", row.storeId},
                           {"paymentPlan", true}};
    EXPECT_EQ(parameters.parameterDictionary(), expected);
  }
  // Without products: an empty array, paid in full.
  defaults->setBool("VarnelEntitlementMockKey", false);
  const Json body = VNLCreateOrderParameters(KTVCParkResortContext(), "G").parameterDictionary();
  EXPECT_EQ(body.at("products"), Json::array());
  EXPECT_EQ(body.at("paymentPlan"), false);
  EXPECT_THAT(VNLCreateOrderParameters(KTVCParkResortContext(), "G", true).products, IsEmpty());
}

}  // namespace
}  // namespace varnel
