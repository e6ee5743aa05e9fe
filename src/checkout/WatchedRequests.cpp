#include "WatchedRequests.h"

#include <utility>

namespace varnel::checkout_detail {

bool RequestEnd::answerLost() const {
  if (!transportError) return false;
  const Json& info = transportError->userInfo;
  if (!info.is_object()) return false;
  const auto flag = info.find(kErrorIsConnectionErrorKey);
  return flag != info.end() && flag->is_boolean() && flag->get<bool>();
}

std::string RequestEnd::refusalType() const {
  if (!transportError || !transportError->userInfo.is_object()) return {};
  const auto body = transportError->userInfo.find(kErrorJsonResponseKey);
  if (body == transportError->userInfo.end() || !body->is_object()) return {};
  const auto errors = body->find("errors");
  if (errors == body->end() || !errors->is_array() || errors->empty() || !errors->front().is_object()) return {};
  const auto type = errors->front().find("typeId");
  return type != errors->front().end() && type->is_string() ? type->get<std::string>() : std::string();
}

bool RequestEnd::refusedByService() const {
  const std::string type = refusalType();
  if (type.empty()) return false;
  // A body the networking made up for an answer without one ("HTTP_502"): a
  // gateway's failure says nothing of whether the service acted.
  const Json& info = transportError->userInfo;
  const auto answered = info.find(kErrorStatusCodeKey);
  const bool serverFailure =
      answered != info.end() && answered->is_number_integer() && answered->get<long>() >= 500;
  return !(type.starts_with("HTTP_") && serverFailure);
}

class WatchedRequest::Service final : public KTVRPrivateDataService {
 public:
  explicit Service(WatchedRequest& owner) : owner_(owner) {}

  void getDataUsingEndpoint(std::string_view endpointKey, const KTVRTokens& tokens,
                            const std::optional<Json>& parameters, KTVRSuccessBlock success,
                            KTVRFailureBlock failure) override {
    owner_.end_.sent = true;
    owner_.inner_->getDataUsingEndpoint(endpointKey, tokens, parameters, watch(std::move(success)),
                                        watch(std::move(failure)));
  }
  void getDataUsingPath(const std::string& url, const std::optional<Json>& parameters,
                        const HTTPHeaderFields& overrideHeaders, KTVRSuccessBlock success,
                        KTVRFailureBlock failure) override {
    owner_.end_.sent = true;
    owner_.inner_->getDataUsingPath(url, parameters, overrideHeaders, watch(std::move(success)),
                                    watch(std::move(failure)));
  }
  void postDataUsingPath(const std::string& url, const Json& parameters, const HTTPHeaderFields& overrideHeaders,
                         KTVRSuccessBlock success, KTVRFailureBlock failure) override {
    owner_.end_.sent = true;
    HTTPHeaderFields headers = overrideHeaders;
    for (const auto& [name, value] : owner_.extraHeaders_) headers.insert_or_assign(name, value);
    owner_.inner_->postDataUsingPath(url, parameters, headers, watch(std::move(success)), watch(std::move(failure)));
  }
  HTTPHeaderFields requestSerializerHTTPRequestHeaders() const override {
    return owner_.inner_->requestSerializerHTTPRequestHeaders();
  }
  void setAuthorizationHeaderForRequest(URLRequest& request) const override {
    owner_.inner_->setAuthorizationHeaderForRequest(request);
  }

 private:
  KTVRSuccessBlock watch(KTVRSuccessBlock success) {
    return [self = owner_.shared_from_this(), success = std::move(success)](const std::optional<Json>& value) {
      if (success) success(value);
      self->end();
    };
  }
  KTVRFailureBlock watch(KTVRFailureBlock failure) {
    return [self = owner_.shared_from_this(), failure = std::move(failure)](const std::optional<Error>& error) {
      self->end_.transportError = error;
      if (failure) failure(error);
      self->end();
    };
  }

  WatchedRequest& owner_;
};

class WatchedRequest::Session final : public URLSession {
 public:
  Session(std::shared_ptr<WatchedRequest> owner, std::shared_ptr<URLSession> inner)
      : owner_(std::move(owner)), inner_(std::move(inner)) {}

  std::shared_ptr<URLSessionDataTask> dataTask(URLRequest request, Completion completion) override {
    owner_->end_.sent = true;
    return inner_->dataTask(std::move(request), [self = owner_, completion = std::move(completion)](
                                                    std::optional<std::string> data,
                                                    std::optional<URLResponse> response, std::optional<Error> error) {
      self->end_.transportError = error;
      if (response) self->end_.status = response->statusCode;
      // The module reports a status other than 200 without an error; the
      // service's own error body is kept for the guest's message.
      if (!error && response && response->statusCode && *response->statusCode != 200) {
        JsonParse body = data ? parseJson(*data) : JsonParse{};
        Json info{{kErrorIsConnectionErrorKey, false}, {kErrorStatusCodeKey, *response->statusCode}};
        if (body && body.value->is_object()) info[kErrorJsonResponseKey] = std::move(*body.value);
        self->end_.transportError = Error{"Varnel.HTTP", *response->statusCode, std::move(info)};
      }
      if (completion) completion(std::move(data), std::move(response), std::move(error));
      self->end();
    });
  }

 private:
  std::shared_ptr<WatchedRequest> owner_;
  std::shared_ptr<URLSession> inner_;
};

std::shared_ptr<WatchedRequest> WatchedRequest::create(std::shared_ptr<KTVRPrivateDataService> service,
                                                       HTTPHeaderFields extraHeaders, RequestFinished finished) {
  std::shared_ptr<WatchedRequest> request(new WatchedRequest());
  request->inner_ = std::move(service);
  request->extraHeaders_ = std::move(extraHeaders);
  request->finished_ = std::move(finished);
  if (request->inner_) request->service_ = std::make_shared<Service>(*request);
  return request;
}

KTVRSuccessBlock WatchedRequest::success() {
  return [self = shared_from_this()](const std::optional<Json>& value) {
    self->end_.succeeded = true;
    self->end_.value = value;
  };
}

KTVRFailureBlock WatchedRequest::failure() {
  return [self = shared_from_this()](const std::optional<Error>& error) {
    self->end_.failed = true;
    self->end_.error = error;
  };
}

KTVRPrivateDataService& WatchedRequest::service() { return *service_; }

std::shared_ptr<URLSession> WatchedRequest::session() {
  auto inner = URLSession::shared();
  if (!inner) return nullptr;
  return std::make_shared<Session>(shared_from_this(), std::move(inner));
}

void WatchedRequest::nothingSent() {
  if (!end_.sent) end();
}

void WatchedRequest::end() {
  // Runs once: the answer's thread, or the caller's when nothing was sent.
  if (ended_) return;
  ended_ = true;
  auto finished = std::move(finished_);
  if (finished) finished(std::move(end_));
}

}  // namespace varnel::checkout_detail
