// ISODATA on a byte image of 4000 x 4000 in memory, from the pixels to the class image:
//   "GB/s" of pixels (wanted: 1 or more)
// The photo has waves and noise; the flat image one grey level alone, which is counted at one place.

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <random>

#include "Classification/Classification.h"

namespace corvane {
namespace {

constexpr std::int32_t kSize = 4000;  // rows and columns

ErdasImg MakeImage() {
  ErdasHeader header;
  header.cols = kSize;
  header.rows = kSize;
  ErdasImg image;
  if (image.Create(header, false) != 1) std::abort();
  image.Fill(77);
  return image;
}

ErdasImg MakePhoto() {
  ErdasImg image = MakeImage();
  std::mt19937 random(1);
  const auto bytes = image.GetBands().GetBand(0);
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const double row = static_cast<double>(i / kSize);
    const double col = static_cast<double>(i % kSize);
    const double wave = std::sin(0.05 * row) * std::sin(0.03 * col + 0.01 * row);
    bytes[i] = static_cast<std::uint8_t>(110.0 + 80.0 * wave + static_cast<double>(random() % 40));
  }
  return image;
}

void Run(benchmark::State& state, ErdasImg image) {
  for (auto step : state) {
    Classification isodata(&image);
    if (isodata.Classify() != 1) state.SkipWithError("a run has failed");
    benchmark::DoNotOptimize(isodata.GetClassImage().GetBands()[0]);
  }
  std::filesystem::remove("isoDataLog.txt");
  const double bytes = static_cast<double>(kSize) * kSize * static_cast<double>(state.iterations());
  state.counters["GB/s"] = benchmark::Counter(bytes / 1e9, benchmark::Counter::kIsRate);
}

void IsodataOfAPhoto(benchmark::State& state) {
  Run(state, MakePhoto());
}

void IsodataOfAFlatImage(benchmark::State& state) {
  Run(state, MakeImage());
}

BENCHMARK(IsodataOfAPhoto)->Unit(benchmark::kMillisecond);
BENCHMARK(IsodataOfAFlatImage)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace corvane

BENCHMARK_MAIN();
