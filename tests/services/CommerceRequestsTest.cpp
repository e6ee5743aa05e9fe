// The four commerce requests over fake host networking: what each sends, which
// callback each answer reaches with which error, what is logged, and the
// process-wide test-header tables.

#include <gmock/gmock.h>

#include "support/Fakes.h"
#include "varnel/testing/NetworkFakes.h"
#include "varnel/errors/ErrorMapping.h"
#include "varnel/host/Registry.h"
#include "varnel/services/CommerceRequests.h"
#include "varnel/services/URLHostEncoding.h"
#include "varnel/standalone/StaticAuthenticationService.h"

namespace varnel {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;
using ::testing::StartsWith;
using testing::FakePrivateDataService;

constexpr const char* kGuest = "{A1B2-C3 D4}";
constexpr const char* kEncodedGuest = "%7BA1B2-C3%20D4%7D";

Error bookingError(Json body) { return Error{"Varnel.Service", 402, Json{{"jsonResponse", std::move(body)}}}; }
Error connectionError() {
  return Error{"Varnel.Service", -1004, Json{{"isConnectionError", true}, {"NSLocalizedDescription", "refused"}}};
}
const Json kDeclined = Json::parse(R"({"errors": [{"typeId": "PAYMENT_DECLINED"}]})");

/// What reached the caller's callbacks.
struct Outcome {
  int successes = 0;
  int failures = 0;
  std::optional<Json> value;
  std::optional<Error> error;
};

// Members are public: the table rows reach them through a fixture reference.
class CommerceRequestsTest : public testing::HostFixture {
 public:
  using HostFixture::defaults;
  void SetUp() override {
    HostFixture::SetUp();
    service.calls.clear();
    service.defaultHeaders.clear();
    service.authorization.reset();
    outcome = {};
    session = std::make_shared<testing::FakeURLSession>();
    resetOverriddenHeadersForTesting();
    environment = std::make_shared<testing::TableEnvironment>(std::map<std::string, Json, std::less<>>{
        {"get-payment-accounts", "https://svc.varnel.invalid/guests/{kuid}/cards"},
        {"create-orders", "https://svc.varnel.invalid/guests/{owner_id}/orders"},
        {"create-contract", "https://svc.varnel.invalid/orders/{order-id}/contract"},
        {"create-order-purchase", "https://svc.varnel.invalid/orders/{order-id}/checkout"},
    });
    host::Registry::set<KTVREnvironment>(environment);
    host::Registry::set<URLSession>(session);
    signIn(kGuest);
  }
  void TearDown() override {
    resetOverriddenHeadersForTesting();
    HostFixture::TearDown();
  }

  static void signIn(std::optional<std::string> kuid) {
    host::Registry::set<KTVRAuthenticationService>(
        std::make_shared<standalone::StaticAuthenticationService>(std::move(kuid)));
  }
  KTVRSuccessBlock onSuccess() {
    return [this](const std::optional<Json>& value) { ++outcome.successes, outcome.value = value; };
  }
  KTVRFailureBlock onFailure() {
    return [this](const std::optional<Error>& error) { ++outcome.failures, outcome.error = error; };
  }
  VNLCreateOrderParameters order() const { return VNLCreateOrderParameters(KTVCParkResortContext(), kGuest); }
  void createOrder() { createOrderRequest(service, order(), onSuccess(), onFailure()); }
  void checkout() { createExpressCheckout(service, "ORD 7", Json{{"amount", "0"}}, onSuccess(), onFailure()); }
  void cards() { profileAccounts(service, onSuccess(), onFailure()); }

  FakePrivateDataService service;
  std::shared_ptr<testing::TableEnvironment> environment;
  std::shared_ptr<testing::FakeURLSession> session = std::make_shared<testing::FakeURLSession>();
  Outcome outcome;
};

TEST(URLHostEncodingTest, KeepsHostCharactersAndEncodesEveryOtherByte) {
  const std::vector<std::pair<std::string, std::string>> rows = {
      {"abcXYZ019-._~", "abcXYZ019-._~"},
      {"!$&'()*+,;=:[]", "!$&'()*+,;=:[]"},
      {"{A1B2}", "%7BA1B2%7D"},
      {"a b/c?d#e@f%g", "a%20b%2Fc%3Fd%23e%40f%25g"},
      {"\"<>\\^`|", "%22%3C%3E%5C%5E%60%7C"},
      {"caf\xC3\xA9", "caf%C3%A9"},
      {std::string("\x00\xFF", 2), "%00%FF"},
      {"", ""},
  };
  for (const auto& [text, encoded] : rows) EXPECT_EQ(percentEncodedForURLHost(text), encoded) << text;
}

// Which callback each answer reaches, with which error, and what is logged,
// for what no service over HTTP answers: the answers a service sends are
// proven by the fault matrix over loopback HTTP.
TEST_F(CommerceRequestsTest, FailureTable) {
  enum class Reached { none, success, failure };
  struct Row {
    std::string name;
    std::function<void(CommerceRequestsTest&)> start;
    // Answers the recorded call; absent when no call may have been made.
    std::function<void(FakePrivateDataService::Call&)> answer;
    Reached reached;
    std::optional<Error> error;
    std::vector<std::string> logged;
  };
  const auto fail = [](std::optional<Error> error) {
    return [error](FakePrivateDataService::Call& call) { call.failure(error); };
  };
  const auto succeed = [](std::optional<Json> value) {
    return [value](FakePrivateDataService::Call& call) { call.success(value); };
  };
  const Error unreadable = bookingError("not an error body");
  const std::vector<Row> rows = {
      {"cards, nobody signed in", [](auto& t) { signIn(std::nullopt), t.cards(); }, {}, Reached::none, {},
       {"Please, login first"}},
      {"checkout, nobody signed in", [](auto& t) { signIn(std::nullopt), t.checkout(); }, {}, Reached::none, {},
       {"Please, login first"}},
      {"order, unmapped failure", [](auto& t) { t.createOrder(); }, fail(unreadable), Reached::failure, unreadable,
       {"Sorry, Service Failed!"}},
      {"order, failure without error", [](auto& t) { t.createOrder(); }, fail(std::nullopt), Reached::failure, {},
       {"Sorry, Service Failed!"}},
      {"order, no answer", [](auto& t) { t.createOrder(); }, succeed(std::nullopt), Reached::none, {}, {}},
      {"checkout, connection failure", [](auto& t) { t.checkout(); }, fail(connectionError()), Reached::failure,
       toError(APError::ConnectionError), {"An Error OccurredOptional(\"refused\")"}},
      {"checkout, unmapped failure", [](auto& t) { t.checkout(); }, fail(unreadable), Reached::failure, unreadable,
       {"An Error OccurredOptional(\"The operation couldn\u2019t be completed. (Varnel.Service error 402.)\")"}},
      {"checkout, failure without error", [](auto& t) { t.checkout(); }, fail(std::nullopt), Reached::failure, {},
       {"An Error Occurrednil"}},
      {"checkout, endpoint not a string",
       [](auto& t) { t.environment->table["create-order-purchase"] = 42, t.checkout(); }, {}, Reached::none, {},
       {}},
      {"order, no environment", [](auto& t) { host::Registry::set<KTVREnvironment>(nullptr), t.createOrder(); }, {},
       Reached::none, {}, {}},
      {"cards, failure passes unchanged", [](auto& t) { t.cards(); }, fail(bookingError(kDeclined)),
       Reached::failure, bookingError(kDeclined), {}},
      {"cards in ENV2 mode, endpoint unknown",
       [](auto& t) {
         t.defaults->setBool("VarnelENV2ForPaymentCards", true);
         t.environment->table.erase("get-payment-accounts");
         t.cards();
       },
       {}, Reached::none, {}, {}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    SetUp();
    row.start(*this);
    ASSERT_EQ(service.calls.size(), row.answer ? 1u : 0u);
    if (row.answer) row.answer(service.calls.front());
    EXPECT_EQ(outcome.successes, row.reached == Reached::success ? 1 : 0);
    EXPECT_EQ(outcome.failures, row.reached == Reached::failure ? 1 : 0);
    EXPECT_EQ(outcome.error, row.error);
    EXPECT_EQ(log->messages(), row.logged);
    TearDown();
  }
}

TEST_F(CommerceRequestsTest, CardsByEndpointKeyOrFromTheEnv2ProfileService) {
  cards();
  ASSERT_EQ(service.calls.size(), 1u);
  EXPECT_EQ(service.calls[0].method, "GET endpoint");
  EXPECT_EQ(service.calls[0].target, "get-payment-accounts");
  EXPECT_THAT(service.calls[0].tokens, ElementsAre(Pair("kuid", kEncodedGuest)));
  EXPECT_EQ(service.calls[0].parameters, std::nullopt);

  defaults->setBool("VarnelENV2ForPaymentCards", true);
  cards();  // placeholder base without an "env2-profile-service" entry
  environment->table["env2-profile-service"] = "https://env2.varnel.invalid/profile";
  cards();
  ASSERT_EQ(service.calls.size(), 3u);
  EXPECT_EQ(service.calls[1].target, std::string(CommerceTestHeaders::kEnv2ProfileServicePlaceholder) +
                                         "/assembly/guest/id;kuid=" + kEncodedGuest + "/payment-accounts");
  EXPECT_EQ(service.calls[2].method, "GET");
  EXPECT_EQ(service.calls[2].target,
            std::string("https://env2.varnel.invalid/profile/assembly/guest/id;kuid=") + kEncodedGuest +
                "/payment-accounts");
  EXPECT_EQ(service.calls[2].parameters, (Json{{"kuid", kEncodedGuest}}));
  EXPECT_THAT(service.calls[2].overrideHeaders, IsEmpty());
}

TEST_F(CommerceRequestsTest, OrderIsPostedForTheEncodedOwnerAndItsEnv2HeadersStayAfterTheSwitchIsTurnedOff) {
  createOrder();
  ASSERT_EQ(service.calls.size(), 1u);
  EXPECT_EQ(service.calls[0].method, "POST");
  EXPECT_EQ(service.calls[0].target, std::string("https://svc.varnel.invalid/guests/") + kEncodedGuest + "/orders");
  EXPECT_EQ(service.calls[0].parameters, order().parameterDictionary());
  EXPECT_THAT(service.calls[0].overrideHeaders, IsEmpty());

  service.calls.clear();
  environment->table["env2-service-host"] = "https://env2.varnel.invalid";  // no trailing slash
  defaults->setBool("VarnelENV2HeaderKey", true);
  createOrder();
  defaults->setBool("VarnelENV2HeaderKey", false);
  createOrder();
  ASSERT_EQ(service.calls.size(), 2u);
  const auto expected = ElementsAre(Pair("X-Orvane-Internal-Panlook-Env", "env2"),
                                    Pair("X-Orvane-Internal-SFServiceHost", "https://env2.varnel.invalid/"),
                                    Pair("X-Orvane-Internal-TKXServiceHost", "tkx-gateway-qa.varnel.invalid"),
                                    Pair("X-Orvane-Internal-TKXServicePath", "/TKXApp/TKXGatewayServlet"));
  EXPECT_THAT(service.calls[0].overrideHeaders, expected);
  EXPECT_THAT(service.calls[1].overrideHeaders, expected);
  EXPECT_THAT(createOrderOverriddenHeaders(), expected);
  EXPECT_THAT(expressCheckoutOverriddenHeaders(), IsEmpty());
}

TEST_F(CommerceRequestsTest, PendingOrderHeaderStaysUntilAnEnv2CheckoutReplacesTheTable) {
  // Each step: ENV2 switch, pending switch, then the headers the checkout carries.
  struct Step {
    bool env2;
    bool pending;
    std::vector<std::string> headerNames;
  };
  const std::vector<Step> steps = {
      {false, false, {}},
      {false, true, {"X-Orvane-Internal-Mock-AP"}},
      {false, false, {"X-Orvane-Internal-Mock-AP"}},
      {true, false,
       {"X-Orvane-Internal-SFServiceHost", "X-Orvane-Internal-TKXServiceHost", "X-Orvane-Internal-TKXServicePath"}},
      {true, true,
       {"X-Orvane-Internal-Mock-AP", "X-Orvane-Internal-SFServiceHost", "X-Orvane-Internal-TKXServiceHost",
        "X-Orvane-Internal-TKXServicePath"}},
      {false, false,
       {"X-Orvane-Internal-Mock-AP", "X-Orvane-Internal-SFServiceHost", "X-Orvane-Internal-TKXServiceHost",
        "X-Orvane-Internal-TKXServicePath"}},
  };
  for (std::size_t i = 0; i < steps.size(); ++i) {
    SCOPED_TRACE(i);
    defaults->setBool("VarnelENV2HeaderKey", steps[i].env2);
    defaults->setBool("VarnelPendingOrderHeader", steps[i].pending);
    checkout();
    ASSERT_EQ(service.calls.size(), i + 1);
    std::vector<std::string> names;
    for (const auto& [name, value] : service.calls[i].overrideHeaders) names.push_back(name);
    EXPECT_EQ(names, steps[i].headerNames);
  }
  EXPECT_EQ(service.calls.back().overrideHeaders.at("X-Orvane-Internal-Mock-AP"), "tkx_error_871");
  EXPECT_EQ(service.calls.back().overrideHeaders.at("X-Orvane-Internal-SFServiceHost"),
            CommerceTestHeaders::kEnv2ServiceHostPlaceholder);
  EXPECT_EQ(service.calls.back().target, "https://svc.varnel.invalid/orders/ORD 7/checkout");
  EXPECT_EQ(service.calls.back().parameters, (Json{{"amount", "0"}}));
  EXPECT_THAT(createOrderOverriddenHeaders(), IsEmpty());
}

TEST_F(CommerceRequestsTest, ContractRequestCarriesServiceHeadersAuthorizationAndJsonBody) {
  service.defaultHeaders = {{"Accept", "application/json"}, {"content-type", "text/plain"}};
  service.authorization = "BEARER secret";
  monthlyContractRequest(service, "ORD-9", Json{{"amount", "0"}}, onSuccess(), onFailure());
  defaults->setBool("VarnelENV2HeaderKey", true);
  monthlyContractRequest(service, "ORD-9", Json{{"bad", "\xFF"}}, onSuccess(), onFailure());
  defaults->setBool("VarnelENV2HeaderKey", false);
  monthlyContractRequest(service, "ORD-9", Json{{"amount", "0"}}, onSuccess(), onFailure());

  ASSERT_EQ(session->tasks.size(), 3u);
  const URLRequest& plain = session->tasks[0]->request;
  EXPECT_TRUE(session->tasks[0]->resumed);
  EXPECT_EQ(plain.url, "https://svc.varnel.invalid/orders/ORD-9/contract");
  EXPECT_EQ(plain.httpMethod, "POST");
  EXPECT_THAT(plain.allHTTPHeaderFields,
              ElementsAre(Pair("Accept", "application/json"), Pair("Authorization", "BEARER secret"),
                          Pair("content-type", "application/json")));
  EXPECT_EQ(Json::parse(plain.httpBody.value()), (Json{{"amount", "0"}}));

  const URLRequest& env2 = session->tasks[1]->request;
  EXPECT_EQ(env2.httpBody, std::nullopt) << "a body that cannot be written is left out";
  EXPECT_EQ(env2.valueForHTTPHeaderField("X-Orvane-Internal-Panlook-Env"), "env2");
  EXPECT_EQ(env2.allHTTPHeaderFields.size(), 7u);
  EXPECT_THAT(createOrderOverriddenHeaders(), IsEmpty()) << "the contract writes no table";
  // Switched off, the next contract asks again and carries none of them.
  EXPECT_EQ(session->tasks[2]->request.allHTTPHeaderFields, plain.allHTTPHeaderFields);
  EXPECT_EQ(outcome.successes + outcome.failures, 0);
}

TEST_F(CommerceRequestsTest, ContractCompletionBranches) {
  const URLResponse ok{"https://svc.varnel.invalid/c", 200, {}};
  const URLResponse created{"https://svc.varnel.invalid/c", 201, {{"Set-Cookie", "s=1"}, {"Content-Type", "x/y"}}};
  const URLResponse notHttp{"file:///c", std::nullopt, {}};
  const Error refused = connectionError();
  struct Row {
    std::string name;
    std::optional<std::string> data;
    std::optional<URLResponse> response;
    std::optional<Error> error;
    int successes;
    int failures;
    std::optional<Error> failedWith;
    std::vector<std::string> logged;
  };
  const std::vector<Row> rows = {
      {"transport error", std::nullopt, std::nullopt, refused, 0, 1, refused,
       {"error=Optional(Error Domain=Varnel.Service Code=-1004 \"refused\")"}},
      {"error with data", "{}", ok, refused, 0, 1, refused,
       {"error=Optional(Error Domain=Varnel.Service Code=-1004 \"refused\")"}},
      {"no data, no error", std::nullopt, ok, std::nullopt, 0, 1, std::nullopt, {"error=nil"}},
      {"status 201 with JSON", "{}", created, std::nullopt, 0, 1, std::nullopt,
       {"statusCode should be 200, but is 201",
        "response = Optional(<URLResponse> { URL: https://svc.varnel.invalid/c } { Status Code: 201, Headers { "
        "\"Content-Type\": \"x/y\", \"Set-Cookie\": \"REDACTED\" } })"}},
      {"status 200 with JSON", R"({"contractForEmail": "e"})", ok, std::nullopt, 1, 0, std::nullopt, {}},
      {"not an HTTP response", "[1]", notHttp, std::nullopt, 1, 0, std::nullopt, {}},
      {"not JSON", "<html>", ok, std::nullopt, 0, 0, std::nullopt, {}},
      {"a JSON fragment", "\"text\"", ok, std::nullopt, 0, 0, std::nullopt, {}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    SetUp();
    monthlyContractRequest(service, "O", Json::object(), onSuccess(), onFailure());
    ASSERT_EQ(session->tasks.size(), 1u);
    session->complete(0, row.data, row.response, row.error);
    EXPECT_EQ(outcome.successes, row.successes);
    EXPECT_EQ(outcome.failures, row.failures);
    EXPECT_EQ(outcome.error, row.failedWith);
    if (row.successes) {
      EXPECT_EQ(outcome.value, Json::parse(*row.data));
    }
    EXPECT_EQ(log->messages(), row.logged);
    TearDown();
  }
}

TEST_F(CommerceRequestsTest, ContractWithoutAURLSessionFailsWithAnError) {
  host::Registry::set<URLSession>(nullptr);
  monthlyContractRequest(service, "O", Json::object(), onSuccess(), onFailure());
  ASSERT_EQ(outcome.failures, 1);
  EXPECT_EQ(outcome.error->domain, kCommerceRequestErrorDomain);
  EXPECT_EQ(outcome.error->code, kNoURLSessionErrorCode);
  EXPECT_THAT(log->messages(), ElementsAre(StartsWith("error=Optional(Error Domain=Varnel.CommerceRequest Code=1")));
}

}  // namespace
}  // namespace varnel
