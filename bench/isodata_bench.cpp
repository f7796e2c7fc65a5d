// ISODATA on a byte image of 4000 x 4000 in memory, from the pixels to the class image:
//   "GB/s" of pixels (wanted: 1 or more)
// The photo has waves and noise; the flat image one grey level alone, which is counted at one place.

#include <benchmark/benchmark.h>

#include <filesystem>

#include "BenchImage.h"
#include "Classification/Classification.h"

namespace corvane {
namespace {

void Run(benchmark::State& state, ErdasImg image) {
  for (auto step : state) {
    Classification isodata(&image);
    if (isodata.Classify() != 1) state.SkipWithError("a run has failed");
    benchmark::DoNotOptimize(isodata.GetClassImage().GetBands()[0]);
  }
  std::filesystem::remove("isoDataLog.txt");
  const double bytes = static_cast<double>(kImageSize) * kImageSize * static_cast<double>(state.iterations());
  state.counters["GB/s"] = benchmark::Counter(bytes / 1e9, benchmark::Counter::kIsRate);
}

void IsodataOfAPhoto(benchmark::State& state) {
  Run(state, MakeWaves());
}

void IsodataOfAFlatImage(benchmark::State& state) {
  Run(state, MakeFlatImage(77));
}

BENCHMARK(IsodataOfAPhoto)->Unit(benchmark::kMillisecond);
BENCHMARK(IsodataOfAFlatImage)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace corvane

BENCHMARK_MAIN();
