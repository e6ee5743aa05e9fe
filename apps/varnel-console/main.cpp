// varnel-console: the tester console. It plays the host's module-hosting
// library in a window of its own: it lists the module's bricks and opens
// their screens, on the same settings store as the varnel tool, and shows the
// sample guest's renewal against a commerce server (--server, else a mock
// commerce server started in this process).
//
//   varnel-console [--defaults PATH] [--park 1|2] [--routing-server URL] [--server URL] [--screenshot DIR]

#include <CLI/CLI.hpp>

#include <QApplication>
#include <QFont>
#include <QFontInfo>
#include <QStyle>
#include <QStyleFactory>

#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

#include "ConsoleHost.h"
#include "ConsoleWindow.h"
#include "GuestCommerce.h"
#include "Screenshots.h"
#include "varnel/host/Registry.h"
#include "varnel/screens/GuestRenewalViewController.h"
#include "varnel/screens/QtPlatform.h"
#include "varnel/screens/ServerErrorRoutingPresenter.h"
#include "varnel/standalone/SqliteUserDefaults.h"
#include "varnel/standalone/StandaloneHost.h"

namespace {

struct ConsoleOptions {
  std::string defaultsPath;
  int park = varnel::kResortChoiceEast;
  std::string routingServer;
  std::string commerceServer;
  std::string screenshotDirectory;
  bool verbose = false;
};

/// The same look on every machine: the Fusion style with its own palette and
/// DejaVu Sans at a fixed size.
void fixLook(QApplication& application) {
  application.setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
  application.setPalette(application.style()->standardPalette());
  QFont font(QStringLiteral("DejaVu Sans"));
  font.setPointSize(10);
  font.setHintingPreference(QFont::PreferNoHinting);
  application.setFont(font);
  if (QFontInfo(font).family() != QStringLiteral("DejaVu Sans")) {
    std::cerr << "varnel-console: DejaVu Sans is not installed (fonts-dejavu-core); pictures will differ\n";
  }
}

int run(const ConsoleOptions& options, int& argc, char** argv) {
  using namespace varnel;
  if (!options.screenshotDirectory.empty()) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_ENABLE_HIGHDPI_SCALING", "0");
    qputenv("QT_SCALE_FACTOR", "1");
  }
  standalone::installStandaloneHost({.verbose = options.verbose});

  std::optional<std::filesystem::path> chosen;
  if (!options.defaultsPath.empty()) chosen = options.defaultsPath;
  auto store = standalone::SqliteUserDefaults::openResolved(chosen);
  if (!store) {
    const auto* message = jsonString(store.error().userInfo, "message");
    std::cerr << "varnel-console: " << (message ? *message : std::string("cannot open the settings store")) << '\n';
    return 2;
  }
  host::Registry::set<UserDefaults>(store.value());
  host::Registry::set<PLNTBundleLookup>(std::make_shared<console::ConsoleBundleLookup>());
  host::Registry::set<MainQueue>(std::make_shared<QtMainQueue>());
  if (!options.routingServer.empty()) ServerErrorRoutingPresenter::setMockServerAddress(options.routingServer);

  QApplication application(argc, argv);
  fixLook(application);
  auto parkContext = std::make_shared<KTVCParkResortContext>(options.park);
  auto brick = std::make_shared<VNLConfigurationBrick>();
  brick->setParkContext(parkContext);

  int status = 0;
  std::optional<console::GuestCommerce> commerce;
  try {
    // The screenshots are always taken against the in-process mock server.
    commerce.emplace(options.screenshotDirectory.empty() ? options.commerceServer : std::string(),
                     store.value()->path());
  } catch (const std::runtime_error& error) {
    std::cerr << "varnel-console: " << error.what() << '\n';
    host::Registry::clear();
    return 2;
  }
  {
    if (!options.screenshotDirectory.empty()) {
      const bool tester = console::takeScreenshots(options.screenshotDirectory, *brick, parkContext);
      const bool guest = console::takeRenewalScreenshots(options.screenshotDirectory, parkContext);
      status = tester && guest ? 0 : 1;
    } else {
      const QString details = QStringLiteral("Park: %1\nSettings: %2\nCommerce: %3")
                                  .arg(QString::fromStdString(console::parkName(*parkContext)),
                                       QString::fromStdString(store.value()->path().string()),
                                       QString::fromStdString(commerce->serverDescription()));
      console::ConsoleWindow window(
          {brick}, [parkContext] { return std::make_unique<GuestRenewalViewController>(parkContext); }, parkContext,
          details);
      window.show();
      status = QApplication::exec();
    }
  }
  commerce.reset();
  store.value()->synchronize();
  host::Registry::clear();
  return status;
}

}  // namespace

int main(int argc, char** argv) {
  ConsoleOptions options;
  CLI::App app{"varnel-console: the tester screens of the commerce module in a window"};
  app.set_version_flag("--version", "varnel-console 0.1.0");
  // An empty path or address is a mistake, never "the default".
  const CLI::Validator nonEmpty(
      [](std::string& value) { return value.empty() ? std::string("an empty value is not allowed") : std::string(); },
      "", "NON_EMPTY");
  app.add_option("--defaults", options.defaultsPath,
                 "User-defaults store (default: $VARNEL_DEFAULTS, else ~/.config/varnel/defaults.sqlite3)")
      ->type_name("PATH")
      ->check(nonEmpty);
  app.add_option("--park", options.park, "Park of the host's context: 1 west resort, 2 east resort")
      ->check(CLI::IsMember({1, 2}));
  app.add_option("--routing-server", options.routingServer,
                 "Base address of the mock server of server-error routing (http://host:port)")
      ->envname("VARNEL_ROUTING_SERVER")
      ->type_name("URL")
      ->check(nonEmpty);
  app.add_option("--server", options.commerceServer,
                 "Base URL of the commerce server of the guest's renewal (default: a mock commerce server started "
                 "in this process)")
      ->type_name("URL")
      ->check(nonEmpty);
  app.add_option("--screenshot", options.screenshotDirectory,
                 "Render every screen offscreen into DIR as PNG and exit")
      ->type_name("DIR")
      ->check(nonEmpty);
  app.add_flag("--verbose", options.verbose, "Show the module's debug lines on stderr");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    const int status = app.exit(error);
    return status == 0 ? 0 : 2;
  }
  try {
    return run(options, argc, argv);
  } catch (const std::exception& error) {
    std::cerr << "varnel-console: internal error: " << error.what() << '\n';
    return 1;
  }
}
