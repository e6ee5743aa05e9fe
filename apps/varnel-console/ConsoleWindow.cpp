#include "ConsoleWindow.h"

#include <QLabel>
#include <QListWidget>
#include <QSplitter>
#include <QStackedWidget>
#include <QVBoxLayout>

#include "ConsoleHost.h"
#include "varnel/screens/VNLNavigationController.h"

namespace varnel::console {

ConsoleWindow::ConsoleWindow(std::vector<std::shared_ptr<VNLConfigurationBrick>> bricks,
                             GuestScreenFactory guestScreen, std::shared_ptr<KTVCParkResortContext> parkContext,
                             const QString& details)
    : bricks_(std::move(bricks)),
      guestScreen_(std::move(guestScreen)),
      parkContext_(std::move(parkContext)),
      brickList_(new QListWidget),
      content_(new QStackedWidget) {
  setWindowTitle(QStringLiteral("Varnel tester console"));

  auto* side = new QWidget;
  auto* sideLayout = new QVBoxLayout(side);
  auto* heading = new QLabel(QStringLiteral("<b>Modules</b>"));
  sideLayout->addWidget(heading);
  for (const auto& brick : bricks_) brickList_->addItem(QString::fromStdString(brick->localizedTitle()));
  if (guestScreen_) brickList_->addItem(QString::fromUtf8(kGuestRenewalTitle));
  sideLayout->addWidget(brickList_, 1);
  auto* detailsLabel = new QLabel(details.toHtmlEscaped().replace('\n', QStringLiteral("<br>")));
  detailsLabel->setWordWrap(true);
  detailsLabel->setStyleSheet("color: #5f6368;");
  sideLayout->addWidget(detailsLabel);

  content_->addWidget(new QLabel(QStringLiteral("Choose a module."), content_));
  auto* splitter = new QSplitter;
  splitter->addWidget(side);
  splitter->addWidget(content_);
  splitter->setStretchFactor(1, 1);
  setCentralWidget(splitter);
  resize(760, 720);

  connect(brickList_, &QListWidget::currentRowChanged, this, &ConsoleWindow::openBrick);
  if (!bricks_.empty()) brickList_->setCurrentRow(0);
}

void ConsoleWindow::openBrick(int row) {
  const int brickCount = static_cast<int>(bricks_.size());
  if (row == brickCount && guestScreen_) return showScreen(guestScreen_());
  if (row < 0 || row >= brickCount) return;
  auto& brick = *bricks_[static_cast<std::size_t>(row)];
  const auto names = brick.supportedBrickNames();
  const ConsoleInvocation invocation(names.empty() ? std::string() : names.front(), parkContext_);
  showScreen(brick.configurationViewController(invocation));
}

void ConsoleWindow::showScreen(std::unique_ptr<QWidget> screen) {
  if (!screen) return;
  auto* navigation = new VNLNavigationController;
  navigation->push(std::move(screen));
  while (content_->count() > 1) {
    QWidget* old = content_->widget(1);
    content_->removeWidget(old);
    old->deleteLater();
  }
  content_->addWidget(navigation);
  content_->setCurrentWidget(navigation);
}

}  // namespace varnel::console
