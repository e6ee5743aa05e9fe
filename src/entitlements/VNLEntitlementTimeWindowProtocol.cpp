#include "varnel/entitlements/protocols/VNLEntitlementTimeWindowProtocol.h"

#include "CopyIfPresent.h"
#include "EntitlementJson.h"

namespace varnel {

void VNLEntitlementTimeWindowProtocol::populateTimeWindowFields(const ENTMEntitlement& from) {
  copyIfPresent(from.numberOfDays, [this](std::int64_t v) { setNumberOfDays(v); });
  copyIfPresent(from.startDate, [this](Date v) { setStartDate(v); });
  copyIfPresent(from.endDate, [this](Date v) { setEndDate(v); });
  copyIfPresent(from.passValidityStartDate, [this](Date v) { setPassValidityStartDate(v); });
  copyIfPresent(from.passExpirationDate, [this](Date v) { setPassExpirationDate(v); });
  copyIfPresent(from.calendarId, [this](const std::string& v) { setCalendarId(v); });
  copyIfPresent(from.admissionDays, [this](const std::string& v) { setAdmissionDays(v); });
}

void VNLEntitlementTimeWindowProtocol::writeTimeWindowFields(Json& json) const {
  json["numberOfDays"] = numberOfDays();
  json["startDate"] = entitlementjson::date(startDate());
  json["endDate"] = entitlementjson::date(endDate());
  json["passValidityStartDate"] = entitlementjson::date(passValidityStartDate());
  json["passExpirationDate"] = entitlementjson::date(passExpirationDate());
  json["calendarId"] = calendarId();
  json["admissionDays"] = entitlementjson::optional(admissionDays());
}

}  // namespace varnel
