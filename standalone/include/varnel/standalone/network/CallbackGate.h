#pragma once
// What an owner of requests (the private data service, the URL session)
// needs so that nothing outlives it unnoticed:
//  - CallbackGate lets callbacks through until closed. Once close() has
//    returned, no callback runs any more: close() waits for one that is
//    running on another thread, and may be called from inside a callback
//    (the rest of that callback still runs, nothing after it).
//  - CallTracker keeps the calls under way (weakly) so that the owner's
//    destructor can cancel them all.

#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace varnel::standalone {

class CallbackGate {
 public:
  /// Runs `callback` unless the gate is closed; true when it ran.
  bool run(const std::function<void()>& callback) {
    std::lock_guard lock(mutex_);
    if (!open_) return false;
    callback();
    return true;
  }
  void close() {
    std::lock_guard lock(mutex_);
    open_ = false;
  }

 private:
  std::recursive_mutex mutex_;
  bool open_ = true;
};

/// `Call` has a cancel().
template <typename Call>
class CallTracker {
 public:
  /// Runs `start`, which makes the call, and records the call it returns. The
  /// lock is held throughout, and cancelAll() takes it too: an owner released
  /// by a callback on another thread (possibly before `start` has returned)
  /// waits in its destructor until the call is recorded.
  template <typename Start>
  std::shared_ptr<Call> track(Start&& start) {
    std::lock_guard lock(mutex_);
    std::shared_ptr<Call> call = std::forward<Start>(start)();
    std::erase_if(calls_, [](const auto& weak) { return weak.expired(); });
    calls_.push_back(call);
    return call;
  }

  /// Cancels every recorded call that still exists.
  void cancelAll() {
    std::lock_guard lock(mutex_);
    for (auto& weak : calls_) {
      if (auto call = weak.lock()) call->cancel();
    }
  }

 private:
  std::mutex mutex_;
  std::vector<std::weak_ptr<Call>> calls_;
};

}  // namespace varnel::standalone
