#include "varnel/screens/VNLConfigurationViewController.h"

#include "ScreenLabels.h"
#include "ui_VNLConfigurationViewController.h"
#include "varnel/screens/VNLBusinessRequirementTableViewController.h"
#include "varnel/screens/VNLConfigurationPresenter.h"
#include "varnel/screens/VNLDebugStoryboard.h"
#include "varnel/screens/VNLNavigationController.h"

namespace varnel {

VNLConfigurationViewController::VNLConfigurationViewController(QWidget* parent)
    : QWidget(parent), ui_(std::make_unique<Ui::VNLConfigurationViewController>()) {
  ui_->setupUi(this);
  const std::pair<QLabel*, VNLMockSwitch> rows[] = {
      {ui_->mockEntitlementsLabel, VNLMockSwitch::entitlements},
      {ui_->mockCreateOrderLabel, VNLMockSwitch::createOrder},
      {ui_->mockContractLabel, VNLMockSwitch::contract},
      {ui_->mockEnvLabel, VNLMockSwitch::env},
      {ui_->pendingOrderHeaderLabel, VNLMockSwitch::pendingHeader},
      {ui_->env2ForCardsLabel, VNLMockSwitch::env2ForCards},
  };
  for (const auto& [label, mockSwitch] : rows) {
    screens_detail::showKeyUnderTitle(label, VNLConfigurationPresenter::keyFor(mockSwitch));
  }
  viewDidLoad();
  connect(ui_->mockEntitlementsSwitch, &VNLSwitch::toggled, this, &VNLConfigurationViewController::mockEntitlements);
  connect(ui_->mockCreateOrderSwitch, &VNLSwitch::toggled, this, &VNLConfigurationViewController::mockCreateOrderCall);
  connect(ui_->mockContractSwitch, &VNLSwitch::toggled, this, &VNLConfigurationViewController::mockContractEvent);
  connect(ui_->mockEnvSwitch, &VNLSwitch::toggled, this, &VNLConfigurationViewController::mockEnvEvent);
  connect(ui_->pendingOrderHeaderSwitch, &VNLSwitch::toggled, this,
          &VNLConfigurationViewController::sendPendingHeader);
  connect(ui_->env2ForCardsSwitch, &VNLSwitch::toggled, this, &VNLConfigurationViewController::turnEnv2OnForCards);
  connect(ui_->presetsButton, &QPushButton::clicked, this, &VNLConfigurationViewController::showPresets);
  connect(ui_->businessRequirementsButton, &QPushButton::clicked, this,
          &VNLConfigurationViewController::showBusinessRequirements);
  connect(ui_->serverErrorRoutingButton, &QPushButton::clicked, this,
          &VNLConfigurationViewController::showServerErrorRouting);
}

VNLConfigurationViewController::~VNLConfigurationViewController() = default;

VNLSwitch* VNLConfigurationViewController::mockEntitlementsSwitch() const { return ui_->mockEntitlementsSwitch; }
VNLSwitch* VNLConfigurationViewController::mockCreateOrderSwitch() const { return ui_->mockCreateOrderSwitch; }
VNLSwitch* VNLConfigurationViewController::mockContractSwitch() const { return ui_->mockContractSwitch; }
VNLSwitch* VNLConfigurationViewController::mockEnvSwitch() const { return ui_->mockEnvSwitch; }
VNLSwitch* VNLConfigurationViewController::pendingOrderHeaderSwitch() const { return ui_->pendingOrderHeaderSwitch; }
VNLSwitch* VNLConfigurationViewController::env2ForCardsSwitch() const { return ui_->env2ForCardsSwitch; }

void VNLConfigurationViewController::viewDidLoad() {
  ui_->mockEntitlementsSwitch->setOn(VNLConfigurationPresenter::storedValue(VNLMockSwitch::entitlements));
  ui_->mockCreateOrderSwitch->setOn(VNLConfigurationPresenter::storedValue(VNLMockSwitch::createOrder));
  ui_->mockContractSwitch->setOn(VNLConfigurationPresenter::storedValue(VNLMockSwitch::contract));
  ui_->mockEnvSwitch->setOn(VNLConfigurationPresenter::storedValue(VNLMockSwitch::env));
  ui_->pendingOrderHeaderSwitch->setOn(VNLConfigurationPresenter::storedValue(VNLMockSwitch::pendingHeader));
  ui_->env2ForCardsSwitch->setOn(VNLConfigurationPresenter::storedValue(VNLMockSwitch::env2ForCards));
}

void VNLConfigurationViewController::mockEntitlements(bool isOn) {
  VNLConfigurationPresenter::switchChanged(VNLMockSwitch::entitlements, isOn);
}
void VNLConfigurationViewController::mockCreateOrderCall(bool isOn) {
  VNLConfigurationPresenter::switchChanged(VNLMockSwitch::createOrder, isOn);
}
void VNLConfigurationViewController::mockContractEvent(bool isOn) {
  VNLConfigurationPresenter::switchChanged(VNLMockSwitch::contract, isOn);
}
void VNLConfigurationViewController::mockEnvEvent(bool isOn) {
  VNLConfigurationPresenter::switchChanged(VNLMockSwitch::env, isOn);
}
void VNLConfigurationViewController::sendPendingHeader(bool isOn) {
  VNLConfigurationPresenter::switchChanged(VNLMockSwitch::pendingHeader, isOn);
}
void VNLConfigurationViewController::turnEnv2OnForCards(bool isOn) {
  VNLConfigurationPresenter::switchChanged(VNLMockSwitch::env2ForCards, isOn);
}

void VNLConfigurationViewController::showPresets() {
  VNLNavigationController::showScreen(
      this, VNLDebugStoryboard().instantiateViewControllerWithIdentifier(VNLDebugStoryboard::kPresetsIdentifier));
}

void VNLConfigurationViewController::showBusinessRequirements() {
  auto screen =
      VNLDebugStoryboard().instantiateViewControllerWithIdentifier(VNLDebugStoryboard::kBusinessRequirementsIdentifier);
  if (auto* requirements = qobject_cast<VNLBusinessRequirementTableViewController*>(screen.get())) {
    requirements->setParkContext(parkContext_);
  }
  VNLNavigationController::showScreen(this, std::move(screen));
}

void VNLConfigurationViewController::showServerErrorRouting() {
  VNLNavigationController::showScreen(this, VNLDebugStoryboard().instantiateViewControllerWithIdentifier(
                                          VNLDebugStoryboard::kServerErrorRoutingIdentifier));
}

}  // namespace varnel
