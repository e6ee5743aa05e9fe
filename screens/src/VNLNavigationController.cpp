#include "varnel/screens/VNLNavigationController.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QStackedWidget>
#include <QToolButton>
#include <QVBoxLayout>

namespace varnel {

VNLNavigationController::VNLNavigationController(QWidget* parent)
    : QWidget(parent), backButton_(new QToolButton), titleLabel_(new QLabel), stack_(new QStackedWidget) {
  auto* bar = new QFrame;
  bar->setObjectName("navigationBar");
  bar->setStyleSheet("#navigationBar { background: #f3f3f5; border-bottom: 1px solid #d6d6da; }");
  auto* barLayout = new QHBoxLayout(bar);
  barLayout->setContentsMargins(8, 6, 8, 6);
  backButton_->setText(QStringLiteral("\u2039 Back"));
  backButton_->setAutoRaise(true);
  backButton_->setObjectName("backButton");
  QSizePolicy keepPlace = backButton_->sizePolicy();
  keepPlace.setRetainSizeWhenHidden(true);
  backButton_->setSizePolicy(keepPlace);
  QFont titleFont = titleLabel_->font();
  titleFont.setBold(true);
  titleFont.setPointSizeF(titleFont.pointSizeF() * 1.15);
  titleLabel_->setFont(titleFont);
  titleLabel_->setAlignment(Qt::AlignCenter);
  barLayout->addWidget(backButton_, 0);
  barLayout->addWidget(titleLabel_, 1);
  // Balances the back button so that the title stays centred.
  auto* balance = new QWidget;
  balance->setFixedWidth(backButton_->sizeHint().width());
  barLayout->addWidget(balance, 0);

  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(bar);
  layout->addWidget(stack_, 1);
  connect(backButton_, &QToolButton::clicked, this, &VNLNavigationController::pop);
  updateBar();
}

VNLNavigationController* VNLNavigationController::of(const QWidget* screen) {
  for (QWidget* ancestor = screen ? screen->parentWidget() : nullptr; ancestor; ancestor = ancestor->parentWidget()) {
    if (auto* navigation = qobject_cast<VNLNavigationController*>(ancestor)) return navigation;
  }
  return nullptr;
}

void VNLNavigationController::showScreen(const QWidget* from, std::unique_ptr<QWidget> screen) {
  if (!screen) return;
  if (auto* navigation = of(from)) {
    navigation->push(std::move(screen));
    return;
  }
  QWidget* window = screen.release();
  window->setAttribute(Qt::WA_DeleteOnClose);
  window->show();
}

void VNLNavigationController::push(std::unique_ptr<QWidget> screen) {
  if (!screen) return;
  QWidget* added = screen.release();
  stack_->addWidget(added);
  stack_->setCurrentWidget(added);
  updateBar();
}

void VNLNavigationController::pop() {
  if (stack_->count() <= 1) return;
  QWidget* top = stack_->widget(stack_->count() - 1);
  stack_->removeWidget(top);
  top->deleteLater();
  stack_->setCurrentIndex(stack_->count() - 1);
  updateBar();
}

QWidget* VNLNavigationController::topViewController() const { return stack_->currentWidget(); }

int VNLNavigationController::depth() const { return stack_->count(); }

void VNLNavigationController::updateBar() {
  backButton_->setVisible(stack_->count() > 1);
  titleLabel_->setText(topViewController() ? topViewController()->windowTitle() : QString());
}

}  // namespace varnel
