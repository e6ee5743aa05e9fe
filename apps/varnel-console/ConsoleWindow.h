#pragma once
// The console's window: the module's bricks on the left, then the guest's
// renewal; the screen of the chosen entry, with its navigation, on the right.

#include <QMainWindow>

#include <functional>
#include <memory>
#include <vector>

#include "varnel/host/KTVCParkResortContext.h"
#include "varnel/screens/VNLConfigurationBrick.h"

class QListWidget;
class QStackedWidget;

namespace varnel::console {

class ConsoleWindow : public QMainWindow {
  Q_OBJECT

 public:
  /// Makes the guest's renewal screen, freshly each time it is opened.
  using GuestScreenFactory = std::function<std::unique_ptr<QWidget>()>;

  /// `details`: lines under the list (park, settings store, commerce server).
  ConsoleWindow(std::vector<std::shared_ptr<VNLConfigurationBrick>> bricks, GuestScreenFactory guestScreen,
                std::shared_ptr<KTVCParkResortContext> parkContext, const QString& details);

  /// The list's title of the guest's entry, after the bricks.
  static constexpr const char* kGuestRenewalTitle = "Guest renewal";

  QListWidget* entryList() const { return brickList_; }

 public slots:
  /// Opens the configuration screen of the brick in row `row`, or the guest's
  /// renewal in the row after the bricks.
  void openBrick(int row);

 private:
  void showScreen(std::unique_ptr<QWidget> screen);

  std::vector<std::shared_ptr<VNLConfigurationBrick>> bricks_;
  GuestScreenFactory guestScreen_;
  std::shared_ptr<KTVCParkResortContext> parkContext_;
  QListWidget* brickList_;
  QStackedWidget* content_;
};

}  // namespace varnel::console
