#pragma once

#include <benchmark/benchmark.h>

#include <chrono>

namespace corvane {

template <typename Work>
double SecondsOf(Work work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

struct Seconds {
  double ours = 0.0;
  double yardstick = 0.0;
};

// The time of all runs of the two works, which tell whether they went well. They take turns in going first,
// as the first one warms up the machine for the second.
template <typename Ours, typename Yardstick>
Seconds Compare(benchmark::State& state, Ours ours, Yardstick yardstick) {
  Seconds total;
  bool good = true;
  bool isOursFirst = false;
  for (auto _ : state) {
    double seconds = 0.0;
    const auto runOurs = [&] { seconds = SecondsOf([&] { good = ours() && good; }); };
    if (isOursFirst) runOurs();
    total.yardstick += SecondsOf([&] { good = yardstick() && good; });
    if (!isOursFirst) runOurs();
    isOursFirst = !isOursFirst;
    total.ours += seconds;
    state.SetIterationTime(seconds);
    if (good) continue;
    state.SkipWithError("a run has failed");
    break;
  }
  return total;
}

}  // namespace corvane
