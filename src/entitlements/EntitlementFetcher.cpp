#include "varnel/entitlements/EntitlementFetcher.h"

#include "varnel/entitlements/ToVNLEntitlement.h"
#include "varnel/entitlements/VNLEntitlementErrors.h"
#include "varnel/errors/ErrorMapping.h"
#include "varnel/host/KTVCPrintUtility.h"

namespace varnel {
namespace {

constexpr const char* kSourceFile = "Classes/EntitlementFetcher";

}  // namespace

void EntitlementFetcherDelegate::didRetrieveAffiliations(EntitlementFetcher&) {}

std::shared_ptr<EntitlementFetcher> EntitlementFetcher::create() { return std::make_shared<EntitlementFetcher>(Token{}); }

std::shared_ptr<EntitlementFetcher> EntitlementFetcher::create(std::shared_ptr<KTVCParkResortContext> context) {
  auto fetcher = create();
  if (auto manager = ENTMEntitlementsManager::sharedInstance()) manager->configureWithParkResortContext(std::move(context));
  return fetcher;
}

std::shared_ptr<EntitlementFetcherDelegate> EntitlementFetcher::delegate() const {
  std::lock_guard lock(mutex_);
  return delegate_.lock();
}

void EntitlementFetcher::setDelegate(std::weak_ptr<EntitlementFetcherDelegate> delegate) {
  std::lock_guard lock(mutex_);
  delegate_ = std::move(delegate);
}

std::optional<EntitlementFetcher::Entitlements> EntitlementFetcher::entitlements() const {
  std::lock_guard lock(mutex_);
  return entitlements_;
}

void EntitlementFetcher::setEntitlements(std::optional<Entitlements> entitlements) {
  {
    std::lock_guard lock(mutex_);
    entitlements_ = std::move(entitlements);
  }
  if (auto listener = delegate()) listener->didRetrieveEntitlements(*this);
}

std::optional<std::vector<ENTMAffiliation>> EntitlementFetcher::affiliations() const {
  std::lock_guard lock(mutex_);
  return affiliations_;
}

void EntitlementFetcher::setAffiliations(std::optional<std::vector<ENTMAffiliation>> affiliations) {
  {
    std::lock_guard lock(mutex_);
    affiliations_ = std::move(affiliations);
  }
  if (auto listener = delegate()) listener->didRetrieveAffiliations(*this);
}

void EntitlementFetcher::fetchAnnualPassRenewals(std::optional<Error> causeKnownFetchResponse) {
  if (causeKnownFetchResponse) {
    if (auto listener = delegate()) listener->didFailToRetrieve(causeKnownFetchResponse, *this);
    return;
  }
  auto manager = ENTMEntitlementsManager::sharedInstance();
  if (!manager || !manager->kuid()) {
    KTVCPrintUtility::errorPrint("Attempt to fetch w/o KUID available",
                                 LogSite{kSourceFile, "fetchAnnualPassRenewals(causeKnownFetchResponse:)", 61});
    if (auto listener = delegate()) listener->didFailToRetrieve(toError(VNLEntitlementErrors::noKUIDAvailable), *this);
    return;
  }
  manager->registerEntitlementListener(weak_from_this());
  manager->beginUpdateEntitlementsOfFilterType(ENTMEntitlementFilterType::annualPasses, std::nullopt);
}

void EntitlementFetcher::fetchAffiliations() {
  auto manager = ENTMEntitlementsManager::sharedInstance();
  if (!manager) return;
  manager->registerEntitlementListener(weak_from_this());
  manager->retrieveAffiliationsFromUserInfo(std::nullopt);
}

void EntitlementFetcher::fetchBlockoutDates(std::string_view) {}

void EntitlementFetcher::flushData() {
  {
    std::lock_guard lock(mutex_);
    entitlements_.reset();
  }
  if (auto listener = delegate()) listener->didRetrieveEntitlements(*this);
}

void EntitlementFetcher::entitlementsUpdated(const ENTMAnyList& entitlementsArray, const std::optional<Json>&) {
  unregister();
  auto managerEntitlements = asEntitlementList(entitlementsArray);
  if (!managerEntitlements) {
    KTVCPrintUtility::debugPrint(
        "entitlementsArray type mismatch, actual: " + runtimeTypeName(entitlementsArray) +
            ", expected: ENTMEntitlement",
        LogSite{kSourceFile, "entitlementsUpdated(_:userInfo:)", LogSite::current().line});
    return;
  }
  Entitlements converted;
  converted.reserve(managerEntitlements->size());
  for (const auto& entitlement : *managerEntitlements) converted.push_back(toVNLEntitlement(*entitlement));
  setEntitlements(std::move(converted));
}

void EntitlementFetcher::entitlementsManagerUpdatedAffiliations(
    const std::optional<std::vector<ENTMAffiliation>>& affiliationsArray, const std::optional<Json>&) {
  unregister();
  setAffiliations(affiliationsArray);
}

void EntitlementFetcher::entitlementsManagerFetchFailed(ENTMEntitlementNameType, const std::optional<Error>& error,
                                                        const std::optional<Json>&) {
  unregister();
  auto listener = delegate();
  if (!listener) return;
  std::optional<Error> reported = error;
  if (error) {
    if (auto commerceError = APEvasError(*error)) reported = toError(*commerceError);
  }
  listener->didFailToRetrieve(reported, *this);
}

void EntitlementFetcher::unregister() {
  if (auto manager = ENTMEntitlementsManager::sharedInstance()) manager->removeEntitlementListener(this);
}

}  // namespace varnel
