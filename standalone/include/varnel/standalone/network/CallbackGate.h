#pragma once
// Lets callbacks through until closed. Once close() has returned, no
// callback runs any more: close() waits for one that is running on another
// thread, and may be called from inside a callback (the rest of that
// callback still runs, nothing after it).

#include <functional>
#include <mutex>

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

}  // namespace varnel::standalone
