#pragma once
// The stand-alone main queue: tasks posted from any thread run on the thread
// that calls runUntil() or drain(), in the order they were posted.

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>

#include "varnel/platform/MainQueue.h"

namespace varnel::standalone {

class RunLoopMainQueue final : public MainQueue {
 public:
  void post(std::function<void()> task) override;

  /// Runs the tasks that are waiting now and those they post; returns how many ran.
  std::size_t drain();

  /// Runs tasks as they arrive until `done()` holds or `timeout` passes;
  /// answers whether `done()` held.
  bool runUntil(const std::function<bool()>& done, std::chrono::milliseconds timeout);

 private:
  std::mutex mutex_;
  std::condition_variable arrived_;
  std::deque<std::function<void()>> tasks_;
};

}  // namespace varnel::standalone
