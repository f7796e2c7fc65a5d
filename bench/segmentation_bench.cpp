// The graph segmentation of images of 4000 x 4000, in memory, with sigma 1, scale 350 and a least size of
// 150.
//   "bytes a pixel": the most memory of the whole process meanwhile (wanted: 110 or less)
// bench/compare-segmentation puts the time of the grey one beside that of a library for image processing.
//
// The grey image goes as bytes, row by row, to the file that the environment variable CORVANE_BENCH_IMAGE
// names, if there is one.

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <fstream>
#include <random>
#include <vector>

#include "PeakMemory.h"
#include "Segmentation/SegmentImage.h"

namespace corvane {
namespace {

constexpr std::int32_t kSize = 4000;  // rows and columns
constexpr std::int32_t kField = 40;
constexpr float kSigma = 1.0f;
constexpr float kScale = 350.0f;
constexpr std::int32_t kMinSize = 150;

// Fields of their own grey, with noise over them.
void Draw(PlaneImage<std::uint8_t>& image) {
  constexpr std::int32_t kFieldsInRow = kSize / kField;
  std::mt19937 random(1);
  std::vector<unsigned> fields(std::size_t{kFieldsInRow} * kFieldsInRow);
  for (unsigned& grey : fields) grey = 28 + random() % 176;
  for (std::int32_t y = 0; y < kSize; ++y) {
    for (std::int32_t x = 0; x < kSize; ++x) {
      const auto field = static_cast<std::size_t>(y / kField * kFieldsInRow + x / kField);
      image.Row(y)[x] = static_cast<std::uint8_t>(fields[field] + random() % 25);
    }
  }
}

template <typename Pixel>
void Run(benchmark::State& state, const PlaneImage<Pixel>& image) {
  ResetPeak();
  std::int32_t regionCount = 0;
  for (auto step : state) {
    if (SegmentImage(image, kSigma, kScale, kMinSize, regionCount).pixels.empty()) {
      state.SkipWithError("a run has failed");
    }
  }
  state.counters["bytes a pixel"] = PeakBytes() / static_cast<double>(image.pixels.size());
  state.counters["regions"] = regionCount;
}

void SegmentGrey(benchmark::State& state) {
  PlaneImage<std::uint8_t> image(kSize, kSize);
  Draw(image);
  if (const char* const path = std::getenv("CORVANE_BENCH_IMAGE")) {
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(image.pixels.data()), std::streamsize{kSize} * kSize);
    if (!file) std::abort();
  }
  Run(state, image);
}

void SegmentColours(benchmark::State& state) {
  PlaneImage<Rgb> image(kSize, kSize);
  {
    PlaneImage<std::uint8_t> grey(kSize, kSize);
    Draw(grey);
    for (std::size_t i = 0; i < grey.pixels.size(); ++i) {
      const std::uint8_t turned = grey.pixels[i % kSize * kSize + i / kSize];
      image.pixels[i] = {grey.pixels[i], turned, static_cast<std::uint8_t>(255 - grey.pixels[i])};
    }
  }
  Run(state, image);
}

BENCHMARK(SegmentGrey)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(SegmentColours)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace
}  // namespace corvane

BENCHMARK_MAIN();
