// The segmentations on TINs of 0.1, 0.3, 1 and 3 million triangles of the same landscape, with the same 40
// cuts:
//   "exponent": of the time as a power of the number of vertices, from the smallest TIN to this one. 1 is
//   linear; caches alone make 1.2 to 1.3 of it.

#include <benchmark/benchmark.h>

#include <cmath>
#include <map>
#include <memory>

#include "TakingTurns.h"
#include "Terrain.h"

namespace corvane {
namespace {

constexpr double kAreaLimit = 2000.0;  // square ground units
constexpr double kCuts = 40.0;
constexpr std::int64_t kSmallest = 50000;

// Surveys last for the whole run: making one takes longer than what is measured.
const RandomSurvey& Survey(std::int64_t nPoints) {
  static std::map<std::int64_t, std::unique_ptr<RandomSurvey>> surveys;
  auto& survey = surveys[nPoints];
  if (!survey) survey = std::make_unique<RandomSurvey>(static_cast<std::int32_t>(nPoints));
  return *survey;
}

void Segment(TIN& tin) {
  const double step = (tin.extent.maxZ - tin.extent.minZ) / kCuts;
  tin.SegmentByPlaneCut(tin.extent.minZ, tin.extent.maxZ, step, kAreaLimit);
}

void Reduce(TIN& tin) {
  tin.ReduceSurface(kAreaLimit);
}

double SecondsFor(std::int64_t nPoints, void (*work)(TIN&)) {
  TIN tin;
  LoadTerrain(Survey(nPoints), TerrainZ, tin);
  return SecondsOf([&] { work(tin); });
}

void Measure(benchmark::State& state, void (*work)(TIN&)) {
  const std::int64_t nPoints = state.range(0);
  double seconds = 0.0;
  double smallest = 0.0;
  for (auto _ : state) {
    const double run = SecondsFor(nPoints, work);
    seconds += run;
    smallest += SecondsFor(kSmallest, work);
    state.SetIterationTime(run);
  }
  if (nPoints == kSmallest) return;
  const double sizes = std::log(static_cast<double>(nPoints) / kSmallest);
  state.counters["exponent"] = std::log(seconds / smallest) / sizes;
}

void SegmentByPlaneCut(benchmark::State& state) {
  Measure(state, Segment);
}
void ReduceSurface(benchmark::State& state) {
  Measure(state, Reduce);
}

void Sizes(benchmark::internal::Benchmark* benchmark) {
  benchmark->Arg(kSmallest)->Arg(150000)->Arg(500000)->Arg(1500000);
  benchmark->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);
}
BENCHMARK(SegmentByPlaneCut)->Apply(Sizes);
BENCHMARK(ReduceSurface)->Apply(Sizes);

}  // namespace
}  // namespace corvane

BENCHMARK_MAIN();
