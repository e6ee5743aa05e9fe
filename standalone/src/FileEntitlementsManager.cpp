#include "varnel/standalone/FileEntitlementsManager.h"

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <mutex>

#include "varnel/standalone/GuestDataFile.h"

namespace varnel::standalone {

/// Everything the worker thread touches. Owned jointly by the manager and the
/// worker, so an answer in progress never reaches into a destroyed manager.
struct FileEntitlementsManager::State {
  explicit State(std::filesystem::path path) : file(std::move(path)) {}

  const std::filesystem::path file;

  mutable std::mutex mutex;
  std::condition_variable wake;
  std::optional<GuestData> store;
  std::shared_ptr<KTVCParkResortContext> context;
  std::vector<std::weak_ptr<ENTMEntitlementsListener>> listeners;
  std::deque<std::function<void(State&)>> answers;
  bool stopping = false;

  /// Reads the file; on success the store is replaced.
  Result<GuestData> reread() {
    auto guest = readGuestDataFile(file);  // no lock held during I/O
    if (guest) {
      std::lock_guard lock(mutex);
      store = guest.value();
    }
    return guest;
  }

  bool isRegistered(const ENTMEntitlementsListener* listener) const {
    std::lock_guard lock(mutex);
    return std::any_of(listeners.begin(), listeners.end(),
                       [listener](const auto& entry) { return entry.lock().get() == listener; });
  }

  /// Calls `notify` on each listener registered now and still registered when
  /// its turn comes. No lock is held during the calls.
  void deliver(const std::function<void(ENTMEntitlementsListener&)>& notify) {
    std::vector<std::shared_ptr<ENTMEntitlementsListener>> recipients;
    {
      std::lock_guard lock(mutex);
      for (const auto& entry : listeners) {
        if (auto listener = entry.lock()) recipients.push_back(std::move(listener));
      }
    }
    for (const auto& listener : recipients) {
      if (isRegistered(listener.get())) notify(*listener);
    }
  }

  void run() {
    for (;;) {
      std::function<void(State&)> answer;
      {
        std::unique_lock lock(mutex);
        wake.wait(lock, [this] { return stopping || !answers.empty(); });
        if (stopping) return;
        answer = std::move(answers.front());
        answers.pop_front();
      }
      answer(*this);
    }
  }
};

FileEntitlementsManager::FileEntitlementsManager(std::filesystem::path file)
    : file_(file), state_(std::make_shared<State>(std::move(file))) {}

FileEntitlementsManager::~FileEntitlementsManager() {
  {
    std::lock_guard lock(state_->mutex);
    state_->stopping = true;
    state_->answers.clear();
  }
  state_->wake.notify_all();
  if (!worker_.joinable()) return;
  if (worker_.get_id() == std::this_thread::get_id()) {
    worker_.detach();  // see the header: the last owner let go from a callback
  } else {
    worker_.join();
  }
}

Result<std::shared_ptr<FileEntitlementsManager>> FileEntitlementsManager::open(std::filesystem::path file) {
  auto manager = std::make_shared<FileEntitlementsManager>(std::move(file));
  if (auto error = manager->load()) return *error;
  return manager;
}

std::optional<Error> FileEntitlementsManager::load() {
  auto guest = state_->reread();
  if (!guest) return guest.error();
  return std::nullopt;
}

std::optional<std::vector<ENTMAffiliation>> FileEntitlementsManager::affiliations() const {
  std::lock_guard lock(state_->mutex);
  return state_->store ? state_->store->affiliations : std::nullopt;
}

std::vector<Json> FileEntitlementsManager::theaterTickets() const {
  std::lock_guard lock(state_->mutex);
  return state_->store ? state_->store->theaterTickets : std::vector<Json>{};
}

std::optional<GuestData> FileEntitlementsManager::guestData() const {
  std::lock_guard lock(state_->mutex);
  return state_->store;
}

std::shared_ptr<KTVCParkResortContext> FileEntitlementsManager::parkResortContext() const {
  std::lock_guard lock(state_->mutex);
  return state_->context;
}

void FileEntitlementsManager::configureWithParkResortContext(std::shared_ptr<KTVCParkResortContext> context) {
  std::lock_guard lock(state_->mutex);
  state_->context = std::move(context);
}

std::optional<std::string> FileEntitlementsManager::kuid() const {
  std::lock_guard lock(state_->mutex);
  return state_->store ? state_->store->kuid : std::nullopt;
}

std::optional<ENTMUserProfile> FileEntitlementsManager::userProfile() const {
  std::lock_guard lock(state_->mutex);
  return state_->store ? state_->store->userProfile : std::nullopt;
}

void FileEntitlementsManager::registerEntitlementListener(std::weak_ptr<ENTMEntitlementsListener> listener) {
  auto candidate = listener.lock();
  if (!candidate) return;
  std::lock_guard lock(state_->mutex);
  auto& listeners = state_->listeners;
  std::erase_if(listeners, [](const auto& entry) { return entry.expired(); });
  const bool known = std::any_of(listeners.begin(), listeners.end(),
                                 [&](const auto& entry) { return entry.lock() == candidate; });
  if (!known) listeners.push_back(std::move(listener));
}

void FileEntitlementsManager::removeEntitlementListener(const ENTMEntitlementsListener* listener) {
  std::lock_guard lock(state_->mutex);
  std::erase_if(state_->listeners, [listener](const auto& entry) {
    auto registered = entry.lock();
    return !registered || registered.get() == listener;
  });
}

void FileEntitlementsManager::beginUpdateEntitlementsOfFilterType(ENTMEntitlementFilterType,
                                                                  const std::optional<Json>& userInfo) {
  enqueue([userInfo](State& state) {
    auto guest = state.reread();
    if (!guest) {
      const std::optional<Error> error = guest.error();
      state.deliver([&](ENTMEntitlementsListener& listener) {
        listener.entitlementsManagerFetchFailed(ENTMEntitlementNameType::entitlements, error, userInfo);
      });
      return;
    }
    const ENTMAnyList entitlements(guest.value().entitlements.begin(), guest.value().entitlements.end());
    state.deliver([&](ENTMEntitlementsListener& listener) { listener.entitlementsUpdated(entitlements, userInfo); });
  });
}

void FileEntitlementsManager::retrieveAffiliationsFromUserInfo(const std::optional<Json>& userInfo) {
  enqueue([userInfo](State& state) {
    auto guest = state.reread();
    if (!guest) {
      const std::optional<Error> error = guest.error();
      state.deliver([&](ENTMEntitlementsListener& listener) {
        listener.entitlementsManagerFetchFailed(ENTMEntitlementNameType::affiliations, error, userInfo);
      });
      return;
    }
    const auto& affiliations = guest.value().affiliations;
    state.deliver([&](ENTMEntitlementsListener& listener) {
      listener.entitlementsManagerUpdatedAffiliations(affiliations, userInfo);
    });
  });
}

std::optional<ENTMAnyList> FileEntitlementsManager::persistedEntitlementsOfType(ENTMEntitlementType) const {
  std::lock_guard lock(state_->mutex);
  if (!state_->store) return std::nullopt;
  return ENTMAnyList(state_->store->entitlements.begin(), state_->store->entitlements.end());
}

void FileEntitlementsManager::enqueue(std::function<void(State&)> answer) {
  {
    std::lock_guard lock(state_->mutex);
    if (state_->stopping) return;
    state_->answers.push_back(std::move(answer));
    if (!worker_.joinable()) worker_ = std::thread([state = state_] { state->run(); });
  }
  state_->wake.notify_one();
}

}  // namespace varnel::standalone
