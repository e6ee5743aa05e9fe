#include "GuestCommerce.h"

#include <stdexcept>

#include "varnel/checkout/RenewalJournal.h"
#include "varnel/host/ENTMEntitlementsManager.h"
#include "varnel/host/Registry.h"
#include "varnel/host/ResourceBundle.h"
#include "varnel/mock/MockCommerceServer.h"
#include "varnel/standalone/FileEntitlementsManager.h"
#include "varnel/standalone/GuestDataFile.h"
#include "varnel/standalone/SqliteRenewalJournal.h"
#include "varnel/standalone/StaticAuthenticationService.h"
#include "varnel/standalone/network/JsonEnvironment.h"

namespace varnel::console {

GuestCommerce::GuestCommerce(const std::string& server, const std::filesystem::path& storePath) {
  using host::Registry;
  const std::filesystem::path file = varnelResourceDirectory() / "guests" / "sample-guest.json";
  auto guest = standalone::readGuestDataFile(file);
  if (!guest) throw std::runtime_error(standalone::describeGuestDataError(guest.error()));
  auto manager = standalone::FileEntitlementsManager::open(file);
  if (!manager) throw std::runtime_error(standalone::describeGuestDataError(manager.error()));

  std::string serverUrl = server;
  std::shared_ptr<RenewalJournal> journal;
  if (serverUrl.empty()) {
    auto started = mock::MockCommerceServer::start(
        {.guest = guest.value(), .faults = {}, .routes = {}, .routeFaults = {}, .requestLog = {}});
    if (!started) throw std::runtime_error("cannot start the mock commerce server: " + localizedDescription(started.error()));
    embeddedServer_ = std::move(started.value());
    serverUrl = embeddedServer_->baseUrl();
    journal = std::make_shared<InMemoryRenewalJournal>();
    description_ = serverUrl + " (in-process mock)";
  } else {
    auto opened = standalone::SqliteRenewalJournal::open(storePath);
    if (!opened) throw std::runtime_error(localizedDescription(opened.error()));
    journal = opened.value();
    description_ = serverUrl;
  }
  auto environment = standalone::JsonEnvironment::forServer(serverUrl);
  if (!environment) throw std::runtime_error("--server: " + localizedDescription(environment.error()));

  Registry::set<ENTMEntitlementsManager>(manager.value());
  Registry::set<KTVRAuthenticationService>(
      std::make_shared<standalone::StaticAuthenticationService>(guest.value().kuid, guest.value().email));
  Registry::set<KTVRUserProfileAuthentication>(std::make_shared<standalone::StaticUserProfile>(guest.value().email));
  Registry::set<RenewalJournal>(journal);
  networking_ = standalone::installStandaloneNetworking(environment.value(),
                                                        [token = guest.value().accessToken] { return token; });
}

GuestCommerce::~GuestCommerce() {
  standalone::uninstallStandaloneNetworking();
  networking_ = {};
  host::Registry::set<RenewalJournal>(nullptr);
  if (embeddedServer_) embeddedServer_->stop();
}

}  // namespace varnel::console
