#include "varnel/screens/ServerErrorRoutingDebugViewController.h"

#include <QShowEvent>

#include "ui_ServerErrorRoutingDebugViewController.h"
#include "varnel/screens/QtPlatform.h"

namespace varnel {

ServerErrorRoutingDebugViewController::ServerErrorRoutingDebugViewController(QWidget* parent)
    : QWidget(parent), ui_(std::make_unique<Ui::ServerErrorRoutingDebugViewController>()) {
  ui_->setupUi(this);
  auto session = URLSession::shared();
  if (!session) session = qtSession_ = std::make_shared<QtURLSession>();
  presenter_ = ServerErrorRoutingPresenter::create(*this, std::move(session), std::make_shared<QtMainQueue>());

  const auto address = ServerErrorRoutingPresenter::mockServerAddress();
  ui_->serverLabel->setText(address.empty() ? QStringLiteral("No mock server is set.")
                                            : QStringLiteral("Mock server: ") + QString::fromStdString(address));
  connect(ui_->testRoutingButton, &QPushButton::clicked, this, &ServerErrorRoutingDebugViewController::testRoutingTapped);
  connect(ui_->useServerErrorRoutingSwitch, &VNLSwitch::toggled, this,
          &ServerErrorRoutingDebugViewController::serverErrorRoutingSwitchChanged);
  connect(ui_->usernameField, &QLineEdit::returnPressed, this,
          &ServerErrorRoutingDebugViewController::textFieldShouldReturn);
  presenter_->updateUI();
}

ServerErrorRoutingDebugViewController::~ServerErrorRoutingDebugViewController() = default;

QLineEdit* ServerErrorRoutingDebugViewController::usernameField() const { return ui_->usernameField; }
VNLSwitch* ServerErrorRoutingDebugViewController::useServerErrorRoutingSwitch() const {
  return ui_->useServerErrorRoutingSwitch;
}
QPushButton* ServerErrorRoutingDebugViewController::testRoutingButton() const { return ui_->testRoutingButton; }
QPlainTextEdit* ServerErrorRoutingDebugViewController::resultTextField() const { return ui_->resultTextField; }

std::string ServerErrorRoutingDebugViewController::usernameText() const {
  return ui_->usernameField->text().toStdString();
}
void ServerErrorRoutingDebugViewController::setUsernameText(const std::string& text) {
  ui_->usernameField->setText(QString::fromStdString(text));
}
bool ServerErrorRoutingDebugViewController::isRoutingSwitchOn() const {
  return ui_->useServerErrorRoutingSwitch->isOn();
}
void ServerErrorRoutingDebugViewController::setRoutingSwitchOn(bool isOn) {
  ui_->useServerErrorRoutingSwitch->setOn(isOn);
}
void ServerErrorRoutingDebugViewController::setResultText(const std::string& text) {
  ui_->resultTextField->setPlainText(QString::fromStdString(text));
}
void ServerErrorRoutingDebugViewController::setRoutingControlsHidden(bool hidden) {
  ui_->usernameField->setHidden(hidden);
  ui_->testRoutingButton->setHidden(hidden);
  ui_->resultTextField->setHidden(hidden);
  ui_->lookupGroup->setHidden(hidden);
}

void ServerErrorRoutingDebugViewController::testRoutingTapped() { presenter_->testRoutingTapped(); }

void ServerErrorRoutingDebugViewController::serverErrorRoutingSwitchChanged(bool) {
  presenter_->serverErrorRoutingSwitchChanged();
}

void ServerErrorRoutingDebugViewController::textFieldShouldReturn() { ui_->usernameField->clearFocus(); }

void ServerErrorRoutingDebugViewController::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  if (!event->spontaneous()) presenter_->viewDidAppear();
}

}  // namespace varnel
