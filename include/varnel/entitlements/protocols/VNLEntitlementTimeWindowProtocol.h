#pragma once
// Capability: when a pass is valid and on which days it admits.

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "varnel/host/ENTMEntitlement.h"
#include "varnel/platform/Date.h"
#include "varnel/platform/Json.h"

namespace varnel {

class VNLEntitlementTimeWindowProtocol {
 public:
  virtual ~VNLEntitlementTimeWindowProtocol() = default;

  virtual std::int64_t numberOfDays() const = 0;
  virtual void setNumberOfDays(std::int64_t value) = 0;
  virtual Date startDate() const = 0;
  virtual void setStartDate(Date value) = 0;
  virtual Date endDate() const = 0;
  virtual void setEndDate(Date value) = 0;
  virtual Date passValidityStartDate() const = 0;
  virtual void setPassValidityStartDate(Date value) = 0;
  virtual Date passExpirationDate() const = 0;
  virtual void setPassExpirationDate(Date value) = 0;
  virtual const std::string& calendarId() const = 0;
  virtual void setCalendarId(std::string value) = 0;
  /// The admission days as a text (for example "Mon-Thu"), or none.
  virtual const std::optional<std::string>& admissionDays() const = 0;
  virtual void setAdmissionDays(std::optional<std::string> value) = 0;

  /// Each from the property of the same name, when present.
  void populateTimeWindowFields(const ENTMEntitlement& from);
  void writeTimeWindowFields(Json& json) const;
};

}  // namespace varnel
