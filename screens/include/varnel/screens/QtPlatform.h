#pragma once
// The platform services that the screens take from Qt when the host has not
// registered its own: the main queue is the Qt event loop, and a URL session
// over Qt's network access.

#include <memory>

#include "varnel/platform/MainQueue.h"
#include "varnel/platform/URLSession.h"

class QNetworkAccessManager;

namespace varnel {

/// Runs posted work on the thread of the application's event loop, in order.
/// Work posted before a QCoreApplication exists, or after it is gone, is dropped.
class QtMainQueue final : public MainQueue {
 public:
  void post(std::function<void()> task) override;
};

/// Plain HTTP(S) through QNetworkAccessManager, with Qt's own certificate
/// checks. Make, use and destroy it on the event loop's thread; completions
/// run there too. Destroying the session aborts what is in flight.
class QtURLSession final : public URLSession {
 public:
  QtURLSession();
  ~QtURLSession() override;
  QtURLSession(const QtURLSession&) = delete;
  QtURLSession& operator=(const QtURLSession&) = delete;

  std::shared_ptr<URLSessionDataTask> dataTask(URLRequest request, Completion completion) override;

 private:
  std::unique_ptr<QNetworkAccessManager> manager_;
};

}  // namespace varnel
