#include "varnel/entitlements/VNLVarnel.h"

#include <algorithm>
#include <system_error>

#include "EntitlementLists.h"
#include "varnel/dates/VNLDateUtility.h"
#include "varnel/entitlements/ToVNLEntitlement.h"
#include "varnel/host/ENTMEntitlementsManager.h"
#include "varnel/host/ResourceBundle.h"

namespace varnel {

void VNLVarnel::setDelegate(std::shared_ptr<VNLRenewableEntitlementsCountDelegate> delegate) {
  delegate_ = std::move(delegate);
  if (delegate_) delegate_->expiredPassesChangedWithCount(static_cast<std::int64_t>(renewableEntitlements().size()));
}

VNLVarnel::Entitlements VNLVarnel::allEntitlements() const {
  return isDataMockedEnable_ ? mockedEntitlements() : commerceEntitlements();
}

VNLVarnel::Entitlements VNLVarnel::renewableEntitlements() const {
  Entitlements renewable = allEntitlements();
  std::erase_if(renewable, [](const auto& entitlement) { return !entitlement->entitlementRenewable(); });
  return renewable;
}

bool VNLVarnel::anyAPAbleToBeRenewed() const { return !renewableEntitlements().empty(); }

std::shared_ptr<VNLEntitlement> VNLVarnel::firstRenewableEntitlement() const {
  const Entitlements sorted = sortedByDateDescending(renewableEntitlements());
  return sorted.empty() ? nullptr : sorted.front();
}

Date VNLVarnel::firstRenewalDate() const {
  const auto first = firstRenewableEntitlement();
  return first ? first->endValidityDate() : Date::unknownMarker();
}

VNLVarnel::Entitlements VNLVarnel::sortedByDateDescending(const Entitlements& entitlementArray) const {
  Entitlements sorted = entitlementArray;
  std::sort(sorted.begin(), sorted.end(),
            [](const auto& left, const auto& right) { return left->endValidityDate() < right->endValidityDate(); });
  return sorted;
}

std::optional<std::filesystem::path> VNLVarnel::varnelBundle() {
  auto directory = varnelResourceDirectory();
  std::error_code error;
  if (!std::filesystem::is_directory(directory, error)) return std::nullopt;
  return directory;
}

VNLVarnel::Entitlements VNLVarnel::commerceEntitlements() const {
  Entitlements converted;
  const auto manager = ENTMEntitlementsManager::sharedInstance();
  if (!manager) return converted;
  const auto persisted = manager->persistedEntitlementsOfType(ENTMEntitlementType::annualPasses);
  if (!persisted) return converted;
  if (!holdsOnlyEntitlements(*persisted)) return converted;
  converted.reserve(persisted->size());
  for (const ENTMAnyObject& record : *persisted) converted.push_back(toVNLEntitlement(entitlementIn(record)));
  return converted;
}

VNLVarnel::Entitlements VNLVarnel::mockedEntitlements() const {
  using Component = VNLDateUtility::CalendarComponent;
  auto a = std::make_shared<VNLEntitlement>();

  auto b = std::make_shared<VNLEntitlement>();
  b->setEndValidityDate(VNLDateUtility::dateFromOffset(b->endValidityDate(), Component::day, 1));

  auto c = std::make_shared<VNLEntitlement>();
  c->setEndValidityDate(VNLDateUtility::dateFromOffset(b->endValidityDate(), Component::day, -1));

  auto d = std::make_shared<VNLEntitlement>();
  d->setEndValidityDate(VNLDateUtility::dateFromOffset(Date::now(), Component::year, 1));
  d->setEntitlementRenewable(true);

  auto e = std::make_shared<VNLEntitlement>();

  auto f = std::make_shared<VNLEntitlement>();
  f->setEndValidityDate(VNLDateUtility::dateFromOffset(Date::now(), Component::year, 3));

  return {c, a, b, e, d, f};
}

}  // namespace varnel
