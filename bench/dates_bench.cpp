// Date parsing through the shared formatters against bare ICU, and the
// blockout test on a year of blocked days.

#include <set>
#include <string>

#include <benchmark/benchmark.h>
#include <unicode/smpdtfmt.h>

#include "RatioSummary.h"
#include "varnel/dates/BlockoutGroup.h"
#include "varnel/dates/VNLDateUtility.h"

namespace {

using varnel::Date;
using varnel::VNLDateUtility;

const icu::UnicodeString kText = "2024-03-10T14:35:20.250-0400";
const char* const kUtf8Text = "2024-03-10T14:35:20.250-0400";

std::unique_ptr<icu::SimpleDateFormat> makeFormatter() {
  UErrorCode status = U_ZERO_ERROR;
  const icu::UnicodeString pattern = icu::UnicodeString::fromUTF8(
      std::string(varnel::VNLEntitlementDateFormatterFormatString));
  auto formatter =
      std::make_unique<icu::SimpleDateFormat>(pattern, icu::Locale("en_US_POSIX"), status);
  formatter->setLenient(false);
  return formatter;
}

void ParseSharedFormatter(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(VNLDateUtility::date(kUtf8Text));
}
BENCHMARK(ParseSharedFormatter);

// Baseline: ICU alone, with a formatter built beforehand and its zone left as is.
void ParseBarePrebuilt(benchmark::State& state) {
  const auto formatter = makeFormatter();
  for (auto _ : state) {
    icu::ParsePosition position(0);
    benchmark::DoNotOptimize(formatter->parse(kText, position));
  }
}
BENCHMARK(ParseBarePrebuilt);

// What a formatter per call costs.
void ParseFormatterPerCall(benchmark::State& state) {
  for (auto _ : state) {
    const auto formatter = makeFormatter();
    icu::ParsePosition position(0);
    benchmark::DoNotOptimize(formatter->parse(kText, position));
  }
}
BENCHMARK(ParseFormatterPerCall);

varnel::BlockoutGroup yearOfBlockedDays() {
  std::set<Date> dates;
  const Date first = VNLDateUtility::date("2024-01-01T12:00:00.000+0000");
  for (int day = 0; day < 365; ++day) dates.insert(first.addingTimeInterval(day * 86400.0));
  return varnel::BlockoutGroup("Year", "A year of blocked days", "", dates);
}

void BlockedOutHit(benchmark::State& state) {
  const auto group = yearOfBlockedDays();
  const Date midYear = VNLDateUtility::date("2024-07-01T08:00:00.000+0000");
  for (auto _ : state) benchmark::DoNotOptimize(group.blockedOut(midYear));
}
BENCHMARK(BlockedOutHit);

// A day outside the group scans every value.
void BlockedOutMiss(benchmark::State& state) {
  const auto group = yearOfBlockedDays();
  const Date nextYear = VNLDateUtility::date("2026-07-01T08:00:00.000+0000");
  for (auto _ : state) benchmark::DoNotOptimize(group.blockedOut(nextYear));
}
BENCHMARK(BlockedOutMiss);

}  // namespace

int main(int argc, char** argv) {
  varnel::bench::RatioSummary summary;
  varnel::bench::runWith(summary, argc, argv);
  summary.printRatio("ParseSharedFormatter", "ParseBarePrebuilt", "<= 1.3");
  summary.printRatio("ParseFormatterPerCall", "ParseSharedFormatter", ">= 20");
  summary.printTime("BlockedOutHit");
  summary.printTime("BlockedOutMiss");
  return 0;
}
