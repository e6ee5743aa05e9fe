#pragma once
// A named set of blocked-out days of a pass, kept as day numbers so that the
// test for one day is a plain scan.

#include <set>
#include <string>
#include <vector>

#include "varnel/platform/Date.h"

namespace varnel {

struct BlockoutGroup {
  BlockoutGroup(std::string shortDisplayName, std::string fullName, std::string summaryDescription,
                const std::set<Date>& blockoutDates);

  /// The UTC day number of `date`: whole days since 2001-01-01 00:00 UTC,
  /// rounded toward zero (so the last day of 2000 is day 0 as well).
  static double dateNumericalValue(Date date);

  /// Whether the day of `date` is one of the group's days.
  bool blockedOut(Date date) const;

  std::string shortDisplayName;
  std::string fullName;
  std::string summaryDescription;
  /// One day number per blocked-out date, in the order the dates were given;
  /// dates of the same day are kept twice.
  std::vector<double> blockoutDateNumericalValues;
};

}  // namespace varnel
