#include "varnel/entitlements/VNLVarnel.h"

#include <algorithm>
#include <system_error>

#include "varnel/dates/VNLDateUtility.h"
#include "varnel/entitlements/ToVNLEntitlement.h"
#include "varnel/host/ENTMEntitlementsManager.h"
#include "varnel/host/ResourceBundle.h"

namespace varnel {

namespace {

/// The manager's persisted entitlements; an absent answer, a list holding
/// anything but entitlements, or no manager at all read as none.
std::vector<ENTMEntitlementRef> persistedRecords() {
  auto manager = ENTMEntitlementsManager::sharedInstance();
  if (!manager) return {};
  const auto persisted = manager->persistedEntitlementsOfType(ENTMEntitlementType::annualPasses);
  if (!persisted) return {};
  auto records = asEntitlementList(*persisted);
  return records ? std::move(*records) : std::vector<ENTMEntitlementRef>{};
}

// Conversion copies a record's isRenewable into entitlementRenewable and its
// passExpirationDate (the unknown-date marker when absent) into
// endValidityDate, and adds no rule of its own. So the store queries choose
// among the records by these two values and convert only what they return:
// the answers are those of converting everything first, at a fraction of the
// cost.
bool isRenewableRecord(const ENTMEntitlementRef& record) { return record->isRenewable; }
Date endValidityOfRecord(const ENTMEntitlementRef& record) {
  return record->passExpirationDate.value_or(Date::unknownMarker());
}

VNLVarnel::Entitlements converted(const std::vector<ENTMEntitlementRef>& records, bool onlyRenewable) {
  VNLVarnel::Entitlements entitlements;
  entitlements.reserve(records.size());
  for (const auto& record : records) {
    if (!onlyRenewable || isRenewableRecord(record)) entitlements.push_back(toVNLEntitlement(*record));
  }
  return entitlements;
}

}  // namespace

void VNLVarnel::setDelegate(std::shared_ptr<VNLRenewableEntitlementsCountDelegate> delegate) {
  delegate_ = std::move(delegate);
  if (delegate_) delegate_->expiredPassesChangedWithCount(static_cast<std::int64_t>(renewableEntitlements().size()));
}

VNLVarnel::Entitlements VNLVarnel::allEntitlements() const {
  return isDataMockedEnable_ ? mockedEntitlements() : commerceEntitlements();
}

VNLVarnel::Entitlements VNLVarnel::renewableEntitlements() const {
  if (!isDataMockedEnable_) return converted(persistedRecords(), /*onlyRenewable=*/true);
  Entitlements renewable = mockedEntitlements();
  std::erase_if(renewable, [](const auto& entitlement) { return !entitlement->entitlementRenewable(); });
  return renewable;
}

bool VNLVarnel::anyAPAbleToBeRenewed() const {
  if (!isDataMockedEnable_) return std::ranges::any_of(persistedRecords(), isRenewableRecord);
  return !renewableEntitlements().empty();
}

std::shared_ptr<VNLEntitlement> VNLVarnel::firstRenewableEntitlement() const {
  if (!isDataMockedEnable_) {
    // The first of the ascending order is an earliest-ending renewable record.
    std::vector<ENTMEntitlementRef> renewable = persistedRecords();
    std::erase_if(renewable, [](const auto& record) { return !isRenewableRecord(record); });
    const auto earliest = std::ranges::min_element(renewable, std::less<>{}, endValidityOfRecord);
    return earliest == renewable.end() ? nullptr : toVNLEntitlement(**earliest);
  }
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
  return converted(persistedRecords(), /*onlyRenewable=*/false);
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
