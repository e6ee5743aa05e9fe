#include <condition_variable>
#include <functional>
#include <future>
#include <mutex>
#include <thread>

#include <gtest/gtest.h>

#include "TemporaryDirectory.h"
#include "varnel/standalone/FileEntitlementsManager.h"
#include "varnel/standalone/GuestDataFile.h"

namespace varnel::standalone {
namespace {

// Only keeps a broken build from hanging; nothing is timed.
constexpr auto kPatience = std::chrono::seconds(30);
using Name = ENTMEntitlementNameType;
using Events = std::vector<std::string>;

std::string failure(const std::string& kind, GuestDataErrorCode code) {
  return kind + " failed " + kGuestDataErrorDomain + " " + std::to_string(static_cast<long>(code));
}

/// Records each callback as a line ("entitlements 8 <user information>", "affiliations 1",
/// "entitlements failed <domain> <code>"), marked when it ran on the listener's own thread, and
/// lets the test wait for them. `onCallback` runs first in each callback.
class RecordingListener final : public ENTMEntitlementsListener {
 public:
  void entitlementsUpdated(const ENTMAnyList& list, const std::optional<Json>& info) override {
    // Appended piece by piece: GCC 12 at -O3 reports a false overlap (-Wrestrict)
    // for a literal prepended to a temporary string.
    std::string event = "entitlements " + std::to_string(list.size());
    if (info) event.append(" ").append(info->dump());
    record(std::move(event));
  }
  void entitlementsManagerUpdatedAffiliations(const std::optional<std::vector<ENTMAffiliation>>& list,
                                              const std::optional<Json>&) override {
    record("affiliations " + std::to_string(list ? list->size() : 0));
  }
  void entitlementsManagerFetchFailed(Name name, const std::optional<Error>& error,
                                      const std::optional<Json>&) override {
    const std::string kind = name == Name::entitlements ? "entitlements" : "affiliations";
    record(kind + " failed " + (error ? error->domain + " " + std::to_string(error->code) : "none"));
  }
  bool waitFor(std::size_t count) {
    std::unique_lock lock(mutex_);
    return arrived_.wait_for(lock, kPatience, [&] { return events_.size() >= count; });
  }
  Events events() const {
    std::lock_guard lock(mutex_);
    return events_;
  }
  std::function<void()> onCallback;

 private:
  void record(std::string event) {
    if (onCallback) onCallback();
    if (std::this_thread::get_id() == ownThread_) event += " on the listener's thread";
    std::lock_guard lock(mutex_);
    events_.push_back(std::move(event));
    arrived_.notify_all();
  }
  const std::thread::id ownThread_ = std::this_thread::get_id();
  mutable std::mutex mutex_;
  std::condition_variable arrived_;
  Events events_;
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

class FileEntitlementsManagerTest : public ::testing::Test {
 protected:
  FileEntitlementsManagerTest() {
    std::filesystem::copy_file(std::filesystem::path(VARNEL_TEST_RESOURCE_DIR) / "guests" / "sample-guest.json", file);
    manager->registerEntitlementListener(listener);
  }
  void fetch() { manager->beginUpdateEntitlementsOfFilterType(ENTMEntitlementFilterType::annualPasses, std::nullopt); }

  testing::TemporaryDirectory directory;
  std::filesystem::path file = directory.path / "guest.json";
  std::shared_ptr<FileEntitlementsManager> manager = std::make_shared<FileEntitlementsManager>(file);
  std::shared_ptr<RecordingListener> listener = std::make_shared<RecordingListener>();
};

TEST_F(FileEntitlementsManagerTest, DownloadsRereadTheFileOnTheWorkerAndAFailureKeepsTheStore) {
  EXPECT_FALSE(FileEntitlementsManager::open(directory.path / "absent.json"));
  ASSERT_FALSE(manager->load());
  directory.write(file.filename(), "{ not json");
  EXPECT_EQ(manager->load()->code, static_cast<long>(GuestDataErrorCode::malformed));
  fetch();
  ASSERT_TRUE(listener->waitFor(1));
  std::filesystem::remove(file);
  manager->retrieveAffiliationsFromUserInfo(std::nullopt);
  ASSERT_TRUE(listener->waitFor(2));
  EXPECT_EQ(manager->persistedEntitlementsOfType(ENTMEntitlementType::annualPasses)->size(), 8u);

  manager->registerEntitlementListener(listener);  // a second registration adds nothing
  directory.write(file.filename(), R"({"profile": {"kuid": "k2"}, "entitlements": [{}]})");
  manager->beginUpdateEntitlementsOfFilterType(ENTMEntitlementFilterType::annualPasses, Json{{"reason", "test"}});
  fetch();
  ASSERT_TRUE(listener->waitFor(4));
  EXPECT_EQ(listener->events(), (Events{failure("entitlements", GuestDataErrorCode::malformed),
                                        failure("affiliations", GuestDataErrorCode::unreadable),
                                        R"(entitlements 1 {"reason":"test"})", "entitlements 1"}));
  EXPECT_EQ(manager->kuid(), "k2") << "the download replaced the store";
}

TEST_F(FileEntitlementsManagerTest, ListenersRemovedBeforeTheirTurnAreNotCalled) {
  HeldFirstCallback held(*listener);
  fetch();
  ASSERT_TRUE(held.waitEntered());
  // While the worker is held: one listener removed before its answer, one
  // that removes another during a delivery.
  auto removed = std::make_shared<RecordingListener>();
  auto remover = std::make_shared<RecordingListener>();
  auto victim = std::make_shared<RecordingListener>();
  remover->onCallback = [&] { manager->removeEntitlementListener(victim.get()); };
  for (const auto& other : {removed, remover, victim}) manager->registerEntitlementListener(other);
  fetch();
  manager->removeEntitlementListener(removed.get());
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
  EXPECT_TRUE(listener->events().size() >= 1 && listener->events().size() <= 5) << listener->events().size();
}

TEST_F(FileEntitlementsManagerTest, TheLastOwnerMayLetGoFromInsideACallback) {
  // The manager's own worker runs the destructor: it cannot join itself, so it
  // finishes this answer, drops the download still queued, and ends.
  auto context = std::make_shared<KTVCParkResortContext>();
  const std::weak_ptr<KTVCParkResortContext> sharedWithTheWorker = context;
  manager->configureWithParkResortContext(std::move(context));
  auto later = std::make_shared<RecordingListener>();
  manager->registerEntitlementListener(later);
  std::shared_ptr<FileEntitlementsManager> lastOwner = std::move(manager);
  std::promise<void> bothQueued;
  listener->onCallback = [&lastOwner, queued = bothQueued.get_future().share()] {
    queued.wait_for(kPatience);
    lastOwner.reset();
  };
  for (int i = 0; i < 2; ++i) {
    lastOwner->beginUpdateEntitlementsOfFilterType(ENTMEntitlementFilterType::annualPasses, std::nullopt);
  }
  bothQueued.set_value();
  ASSERT_TRUE(later->waitFor(1)) << "the answer in progress still reaches every listener";
  // The worker's share of the state goes when it has ended.
  for (int wait = 0; !sharedWithTheWorker.expired() && wait < 3000; ++wait) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  ASSERT_TRUE(sharedWithTheWorker.expired()) << "the worker never ended";
  EXPECT_EQ(listener->events().size(), 1u);
  EXPECT_EQ(later->events().size(), 1u) << "the queued download was dropped";
}

}  // namespace
}  // namespace varnel::standalone
