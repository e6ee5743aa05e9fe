#include "varnel/screens/VNLBusinessRequirementTableViewController.h"

#include <QShowEvent>

#include <typeinfo>

#include "ScreenLabels.h"
#include "ui_VNLBusinessRequirementTableViewController.h"

namespace varnel {
namespace {

using Switch = VNLBusinessRequirementSwitch;

constexpr Switch kAllSwitches[] = {Switch::evas,     Switch::commerce, Switch::renewals,
                                   Switch::upgrades, Switch::sales,    Switch::remoteValue};

QString stateName(const GKStateMachine* machine) {
  const auto current = machine ? machine->currentState() : nullptr;
  if (!current) return QStringLiteral("none");
  if (typeid(*current) == typeid(CommerceOnState)) return QStringLiteral("commerce on");
  if (typeid(*current) == typeid(CommerceOffState)) return QStringLiteral("commerce off");
  return QStringLiteral("EVAS off");
}

}  // namespace

VNLBusinessRequirementTableViewController::VNLBusinessRequirementTableViewController(QWidget* parent)
    : QWidget(parent), ui_(std::make_unique<Ui::VNLBusinessRequirementTableViewController>()) {
  ui_->setupUi(this);
  const std::pair<QLabel*, Switch> rows[] = {
      {ui_->evasLabel, Switch::evas},         {ui_->commerceLabel, Switch::commerce},
      {ui_->renewalsLabel, Switch::renewals}, {ui_->upgradesLabel, Switch::upgrades},
      {ui_->salesLabel, Switch::sales},
  };
  for (const auto& [label, requirement] : rows) {
    screens_detail::showKeyUnderTitle(label, VNLBusinessRequirementPresenter::localKeyFor(requirement));
  }
  for (const auto requirement : kAllSwitches) {
    connect(switchFor(requirement), &VNLSwitch::toggled, this,
            [this, requirement](bool isOn) { switchBusinessRequirement(requirement, isOn); });
  }
  showSwitches();
}

VNLBusinessRequirementTableViewController::~VNLBusinessRequirementTableViewController() = default;

void VNLBusinessRequirementTableViewController::setParkContext(std::shared_ptr<KTVCParkResortContext> context) {
  presenter_.setParkContext(std::move(context));
}

VNLSwitch* VNLBusinessRequirementTableViewController::evasSwitch() const { return ui_->evasSwitch; }
VNLSwitch* VNLBusinessRequirementTableViewController::commerceKillSwitch() const { return ui_->commerceKillSwitch; }
VNLSwitch* VNLBusinessRequirementTableViewController::apRenwealSwitch() const { return ui_->apRenwealSwitch; }
VNLSwitch* VNLBusinessRequirementTableViewController::apUpgradeSwitch() const { return ui_->apUpgradeSwitch; }
VNLSwitch* VNLBusinessRequirementTableViewController::apSalesSwitch() const { return ui_->apSalesSwitch; }
VNLSwitch* VNLBusinessRequirementTableViewController::remoteValueSwitch() const { return ui_->remoteValueSwitch; }

VNLSwitch* VNLBusinessRequirementTableViewController::switchFor(Switch requirement) const {
  switch (requirement) {
    case Switch::evas: return ui_->evasSwitch;
    case Switch::commerce: return ui_->commerceKillSwitch;
    case Switch::renewals: return ui_->apRenwealSwitch;
    case Switch::upgrades: return ui_->apUpgradeSwitch;
    case Switch::sales: return ui_->apSalesSwitch;
    case Switch::remoteValue: return ui_->remoteValueSwitch;
  }
  return nullptr;
}

void VNLBusinessRequirementTableViewController::viewWillAppear() {
  presenter_.viewWillAppear();
  showSwitches();
}

void VNLBusinessRequirementTableViewController::switchBusinessRequirement(Switch requirement, bool isOn) {
  presenter_.switchBusinessRequirement(requirement, isOn);
  showSwitches();
}

void VNLBusinessRequirementTableViewController::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  if (!event->spontaneous()) viewWillAppear();
}

void VNLBusinessRequirementTableViewController::showSwitches() {
  for (const auto requirement : kAllSwitches) {
    const auto& state = presenter_.switchState(requirement);
    switchFor(requirement)->setOn(state.isOn);
    switchFor(requirement)->setEnabled(state.isEnabled);
  }
  ui_->stateLabel->setText(QStringLiteral("Commerce state: ") + stateName(businessRequirementStateMachine()));
}

}  // namespace varnel
