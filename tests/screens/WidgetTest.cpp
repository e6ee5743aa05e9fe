// The tester screens as widgets on the offscreen platform: clicks reach the
// store, the check mark and the switches, and the routing screen talks to the
// mock commerce server on loopback.

#include <QDeadlineTimer>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <QToolButton>

#include <functional>

#include "ScreenTestSupport.h"
#include "mockcommerce/MockCommerceTestSupport.h"
#include "varnel/mock/MockCommerceServer.h"
#include "varnel/mock/MockFault.h"
#include "varnel/screens/ServerErrorRoutingDebugViewController.h"
#include "varnel/screens/VNLBusinessRequirementTableViewController.h"
#include "varnel/screens/VNLConfigurationBrick.h"
#include "varnel/screens/VNLConfigurationViewController.h"
#include "varnel/screens/VNLDebugStoryboard.h"
#include "varnel/screens/VNLGlobalSettingsPresenter.h"
#include "varnel/screens/VNLGlobalSettingsTableViewController.h"
#include "varnel/screens/VNLNavigationController.h"
#include "varnel/screens/VNLSwitch.h"
#include "varnel/settings/VNLCommerceSettings.h"

namespace varnel::testing {
namespace {

/// Runs the event loop until `condition` holds; false if it never did.
bool waitUntil(const std::function<bool()>& condition) {
  const QDeadlineTimer deadline(30000);
  while (!condition()) {
    if (deadline.hasExpired()) return false;
    QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
  }
  return true;
}

bool hasCheckMark(const QListWidgetItem* row) {
  const QImage image = row->icon().pixmap(18, 18).toImage();
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      if (qAlpha(image.pixel(x, y)) > 0) return true;
    }
  }
  return false;
}

class WidgetTest : public ScreenTest {};

TEST_F(WidgetTest, MockSwitchesShowTheStoreAndAClickWritesTheirKey) {
  defaults->setBool("VarnelContractMockKey", true);
  VNLConfigurationViewController screen;
  screen.show();
  const std::pair<VNLSwitch* (VNLConfigurationViewController::*)() const, const char*> rows[] = {
      {&VNLConfigurationViewController::mockEntitlementsSwitch, "VarnelEntitlementMockKey"},
      {&VNLConfigurationViewController::mockCreateOrderSwitch, "VarnelCreateOrderMockKey"},
      {&VNLConfigurationViewController::mockContractSwitch, "VarnelContractMockKey"},
      {&VNLConfigurationViewController::mockEnvSwitch, "VarnelENV2HeaderKey"},
      {&VNLConfigurationViewController::pendingOrderHeaderSwitch, "VarnelPendingOrderHeader"},
      {&VNLConfigurationViewController::env2ForCardsSwitch, "VarnelENV2ForPaymentCards"},
  };
  for (const auto& [accessor, key] : rows) {
    SCOPED_TRACE(key);
    VNLSwitch* control = (screen.*accessor)();
    const bool wasOn = std::string_view(key) == "VarnelContractMockKey";
    EXPECT_EQ(control->isOn(), wasOn) << "nothing stored reads as off";
    for (const bool on : {!wasOn, wasOn}) {
      const int synchronisedBefore = defaults->synchronizeCount;
      QTest::mouseClick(control, Qt::LeftButton);
      EXPECT_EQ(control->isOn(), on);
      EXPECT_EQ(defaults->objectForKey(key), DefaultsValue(on)) << "a boolean under the switch's key";
      EXPECT_EQ(defaults->synchronizeCount, synchronisedBefore + 1);
    }
  }
  EXPECT_EQ(defaults->dictionaryRepresentation().size(), std::size(rows)) << "one key per switch";
}

TEST_F(WidgetTest, ChoosingAPresetMovesTheCheckMarkAndWritesThePreset) {
  VNLCommerceSettings::setDefaultsFor(VNLConfiguration::legacy);
  VNLGlobalSettingsTableViewController screen;
  screen.show();
  EXPECT_EQ(screen.currentCheckedRowCell(), screen.tandpLegacyRow());

  QListWidget* table = screen.tableView();
  const QRect rideslot = table->visualItemRect(screen.tandpForRideslotRow());
  QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, rideslot.center());
  EXPECT_EQ(screen.currentCheckedRowCell(), screen.tandpForRideslotRow());
  EXPECT_EQ(VNLCommerceSettings::currentConfiguration(), VNLConfiguration::rideslot);
  EXPECT_EQ(log->count("Will configure for \"Rideslot\""), 1u);
  EXPECT_EQ(log->lines().back().site.function, "_didChangeSelection(to:)");
  for (int i = 0; i < table->count(); ++i) {
    EXPECT_EQ(hasCheckMark(table->item(i)), table->item(i) == screen.tandpForRideslotRow()) << "row " << i;
  }
  EXPECT_EQ(VNLGlobalSettingsPresenter::detailFor(VNLConfiguration::rideslot),
            "EVAS on, bring-pass alert hidden, coloured passes");

  // zlt_4_6 writes the renewal preset; unknown writes nothing but takes the mark.
  VNLGlobalSettingsPresenter presets;
  presets.didSelect(VNLConfiguration::zlt_4_6);
  EXPECT_EQ(VNLCommerceSettings::currentConfiguration(), VNLConfiguration::apRenewals);
  const auto stored = defaults->dictionaryRepresentation();
  const int synchronised = defaults->synchronizeCount;
  presets.didSelect(VNLConfiguration::unknown);
  EXPECT_EQ(presets.currentConfiguration(), VNLConfiguration::unknown);
  EXPECT_EQ(defaults->dictionaryRepresentation(), stored);
  EXPECT_EQ(defaults->synchronizeCount, synchronised);
}

TEST_F(WidgetTest, BusinessRequirementSwitchesAreEnabledByTheCommerceState) {
  VNLBusinessRequirementTableViewController screen;
  screen.setParkContext(std::make_shared<KTVCParkResortContext>());
  screen.show();
  // The initial local table: EVAS on, the annual-pass switches off and disabled.
  EXPECT_TRUE(screen.evasSwitch()->isOn());
  EXPECT_TRUE(screen.commerceKillSwitch()->isEnabled());
  for (VNLSwitch* control : {screen.commerceKillSwitch(), screen.apRenwealSwitch(), screen.apUpgradeSwitch(),
                             screen.apSalesSwitch()}) {
    EXPECT_FALSE(control->isOn());
  }
  for (VNLSwitch* control : {screen.apRenwealSwitch(), screen.apUpgradeSwitch(), screen.apSalesSwitch()}) {
    EXPECT_FALSE(control->isEnabled());
  }

  QTest::mouseClick(screen.commerceKillSwitch(), Qt::LeftButton);
  EXPECT_TRUE(screen.apRenwealSwitch()->isEnabled());
  QTest::mouseClick(screen.apRenwealSwitch(), Qt::LeftButton);
  EXPECT_TRUE(VNLBusinessRequirementUtil::localValue("com.orvane.enableAnnualPassportRenewals"));

  QTest::mouseClick(screen.evasSwitch(), Qt::LeftButton);
  EXPECT_FALSE(screen.commerceKillSwitch()->isEnabled());
  EXPECT_FALSE(screen.apRenwealSwitch()->isOn());
  QTest::mouseClick(screen.commerceKillSwitch(), Qt::LeftButton);
  EXPECT_FALSE(screen.commerceKillSwitch()->isOn()) << "a disabled switch does not move";
}

TEST_F(WidgetTest, BrickOpensTheConfigurationScreenFromTheModulesBundle) {
  VNLConfigurationBrick brick;
  EXPECT_EQ(brick.localizedTitle(), "Varnel Config");
  EXPECT_EQ(brick.supportedBrickNames(), std::vector<std::string>{"VNLConfigurationBrick"});
  auto brickContext = std::make_shared<KTVCParkResortContext>(kResortChoiceWest);
  brick.setParkContext(brickContext);
  FakeInvocation invocation;

  auto lookup = std::make_shared<FakeBundleLookup>();
  host::Registry::set<PLNTBundleLookup>(lookup);
  EXPECT_EQ(brick.configurationViewController(invocation), nullptr) << "no bundle, no screen";
  lookup->bundles = {{"Other", "/nowhere"}};
  EXPECT_EQ(brick.configurationViewController(invocation), nullptr);
  EXPECT_EQ(lookup->asked, (std::vector<std::string>{"Varnel", "Varnel"}));

  lookup->bundles.push_back({"Varnel", "/resources"});
  const auto screen = brick.configurationViewController(invocation);
  auto* configuration = qobject_cast<VNLConfigurationViewController*>(screen.get());
  ASSERT_NE(configuration, nullptr);
  EXPECT_EQ(configuration->parkContext(), brickContext);
  invocation.context = std::make_shared<KTVCParkResortContext>();
  const auto fromInvocation = brick.configurationViewController(invocation);
  EXPECT_EQ(qobject_cast<VNLConfigurationViewController*>(fromInvocation.get())->parkContext(), invocation.context);

  EXPECT_FALSE(VNLDebugStoryboard::storyboardWithName("Main", {"Varnel", "/resources"}));
  for (const auto identifier : VNLDebugStoryboard::kIdentifiers) {
    const auto made = VNLDebugStoryboard().instantiateViewControllerWithIdentifier(identifier);
    ASSERT_NE(made, nullptr) << identifier;
    EXPECT_EQ(std::string(made->metaObject()->className()), "varnel::" + std::string(identifier));
  }
  EXPECT_EQ(VNLDebugStoryboard().instantiateViewControllerWithIdentifier("Nothing"), nullptr);
}

TEST_F(WidgetTest, ConfigurationScreenOpensTheOthersInItsNavigation) {
  auto context = std::make_shared<KTVCParkResortContext>();
  VNLNavigationController navigation;
  auto configuration = std::make_unique<VNLConfigurationViewController>();
  configuration->setParkContext(context);
  auto* root = configuration.get();
  navigation.push(std::move(configuration));
  navigation.show();

  QTest::mouseClick(root->findChild<QPushButton*>("businessRequirementsButton"), Qt::LeftButton);
  ASSERT_EQ(navigation.depth(), 2);
  auto* requirements = qobject_cast<VNLBusinessRequirementTableViewController*>(navigation.topViewController());
  ASSERT_NE(requirements, nullptr);
  EXPECT_EQ(requirements->parkContext(), context);
  EXPECT_NE(requirements->businessRequirementStateMachine(), nullptr) << "it appeared with the park context";

  QTest::mouseClick(navigation.findChild<QToolButton*>("backButton"), Qt::LeftButton);
  EXPECT_EQ(navigation.depth(), 1);
  EXPECT_EQ(navigation.topViewController(), root);
}

// The mock commerce server's routing service knows the typed user: an answer
// shows only when the lookup named that user as typed.
TEST_F(WidgetTest, RoutingScreenLooksUpTheTypedUserAtTheMockServer) {
  mock::MockCommerceOptions options;
  options.guest = mock::testing::sampleGuest();
  options.routes = {mock::Route::parse("jane doe=/orders,E500").value()};
  auto server = mock::MockCommerceServer::start(std::move(options));
  ASSERT_TRUE(server.ok());
  ServerErrorRoutingPresenter::setMockServerAddress(server.value()->baseUrl() + "/");
  ServerErrorRoutingDebugViewController screen;
  screen.show();
  EXPECT_FALSE(screen.useServerErrorRoutingSwitch()->isOn());
  EXPECT_TRUE(screen.usernameField()->isHidden());
  EXPECT_TRUE(screen.testRoutingButton()->isHidden());
  EXPECT_TRUE(screen.resultTextField()->isHidden());

  QTest::mouseClick(screen.useServerErrorRoutingSwitch(), Qt::LeftButton);
  EXPECT_FALSE(screen.usernameField()->isHidden());
  EXPECT_EQ(defaults->objectForKey("ServerErrorRoutingUseFeature"), DefaultsValue(true));
  QTest::keyClicks(screen.usernameField(), "jane doe");
  QTest::mouseClick(screen.testRoutingButton(), Qt::LeftButton);
  ASSERT_TRUE(waitUntil([&] { return !screen.resultTextField()->toPlainText().isEmpty(); }));
  EXPECT_EQ(screen.resultTextField()->toPlainText(), "Endpoint: /orders \nHeader: E500");
  EXPECT_EQ(defaults->objectForKey("ServiceErrorRoutingHeader"),
            DefaultsValue(DefaultsDictionary{{"X-Orvane-Internal-Mock-AP", DefaultsValue("E500")}}));
  EXPECT_EQ(defaults->objectForKey("ServerErrorRoutingUserName"), DefaultsValue("jane doe"));
  server.value()->stop();
}

}  // namespace
}  // namespace varnel::testing
