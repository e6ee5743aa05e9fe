#pragma once
// What the networking suites share: waiting for a callback from the worker
// thread, and a fixture with a stand-alone client over fakes of the rest.

#include <chrono>
#include <future>
#include <memory>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "support/Fakes.h"
#include "varnel/standalone/network/CurlPrivateDataService.h"
#include "varnel/standalone/network/HttpClient.h"

namespace varnel::testing {

/// The value `future` gets; fails the test (instead of hanging) when none
/// comes within a minute.
template <typename T>
T await(std::future<T>& future) {
  if (future.wait_for(std::chrono::minutes(1)) != std::future_status::ready) {
    ADD_FAILURE() << "no callback within a minute";
    return T{};
  }
  return future.get();
}

/// What a private data service call reported.
struct ServiceAnswer {
  bool succeeded = false;
  std::optional<Json> value;
  std::optional<Error> error;
};

/// A stand-alone client with quick retries, and a service over it whose
/// guest holds the token "token-1".
class NetworkFixture : public HostFixture {
 protected:
  void SetUp() override;
  void TearDown() override;

  /// Makes `client` and `service` with these options (quick retries unless set).
  void makeService(standalone::HttpClientOptions options = {});

  /// Calls `start` with callbacks that fulfil the returned answer.
  ServiceAnswer call(const std::function<void(KTVRSuccessBlock, KTVRFailureBlock)>& start);

  /// Attempts made at `url` so far: the request log has one line per attempt.
  std::size_t attemptsLogged(const std::string& url) const;

  std::shared_ptr<standalone::HttpClient> client;
  std::shared_ptr<standalone::CurlPrivateDataService> service;
};

}  // namespace varnel::testing
