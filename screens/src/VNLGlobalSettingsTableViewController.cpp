#include "varnel/screens/VNLGlobalSettingsTableViewController.h"

#include <QPainter>
#include <QPainterPath>
#include <QShowEvent>

#include "ui_VNLGlobalSettingsTableViewController.h"

namespace varnel {
namespace {

constexpr int kCheckMarkSize = 18;

QIcon checkMark(bool shown) {
  QPixmap pixmap(kCheckMarkSize, kCheckMarkSize);
  pixmap.fill(Qt::transparent);
  if (shown) {
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(0, 122, 255), 2.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    QPainterPath tick;
    tick.moveTo(3.5, 9.5);
    tick.lineTo(7.5, 13.5);
    tick.lineTo(14.5, 4.5);
    painter.drawPath(tick);
  }
  return QIcon(pixmap);
}

}  // namespace

VNLGlobalSettingsTableViewController::VNLGlobalSettingsTableViewController(QWidget* parent)
    : QWidget(parent), ui_(std::make_unique<Ui::VNLGlobalSettingsTableViewController>()) {
  ui_->setupUi(this);
  for (const auto configuration : VNLGlobalSettingsPresenter::rows()) {
    const auto name = rawValue(configuration);
    auto* item = new QListWidgetItem(
        QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size())) + "\n" +
        QString::fromStdString(VNLGlobalSettingsPresenter::detailFor(configuration)));
    item->setSizeHint(QSize(0, 44));
    ui_->configurationList->addItem(item);
  }
  presenter_.viewWillAppear();
  showCheckMark();
  connect(ui_->configurationList, &QListWidget::itemClicked, this,
          [this](QListWidgetItem* item) { didSelectRow(ui_->configurationList->row(item)); });
}

VNLGlobalSettingsTableViewController::~VNLGlobalSettingsTableViewController() = default;

QListWidget* VNLGlobalSettingsTableViewController::tableView() const { return ui_->configurationList; }

QListWidgetItem* VNLGlobalSettingsTableViewController::row(VNLConfiguration configuration) const {
  return ui_->configurationList->item(static_cast<int>(configuration));
}

void VNLGlobalSettingsTableViewController::didSelectRow(int rowIndex) {
  const auto& rows = VNLGlobalSettingsPresenter::rows();
  if (rowIndex < 0 || rowIndex >= static_cast<int>(rows.size())) return;
  presenter_.didSelect(rows[static_cast<std::size_t>(rowIndex)]);
  showCheckMark();
}

void VNLGlobalSettingsTableViewController::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  if (event->spontaneous()) return;
  presenter_.viewWillAppear();
  showCheckMark();
}

void VNLGlobalSettingsTableViewController::showCheckMark() {
  for (const auto configuration : VNLGlobalSettingsPresenter::rows()) {
    row(configuration)->setIcon(checkMark(configuration == presenter_.currentConfiguration()));
  }
  ui_->configurationList->setCurrentItem(nullptr);
  ui_->configurationList->clearSelection();
}

}  // namespace varnel
