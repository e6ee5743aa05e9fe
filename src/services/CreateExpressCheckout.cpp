// Pays for a renewal order with a stored card (the express checkout).

#include "CommerceRequestSupport.h"
#include "varnel/entitlements/VNLVarnel.h"
#include "varnel/host/KTVCPrintUtility.h"
#include "varnel/platform/Describe.h"
#include "varnel/services/CommerceRequests.h"

namespace varnel {
namespace {

constexpr std::string_view kCheckoutSource =
    "Classes/PrivateDataServiceExtensions/KTVRPrivateDataService+ExpressCheckout";
constexpr std::string_view kCheckoutFunction = "createExpressCheckout(orderId:parametersDictionary:success:failure:)";

}  // namespace

std::optional<std::string> expressCheckoutURL(const std::string& orderId) {
  return services_detail::environmentString("create-order-purchase", {{"order-id", orderId}});
}

void createExpressCheckout(KTVRPrivateDataService& service, const std::string& orderId,
                           const Json& parametersDictionary, KTVRSuccessBlock success, KTVRFailureBlock failure) {
  using namespace services_detail;
  const bool env2 = switchIsOn(VNLVarnel::Constants::varnelEnv2HeaderKey);
  const bool pendingOrder = switchIsOn(VNLVarnel::Constants::VarnelPendingOrderHeaderKey);
  if (!signedInKuid()) {
    KTVCPrintUtility::debugPrint(kLoginFirstMessage, moduleSite(kCheckoutSource, kCheckoutFunction));
    return;
  }

  // The checkout goes without the environment-name header. A pending-order
  // entry stays in the table until the next ENV2 replacement drops it.
  if (env2) replaceExpressCheckoutOverriddenHeaders(env2Headers(false));
  if (pendingOrder) {
    setExpressCheckoutOverriddenHeader(CommerceTestHeaders::kMockAP,
                                       std::string(CommerceTestHeaders::kPendingOrderValue));
  }

  const std::optional<std::string> url = expressCheckoutURL(orderId);
  if (!url) return;

  service.postDataUsingPath(
      *url, parametersDictionary, expressCheckoutOverriddenHeaders(), orNothing(std::move(success)),
      [failure = std::move(failure)](const std::optional<Error>& error) {
        std::optional<std::string> description;
        if (error) description = localizedDescription(*error);
        KTVCPrintUtility::debugPrint("An Error Occurred" + describe(description), moduleSite(kCheckoutSource, kCheckoutFunction));
        failWithBookingError(failure, error);
      });
}

}  // namespace varnel
