#pragma once
// The renewal road sends each request through the module's own request
// functions, which map failures to commerce errors and call nothing at all for
// some answers. To know that a request is over in every case, and what the
// service really said (a lost answer or a refusal, the refusal's type), the
// road hands those functions a decorator of the host's service or URL
// session that reports once the module's callbacks have run.

#include <functional>
#include <memory>
#include <optional>

#include "varnel/host/KTVRPrivateDataService.h"
#include "varnel/platform/URLSession.h"

namespace varnel::checkout_detail {

/// One request's end: what the module's callbacks reported and what the
/// transport answered before the module's handling.
struct RequestEnd {
  /// The module's success callback ran (with `value`), or its failure callback
  /// (with `error`); neither when it dropped the answer or sent nothing.
  bool succeeded = false;
  bool failed = false;
  std::optional<Json> value;
  std::optional<Error> error;
  /// Something was sent.
  bool sent = false;
  /// The transport's failure, before any mapping.
  std::optional<Error> transportError;
  /// The HTTP status, when the answer came through the URL session.
  std::optional<long> status;

  /// The answer was lost on the way: the request may have reached the service.
  bool answerLost() const;
  /// The booking error body's first "typeId"; empty when there is none.
  std::string refusalType() const;
  /// The service answered with an error body of its own (a refusal); a
  /// server failure without one (a gateway's 502) is not.
  bool refusedByService() const;
};

using RequestFinished = std::function<void(RequestEnd end)>;

/// One request: its callbacks for the module's function, and the decorated
/// service and session to give it. `finished` runs once, on the thread the
/// answer arrives on, after the module's callbacks; or at once from
/// `nothingSent()` when the function sent nothing.
class WatchedRequest : public std::enable_shared_from_this<WatchedRequest> {
 public:
  static std::shared_ptr<WatchedRequest> create(std::shared_ptr<KTVRPrivateDataService> service,
                                                HTTPHeaderFields extraHeaders, RequestFinished finished);

  KTVRSuccessBlock success();
  KTVRFailureBlock failure();
  /// The host's service, with `extraHeaders` added to every POST.
  KTVRPrivateDataService& service();
  /// The registered URL session, watched.
  std::shared_ptr<URLSession> session();
  /// Ends the request if nothing was sent by the function that was given it.
  void nothingSent();

 private:
  class Service;
  class Session;
  WatchedRequest() = default;
  void end();

  std::shared_ptr<KTVRPrivateDataService> inner_;
  HTTPHeaderFields extraHeaders_;
  RequestFinished finished_;
  std::shared_ptr<KTVRPrivateDataService> service_;
  RequestEnd end_;
  bool ended_ = false;
};

}  // namespace varnel::checkout_detail
