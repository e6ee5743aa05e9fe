#pragma once
// The business-requirement screen: the EVAS, commerce, renewal, upgrade and
// sales switches and the remote-value switch, kept in step with the commerce
// state machine (VNLBusinessRequirementPresenter).

#include <QWidget>

#include <memory>

#include "varnel/screens/VNLBusinessRequirementPresenter.h"

namespace Ui {
class VNLBusinessRequirementTableViewController;
}

namespace varnel {

class VNLSwitch;

class VNLBusinessRequirementTableViewController : public QWidget {
  Q_OBJECT

 public:
  explicit VNLBusinessRequirementTableViewController(QWidget* parent = nullptr);
  ~VNLBusinessRequirementTableViewController() override;

  std::shared_ptr<KTVCParkResortContext> parkContext() const { return presenter_.parkContext(); }
  void setParkContext(std::shared_ptr<KTVCParkResortContext> context);
  BusinessRequirementStateMachine* businessRequirementStateMachine() const {
    return presenter_.businessRequirementStateMachine();
  }

  VNLSwitch* evasSwitch() const;
  VNLSwitch* commerceKillSwitch() const;
  VNLSwitch* apRenwealSwitch() const;
  VNLSwitch* apUpgradeSwitch() const;
  VNLSwitch* apSalesSwitch() const;
  VNLSwitch* remoteValueSwitch() const;

  /// Settles the switches as on appearing.
  void viewWillAppear();

 public slots:
  /// A switch moved: the presenter records it, then every switch is redrawn.
  void switchBusinessRequirement(VNLBusinessRequirementSwitch requirement, bool isOn);

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  VNLSwitch* switchFor(VNLBusinessRequirementSwitch requirement) const;
  void showSwitches();

  std::unique_ptr<Ui::VNLBusinessRequirementTableViewController> ui_;
  VNLBusinessRequirementPresenter presenter_;
};

}  // namespace varnel
