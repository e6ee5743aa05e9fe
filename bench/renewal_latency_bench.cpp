// Round trips per renewal: whole renewals through the module's RenewalFlow
// against the in-process mock commerce server, straight on loopback and
// through a relay that adds 50 ms each way (a 100 ms round trip, ordinary for
// a phone). Each renewal starts on fresh networking, so its connection is
// part of what it costs. Round trips = (time through the relay - time
// straight) / 100 ms; the floor is connect + 2 rounds paid in full (cards
// alongside the order, then the checkout), connect + 3 on the monthly plan
// (the contract besides).

#include <condition_variable>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <mutex>

#include <benchmark/benchmark.h>

#include "LatencyRelay.h"
#include "RatioSummary.h"
#include "varnel/checkout/RenewalFlow.h"
#include "varnel/host/ENTMEntitlementsManager.h"
#include "varnel/host/KTVRAuthenticationService.h"
#include "varnel/host/KTVRUserProfileAuthentication.h"
#include "varnel/host/Registry.h"
#include "varnel/host/ResourceBundle.h"
#include "varnel/mock/MockCommerceServer.h"
#include "varnel/standalone/FileEntitlementsManager.h"
#include "varnel/standalone/GuestDataFile.h"
#include "varnel/standalone/StaticAuthenticationService.h"
#include "varnel/standalone/network/JsonEnvironment.h"
#include "varnel/standalone/network/StandaloneNetworking.h"

namespace {

using namespace varnel;
namespace fs = std::filesystem;

constexpr int kIterations = 8;
constexpr int kRepetitions = 3;
constexpr std::chrono::milliseconds kOneWay{50};
constexpr double kRoundTripNs = 2 * 50e6;

struct Run {
  std::unique_ptr<mock::MockCommerceServer> server;
  std::unique_ptr<bench::LatencyRelay> relay;
  std::string token;
  std::vector<std::string> passes;
  std::size_t next = 0;
};
std::unique_ptr<Run> gRun;

/// The sample household with `copies` renewable copies of its pass AP-100201, as a file.
fs::path householdFile(int copies, std::vector<std::string>& passes) {
  std::ifstream in(varnelResourceDirectory() / "guests" / "sample-guest.json");
  Json household = Json::parse(in);
  Json pass;
  for (const Json& entitlement : household["entitlements"]) {
    if (entitlement.value("productInstanceId", "") == "AP-100201") pass = entitlement;
  }
  for (int i = 0; i < copies; ++i) {
    Json copy = pass;
    copy["productInstanceId"] = "AP-LATENCY-" + std::to_string(i);
    copy["barcodeString"] = "8" + std::to_string(100000 + i);
    household["entitlements"].push_back(copy);
    passes.push_back(copy["productInstanceId"]);
  }
  const fs::path file = fs::temp_directory_path() / "varnel-latency-household.json";
  std::ofstream(file) << household.dump();
  return file;
}

class Waiter final : public RenewalFlowDelegate {
 public:
  void chooseCard(const RenewalOrder&, const std::vector<PaymentAccount>& accounts, CardReply reply) override {
    reply(accounts.front());
  }
  void acceptTerms(const RenewalOrder&, Reply reply) override { reply(true); }
  void signContract(const VNLContractDataModel&, Reply reply) override { reply(true); }
  void renewalFlowDidEnd(const RenewalOutcome& outcome) override {
    std::lock_guard lock(mutex_);
    outcome_ = outcome;
    ended_.notify_all();
  }
  RenewalOutcome wait() {
    std::unique_lock lock(mutex_);
    ended_.wait(lock, [this] { return outcome_.has_value(); });
    return *outcome_;
  }

 private:
  std::mutex mutex_;
  std::condition_variable ended_;
  std::optional<RenewalOutcome> outcome_;
};

void renewals(benchmark::State& state, bool monthly, bool relayed) {
  const std::string base = relayed ? "http://127.0.0.1:" + std::to_string(gRun->relay->port())
                                   : gRun->server->baseUrl();
  for (auto _ : state) {
    state.PauseTiming();
    auto networking = standalone::installStandaloneNetworking(
        standalone::JsonEnvironment::forServer(base).value(), [token = gRun->token] { return token; });
    auto waiter = std::make_shared<Waiter>();
    auto flow = RenewalFlow::create(waiter, std::make_shared<InMemoryRenewalJournal>());
    RenewalRequest request;
    request.passId = gRun->passes.at(gRun->next++);
    request.monthlyPlan = monthly;
    request.parkContext = std::make_shared<KTVCParkResortContext>(kResortChoiceEast);
    state.ResumeTiming();
    flow->start(std::move(request));
    const RenewalOutcome outcome = waiter->wait();
    state.PauseTiming();
    if (outcome.kind != RenewalOutcome::Kind::confirmed) state.SkipWithError(outcome.reason.c_str());
    flow.reset();
    standalone::uninstallStandaloneNetworking();
    networking = {};
    state.ResumeTiming();
  }
}

void BM_RenewalFull_Straight(benchmark::State& state) { renewals(state, false, false); }
void BM_RenewalFull_Relayed(benchmark::State& state) { renewals(state, false, true); }
void BM_RenewalMonthly_Straight(benchmark::State& state) { renewals(state, true, false); }
void BM_RenewalMonthly_Relayed(benchmark::State& state) { renewals(state, true, true); }

using Registration = benchmark::internal::Benchmark;
void configure(Registration* b) { b->Iterations(kIterations)->Repetitions(kRepetitions)->UseRealTime(); }
BENCHMARK(BM_RenewalFull_Straight)->Apply(configure);
BENCHMARK(BM_RenewalFull_Relayed)->Apply(configure);
BENCHMARK(BM_RenewalMonthly_Straight)->Apply(configure);
BENCHMARK(BM_RenewalMonthly_Relayed)->Apply(configure);

}  // namespace

int main(int argc, char** argv) {
  gRun = std::make_unique<Run>();
  const fs::path file = householdFile(4 * kIterations * kRepetitions + 8, gRun->passes);
  auto guest = standalone::readGuestDataFile(file);
  auto manager = standalone::FileEntitlementsManager::open(file);
  if (!guest || !manager) {
    std::fprintf(stderr, "renewal_latency_bench: cannot read %s\n", file.c_str());
    return 1;
  }
  gRun->token = guest.value().accessToken.value_or("");
  host::Registry::set<ENTMEntitlementsManager>(manager.value());
  host::Registry::set<KTVRAuthenticationService>(
      std::make_shared<standalone::StaticAuthenticationService>(guest.value().kuid, guest.value().email));
  host::Registry::set<KTVRUserProfileAuthentication>(std::make_shared<standalone::StaticUserProfile>(guest.value().email));
  auto server = mock::MockCommerceServer::start(
      {.guest = guest.value(), .faults = {}, .routes = {}, .routeFaults = {}, .requestLog = {}});
  if (!server) return 1;
  gRun->server = std::move(server.value());
  const int port = std::stoi(gRun->server->baseUrl().substr(gRun->server->baseUrl().rfind(':') + 1));
  gRun->relay = std::make_unique<bench::LatencyRelay>(port, kOneWay);

  varnel::bench::RatioSummary summary;
  varnel::bench::runWith(summary, argc, argv);
  using Clock = varnel::bench::RatioSummary::Clock;
  std::printf("round trips per renewal (100 ms each), HTTP, fresh connection:\n");
  for (const auto& [name, target] : {std::pair{"Full", 3.3}, std::pair{"Monthly", 4.3}}) {
    const double straight = summary.nanoseconds(std::string("BM_Renewal") + name + "_Straight", Clock::wall);
    const double relayed = summary.nanoseconds(std::string("BM_Renewal") + name + "_Relayed", Clock::wall);
    if (straight > 0 && relayed > 0) {
      std::printf("  %-8s %.2f   (target <= %.1f)\n", name, (relayed - straight) / kRoundTripNs, target);
    }
  }
  std::printf("connections opened through the relay: %d\n", gRun->relay->connections());
  gRun->relay.reset();
  gRun->server->stop();
  host::Registry::clear();
  fs::remove(file);
  return 0;
}
