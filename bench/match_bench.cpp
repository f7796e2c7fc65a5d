// Area matching by correlation of windows of 19 x 19 pixels, on one thread.
//   WindowKernel: full comparisons of windows, beside the plain loop over doubles
//   Grid: "Area (Correlation Coeff)" of a pair of 2000 x 2000 pixels, 111 columns and 3 rows around each
//   place;
//     bench/compare-match puts its time beside that of template matching with a library for image processing
//   Dense: "Area Correlation" at every pixel of a pair of 1000 x 1000 pixels, 33 columns around each, beside
//     the plain form, which is measured on some rows
//   "times as fast": as the yardstick
//   "MB beyond": memory beyond the images and the maps
//
// With the environment variable CORVANE_BENCH_FOLDER the pairs go there, as grid_left.lan, grid_right.lan,
// dense_left.lan and dense_right.lan.

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "OpenGL/Stereo_2Cursor/AerialPhoto.h"
#include "PeakMemory.h"
#include "StereoPair/PlainCoefficient.h"
#include "StereoPair/StereoPair.h"
#include "StereoPair/WindowSimilarity.h"
#include "TakingTurns.h"

namespace corvane {
namespace {

constexpr std::int32_t kWindow = 19;
constexpr std::size_t kPixels = kWindow * kWindow;
constexpr std::int32_t kShift = 7;  // columns, of the right images
constexpr double kGridStep = 10.0;  // pixels
constexpr double kMegabyte = 1 << 20;

// A call for each window, so that neither its length nor its place is known beforehand.
[[gnu::noinline]] double PlainLoop(const std::uint8_t* a, const std::uint8_t* b, std::size_t count) {
  return PlainCoefficient(a, b, count);
}

void WindowKernel(benchmark::State& state) {
  constexpr std::size_t kWindows = 64;
  std::mt19937 random(1);
  std::vector<std::uint8_t> pixels(kWindows * kPixels);
  for (auto& pixel : pixels) pixel = static_cast<std::uint8_t>(random());
  const auto sumOf = [&](auto coefficient) {
    double sum = 0.0;
    for (std::size_t i = 0; i < 100 * kWindows; ++i) {
      sum += coefficient(&pixels[i % kWindows * kPixels], &pixels[i * 7 % kWindows * kPixels]);
    }
    return sum;
  };
  double ours = 0.0;
  double plain = 0.0;
  const auto runOurs = [&] {
    ours = sumOf([](const auto* a, const auto* b) {
      return CorrelationCoefficient({a, kPixels}, {b, kPixels});
    });
    return true;
  };
  const auto runPlain = [&] {
    plain = sumOf([](const auto* a, const auto* b) { return PlainLoop(a, b, kPixels); });
    return plain == ours || ours == 0.0;
  };
  const Seconds total = Compare(state, runOurs, runPlain);
  state.counters["times as fast"] = total.yardstick / total.ours;
}

// Ground with texture of all sizes, and the same seen kShift columns to the left with noise of its own.
struct Pair {
  explicit Pair(std::int32_t size, const std::string& name) {
    for (AerialPhoto* photo : {&left, &right}) {
      ErdasHeader header;
      header.cols = size;
      header.rows = size;
      if (photo->image.Create(header, false) != 1) std::abort();
      photo->pixelSizeX = 1.0;
      photo->pixelSizeY = 1.0;
    }
    Draw(left.image, 0, 1);
    Draw(right.image, kShift, 2);
    if (const char* const folder = std::getenv("CORVANE_BENCH_FOLDER")) {
      const std::string stem = std::string(folder) + "/" + name;
      if (left.image.Write(stem + "_left.lan") != 1) std::abort();
      if (right.image.Write(stem + "_right.lan") != 1) std::abort();
    }
    pair.SetPhotos(&left, &right);
    pair.InitGeometry();
    pair.targetWidth = kWindow;
    pair.targetHeight = kWindow;
  }

  static void Draw(ErdasImg& image, int shift, unsigned seed) {
    std::mt19937 random(seed);
    const auto [cols, rows] = image.GetSize();
    const auto bytes = image.GetBands().GetBand(0);
    for (int row = 0; row < rows; ++row) {
      for (int col = 0; col < cols; ++col) {
        const double x = col + shift;
        const double waves = std::sin(0.05 * row) * std::sin(0.03 * x + 0.01 * row);
        const double ripples = std::sin(0.9 * x + 1e-4 * x * row) * std::cos(0.7 * row);
        bytes[static_cast<std::size_t>(row) * static_cast<std::size_t>(cols) +
              static_cast<std::size_t>(col)] =
            static_cast<std::uint8_t>(110.0 + 60.0 * waves + 30.0 * ripples +
                                      static_cast<double>(random() % 20));
      }
    }
  }

  AerialPhoto left;
  AerialPhoto right;
  StereoPair pair;
};

void Grid(benchmark::State& state) {
  Pair photos(2000, "grid");
  StereoPair& pair = photos.pair;
  pair.groundSpacingX = kGridStep;
  pair.groundSpacingY = kGridStep;
  pair.maxDisparity = 55;
  pair.columnOffset = 0;
  ResetPeak();
  const double before = PeakBytes();
  for (auto _ : state) {
    pair.matchPairs.clear();
    if (pair.CorrelateGrid(false) != 1) state.SkipWithError("a run has failed");
  }
  const LeftGrid grid = pair.GetLeftGrid();
  state.counters["places"] = static_cast<double>(grid.nCols * grid.nRows);
  state.counters["matched"] = static_cast<double>(pair.matchPairs.size());
  state.counters["MB beyond"] = (PeakBytes() - before) / kMegabyte;
}

// The best of 33 columns at each place of a row of the dense matching, in its plainest form.
double PlainRow(const Pair& photos, std::int32_t row) {
  const std::int32_t cols = photos.left.image.GetSize().cx;
  const auto at = [&](const AerialPhoto& photo, std::int32_t y, std::int32_t x) {
    return photo.image.GetBands()[0] + static_cast<std::ptrdiff_t>(y) * cols + x;
  };
  const auto cut = [&](const AerialPhoto& photo, std::int32_t y, std::int32_t x, std::uint8_t* to) {
    for (int i = 0; i < kWindow; ++i)
      std::copy_n(at(photo, y + i - kWindow / 2, x - kWindow / 2), kWindow, to + i * kWindow);
  };
  std::vector<std::uint8_t> a(kPixels), b(kPixels);
  double sum = 0.0;
  for (std::int32_t col = kWindow; col < cols - kWindow; ++col) {
    cut(photos.left, row, col, a.data());
    double best = 0.0;
    const std::int32_t last = std::min(col + 16, cols - kWindow / 2 - 1);
    for (std::int32_t place = std::max(col - 16, kWindow / 2); place <= last; ++place) {
      cut(photos.right, row - 1, place, b.data());
      best = std::max(best, PlainLoop(a.data(), b.data(), kPixels));
    }
    sum += best;
  }
  return sum;
}

void Dense(benchmark::State& state) {
  constexpr std::int32_t kSize = 1000;
  constexpr int kPlainRows = 10;
  Pair photos(kSize, "dense");
  StereoPair& pair = photos.pair;
  pair.maxDisparity = 16;
  pair.columnOffset = 0;
  ResetPeak();
  const double before = PeakBytes();
  const auto runPlain = [&] {
    double sum = 0.0;
    for (int i = 0; i < kPlainRows; ++i) sum += PlainRow(photos, 100 + i * 80);
    return sum > 0.0;
  };
  const Seconds total = Compare(
      state, [&] { return pair.CorrelateDense() == 1; }, runPlain);
  const double nRows = kSize - 2 * (kWindow / 2 + 1);
  state.counters["times as fast"] = total.yardstick / kPlainRows * nRows / total.ours;
  constexpr double kMaps = 6.0 * kSize * kSize;  // bytes
  state.counters["MB beyond"] = (PeakBytes() - before - kMaps) / kMegabyte;
}

BENCHMARK(WindowKernel)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(Grid)->Unit(benchmark::kMillisecond);
BENCHMARK(Dense)->UseManualTime()->Iterations(2)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace corvane

BENCHMARK_MAIN();
