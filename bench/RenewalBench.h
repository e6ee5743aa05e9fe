#pragma once
// What the renewal latency benchmarks share: a household with many renewable
// copies of the sample pass, the in-process mock commerce service over HTTP
// and over HTTPS (a throwaway CA made at run time), each straight on loopback
// and behind a LatencyRelay, and a guest who pays with the first card and can
// linger over the terms. The module runs without a main queue here: delegate
// calls arrive on the networking's thread.

#include <unistd.h>

#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <fstream>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "LatencyRelay.h"
#include "support/TestCertificates.h"
#include "varnel/checkout/RenewalFlow.h"
#include "varnel/host/ENTMEntitlementsManager.h"
#include "varnel/host/KTVRAuthenticationService.h"
#include "varnel/host/KTVRUserProfileAuthentication.h"
#include "varnel/host/Registry.h"
#include "varnel/host/ResourceBundle.h"
#include "varnel/mock/MockCommerceServer.h"
#include "varnel/standalone/FileEntitlementsManager.h"
#include "varnel/standalone/GuestDataFile.h"
#include "varnel/standalone/StaticAuthenticationService.h"
#include "varnel/standalone/network/JsonEnvironment.h"
#include "varnel/standalone/network/StandaloneNetworking.h"

namespace varnel::bench {

/// 50 ms each way: a 100 ms round trip.
inline constexpr std::chrono::milliseconds kOneWay{50};
inline constexpr double kRoundTripNs = 2 * 50e6;

/// A guest who takes the first card, accepts, signs, and (when asked to)
/// holds the terms until the benchmark answers them.
class BenchGuest final : public RenewalFlowDelegate {
 public:
  explicit BenchGuest(bool holdTerms = false) : holdTerms_(holdTerms) {}

  void chooseCard(const RenewalOrder&, const std::vector<PaymentAccount>& accounts, CardReply reply) override {
    reply(accounts.front());
  }
  void acceptTerms(const RenewalOrder&, Reply reply) override {
    if (!holdTerms_) return reply(true);
    std::lock_guard lock(mutex_);
    terms_ = std::move(reply);
    changed_.notify_all();
  }
  void signContract(const VNLContractDataModel&, Reply reply) override { reply(true); }
  void renewalFlowDidEnd(const RenewalOutcome& outcome) override {
    std::lock_guard lock(mutex_);
    outcome_ = outcome;
    changed_.notify_all();
  }

  /// The held terms' reply, once asked; none when the renewal ended first.
  Reply termsAsked() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return terms_ || outcome_; });
    return terms_ ? terms_ : Reply();
  }
  RenewalOutcome outcome() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return outcome_.has_value(); });
    return *outcome_;
  }

 private:
  bool holdTerms_;
  std::mutex mutex_;
  std::condition_variable changed_;
  Reply terms_;
  std::optional<RenewalOutcome> outcome_;
};

/// One mock commerce service (HTTP or HTTPS), and a relay in front of it.
struct BenchService {
  std::unique_ptr<mock::MockCommerceServer> server;
  std::unique_ptr<LatencyRelay> relay;
  std::optional<std::filesystem::path> trustedCa;

  std::string url(bool relayed) const {
    if (!relayed) return server->baseUrl();
    const bool tls = server->baseUrl().starts_with("https:");
    return std::string(tls ? "https" : "http") + "://127.0.0.1:" + std::to_string(relay->port());
  }
};

/// The household, its guest signed in, and the services to renew against.
class RenewalBench {
 public:
  /// `copies` renewable copies of the sample pass; the mock closes a
  /// connection idle for `keepAlive`.
  explicit RenewalBench(int copies, std::chrono::seconds keepAlive = std::chrono::seconds(5))
      : directory_(std::filesystem::temp_directory_path() /
                   ("varnel-renewal-bench-" + std::to_string(::getpid()))),
        keepAlive_(keepAlive) {
    std::filesystem::create_directories(directory_);
    const auto file = householdFile(copies);
    auto guest = standalone::readGuestDataFile(file);
    auto manager = standalone::FileEntitlementsManager::open(file);
    if (!guest || !manager) return;
    guest_ = guest.value();
    host::Registry::set<ENTMEntitlementsManager>(manager.value());
    host::Registry::set<KTVRAuthenticationService>(
        std::make_shared<standalone::StaticAuthenticationService>(guest_.kuid, guest_.email));
    host::Registry::set<KTVRUserProfileAuthentication>(std::make_shared<standalone::StaticUserProfile>(guest_.email));
    http_ = startService(std::nullopt);
    startHttps();
  }
  ~RenewalBench() {
    for (BenchService* service : {&http_, &https_}) {
      service->relay.reset();
      if (service->server) service->server->stop();
    }
    host::Registry::clear();
    std::error_code ignored;
    std::filesystem::remove_all(directory_, ignored);
  }

  bool ready() const { return http_.server && https_.server; }
  const BenchService& service(bool tls) const { return tls ? https_ : http_; }
  std::string nextPass() { return passes_.at(next_++); }

  /// Fresh networking pointed at a service, as a new process would have;
  /// `keepWarmEvery` overrides the warmer's period.
  standalone::StandaloneNetworking install(bool tls, bool relayed,
                                           std::optional<std::chrono::milliseconds> keepWarmEvery = std::nullopt) {
    const BenchService& target = service(tls);
    standalone::HttpClientOptions options;
    options.transport.extraCaFile = target.trustedCa;
    if (keepWarmEvery) options.transport.keepWarmEvery = *keepWarmEvery;
    return standalone::installStandaloneNetworking(standalone::JsonEnvironment::forServer(target.url(relayed)).value(),
                                                   [token = guest_.accessToken] { return token; }, options);
  }

  /// Starts a renewal of the next pass; the flow ends by itself.
  std::shared_ptr<RenewalFlow> renew(const std::shared_ptr<BenchGuest>& guest, bool monthly) {
    auto flow = RenewalFlow::create(guest, std::make_shared<InMemoryRenewalJournal>());
    RenewalRequest request;
    request.passId = nextPass();
    request.monthlyPlan = monthly;
    request.parkContext = std::make_shared<KTVCParkResortContext>(kResortChoiceEast);
    flow->start(std::move(request));
    return flow;
  }

 private:
  void startHttps() {
    const testing::TestCertificates authority(directory_);
    const testing::ServerCertificate certificate = authority.issue("mock-commerce");
    https_ = startService(mock::TlsFiles{certificate.certificate, certificate.key});
    https_.trustedCa = authority.caFile();
  }

  BenchService startService(std::optional<mock::TlsFiles> tls) {
    BenchService service;
    mock::MockCommerceOptions options;
    options.guest = guest_;
    options.tls = std::move(tls);
    options.keepAlive = keepAlive_;
    auto started = mock::MockCommerceServer::start(std::move(options));
    if (!started) return service;
    service.server = std::move(started.value());
    service.relay = std::make_unique<LatencyRelay>(service.server->port(), kOneWay);
    return service;
  }

  /// The sample household with `copies` renewable copies of its pass AP-100201.
  std::filesystem::path householdFile(int copies) {
    std::ifstream in(varnelResourceDirectory() / "guests" / "sample-guest.json");
    Json household = Json::parse(in);
    Json pass;
    for (const Json& entitlement : household["entitlements"]) {
      if (entitlement.value("productInstanceId", "") == "AP-100201") pass = entitlement;
    }
    for (int i = 0; i < copies; ++i) {
      Json copy = pass;
      copy["productInstanceId"] = "AP-LATENCY-" + std::to_string(i);
      copy["barcodeString"] = std::to_string(8'100'000 + i);
      household["entitlements"].push_back(copy);
      passes_.push_back(copy["productInstanceId"]);
    }
    const auto file = directory_ / "household.json";
    std::ofstream(file) << household.dump();
    return file;
  }

  std::filesystem::path directory_;
  std::chrono::seconds keepAlive_;
  standalone::GuestData guest_;
  std::vector<std::string> passes_;
  std::size_t next_ = 0;
  BenchService http_;
  BenchService https_;
};

}  // namespace varnel::bench
