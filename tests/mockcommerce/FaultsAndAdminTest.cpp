// Scripted faults as a client sees them, their counting, the admin requests,
// the journal and the routing service.

#include "MockCommerceTestSupport.h"

namespace varnel::mock::testing {
namespace {

std::string accountsPath() { return std::string("/profile/guests/") + kGuestKuid + "/payment-accounts"; }

TEST(MockFaultParse, ReadsEveryKindAndRefusesNonsense) {
  struct Row {
    std::string text;
    bool ok;
    std::string described;
  };
  const std::vector<Row> rows = {
      {"booking:SYSTEM_ERROR", true, "booking:SYSTEM_ERROR"},   {"residency:072313", true, "residency:072313"},
      {"status:503", true, "status:503"},                       {"delay:250", true, "delay:250"},
      {"reset", true, "reset"},                                 {"reset-after*1", true, "reset-after*1"},
      {"empty*3", true, "empty*3"},                             {"malformed", true, "malformed"},
      {"array", true, "array"},                                 {"booking:", false, ""},
      {"status:99", false, ""},                                 {"status:abc", false, ""},
      {"reset*0", false, ""},                                   {"explode", false, ""},
  };
  for (const auto& row : rows) {
    auto fault = Fault::parse(row.text);
    EXPECT_EQ(fault.ok(), row.ok) << row.text;
    if (fault) {
      EXPECT_EQ(fault.value().describe(), row.described);
    }
  }
  EXPECT_FALSE(EndpointFault::parse("no-such-endpoint=reset").ok());
  EXPECT_FALSE(Route::parse("tester=missing-header").ok());
  auto route = Route::parse("tester=http://sim.example.test/x,tkx_error_500");
  ASSERT_TRUE(route.ok());
  EXPECT_EQ(route.value().header, "tkx_error_500");
}

TEST_F(MockCommerceTest, ResetAfterChargesButLosesTheAnswerThenTheKeyRecoversIt) {
  std::string order = createOrder();
  ASSERT_FALSE(server().setFault(EndpointFault::parse("create-order-purchase=reset-after*1").value()));
  httplib::Headers keyed = auth();
  keyed.emplace("Idempotency-Key", "lost-answer");
  auto lost = post(checkoutPath(order), checkoutBody("0"), keyed);
  EXPECT_FALSE(lost);
  EXPECT_EQ(server().charges().at(order), 1);
  auto retried = post(checkoutPath(order), checkoutBody("0"), keyed);
  ASSERT_TRUE(retried);
  EXPECT_EQ(retried->status, 200);
  EXPECT_EQ(bodyOf(retried)["status"], "BOOKED");
  EXPECT_EQ(server().charges().at(order), 1);
}

TEST_F(MockCommerceTest, LimitedFaultsAnswerTheNextNRequestsInOrder) {
  server().setFault(EndpointFault::parse("get-payment-accounts=status:503*2").value());
  server().setFault(EndpointFault::parse("get-payment-accounts=booking:SYSTEM_ERROR*1").value());
  std::vector<int> statuses;
  for (int i = 0; i < 5; ++i) {
    auto result = client().Get(accountsPath().c_str(), auth());
    statuses.push_back(result ? result->status : -1);
  }
  EXPECT_EQ(statuses, (std::vector<int>{503, 503, 500, 200, 200}));
}

TEST_F(MockCommerceTest, AdminFaultsJournalAndCharges) {
  auto added = client().Post("/__admin/faults", R"({"endpoint":"create-orders","fault":"booking:SYSTEM_ERROR"})",
                             "application/json");
  ASSERT_TRUE(added);
  EXPECT_EQ(added->status, 200);
  auto refused = client().Post("/__admin/faults", R"({"endpoint":"nowhere","fault":"reset"})", "application/json");
  ASSERT_TRUE(refused);
  EXPECT_EQ(refused->status, 400);
  EXPECT_EQ(createOrder(), "");  // every create-order fails now
  EXPECT_EQ(createOrder(), "");
  ASSERT_TRUE(client().Delete("/__admin/faults"));
  std::string order = createOrder();
  EXPECT_FALSE(order.empty());

  ASSERT_TRUE(client().Delete("/__admin/requests"));
  httplib::Headers headers = auth();
  headers.emplace("X-Orvane-Internal-Panlook-Env", "env2");
  ASSERT_TRUE(post(checkoutPath(order), checkoutBody("0"), headers));
  ASSERT_TRUE(client().Get("/no/such/path?x=1"));
  Json journal = bodyOf(client().Get("/__admin/requests"));
  ASSERT_EQ(journal.size(), 2u);
  EXPECT_EQ(journal[0]["endpoint"], "create-order-purchase");
  EXPECT_EQ(journal[0]["method"], "POST");
  EXPECT_EQ(journal[0]["headers"]["X-Orvane-Internal-Panlook-Env"], "env2");
  EXPECT_EQ(journal[0]["body"]["payments"][0]["amount"], "0");
  EXPECT_TRUE(journal[1]["endpoint"].is_null());
  EXPECT_EQ(journal[1]["query"]["x"], "1");
  EXPECT_EQ(journal, server().journal());

  Json charges = bodyOf(client().Get("/__admin/charges"));
  EXPECT_EQ(charges[order], 1);
}

TEST_F(MockCommerceTest, RoutesAndRouteFaults) {
  MockCommerceOptions options;
  options.guest = sampleGuest();
  options.routes = {Route::parse("tester one=http://sim.example.test/errors,tkx_error_500").value()};
  options.routeFaults = {RouteFault::parse("tkx_error_500=booking:SYSTEM_UNAVAILABLE").value(),
                         RouteFault::parse("tkx_error_871=status:503*1").value()};
  startServer(std::move(options));

  auto known = client().Get("/mobile-commerce/index.php/rest/export/json/header?uid=tester%20one");
  ASSERT_TRUE(known);
  EXPECT_EQ(known->status, 200);
  EXPECT_EQ(bodyOf(known)["field_endpoint"][0]["value"], "http://sim.example.test/errors");
  EXPECT_EQ(bodyOf(known)["field_simulator_header"][0]["value"], "tkx_error_500");
  auto unknown = client().Get("/mobile-commerce/index.php/rest/export/json/header?uid=nobody");
  ASSERT_TRUE(unknown);
  EXPECT_EQ(unknown->status, 404);
  EXPECT_FALSE(bodyOf(unknown).contains("field_endpoint"));

  httplib::Headers routed = auth();
  routed.emplace(kMockHeaderName, "tkx_error_500");
  auto faulted = client().Get(accountsPath().c_str(), routed);
  ASSERT_TRUE(faulted);
  EXPECT_EQ(typeIdOf(faulted), "SYSTEM_UNAVAILABLE");

  // The route fault of tkx_error_871 overrides its pending-order meaning once.
  std::string order = createOrder();
  httplib::Headers pending = auth();
  pending.emplace(kMockHeaderName, kPendingOrderHeaderValue);
  auto overridden = post(checkoutPath(order), checkoutBody("0"), pending);
  auto pendingAnswer = post(checkoutPath(order), checkoutBody("0"), pending);
  ASSERT_TRUE(overridden && pendingAnswer);
  EXPECT_EQ(overridden->status, 503);
  EXPECT_EQ(typeIdOf(pendingAnswer), "ORDER_PENDING");
  EXPECT_EQ(server().charges().at(order), 0);
}

}  // namespace
}  // namespace varnel::mock::testing
