#include <sstream>
#include <thread>

#include <gmock/gmock.h>

#include "TemporaryDirectory.h"
#include "support/Fakes.h"
#include "varnel/standalone/RunLoopMainQueue.h"
#include "varnel/standalone/StringTableLocalization.h"
#include "varnel/standalone/TerminalBanner.h"

namespace varnel::standalone {
namespace {

using ::testing::AllOf, ::testing::HasSubstr, ::testing::Not;

class StandaloneHostTest : public testing::HostFixture {
 protected:
  testing::TemporaryDirectory bundle;
};

TEST_F(StandaloneHostTest, StringTableLooksUpTextsAndFallsBackToTheKey) {
  bundle.write("en.lproj/Localizable.json", R"({"greeting": "Hello %@", "count": 3})");
  bundle.write("en.lproj/Broken.json", "{ not json");
  StringTableLocalization strings;
  EXPECT_EQ(strings.localizedStringForKey("greeting", "Localizable", bundle.path), "Hello %@");
  const std::pair<const char*, const char*> fallbacks[] = {
      {"missing", "Localizable"}, {"count", "Localizable"}, {"greeting", "Other"}, {"greeting", "Broken"},
      {"other", "Broken"}};
  for (const auto& [key, table] : fallbacks) {
    EXPECT_EQ(strings.localizedStringForKey(key, table, bundle.path), key) << table;
  }
  ASSERT_EQ(log->lines().size(), 2u) << "the missing and the malformed table, each once";
  EXPECT_TRUE(log->lines()[0].isError && log->lines()[1].isError);
}

TEST_F(StandaloneHostTest, TerminalBannerShowsKindMessagePhoneAndRetry) {
  std::ostringstream out;
  auto banner = TerminalBannerFactory(out).serviceErrorBanner(Error{"varnel.error", 9, nullptr}, "Oops", "Call %@");
  banner->setPhoneNumber("(592) 555-0142");
  banner->setRetryBlock([](std::shared_ptr<KTVRNotificationBanner>) {});
  banner->show();
  EXPECT_THAT(out.str(), AllOf(HasSubstr("\n| Oops\n| Call %@\n"), Not(HasSubstr("problem")),
                                HasSubstr("Call (592) 555-0142"), HasSubstr("[Retry]")));
  struct Row {
    std::string title, message, shown;
  };
  const Row rows[] = {
      {"", "Check the card", "| Please check\n| Check the card\n"},
      {"Please Check Your Details", "", "| Connection Problem\n| The commerce service could not be reached. "
                                        "Please try again.\n"},
  };
  for (const auto& row : rows) {
    std::ostringstream quiet;
    TerminalBannerFactory(quiet).validationErrorBanner(row.title, row.message)->show();
    EXPECT_THAT(quiet.str(), AllOf(HasSubstr(row.shown), Not(HasSubstr("[Retry]")), Not(HasSubstr("Call "))));
  }
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
