#include "CommerceRequestSupport.h"

#include <mutex>
#include <utility>

#include "varnel/errors/ErrorMapping.h"
#include "varnel/host/KTVRAuthenticationService.h"
#include "varnel/host/KTVREnvironment.h"
#include "varnel/host/Registry.h"
#include "varnel/platform/UserDefaults.h"
#include "varnel/services/CommerceRequests.h"

namespace varnel {
namespace {

// The override headers of the create-order and express-checkout requests:
// process-wide, never persisted, and never cleared by the module.
struct OverriddenHeaderTables {
  std::mutex mutex;
  HTTPHeaderFields createOrder;
  HTTPHeaderFields expressCheckout;
};

OverriddenHeaderTables& tables() {
  static OverriddenHeaderTables instance;
  return instance;
}

}  // namespace

HTTPHeaderFields createOrderOverriddenHeaders() {
  std::lock_guard lock(tables().mutex);
  return tables().createOrder;
}

HTTPHeaderFields expressCheckoutOverriddenHeaders() {
  std::lock_guard lock(tables().mutex);
  return tables().expressCheckout;
}

void resetOverriddenHeadersForTesting() {
  std::lock_guard lock(tables().mutex);
  tables().createOrder.clear();
  tables().expressCheckout.clear();
}

namespace services_detail {

void mergeCreateOrderOverriddenHeaders(const HTTPHeaderFields& headers) {
  std::lock_guard lock(tables().mutex);
  for (const auto& [name, value] : headers) tables().createOrder.insert_or_assign(name, value);
}

void replaceExpressCheckoutOverriddenHeaders(HTTPHeaderFields headers) {
  std::lock_guard lock(tables().mutex);
  tables().expressCheckout = std::move(headers);
}

void setExpressCheckoutOverriddenHeader(std::string_view name, std::string value) {
  std::lock_guard lock(tables().mutex);
  tables().expressCheckout.insert_or_assign(std::string(name), std::move(value));
}

bool switchIsOn(std::string_view key) {
  const auto defaults = host::Registry::get<UserDefaults>();
  return defaults && defaults->boolForKey(key);
}

std::optional<std::string> signedInKuid() {
  const auto authentication = KTVRAuthenticationService::sharedInstance();
  return authentication ? authentication->kuid() : std::nullopt;
}

std::optional<std::string> environmentString(std::string_view key, const KTVRTokens& tokens) {
  const auto environment = KTVRServices::environment();
  if (!environment) return std::nullopt;
  const std::optional<Json> value = environment->valueForKey(key, tokens);
  if (!value || !value->is_string()) return std::nullopt;
  return value->get<std::string>();
}

HTTPHeaderFields env2Headers(bool withEnvironmentName) {
  using H = CommerceTestHeaders;
  std::string serviceHost =
      environmentString(H::kEnv2ServiceHostKey).value_or(std::string(H::kEnv2ServiceHostPlaceholder));
  if (serviceHost.empty() || serviceHost.back() != '/') serviceHost += '/';
  HTTPHeaderFields headers{
      {std::string(H::kSFServiceHost), std::move(serviceHost)},
      {std::string(H::kTKXServiceHost), std::string(H::kTKXQAHost)},
      {std::string(H::kTKXServicePath), std::string(H::kTKXServicePathValue)},
  };
  if (withEnvironmentName) headers.emplace(std::string(H::kPanlookEnv), std::string(H::kPanlookEnvValue));
  return headers;
}

KTVRSuccessBlock orNothing(KTVRSuccessBlock block) {
  if (block) return block;
  return [](const std::optional<Json>&) {};
}

KTVRFailureBlock orNothing(KTVRFailureBlock block) {
  if (block) return block;
  return [](const std::optional<Error>&) {};
}

void failWithBookingError(const KTVRFailureBlock& failure, const std::optional<Error>& error) {
  if (!failure) return;
  if (!error) return failure(std::nullopt);
  if (const std::optional<APError> mapped = APBookingServiceError(*error)) return failure(toError(*mapped));
  failure(error);
}

}  // namespace services_detail
}  // namespace varnel
