#include "Screenshots.h"

#include <QApplication>
#include <QImage>
#include <QPixmap>

#include <iostream>
#include <system_error>

#include "ConsoleHost.h"
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

}  // namespace

bool takeScreenshots(const std::filesystem::path& directory, VNLConfigurationBrick& brick,
                     const std::shared_ptr<KTVCParkResortContext>& parkContext) {
  std::error_code error;
  std::filesystem::create_directories(directory, error);
  if (error) {
    std::cerr << "varnel-console: cannot create " << directory.string() << ": " << error.message() << '\n';
    return false;
  }
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
