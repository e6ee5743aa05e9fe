// Every input of the parsers' fuzzing corpus, fed to each parser: none may
// crash, throw or trip a sanitizer, and every record must stay printable.

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "ParserTestSupport.h"
#include "varnel/services/VNLParseContractResponse.h"
#include "varnel/services/VNLParseCreateOrderResponse.h"
#include "varnel/services/VNLParsePaymentAccounts.h"
#include "varnel/services/VNLParseUpdateSubmitResponse.h"

namespace varnel {

using FuzzCorpusReplayTest = testing::ParserFixture;

TEST_F(FuzzCorpusReplayTest, EveryParserTakesEveryCorpusInput) {
  signIn("{A1B2C3D4-0001}");
  std::size_t completeOrders = 0;
  for (const auto& file : std::filesystem::recursive_directory_iterator(VARNEL_FUZZ_CORPUS_DIR)) {
    if (!file.is_regular_file()) continue;
    SCOPED_TRACE(file.path().string());
    std::ifstream input(file.path(), std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(input), std::istreambuf_iterator<char>()};
    const Json answer = parseJson(text).value.value_or(nullptr);  // what is not JSON comes as null

    const RenewalOrder order = VNLParseCreateOrderResponse().parseCreateOrder(answer);
    EXPECT_TRUE(order.paymentPlan);
    if (!order.products.empty() && !order.guests.empty()) {
      EXPECT_THAT(order.debugDescription(), ::testing::StartsWith("Products: Pass Name: "));
      ++completeOrders;
    }
    const RenewalConfirmation confirmation = VNLParseUpdateSubmitResponse().parse(answer);
    const VNLContractDataModel contract = VNLParseContractResponse().parseContract(answer);
    for (const PaymentAccount& account : VNLParsePaymentAccounts().parsePaymentAccounts(answer)) {
      EXPECT_TRUE(account.creditCard().securityCode().has_value());
    }
    for (const Json& record : {order.toJson(), confirmation.toJson(), contract.toJson()}) {
      EXPECT_FALSE(record.dump(-1, ' ', false, Json::error_handler_t::replace).empty());
    }
  }
  EXPECT_GT(completeOrders, 0u) << "the corpus should hold complete orders";
}

}  // namespace varnel
