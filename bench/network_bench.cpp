// The stand-alone networking over loopback, against the in-process mock
// commerce server:
//  - one create-order request through the module (createOrderRequest over the
//    private data service and the libcurl transport) against the same request
//    made with one bare libcurl easy handle that keeps its connection (the floor);
//  - the connections the transport opens for 100 sequential requests;
//  - a whole renewal (create order, payment accounts, contract, checkout)
//    through the module's four requests against the same four requests on
//    one bare libcurl connection.
//
// The module's requests are sent and answered on the transport's worker
// thread while the benchmark's thread waits, so the ratios compare wall time;
// the CPU column is the whole process's (the server's threads included, the
// same work for both sides). Iterations and repetitions are fixed: every
// renewal pays for the renewal of one pass, and a paid pass cannot be renewed
// again, so the household is given one pass per renewal the run makes.

#include <curl/curl.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "RatioSummary.h"
#include "varnel/host/KTVCParkResortContext.h"
#include "varnel/host/KTVRAuthenticationService.h"
#include "varnel/host/Registry.h"
#include "varnel/host/ResourceBundle.h"
#include "varnel/mock/MockCommerceServer.h"
#include "varnel/services/CommerceRequests.h"
#include "varnel/services/VNLCreateOrderParameters.h"
#include "varnel/standalone/GuestDataFile.h"
#include "varnel/standalone/SqliteUserDefaults.h"
#include "varnel/standalone/StaticAuthenticationService.h"
#include "varnel/standalone/network/IdempotencyKeys.h"
#include "varnel/standalone/network/JsonEnvironment.h"
#include "varnel/standalone/network/StandaloneNetworking.h"

namespace {

using namespace varnel;

constexpr int kOrderIterations = 1000;
constexpr int kRenewalIterations = 400;
constexpr int kRepetitions = 5;
/// The sample household's pass whose copies are renewed; it is itself only
/// ever ordered, never paid for.
constexpr const char* kTemplatePass = "AP-100201";
constexpr const char* kUserAgent = "varnel/0.1.0";

/// The household, the server and the module's networking, for the whole run.
struct Loopback {
  std::string kuid;
  std::string token;
  std::string baseUrl;
  /// Copies of the template pass; the module renews the even ones, the floor
  /// the odd ones, so that both find theirs equally far down the household.
  std::vector<std::string> renewablePasses;
  std::shared_ptr<KTVREnvironment> environment;
  std::unique_ptr<mock::MockCommerceServer> server;
  standalone::StandaloneNetworking networking;
};

std::unique_ptr<Loopback> gLoopback;
std::atomic<long> gConnectionsFor100 = -1;

/// Starts the server on a copy of the sample household with `passCopies`
/// renewable copies of the template pass, and installs the networking.
std::string setUp(int passCopies) {
  auto guest = standalone::readGuestDataFile(varnelResourceDirectory() / "guests" / "sample-guest.json");
  if (!guest) return standalone::describeGuestDataError(guest.error());
  auto loopback = std::make_unique<Loopback>();
  standalone::GuestData data = guest.value();
  loopback->kuid = data.kuid.value_or("");
  loopback->token = data.accessToken.value_or("");
  ENTMEntitlementRef pass;
  for (const auto& entitlement : data.entitlements) {
    if (entitlement && entitlement->productInstanceId == kTemplatePass) pass = entitlement;
  }
  if (!pass) return std::string("the sample household has no pass ") + kTemplatePass;
  for (int i = 0; i < passCopies; ++i) {
    auto copy = std::make_shared<ENTMEntitlement>(*pass);
    char id[32];
    std::snprintf(id, sizeof id, "AP-BENCH-%05d", i);
    copy->productInstanceId = id;
    copy->barcodeString = std::string("9") + (id + 9);
    loopback->renewablePasses.emplace_back(id);
    data.entitlements.push_back(std::move(copy));
  }

  auto server = mock::MockCommerceServer::start(
      {.guest = data, .faults = {}, .routes = {}, .routeFaults = {}, .requestLog = {}});
  if (!server) return "cannot start the mock commerce server";
  loopback->server = std::move(server.value());
  loopback->baseUrl = loopback->server->baseUrl();
  auto environment = standalone::JsonEnvironment::forServer(loopback->baseUrl);
  if (!environment) return "cannot read the mock environment";
  loopback->environment = environment.value();

  host::Registry::set<KTVRAuthenticationService>(
      std::make_shared<standalone::StaticAuthenticationService>(data.kuid, data.email));
  loopback->networking = standalone::installStandaloneNetworking(loopback->environment,
                                                                 [token = loopback->token] { return token; });
  gLoopback = std::move(loopback);
  return {};
}

void tearDown() {
  standalone::uninstallStandaloneNetworking();
  host::Registry::set<KTVRAuthenticationService>(nullptr);
  if (gLoopback) gLoopback->networking = {};
  gLoopback.reset();
}

/// Calls `start` with a success and a failure callback and waits for one of
/// them: after a success the "id" of its value (empty when it has none);
/// none after a failure or no answer within 30 seconds. Only the identifier is
/// kept, so that waiting costs the same whatever the answer.
std::optional<std::string> await(const std::function<void(KTVRSuccessBlock, KTVRFailureBlock)>& start) {
  struct State {
    std::mutex mutex;
    std::condition_variable changed;
    bool done = false;
    std::optional<std::string> id;
  };
  auto state = std::make_shared<State>();
  auto finish = [state](std::optional<std::string> id) {
    std::lock_guard lock(state->mutex);
    state->done = true;
    state->id = std::move(id);
    state->changed.notify_one();
  };
  start(
      [finish](const std::optional<Json>& value) {
        const std::string* id = value && value->is_object() ? jsonString(*value, "id") : nullptr;
        finish(id ? *id : std::string());
      },
      [finish](const std::optional<Error>&) { finish(std::nullopt); });
  std::unique_lock lock(state->mutex);
  state->changed.wait_for(lock, std::chrono::seconds(30), [&] { return state->done; });
  return state->done ? state->id : std::nullopt;
}

Json orderProduct(const std::string& kuid, const std::string& pass) {
  return Json{{"categoryId", "AnnualPassRenewal"},
              {"quantity", 1},
              {"entitlementId", pass},
              {"guestIdType", "kuid"},
              {"guestId", kuid}};
}

VNLCreateOrderParameters orderParameters(const std::string& kuid, const std::string& pass, bool monthlyPlan) {
  return VNLCreateOrderParameters(KTVCParkResortContext(kResortChoiceEast), kuid, {orderProduct(kuid, pass)},
                                  monthlyPlan);
}

/// The contract and checkout body of a monthly plan: nothing due now, paid
/// with the household's first stored card.
Json monthlyPaymentBody() {
  Json card{{"cardSubType", "VISA"}, {"cardholderName", "Rowan Ashby"}, {"cvv2", "418"},
            {"id", "CARD-REF-0001"},  {"key", "7d1e0c"},                {"paymentCardScan", false}};
  return Json{{"payments", Json::array({Json{{"paymentReference", card},
                                             {"billingPhone", {{"type", "MOBILE"}, {"number", "999-555-0188"}}},
                                             {"amount", "0"},
                                             {"currency", "USD"},
                                             {"billingEmail", "rowan.ashby@example.test"}}})},
              {"confirmationEmails", Json::array({Json{{"email", "rowan.ashby@example.test"}}})},
              {"bookingTermsAndConditions", "terms"}};
}

std::string orderId(const std::optional<std::string>& id) { return id.value_or(""); }

/// One libcurl easy handle, kept for the whole benchmark so that its
/// connection is reused; the module's headers on every request.
class BareClient {
 public:
  explicit BareClient(const std::string& token)
      : easy_(curl_easy_init()), authorization_("Authorization: Bearer " + token) {
    curl_easy_setopt(easy_, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(easy_, CURLOPT_WRITEFUNCTION, &append);
    curl_easy_setopt(easy_, CURLOPT_WRITEDATA, &body_);
  }
  ~BareClient() { curl_easy_cleanup(easy_); }
  BareClient(const BareClient&) = delete;
  BareClient& operator=(const BareClient&) = delete;

  /// The status of the answer (0 when none came); its body is body().
  long get(const std::string& url) {
    curl_easy_setopt(easy_, CURLOPT_HTTPGET, 1L);
    return perform(url, false);
  }
  /// POSTs `json` with a fresh Idempotency-Key.
  long post(const std::string& url, const std::string& json) {
    curl_easy_setopt(easy_, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(json.size()));
    curl_easy_setopt(easy_, CURLOPT_POSTFIELDS, json.data());
    return perform(url, true);
  }
  const std::string& body() const { return body_; }
  long connectionsOpened() const { return connections_; }

 private:
  static std::size_t append(char* data, std::size_t size, std::size_t count, void* body) {
    static_cast<std::string*>(body)->append(data, size * count);
    return size * count;
  }

  long perform(const std::string& url, bool write) {
    body_.clear();
    curl_slist* headers = curl_slist_append(nullptr, "Accept: application/json");
    if (write) headers = curl_slist_append(headers, "Content-Type: application/json");
    headers = curl_slist_append(headers, "User-Agent: varnel/0.1.0");
    headers = curl_slist_append(headers, authorization_.c_str());
    if (write) {
      headers = curl_slist_append(headers, ("Idempotency-Key: " + standalone::IdempotencyKeys::freshKey()).c_str());
    }
    headers = curl_slist_append(headers, "Expect:");
    curl_easy_setopt(easy_, CURLOPT_URL, url.c_str());
    curl_easy_setopt(easy_, CURLOPT_HTTPHEADER, headers);
    long status = 0;
    if (curl_easy_perform(easy_) == CURLE_OK) curl_easy_getinfo(easy_, CURLINFO_RESPONSE_CODE, &status);
    long connects = 0;
    curl_easy_getinfo(easy_, CURLINFO_NUM_CONNECTS, &connects);
    connections_ += connects;
    curl_slist_free_all(headers);
    return status;
  }

  CURL* easy_;
  std::string authorization_;
  std::string body_;
  long connections_ = 0;
};

// One create-order request.

/// Creates one order of the template pass per iteration through `service`.
void createOrders(benchmark::State& state, KTVRPrivateDataService& service) {
  const auto parameters = orderParameters(gLoopback->kuid, kTemplatePass, true);
  for (auto _ : state) {
    auto order = await([&](KTVRSuccessBlock success, KTVRFailureBlock failure) {
      createOrderRequest(service, parameters, std::move(success), std::move(failure));
    });
    if (orderId(order).empty()) {
      state.SkipWithError("the order was not created");
      break;
    }
  }
}

void BM_CreateOrder_Module(benchmark::State& state) {
  createOrders(state, *gLoopback->networking.service);
}

/// As above, with the idempotency keys kept in a settings store on disk (as
/// the command-line tools keep them) instead of in memory.
void BM_CreateOrder_ModuleKeysOnDisk(benchmark::State& state) {
  const auto file = std::filesystem::temp_directory_path() / "varnel-network-bench.sqlite3";
  std::filesystem::remove(file);
  auto store = standalone::SqliteUserDefaults::open(file);
  if (!store) {
    state.SkipWithError("cannot open a settings store");
    return;
  }
  {
    standalone::HttpClientOptions options;
    options.settings = store.value();
    auto client = std::make_shared<standalone::HttpClient>(std::move(options));
    standalone::CurlPrivateDataService service(client, [] { return gLoopback->token; }, gLoopback->environment);
    createOrders(state, service);
  }
  for (const char* suffix : {"", "-wal", "-shm"}) std::filesystem::remove(file.string() + suffix);
}

void BM_CreateOrder_BareCurl(benchmark::State& state) {
  BareClient client(gLoopback->token);
  const std::string url = gLoopback->baseUrl + "/commerce/guests/" + gLoopback->kuid + "/orders";
  const std::string body = orderParameters(gLoopback->kuid, kTemplatePass, true).parameterDictionary().dump();
  for (auto _ : state) {
    if (client.post(url, body) != 200 || client.body().empty()) {
      state.SkipWithError("the order was not created");
      break;
    }
  }
}

// Connections for 100 sequential requests, on a client of its own.

void BM_ConnectionsFor100Requests_Module(benchmark::State& state) {
  for (auto _ : state) {
    auto client = std::make_shared<standalone::HttpClient>();
    standalone::CurlPrivateDataService service(client, [] { return gLoopback->token; }, gLoopback->environment);
    const auto parameters = orderParameters(gLoopback->kuid, kTemplatePass, false);
    for (int i = 0; i < 50; ++i) {
      auto accounts = await([&](KTVRSuccessBlock success, KTVRFailureBlock failure) {
        profileAccounts(service, std::move(success), std::move(failure));
      });
      auto order = await([&](KTVRSuccessBlock success, KTVRFailureBlock failure) {
        createOrderRequest(service, parameters, std::move(success), std::move(failure));
      });
      if (!accounts || orderId(order).empty()) {
        state.SkipWithError("a request failed");
        return;
      }
    }
    const long opened = static_cast<long>(client->transport().connectionsOpened());
    state.counters["connections"] =
        benchmark::Counter(static_cast<double>(opened), benchmark::Counter::kAvgIterations);
    gConnectionsFor100 = std::max(gConnectionsFor100.load(), opened);
  }
}

// A whole renewal: a new monthly-plan order for a pass not yet renewed, the
// stored cards, the contract and the checkout.

std::string nextPass(std::size_t& next, std::size_t side) {
  const std::size_t index = 2 * next++ + side;
  return index < gLoopback->renewablePasses.size() ? gLoopback->renewablePasses[index] : "";
}

void BM_Renewal_Module(benchmark::State& state) {
  static std::size_t next = 0;
  auto& service = *gLoopback->networking.service;
  const Json payment = monthlyPaymentBody();
  const auto openedBefore = gLoopback->networking.client->transport().connectionsOpened();
  for (auto _ : state) {
    const std::string pass = nextPass(next, 0);
    if (pass.empty()) {
      state.SkipWithError("the household has no pass left to renew");
      break;
    }
    const std::string id = orderId(await([&](KTVRSuccessBlock success, KTVRFailureBlock failure) {
      createOrderRequest(service, orderParameters(gLoopback->kuid, pass, true), std::move(success),
                         std::move(failure));
    }));
    const bool paid = !id.empty() &&
                      await([&](KTVRSuccessBlock success, KTVRFailureBlock failure) {
                        profileAccounts(service, std::move(success), std::move(failure));
                      }) &&
                      await([&](KTVRSuccessBlock success, KTVRFailureBlock failure) {
                        monthlyContractRequest(service, id, payment, std::move(success), std::move(failure));
                      }) &&
                      await([&](KTVRSuccessBlock success, KTVRFailureBlock failure) {
                        createExpressCheckout(service, id, payment, std::move(success), std::move(failure));
                      });
    if (!paid) {
      state.SkipWithError("the renewal failed");
      break;
    }
  }
  const auto opened = gLoopback->networking.client->transport().connectionsOpened() - openedBefore;
  state.counters["connections"] = static_cast<double>(opened);
}

void BM_Renewal_BareCurl(benchmark::State& state) {
  static std::size_t next = 0;
  BareClient client(gLoopback->token);
  const std::string& base = gLoopback->baseUrl;
  const std::string ordersUrl = base + "/commerce/guests/" + gLoopback->kuid + "/orders";
  const std::string accountsUrl = base + "/profile/guests/" + gLoopback->kuid + "/payment-accounts";
  // The order body around its pass.
  const std::string marker = "@PASS@";
  const std::string orderText = orderParameters(gLoopback->kuid, marker, true).parameterDictionary().dump();
  const std::string orderHead = orderText.substr(0, orderText.find(marker));
  const std::string orderTail = orderText.substr(orderText.find(marker) + marker.size());
  const std::string payment = monthlyPaymentBody().dump();
  for (auto _ : state) {
    const std::string pass = nextPass(next, 1);
    if (pass.empty()) {
      state.SkipWithError("the household has no pass left to renew");
      break;
    }
    std::string id;
    if (client.post(ordersUrl, orderHead + pass + orderTail) == 200) {
      const Json order = Json::parse(client.body(), nullptr, false);
      if (const std::string* text = order.is_object() ? jsonString(order, "id") : nullptr) id = *text;
    }
    const std::string orderUrl = base + "/commerce/orders/" + id;
    const bool paid = !id.empty() && client.get(accountsUrl) == 200 &&
                      client.post(orderUrl + "/contract", payment) == 200 &&
                      client.post(orderUrl + "/express-checkout", payment) == 200;
    if (!paid) {
      state.SkipWithError("the renewal failed");
      break;
    }
  }
  state.counters["connections"] = static_cast<double>(client.connectionsOpened());
}

// Wall time, and the whole process's CPU time in the CPU column.
using Registration = benchmark::internal::Benchmark;
void configure(Registration* benchmark, int iterations, int repetitions = kRepetitions) {
  benchmark->Iterations(iterations)->Repetitions(repetitions)->UseRealTime()->MeasureProcessCPUTime();
}

BENCHMARK(BM_CreateOrder_BareCurl)->Apply([](Registration* b) { configure(b, kOrderIterations); });
BENCHMARK(BM_CreateOrder_Module)->Apply([](Registration* b) { configure(b, kOrderIterations); });
BENCHMARK(BM_CreateOrder_ModuleKeysOnDisk)->Apply([](Registration* b) { configure(b, kOrderIterations / 20); });
BENCHMARK(BM_ConnectionsFor100Requests_Module)->Apply([](Registration* b) { configure(b, 1, 3); });
BENCHMARK(BM_Renewal_BareCurl)->Apply([](Registration* b) { configure(b, kRenewalIterations); });
BENCHMARK(BM_Renewal_Module)->Apply([](Registration* b) { configure(b, kRenewalIterations); });

}  // namespace

int main(int argc, char** argv) {
  curl_global_init(CURL_GLOBAL_DEFAULT);
  if (const std::string problem = setUp(2 * kRenewalIterations * kRepetitions); !problem.empty()) {
    std::fprintf(stderr, "network_bench: %s\n", problem.c_str());
    return 1;
  }
  varnel::bench::RatioSummary summary;
  varnel::bench::runWith(summary, argc, argv);
  using Clock = varnel::bench::RatioSummary::Clock;
  summary.printTime("BM_CreateOrder_BareCurl", Clock::wall);
  summary.printTime("BM_CreateOrder_Module", Clock::wall);
  summary.printTime("BM_CreateOrder_ModuleKeysOnDisk", Clock::wall);
  summary.printTime("BM_Renewal_BareCurl", Clock::wall);
  summary.printTime("BM_Renewal_Module", Clock::wall);
  std::printf("wall time:\n");
  summary.printRatio("BM_CreateOrder_Module", "BM_CreateOrder_BareCurl", "<= 1.3", Clock::wall);
  summary.printRatio("BM_CreateOrder_ModuleKeysOnDisk", "BM_CreateOrder_BareCurl", "none", Clock::wall);
  summary.printRatio("BM_Renewal_Module", "BM_Renewal_BareCurl", "<= 1.3", Clock::wall);
  std::printf("CPU time of the whole process (server included):\n");
  summary.printRatio("BM_CreateOrder_Module", "BM_CreateOrder_BareCurl", "none");
  summary.printRatio("BM_Renewal_Module", "BM_Renewal_BareCurl", "none");
  if (const long opened = gConnectionsFor100.load(); opened >= 0) {
    std::printf("connections opened for 100 sequential requests: %ld   (target 1)\n", opened);
  }
  tearDown();
  curl_global_cleanup();
  return 0;
}
