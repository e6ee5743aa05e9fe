#pragma once
// The stand-alone networking pointed at a loopback server, with quick retries
// and a short timeout so that a fault never keeps a test waiting long, a
// connection kept warm four times a second, and a
// wait until everything sent through it has been answered.

#include <chrono>
#include <filesystem>
#include <future>
#include <memory>
#include <optional>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "varnel/standalone/network/JsonEnvironment.h"
#include "varnel/standalone/network/StandaloneNetworking.h"

namespace varnel::testing {

/// Installs the networking for the server at `baseUrl`, sending `token`,
/// trusting `caFile` besides the system's CAs.
inline standalone::StandaloneNetworking installQuickNetworking(
    const std::string& baseUrl, std::optional<std::string> token,
    std::optional<std::filesystem::path> caFile = std::nullopt) {
  auto environment = standalone::JsonEnvironment::forServer(baseUrl);
  EXPECT_TRUE(environment.ok()) << baseUrl;
  if (!environment.ok()) return {};
  standalone::HttpClientOptions options;
  options.retry.initialBackoff = std::chrono::milliseconds(1);
  options.retry.maxBackoff = std::chrono::milliseconds(4);
  options.transport.connectTimeout = std::chrono::seconds(2);
  options.transport.totalTimeout = std::chrono::seconds(2);
  options.transport.extraCaFile = std::move(caFile);
  options.transport.keepWarmEvery = std::chrono::milliseconds(250);
  return standalone::installStandaloneNetworking(
      environment.value(), [token = std::move(token)] { return token; }, std::move(options));
}

/// Waits until `client` has nothing in flight and its worker has run what was
/// posted before (failures reported without sending are posted there); fails
/// the test instead of hanging after a minute.
inline void settleNetworking(standalone::HttpClient& client) {
  constexpr auto kPatience = std::chrono::minutes(1);
  const auto giveUp = std::chrono::steady_clock::now() + kPatience;
  while (client.callsInFlight() != 0) {
    if (std::chrono::steady_clock::now() > giveUp) {
      ADD_FAILURE() << "requests still in flight after a minute";
      return;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  auto flushed = std::make_shared<std::promise<void>>();
  auto future = flushed->get_future();
  client.post([flushed] { flushed->set_value(); });
  if (future.wait_for(kPatience) != std::future_status::ready) ADD_FAILURE() << "the worker did not answer";
}

}  // namespace varnel::testing
