#include "NetworkTestSupport.h"

#include <algorithm>

#include "varnel/standalone/network/RequestLog.h"

namespace varnel::testing {

void NetworkFixture::SetUp() {
  HostFixture::SetUp();
  makeService();
}

void NetworkFixture::TearDown() {
  service.reset();
  client.reset();
  HostFixture::TearDown();
}

void NetworkFixture::makeService(standalone::HttpClientOptions options) {
  service.reset();
  client.reset();
  if (options.retry.initialBackoff == standalone::RetryPolicy{}.initialBackoff) {
    options.retry.initialBackoff = std::chrono::milliseconds(1);
    options.retry.maxBackoff = std::chrono::milliseconds(4);
  }
  client = std::make_shared<standalone::HttpClient>(std::move(options));
  service = std::make_shared<standalone::CurlPrivateDataService>(
      client, [] { return std::optional<std::string>("token-1"); });
}

ServiceAnswer NetworkFixture::call(const std::function<void(KTVRSuccessBlock, KTVRFailureBlock)>& start) {
  auto promise = std::make_shared<std::promise<ServiceAnswer>>();
  auto future = promise->get_future();
  start([promise](const std::optional<Json>& value) { promise->set_value({true, value, std::nullopt}); },
        [promise](const std::optional<Error>& error) { promise->set_value({false, std::nullopt, error}); });
  return await(future);
}

std::size_t NetworkFixture::attemptsLogged(const std::string& url) const {
  const std::string target = " " + standalone::loggableTarget(url) + " ";
  const auto lines = log->messages();
  return static_cast<std::size_t>(
      std::count_if(lines.begin(), lines.end(), [&](const std::string& line) { return line.find(target) != std::string::npos; }));
}

}  // namespace varnel::testing
