#pragma once
// The guest's renewal in a window: a page for the passes and the plan, one
// for the order with its terms and the card, one for the monthly contract,
// and one for the end (the confirmation or the guest's banner), with a status
// line and a busy indicator while a request is in flight. What it does lives
// in GuestRenewalPresenter; this widget only draws its GuestRenewalScreen and
// hands the clicks over. The renewal's requests go out on the host's
// networking; its answers arrive on the registered MainQueue, which must be
// the Qt event loop (QtMainQueue).

#include <QList>
#include <QWidget>

#include <memory>

#include "varnel/screens/GuestRenewalPresenter.h"

class QButtonGroup;
class QCheckBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QProgressBar;
class QPushButton;
class QRadioButton;
class QStackedWidget;
class QTextBrowser;

namespace varnel {

class GuestRenewalViewController : public QWidget, public GuestRenewalView {
  Q_OBJECT

 public:
  explicit GuestRenewalViewController(std::shared_ptr<KTVCParkResortContext> parkContext, QWidget* parent = nullptr);
  ~GuestRenewalViewController() override;

  GuestRenewalPresenter& presenter() const { return *presenter_; }

  QListWidget* passList() const { return passList_; }
  QRadioButton* fullPlanButton() const { return fullPlan_; }
  QRadioButton* monthlyPlanButton() const { return monthlyPlan_; }
  QPushButton* renewButton() const { return renewButton_; }
  QTextBrowser* orderView() const { return orderView_; }
  QTextBrowser* termsView() const { return termsView_; }
  QCheckBox* acceptBox() const { return acceptBox_; }
  QListWidget* cardList() const { return cardList_; }
  QLineEdit* securityCodeField() const { return securityCode_; }
  QPushButton* payButton() const { return payButton_; }
  QTextBrowser* contractView() const { return contractView_; }
  QCheckBox* signBox() const { return signBox_; }
  QPushButton* signAndPayButton() const { return signAndPay_; }
  QLabel* resultTitle() const { return resultTitle_; }
  QLabel* bannerLabel() const { return banner_; }
  QTextBrowser* resultView() const { return resultView_; }
  QLabel* statusLine() const { return status_; }

  // GuestRenewalView
  void renewalScreenChanged(const GuestRenewalScreen& screen) override;

 private:
  QWidget* makePassesPage();
  QWidget* makeCheckoutPage();
  QWidget* makeContractPage();
  QWidget* makeEndPage();

  QStackedWidget* pages_;
  QListWidget* passList_;
  QRadioButton* fullPlan_;
  QRadioButton* monthlyPlan_;
  QPushButton* renewButton_;
  QTextBrowser* orderView_;
  QTextBrowser* termsView_;
  QCheckBox* acceptBox_;
  QListWidget* cardList_;
  QLineEdit* securityCode_;
  QPushButton* payButton_;
  QTextBrowser* contractView_;
  QCheckBox* signBox_;
  QPushButton* signAndPay_;
  QLabel* resultTitle_;
  QLabel* banner_;
  QTextBrowser* resultView_;
  /// The Cancel buttons of the checkout and contract pages.
  QList<QPushButton*> cancelButtons_;
  QProgressBar* busy_;
  QLabel* status_;
  std::shared_ptr<GuestRenewalPresenter> presenter_;
};

}  // namespace varnel
