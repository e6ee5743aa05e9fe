#include "varnel/screens/GuestRenewalViewController.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QStackedWidget>
#include <QTextBrowser>
#include <QVBoxLayout>

namespace varnel {
namespace {

QLabel* pageHeading(const QString& text) {
  auto* label = new QLabel(QStringLiteral("<b>%1</b>").arg(text.toHtmlEscaped()));
  return label;
}

QTextBrowser* linkedRichText() {
  auto* browser = new QTextBrowser;
  browser->setOpenExternalLinks(true);
  return browser;
}

QString qtText(const std::string& value) { return QString::fromStdString(value); }

void fillRows(QListWidget& list, const QStringList& rows, int current) {
  const QSignalBlocker blocker(list);
  QStringList shown;
  for (int row = 0; row < list.count(); ++row) shown << list.item(row)->text();
  if (shown != rows) {
    list.clear();
    list.addItems(rows);
  }
  list.setCurrentRow(current);
}

/// Sets the HTML only when it changed, so that a redraw keeps the reader's place.
void showRenewalHtml(QTextBrowser& browser, const std::string& html) {
  const QString shown = QString::fromStdString(html);
  if (browser.property("varnelHtml").toString() == shown) return;
  browser.setProperty("varnelHtml", shown);
  browser.setHtml(shown);
}

}  // namespace

GuestRenewalViewController::GuestRenewalViewController(std::shared_ptr<KTVCParkResortContext> parkContext,
                                                       QWidget* parent)
    : QWidget(parent), pages_(new QStackedWidget), busy_(new QProgressBar), status_(new QLabel) {
  setWindowTitle(QStringLiteral("Guest renewal"));
  pages_->addWidget(makePassesPage());
  pages_->addWidget(makeCheckoutPage());
  pages_->addWidget(makeContractPage());
  pages_->addWidget(makeEndPage());
  busy_->setRange(0, 0);  // an indeterminate bar: busy, no percentage
  busy_->setMaximumHeight(8);
  busy_->setTextVisible(false);
  status_->setStyleSheet(QStringLiteral("color: #5f6368;"));
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(pages_, 1);
  layout->addWidget(busy_);
  layout->addWidget(status_);
  presenter_ = GuestRenewalPresenter::create(*this, std::move(parkContext));
}

GuestRenewalViewController::~GuestRenewalViewController() { presenter_->detach(); }

QWidget* GuestRenewalViewController::makePassesPage() {
  auto* page = new QWidget;
  auto* layout = new QVBoxLayout(page);
  passList_ = new QListWidget;
  passList_->setWordWrap(true);
  fullPlan_ = new QRadioButton(QStringLiteral("Pay in full"));
  monthlyPlan_ = new QRadioButton(QStringLiteral("Pay monthly"));
  auto* plans = new QButtonGroup(page);
  plans->addButton(fullPlan_);
  plans->addButton(monthlyPlan_);
  renewButton_ = new QPushButton(QStringLiteral("Renew"));
  auto* planRow = new QHBoxLayout;
  planRow->addWidget(fullPlan_);
  planRow->addWidget(monthlyPlan_);
  planRow->addStretch(1);
  planRow->addWidget(renewButton_);
  layout->addWidget(pageHeading(QStringLiteral("Your passes")));
  layout->addWidget(passList_, 1);
  layout->addWidget(pageHeading(QStringLiteral("Payment plan")));
  layout->addLayout(planRow);
  connect(passList_, &QListWidget::currentRowChanged, this, [this](int row) { presenter_->choosePass(row); });
  connect(monthlyPlan_, &QRadioButton::toggled, this, [this](bool on) { presenter_->setMonthlyPlan(on); });
  connect(renewButton_, &QPushButton::clicked, this, [this] { presenter_->renew(); });
  return page;
}

QWidget* GuestRenewalViewController::makeCheckoutPage() {
  auto* page = new QWidget;
  auto* layout = new QVBoxLayout(page);
  orderView_ = linkedRichText();
  termsView_ = linkedRichText();
  acceptBox_ = new QCheckBox(QStringLiteral("I accept the terms and conditions"));
  cardList_ = new QListWidget;
  cardList_->setMaximumHeight(76);
  securityCode_ = new QLineEdit;
  securityCode_->setEchoMode(QLineEdit::Password);
  securityCode_->setMaxLength(4);
  securityCode_->setPlaceholderText(QStringLiteral("Security code"));
  payButton_ = new QPushButton;
  payButton_->setDefault(true);
  auto* cancel = new QPushButton(QStringLiteral("Cancel"));
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(securityCode_);
  buttons->addStretch(1);
  buttons->addWidget(cancel);
  buttons->addWidget(payButton_);
  layout->addWidget(pageHeading(QStringLiteral("Your order")));
  layout->addWidget(orderView_, 3);
  layout->addWidget(pageHeading(QStringLiteral("Terms and conditions")));
  layout->addWidget(termsView_, 2);
  layout->addWidget(acceptBox_);
  layout->addWidget(pageHeading(QStringLiteral("Card")));
  layout->addWidget(cardList_);
  layout->addLayout(buttons);
  connect(acceptBox_, &QCheckBox::toggled, this, [this](bool on) { presenter_->setTermsAccepted(on); });
  connect(cardList_, &QListWidget::currentRowChanged, this, [this](int row) { presenter_->chooseCard(row); });
  connect(securityCode_, &QLineEdit::textChanged, this,
          [this](const QString& code) { presenter_->setSecurityCode(code.toStdString()); });
  connect(payButton_, &QPushButton::clicked, this, [this] { presenter_->pay(); });
  connect(cancel, &QPushButton::clicked, this, [this] { presenter_->cancel(); });
  cancelButtons_ << cancel;
  return page;
}

QWidget* GuestRenewalViewController::makeContractPage() {
  auto* page = new QWidget;
  auto* layout = new QVBoxLayout(page);
  contractView_ = linkedRichText();
  signBox_ = new QCheckBox(QStringLiteral("I sign the monthly-payment contract"));
  signAndPay_ = new QPushButton(QStringLiteral("Pay"));
  signAndPay_->setDefault(true);
  auto* cancel = new QPushButton(QStringLiteral("Cancel"));
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(signBox_);
  buttons->addStretch(1);
  buttons->addWidget(cancel);
  buttons->addWidget(signAndPay_);
  layout->addWidget(pageHeading(QStringLiteral("Monthly-payment contract")));
  layout->addWidget(contractView_, 1);
  layout->addLayout(buttons);
  connect(signBox_, &QCheckBox::toggled, this, [this](bool on) { presenter_->setContractSigned(on); });
  connect(signAndPay_, &QPushButton::clicked, this, [this] { presenter_->pay(); });
  connect(cancel, &QPushButton::clicked, this, [this] { presenter_->cancel(); });
  cancelButtons_ << cancel;
  return page;
}

QWidget* GuestRenewalViewController::makeEndPage() {
  auto* page = new QWidget;
  auto* layout = new QVBoxLayout(page);
  resultTitle_ = new QLabel;
  QFont larger = resultTitle_->font();
  larger.setPointSize(larger.pointSize() + 4);
  larger.setBold(true);
  resultTitle_->setFont(larger);
  banner_ = new QLabel;
  banner_->setWordWrap(true);
  banner_->setTextFormat(Qt::RichText);
  banner_->setStyleSheet(QStringLiteral(
      "QLabel { background: #fdecea; color: #611a15; border: 1px solid #f5c2c7; border-radius: 4px; padding: 8px; }"));
  resultView_ = linkedRichText();
  auto* again = new QPushButton(QStringLiteral("Back to the passes"));
  layout->addWidget(resultTitle_);
  layout->addWidget(banner_);
  layout->addWidget(resultView_, 1);
  layout->addWidget(again, 0, Qt::AlignRight);
  connect(again, &QPushButton::clicked, this, [this] { presenter_->startOver(); });
  return page;
}

void GuestRenewalViewController::renewalScreenChanged(const GuestRenewalScreen& screen) {
  using Page = GuestRenewalScreen::Page;
  const bool busy = !screen.busyStatus.empty();
  busy_->setVisible(busy);
  status_->setText(busy ? qtText(screen.busyStatus) : QString());

  QStringList passes;
  for (const GuestPassRow& pass : screen.passes) passes << qtText(pass.title + "\n" + pass.state);
  fillRows(*passList_, passes, screen.chosenPass);
  const bool monthlyAvailable =
      screen.chosenPass >= 0 && screen.passes[static_cast<std::size_t>(screen.chosenPass)].monthlyAvailable;
  {
    const QSignalBlocker full(fullPlan_);
    const QSignalBlocker monthly(monthlyPlan_);
    (screen.monthlyPlan ? monthlyPlan_ : fullPlan_)->setChecked(true);
    monthlyPlan_->setEnabled(monthlyAvailable && !busy);
  }
  passList_->setEnabled(!busy);
  for (QPushButton* cancel : cancelButtons_) cancel->setEnabled(!busy);
  renewButton_->setEnabled(screen.canRenew);

  showRenewalHtml(*orderView_, screen.orderHtml);
  showRenewalHtml(*termsView_, screen.termsHtml);
  {
    const QSignalBlocker accept(acceptBox_);
    acceptBox_->setChecked(screen.termsAccepted);
  }
  QStringList cards;
  for (const std::string& card : screen.cards) cards << qtText(card);
  fillRows(*cardList_, cards, screen.chosenCard);
  if (securityCode_->text() != qtText(screen.securityCode)) {
    const QSignalBlocker code(securityCode_);
    securityCode_->setText(qtText(screen.securityCode));
  }
  payButton_->setText(qtText(screen.payTitle));
  payButton_->setEnabled(screen.page == Page::checkout && screen.payEnabled);

  showRenewalHtml(*contractView_, screen.contractHtml);
  {
    const QSignalBlocker sign(signBox_);
    signBox_->setChecked(screen.contractSigned);
  }
  signAndPay_->setEnabled(screen.page == Page::contract && screen.payEnabled);

  resultTitle_->setText(qtText(screen.resultTitle));
  banner_->setVisible(screen.banner.has_value());
  if (screen.banner) {
    QString html = QStringLiteral("<b>%1</b><br>%2").arg(qtText(screen.banner->title).toHtmlEscaped(),
                                                         qtText(screen.banner->message).toHtmlEscaped());
    if (screen.banner->phoneNumber) html += QStringLiteral("<br>Call %1").arg(qtText(*screen.banner->phoneNumber).toHtmlEscaped());
    banner_->setText(html);
  }
  showRenewalHtml(*resultView_, screen.resultHtml);

  const int index = screen.page == Page::passes     ? 0
                    : screen.page == Page::checkout ? 1
                    : screen.page == Page::contract ? 2
                                                    : 3;
  pages_->setCurrentIndex(index);
}

}  // namespace varnel
