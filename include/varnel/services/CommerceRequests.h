#pragma once
// The four requests of a renewal purchase to the commerce service, sent through
// the host's networking service (the monthly contract through the shared URL
// session). Each takes a success and a failure callback and returns nothing;
// some failures deliberately call neither (see each operation). Callbacks run
// on the thread the host service or the URL session answers on; nothing here
// moves them to the main queue.
//
// Tester switches read from the user-defaults store (VNLVarnel::Constants):
//   "VarnelENV2HeaderKey"        send the ENV2 test headers
//   "VarnelENV2ForPaymentCards"  list cards from the ENV2 profile service
//   "VarnelPendingOrderHeader"   ask the test back end for a pending order at checkout
//
// Endpoint keys resolved through the host environment: "get-payment-accounts"
// (token "kuid"), "create-orders" ("owner_id"), "create-contract" ("order-id"),
// "create-order-purchase" ("order-id"); "env2-profile-service" and
// "env2-service-host" give the ENV2 addresses (placeholders when missing).

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "varnel/host/KTVRPrivateDataService.h"
#include "varnel/platform/Json.h"
#include "varnel/platform/URLSession.h"
#include "varnel/services/VNLCreateOrderParameters.h"

namespace varnel {

/// The guest's stored payment cards. Nobody signed in: logs "Please, login
/// first" and calls nothing. Both callbacks receive the host's value or error
/// unchanged. In ENV2 mode an endpoint key that does not resolve calls nothing.
void profileAccounts(KTVRPrivateDataService& service, KTVRSuccessBlock success, KTVRFailureBlock failure);

/// Creates the renewal order whose body is `parametersStruct.parameterDictionary()`.
/// Success only with an object answer (anything else calls nothing); failure
/// with the commerce error of the booking-service mapping as a platform error,
/// else the host's error, else none. With the ENV2 switch on, the ENV2 headers
/// join the create-order override headers for the rest of the process.
void createOrderRequest(KTVRPrivateDataService& service, const VNLCreateOrderParameters& parametersStruct,
                        KTVRSuccessBlock success, KTVRFailureBlock failure);

/// Fetches the monthly-payment contract of `orderId`, POSTing `parameters` as
/// JSON through the shared URL session with the service's default headers and
/// the guest's authorization. A status other than 200 fails with no error (a
/// missing error is a failure too); an answer that is not JSON calls nothing.
/// Without a registered URL session it fails with kCommerceRequestErrorDomain /
/// kNoURLSessionErrorCode.
void monthlyContractRequest(KTVRPrivateDataService& service, const std::string& orderId, const Json& parameters,
                            KTVRSuccessBlock successResponse, KTVRFailureBlock failureResponse);
/// The same, sent through `session` (none: fails as without a registered session).
void monthlyContractRequest(KTVRPrivateDataService& service, const std::shared_ptr<URLSession>& session,
                            const std::string& orderId, const Json& parameters, KTVRSuccessBlock successResponse,
                            KTVRFailureBlock failureResponse);

/// Pays for `orderId` with the body `parametersDictionary`. Nobody signed in:
/// logs "Please, login first" and calls nothing. The ENV2 switch replaces the
/// express-checkout override headers; the pending-order switch adds
/// "X-Orvane-Internal-Mock-AP" to them until the next ENV2 replacement.
/// Failures are mapped as for createOrderRequest.
void createExpressCheckout(KTVRPrivateDataService& service, const std::string& orderId,
                           const Json& parametersDictionary, KTVRSuccessBlock success, KTVRFailureBlock failure);

/// Where createExpressCheckout sends `orderId`'s checkout; none when the
/// environment does not resolve "create-order-purchase".
std::optional<std::string> expressCheckoutURL(const std::string& orderId);

/// Errors the module makes itself when a request cannot be sent.
inline constexpr const char* kCommerceRequestErrorDomain = "Varnel.CommerceRequest";
/// No URL session is registered with the host registry.
inline constexpr long kNoURLSessionErrorCode = 1;

/// Names and fixed values of the test headers.
struct CommerceTestHeaders {
  CommerceTestHeaders() = delete;
  static constexpr std::string_view kSFServiceHost = "X-Orvane-Internal-SFServiceHost";
  static constexpr std::string_view kTKXServiceHost = "X-Orvane-Internal-TKXServiceHost";
  static constexpr std::string_view kTKXServicePath = "X-Orvane-Internal-TKXServicePath";
  static constexpr std::string_view kPanlookEnv = "X-Orvane-Internal-Panlook-Env";
  static constexpr std::string_view kMockAP = "X-Orvane-Internal-Mock-AP";

  static constexpr std::string_view kTKXServicePathValue = "/TKXApp/TKXGatewayServlet";
  static constexpr std::string_view kPanlookEnvValue = "env2";
  /// Tells the test back end to answer as for a pending order.
  static constexpr std::string_view kPendingOrderValue = "tkx_error_871";

  /// Environment keys of the ENV2 addresses, and what stands in without them.
  static constexpr std::string_view kEnv2ProfileServiceKey = "env2-profile-service";
  static constexpr std::string_view kEnv2ServiceHostKey = "env2-service-host";
  static constexpr std::string_view kEnv2ProfileServicePlaceholder = "https://env2-profile.varnel.invalid";
  static constexpr std::string_view kEnv2ServiceHostPlaceholder = "https://env2-services.varnel.invalid/";
  static constexpr std::string_view kTKXQAHost = "tkx-gateway-qa.varnel.invalid";
};

/// The override headers the next create-order / express-checkout request will
/// carry (a copy). Process-wide; written only by those two operations.
HTTPHeaderFields createOrderOverriddenHeaders();
HTTPHeaderFields expressCheckoutOverriddenHeaders();

/// For tests only: empties both override-header tables, as at process start.
/// The module itself never clears them.
void resetOverriddenHeadersForTesting();

}  // namespace varnel
