// Pay to confirmation: the time from the guest's decision to pay (the reply
// to the terms, after lingering over them longer than the server keeps an
// idle connection) to the renewal's end, through the module's RenewalFlow
// against the in-process mock commerce server. Measured straight on loopback
// and through a relay that adds 50 ms each way, over HTTP and HTTPS, with the
// connection warmer and without it. Round trips = (time through the relay -
// time straight) / 100 ms: one when a live connection was ready; without one
// the checkout first opens a connection (and over HTTPS, shakes hands).

#include <cstdio>
#include <thread>

#include <benchmark/benchmark.h>

#include "RatioSummary.h"
#include "RenewalBench.h"

namespace {

using namespace varnel;
using Clock = std::chrono::steady_clock;

/// The mock closes connections idle this long; the guest reads for longer.
constexpr std::chrono::seconds kKeepAlive{2};
constexpr std::chrono::milliseconds kReading{2'500};
constexpr std::chrono::milliseconds kKeepWarmEvery{1'500};
constexpr int kIterations = 5;
std::unique_ptr<bench::RenewalBench> gBench;

void payToConfirmation(benchmark::State& state, bool tls, bool relayed, bool warmed) {
  for (auto _ : state) {
    auto networking = gBench->install(tls, relayed, kKeepWarmEvery);
    if (!warmed) host::Registry::set<ConnectionWarmer>(nullptr);
    auto guest = std::make_shared<bench::BenchGuest>(true);
    auto flow = gBench->renew(guest, false);
    const auto pay = guest->termsAsked();
    if (!pay) {
      state.SkipWithError(guest->outcome().reason.c_str());
      break;
    }
    std::this_thread::sleep_for(kReading);
    const auto paid = Clock::now();
    pay(true);
    const RenewalOutcome outcome = guest->outcome();
    state.SetIterationTime(std::chrono::duration<double>(Clock::now() - paid).count());
    if (outcome.kind != RenewalOutcome::Kind::confirmed) state.SkipWithError(outcome.reason.c_str());
    flow.reset();
    standalone::uninstallStandaloneNetworking();
  }
}

using Registration = benchmark::internal::Benchmark;
void configure(Registration* b) { b->Iterations(kIterations)->UseManualTime(); }
// Arguments: HTTPS, relayed, warmed.
BENCHMARK_CAPTURE(payToConfirmation, HttpWarm_Straight, false, false, true)->Apply(configure);
BENCHMARK_CAPTURE(payToConfirmation, HttpWarm_Relayed, false, true, true)->Apply(configure);
BENCHMARK_CAPTURE(payToConfirmation, HttpCold_Straight, false, false, false)->Apply(configure);
BENCHMARK_CAPTURE(payToConfirmation, HttpCold_Relayed, false, true, false)->Apply(configure);
BENCHMARK_CAPTURE(payToConfirmation, HttpsWarm_Straight, true, false, true)->Apply(configure);
BENCHMARK_CAPTURE(payToConfirmation, HttpsWarm_Relayed, true, true, true)->Apply(configure);
BENCHMARK_CAPTURE(payToConfirmation, HttpsCold_Straight, true, false, false)->Apply(configure);
BENCHMARK_CAPTURE(payToConfirmation, HttpsCold_Relayed, true, true, false)->Apply(configure);

}  // namespace

int main(int argc, char** argv) {
  gBench = std::make_unique<bench::RenewalBench>(8 * kIterations + 8, kKeepAlive);
  if (!gBench->ready()) {
    std::fprintf(stderr, "pay_latency_bench: the mock commerce services did not start\n");
    return 1;
  }
  bench::RatioSummary summary;
  bench::runWith(summary, argc, argv);
  std::printf("round trips from Pay to the confirmation (100 ms each), after %lld ms reading (keep-alive %lld s):\n",
              static_cast<long long>(kReading.count()), static_cast<long long>(kKeepAlive.count()));
  for (const char* scheme : {"Http", "Https"}) {
    for (const char* connection : {"Warm", "Cold"}) {
      const std::string name = std::string("payToConfirmation/") + scheme + connection;
      const double straight = summary.nanoseconds(name + "_Straight", bench::RatioSummary::Clock::wall);
      const double relayed = summary.nanoseconds(name + "_Relayed", bench::RatioSummary::Clock::wall);
      if (straight > 0 && relayed > 0) {
        std::printf("  %-5s %-24s %.2f%s\n", scheme,
                    connection == std::string("Warm") ? "connection kept warm" : "no connection kept",
                    (relayed - straight) / bench::kRoundTripNs,
                    connection == std::string("Warm") ? "   (target 1 plus the service's time)" : "");
      }
    }
  }
  gBench.reset();
  return 0;
}
