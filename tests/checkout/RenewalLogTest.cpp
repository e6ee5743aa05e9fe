// Whole renewals over loopback HTTP with every log line captured at debug
// level: no line carries a card number, the security code, the guest's
// e-mail address or the access token, whether the renewal goes through or not.

#include <gtest/gtest.h>

#include "checkout/RenewalOverHttp.h"
#include "support/LogText.h"
#include "varnel/checkout/ContractFetcher.h"
#include "varnel/mock/MockFault.h"
#include "varnel/services/CommerceRequests.h"

namespace varnel::testing {
namespace {

constexpr const char* kSecurityCode = "9731";

class RenewalLogTest : public RenewalOverHttpTest {
 protected:
  /// Order, cards, contract (monthly plan) and checkout, as a host app runs them.
  void renew(bool monthlyPlan, const std::string& card) {
    const RenewalOrder order = placeOrder(monthlyPlan);
    const PaymentAccount account = storedCard(card, kSecurityCode);
    if (monthlyPlan) {
      bool answered = false;
      ContractFetcher().fetchMonthlyContract(
          order.orderId, account, order, [&](const auto&) { answered = true; }, [&](const auto&) { answered = true; });
      settle();
      mainQueue->runAll();
      EXPECT_TRUE(answered);
    }
    auto handler = PurchaseHandler::create();
    auto delegate = std::make_shared<RecordingDelegate>();
    handler->setDelegate(delegate);
    handler->beginPurchaseTransaction(order.orderId, account, order);
    settle();
    EXPECT_EQ(static_cast<std::size_t>(delegate->completions()) + delegate->failures().size(), 1u);
  }

  std::vector<std::string> secrets() const {
    std::vector<std::string> found = {kSecurityCode};
    for (const Json& account : household.paymentAccounts) {
      found.push_back(account.at("card").at("cardNumber").get<std::string>());
    }
    found.push_back(household.email.value_or("no e-mail in the sample guest"));
    found.push_back(household.accessToken.value_or("no token in the sample guest"));
    return found;
  }
};

TEST_F(RenewalLogTest, NoLineCarriesASecret) {
  struct Row {
    const char* name;
    bool monthlyPlan;
    const char* card;
    std::vector<std::pair<const char*, const char*>> faults;  // endpoint key, fault
  };
  const Row rows[] = {
      {"monthly plan renewed", true, "CARD-REF-0001", {}},
      {"paid in full, declined card", false, "CARD-REF-0003", {}},
      {"contract and checkout refused", true, "CARD-REF-0002",
       {{"create-contract", "status:500*1"}, {"create-order-purchase", "booking:SYSTEM_ERROR*1"}}},
      {"answers lost and garbled", false, "CARD-REF-0001",
       {{"get-payment-accounts", "reset*1"}, {"create-order-purchase", "malformed*1"}}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    restart();
    log->clear();
    for (const auto& [endpoint, kind] : row.faults) {
      auto fault = mock::Fault::parse(kind);
      ASSERT_TRUE(fault.ok()) << kind;
      ASSERT_FALSE(server->setFault({endpoint, fault.value()}));
    }
    renew(row.monthlyPlan, row.card);
    const auto lines = log->messages();
    EXPECT_FALSE(lines.empty()) << "nothing was logged: the check proves nothing";
    for (const std::string& line : lines) {
      for (const std::string& secret : secrets()) {
        EXPECT_EQ(withoutAddressesAndKeys(line).find(secret), std::string::npos) << "\"" << secret << "\" in: " << line;
      }
    }
  }
}

}  // namespace
}  // namespace varnel::testing
