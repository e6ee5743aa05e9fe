// The guest's stored payment cards, by endpoint key or, for testers, from the
// ENV2 profile service.

#include "CommerceRequestSupport.h"
#include "varnel/entitlements/VNLVarnel.h"
#include "varnel/host/KTVCPrintUtility.h"
#include "varnel/services/CommerceRequests.h"
#include "varnel/services/URLHostEncoding.h"

namespace varnel {
namespace {

constexpr std::string_view kAccountsSource = "Classes/PrivateDataServiceExtensions/KTVRPrivateDataService+ProfileAccounts";
constexpr std::string_view kAccountsFunction = "profileAccounts(success:failure:)";
constexpr std::string_view kEndpointKey = "get-payment-accounts";

}  // namespace

void profileAccounts(KTVRPrivateDataService& service, KTVRSuccessBlock success, KTVRFailureBlock failure) {
  using namespace services_detail;
  const std::optional<std::string> kuid = signedInKuid();
  if (!kuid) {
    KTVCPrintUtility::debugPrint(kLoginFirstMessage, moduleSite(kAccountsSource, kAccountsFunction));
    return;
  }
  const std::string encodedKuid = percentEncodedForURLHost(*kuid);
  const KTVRTokens tokens{{"kuid", encodedKuid}};

  if (!switchIsOn(VNLVarnel::Constants::VarnelENV2ForPaymentKey)) {
    service.getDataUsingEndpoint(kEndpointKey, tokens, std::nullopt, orNothing(std::move(success)),
                                 orNothing(std::move(failure)));
    return;
  }

  const std::string base =
      environmentString(CommerceTestHeaders::kEnv2ProfileServiceKey)
          .value_or(std::string(CommerceTestHeaders::kEnv2ProfileServicePlaceholder));
  const std::string url = base + "/assembly/guest/id;kuid=" + encodedKuid + "/payment-accounts";
  // The endpoint must still be known to the environment, though its URL is not the one used.
  if (!environmentString(kEndpointKey, tokens)) return;
  Json parameters = Json::object();
  for (const auto& [name, value] : tokens) parameters[name] = value;
  service.getDataUsingPath(url, parameters, {}, orNothing(std::move(success)), orNothing(std::move(failure)));
}

}  // namespace varnel
