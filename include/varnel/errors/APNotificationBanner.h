#pragma once
// Shows a commerce error to the guest as one of the host's notification
// banners, with the resort's help phone number on service banners.

#include <memory>

#include "varnel/errors/APError.h"
#include "varnel/host/KTVCParkResortContext.h"
#include "varnel/host/KTVRNotificationBanner.h"

namespace varnel {

class APNotificationBanner {
 public:
  /// Picks the banner by the error's kind (transactional, service, or
  /// validation for the rest), fills its message for the context's resort and
  /// shows it. Without a context nothing is shown. The retry block, when not
  /// empty, is offered on service banners whose error may be retried.
  /// Main thread only.
  static void showNotificationBanner(APError error, const std::shared_ptr<KTVCParkResortContext>& context,
                                     KTVRRetryBlock retryBlock = {});
};

}  // namespace varnel
