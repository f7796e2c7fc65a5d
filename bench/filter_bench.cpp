// The slope filter on a TIN of about 2,000,000 triangles:
//   "of one read": the time of a pass that changes nothing over that of reading the triangles once from
//   memory (wanted: 10 or less) "ns a change": what a pass with spikes takes beyond that, for each vertex
//   changed. It should stay the same for 1 spike in 1000, 100 and 20 vertices.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstring>

#include "TakingTurns.h"
#include "Terrain.h"

namespace corvane {
namespace {

constexpr std::int32_t kPoints = 1000000;
constexpr double kMaxSlope = 30.0;
constexpr double kMinElevation = 1.0;

const RandomSurvey& Survey() {
  static const RandomSurvey survey(kPoints);
  return survey;
}

// Ground that no part of the filter finds anything on, not even in the slivers along the hull.
double SlopingZ(double x, double) {
  return x / 8.0;
}

// Every byte of the triangles, eight at a time.
bool ReadOnce(const TIN& tin) {
  static_assert(sizeof(TINTriangle) % sizeof(std::uint64_t) == 0);
  std::uint64_t sum = 0;
  const auto* word = reinterpret_cast<const char*>(tin.triangles.data());
  const auto* const end = word + tin.triangles.size() * sizeof(TINTriangle);
  for (; word != end; word += sizeof sum) {
    std::uint64_t value = 0;
    std::memcpy(&value, word, sizeof value);
    sum += value;
  }
  benchmark::DoNotOptimize(sum);
  return true;
}

void FilterWithoutChanges(benchmark::State& state) {
  TIN tin;
  LoadTerrain(Survey(), SlopingZ, tin);
  const Seconds seconds = Compare(
      state, [&] { return tin.SlopeFilter(kMaxSlope, kMinElevation) == 0; }, [&] { return ReadOnce(tin); });
  state.counters["of one read"] = seconds.ours / seconds.yardstick;
}
BENCHMARK(FilterWithoutChanges)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(20);

// Heights and normals go back to the ground before each run: spikes close together leave more to do.
void FilterSpikes(benchmark::State& state) {
  TIN tin;
  const auto every = static_cast<std::int32_t>(state.range(0));
  double seconds = 0.0;
  std::int64_t nChanged = 0;
  const auto filter = [&] {
    return SecondsOf([&] { nChanged += tin.SlopeFilter(kMaxSlope, kMinElevation); });
  };
  for (auto _ : state) {
    LoadTerrain(Survey(), SlopingZ, tin);
    filter();  // warms up
    const double quiet = filter();
    for (std::int32_t v = 0; v < tin.nPoints; v += every) {
      tin.vertices[static_cast<std::size_t>(v)].z += 20.0;
      tin.RecomputeNormals(v);
      tin.NormalizeNormals(v);
    }
    const double run = filter();
    seconds += run - quiet;
    state.SetIterationTime(run);
  }
  state.counters["changes"] = static_cast<double>(nChanged) / static_cast<double>(state.iterations());
  state.counters["ns a change"] = 1e9 * seconds / static_cast<double>(nChanged);
}
BENCHMARK(FilterSpikes)
    ->Arg(1000)
    ->Arg(100)
    ->Arg(20)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(5);

void SmoothOnce(benchmark::State& state) {
  TIN tin;
  LoadTerrain(Survey(), SlopingZ, tin);
  for (auto _ : state) tin.Smooth();
}
BENCHMARK(SmoothOnce)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace
}  // namespace corvane

BENCHMARK_MAIN();
