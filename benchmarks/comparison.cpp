#include "benchmarks/comparison.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <vector>

namespace benchmarks {
namespace {

double quantile(std::vector<double> samples, double part) {
  const auto place = static_cast<std::ptrdiff_t>(part * static_cast<double>(samples.size() - 1));
  std::nth_element(samples.begin(), samples.begin() + place, samples.end());
  return samples[static_cast<std::size_t>(place)];
}

/// Each side goes first in every other sample, so that neither has the warmer caches.
void measure(benchmark::State& state, const Comparison& comparison) {
  std::vector<double> figures;
  std::vector<double> baselines;
  comparison.baseline();
  comparison.figure();
  bool figure_first = false;
  for ([[maybe_unused]] auto _ : state) {
    if (figure_first) {
      figures.push_back(comparison.figure());
    }
    baselines.push_back(comparison.baseline());
    if (!figure_first) {
      figures.push_back(comparison.figure());
    }
    figure_first = !figure_first;
    state.SetIterationTime(figures.back() * 1e-9);
  }
  const double figure = quantile(figures, 0.5);
  const double baseline = quantile(baselines, 0.5);
  const double compared = comparison.aim.compare(figure, baseline);
  state.counters["figure"] = figure;
  state.counters["figure_p90"] = quantile(figures, 0.9);
  state.counters["baseline"] = baseline;
  state.counters["baseline_p90"] = quantile(baselines, 0.9);
  state.counters["compared"] = compared;
  state.counters["aim"] = comparison.aim.value;
  state.counters["aim_kind"] = static_cast<double>(comparison.aim.kind);
  state.counters["met"] = comparison.aim.met_by(compared) ? 1 : 0;
  state.SetLabel(comparison.unit);
}

}  // namespace

double Aim::compare(double figure, double baseline) const {
  switch (kind) {
    case Kind::RATIO_AT_MOST:
    case Kind::RATIO_WITHOUT_AIM:
      return figure / baseline;
    case Kind::RATE_AT_LEAST:
      return baseline / figure;
    default:
      return figure - baseline;
  }
}

bool Aim::met_by(double compared) const {
  if (kind == Kind::RATIO_WITHOUT_AIM) {
    return true;
  }
  return kind == Kind::RATE_AT_LEAST ? compared >= value : compared <= value;
}

bool compare(const Comparison& comparison) {
  benchmark::RegisterBenchmark(comparison.name.c_str(),
                               [comparison](benchmark::State& state) { measure(state, comparison); })
      ->UseManualTime()
      ->Iterations(comparison.samples);
  return true;
}

}  // namespace benchmarks
