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

VNLSwitch* VNLConfigurationViewController::mockEntitlementsSwitch() const { return switchFor(VNLMockSwitch::entitlements); }
VNLSwitch* VNLConfigurationViewController::mockCreateOrderSwitch() const { return switchFor(VNLMockSwitch::createOrder); }
VNLSwitch* VNLConfigurationViewController::mockContractSwitch() const { return switchFor(VNLMockSwitch::contract); }
VNLSwitch* VNLConfigurationViewController::mockEnvSwitch() const { return switchFor(VNLMockSwitch::env); }
VNLSwitch* VNLConfigurationViewController::pendingOrderHeaderSwitch() const {
  return switchFor(VNLMockSwitch::pendingHeader);
}
VNLSwitch* VNLConfigurationViewController::env2ForCardsSwitch() const { return switchFor(VNLMockSwitch::env2ForCards); }

VNLSwitch* VNLConfigurationViewController::switchFor(VNLMockSwitch mockSwitch) const {
  switch (mockSwitch) {
    case VNLMockSwitch::entitlements: return ui_->mockEntitlementsSwitch;
    case VNLMockSwitch::createOrder: return ui_->mockCreateOrderSwitch;
    case VNLMockSwitch::contract: return ui_->mockContractSwitch;
    case VNLMockSwitch::env: return ui_->mockEnvSwitch;
    case VNLMockSwitch::pendingHeader: return ui_->pendingOrderHeaderSwitch;
    case VNLMockSwitch::env2ForCards: return ui_->env2ForCardsSwitch;
  }
  return nullptr;
}

void VNLConfigurationViewController::viewDidLoad() {
  for (VNLMockSwitch mockSwitch : kAllVNLMockSwitches) {
    switchFor(mockSwitch)->setOn(VNLConfigurationPresenter::storedValue(mockSwitch));
  }
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
