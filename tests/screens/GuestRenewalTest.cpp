// The guest's renewal screen driven by clicks against the mock commerce
// server on loopback, its answers arriving on the Qt event loop.

#include <QCheckBox>
#include <QDeadlineTimer>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <QTextBrowser>

#include <functional>

#include "ScreenTestSupport.h"
#include "support/QuickNetworking.h"
#include "varnel/errors/VNLPhoneUtility.h"
#include "varnel/host/ENTMEntitlementsManager.h"
#include "varnel/host/KTVRLocalization.h"
#include "varnel/mock/MockCommerceServer.h"
#include "varnel/screens/GuestRenewalViewController.h"
#include "varnel/screens/QtPlatform.h"
#include "varnel/standalone/FileEntitlementsManager.h"
#include "varnel/standalone/GuestDataFile.h"
#include "varnel/standalone/StaticAuthenticationService.h"
#include "varnel/standalone/StringTableLocalization.h"

namespace varnel::testing {
namespace {

using Page = GuestRenewalScreen::Page;

bool waitFor(const std::function<bool()>& condition) {
  const QDeadlineTimer deadline(60000);
  while (!condition()) {
    if (deadline.hasExpired()) return false;
    QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
  }
  return true;
}

class GuestRenewalTest : public ScreenTest {
 protected:
  void SetUp() override {
    ScreenTest::SetUp();
    const auto file = std::filesystem::path(VARNEL_TEST_RESOURCE_DIR) / "guests" / "sample-guest.json";
    auto read = standalone::readGuestDataFile(file);
    ASSERT_TRUE(read.ok());
    guest = read.value();
    auto manager = standalone::FileEntitlementsManager::open(file);
    ASSERT_TRUE(manager.ok());
    host::Registry::set<ENTMEntitlementsManager>(manager.value());
    host::Registry::set<KTVRAuthenticationService>(
        std::make_shared<standalone::StaticAuthenticationService>(guest.kuid, guest.email));
    host::Registry::set<KTVRUserProfileAuthentication>(std::make_shared<standalone::StaticUserProfile>(guest.email));
    host::Registry::set<KTVRLocalization>(std::make_shared<standalone::StringTableLocalization>());
    host::Registry::set<MainQueue>(std::make_shared<QtMainQueue>());
    restart();
  }
  void TearDown() override {
    stop();
    ScreenTest::TearDown();
  }

  /// A fresh household (nothing renewed yet) on a new server, and a new screen.
  void restart() {
    stop();
    auto started = mock::MockCommerceServer::start(
        {.guest = guest, .faults = {}, .routes = {}, .routeFaults = {}, .requestLog = {}});
    ASSERT_TRUE(started.ok());
    server = std::move(started.value());
    networking = installQuickNetworking(server->baseUrl(), guest.accessToken);
    screen = std::make_unique<GuestRenewalViewController>(park);
    screen->resize(480, 720);
    screen->show();
  }
  void stop() {
    screen.reset();
    if (networking.client) settleNetworking(*networking.client);
    QCoreApplication::processEvents();
    standalone::uninstallStandaloneNetworking();
    networking = {};
    if (server) server->stop();
    server.reset();
  }

  const GuestRenewalScreen& state() const { return screen->presenter().screen(); }
  bool reached(Page page) const {
    return waitFor([&] { return state().page == page && state().busyStatus.empty(); });
  }
  void click(QWidget* widget) { QTest::mouseClick(widget, Qt::LeftButton, {}, QPoint(8, widget->height() / 2)); }
  void clickRow(QListWidget* list, const std::string& containing) {
    for (int row = 0; row < list->count(); ++row) {
      if (!list->item(row)->text().contains(QString::fromStdString(containing))) continue;
      QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(list->item(row)).center());
      return;
    }
    ADD_FAILURE() << "no row with " << containing;
  }
  /// Renews the chosen pass up to the checkout page with `card` and the terms accepted.
  void order(bool monthly, const std::string& card) {
    ASSERT_TRUE(reached(Page::passes));
    EXPECT_EQ(state().passes[static_cast<std::size_t>(state().chosenPass)].passId, "AP-100201");
    click(monthly ? screen->monthlyPlanButton() : screen->fullPlanButton());
    click(screen->renewButton());
    EXPECT_FALSE(screen->renewButton()->isEnabled());
    ASSERT_TRUE(reached(Page::checkout));
    EXPECT_TRUE(screen->orderView()->toPlainText().contains("Total"));
    EXPECT_FALSE(screen->termsView()->toPlainText().trimmed().isEmpty()) << "the terms are shown";
    EXPECT_FALSE(screen->termsView()->toPlainText().contains('<')) << "rendered, not shown as markup";
    EXPECT_FALSE(screen->payButton()->isEnabled()) << "not before the terms are accepted";
    click(screen->acceptBox());
    clickRow(screen->cardList(), card);
    QTest::keyClicks(screen->securityCodeField(), "123");
    EXPECT_TRUE(screen->payButton()->isEnabled());
  }
  int totalCharges() const {
    int total = 0;
    for (const auto& [order, count] : server->charges()) total += count;
    return total;
  }

  standalone::GuestData guest;
  std::shared_ptr<KTVCParkResortContext> park = std::make_shared<KTVCParkResortContext>(kResortChoiceEast);
  std::unique_ptr<mock::MockCommerceServer> server;
  standalone::StandaloneNetworking networking;
  std::unique_ptr<GuestRenewalViewController> screen;
};

struct RenewalCase {
  const char* name;
  bool monthly;
  const char* card;
  /// A second click on Pay (and a second pay() call) while the checkout is in flight.
  bool doubleClick;
  /// A fault of the checkout endpoint; none when empty.
  const char* checkoutFault;
  Page end;
  int charges;
};

TEST_F(GuestRenewalTest, RenewalsEndInAConfirmationOrTheGuestsBannerWithOneChargeAtMost) {
  const RenewalCase cases[] = {
      {"paid in full", false, "CARD-REF-0001", false, "", Page::confirmation, 1},
      {"monthly with its contract", true, "CARD-REF-0001", false, "", Page::confirmation, 1},
      {"declined card", false, "CARD-REF-0003", false, "", Page::banner, 0},
      {"double click on Pay", false, "CARD-REF-0002", true, "delay:300*1", Page::confirmation, 1},
      {"answer lost after the charge", false, "CARD-REF-0001", false, "reset-after", Page::banner, 1},
  };
  for (const RenewalCase& each : cases) {
    SCOPED_TRACE(each.name);
    restart();
    if (*each.checkoutFault) {
      const auto fault = mock::EndpointFault::parse(std::string("create-order-purchase=") + each.checkoutFault);
      ASSERT_TRUE(fault.ok());
      ASSERT_FALSE(server->setFault(fault.value()));
    }
    order(each.monthly, each.card);
    click(screen->payButton());
    if (each.monthly) {
      ASSERT_TRUE(reached(Page::contract));
      const QString contract = screen->contractView()->toPlainText();
      EXPECT_FALSE(contract.trimmed().isEmpty());
      EXPECT_FALSE(contract.contains("<p>")) << "rendered, not shown as markup";
      EXPECT_TRUE(state().contractHtml.find("<a href=") != std::string::npos) << "the contract's links";
      EXPECT_FALSE(screen->signAndPayButton()->isEnabled()) << "not before it is signed";
      click(screen->signBox());
      click(screen->signAndPayButton());
    }
    if (each.doubleClick) {
      EXPECT_FALSE(screen->payButton()->isEnabled()) << "off while the checkout is in flight";
      click(screen->payButton());
      screen->presenter().pay();
    }
    ASSERT_TRUE(reached(each.end));
    EXPECT_EQ(totalCharges(), each.charges);
    EXPECT_EQ(state().outcome == RenewalOutcome::Kind::unknown, std::string_view(each.checkoutFault) == "reset-after");
    if (each.end == Page::confirmation) {
      const QString result = screen->resultView()->toPlainText();
      EXPECT_TRUE(result.contains("BOOKED")) << result.toStdString();
      EXPECT_TRUE(result.contains("Confirmation number"));
      EXPECT_TRUE(result.contains(QString::fromStdString(each.card == std::string("CARD-REF-0002") ? "4444" : "1111")));
      EXPECT_FALSE(screen->bannerLabel()->isVisible());
    } else if (state().outcome == RenewalOutcome::Kind::unknown) {
      EXPECT_TRUE(screen->resultTitle()->text().contains("being confirmed"));
      EXPECT_TRUE(screen->resultView()->toPlainText().contains("not be charged twice"));
    } else {
      ASSERT_TRUE(state().banner);
      const auto phone = VNLPhoneUtility::APPhoneNumber(APError::PAYMENT_DECLINED, kResortChoiceEast);
      ASSERT_TRUE(phone);
      EXPECT_NE(state().banner->message.find(*phone), std::string::npos) << state().banner->message;
      EXPECT_TRUE(screen->bannerLabel()->isVisible());
      EXPECT_TRUE(screen->bannerLabel()->text().contains(QString::fromStdString(*phone)));
    }
  }
}

TEST_F(GuestRenewalTest, ClosingTheWindowDuringTheCheckoutCallsNothingBackAndChargesOnce) {
  ASSERT_FALSE(server->setFault(mock::EndpointFault::parse("create-order-purchase=delay:300*1").value()));
  order(false, "CARD-REF-0001");
  const std::weak_ptr<GuestRenewalPresenter> presenter = screen->presenter().weak_from_this();
  click(screen->payButton());
  ASSERT_TRUE(waitFor([&] { return state().busyStatus == GuestRenewalPresenter::stepStatus(RenewalStep::checkout); }));
  screen.reset();
  ASSERT_TRUE(waitFor([&] { return totalCharges() == 1; })) << "the checkout went through";
  settleNetworking(*networking.client);
  EXPECT_TRUE(waitFor([&] { return presenter.expired(); })) << "the released flow let its delegate go";
  QCoreApplication::processEvents();
  EXPECT_EQ(totalCharges(), 1);
}

}  // namespace
}  // namespace varnel::testing
