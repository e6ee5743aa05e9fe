#pragma once
// The options of varnel-chaos: how many renewals, how many of them killed,
// the seed that replays a run's choices, and where the programs it drives are.

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace varnel::chaos {

struct ChaosOptions {
  int renewals = 200;
  /// Renewals whose first `varnel renew` is killed with SIGKILL.
  int kills = 20;
  std::uint64_t seed = 0;
  bool json = false;
  /// One line per renewal on stderr: its choices and what the guest was told.
  bool verbose = false;
  std::filesystem::path varnel;
  std::filesystem::path mockCommerce;
  /// Scratch files (guest files, settings stores, child output); a fresh
  /// temporary directory, removed at the end, when empty.
  std::filesystem::path workDirectory;
  /// Renewals per mock server: each batch gets a fresh server, guest file and
  /// settings store, since a server renews each pass only once.
  int batchSize = 200;
  /// Batches run at once, each on its own server.
  int parallel = 1;
  /// What the children's requests may take ($VARNEL_REQUEST_TIMEOUT_MS).
  std::chrono::milliseconds requestTimeout{1'000};
  /// A child that has not exited within this is a hang.
  std::chrono::milliseconds childTimeout{30'000};
  /// The whole soak stops starting renewals after this.
  std::chrono::seconds deadline{7'200};
};

/// Reads the command line; none after --help or a bad option (with `status`
/// set to the exit status to end with).
std::optional<ChaosOptions> parseChaosOptions(int argc, char** argv, int& status);

}  // namespace varnel::chaos
