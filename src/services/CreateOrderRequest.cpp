// Creates the renewal order with the commerce service.

#include "CommerceRequestSupport.h"
#include "varnel/entitlements/VNLVarnel.h"
#include "varnel/host/KTVCPrintUtility.h"
#include "varnel/services/CommerceRequests.h"
#include "varnel/services/URLHostEncoding.h"

namespace varnel {
namespace {

constexpr std::string_view kCreateOrderSource = "Classes/PrivateDataServiceExtensions/KTVRPrivateDataService+CreateOrder";
constexpr std::string_view kCreateOrderFunction = "createOrderRequest(parametersStruct:success:failure:)";

}  // namespace

void createOrderRequest(KTVRPrivateDataService& service, const VNLCreateOrderParameters& parametersStruct,
                        KTVRSuccessBlock success, KTVRFailureBlock failure) {
  using namespace services_detail;
  // Once sent, the ENV2 headers stay for every later order of the process.
  if (switchIsOn(VNLVarnel::Constants::varnelEnv2HeaderKey)) mergeCreateOrderOverriddenHeaders(env2Headers(true));

  const KTVRTokens tokens{{"owner_id", percentEncodedForURLHost(parametersStruct.kuid)}};
  const Json body = parametersStruct.parameterDictionary();
  const std::optional<std::string> url = environmentString("create-orders", tokens);
  if (!url) return;

  service.postDataUsingPath(
      *url, body, createOrderOverriddenHeaders(),
      [success = std::move(success)](const std::optional<Json>& result) {
        // Only an object is an order; anything else is dropped without a word.
        if (success && result && result->is_object()) success(result);
      },
      [failure = std::move(failure)](const std::optional<Error>& error) {
        KTVCPrintUtility::debugPrint("Sorry, Service Failed!", moduleSite(kCreateOrderSource, kCreateOrderFunction));
        failWithBookingError(failure, error);
      });
}

}  // namespace varnel
