// What the tester screens do, driven through their presenters without a display.

#include <thread>

#include "ScreenTestSupport.h"
#include "varnel/requirements/VNLBusinessRequirementsKeys.h"
#include "varnel/screens/VNLBusinessRequirementPresenter.h"
#include "varnel/standalone/JsonRemoteConfiguration.h"

namespace varnel::testing {
namespace {

using Switch = VNLBusinessRequirementSwitch;
using Keys = VNLBusinessRequirementsKeys;
using Routing = ServerErrorRoutingPresenter;

class BusinessRequirementScreenTest : public ScreenTest {
 protected:
  void expectSwitches(const VNLBusinessRequirementPresenter& screen, std::vector<VNLSwitchState> expected) {
    for (std::size_t i = 0; i < kVNLBusinessRequirementSwitches.size(); ++i) {
      const auto requirement = kVNLBusinessRequirementSwitches[i];
      EXPECT_EQ(screen.switchState(requirement), expected[i])
          << VNLBusinessRequirementPresenter::localKeyFor(requirement);
    }
  }
  template <typename State>
  static bool isIn(const VNLBusinessRequirementPresenter& screen) {
    const auto* machine = screen.businessRequirementStateMachine();
    return machine && machine->currentState() && typeid(*machine->currentState()) == typeid(State);
  }

  static constexpr VNLSwitchState onEnabled{true, true}, offEnabled{false, true}, offDisabled{false, false};
};

TEST_F(BusinessRequirementScreenTest, WithoutAParkContextNothingChanges) {
  VNLBusinessRequirementPresenter screen;
  const auto before = VNLBusinessRequirementUtil::localValues();
  screen.viewWillAppear();
  screen.switchBusinessRequirement(Switch::commerce, true);
  EXPECT_EQ(log->count("Park context is nil!"), 2u);
  EXPECT_EQ(screen.businessRequirementStateMachine(), nullptr);
  EXPECT_EQ(VNLBusinessRequirementUtil::localValues(), before);
}

TEST_F(BusinessRequirementScreenTest, SwitchesFollowTheCommerceStateThroughEveryMove) {
  VNLBusinessRequirementPresenter screen;
  screen.setParkContext(std::make_shared<KTVCParkResortContext>(kResortChoiceWest));
  screen.viewWillAppear();
  // The initial local table: EVAS on, everything else off.
  EXPECT_TRUE(isIn<CommerceOffState>(screen));
  expectSwitches(screen, {onEnabled, offEnabled, offDisabled, offDisabled, offDisabled});

  screen.switchBusinessRequirement(Switch::commerce, true);
  EXPECT_TRUE(isIn<CommerceOnState>(screen));
  expectSwitches(screen, {onEnabled, onEnabled, offEnabled, offEnabled, offEnabled});

  screen.switchBusinessRequirement(Switch::renewals, true);
  screen.switchBusinessRequirement(Switch::sales, true);
  EXPECT_TRUE(VNLBusinessRequirementUtil::localValue(Keys::enableAnnualPassportRenewalsKey));
  expectSwitches(screen, {onEnabled, onEnabled, onEnabled, offEnabled, onEnabled});

  // Commerce off takes renewals, upgrades and sales down, on screen and in the table.
  screen.switchBusinessRequirement(Switch::commerce, false);
  EXPECT_TRUE(isIn<CommerceOffState>(screen));
  expectSwitches(screen, {onEnabled, offEnabled, offDisabled, offDisabled, offDisabled});
  EXPECT_FALSE(VNLBusinessRequirementUtil::localValue(Keys::enableAnnualPassportRenewalsKey));
  EXPECT_FALSE(VNLBusinessRequirementUtil::localValue(Keys::enableAnnualPassportSalesKey));

  // EVAS off from commerce on disables everything but EVAS on screen and
  // writes only its own value; EVAS back on finds commerce as it was.
  screen.switchBusinessRequirement(Switch::commerce, true);
  screen.switchBusinessRequirement(Switch::upgrades, true);
  const auto tableBefore = VNLBusinessRequirementUtil::localValues();
  screen.switchBusinessRequirement(Switch::evas, false);
  EXPECT_TRUE(isIn<EvasOffState>(screen));
  expectSwitches(screen, {offEnabled, offDisabled, offDisabled, offDisabled, offDisabled});
  auto evasOff = tableBefore;
  evasOff[std::string(Keys::enableEvasKey)] = false;
  EXPECT_EQ(VNLBusinessRequirementUtil::localValues(), evasOff);

  screen.switchBusinessRequirement(Switch::evas, true);
  EXPECT_TRUE(isIn<CommerceOnState>(screen));
  expectSwitches(screen, {onEnabled, onEnabled, offEnabled, onEnabled, offEnabled});
  EXPECT_EQ(VNLBusinessRequirementUtil::localValues(), tableBefore);

  // From commerce off, EVAS off and on comes back to commerce off.
  screen.switchBusinessRequirement(Switch::commerce, false);
  screen.switchBusinessRequirement(Switch::evas, false);
  screen.switchBusinessRequirement(Switch::evas, true);
  EXPECT_TRUE(isIn<CommerceOffState>(screen));
  expectSwitches(screen, {onEnabled, offEnabled, offDisabled, offDisabled, offDisabled});
}

TEST_F(BusinessRequirementScreenTest, RemoteValuesAreShownWhenTheRemoteSwitchAsksForThem) {
  host::Registry::set<KTVRRemoteConfiguration>(std::make_shared<standalone::JsonRemoteConfiguration>(
      Json{{"com.orvane.EvasEnabled", true},
           {"enableAnnualPassportCommerce", true},
           {"enableAnnualPassportUpgrades", true}}));
  VNLBusinessRequirementPresenter screen;
  screen.setParkContext(std::make_shared<KTVCParkResortContext>());
  screen.viewWillAppear();
  EXPECT_TRUE(isIn<CommerceOffState>(screen)) << "local values win unless remote ones are asked for";

  screen.switchBusinessRequirement(Switch::remoteValue, true);
  EXPECT_TRUE(isIn<CommerceOnState>(screen));
  EXPECT_EQ(screen.switchState(Switch::commerce), onEnabled);
  EXPECT_EQ(screen.switchState(Switch::renewals), offEnabled);
  EXPECT_EQ(screen.switchState(Switch::upgrades), onEnabled);
  EXPECT_EQ(screen.switchState(Switch::remoteValue).isOn, true);
  EXPECT_EQ(VNLBusinessRequirementUtil::remoteValues(),
            (VNLBusinessRequirementValues{{"com.orvane.EvasEnabled", true},
                                          {"enableAnnualPassportCommerce", true},
                                          {"enableAnnualPassportUpgrades", true}}));

  // Asked for, a missing remote EVAS value shows off: everything else goes off with it.
  host::Registry::set<KTVRRemoteConfiguration>(std::make_shared<standalone::JsonRemoteConfiguration>(
      Json{{"enableAnnualPassportCommerce", true}}));
  screen.viewWillAppear();
  EXPECT_TRUE(isIn<EvasOffState>(screen));
  expectSwitches(screen, {offEnabled, offDisabled, offDisabled, offDisabled, offDisabled});
}

class RoutingPresenterTest : public ScreenTest {
 protected:
  FakeRoutingView view;
  std::shared_ptr<FakeURLSession> session = std::make_shared<FakeURLSession>();

  std::shared_ptr<Routing> make(std::string address = "http://127.0.0.1:9/") {
    return Routing::create(view, session, mainQueue, std::move(address));
  }
};

TEST_F(RoutingPresenterTest, AnswerParsesInEitherNestingAndAnythingElseIsReported) {
  const std::string good = R"({"field_endpoint":{"value":"/orders"},"field_simulator_header":{"value":"E500"}})";
  const std::string listed = R"({"field_endpoint":[{"value":"/orders"}],"field_simulator_header":[{"value":"E500"}]})";
  for (const auto& json : {good, listed, "[" + listed + "]"}) {
    EXPECT_EQ(Routing::parseJSONString(json), (ServerErrorRoutingAnswer{"/orders", "E500"})) << json;
  }
  const char* bad[] = {
      "",  "not json", "[]", "{}", "\"text\"", R"({"field_endpoint":{"value":"/orders"}})",
      R"({"field_endpoint":{"value":1},"field_simulator_header":{"value":"E500"}})",
      R"({"field_endpoint":[],"field_simulator_header":[{"value":"E500"}]})",
      R"({"field_endpoint":"value","field_simulator_header":{"value":"E500"}})",
      "{\"field_endpoint\":{\"value\":\"\xff\"}",
  };
  for (const char* json : bad) EXPECT_EQ(Routing::parseJSONString(json), std::nullopt) << json;
  EXPECT_EQ(log->count("Failed to parse JSON"), std::size(bad));
  EXPECT_EQ(log->lines().back().site.function, "parseJSONString(json:)");
  EXPECT_EQ(log->lines().back().site.file, "Classes/Debug/ServerErrorRoutingDebugViewController");
}

TEST_F(RoutingPresenterTest, LookupIsShownAndSavedOnTheMainQueue) {
  const auto presenter = make();
  view.username = "jane doe";
  view.switchOn = true;
  presenter->testRoutingTapped();
  ASSERT_EQ(session->tasks.size(), 1u);
  auto& sent = *session->tasks.front();
  EXPECT_TRUE(sent.resumed);
  EXPECT_EQ(sent.request.httpMethod, "GET");
  EXPECT_EQ(sent.request.url, "http://127.0.0.1:9/mobile-commerce/index.php/rest/export/json/header?uid=jane doe");

  std::thread sessionThread([&] {
    sent.completion(R"([{"field_endpoint":[{"value":"/orders"}],"field_simulator_header":[{"value":"E500"}]}])",
                    URLResponse{sent.request.url, 200, {}}, std::nullopt);
  });
  sessionThread.join();
  EXPECT_EQ(view.result, "") << "nothing changes off the main queue";
  EXPECT_TRUE(defaults->dictionaryRepresentation().empty());

  EXPECT_EQ(mainQueue->runAll(), 1u);
  EXPECT_EQ(view.result, "Endpoint: /orders \nHeader: E500");
  EXPECT_EQ(defaults->objectForKey("ServiceErrorRoutingHeader"),
            DefaultsValue(DefaultsDictionary{{"X-Orvane-Internal-Mock-AP", DefaultsValue("E500")}}));
  EXPECT_EQ(defaults->objectForKey("ServerErrorRoutingUserName"), DefaultsValue("jane doe"));
  EXPECT_EQ(defaults->objectForKey("ServerErrorRoutingUseFeature"), DefaultsValue(true));
  EXPECT_EQ(defaults->synchronizeCount, 1);
}

TEST_F(RoutingPresenterTest, FailedOrUnparsableLookupsChangeNothing) {
  auto presenter = make();
  view.username = "sam";
  struct Outcome {
    std::optional<std::string> data;
    std::optional<long> status;
    bool transportError;
  };
  const Outcome outcomes[] = {{std::nullopt, std::nullopt, true},
                              {"{\"field_endpoint\":{\"value\":\"/x\"},\"field_simulator_header\":{\"value\":\"y\"}}",
                               500, false},
                              {"<html>", 200, false},
                              {std::nullopt, 200, false}};
  for (const auto& outcome : outcomes) {
    presenter->fetchData(view.username);
    auto& sent = *session->tasks.back();
    sent.completion(outcome.data, outcome.status ? std::optional(URLResponse{sent.request.url, outcome.status, {}}) : std::nullopt,
                    outcome.transportError ? std::optional(Error{"test", 1, nullptr}) : std::nullopt);
  }
  EXPECT_EQ(mainQueue->runAll(), 0u);
  EXPECT_EQ(view.result, "");
  EXPECT_TRUE(defaults->dictionaryRepresentation().empty());
  EXPECT_EQ(log->count("Failed to parse JSON"), 1u);

  // A completion that arrives after the screen is gone touches nothing.
  presenter->fetchData("late");
  auto completion = session->tasks.back()->completion;
  const auto answer = R"({"field_endpoint":{"value":"/x"},"field_simulator_header":{"value":"y"}})";
  completion(answer, URLResponse{"", 200, {}}, std::nullopt);
  presenter.reset();
  EXPECT_EQ(mainQueue->runAll(), 1u);
  EXPECT_TRUE(defaults->dictionaryRepresentation().empty());

  const std::size_t sent = session->tasks.size();
  make("")->fetchData("sam");
  EXPECT_EQ(session->tasks.size(), sent) << "without a server nothing is sent";
}

TEST_F(RoutingPresenterTest, SwitchSavesAndLoadsWithTheUserName) {
  const auto presenter = make();
  presenter->viewDidAppear();
  EXPECT_FALSE(view.switchOn);
  EXPECT_EQ(view.username, "");
  EXPECT_EQ(view.result, "");
  EXPECT_EQ(view.hidden, true);

  view.username = "jane doe";
  for (const bool on : {true, false, true}) {
    view.switchOn = on;
    presenter->serverErrorRoutingSwitchChanged();
    EXPECT_EQ(view.hidden, !on);
    EXPECT_EQ(defaults->objectForKey("ServerErrorRoutingUseFeature"), DefaultsValue(on));
    EXPECT_EQ(defaults->objectForKey("ServerErrorRoutingUserName"), DefaultsValue("jane doe"));
  }
  presenter->saveDefaults(std::string(Routing::kInternalMockHeader), "E503");
  presenter->saveDefaults(std::nullopt, "E503");
  EXPECT_FALSE(defaults->objectForKey("ServiceErrorRoutingHeader")) << "a header without a name is removed";

  // A switch move saves without a header: the header shown before is gone from the store and the screen.
  presenter->saveDefaults(std::string(Routing::kInternalMockHeader), "E503");
  presenter->viewDidAppear();
  EXPECT_EQ(view.result, "Endpoint: X-Orvane-Internal-Mock-AP \nHeader: E503");
  for (const bool on : {false, true}) {
    view.switchOn = on;
    presenter->serverErrorRoutingSwitchChanged();
    EXPECT_FALSE(defaults->objectForKey("ServiceErrorRoutingHeader"));
    EXPECT_EQ(view.result, "") << "switch " << on;
  }
  presenter->saveDefaults(std::string(Routing::kInternalMockHeader), "E503");

  FakeRoutingView reopened;
  const auto again = Routing::create(reopened, session, mainQueue, "");
  again->viewDidAppear();
  EXPECT_EQ(reopened.username, "jane doe");
  EXPECT_TRUE(reopened.switchOn);
  EXPECT_EQ(reopened.hidden, false);
  EXPECT_EQ(reopened.result, "Endpoint: X-Orvane-Internal-Mock-AP \nHeader: E503");
}

}  // namespace
}  // namespace varnel::testing
