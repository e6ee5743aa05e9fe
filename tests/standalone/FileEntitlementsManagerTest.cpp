#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <fstream>
#include <functional>
#include <future>
#include <mutex>
#include <thread>

#include <unistd.h>

#include <gtest/gtest.h>

#include "support/Fakes.h"
#include "varnel/standalone/FileEntitlementsManager.h"
#include "varnel/standalone/GuestDataFile.h"

namespace varnel::standalone {
namespace {

// Generous: the bound only keeps a broken build from hanging; nothing is timed.
constexpr auto kPatience = std::chrono::seconds(30);

const std::filesystem::path kSample = std::filesystem::path(VARNEL_TEST_RESOURCE_DIR) / "guests" / "sample-guest.json";

/// Records every callback and lets the test wait for them. `onCallback`, when
/// set, runs inside each callback on the manager's thread.
class RecordingListener final : public ENTMEntitlementsListener {
 public:
  struct Event {
    enum Kind { entitlements, affiliations, failure } kind;
    std::size_t count = 0;
    std::optional<Error> error;
    ENTMEntitlementNameType nameType = ENTMEntitlementNameType::entitlements;
    std::optional<Json> userInfo;
    std::thread::id thread;
  };

  void entitlementsUpdated(const ENTMAnyList& list, const std::optional<Json>& userInfo) override {
    record({Event::entitlements, list.size(), std::nullopt, ENTMEntitlementNameType::entitlements, userInfo, {}});
  }
  void entitlementsManagerUpdatedAffiliations(const std::optional<std::vector<ENTMAffiliation>>& list,
                                              const std::optional<Json>& userInfo) override {
    record({Event::affiliations, list ? list->size() : 0, std::nullopt, ENTMEntitlementNameType::affiliations,
            userInfo, {}});
  }
  void entitlementsManagerFetchFailed(ENTMEntitlementNameType nameType, const std::optional<Error>& error,
                                      const std::optional<Json>& userInfo) override {
    record({Event::failure, 0, error, nameType, userInfo, {}});
  }

  /// Waits until at least `count` callbacks arrived; false when patience ran out.
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
    {
      std::lock_guard lock(mutex_);
      events_.push_back(std::move(event));
    }
    arrived_.notify_all();
  }

  mutable std::mutex mutex_;
  std::condition_variable arrived_;
  std::vector<Event> events_;
};

/// A one-shot signal between threads.
struct Gate {
  std::promise<void> promise;
  std::shared_future<void> future = promise.get_future().share();
  void open() { promise.set_value(); }
  bool waitOpen() const { return future.wait_for(kPatience) == std::future_status::ready; }
};

class FileEntitlementsManagerTest : public testing::HostFixture {
 protected:
  void SetUp() override {
    HostFixture::SetUp();
    const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
    directory = std::filesystem::temp_directory_path() /
                (std::string("varnel-guest-") + test->name() + "-" + std::to_string(::getpid()));
    std::filesystem::create_directories(directory);
    file = directory / "guest.json";
    std::filesystem::copy_file(kSample, file);
  }
  void TearDown() override {
    std::filesystem::remove_all(directory);
    HostFixture::TearDown();
  }
  void writeGuest(const std::string& content) { std::ofstream(file, std::ios::trunc) << content; }

  std::filesystem::path directory;
  std::filesystem::path file;
};

TEST_F(FileEntitlementsManagerTest, StoreIsEmptyUntilTheFileIsReadAndKeptWhenARereadFails) {
  FileEntitlementsManager manager(file);
  EXPECT_FALSE(manager.persistedEntitlementsOfType(ENTMEntitlementType::annualPasses));
  EXPECT_FALSE(manager.kuid());

  ASSERT_FALSE(manager.load());
  EXPECT_EQ(manager.kuid(), "guest-4f21-aa07");
  ASSERT_TRUE(manager.userProfile() && manager.userProfile()->avatar);
  EXPECT_EQ(manager.userProfile()->avatar->avatarId, "avatar-lighthouse");
  auto store = manager.persistedEntitlementsOfType(ENTMEntitlementType::annualPasses);
  ASSERT_TRUE(store);
  auto entitlements = asEntitlementList(*store);
  ASSERT_TRUE(entitlements);
  EXPECT_EQ(entitlements->size(), 8u);
  EXPECT_EQ(entitlements->front()->productInstanceId, "AP-100201");
  EXPECT_EQ(manager.theaterTickets().size(), 2u);
  ASSERT_TRUE(manager.affiliations());
  EXPECT_EQ(manager.affiliations()->size(), 3u);

  writeGuest("{ not json");
  auto error = manager.load();
  ASSERT_TRUE(error);
  EXPECT_EQ(error->code, static_cast<long>(GuestDataErrorCode::malformed));
  EXPECT_EQ(manager.kuid(), "guest-4f21-aa07") << "a failed read keeps the store";
  EXPECT_EQ(manager.persistedEntitlementsOfType(ENTMEntitlementType::annualPasses)->size(), 8u);
}

TEST_F(FileEntitlementsManagerTest, OpenReportsAFileThatCannotBeRead) {
  auto missing = FileEntitlementsManager::open(directory / "absent.json");
  ASSERT_FALSE(missing);
  EXPECT_EQ(missing.error().code, static_cast<long>(GuestDataErrorCode::unreadable));
  auto opened = FileEntitlementsManager::open(file);
  ASSERT_TRUE(opened);
  EXPECT_EQ(opened.value()->kuid(), "guest-4f21-aa07");
}

TEST_F(FileEntitlementsManagerTest, DownloadRereadsTheFileAndAnswersOnTheWorkerThread) {
  auto manager = std::make_shared<FileEntitlementsManager>(file);
  ASSERT_FALSE(manager->load());
  auto listener = std::make_shared<RecordingListener>();
  manager->registerEntitlementListener(listener);
  manager->registerEntitlementListener(listener);  // one registration only

  writeGuest(R"({"profile": {"kuid": "k2"}, "entitlements": [{"productInstanceId": "only"}],
                 "affiliations": [{"affiliationId": "STD_GST"}]})");
  manager->beginUpdateEntitlementsOfFilterType(ENTMEntitlementFilterType::annualPasses, Json{{"reason", "test"}});
  manager->retrieveAffiliationsFromUserInfo(std::nullopt);
  ASSERT_TRUE(listener->waitFor(2));

  auto events = listener->events();
  ASSERT_EQ(events.size(), 2u);
  EXPECT_EQ(events[0].kind, RecordingListener::Event::entitlements);
  EXPECT_EQ(events[0].count, 1u);
  EXPECT_EQ(events[0].userInfo, (Json{{"reason", "test"}}));
  EXPECT_NE(events[0].thread, std::this_thread::get_id());
  EXPECT_EQ(events[1].kind, RecordingListener::Event::affiliations);
  EXPECT_EQ(events[1].count, 1u);
  EXPECT_EQ(manager->kuid(), "k2") << "the download replaced the store";
  EXPECT_EQ(manager->persistedEntitlementsOfType(ENTMEntitlementType::annualPasses)->size(), 1u);
}

TEST_F(FileEntitlementsManagerTest, BrokenOrMissingFileIsAFetchFailureWithItsError) {
  auto manager = std::make_shared<FileEntitlementsManager>(file);
  ASSERT_FALSE(manager->load());
  auto listener = std::make_shared<RecordingListener>();
  manager->registerEntitlementListener(listener);

  writeGuest(R"({"entitlements": [{"isRenewable": 1}]})");
  manager->beginUpdateEntitlementsOfFilterType(ENTMEntitlementFilterType::annualPasses, std::nullopt);
  ASSERT_TRUE(listener->waitFor(1));
  std::filesystem::remove(file);
  manager->retrieveAffiliationsFromUserInfo(std::nullopt);
  ASSERT_TRUE(listener->waitFor(2));

  auto events = listener->events();
  ASSERT_EQ(events[0].kind, RecordingListener::Event::failure);
  EXPECT_EQ(events[0].nameType, ENTMEntitlementNameType::entitlements);
  ASSERT_TRUE(events[0].error);
  EXPECT_EQ(events[0].error->domain, kGuestDataErrorDomain);
  EXPECT_EQ(events[0].error->code, static_cast<long>(GuestDataErrorCode::malformed));
  ASSERT_EQ(events[1].kind, RecordingListener::Event::failure);
  EXPECT_EQ(events[1].nameType, ENTMEntitlementNameType::affiliations);
  EXPECT_EQ(events[1].error->code, static_cast<long>(GuestDataErrorCode::unreadable));
  EXPECT_EQ(manager->persistedEntitlementsOfType(ENTMEntitlementType::annualPasses)->size(), 8u);
}

TEST_F(FileEntitlementsManagerTest, ListenerRemovedBeforeTheAnswerIsNotCalled) {
  auto manager = std::make_shared<FileEntitlementsManager>(file);
  auto holder = std::make_shared<RecordingListener>();
  auto removed = std::make_shared<RecordingListener>();
  Gate entered, release;
  std::once_flag firstCall;
  // The first answer holds the worker until the test has removed `removed`.
  holder->onCallback = [&] {
    std::call_once(firstCall, [&] {
      entered.open();
      release.waitOpen();
    });
  };
  manager->registerEntitlementListener(holder);
  manager->beginUpdateEntitlementsOfFilterType(ENTMEntitlementFilterType::annualPasses, std::nullopt);
  ASSERT_TRUE(entered.waitOpen());

  manager->registerEntitlementListener(removed);
  manager->beginUpdateEntitlementsOfFilterType(ENTMEntitlementFilterType::annualPasses, std::nullopt);
  manager->removeEntitlementListener(removed.get());
  release.open();

  ASSERT_TRUE(holder->waitFor(2));
  EXPECT_TRUE(removed->events().empty());
}

TEST_F(FileEntitlementsManagerTest, ListenersAreHeldWeaklyAndMayUnregisterFromTheirCallback) {
  auto manager = std::make_shared<FileEntitlementsManager>(file);
  auto gone = std::make_shared<RecordingListener>();
  std::weak_ptr<RecordingListener> watch = gone;
  auto selfRemoving = std::make_shared<RecordingListener>();
  auto second = std::make_shared<RecordingListener>();
  selfRemoving->onCallback = [&] {
    manager->removeEntitlementListener(selfRemoving.get());
    manager->removeEntitlementListener(second.get());  // removed mid-delivery: not called
  };
  manager->registerEntitlementListener(gone);
  manager->registerEntitlementListener(selfRemoving);
  manager->registerEntitlementListener(second);
  gone.reset();
  EXPECT_TRUE(watch.expired()) << "the manager keeps no strong reference";

  manager->beginUpdateEntitlementsOfFilterType(ENTMEntitlementFilterType::annualPasses, std::nullopt);
  ASSERT_TRUE(selfRemoving->waitFor(1));
  auto observer = std::make_shared<RecordingListener>();
  manager->registerEntitlementListener(observer);
  manager->beginUpdateEntitlementsOfFilterType(ENTMEntitlementFilterType::annualPasses, std::nullopt);
  ASSERT_TRUE(observer->waitFor(1));

  EXPECT_EQ(selfRemoving->events().size(), 1u);
  EXPECT_TRUE(second->events().empty());
}

TEST_F(FileEntitlementsManagerTest, DestructionWithDownloadsPendingIsSafe) {
  auto manager = std::make_shared<FileEntitlementsManager>(file);
  auto listener = std::make_shared<RecordingListener>();
  Gate entered, release;
  std::once_flag firstCall;
  listener->onCallback = [&] {
    std::call_once(firstCall, [&] {
      entered.open();
      release.waitOpen();
    });
  };
  manager->registerEntitlementListener(listener);
  for (int i = 0; i < 5; ++i) {
    manager->beginUpdateEntitlementsOfFilterType(ENTMEntitlementFilterType::annualPasses, std::nullopt);
  }
  ASSERT_TRUE(entered.waitOpen());

  // The destructor waits for the answer in progress, so it runs elsewhere
  // while this thread lets that answer finish.
  auto destroyed = std::async(std::launch::async, [owned = std::move(manager)]() mutable { owned.reset(); });
  release.open();
  ASSERT_EQ(destroyed.wait_for(kPatience), std::future_status::ready);

  const auto delivered = listener->events().size();
  EXPECT_GE(delivered, 1u);
  EXPECT_LE(delivered, 5u);

  // A manager destroyed with answers queued and none started.
  auto quick = std::make_shared<FileEntitlementsManager>(file);
  quick->registerEntitlementListener(listener);
  for (int i = 0; i < 5; ++i) quick->retrieveAffiliationsFromUserInfo(std::nullopt);
  quick.reset();
  const auto afterDestruction = listener->events().size();
  EXPECT_LE(afterDestruction, delivered + 5);
}

TEST_F(FileEntitlementsManagerTest, LastOwnerLettingGoInsideACallbackIsSafe) {
  auto manager = std::make_shared<FileEntitlementsManager>(file);
  auto listener = std::make_shared<RecordingListener>();
  Gate released;
  std::shared_ptr<FileEntitlementsManager> owner = manager;
  listener->onCallback = [&] {
    owner.reset();  // the manager is destroyed here, on its own worker thread
    released.open();
  };
  manager->registerEntitlementListener(listener);
  manager->beginUpdateEntitlementsOfFilterType(ENTMEntitlementFilterType::annualPasses, std::nullopt);
  manager.reset();
  ASSERT_TRUE(released.waitOpen());
  ASSERT_TRUE(listener->waitFor(1));
  EXPECT_EQ(listener->events().front().kind, RecordingListener::Event::entitlements);
}

}  // namespace
}  // namespace varnel::standalone
