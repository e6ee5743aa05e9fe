#include "varnel/standalone/RunLoopMainQueue.h"

namespace varnel::standalone {

void RunLoopMainQueue::post(std::function<void()> task) {
  {
    std::lock_guard lock(mutex_);
    tasks_.push_back(std::move(task));
  }
  arrived_.notify_all();
}

std::size_t RunLoopMainQueue::drain() {
  std::size_t ran = 0;
  for (;;) {
    std::function<void()> task;
    {
      std::lock_guard lock(mutex_);
      if (tasks_.empty()) return ran;
      task = std::move(tasks_.front());
      tasks_.pop_front();
    }
    task();
    ++ran;
  }
}

bool RunLoopMainQueue::runUntil(const std::function<bool()>& done, std::chrono::milliseconds timeout) {
  const auto deadline = std::chrono::steady_clock::now() + timeout;
  for (;;) {
    drain();
    if (done()) return true;
    std::unique_lock lock(mutex_);
    if (!arrived_.wait_until(lock, deadline, [&] { return !tasks_.empty(); })) {
      lock.unlock();
      drain();
      return done();
    }
  }
}

}  // namespace varnel::standalone
