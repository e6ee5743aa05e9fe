// The stand-alone URL session (any answer is a response, no answer an error,
// cancelled tasks stay silent), the environment table, and the rules of what
// a log line may show.

#include "LoopbackServers.h"
#include "NetworkTestSupport.h"
#include "varnel/standalone/network/CurlURLSession.h"
#include "varnel/standalone/network/JsonEnvironment.h"
#include "varnel/standalone/network/RequestLog.h"

namespace varnel::testing {
namespace {

struct TaskResult {
  std::optional<std::string> data;
  std::optional<URLResponse> response;
  std::optional<Error> error;
};

class URLSessionTest : public NetworkFixture {
 protected:
  TaskResult run(URLRequest request) {
    auto promise = std::make_shared<std::promise<TaskResult>>();
    auto future = promise->get_future();
    session->dataTask(std::move(request), [promise](auto data, auto response, auto error) {
              promise->set_value({std::move(data), std::move(response), std::move(error)});
            })->resume();
    return await(future);
  }
  void SetUp() override {
    NetworkFixture::SetUp();
    session = std::make_shared<standalone::CurlURLSession>(client);
  }
  void TearDown() override {
    session.reset();
    NetworkFixture::TearDown();
  }
  std::shared_ptr<standalone::CurlURLSession> session;
};

TEST_F(URLSessionTest, AnyAnswerIsAResponseAndNoAnswerIsAnError) {
  ScriptedServer server;
  std::string receivedBody;
  server.server().Post("/contract", [&](const httplib::Request& req, httplib::Response& res) {
    receivedBody = req.body;
    res.status = 201;
    res.set_content(R"({"contract":1})", "application/json");
  });
  server.start();
  URLRequest request{server.baseUrl() + "/contract", "POST", {{"Content-Type", "application/json"}}, R"({"a":1})"};
  const TaskResult answered = run(request);
  EXPECT_EQ(receivedBody, R"({"a":1})");
  EXPECT_EQ(answered.data, R"({"contract":1})");
  ASSERT_TRUE(answered.response);
  EXPECT_EQ(answered.response->statusCode, 201);
  EXPECT_FALSE(answered.error);

  DroppingListener listener;
  const TaskResult dropped = run({listener.baseUrl() + "/contract", "POST", {}, "{}"});
  EXPECT_FALSE(dropped.data);
  EXPECT_FALSE(dropped.response);
  ASSERT_TRUE(dropped.error);
  EXPECT_TRUE(dropped.error->userInfo.value(kErrorIsConnectionErrorKey, false));
}

TEST_F(URLSessionTest, ACancelledTaskNeverCompletes) {
  DroppingListener listener;
  std::atomic<int> completions{0};
  auto task = session->dataTask({listener.baseUrl() + "/x", "GET", {}, std::nullopt},
                                [&](auto, auto, auto) { ++completions; });
  task->cancel();
  task->resume();
  // A later task on the same worker completes, so the cancelled one had its chance.
  run({listener.baseUrl() + "/y", "GET", {}, std::nullopt});
  EXPECT_EQ(completions.load(), 0);
}

TEST(JsonEnvironmentTest, TemplatesFillTokensAndNeedTheirServer) {
  const std::string document =
      R"({"endpoints": {"create-orders": "{server}/commerce/guests/{owner_id}/orders", "static": "https://a.invalid/x"}})";
  auto environment = standalone::JsonEnvironment::parse(document, "http://127.0.0.1:9/");
  ASSERT_TRUE(environment.ok());
  EXPECT_EQ(environment.value()->valueForKey("create-orders", {{"owner_id", "g%3F1"}}),
            Json("http://127.0.0.1:9/commerce/guests/g%3F1/orders"));
  EXPECT_EQ(environment.value()->valueForKey("create-orders", {}), Json("http://127.0.0.1:9/commerce/guests/{owner_id}/orders"));
  EXPECT_EQ(environment.value()->valueForKey("unknown", {}), std::nullopt);

  for (const char* bad : {"[]", "{\"endpoints\": {\"k\": 1}}", "not json"}) {
    EXPECT_FALSE(standalone::JsonEnvironment::parse(bad, "http://h").ok()) << bad;
  }
  EXPECT_FALSE(standalone::JsonEnvironment::parse(document).ok()) << "{server} without a server";
  EXPECT_FALSE(standalone::JsonEnvironment::forServer("ftp://h").ok());
}

TEST(RequestLogTest, OnlyMethodHostPathAndAllowedHeaderValuesAreShown) {
  EXPECT_EQ(standalone::loggableTarget("https://user:pw@shop.invalid:8443/a/b?card=4111#frag"), "shop.invalid:8443/a/b");
  EXPECT_EQ(standalone::loggableTarget("http://h/p;kuid=x/accounts?kuid=x"), "h/p;kuid=x/accounts");
  const HTTPHeaderFields headers{{"Authorization", "Bearer secret"}, {"content-type", "application/json"},
                                 {"Cookie", "s=1"}, {"Idempotency-Key", "k-1"}};
  EXPECT_EQ(standalone::loggableHeaders(headers),
            "Authorization: REDACTED; content-type: application/json; Cookie: REDACTED; Idempotency-Key: k-1");
}

}  // namespace
}  // namespace varnel::testing
