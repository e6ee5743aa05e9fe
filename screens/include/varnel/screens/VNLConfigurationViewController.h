#pragma once
// The mock-switch screen, the first of the tester screens: six switches, each
// kept in the user-defaults store under its key (VNLConfigurationPresenter),
// and the way to the preset, business-requirement and server-error routing
// screens.

#include <QWidget>

#include <memory>

#include "varnel/host/KTVCParkResortContext.h"
#include "varnel/screens/VNLConfigurationPresenter.h"

namespace Ui {
class VNLConfigurationViewController;
}

namespace varnel {

class VNLSwitch;

class VNLConfigurationViewController : public QWidget {
  Q_OBJECT

 public:
  explicit VNLConfigurationViewController(QWidget* parent = nullptr);
  ~VNLConfigurationViewController() override;

  VNLSwitch* mockEntitlementsSwitch() const;
  VNLSwitch* mockCreateOrderSwitch() const;
  VNLSwitch* mockContractSwitch() const;
  VNLSwitch* mockEnvSwitch() const;
  VNLSwitch* pendingOrderHeaderSwitch() const;
  VNLSwitch* env2ForCardsSwitch() const;

  /// The park the host shows; handed on to the business-requirement screen.
  std::shared_ptr<KTVCParkResortContext> parkContext() const { return parkContext_; }
  void setParkContext(std::shared_ptr<KTVCParkResortContext> context) { parkContext_ = std::move(context); }

 public slots:
  // Each stores the switch's state and synchronises the store.
  void mockEntitlements(bool isOn);
  void mockCreateOrderCall(bool isOn);
  void mockContractEvent(bool isOn);
  void mockEnvEvent(bool isOn);
  void sendPendingHeader(bool isOn);
  void turnEnv2OnForCards(bool isOn);

  // Open the other screens over this one.
  void showPresets();
  void showBusinessRequirements();
  void showServerErrorRouting();

 private:
  /// Sets every switch from the store.
  void viewDidLoad();
  VNLSwitch* switchFor(VNLMockSwitch mockSwitch) const;

  std::unique_ptr<Ui::VNLConfigurationViewController> ui_;
  std::shared_ptr<KTVCParkResortContext> parkContext_;
};

}  // namespace varnel
