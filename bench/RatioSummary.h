#pragma once
// A console reporter that also remembers each benchmark's CPU time per
// iteration, so that a program can end with how its own code compares with
// baselines measured in the same run. CPU time rather than wall time, so that
// other work on the machine disturbs the ratios less; run with
// --benchmark_repetitions=N to compare medians.

#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

namespace varnel::bench {

class RatioSummary : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      if (run.error_occurred) continue;
      const double time =
          run.GetAdjustedCPUTime() / benchmark::GetTimeUnitMultiplier(run.time_unit) * 1e9;
      if (run.run_type == Run::RT_Iteration) {
        nanoseconds_[run.run_name.function_name] = time;
      } else if (run.aggregate_name == "median") {
        medians_[run.run_name.function_name] = time;
      }
    }
  }

  /// CPU nanoseconds per iteration of a benchmark (the median when it was
  /// repeated), or a negative value when it did not run.
  double nanoseconds(const std::string& name) const {
    if (const auto median = medians_.find(name); median != medians_.end()) return median->second;
    const auto found = nanoseconds_.find(name);
    return found == nanoseconds_.end() ? -1.0 : found->second;
  }

  /// Prints numerator/denominator with the target it is held to.
  void printRatio(const std::string& numerator, const std::string& denominator,
                  const char* target) const {
    const double top = nanoseconds(numerator);
    const double bottom = nanoseconds(denominator);
    if (top <= 0 || bottom <= 0) return;
    std::printf("%-28s / %-28s = %8.2f   (target %s)\n", numerator.c_str(), denominator.c_str(),
                top / bottom, target);
  }

  void printTime(const std::string& name) const {
    const double time = nanoseconds(name);
    if (time > 0) std::printf("%-28s %10.1f ns per call\n", name.c_str(), time);
  }

 private:
  std::map<std::string, double> nanoseconds_;
  std::map<std::string, double> medians_;
};

/// Runs the registered benchmarks with `summary` as the console reporter.
inline void runWith(RatioSummary& summary, int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks(&summary);
  benchmark::Shutdown();
  std::printf("\nSummary\n");
}

}  // namespace varnel::bench
