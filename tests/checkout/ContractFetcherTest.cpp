// The monthly-payment contract: priced as the checkout, answered on the main
// queue, and served from the resource file when the tester switch is on.

#include <filesystem>
#include <fstream>
#include <functional>

#include <gtest/gtest.h>

#include "checkout/CheckoutTestSupport.h"
#include "varnel/checkout/ContractFetcher.h"
#include "varnel/entitlements/VNLVarnel.h"
#include "varnel/host/Registry.h"
#include "varnel/host/ResourceBundle.h"
#include "varnel/services/VNLParseContractResponse.h"

namespace varnel::testing {
namespace {

Json readJson(const std::filesystem::path& path) {
  std::ifstream in(path);
  return Json::parse(in, nullptr, false);
}

struct Received {
  int successes = 0;
  int failures = 0;
  std::optional<VNLContractDataModel> contract;
  std::optional<Error> error;
};

class ContractFetcherTest : public CheckoutFixture {
 protected:
  void fetch(const PaymentAccount& account = testAccount(), const RenewalOrder& order = testOrder(true)) {
    ContractFetcher().fetchMonthlyContract(
        order.orderId, account, order,
        [this](const std::optional<VNLContractDataModel>& contract) { ++received.successes, received.contract = contract; },
        [this](const std::optional<Error>& error) { ++received.failures, received.error = error; });
  }

  /// Points the module's resources at a fresh directory holding `contract` as contract.js (none: no file).
  void useResources(std::optional<std::string> contract) {
    directory = std::filesystem::temp_directory_path() /
                ("varnel-contract-" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()) + "-" +
                 ::testing::UnitTest::GetInstance()->current_test_info()->name());
    std::filesystem::remove_all(directory);
    std::filesystem::create_directories(directory);
    if (contract) std::ofstream(directory / "contract.js") << *contract;
    host::Registry::set<ResourceBundle>(std::make_shared<ResourceBundle>(ResourceBundle{directory}));
  }

  void TearDown() override {
    if (!directory.empty()) std::filesystem::remove_all(directory);
    CheckoutFixture::TearDown();
  }

  bool logged(std::string_view prefix) const {
    for (const auto& message : log->messages()) {
      if (message.starts_with(prefix)) return true;
    }
    return false;
  }

  Received received;
  std::filesystem::path directory;
};

TEST_F(ContractFetcherTest, SendsTheCheckoutsOwnBody) {
  struct Row {
    const char* name;
    PaymentAccount account;
    RenewalOrder order;
  };
  const Row rows[] = {
      {"monthly plan, stored card", testAccount(), testOrder(true)},
      {"scanned card with a code, phone only", testAccount({.securityCode = "737", .scanned = true, .mobile = {}}),
       testOrder(true, "1049.00")},
      {"paid in full", testAccount(), testOrder(false, "689.00")},
  };
  for (const Row& row : rows) {
    session->tasks.clear();
    fetch(row.account, row.order);
    ASSERT_EQ(session->tasks.size(), 1u) << row.name;
    const URLRequest& request = session->tasks[0]->request;
    EXPECT_EQ(request.url, "https://commerce.example.test/orders/ORD-1/contract") << row.name;
    ASSERT_TRUE(request.httpBody) << row.name;
    EXPECT_EQ(Json::parse(*request.httpBody),
              PurchaseHandler::create()->parameterDictionaryForPurchase(row.account, row.order))
        << row.name;
    EXPECT_EQ(ContractFetcher().parameterDictionary(row.account, row.order), Json::parse(*request.httpBody));
  }
}

TEST_F(ContractFetcherTest, AnswersOnlyOnTheMainQueue) {
  const Json contract = readJson(std::string(VARNEL_TEST_RESOURCE_DIR) + "/samples/contract.json");
  struct Row {
    const char* name;
    std::optional<std::string> data;
    std::optional<long> status;
    std::optional<Error> error;
    bool succeeds;
    const char* logLine;
  };
  const Row rows[] = {
      {"contract", contract.dump(), 200, std::nullopt, true, "Result: "},
      {"service refusal", R"({"errors":[]})", 500, std::nullopt, false, "Error: "},
      {"transport failure", std::nullopt, std::nullopt, Error{"Host.Network", -1004, Json::object()}, false, "Error: "},
  };
  for (const Row& row : rows) {
    received = {};
    session->tasks.clear();
    log->clear();
    fetch();
    ASSERT_EQ(session->tasks.size(), 1u) << row.name;
    std::optional<URLResponse> response;
    if (row.status) response = URLResponse{kContractUrl, row.status, {}};
    session->complete(0, row.data, response, row.error);
    EXPECT_EQ(received.successes + received.failures, 0) << row.name << ": answered before the main queue ran";
    EXPECT_TRUE(logged(row.logLine)) << row.name;
    EXPECT_EQ(mainQueue->runAll(), 1u) << row.name;
    EXPECT_EQ(received.successes, row.succeeds ? 1 : 0) << row.name;
    EXPECT_EQ(received.failures, row.succeeds ? 0 : 1) << row.name;
    if (row.succeeds) {
      // What is delivered is the parsed contract.
      ASSERT_TRUE(received.contract);
      EXPECT_EQ(*received.contract, VNLParseContractResponse().parseContract(contract));
      EXPECT_FALSE(received.contract->contractForMobile.empty());
    }
  }
}

TEST_F(ContractFetcherTest, WithoutARequestTheAnswerStillComesOnTheMainQueue) {
  const auto mockSwitch = [this] {
    host::Registry::set<KTVRPrivateDataService>(service);
    defaults->setBool(VNLVarnel::Constants::varnelContractMockKey, true);
  };
  struct Row {
    const char* name;
    std::function<void()> arrange;
    bool succeeds;
    const char* logLine;  // "": none expected
  };
  const Row rows[] = {
      {"no private data service", [] { host::Registry::set<KTVRPrivateDataService>(nullptr); }, false, ""},
      {"tester switch: the resource contract", mockSwitch, true, ""},
      {"tester switch, missing file", [&] { mockSwitch(), useResources(std::nullopt); }, false, "Path not found"},
      {"tester switch, not JSON", [&] { mockSwitch(), useResources("contract = { not json"); }, false,
       "Error occourd: "},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    received = {};
    log->clear();
    row.arrange();
    fetch();
    EXPECT_EQ(received.successes + received.failures, 0) << "answered before the main queue ran";
    mainQueue->runAll();
    EXPECT_EQ(received.successes, row.succeeds ? 1 : 0);
    EXPECT_EQ(received.failures, row.succeeds ? 0 : 1);
    if (*row.logLine) {
      EXPECT_TRUE(logged(row.logLine));
    }
    EXPECT_TRUE(session->tasks.empty());
    EXPECT_TRUE(service->calls.empty());
    if (row.succeeds) {
      ASSERT_TRUE(received.contract);
      EXPECT_EQ(*received.contract,
                VNLParseContractResponse().parseContract(readJson(varnelResourceDirectory() / "contract.js")));
      EXPECT_FALSE(received.contract->contractForEmail.empty());
    } else if (!*row.logLine) {
      ASSERT_TRUE(received.error);
      EXPECT_EQ(received.error->domain, kContractFetcherErrorDomain);
    }
  }
}

}  // namespace
}  // namespace varnel::testing
