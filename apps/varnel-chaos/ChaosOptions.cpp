#include "ChaosOptions.h"

#include <CLI/CLI.hpp>

#include <iostream>
#include <random>

namespace varnel::chaos {

std::optional<ChaosOptions> parseChaosOptions(int argc, char** argv, int& status) {
  ChaosOptions options;
  options.varnel = VARNEL_CHAOS_VARNEL_PATH;
  options.mockCommerce = VARNEL_CHAOS_MOCK_COMMERCE_PATH;
  std::optional<std::uint64_t> seed;
  int requestTimeoutMs = static_cast<int>(options.requestTimeout.count());
  int childTimeoutS = static_cast<int>(options.childTimeout.count() / 1000);
  int deadlineS = static_cast<int>(options.deadline.count());

  CLI::App app{
      "varnel-chaos: renewals through `varnel renew` child processes against a mock commerce server on 127.0.0.1, "
      "with random faults and SIGKILLs, compared order by order with the server's charges.\n"
      "Exit status: 0 clean; 1 a double charge, a charge never confirmed to the guest, a hang or a crash "
      "(or the deadline stopped the soak early); 2 bad options or a server that would not start"};
  app.add_option("--renewals", options.renewals, "Renewals to run")->check(CLI::Range(1, 1'000'000))
      ->capture_default_str();
  app.add_option("--kills", options.kills, "Renewals whose first run is killed with SIGKILL at a random instant")
      ->check(CLI::Range(0, 1'000'000))->capture_default_str();
  app.add_option("--seed", seed, "Seed of the choices (default: a random one; printed either way)");
  app.add_flag("--json", options.json, "Print the figures as one JSON object");
  app.add_flag("--verbose", options.verbose, "One line per renewal on stderr");
  app.add_option("--varnel", options.varnel, "The varnel program")->capture_default_str();
  app.add_option("--mock-commerce", options.mockCommerce, "The varnel-mock-commerce program")
      ->capture_default_str();
  app.add_option("--work-dir", options.workDirectory, "Directory for scratch files (default: a temporary one)");
  app.add_option("--batch", options.batchSize, "Renewals per mock server")->check(CLI::Range(1, 5'000))
      ->capture_default_str();
  app.add_option("--parallel", options.parallel, "Batches run at once, each against its own mock server")
      ->check(CLI::Range(1, 16))->capture_default_str();
  app.add_option("--request-timeout-ms", requestTimeoutMs, "Request timeout of the varnel children")
      ->check(CLI::Range(100, 60'000))->capture_default_str();
  app.add_option("--child-timeout", childTimeoutS, "Seconds a child may run before it counts as a hang")
      ->check(CLI::Range(5, 600))->capture_default_str();
  app.add_option("--deadline", deadlineS, "Seconds after which no renewal is started")
      ->check(CLI::Range(10, 86'400))->capture_default_str();
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    status = app.exit(e);
    return std::nullopt;
  }
  if (options.kills > options.renewals) {
    std::cerr << "varnel-chaos: --kills must not exceed --renewals\n";
    status = 2;
    return std::nullopt;
  }
  options.seed = seed ? *seed : std::random_device{}();
  options.requestTimeout = std::chrono::milliseconds(requestTimeoutMs);
  options.childTimeout = std::chrono::seconds(childTimeoutS);
  options.deadline = std::chrono::seconds(deadlineS);
  return options;
}

}  // namespace varnel::chaos
