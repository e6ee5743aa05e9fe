#include "Screenshots.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QImage>
#include <QPixmap>

#include <functional>
#include <iostream>
#include <system_error>

#include "ConsoleHost.h"
#include "varnel/screens/GuestRenewalViewController.h"
#include "varnel/screens/VNLConfigurationViewController.h"
#include "varnel/screens/VNLNavigationController.h"

namespace varnel::console {
namespace {

bool save(VNLNavigationController& navigation, const std::filesystem::path& file) {
  QApplication::processEvents();
  const QImage image = navigation.grab().toImage();
  if (image.isNull() || !image.save(QString::fromStdString(file.string()), "PNG")) {
    std::cerr << "varnel-console: could not write " << file.string() << '\n';
    return false;
  }
  return true;
}

/// Runs the event loop until `condition` holds, for half a minute at most.
bool settle(const std::function<bool()>& condition, const char* what) {
  const QDeadlineTimer deadline(30000);
  while (!condition()) {
    if (deadline.hasExpired()) {
      std::cerr << "varnel-console: the renewal did not reach " << what << '\n';
      return false;
    }
    QApplication::processEvents(QEventLoop::AllEvents, 20);
  }
  return true;
}

bool createDirectory(const std::filesystem::path& directory) {
  std::error_code error;
  std::filesystem::create_directories(directory, error);
  if (error) std::cerr << "varnel-console: cannot create " << directory.string() << ": " << error.message() << '\n';
  return !error;
}

}  // namespace

bool takeRenewalScreenshots(const std::filesystem::path& directory,
                            const std::shared_ptr<KTVCParkResortContext>& parkContext) {
  if (!createDirectory(directory)) return false;
  using Page = GuestRenewalScreen::Page;
  VNLNavigationController navigation;
  navigation.setFixedSize(kScreenshotWidth, kScreenshotHeight);
  auto owned = std::make_unique<GuestRenewalViewController>(parkContext);
  GuestRenewalPresenter& presenter = owned->presenter();
  navigation.push(std::move(owned));
  navigation.show();
  const auto at = [&](Page page, const char* what) {
    return settle([&] { return presenter.screen().page == page && presenter.screen().busyStatus.empty(); }, what);
  };
  const auto order = [&](bool monthly) {
    presenter.setMonthlyPlan(monthly);
    presenter.renew();
    if (!at(Page::checkout, "the order")) return false;
    presenter.setTermsAccepted(true);
    return true;
  };
  const auto cardRow = [&](const std::string& reference) {
    const auto& cards = presenter.screen().cards;
    for (std::size_t row = 0; row < cards.size(); ++row) {
      if (cards[row].find(reference) != std::string::npos) return static_cast<int>(row);
    }
    return 0;
  };

  bool written = at(Page::passes, "the passes") && save(navigation, directory / "renewal-passes.png");
  // Given up before the checkout: nothing is charged, the pass stays renewable.
  written = order(false) && save(navigation, directory / "renewal-checkout.png") && written;
  presenter.cancel();
  written = at(Page::passes, "the passes again") && order(true) && written;
  presenter.pay();
  written = at(Page::contract, "the contract") && written;
  presenter.setContractSigned(true);
  written = save(navigation, directory / "renewal-contract.png") && written;
  presenter.cancel();
  written = at(Page::passes, "the passes again") && order(false) && written;
  presenter.chooseCard(cardRow("CARD-REF-0003"));
  presenter.pay();
  written = at(Page::banner, "the declined card's banner") && save(navigation, directory / "renewal-declined.png") &&
            written;
  presenter.startOver();
  written = order(false) && written;
  presenter.chooseCard(cardRow("CARD-REF-0001"));
  presenter.pay();
  written = at(Page::confirmation, "the confirmation") &&
            save(navigation, directory / "renewal-confirmation.png") && written;
  QApplication::processEvents();
  return written;
}

bool takeScreenshots(const std::filesystem::path& directory, VNLConfigurationBrick& brick,
                     const std::shared_ptr<KTVCParkResortContext>& parkContext) {
  if (!createDirectory(directory)) return false;
  const auto names = brick.supportedBrickNames();
  auto screen = brick.configurationViewController(ConsoleInvocation(names.front(), parkContext));
  auto* configuration = qobject_cast<VNLConfigurationViewController*>(screen.get());
  if (!configuration) {
    std::cerr << "varnel-console: the configuration screen could not be made\n";
    return false;
  }
  VNLNavigationController navigation;
  navigation.setFixedSize(kScreenshotWidth, kScreenshotHeight);
  navigation.push(std::move(screen));
  navigation.show();
  bool written = save(navigation, directory / "configuration.png");

  using Open = void (VNLConfigurationViewController::*)();
  const std::pair<Open, const char*> others[] = {
      {&VNLConfigurationViewController::showPresets, "presets.png"},
      {&VNLConfigurationViewController::showBusinessRequirements, "business-requirements.png"},
      {&VNLConfigurationViewController::showServerErrorRouting, "server-error-routing.png"},
  };
  for (const auto& [open, fileName] : others) {
    (configuration->*open)();
    written = save(navigation, directory / fileName) && written;
    navigation.pop();
  }
  QApplication::processEvents();
  return written;
}

}  // namespace varnel::console
