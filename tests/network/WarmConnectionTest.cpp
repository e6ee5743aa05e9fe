// The transport's connection pool around a connection-warming ping: a request
// sent while the ping is on the wire waits for it and takes its connection,
// and waits no longer than the connect timeout for a ping that never ends.
// The server tells connections apart by the client's port.

#include <condition_variable>
#include <future>
#include <mutex>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "LoopbackServers.h"
#include "NetworkTestSupport.h"
#include "varnel/standalone/network/CurlTransport.h"

namespace varnel::testing {
namespace {

using standalone::CurlTransport;
using standalone::HttpOutcome;
using standalone::HttpRequest;

class WarmConnectionTest : public ::testing::Test {
 protected:
  void SetUp() override {
    auto& http = server.server();
    // The ping is answered only once the test lets it go.
    http.Options(".*", [this](const httplib::Request& request, httplib::Response& response) {
      std::unique_lock lock(mutex);
      pingPorts.push_back(request.remote_port);
      changed.notify_all();
      changed.wait_for(lock, std::chrono::seconds(30), [this] { return pingsAnswered; });
      response.status = 204;
    });
    auto record = [this](const httplib::Request& request, httplib::Response& response) {
      std::lock_guard lock(mutex);
      requestPorts.push_back(request.remote_port);
      response.set_content("{}", "application/json");
    };
    http.Get("/cards", record);
    http.Post("/checkout", record);
    server.start();
  }
  void TearDown() override { answerPings(); }

  HttpRequest request(const std::string& method, const std::string& path) {
    HttpRequest sent;
    sent.method = method;
    sent.url = server.baseUrl() + path;
    if (method == "POST") sent.body = "{}";
    return sent;
  }
  HttpRequest ping() {
    HttpRequest sent = request("OPTIONS", "/");
    sent.requestTarget = "*";
    sent.keepsConnectionWarm = true;
    return sent;
  }
  std::future<HttpOutcome> send(CurlTransport& transport, HttpRequest sent) {
    auto answer = std::make_shared<std::promise<HttpOutcome>>();
    auto future = answer->get_future();
    transport.send(std::move(sent), [answer](HttpOutcome outcome) { answer->set_value(std::move(outcome)); });
    return future;
  }
  /// Sends a ping and returns once the server holds it.
  std::future<HttpOutcome> pingHeld(CurlTransport& transport) {
    auto answer = send(transport, ping());
    std::unique_lock lock(mutex);
    EXPECT_TRUE(changed.wait_for(lock, std::chrono::minutes(1), [this] { return !pingPorts.empty(); }));
    return answer;
  }
  void answerPings() {
    std::lock_guard lock(mutex);
    pingsAnswered = true;
    changed.notify_all();
  }

  ScriptedServer server;
  std::mutex mutex;
  std::condition_variable changed;
  bool pingsAnswered = false;
  std::vector<int> pingPorts;
  std::vector<int> requestPorts;
};

TEST_F(WarmConnectionTest, ARequestSentDuringAPingTakesThePingsConnection) {
  CurlTransport transport;
  auto cards = send(transport, request("GET", "/cards"));
  ASSERT_TRUE(await(cards).answered());
  auto pinged = pingHeld(transport);
  auto checkout = send(transport, request("POST", "/checkout"));
  // Time enough for a transport that does not wait to open a connection of its own.
  std::this_thread::sleep_for(std::chrono::milliseconds(200));
  answerPings();
  EXPECT_TRUE(await(checkout).answered());
  EXPECT_TRUE(await(pinged).answered());
  std::lock_guard lock(mutex);
  ASSERT_EQ(requestPorts.size(), 2u);
  EXPECT_EQ(requestPorts[0], pingPorts.at(0));
  EXPECT_EQ(requestPorts[1], pingPorts.at(0)) << "the checkout opened a connection of its own";
  EXPECT_EQ(transport.connectionsOpened(), 1);
}

TEST_F(WarmConnectionTest, APingThatNeverEndsHoldsARequestForTheConnectTimeoutAtMost) {
  standalone::TransportOptions options;
  options.connectTimeout = std::chrono::milliseconds(300);
  CurlTransport transport(options);
  auto pinged = pingHeld(transport);
  auto checkout = send(transport, request("POST", "/checkout"));
  EXPECT_TRUE(await(checkout).answered());
  std::lock_guard lock(mutex);
  ASSERT_EQ(requestPorts.size(), 1u);
  EXPECT_NE(requestPorts[0], pingPorts.at(0));
}

}  // namespace
}  // namespace varnel::testing
