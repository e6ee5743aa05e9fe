#include "commands/CommerceSession.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <mutex>

#include "Command.h"
#include "OptionChecks.h"
#include "commands/ErrorReport.h"
#include "commands/GuestSource.h"
#include "commands/RenewalOutput.h"
#include "commands/RenewalSteps.h"
#include "varnel/errors/ErrorMapping.h"
#include "varnel/host/ENTMEntitlementsManager.h"
#include "varnel/host/Registry.h"
#include "varnel/host/ResourceBundle.h"
#include "varnel/mock/MockCommerceServer.h"
#include "varnel/platform/MainQueue.h"
#include "varnel/standalone/FileEntitlementsManager.h"
#include "varnel/standalone/SqliteRenewalJournal.h"
#include "varnel/standalone/SqliteUserDefaults.h"
#include "varnel/standalone/StaticAuthenticationService.h"
#include "varnel/standalone/network/JsonEnvironment.h"

namespace varnel::cli {

void addCommerceOptions(CLI::App& command, CommerceOptions& options) {
  command.add_option("--server", options.server,
                     "Base URL of the commerce server (default: a mock commerce server started for this command)")
      ->transform(serverUrl());
  command.add_option("--guest", options.guestFile,
                     "Guest data file (default: the sample guest, resources/guests/sample-guest.json)")
      ->check(guestFile());
  command.add_option("--defaults", options.defaultsPath,
                     "User-defaults store (default: $VARNEL_DEFAULTS, else ~/.config/varnel/defaults.sqlite3)");
  command.add_option("--park", options.park, "Resort value of the park context (1 west, 2 east; default 2)")
      ->check(commercePark());
  command.add_option("--ca-file", options.caFile, "PEM file of a CA trusted besides the system's (HTTPS servers)")
      ->check(CLI::ExistingFile);
  command.add_flag("--json", options.json, "Print JSON");
}

namespace {

/// $VARNEL_REQUEST_TIMEOUT_MS (1 to 600000) shortens the time a request may
/// take, connection included; fault soaks use it to lose answers quickly.
standalone::HttpClientOptions networkOptions() {
  standalone::HttpClientOptions options;
  const char* text = std::getenv("VARNEL_REQUEST_TIMEOUT_MS");
  if (text == nullptr) return options;
  char* end = nullptr;
  const long milliseconds = std::strtol(text, &end, 10);
  if (end == text || *end != '\0' || milliseconds < 1 || milliseconds > 600'000) {
    throw UsageError("VARNEL_REQUEST_TIMEOUT_MS: not a number of milliseconds from 1 to 600000");
  }
  options.transport.totalTimeout = std::chrono::milliseconds(milliseconds);
  options.transport.connectTimeout = std::min(options.transport.connectTimeout, options.transport.totalTimeout);
  return options;
}

}  // namespace

CommerceSession::CommerceSession(const CommerceOptions& options) {
  using host::Registry;
  parkContext_ = std::make_shared<KTVCParkResortContext>(parsePark(options.park));

  // The guest file is read once: the entitlements manager serves it, and the
  // sign-in, the cards and the mock server's household come from what it read.
  GuestSource source(GuestOptions{.guestFile = options.guestFile, .mock = false, .json = options.json});
  if (!source.data) throw UsageError("the guest data file could not be read");
  guest_ = *source.data;
  for (const std::string& pass : options.namedPasses) requirePass(pass);

  auto store = standalone::SqliteUserDefaults::openResolved(
      options.defaultsPath.empty() ? std::nullopt : std::optional<std::filesystem::path>(options.defaultsPath));
  if (!store) throw UsageError("cannot open the settings store: " + localizedDescription(store.error()));
  Registry::set<UserDefaults>(store.value());
  auto journal = standalone::SqliteRenewalJournal::open(store.value()->path());
  if (!journal) throw UsageError(localizedDescription(journal.error()));
  journal_ = journal.value();
  Registry::set<RenewalJournal>(journal_);
  Registry::set<KTVRAuthenticationService>(
      std::make_shared<standalone::StaticAuthenticationService>(guest_.kuid, guest_.email));
  Registry::set<KTVRUserProfileAuthentication>(std::make_shared<standalone::StaticUserProfile>(guest_.email));

  std::string serverUrl = options.server;
  if (serverUrl.empty()) {
    auto started = mock::MockCommerceServer::start(
        {.guest = guest_, .faults = {}, .routes = {}, .routeFaults = {}, .requestLog = {}});
    if (!started) throw UsageError("cannot start the mock commerce server: " + localizedDescription(started.error()));
    embeddedServer_ = std::move(started.value());
    serverUrl = embeddedServer_->baseUrl();
  }
  auto environment = standalone::JsonEnvironment::forServer(serverUrl);
  if (!environment) throw UsageError("--server: " + localizedDescription(environment.error()));

  standalone::HttpClientOptions clientOptions = networkOptions();
  if (!options.caFile.empty()) clientOptions.transport.extraCaFile = options.caFile;
  networking_ = standalone::installStandaloneNetworking(environment.value(),
                                                        [token = guest_.accessToken] { return token; }, clientOptions);
  mainQueue_ = std::dynamic_pointer_cast<standalone::RunLoopMainQueue>(Registry::get<MainQueue>());
  if (!mainQueue_) {
    mainQueue_ = std::make_shared<standalone::RunLoopMainQueue>();
    Registry::set<MainQueue>(mainQueue_);
  }
  if (const std::string notice = pendingNotice(pendingRenewals()); !notice.empty()) std::cerr << notice << '\n';
}

std::vector<RenewalJournalEntry> CommerceSession::pendingRenewals() const {
  return guest_.kuid ? journal_->unfinished(*guest_.kuid) : std::vector<RenewalJournalEntry>{};
}

void CommerceSession::requirePass(const std::string& productInstanceId) const {
  std::vector<std::string> known;
  for (const auto& entitlement : guest_.entitlements) {
    const std::string id = entitlement ? entitlement->productInstanceId.value_or("") : "";
    if (id == productInstanceId) return;
    if (!id.empty()) known.push_back(id);
  }
  throw noSuchPass(productInstanceId, known);
}

CommerceSession::~CommerceSession() {
  standalone::uninstallStandaloneNetworking();
  networking_ = {};
  host::Registry::set<RenewalJournal>(nullptr);
  if (embeddedServer_) embeddedServer_->stop();
}

bool CommerceSession::runUntil(const std::function<bool()>& done) {
  while (!done()) {
    mainQueue_->runUntil(done, std::chrono::milliseconds(50));
    if (done()) break;
    // Callbacks hand their results to the main queue before the networking
    // counts them out: with nothing in flight, what is queued is all there is.
    if (networking_.client->callsInFlight() == 0 && mainQueue_->drain() == 0) return done();
  }
  return true;
}

CallbackOutcome CommerceSession::await(const std::function<void(KTVRSuccessBlock, KTVRFailureBlock)>& start) {
  auto outcome = std::make_shared<CallbackOutcome>();
  auto queue = mainQueue_;
  start(
      [outcome, queue](const std::optional<Json>& value) {
        queue->post([outcome, value] {
          if (!outcome->silent) return;
          *outcome = {false, true, value, std::nullopt};
        });
      },
      [outcome, queue](const std::optional<Error>& error) {
        queue->post([outcome, error] {
          if (!outcome->silent) return;
          *outcome = {false, false, std::nullopt, error};
        });
      });
  runUntil([&] { return !outcome->silent; });
  return *outcome;
}

int reportCommerceFailure(const std::optional<Error>& error, KTVCResortChoice park, bool json) {
  const std::optional<APError> commerceError = error ? commerceErrorOf(*error) : std::nullopt;
  if (commerceError) {
    const OrderedJson described = describeError(*commerceError, park);
    if (json) {
      std::cout << dumpJson(OrderedJson{{"error", described}}) << '\n';
    } else {
      if (isConnectionError(*commerceError)) {
        // Nothing was answered: the reason is ours or the network's, never a refusal.
        const bool reasoned = error->userInfo.is_object() && error->userInfo.contains(kErrorLocalizedDescriptionKey);
        std::cerr << "varnel: "
                  << (reasoned ? localizedDescription(*error) : std::string("no answer from the commerce service (see --verbose)"))
                  << '\n';
      } else if (!isTransactionalError(*commerceError)) {
        std::cerr << "The commerce service refused the request.\n";
      }
      printDescription(described);
    }
    return 1;
  }
  const std::string reason = error ? describe(*error) : std::string("the request failed without an error");
  if (json) {
    std::cout << dumpJson(OrderedJson{{"error", OrderedJson{{"case", nullptr}, {"reason", reason}}}}) << '\n';
  } else {
    std::cerr << "varnel: the request failed: " << reason << '\n';
  }
  return 1;
}

int reportSilentOutcome(std::string_view operation, bool json) {
  const std::string message = std::string(operation) +
                              " ended without an answer the module acts on (nothing was sent, or the answer was "
                              "not a JSON object); see --verbose";
  if (json) {
    std::cout << dumpJson(OrderedJson{{"error", OrderedJson{{"case", nullptr}, {"reason", message}}}}) << '\n';
  } else {
    std::cerr << "varnel: " << message << '\n';
  }
  return 1;
}

}  // namespace varnel::cli
