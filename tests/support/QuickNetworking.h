#pragma once
// The stand-alone networking pointed at a loopback server, with quick retries
// and a short timeout so that a fault never keeps a test waiting long.

#include <chrono>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "varnel/standalone/network/JsonEnvironment.h"
#include "varnel/standalone/network/StandaloneNetworking.h"

namespace varnel::testing {

/// Installs the networking for the server at `baseUrl`, sending `token`.
inline standalone::StandaloneNetworking installQuickNetworking(const std::string& baseUrl,
                                                               std::optional<std::string> token) {
  auto environment = standalone::JsonEnvironment::forServer(baseUrl);
  EXPECT_TRUE(environment.ok()) << baseUrl;
  if (!environment.ok()) return {};
  standalone::HttpClientOptions options;
  options.retry.initialBackoff = std::chrono::milliseconds(1);
  options.retry.maxBackoff = std::chrono::milliseconds(4);
  options.transport.connectTimeout = std::chrono::seconds(2);
  options.transport.totalTimeout = std::chrono::seconds(2);
  return standalone::installStandaloneNetworking(
      environment.value(), [token = std::move(token)] { return token; }, std::move(options));
}

}  // namespace varnel::testing
