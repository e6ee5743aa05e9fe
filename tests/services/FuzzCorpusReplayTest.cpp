// Every input of the parsers' fuzzing corpus, fed to each parser: none may
// crash, throw or trip a sanitizer, and each must give the same record twice.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "ParserTestSupport.h"
#include "varnel/services/VNLParseContractResponse.h"
#include "varnel/services/VNLParseCreateOrderResponse.h"
#include "varnel/services/VNLParseUpdateSubmitResponse.h"

namespace varnel {
namespace {

namespace fs = std::filesystem;

std::vector<fs::path> corpusFiles() {
  std::vector<fs::path> files;
  for (const auto& entry : fs::recursive_directory_iterator(VARNEL_FUZZ_CORPUS_DIR)) {
    if (entry.is_regular_file()) files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

Json answerIn(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  const Json answer = Json::parse(bytes, nullptr, false);
  return answer.is_discarded() ? Json() : answer;
}

std::string printed(const Json& record) { return record.dump(-1, ' ', false, Json::error_handler_t::replace); }

class FuzzCorpusReplayTest : public testing::ParserFixture {
 protected:
  void SetUp() override {
    ParserFixture::SetUp();
    signIn("{A1B2C3D4-0001}");
  }
};

TEST_F(FuzzCorpusReplayTest, EveryParserTakesEveryCorpusInput) {
  const auto files = corpusFiles();
  // One directory per parser, each with a few seeds at least.
  ASSERT_GE(files.size(), 9u);
  std::size_t describedOrders = 0;
  for (const auto& file : files) {
    SCOPED_TRACE(file.string());
    const Json answer = answerIn(file);

    const RenewalOrder order = VNLParseCreateOrderResponse().parseCreateOrder(answer);
    EXPECT_EQ(order, VNLParseCreateOrderResponse().parseCreateOrder(answer));
    EXPECT_TRUE(order.paymentPlan);
    if (!order.products.empty() && !order.guests.empty()) {
      EXPECT_THAT(order.debugDescription(), ::testing::StartsWith("Products: Pass Name: "));
      ++describedOrders;
    }
    EXPECT_FALSE(printed(order.toJson()).empty());

    const RenewalConfirmation confirmation = VNLParseUpdateSubmitResponse().parse(answer);
    EXPECT_EQ(confirmation, VNLParseUpdateSubmitResponse().parse(answer));
    EXPECT_FALSE(printed(confirmation.toJson()).empty());

    const VNLContractDataModel contract = VNLParseContractResponse().parseContract(answer);
    EXPECT_EQ(contract, VNLParseContractResponse().parseContract(answer));
    for (const auto& [key, link] : contract.linksDictionary) EXPECT_EQ(contract.linkDetails(key), link);
    EXPECT_THAT(contract.debugDescription(), ::testing::StartsWith("contractForEmail: "));
  }
  EXPECT_GT(describedOrders, 0u) << "the corpus should hold complete orders";
}

}  // namespace
}  // namespace varnel
