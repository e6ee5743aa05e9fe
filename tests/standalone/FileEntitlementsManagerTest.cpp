#include <condition_variable>
#include <fstream>
#include <functional>
#include <future>
#include <mutex>
#include <thread>

#include <gtest/gtest.h>
#include <unistd.h>

#include "support/Fakes.h"
#include "varnel/standalone/FileEntitlementsManager.h"
#include "varnel/standalone/GuestDataFile.h"

namespace varnel::standalone {
namespace {

// Only keeps a broken build from hanging; nothing is timed.
constexpr auto kPatience = std::chrono::seconds(30);
using Name = ENTMEntitlementNameType;

/// Records every callback (kind, list size, error) and lets the test wait for
/// them. `onCallback` runs inside each callback, on the manager's thread.
class RecordingListener final : public ENTMEntitlementsListener {
 public:
  struct Event {
    std::string kind;
    std::size_t count = 0;
    std::optional<Error> error;
    std::optional<Json> userInfo;
    std::thread::id thread;
  };
  void entitlementsUpdated(const ENTMAnyList& list, const std::optional<Json>& userInfo) override {
    record({"entitlements", list.size(), {}, userInfo, {}});
  }
  void entitlementsManagerUpdatedAffiliations(const std::optional<std::vector<ENTMAffiliation>>& list,
                                              const std::optional<Json>& userInfo) override {
    record({"affiliations", list ? list->size() : 0, {}, userInfo, {}});
  }
  void entitlementsManagerFetchFailed(Name name, const std::optional<Error>& error,
                                      const std::optional<Json>& userInfo) override {
    record({name == Name::entitlements ? "entitlements failed" : "affiliations failed", 0, error, userInfo, {}});
  }
  bool waitFor(std::size_t count) {
    std::unique_lock lock(mutex_);
    return arrived_.wait_for(lock, kPatience, [&] { return events_.size() >= count; });
  }
  std::vector<Event> events() const {
    std::lock_guard lock(mutex_);
    return events_;
  }
  std::function<void()> onCallback;

 private:
  void record(Event event) {
    event.thread = std::this_thread::get_id();
    if (onCallback) onCallback();
    std::lock_guard lock(mutex_);
    events_.push_back(std::move(event));
    arrived_.notify_all();
  }
  mutable std::mutex mutex_;
  std::condition_variable arrived_;
  std::vector<Event> events_;
};

/// Makes the listener's first callback wait, holding the worker, until released.
struct HeldFirstCallback {
  explicit HeldFirstCallback(RecordingListener& listener) {
    listener.onCallback = [this] {
      std::call_once(once, [this] {
        entered.set_value();
        release.get_future().wait_for(kPatience);
      });
    };
  }
  bool waitEntered() { return entered.get_future().wait_for(kPatience) == std::future_status::ready; }
  std::once_flag once;
  std::promise<void> entered, release;
};

class FileEntitlementsManagerTest : public testing::HostFixture {
 protected:
  void SetUp() override {
    HostFixture::SetUp();
    std::filesystem::create_directories(directory);
    std::filesystem::copy_file(std::filesystem::path(VARNEL_TEST_RESOURCE_DIR) / "guests" / "sample-guest.json", file);
    manager->registerEntitlementListener(listener);
  }
  void TearDown() override {
    manager.reset();
    std::filesystem::remove_all(directory);
    HostFixture::TearDown();
  }
  void writeGuest(const std::string& content) { std::ofstream(file, std::ios::trunc) << content; }
  void fetch() { manager->beginUpdateEntitlementsOfFilterType(ENTMEntitlementFilterType::annualPasses, std::nullopt); }

  std::filesystem::path directory = std::filesystem::temp_directory_path() /
                                    ("varnel-guest-" + std::to_string(::getpid()) + "-" +
                                     ::testing::UnitTest::GetInstance()->current_test_info()->name());
  std::filesystem::path file = directory / "guest.json";
  std::shared_ptr<FileEntitlementsManager> manager = std::make_shared<FileEntitlementsManager>(file);
  std::shared_ptr<RecordingListener> listener = std::make_shared<RecordingListener>();
};

TEST_F(FileEntitlementsManagerTest, FailedReadsAndDownloadsReportTheirErrorAndKeepTheStore) {
  EXPECT_FALSE(manager->persistedEntitlementsOfType(ENTMEntitlementType::annualPasses)) << "nothing read yet";
  EXPECT_FALSE(FileEntitlementsManager::open(directory / "absent.json"));
  ASSERT_FALSE(manager->load());
  EXPECT_EQ(manager->userProfile()->avatar->avatarId, "avatar-lighthouse");
  EXPECT_EQ(manager->theaterTickets().size(), 2u);

  writeGuest("{ not json");
  EXPECT_EQ(manager->load()->code, static_cast<long>(GuestDataErrorCode::malformed));
  fetch();
  ASSERT_TRUE(listener->waitFor(1));
  std::filesystem::remove(file);
  manager->retrieveAffiliationsFromUserInfo(std::nullopt);
  ASSERT_TRUE(listener->waitFor(2));

  auto events = listener->events();
  EXPECT_EQ(events[0].kind, "entitlements failed");
  EXPECT_EQ(events[0].error->domain, kGuestDataErrorDomain);
  EXPECT_EQ(events[0].error->code, static_cast<long>(GuestDataErrorCode::malformed));
  EXPECT_EQ(events[1].kind, "affiliations failed");
  EXPECT_EQ(events[1].error->code, static_cast<long>(GuestDataErrorCode::unreadable));
  EXPECT_EQ(manager->kuid(), "guest-4f21-aa07");
  EXPECT_EQ(manager->persistedEntitlementsOfType(ENTMEntitlementType::annualPasses)->size(), 8u);
}

TEST_F(FileEntitlementsManagerTest, DownloadRereadsTheFileAndAnswersOnTheWorkerThread) {
  ASSERT_FALSE(manager->load());
  manager->registerEntitlementListener(listener);  // a second registration adds nothing
  writeGuest(R"({"profile": {"kuid": "k2"}, "entitlements": [{}], "affiliations": [{"affiliationId": "STD_GST"}]})");
  manager->beginUpdateEntitlementsOfFilterType(ENTMEntitlementFilterType::annualPasses, Json{{"reason", "test"}});
  manager->retrieveAffiliationsFromUserInfo(std::nullopt);
  ASSERT_TRUE(listener->waitFor(2));

  auto events = listener->events();
  ASSERT_EQ(events.size(), 2u);
  EXPECT_EQ(events[0].kind, "entitlements");
  EXPECT_EQ(events[0].count, 1u);
  EXPECT_EQ(events[0].userInfo, (Json{{"reason", "test"}}));
  EXPECT_NE(events[0].thread, std::this_thread::get_id());
  EXPECT_EQ(events[1].kind, "affiliations");
  EXPECT_EQ(events[1].count, 1u);
  EXPECT_EQ(manager->kuid(), "k2") << "the download replaced the store";
}

TEST_F(FileEntitlementsManagerTest, ListenersRemovedBeforeTheirTurnAreNotCalled) {
  HeldFirstCallback held(*listener);
  fetch();
  ASSERT_TRUE(held.waitEntered());
  // While the worker is held: one listener removed before its answer, one
  // released (held weakly), one that removes another during a delivery.
  auto removed = std::make_shared<RecordingListener>();
  auto released = std::make_shared<RecordingListener>();
  std::weak_ptr<RecordingListener> watchReleased = released;
  auto remover = std::make_shared<RecordingListener>();
  auto victim = std::make_shared<RecordingListener>();
  remover->onCallback = [&] { manager->removeEntitlementListener(victim.get()); };
  for (const auto& other : {removed, released, remover, victim}) manager->registerEntitlementListener(other);
  fetch();
  manager->removeEntitlementListener(removed.get());
  released.reset();
  EXPECT_TRUE(watchReleased.expired()) << "the manager keeps no strong reference";
  held.release.set_value();

  ASSERT_TRUE(listener->waitFor(2));
  ASSERT_TRUE(remover->waitFor(1));
  EXPECT_TRUE(removed->events().empty());
  EXPECT_TRUE(victim->events().empty());
}

TEST_F(FileEntitlementsManagerTest, DestructionWithDownloadsPendingWaitsForTheOneInProgress) {
  HeldFirstCallback held(*listener);
  for (int i = 0; i < 5; ++i) fetch();
  ASSERT_TRUE(held.waitEntered());
  // The destructor waits for the answer in progress, so it runs elsewhere
  // while this thread lets that answer finish.
  auto destroyed = std::async(std::launch::async, [owned = std::move(manager)]() mutable { owned.reset(); });
  held.release.set_value();
  ASSERT_EQ(destroyed.wait_for(kPatience), std::future_status::ready);
  const auto delivered = listener->events().size();
  EXPECT_GE(delivered, 1u);
  EXPECT_LE(delivered, 5u);
}

TEST_F(FileEntitlementsManagerTest, LastOwnerLettingGoInsideACallbackIsSafe) {
  std::promise<void> letGo;
  std::shared_ptr<FileEntitlementsManager> owner = std::exchange(manager, nullptr);
  listener->onCallback = [&] {
    owner.reset();  // destroys the manager on its own worker thread
    letGo.set_value();
  };
  auto* raw = owner.get();
  raw->beginUpdateEntitlementsOfFilterType(ENTMEntitlementFilterType::annualPasses, std::nullopt);
  ASSERT_EQ(letGo.get_future().wait_for(kPatience), std::future_status::ready);
  ASSERT_TRUE(listener->waitFor(1));
  EXPECT_EQ(listener->events().front().kind, "entitlements");
}

}  // namespace
}  // namespace varnel::standalone
