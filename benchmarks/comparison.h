#pragma once

#include <chrono>
#include <functional>
#include <string>

namespace benchmarks {

/// The aim of a figure relative to its baseline. Informational: nothing fails if it is missed.
struct Aim {
  enum class Kind {
    RATIO_AT_MOST,   ///< figure / baseline
    RATE_AT_LEAST,   ///< baseline / figure: operations done in the time of one baseline operation
    EXCESS_AT_MOST,  ///< figure - baseline, in the figure's unit
    RATIO_WITHOUT_AIM,
  };

  Kind kind;
  double value;

  /// `figure` relative to `baseline`.
  double compare(double figure, double baseline) const;
  bool met_by(double compared) const;
};

/// One figure and its baseline, measured alternately within one run.
struct Comparison {
  using Measure = std::function<double()>;

  std::string name;
  Measure figure;    ///< measures once; nanoseconds, or bytes if `unit` says so
  Measure baseline;  ///< likewise; may return a known constant
  Aim aim;
  int samples;  ///< measurements of each side; medians are compared
  std::string unit = "ns";
};

/// Registers the comparison as a benchmark. Returns true, so that a file-scope object can call it.
bool compare(const Comparison& comparison);

using Clock = std::chrono::steady_clock;

/// Nanoseconds that one call of `work` takes.
template <typename Work>
double time_of(const Work& work) {
  const auto begin = Clock::now();
  work();
  return std::chrono::duration<double, std::nano>(Clock::now() - begin).count();
}

/// Nanoseconds per call of `work`, averaged over `calls` calls in a row.
template <typename Work>
double time_of_each(int calls, const Work& work) {
  return time_of([&] {
           for (int call = 0; call < calls; ++call) {
             work();
           }
         }) /
         calls;
}

}  // namespace benchmarks
