#include "varnel/standalone/network/CurlConnectionWarmer.h"

#include <curl/curl.h>

#include <mutex>
#include <optional>

namespace varnel::standalone {
namespace {

using Clock = std::chrono::steady_clock;

/// "scheme://host:port/" of an http(s) URL, through libcurl's URL parser.
std::optional<std::string> originOf(const std::string& url) {
  CURLU* parsed = curl_url();
  if (!parsed) return std::nullopt;
  std::optional<std::string> origin;
  if (curl_url_set(parsed, CURLUPART_URL, url.c_str(), 0) == CURLUE_OK) {
    char* scheme = nullptr;
    char* host = nullptr;
    char* port = nullptr;
    if (curl_url_get(parsed, CURLUPART_SCHEME, &scheme, 0) == CURLUE_OK &&
        curl_url_get(parsed, CURLUPART_HOST, &host, 0) == CURLUE_OK &&
        curl_url_get(parsed, CURLUPART_PORT, &port, CURLU_DEFAULT_PORT) == CURLUE_OK) {
      const std::string protocol = scheme;
      if (protocol == "http" || protocol == "https") origin = protocol + "://" + host + ":" + port + "/";
    }
    curl_free(scheme);
    curl_free(host);
    curl_free(port);
  }
  curl_url_cleanup(parsed);
  return origin;
}

/// One hold's pings: each one's end schedules the next, until released.
class Pings : public std::enable_shared_from_this<Pings> {
 public:
  Pings(std::weak_ptr<HttpClient> client, std::string origin, std::chrono::milliseconds every,
        Clock::time_point until)
      : client_(std::move(client)), every_(every), until_(until) {
    ping_.method = "OPTIONS";
    ping_.url = std::move(origin);
    ping_.requestTarget = "*";
  }

  void schedule(std::chrono::milliseconds delay) {
    const auto owner = client_.lock();
    std::lock_guard lock(mutex_);
    pending_.reset();
    if (!owner || released_ || Clock::now() + delay > until_) return;
    pending_ = owner->transport().send(
        ping_, [self = shared_from_this()](HttpOutcome) { self->schedule(self->every_); }, delay);
  }

  void release() {
    const auto owner = client_.lock();
    std::lock_guard lock(mutex_);
    released_ = true;
    if (owner && pending_) owner->transport().cancel(*pending_);
  }

 private:
  std::weak_ptr<HttpClient> client_;
  HttpRequest ping_;
  std::chrono::milliseconds every_;
  Clock::time_point until_;
  std::mutex mutex_;
  bool released_ = false;
  std::optional<CurlTransport::TransferId> pending_;
};

class PingHold final : public ConnectionWarmer::Hold {
 public:
  explicit PingHold(std::shared_ptr<Pings> pings) : pings_(std::move(pings)) {}
  ~PingHold() override {
    if (pings_) pings_->release();
  }

 private:
  std::shared_ptr<Pings> pings_;
};

}  // namespace

std::unique_ptr<ConnectionWarmer::Hold> CurlConnectionWarmer::keepWarm(const std::string& url) {
  const auto client = client_.lock();
  const auto origin = originOf(url);
  if (!client || !origin) return std::make_unique<PingHold>(nullptr);
  const TransportOptions& options = client->transport().options();
  auto pings = std::make_shared<Pings>(client_, *origin, options.keepWarmEvery, Clock::now() + options.keepWarmFor);
  pings->schedule(std::chrono::milliseconds(0));
  return std::make_unique<PingHold>(std::move(pings));
}

}  // namespace varnel::standalone
