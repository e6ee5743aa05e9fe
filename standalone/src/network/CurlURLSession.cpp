#include "varnel/standalone/network/CurlURLSession.h"

#include "varnel/standalone/network/NetworkErrors.h"

namespace varnel::standalone {

class CurlURLSession::Task final : public URLSessionDataTask {
 public:
  Task(std::shared_ptr<HttpClient> client, std::shared_ptr<CallbackGate> gate, URLRequest request,
       Completion completion)
      : client_(std::move(client)),
        gate_(std::move(gate)),
        request_(std::move(request)),
        completion_(std::move(completion)) {}

  void resume() override {
    std::lock_guard lock(mutex_);
    if (started_ || cancelled_) return;
    started_ = true;
    HttpRequest request{request_.httpMethod, request_.url, request_.allHTTPHeaderFields, request_.httpBody};
    const std::string url = request_.url;
    call_ = client_->send(std::move(request), [gate = gate_, url, completion = std::move(completion_)](
                                                  HttpOutcome outcome) {
      gate->run([&] {
        if (!completion) return;
        if (outcome.failure) {
          completion(std::nullopt, std::nullopt, transportError(*outcome.failure));
        } else {
          completion(std::move(outcome.body), URLResponse{url, outcome.status, std::move(outcome.headers)},
                     std::nullopt);
        }
      });
    });
  }

  void cancel() override {
    std::shared_ptr<HttpCall> call;
    {
      std::lock_guard lock(mutex_);
      cancelled_ = true;
      call = call_;
    }
    if (call) call->cancel();
  }

 private:
  std::shared_ptr<HttpClient> client_;
  std::shared_ptr<CallbackGate> gate_;
  URLRequest request_;
  Completion completion_;
  std::mutex mutex_;
  bool started_ = false;
  bool cancelled_ = false;
  std::shared_ptr<HttpCall> call_;
};

CurlURLSession::CurlURLSession(std::shared_ptr<HttpClient> client) : client_(std::move(client)) {}

CurlURLSession::~CurlURLSession() {
  gate_->close();
  tasks_.cancelAll();
}

std::shared_ptr<URLSessionDataTask> CurlURLSession::dataTask(URLRequest request, Completion completion) {
  return tasks_.track([&] { return std::make_shared<Task>(client_, gate_, std::move(request), std::move(completion)); });
}

}  // namespace varnel::standalone
