#include "varnel/standalone/network/HttpClient.h"

#include <atomic>
#include <mutex>

#include "varnel/host/KTVCPrintUtility.h"
#include "varnel/host/Registry.h"
#include "varnel/standalone/network/HeaderRules.h"
#include "varnel/standalone/network/RequestLog.h"

namespace varnel::standalone {
namespace {

bool isWrite(const HttpRequest& request) { return request.method != "GET" && request.method != "HEAD"; }

}  // namespace

struct HttpClient::Call final : HttpCall {
  HttpClient* client = nullptr;
  HttpRequest request;
  Completion completion;
  int attempt = 1;
  bool write = false;
  /// The settings key of a write whose idempotency key this client keeps.
  std::string pendingWrite;
  std::chrono::steady_clock::time_point deadline;

  std::mutex mutex;
  bool cancelled = false;
  CurlTransport::TransferId transfer = 0;

  void cancel() override {
    CurlTransport::TransferId current = 0;
    {
      std::lock_guard lock(mutex);
      cancelled = true;
      current = transfer;
    }
    if (current) client->transport().cancel(current);
  }
  bool isCancelled() {
    std::lock_guard lock(mutex);
    return cancelled;
  }
};

HttpClient::HttpClient(HttpClientOptions options)
    : options_(std::move(options)),
      keys_(options_.settings),
      random_(std::random_device{}()),
      transport_(std::make_unique<CurlTransport>(options_.transport)) {}

std::shared_ptr<UserDefaults> HttpClient::settings() const {
  return options_.settings ? options_.settings : host::Registry::get<UserDefaults>();
}

void HttpClient::addRoutingHeader(HttpRequest& request) const {
  auto defaults = settings();
  if (!defaults || !defaults->boolForKey(kServerErrorRoutingUseFeatureKey)) return;
  auto stored = defaults->objectForKey(kServerErrorRoutingHeaderKey);
  const auto* headers = stored ? stored->get<DefaultsDictionary>() : nullptr;
  if (!headers) return;
  HTTPHeaderFields routing;
  for (const auto& [name, value] : *headers) {
    if (const auto* text = value.get<std::string>()) routing.insert_or_assign(name, *text);
  }
  addUntrustedHeaders(request, routing, "the server-error routing settings");
}

std::shared_ptr<HttpCall> HttpClient::send(HttpRequest request, Completion completion) {
  addRoutingHeader(request);
  auto call = std::make_shared<Call>();
  call->client = this;
  call->write = isWrite(request);
  if (call->write && !request.headers.contains(kIdempotencyKeyHeader)) {
    call->pendingWrite = IdempotencyKeys::settingsKey(request.url, request.body.value_or(""));
    request.headers.insert_or_assign(kIdempotencyKeyHeader, keys_.keyForWrite(call->pendingWrite));
  }
  call->request = std::move(request);
  call->completion = std::move(completion);
  call->deadline = std::chrono::steady_clock::now() + options_.retry.deadline;
  ++*inFlight_;
  dispatch(call, std::chrono::milliseconds{0});
  return call;
}

void HttpClient::dispatch(const std::shared_ptr<Call>& call, std::chrono::milliseconds delay) {
  std::lock_guard lock(call->mutex);
  if (call->cancelled) {
    --*inFlight_;
    return;
  }
  const auto start = std::chrono::steady_clock::now() + delay;
  call->request.timeout = std::chrono::ceil<std::chrono::milliseconds>(call->deadline - start);
  call->transfer = transport_->send(
      call->request, [this, call](HttpOutcome outcome) { finish(call, std::move(outcome)); }, delay);
}

void HttpClient::finish(const std::shared_ptr<Call>& call, HttpOutcome outcome) {
  if (KTVCPrintUtility::isEnabled()) KTVCPrintUtility::debugPrint(requestLogLine(call->request, outcome, call->attempt));
  if (call->isCancelled()) {
    --*inFlight_;
    return;
  }
  const bool mayRetry = !call->write || call->request.headers.contains(kIdempotencyKeyHeader);
  if (outcome.failure && mayRetry && call->attempt <= options_.retry.maxRetries &&
      RetryPolicy::retries(*outcome.failure)) {
    const auto wait = options_.retry.backoff(call->attempt, random_);
    if (std::chrono::steady_clock::now() + wait < call->deadline) {
      ++call->attempt;
      dispatch(call, wait);
      return;
    }
  }
  if (!call->pendingWrite.empty() && outcome.answered()) keys_.writeAnswered(call->pendingWrite);
  auto completion = std::move(call->completion);
  auto inFlight = inFlight_;
  completion(std::move(outcome));  // may release this client
  --*inFlight;
}

}  // namespace varnel::standalone
