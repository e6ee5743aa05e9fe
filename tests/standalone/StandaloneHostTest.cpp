#include <fstream>
#include <sstream>
#include <thread>

#include <gtest/gtest.h>

#include "support/Fakes.h"
#include "varnel/host/Registry.h"
#include "varnel/standalone/RunLoopMainQueue.h"
#include "varnel/standalone/StringTableLocalization.h"
#include "varnel/standalone/TerminalBanner.h"

namespace varnel::standalone {
namespace {

class StandaloneHostTest : public testing::HostFixture {
 protected:
  void SetUp() override {
    HostFixture::SetUp();
    bundle = std::filesystem::temp_directory_path() /
             ("varnel-strings-" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()) + "-" +
              ::testing::UnitTest::GetInstance()->current_test_info()->name());
    std::filesystem::create_directories(bundle / "en.lproj");
  }
  void TearDown() override {
    std::filesystem::remove_all(bundle);
    HostFixture::TearDown();
  }
  void writeTable(const std::string& content) { std::ofstream(bundle / "en.lproj" / "Localizable.json") << content; }

  std::filesystem::path bundle;
};

TEST_F(StandaloneHostTest, StringTableLooksUpKeysAndFallsBackToTheKey) {
  writeTable(R"({"greeting": "Hello %@", "count": 3})");
  StringTableLocalization strings;
  EXPECT_EQ(strings.localizedStringForKey("greeting", "Localizable", bundle), "Hello %@");
  EXPECT_EQ(strings.localizedStringForKey("missing", "Localizable", bundle), "missing");
  EXPECT_EQ(strings.localizedStringForKey("count", "Localizable", bundle), "count");
  EXPECT_EQ(strings.localizedStringForKey("greeting", "Other", bundle), "greeting");
}

TEST_F(StandaloneHostTest, MalformedStringTableIsReportedOnceAndHoldsNoKeys) {
  writeTable("{ not json");
  StringTableLocalization strings;
  EXPECT_EQ(strings.localizedStringForKey("greeting", "Localizable", bundle), "greeting");
  EXPECT_EQ(strings.localizedStringForKey("other", "Localizable", bundle), "other");
  const auto lines = log->lines();
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_TRUE(lines[0].isError);
}

TEST_F(StandaloneHostTest, TerminalBannerShowsKindMessagePhoneAndRetry) {
  std::ostringstream out;
  TerminalBannerFactory factory(out);
  auto banner = factory.serviceErrorBanner(Error{"varnel.error", 9, nullptr}, "Oops", "Please call %@");
  banner->setPhoneNumber("(407) 555-0142");
  banner->setRetryBlock([](std::shared_ptr<KTVRNotificationBanner>) {});
  banner->show();
  const std::string text = out.str();
  EXPECT_NE(text.find("Service problem: Oops"), std::string::npos);
  EXPECT_NE(text.find("Please call %@"), std::string::npos);
  EXPECT_NE(text.find("Call (407) 555-0142"), std::string::npos);
  EXPECT_NE(text.find("[Retry]"), std::string::npos);

  std::ostringstream quiet;
  TerminalBannerFactory(quiet).validationErrorBanner("", "Check the card")->show();
  EXPECT_EQ(quiet.str().find("[Retry]"), std::string::npos);
  EXPECT_EQ(quiet.str().find("Call "), std::string::npos);
}

TEST_F(StandaloneHostTest, RunLoopRunsPostedTasksInOrderOnTheDrivingThread) {
  RunLoopMainQueue queue;
  std::vector<int> order;
  const auto driver = std::this_thread::get_id();
  std::thread poster([&] {
    for (int i = 0; i < 3; ++i) {
      queue.post([&, i] {
        EXPECT_EQ(std::this_thread::get_id(), driver);
        order.push_back(i);
        if (i == 2) queue.post([&] { order.push_back(3); });
      });
    }
  });
  const bool finished = queue.runUntil([&] { return order.size() == 4; }, std::chrono::seconds(30));
  poster.join();
  EXPECT_TRUE(finished);
  EXPECT_EQ(order, (std::vector<int>{0, 1, 2, 3}));
  EXPECT_EQ(queue.drain(), 0u);
}

}  // namespace
}  // namespace varnel::standalone
