#include "varnel/standalone/network/CurlConnectionWarmer.h"

#include <mutex>
#include <optional>

namespace varnel::standalone {
namespace {

using Clock = std::chrono::steady_clock;

/// "OPTIONS *": a request to the server itself rather than to a resource.
HttpRequest pingOf(std::string origin) {
  HttpRequest ping;
  ping.method = "OPTIONS";
  ping.url = std::move(origin);
  ping.requestTarget = std::string(1, '*');
  ping.keepsConnectionWarm = true;
  return ping;
}

/// One hold's pings. Each check sends a ping when nothing to the origin was
/// answered for keepWarmEvery (at the first check: when nothing ever was, so
/// that a connection opens now), and otherwise looks again when that time
/// will have passed; a ping's answer checks again, a failed ping a period
/// later.
class Pings : public std::enable_shared_from_this<Pings> {
 public:
  Pings(std::weak_ptr<HttpClient> client, std::string origin, std::chrono::milliseconds every,
        Clock::time_point until)
      : client_(std::move(client)), ping_(pingOf(std::move(origin))), every_(every), until_(until) {}

  void check() {
    const auto owner = client_.lock();
    std::lock_guard lock(mutex_);
    const auto now = Clock::now();
    if (!owner || released_ || now >= until_) return;
    CurlTransport& transport = owner->transport();
    const auto answered = transport.lastAnswered(ping_.url);
    auto self = shared_from_this();
    if (!answered || now - *answered >= every_) {
      transport.send(ping_, [self](HttpOutcome outcome) {
        if (outcome.answered()) return self->check();
        // Refused, reset or cancelled: look again a period later, not at once.
        if (const auto client = self->client_.lock()) {
          client->transport().postAfter(self->every_, [self] { self->check(); });
        }
      });
    } else {
      transport.postAfter(std::chrono::ceil<std::chrono::milliseconds>(*answered + every_ - now),
                          [self] { self->check(); });
    }
  }

  /// A ping on the wire is left to end: the request that follows the hold
  /// (the checkout) waits for it and takes its connection, which cancelling
  /// would close.
  void release() {
    std::lock_guard lock(mutex_);
    released_ = true;
  }

 private:
  std::weak_ptr<HttpClient> client_;
  HttpRequest ping_;
  std::chrono::milliseconds every_;
  Clock::time_point until_;
  std::mutex mutex_;
  bool released_ = false;
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
  pings->check();
  return std::make_unique<PingHold>(std::move(pings));
}

}  // namespace varnel::standalone
