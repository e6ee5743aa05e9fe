#include "varnel/dates/BlockoutGroup.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace varnel {

namespace {
constexpr double kSecondsPerDay = 86400.0;
}

BlockoutGroup::BlockoutGroup(std::string shortName, std::string name, std::string summary,
                             const std::set<Date>& blockoutDates)
    : shortDisplayName(std::move(shortName)),
      fullName(std::move(name)),
      summaryDescription(std::move(summary)) {
  blockoutDateNumericalValues.reserve(blockoutDates.size());
  for (const Date& date : blockoutDates) {
    blockoutDateNumericalValues.push_back(dateNumericalValue(date));
  }
}

double BlockoutGroup::dateNumericalValue(Date date) {
  return std::trunc(date.timeIntervalSinceReferenceDate() / kSecondsPerDay);
}

bool BlockoutGroup::blockedOut(Date date) const {
  const double day = dateNumericalValue(date);
  return std::find(blockoutDateNumericalValues.begin(), blockoutDateNumericalValues.end(), day) !=
         blockoutDateNumericalValues.end();
}

}  // namespace varnel
