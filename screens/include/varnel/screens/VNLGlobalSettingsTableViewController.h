#pragma once
// The configuration-preset list: one row per VNLConfiguration with what its
// preset writes, a check mark on the configuration in force, and choosing a
// row writes its preset (VNLGlobalSettingsPresenter).

#include <QWidget>

#include <memory>

#include "varnel/screens/VNLGlobalSettingsPresenter.h"

class QListWidget;
class QListWidgetItem;

namespace Ui {
class VNLGlobalSettingsTableViewController;
}

namespace varnel {

class VNLGlobalSettingsTableViewController : public QWidget {
  Q_OBJECT

 public:
  explicit VNLGlobalSettingsTableViewController(QWidget* parent = nullptr);
  ~VNLGlobalSettingsTableViewController() override;

  QListWidget* tableView() const;
  /// The row of `configuration`; the list owns it.
  QListWidgetItem* row(VNLConfiguration configuration) const;
  QListWidgetItem* unknownConfigurationRow() const { return row(VNLConfiguration::unknown); }
  QListWidgetItem* tandpLegacyRow() const { return row(VNLConfiguration::legacy); }
  QListWidgetItem* tandpForRideslotRow() const { return row(VNLConfiguration::rideslot); }
  QListWidgetItem* tandpForAPRenewalsRow() const { return row(VNLConfiguration::apRenewals); }
  QListWidgetItem* tandpForZLT_4_5_Row() const { return row(VNLConfiguration::zlt_4_5); }
  QListWidgetItem* tandpForZLT_4_6_Row() const { return row(VNLConfiguration::zlt_4_6); }
  QListWidgetItem* tandpForOQS_4_5_Row() const { return row(VNLConfiguration::oqs_4_5); }
  QListWidgetItem* tandpForOQS_4_6_Row() const { return row(VNLConfiguration::oqs_4_6); }
  /// The row that carries the check mark.
  QListWidgetItem* currentCheckedRowCell() const { return row(currentConfiguration()); }
  VNLConfiguration currentConfiguration() const { return presenter_.currentConfiguration(); }

 public slots:
  /// Writes the chosen row's preset and moves the check mark to it.
  void didSelectRow(int row);

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  void showCheckMark();

  std::unique_ptr<Ui::VNLGlobalSettingsTableViewController> ui_;
  VNLGlobalSettingsPresenter presenter_;
};

}  // namespace varnel
