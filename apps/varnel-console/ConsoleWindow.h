#pragma once
// The console's window: the module's bricks on the left, the screen of the
// chosen brick, with its navigation, on the right.

#include <QMainWindow>

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
  ConsoleWindow(std::vector<std::shared_ptr<VNLConfigurationBrick>> bricks,
                std::shared_ptr<KTVCParkResortContext> parkContext, const QString& storePath);

 public slots:
  /// Opens the configuration screen of the brick in row `row`.
  void openBrick(int row);

 private:
  std::vector<std::shared_ptr<VNLConfigurationBrick>> bricks_;
  std::shared_ptr<KTVCParkResortContext> parkContext_;
  QListWidget* brickList_;
  QStackedWidget* content_;
};

}  // namespace varnel::console
