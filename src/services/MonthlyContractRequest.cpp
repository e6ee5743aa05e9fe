// The monthly-payment contract of an order, sent by the module itself through
// the shared URL session with the host service's headers and authorization.

#include "CommerceRequestSupport.h"
#include "varnel/entitlements/VNLVarnel.h"
#include "varnel/host/KTVCPrintUtility.h"
#include "varnel/platform/Describe.h"
#include "varnel/services/CommerceRequests.h"

namespace varnel {
namespace {

constexpr std::string_view kContractSource = "Classes/PrivateDataServiceExtensions/KTVRPrivateDataService+Contract";
constexpr std::string_view kContractFunction = "monthlyContractRequest(orderId:parameters:successResponse:failureResponse:)";

/// The body as JSON text; none when it cannot be written (text that is not UTF-8).
std::optional<std::string> serialised(const Json& parameters) {
  try {
    return parameters.dump();
  } catch (const Json::exception&) {
    return std::nullopt;
  }
}

void complete(const KTVRSuccessBlock& successResponse, const KTVRFailureBlock& failureResponse,
              const std::optional<std::string>& data, const std::optional<URLResponse>& response,
              const std::optional<Error>& error) {
  using services_detail::moduleSite;
  if (!data || error) {
    KTVCPrintUtility::debugPrint("error=" + describe(error), moduleSite(kContractSource, kContractFunction));
    if (failureResponse) failureResponse(error);
    return;
  }
  if (response && response->isHTTPResponse() && *response->statusCode != 200) {
    KTVCPrintUtility::debugPrint("statusCode should be 200, but is " + std::to_string(*response->statusCode),
                                 moduleSite(kContractSource, kContractFunction));
    KTVCPrintUtility::debugPrint("response = " + describe(response), moduleSite(kContractSource, kContractFunction));
    // Deliberately no error: callers take a missing error for a failure too.
    if (failureResponse) failureResponse(std::nullopt);
    return;
  }
  // Only an object or an array is a JSON document here; anything else is dropped.
  JsonParse answer = parseJson(*data);
  if (!answer || !(answer.value->is_object() || answer.value->is_array())) return;
  if (successResponse) successResponse(std::move(*answer.value));
}

}  // namespace

void monthlyContractRequest(KTVRPrivateDataService& service, const std::string& orderId, const Json& parameters,
                            KTVRSuccessBlock successResponse, KTVRFailureBlock failureResponse) {
  monthlyContractRequest(service, URLSession::shared(), orderId, parameters, std::move(successResponse),
                         std::move(failureResponse));
}

void monthlyContractRequest(KTVRPrivateDataService& service, const std::shared_ptr<URLSession>& session,
                            const std::string& orderId, const Json& parameters, KTVRSuccessBlock successResponse,
                            KTVRFailureBlock failureResponse) {
  using namespace services_detail;
  const bool env2 = switchIsOn(VNLVarnel::Constants::varnelEnv2HeaderKey);
  const std::optional<std::string> url = environmentString("create-contract", {{"order-id", orderId}});
  if (!url) return;

  URLRequest request;
  request.url = *url;
  request.httpMethod = "POST";
  for (const auto& [name, value] : service.requestSerializerHTTPRequestHeaders()) request.setValue(value, name);
  if (env2) {
    for (const auto& [name, value] : env2Headers(true)) request.setValue(value, name);
  }
  request.setValue("application/json", "Content-Type");
  request.httpBody = serialised(parameters);
  service.setAuthorizationHeaderForRequest(request);

  if (!session) {
    const Error noSession{kCommerceRequestErrorDomain, kNoURLSessionErrorCode,
                          Json{{kErrorLocalizedDescriptionKey, "No URL session is available to send the request."}}};
    complete(successResponse, failureResponse, std::nullopt, std::nullopt, noSession);
    return;
  }
  auto task = session->dataTask(
      std::move(request),
      [successResponse = std::move(successResponse), failureResponse = std::move(failureResponse)](
          std::optional<std::string> data, std::optional<URLResponse> response, std::optional<Error> error) {
        complete(successResponse, failureResponse, data, response, error);
      });
  if (task) task->resume();
}

}  // namespace varnel
