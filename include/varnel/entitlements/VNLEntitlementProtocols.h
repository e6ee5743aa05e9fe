#pragma once
// The capability protocols of the entitlement classes. Each declares a few
// properties (pure virtual accessors: the adopting class holds the one storage)
// and a copy operation, written once, that fills them from an ENTMEntitlement.

#include "varnel/entitlements/protocols/VNLEntitlementAgeGroupProtocol.h"
#include "varnel/entitlements/protocols/VNLEntitlementAssignedSeatProtocol.h"
#include "varnel/entitlements/protocols/VNLEntitlementGovernmentIDProtocol.h"
#include "varnel/entitlements/protocols/VNLEntitlementGuestProfileProtocol.h"
#include "varnel/entitlements/protocols/VNLEntitlementLinkableProtocol.h"
#include "varnel/entitlements/protocols/VNLEntitlementLocationProtocol.h"
#include "varnel/entitlements/protocols/VNLEntitlementMultiDayProtocol.h"
#include "varnel/entitlements/protocols/VNLEntitlementPaymentProtocol.h"
#include "varnel/entitlements/protocols/VNLEntitlementPolicyProtocol.h"
#include "varnel/entitlements/protocols/VNLEntitlementRenewableProtocol.h"
#include "varnel/entitlements/protocols/VNLEntitlementStatusProtocol.h"
#include "varnel/entitlements/protocols/VNLEntitlementSunsetProtocol.h"
#include "varnel/entitlements/protocols/VNLEntitlementTimeWindowProtocol.h"
#include "varnel/entitlements/protocols/VNLEntitlementTypeProtocol.h"
#include "varnel/entitlements/protocols/VNLEntitlementUpgradeableProtocol.h"
