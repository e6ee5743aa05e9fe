#pragma once
// A console reporter that also remembers each benchmark's CPU time per
// iteration, so that a program can end with how its own code compares with
// baselines measured in the same run. CPU time rather than wall time, so that
// other work on the machine disturbs the ratios less; run with
// --benchmark_repetitions=N to compare medians. Programs whose work waits on
// other threads or processes (a server's answer) compare wall time instead
// (Clock::wall).

#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

namespace varnel::bench {

class RatioSummary : public benchmark::ConsoleReporter {
 public:
  /// CPU time of the benchmark's thread (or of the process, under
  /// MeasureProcessCPUTime), or wall time.
  enum class Clock { cpu, wall };

  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      if (run.error_occurred) continue;
      const double unit = benchmark::GetTimeUnitMultiplier(run.time_unit);
      const Times times{run.GetAdjustedCPUTime() / unit * 1e9, run.GetAdjustedRealTime() / unit * 1e9};
      if (run.run_type == Run::RT_Iteration) {
        nanoseconds_[run.run_name.function_name] = times;
      } else if (run.aggregate_name == "median") {
        medians_[run.run_name.function_name] = times;
      }
    }
  }

  /// Nanoseconds per iteration of a benchmark (the median when it was
  /// repeated), or a negative value when it did not run.
  double nanoseconds(const std::string& name, Clock clock = Clock::cpu) const {
    const Times* times = nullptr;
    if (const auto median = medians_.find(name); median != medians_.end()) {
      times = &median->second;
    } else if (const auto found = nanoseconds_.find(name); found != nanoseconds_.end()) {
      times = &found->second;
    }
    if (!times) return -1.0;
    return clock == Clock::cpu ? times->cpu : times->wall;
  }

  /// Prints numerator/denominator with the target it is held to.
  void printRatio(const std::string& numerator, const std::string& denominator,
                  const char* target, Clock clock = Clock::cpu) const {
    const double top = nanoseconds(numerator, clock);
    const double bottom = nanoseconds(denominator, clock);
    if (top <= 0 || bottom <= 0) return;
    std::printf("%-28s / %-28s = %8.2f   (target %s)\n", numerator.c_str(), denominator.c_str(),
                top / bottom, target);
  }

  void printTime(const std::string& name, Clock clock = Clock::cpu) const {
    const double time = nanoseconds(name, clock);
    if (time > 0) std::printf("%-28s %10.1f ns per call\n", name.c_str(), time);
  }

 private:
  struct Times {
    double cpu = 0;
    double wall = 0;
  };
  std::map<std::string, Times> nanoseconds_;
  std::map<std::string, Times> medians_;
};

/// Runs the registered benchmarks with `summary` as the console reporter.
inline void runWith(RatioSummary& summary, int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks(&summary);
  benchmark::Shutdown();
  std::printf("\nSummary\n");
}

}  // namespace varnel::bench
