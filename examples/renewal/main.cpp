// Renewal: a host app renews the sample guest's annual pass with RenewalFlow,
// through the installed Varnel package and its stand-alone host.
//
//   varnel-mock-commerce &               # prints "listening on http://127.0.0.1:PORT"
//   renewal http://127.0.0.1:PORT [GUEST_FILE]
//
// The host fills the registry (guest, networking, main queue), implements the
// guest's decisions in a RenewalFlowDelegate, starts the flow and runs its
// main queue until the one outcome arrives. Exit status: 0 renewed, 1 refused,
// 3 unknown (the renewal is being confirmed), 2 bad arguments.

#include <chrono>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>

#include "varnel/checkout/RenewalFlow.h"
#include "varnel/host/ENTMEntitlementsManager.h"
#include "varnel/host/Registry.h"
#include "varnel/host/ResourceBundle.h"
#include "varnel/standalone/FileEntitlementsManager.h"
#include "varnel/standalone/GuestDataFile.h"
#include "varnel/standalone/StandaloneHost.h"
#include "varnel/standalone/StaticAuthenticationService.h"
#include "varnel/standalone/network/JsonEnvironment.h"
#include "varnel/standalone/network/StandaloneNetworking.h"

namespace {

using namespace varnel;

/// The guest's decisions: the first stored card, the terms accepted, the contract signed.
class Guest final : public RenewalFlowDelegate {
 public:
  void renewalStepStarted(RenewalStep step) override { std::cout << "- " << renewalStepName(step) << '\n'; }
  void renewalOrderCreated(const RenewalOrder& order) override {
    std::cout << "  order " << order.orderId << ", total " << order.pricing.total.value_or("?") << ' '
              << order.pricing.currency << '\n';
  }
  void chooseCard(const RenewalOrder&, const std::vector<PaymentAccount>& accounts, CardReply reply) override {
    if (accounts.empty()) return reply(std::nullopt);
    std::cout << "  paying with " << maskedCardNumber(accounts.front().creditCard().cardNumber()) << '\n';
    reply(accounts.front());
  }
  void acceptTerms(const RenewalOrder&, Reply reply) override { reply(true); }
  void signContract(const VNLContractDataModel&, Reply reply) override { reply(true); }
  void renewalFlowDidEnd(const RenewalOutcome& ended) override { outcome = ended; }

  std::optional<RenewalOutcome> outcome;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    std::cerr << "usage: renewal SERVER_URL [GUEST_FILE]\n";
    return 2;
  }
  // 1. Logging, string tables, banners and the main queue this program runs.
  auto mainQueue = standalone::installStandaloneHost();

  // 2. The signed-in guest and its passes, from a guest data file.
  const auto file = argc > 2 ? std::filesystem::path(argv[2])
                             : varnelResourceDirectory() / "guests" / "sample-guest.json";
  auto guest = standalone::readGuestDataFile(file);
  auto manager = standalone::FileEntitlementsManager::open(file);
  if (!guest || !manager) {
    std::cerr << standalone::describeGuestDataError(!guest ? guest.error() : manager.error()) << '\n';
    return 2;
  }
  host::Registry::set<ENTMEntitlementsManager>(manager.value());
  host::Registry::set<KTVRAuthenticationService>(
      std::make_shared<standalone::StaticAuthenticationService>(guest.value().kuid, guest.value().email));
  host::Registry::set<KTVRUserProfileAuthentication>(
      std::make_shared<standalone::StaticUserProfile>(guest.value().email));

  // 3. The networking towards the commerce server.
  auto environment = standalone::JsonEnvironment::forServer(argv[1]);
  if (!environment) {
    std::cerr << "not a server URL: " << argv[1] << '\n';
    return 2;
  }
  auto networking = standalone::installStandaloneNetworking(
      environment.value(), [token = guest.value().accessToken] { return token; });

  // 4. One renewal of the first pass that can be renewed now, paid in full.
  auto delegate = std::make_shared<Guest>();
  auto flow = RenewalFlow::create(delegate);
  flow->start({.parkContext = std::make_shared<KTVCParkResortContext>(kResortChoiceEast)});
  while (!delegate->outcome) {
    mainQueue->runUntil([&] { return delegate->outcome.has_value(); }, std::chrono::milliseconds(50));
    if (!delegate->outcome && networking.client->callsInFlight() == 0 && mainQueue->drain() == 0) break;
  }

  int status = 1;
  if (!delegate->outcome) {
    std::cerr << "the renewal ended without an outcome\n";
  } else if (const RenewalOutcome& outcome = *delegate->outcome; outcome.kind == RenewalOutcome::Kind::confirmed) {
    std::cout << "renewed " << outcome.passId << ": confirmation " << outcome.confirmation->confirmationNumber()
              << ", status " << outcome.confirmation->status() << '\n';
    status = 0;
  } else {
    std::cout << renewalOutcomeName(outcome.kind) << " at " << renewalStepName(outcome.step) << ": " << outcome.reason
              << '\n';
    status = outcome.kind == RenewalOutcome::Kind::unknown ? 3 : 1;
  }
  flow.reset();
  standalone::uninstallStandaloneNetworking();
  networking = {};
  host::Registry::clear();
  return status;
}
