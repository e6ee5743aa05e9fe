#pragma once
// The platform URL session over the stand-alone transport (the same one as
// the private data service, so connections are shared). Completions run on
// the transport's worker thread: (body, response, none) for any answer,
// whatever its status; (none, none, error) when no answer arrived. A
// cancelled task completes with nothing. Destroying the session cancels its
// tasks; no completion runs after the destructor has returned.

#include <memory>

#include "varnel/platform/URLSession.h"
#include "varnel/standalone/network/CallbackGate.h"
#include "varnel/standalone/network/HttpClient.h"

namespace varnel::standalone {

class CurlURLSession final : public URLSession {
 public:
  explicit CurlURLSession(std::shared_ptr<HttpClient> client);
  ~CurlURLSession() override;

  std::shared_ptr<URLSessionDataTask> dataTask(URLRequest request, Completion completion) override;

 private:
  class Task;
  std::shared_ptr<HttpClient> client_;
  std::shared_ptr<CallbackGate> gate_ = std::make_shared<CallbackGate>();
  CallTracker<URLSessionDataTask> tasks_;
};

}  // namespace varnel::standalone
