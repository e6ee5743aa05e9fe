#pragma once
// The host's main queue. Work posted here runs later, in order, on the thread
// that drives the queue (the stand-alone run loop, or the Qt event loop).

#include <functional>

namespace varnel {

class MainQueue {
 public:
  virtual ~MainQueue() = default;
  virtual void post(std::function<void()> task) = 0;
};

}  // namespace varnel
