// The stand-alone private data service against real loopback servers: how
// answers become successes and errors, what each request carries, retries,
// idempotency keys, routing headers, logging, TLS, timeouts and lifetime.
// Nothing here measures time: slow servers are judged by how their request
// failed and how many attempts it took.

#include <atomic>
#include <condition_variable>

#include <gmock/gmock.h>
#include <regex>

#include <arpa/inet.h>
#include <curl/curl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include "LoopbackServers.h"
#include "NetworkTestSupport.h"
#include "standalone/TemporaryDirectory.h"
#include "support/LogText.h"
#include "support/TestCertificates.h"
#include "varnel/errors/ErrorMapping.h"
#include "varnel/host/Registry.h"
#include "varnel/standalone/network/JsonEnvironment.h"
#include "varnel/standalone/network/NetworkErrors.h"

namespace varnel::testing {
namespace {

using standalone::HttpClientOptions;

bool connectionErrorOf(const std::optional<Error>& error) {
  return error && error->userInfo.value(kErrorIsConnectionErrorKey, false);
}

class PrivateDataServiceTest : public NetworkFixture {
 protected:
  void SetUp() override {
    NetworkFixture::SetUp();
    auto& http = server.server();
    http.Get("/json", [this](const httplib::Request&, httplib::Response& res) {
      ++hits;
      res.set_content(R"({"ok":true})", "application/json");
    });
    http.Get("/empty", [this](const httplib::Request&, httplib::Response& res) { ++hits, res.status = 204; });
    http.Get("/text", [this](const httplib::Request&, httplib::Response& res) {
      ++hits;
      res.set_content("hello", "text/plain");
    });
    http.Get("/booking", [this](const httplib::Request&, httplib::Response& res) {
      ++hits;
      res.status = 500;
      res.set_content(R"({"errors":[{"typeId":"PAYMENT_DECLINED"}]})", "application/json");
    });
    http.Get("/missing", [this](const httplib::Request&, httplib::Response& res) {
      ++hits;
      res.status = 404;
      res.set_content("not here", "text/plain");
    });
    http.Get("/gateway", [this](const httplib::Request&, httplib::Response& res) {
      ++hits;
      res.status = 502;
      res.set_content("<html><body>Bad Gateway</body></html>", "text/html");
    });
    http.Get("/moved", [this](const httplib::Request&, httplib::Response& res) {
      ++hits;
      res.set_redirect("/json", 303);
    });
    http.Get("/unbooked", [this](const httplib::Request&, httplib::Response& res) {
      ++hits;
      res.status = 500;
      res.set_content(R"({"message":"upstream failed","errors":"none"})", "application/json");
    });
    auto record = [this](const httplib::Request& req, httplib::Response& res) {
      std::lock_guard lock(mutex);
      seen.push_back(req);
      res.set_content(R"({"echo":true})", "application/json");
    };
    http.Get("/record", record);
    http.Post("/record", record);
    server.start();
  }

  ServiceAnswer get(const std::string& path, std::optional<Json> parameters = std::nullopt,
                    HTTPHeaderFields headers = {}) {
    return call([&](auto success, auto failure) {
      service->getDataUsingPath(server.baseUrl() + path, parameters, headers, success, failure);
    });
  }
  ServiceAnswer post(const std::string& url, const Json& body, HTTPHeaderFields headers = {}) {
    return call([&](auto success, auto failure) { service->postDataUsingPath(url, body, headers, success, failure); });
  }
  httplib::Request lastSeen() {
    std::lock_guard lock(mutex);
    return seen.back();
  }

  ScriptedServer server;
  std::atomic<int> hits{0};
  std::mutex mutex;
  std::vector<httplib::Request> seen;
};

TEST_F(PrivateDataServiceTest, AnswersBecomeSuccessesOrErrorsAndAreNeverRetried) {
  struct Case {
    std::string path;
    bool succeeds;
    std::optional<Json> value;
    std::optional<long> statusCode;
    // The booking-service mapping of the error: what the guest is shown.
    std::optional<APError> commerceError;
  };
  const std::vector<Case> cases = {
      {"/json", true, Json{{"ok", true}}, std::nullopt, std::nullopt},
      {"/empty", true, std::nullopt, std::nullopt, std::nullopt},
      {"/text", false, std::nullopt, 200, std::nullopt},
      {"/booking", false, std::nullopt, 500, APError::PAYMENT_DECLINED},
      {"/missing", false, std::nullopt, 404, APError::GeneralBookingServiceError},
      {"/gateway", false, std::nullopt, 502, APError::GeneralBookingServiceError},
      {"/moved", false, std::nullopt, 303, APError::GeneralBookingServiceError},
      {"/unbooked", false, std::nullopt, 500, APError::GeneralBookingServiceError},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.path);
    hits = 0;
    const ServiceAnswer answer = get(c.path);
    EXPECT_EQ(answer.succeeded, c.succeeds);
    EXPECT_EQ(answer.value, c.value);
    EXPECT_EQ(hits.load(), 1);
    if (c.succeeds) continue;
    ASSERT_TRUE(answer.error);
    EXPECT_FALSE(connectionErrorOf(answer.error));
    EXPECT_EQ(answer.error->userInfo.value(kErrorStatusCodeKey, 0L), *c.statusCode);
    EXPECT_EQ(APBookingServiceError(*answer.error), c.commerceError);
  }
  const auto declined = get("/booking");
  EXPECT_EQ(declined.error->userInfo[kErrorJsonResponseKey]["errors"][0]["typeId"], "PAYMENT_DECLINED");
  // What the service did send stays beside the general element.
  EXPECT_EQ(get("/unbooked").error->userInfo[kErrorJsonResponseKey]["message"], "upstream failed");
}

TEST_F(PrivateDataServiceTest, RequestsCarryQueryDefaultsAuthorizationAndOverrides) {
  ASSERT_TRUE(get("/record", Json{{"kuid", "a b&c"}, {"count", 2}}, {{"X-Test", "1"}, {"Accept", "text/json"}})
                  .succeeded);
  const httplib::Request getRequest = lastSeen();
  EXPECT_EQ(getRequest.get_param_value("kuid"), "a b&c");
  EXPECT_EQ(getRequest.get_param_value("count"), "2");
  EXPECT_EQ(getRequest.get_header_value("Authorization"), "Bearer token-1");
  EXPECT_EQ(getRequest.get_header_value("Accept"), "text/json");
  EXPECT_EQ(getRequest.get_header_value("X-Test"), "1");
  EXPECT_FALSE(getRequest.has_header("Idempotency-Key"));

  const Json body{{"kuid", "guest-1"}, {"products", Json::array()}};
  ASSERT_TRUE(post(server.baseUrl() + "/record", body).succeeded);
  const httplib::Request postRequest = lastSeen();
  EXPECT_EQ(Json::parse(postRequest.body), body);
  EXPECT_EQ(postRequest.get_header_value("Content-Type"), "application/json");
  EXPECT_EQ(postRequest.get_header_value("Authorization"), "Bearer token-1");
  EXPECT_TRUE(std::regex_match(postRequest.get_header_value("Idempotency-Key"),
                               std::regex("[0-9a-f]{8}-[0-9a-f]{4}-4[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}")));
  // Answered: the kept key is dropped, and the same write again gets a fresh one.
  ASSERT_TRUE(post(server.baseUrl() + "/record", body).succeeded);
  EXPECT_NE(lastSeen().get_header_value("Idempotency-Key"), postRequest.get_header_value("Idempotency-Key"));
  for (const auto& [key, value] : defaults->dictionaryRepresentation()) {
    EXPECT_FALSE(key.starts_with(standalone::IdempotencyKeys::kPendingWritePrefix)) << key;
  }
}

TEST_F(PrivateDataServiceTest, EndpointKeysResolveThroughTheEnvironment) {
  auto environment = standalone::JsonEnvironment::parse(
      R"({"endpoints": {"records": "{server}/record?guest={kuid}"}})", server.baseUrl() + "/");
  ASSERT_TRUE(environment.ok());
  host::Registry::set<KTVREnvironment>(environment.value());
  ASSERT_TRUE(call([&](auto success, auto failure) {
                service->getDataUsingEndpoint("records", {{"kuid", "g%201"}}, std::nullopt, success, failure);
              }).succeeded);
  EXPECT_EQ(lastSeen().get_param_value("guest"), "g 1");

  const ServiceAnswer unknown = call([&](auto success, auto failure) {
    service->getDataUsingEndpoint("no-such-endpoint", {}, std::nullopt, success, failure);
  });
  ASSERT_TRUE(unknown.error);
  EXPECT_EQ(unknown.error->code, static_cast<long>(standalone::NetworkErrorCode::badURL));
  EXPECT_FALSE(connectionErrorOf(unknown.error));
}

TEST_F(PrivateDataServiceTest, TransportFailuresAreRetriedTwiceAndWritesKeepTheirKeyAcrossARestart) {
  DroppingListener listener;
  const ServiceAnswer dropped = call([&](auto success, auto failure) {
    service->getDataUsingPath(listener.baseUrl() + "/accounts", std::nullopt, {}, success, failure);
  });
  EXPECT_TRUE(connectionErrorOf(dropped.error));
  EXPECT_EQ(listener.requestHeads().size(), 3u);

  const Json body{{"order", "o-1"}};
  const ServiceAnswer lost = post(listener.baseUrl() + "/checkout", body);
  EXPECT_TRUE(connectionErrorOf(lost.error));
  auto heads = listener.requestHeads();
  ASSERT_EQ(heads.size(), 6u);
  std::smatch match;
  ASSERT_TRUE(std::regex_search(heads[3], match, std::regex("Idempotency-Key: ([^\r\n]+)")));
  const std::string key = match[1].str();
  for (std::size_t i = 4; i < 6; ++i) EXPECT_NE(heads[i].find("Idempotency-Key: " + key), std::string::npos);

  // A new process (a new client over the same settings store) sending the
  // same write reuses the key that never got an answer.
  makeService();
  post(listener.baseUrl() + "/checkout", body);
  heads = listener.requestHeads();
  ASSERT_EQ(heads.size(), 9u);
  EXPECT_NE(heads[6].find("Idempotency-Key: " + key), std::string::npos);
}

TEST_F(PrivateDataServiceTest, HeadersFromSettingsAndCallersNeverReplaceTheRequestsOwn) {
  enum class From { routing, routingSwitchedOff, override };
  struct Case {
    From from;
    std::string name;
    std::string value;
    bool sent;
  };
  using namespace std::string_literals;
  const std::vector<Case> cases = {
      {From::routing, "X-Orvane-Internal-Mock-AP", "route-7", true},
      {From::routingSwitchedOff, "X-Orvane-Internal-Mock-AP", "route-7", false},
      {From::override, "X-Orvane-Internal-Mock-AP", "tkx_error_871", true},
      {From::routing, "Authorization", "Bearer someone-else", false},
      {From::routing, "authorization", "Bearer someone-else", false},
      {From::routing, "X-Note", "a\r\nInjected: 1", false},
      {From::routing, "X-Note", "a\nInjected: 1", false},
      {From::routing, "X-Note", "a\0b"s, false},
      {From::routing, "X-Note\r\nInjected", "1", false},
      {From::routing, "Idempotency-Key", "chosen-key", false},
      {From::override, "Host", "elsewhere.example", false},
      {From::override, "Content-Type", "text/plain", false},
      {From::override, "CONTENT-LENGTH", "0", false},
      {From::override, "Idempotency-Key", "chosen-key", true},  // the write's own key
      {From::override, "Idempotency-Key", "two words", false},
  };
  const std::regex uuid("[0-9a-f]{8}-[0-9a-f]{4}-4[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}");
  auto refusalsLogged = [this] {
    const auto lines = log->messages();
    return std::count_if(lines.begin(), lines.end(), [](const std::string& line) { return line.starts_with("Refused the header"); });
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name + ": " + c.value);
    defaults->setBool(kServerErrorRoutingUseFeatureKey, c.from == From::routing);
    defaults->setObject(kServerErrorRoutingHeaderKey, DefaultsDictionary{{c.name, DefaultsValue(c.value)}});
    const auto refusalsBefore = refusalsLogged();
    HTTPHeaderFields overrides;
    if (c.from == From::override) overrides.insert_or_assign(c.name, c.value);
    ASSERT_TRUE(post(server.baseUrl() + "/record", Json{{"order", "o-1"}}, overrides).succeeded);
    const httplib::Request received = lastSeen();
    EXPECT_EQ(received.has_header(c.name) && received.get_header_value(c.name) == c.value, c.sent);
    EXPECT_FALSE(received.has_header("Injected"));
    EXPECT_EQ(received.get_header_value("Authorization"), "Bearer token-1");
    EXPECT_EQ(received.get_header_value("Content-Type"), "application/json");
    EXPECT_EQ(received.get_header_value("Host"), "127.0.0.1:" + std::to_string(server.port()));
    if (c.name != "Idempotency-Key" || !c.sent) {
      EXPECT_TRUE(std::regex_match(received.get_header_value("Idempotency-Key"), uuid));
    }
    EXPECT_EQ(refusalsLogged() - refusalsBefore, c.sent || c.from == From::routingSwitchedOff ? 0 : 1);
    for (const auto& line : log->messages()) EXPECT_EQ(line.find("someone-else"), std::string::npos) << line;
  }
}

TEST_F(PrivateDataServiceTest, LogLinesCarryMethodHostPathAndStatusOnly) {
  post(server.baseUrl() + "/record?secret=query", Json{{"cardNumber", "4111111111111111"}, {"cvv2", "737"}});
  get("/record", Json{{"email", "guest@example.test"}});
  const auto lines = log->messages();
  const std::string target = "127.0.0.1:" + std::to_string(server.port()) + "/record";
  auto logged = [&](const std::string& start) {
    return std::find_if(lines.begin(), lines.end(), [&](const std::string& line) { return line.starts_with(start); });
  };
  ASSERT_NE(logged("POST " + target + " -> 200 ["), lines.end()) << ::testing::PrintToString(lines);
  EXPECT_THAT(*logged("POST " + target + " -> 200 ["),
              ::testing::AllOf(::testing::HasSubstr("Authorization: REDACTED"), ::testing::HasSubstr("Idempotency-Key: "),
                               ::testing::HasSubstr("Content-Type: application/json")));
  EXPECT_NE(logged("GET " + target + " -> 200 ["), lines.end());
  for (const auto& line : lines) {
    const std::string rest = withoutAddressesAndKeys(line);
    for (const char* secret : {"4111111111111111", "737", "token-1", "guest@example", "secret", "query"}) {
      EXPECT_EQ(rest.find(secret), std::string::npos) << line;
    }
  }
}

TEST_F(PrivateDataServiceTest, ServersThatHangTrickleOrRefuseEndTheRequestWithinItsBounds) {
  // A bound loopback socket that never listens: connecting to it is refused.
  const int closedPort = ::socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof address;
  ASSERT_EQ(::bind(closedPort, reinterpret_cast<sockaddr*>(&address), length), 0);
  ASSERT_EQ(::getsockname(closedPort, reinterpret_cast<sockaddr*>(&address), &length), 0);
  const std::string refusing = "http://127.0.0.1:" + std::to_string(ntohs(address.sin_port));

  struct Case {
    const char* name;
    std::optional<Misbehaviour> misbehaviour;  // none: nobody listens
    std::function<void(HttpClientOptions&)> tune;
    int curlCode;
    std::size_t attempts;
  };
  const std::vector<Case> cases = {
      {"silent server: each attempt times out, and is retried", Misbehaviour::hold,
       [](HttpClientOptions& o) { o.transport.totalTimeout = std::chrono::milliseconds(300); }, CURLE_OPERATION_TIMEDOUT, 3},
      {"silent server: the deadline ends the request with its first attempt", Misbehaviour::hold,
       [](HttpClientOptions& o) { o.retry.deadline = std::chrono::milliseconds(300); }, CURLE_OPERATION_TIMEDOUT, 1},
      {"trickling server: too slow is a timeout", Misbehaviour::trickle,
       [](HttpClientOptions& o) {
         o.transport.lowSpeedLimit = 100;
         o.transport.lowSpeedTime = std::chrono::seconds(1);
         o.retry.maxRetries = 0;
       },
       CURLE_OPERATION_TIMEDOUT, 1},
      {"refused connection: retried twice", std::nullopt, [](HttpClientOptions&) {}, CURLE_COULDNT_CONNECT, 3},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    std::optional<DroppingListener> listener;
    if (c.misbehaviour) listener.emplace(*c.misbehaviour);
    HttpClientOptions options;
    c.tune(options);
    makeService(options);
    const std::string base = listener ? listener->baseUrl() : refusing;
    const ServiceAnswer answer = call([&](auto success, auto failure) {
      service->getDataUsingPath(base + "/accounts", std::nullopt, {}, success, failure);
    });
    ASSERT_TRUE(connectionErrorOf(answer.error));
    EXPECT_EQ(answer.error->userInfo.value("curlCode", 0), c.curlCode);
    EXPECT_EQ(attemptsLogged(base + "/accounts"), c.attempts);
    if (listener) {
      EXPECT_EQ(listener->requestHeads().size(), c.attempts);
    }
  }
  ::close(closedPort);
}

TEST_F(PrivateDataServiceTest, NoCallbackRunsOnceTheServiceIsDestroyed) {
  std::mutex gateMutex;
  std::condition_variable released;
  bool release = false;
  std::atomic<bool> arrived{false};
  server.server().Get("/held", [&](const httplib::Request&, httplib::Response& res) {
    arrived = true;
    std::unique_lock lock(gateMutex);
    released.wait(lock, [&] { return release; });
    res.set_content("{}", "application/json");
  });
  std::atomic<int> callbacks{0};
  service->getDataUsingPath(server.baseUrl() + "/held", std::nullopt, {}, [&](auto&) { ++callbacks; },
                            [&](auto&) { ++callbacks; });
  while (!arrived) std::this_thread::yield();
  service.reset();
  client.reset();
  {
    std::lock_guard lock(gateMutex);
    release = true;
  }
  released.notify_all();
  EXPECT_EQ(callbacks.load(), 0);

  // Released from inside its own callback: the rest of that callback runs, nothing else.
  makeService();
  std::promise<void> done;
  auto finished = done.get_future();
  service->getDataUsingPath(
      server.baseUrl() + "/json", std::nullopt, {},
      [&](auto&) {
        service.reset();
        client.reset();
        done.set_value();
      },
      [&](auto&) { done.set_value(); });
  await(finished);
  EXPECT_FALSE(service);
}

class TlsTest : public NetworkFixture {
 protected:
  TemporaryDirectory directory;
};

TEST_F(TlsTest, OnlyACertificateThatVerifiesIsAnsweredAndAFailedOneIsNeverRetried) {
  TestCertificates authority(directory.path);
  struct Case {
    const char* name;
    ServerCertificate certificate;
    bool trustTheCa;
    bool answered;
  };
  const std::vector<Case> cases = {
      {"signed by a trusted CA for 127.0.0.1", authority.issue("good"), true, true},
      {"signed by a CA that is not trusted", authority.issue("untrusted"), false, false},
      {"for another host name", authority.issue("elsewhere", "DNS:elsewhere.example"), true, false},
      {"expired", authority.issue("expired", "DNS:localhost,IP:127.0.0.1", -2 * 86400, -86400), true, false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    ScriptedServer tls(c.certificate.certificate, c.certificate.key);
    tls.server().Get("/json", [](const httplib::Request&, httplib::Response& res) { res.set_content("{}", "application/json"); });
    tls.start();
    HttpClientOptions options;
    if (c.trustTheCa) options.transport.extraCaFile = authority.caFile();
    makeService(options);
    auto fetch = [&] {
      return call([&](auto success, auto failure) {
        service->getDataUsingPath(tls.baseUrl() + "/json", std::nullopt, {}, success, failure);
      });
    };
    const ServiceAnswer answer = fetch();
    EXPECT_EQ(answer.succeeded, c.answered);
    if (c.answered) {
      // Kept alive: a hundred more requests over the one connection and handshake.
      for (int i = 0; i < 100; ++i) ASSERT_TRUE(fetch().succeeded);
      EXPECT_EQ(client->transport().connectionsOpened(), 1);
      continue;
    }
    ASSERT_TRUE(connectionErrorOf(answer.error));
    EXPECT_TRUE(localizedDescription(*answer.error).starts_with("the server's certificate could not be verified: "))
        << localizedDescription(*answer.error);
    EXPECT_EQ(attemptsLogged(tls.baseUrl() + "/json"), 1u);
  }
}

}  // namespace
}  // namespace varnel::testing
