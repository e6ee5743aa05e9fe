// The mock commerce service's throughput: renewals (a create-order and an
// express-checkout POST) per second, sent by several keep-alive clients at
// once, against the same two POSTs answered by a bare cpp-httplib server with
// a fixed body in the same run (the floor: the HTTP library alone).
//
// Iterations are fixed: every renewal pays for one pass, and a paid pass
// cannot be renewed again, so the household is given one pass per renewal
// the run makes. One iteration is every client's batch of renewals; wall
// time, as the work is done on the servers' threads.

#include <httplib.h>

#include <atomic>
#include <cstdio>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <benchmark/benchmark.h>

#include "RatioSummary.h"
#include "varnel/host/ResourceBundle.h"
#include "varnel/mock/MockCommerceServer.h"
#include "varnel/standalone/GuestDataFile.h"

namespace {

using namespace varnel;

constexpr int kClients = 8;
constexpr int kRenewalsPerClient = 250;
constexpr int kRenewals = kClients * kRenewalsPerClient;
constexpr int kRepetitions = 3;
constexpr const char* kTemplatePass = "AP-100201";

struct Servers {
  std::string kuid;
  std::string token;
  std::unique_ptr<mock::MockCommerceServer> mock;
  httplib::Server bare;
  int barePort = 0;
  std::thread bareThread;
  std::atomic<int> nextPass{0};
};

std::unique_ptr<Servers> gServers;

Json orderBody(const std::string& kuid, const std::string& pass) {
  return Json{{"kuid", kuid},
              {"products", Json::array({Json{{"categoryId", "AnnualPassRenewal"},
                                             {"quantity", 1},
                                             {"entitlementId", pass},
                                             {"guestIdType", "kuid"},
                                             {"guestId", kuid}}})},
              {"destinationId", "80007798"},
              {"storeId", "oqs_mobile"},
              {"paymentPlan", true}};
}

std::string checkoutBody() {
  Json card{{"cardSubType", "VISA"}, {"cardholderName", "Rowan Ashby"}, {"cvv2", "418"},
            {"id", "CARD-REF-0001"},  {"key", "7d1e0c"},                {"paymentCardScan", false}};
  return Json{{"payments", Json::array({Json{{"paymentReference", card},
                                             {"billingPhone", {{"type", "MOBILE"}, {"number", "999-555-0188"}}},
                                             {"amount", "0"},
                                             {"currency", "USD"},
                                             {"billingEmail", "rowan.ashby@example.test"}}})},
              {"confirmationEmails", Json::array({Json{{"email", "rowan.ashby@example.test"}}})},
              {"bookingTermsAndConditions", "terms"}}
      .dump();
}

std::string setUp() {
  auto guest = standalone::readGuestDataFile(varnelResourceDirectory() / "guests" / "sample-guest.json");
  if (!guest) return standalone::describeGuestDataError(guest.error());
  auto servers = std::make_unique<Servers>();
  mock::MockCommerceOptions options;
  options.guest = guest.value();
  servers->kuid = options.guest.kuid.value_or("");
  servers->token = options.guest.accessToken.value_or("");
  ENTMEntitlementRef pass;
  for (const auto& entitlement : options.guest.entitlements) {
    if (entitlement && entitlement->productInstanceId == kTemplatePass) pass = entitlement;
  }
  if (!pass) return std::string("the sample household has no pass ") + kTemplatePass;
  for (int i = 0; i < kRenewals * (kRepetitions + 1); ++i) {
    auto copy = std::make_shared<ENTMEntitlement>(*pass);
    copy->productInstanceId = "AP-BENCH-" + std::to_string(i);
    copy->barcodeString = std::to_string(7000000 + i);
    options.guest.entitlements.push_back(std::move(copy));
  }
  auto mock = mock::MockCommerceServer::start(std::move(options));
  if (!mock) return "cannot start the mock commerce server";
  servers->mock = std::move(mock.value());

  const std::string order = R"({"id":"ord-1","status":"PENDING"})";
  const std::string confirmation = R"({"confirmation":{"confirmationNumber":"C-1"},"status":"BOOKED"})";
  servers->bare.Post("/commerce/guests/.*", [order](const httplib::Request&, httplib::Response& response) {
    response.set_content(order, "application/json");
  });
  servers->bare.Post("/commerce/orders/.*", [confirmation](const httplib::Request&, httplib::Response& response) {
    response.set_content(confirmation, "application/json");
  });
  // Connections kept as the mock keeps them, so that both sides differ only in the work done.
  servers->bare.set_keep_alive_max_count(100000);
  servers->bare.set_tcp_nodelay(true);
  servers->barePort = servers->bare.bind_to_any_port("127.0.0.1");
  if (servers->barePort <= 0) return "cannot start the bare server";
  servers->bareThread = std::thread([server = &servers->bare] { server->listen_after_bind(); });
  while (!servers->bare.is_running()) std::this_thread::yield();
  gServers = std::move(servers);
  return {};
}

void tearDown() {
  if (!gServers) return;
  gServers->mock->stop();
  gServers->bare.stop();
  gServers->bareThread.join();
  gServers.reset();
}

/// kRenewalsPerClient renewals (a create-order POST, then the checkout of the
/// order it answers) from one keep-alive client; false when one failed.
bool renewFrom(int port) {
  httplib::Client client("127.0.0.1", port);
  client.set_read_timeout(30, 0);
  const httplib::Headers headers{{"Authorization", "Bearer " + gServers->token}};
  const std::string payment = checkoutBody();
  const std::string ordersPath = "/commerce/guests/" + gServers->kuid + "/orders";
  for (int i = 0; i < kRenewalsPerClient; ++i) {
    const std::string pass = "AP-BENCH-" + std::to_string(gServers->nextPass++);
    auto order = client.Post(ordersPath.c_str(), headers, orderBody(gServers->kuid, pass).dump(), "application/json");
    const std::string id = order && order->status == 200 ? Json::parse(order->body, nullptr, false).value("id", "") : "";
    if (id.empty()) return false;
    auto paid = client.Post(("/commerce/orders/" + id + "/express-checkout").c_str(), headers, payment, "application/json");
    if (!paid || paid->status != 200) return false;
  }
  return true;
}

/// One iteration: kClients clients renewing at once, kRenewals in all.
void renewals(benchmark::State& state, int port) {
  for (auto _ : state) {
    std::atomic<bool> failed{false};
    std::vector<std::thread> clients;
    for (int c = 0; c < kClients; ++c) {
      clients.emplace_back([&] {
        if (!renewFrom(port)) failed = true;
      });
    }
    for (auto& client : clients) client.join();
    if (failed) {
      state.SkipWithError("a renewal was not confirmed");
      break;
    }
  }
  state.counters["renewals/s"] = benchmark::Counter(static_cast<double>(kRenewals) * static_cast<double>(state.iterations()),
                                                    benchmark::Counter::kIsRate);
}

void BM_Renewals_MockService(benchmark::State& state) { renewals(state, gServers->mock->port()); }
void BM_Renewals_BareServer(benchmark::State& state) { renewals(state, gServers->barePort); }

BENCHMARK(BM_Renewals_MockService)->Iterations(1)->Repetitions(kRepetitions)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Renewals_BareServer)->Iterations(1)->Repetitions(kRepetitions)->UseRealTime()->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (const std::string problem = setUp(); !problem.empty()) {
    std::fprintf(stderr, "mock_commerce_bench: %s\n", problem.c_str());
    return 1;
  }
  varnel::bench::RatioSummary reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  using varnel::bench::RatioSummary;
  const double mock = reporter.nanoseconds("BM_Renewals_MockService", RatioSummary::Clock::wall);
  const double bare = reporter.nanoseconds("BM_Renewals_BareServer", RatioSummary::Clock::wall);
  if (mock > 0 && bare > 0) {
    std::printf("renewals per second (%d clients at once): mock service %.0f, bare cpp-httplib server %.0f\n",
                kClients, kRenewals * 1e9 / mock, kRenewals * 1e9 / bare);
  }
  reporter.printRatio("BM_Renewals_MockService", "BM_Renewals_BareServer", "the HTTP library's floor x 5",
                      RatioSummary::Clock::wall);
  benchmark::Shutdown();
  tearDown();
  return 0;
}
