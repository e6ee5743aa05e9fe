#include "AdoptedProtocols.h"

#include <memory>
#include <mutex>
#include <new>
#include <typeindex>
#include <unordered_map>

#include "varnel/entitlements/VNLEntitlement.h"
#include "varnel/entitlements/VNLEntitlementProtocols.h"

namespace varnel {
namespace {

const std::byte* bytesOf(const void* part) { return static_cast<const std::byte*>(part); }

}  // namespace

const AdoptedProtocols& AdoptedProtocols::of(const VNLEntitlement& object) {
  static std::mutex mutex;
  static std::unordered_map<std::type_index, std::unique_ptr<const AdoptedProtocols>> tables;
  std::lock_guard lock(mutex);
  auto& table = tables[std::type_index(typeid(object))];
  if (!table) table.reset(new AdoptedProtocols(object));
  return *table;
}

AdoptedProtocols::AdoptedProtocols(const VNLEntitlement& object) {
  addIfAdopted<VNLEntitlementTypeProtocol, &VNLEntitlementTypeProtocol::populateTypeFields>(object);
  addIfAdopted<VNLEntitlementStatusProtocol, &VNLEntitlementStatusProtocol::populateStatusFields>(object);
  addIfAdopted<VNLEntitlementSunsetProtocol, &VNLEntitlementSunsetProtocol::populateSunsetFields>(object);
  addIfAdopted<VNLEntitlementPaymentProtocol, &VNLEntitlementPaymentProtocol::populatePaymentFields>(object);
  addIfAdopted<VNLEntitlementAgeGroupProtocol, &VNLEntitlementAgeGroupProtocol::populateAssignedAgeGroupField>(
      object);
  addIfAdopted<VNLEntitlementLinkableProtocol, &VNLEntitlementLinkableProtocol::populateLinkableFields>(object);
  addIfAdopted<VNLEntitlementLocationProtocol, &VNLEntitlementLocationProtocol::populateLocationFields>(object);
  addIfAdopted<VNLEntitlementMultiDayProtocol, &VNLEntitlementMultiDayProtocol::populateMultiDayFields>(object);
  addIfAdopted<VNLEntitlementRenewableProtocol, &VNLEntitlementRenewableProtocol::populateRenewable>(object);
  addIfAdopted<VNLEntitlementTimeWindowProtocol, &VNLEntitlementTimeWindowProtocol::populateTimeWindowFields>(
      object);
  addIfAdopted<VNLEntitlementAssignedSeatProtocol, &VNLEntitlementAssignedSeatProtocol::populateAssignedSeatFields>(
      object);
  addIfAdopted<VNLEntitlementGovernmentIDProtocol,
               &VNLEntitlementGovernmentIDProtocol::populateGovernementIDFields>(object);
  addIfAdopted<VNLEntitlementGuestProfileProtocol, &VNLEntitlementGuestProfileProtocol::populateGuestProfileFields>(
      object);
  addIfAdopted<VNLEntitlementPolicyProtocol, &VNLEntitlementPolicyProtocol::populatePolicyFields>(object);
}

template <typename Protocol, void (Protocol::*copy)(const ENTMEntitlement&)>
void AdoptedProtocols::addIfAdopted(const VNLEntitlement& object) {
  const auto* adopted = dynamic_cast<const Protocol*>(&object);
  if (!adopted) return;
  copies_.push_back(Copy{bytesOf(adopted) - bytesOf(&object), [](void* protocol, const ENTMEntitlement& from) {
                           (std::launder(static_cast<Protocol*>(protocol))->*copy)(from);
                         }});
}

void AdoptedProtocols::populate(VNLEntitlement& object, const ENTMEntitlement& from) const {
  auto* base = reinterpret_cast<std::byte*>(&object);
  for (const Copy& copy : copies_) copy.run(base + copy.offset, from);
}

}  // namespace varnel
