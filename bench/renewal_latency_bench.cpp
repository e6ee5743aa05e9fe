// Round trips per renewal: whole renewals through the module's RenewalFlow
// against the in-process mock commerce server, over HTTP and HTTPS, straight
// on loopback and through a relay that adds 50 ms each way (a 100 ms round
// trip, ordinary for a phone). Each renewal starts on fresh networking, so
// its connection (and handshake) is part of what it costs. Round trips =
// (time through the relay - time straight) / 100 ms; the floor is connect +
// 2 rounds paid in full (cards alongside the order, then the checkout),
// connect + 3 on the monthly plan (the contract besides), and one more for
// the TLS 1.3 handshake.

#include <cstdio>

#include <benchmark/benchmark.h>

#include "RatioSummary.h"
#include "RenewalBench.h"

namespace {

using namespace varnel;

constexpr int kIterations = 8;
constexpr int kRepetitions = 3;
std::unique_ptr<bench::RenewalBench> gBench;

void renewals(benchmark::State& state, bool monthly, bool tls, bool relayed) {
  for (auto _ : state) {
    state.PauseTiming();
    auto networking = gBench->install(tls, relayed);
    auto guest = std::make_shared<bench::BenchGuest>();
    state.ResumeTiming();
    auto flow = gBench->renew(guest, monthly);
    const RenewalOutcome outcome = guest->outcome();
    state.PauseTiming();
    if (outcome.kind != RenewalOutcome::Kind::confirmed) state.SkipWithError(outcome.reason.c_str());
    flow.reset();
    standalone::uninstallStandaloneNetworking();
    networking = {};
    state.ResumeTiming();
  }
}

/// TLS handshakes the mock counted for two renewals on one networking.
std::pair<long, long> handshakesOfTwoRenewals() {
  const long before = gBench->service(true).server->tlsHandshakes();
  auto networking = gBench->install(true, false);
  long first = 0;
  for (int renewal = 0; renewal < 2; ++renewal) {
    auto guest = std::make_shared<bench::BenchGuest>();
    auto flow = gBench->renew(guest, false);
    guest->outcome();
    if (renewal == 0) first = gBench->service(true).server->tlsHandshakes() - before;
  }
  standalone::uninstallStandaloneNetworking();
  return {first, gBench->service(true).server->tlsHandshakes() - before - first};
}

using Registration = benchmark::internal::Benchmark;
void configure(Registration* b) { b->Iterations(kIterations)->Repetitions(kRepetitions)->UseRealTime(); }
// Arguments: monthly, HTTPS, relayed.
BENCHMARK_CAPTURE(renewals, FullHttp_Straight, false, false, false)->Apply(configure);
BENCHMARK_CAPTURE(renewals, FullHttp_Relayed, false, false, true)->Apply(configure);
BENCHMARK_CAPTURE(renewals, MonthlyHttp_Straight, true, false, false)->Apply(configure);
BENCHMARK_CAPTURE(renewals, MonthlyHttp_Relayed, true, false, true)->Apply(configure);
BENCHMARK_CAPTURE(renewals, FullHttps_Straight, false, true, false)->Apply(configure);
BENCHMARK_CAPTURE(renewals, FullHttps_Relayed, false, true, true)->Apply(configure);
BENCHMARK_CAPTURE(renewals, MonthlyHttps_Straight, true, true, false)->Apply(configure);
BENCHMARK_CAPTURE(renewals, MonthlyHttps_Relayed, true, true, true)->Apply(configure);

}  // namespace

int main(int argc, char** argv) {
  gBench = std::make_unique<bench::RenewalBench>(8 * kIterations * kRepetitions + 16);
  if (!gBench->ready()) {
    std::fprintf(stderr, "renewal_latency_bench: the mock commerce services did not start\n");
    return 1;
  }
  bench::RatioSummary summary;
  bench::runWith(summary, argc, argv);
  using Clock = bench::RatioSummary::Clock;
  std::printf("round trips per renewal (100 ms each), fresh connection:\n");
  for (const auto& [scheme, extra] : {std::pair{"Http", 0.0}, std::pair{"Https", 1.0}}) {
    for (const auto& [plan, target] : {std::pair{"Full", 3.3}, std::pair{"Monthly", 4.3}}) {
      const std::string name = std::string("renewals/") + plan + scheme;
      const double straight = summary.nanoseconds(name + "_Straight", Clock::wall);
      const double relayed = summary.nanoseconds(name + "_Relayed", Clock::wall);
      if (straight > 0 && relayed > 0) {
        std::printf("  %-5s %-8s %.2f   (target <= %.1f)\n", scheme, plan, (relayed - straight) / bench::kRoundTripNs,
                    target + extra);
      }
    }
  }
  const auto [first, second] = handshakesOfTwoRenewals();
  std::printf("TLS handshakes: first renewal %ld, second renewal in the same process %ld (target 0)\n", first, second);
  gBench.reset();
  return 0;
}
