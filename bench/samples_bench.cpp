// Samples between the pixels of a byte image of 2000 x 2000, along the rows of an image turned by 10 degrees:
// the form for many places, beside the one for a single place.
//   "samples/s": of the form for many places
//   "times": as fast as the single one

#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

#include "TakingTurns.h"
#include "erdasimg/ErdasImg.h"

namespace corvane {
namespace {

constexpr std::int32_t kSize = 2000;  // rows and columns of the image
constexpr std::size_t kRow = 1000;    // places in a row
constexpr std::size_t kRows = 1000;

void MakeImage(ErdasImg& image) {
  ErdasHeader header;
  header.cols = kSize;
  header.rows = kSize;
  image.Create(header, false);
  std::uint8_t value = 0;
  for (std::uint8_t& pixel : image.m_bands.GetBand(0)) pixel = value += 37;
}

struct Places {
  std::vector<double> rows;
  std::vector<double> cols;
};

Places PlacesOfRow(std::size_t row) {
  const double cosine = std::cos(0.1745);
  const double sine = std::sin(0.1745);
  Places places;
  for (std::size_t i = 0; i < kRow; ++i) {
    const double x = static_cast<double>(i);
    const double y = static_cast<double>(row);
    places.rows.push_back(500.0 + x * sine + y * cosine);
    places.cols.push_back(500.0 + x * cosine - y * sine);
  }
  return places;
}

using Many = void (ErdasImg::*)(std::int32_t, std::span<const double>, std::span<const double>,
                                std::span<double>) const;
using Single = bool (ErdasImg::*)(std::int32_t, double, double, double&) const;

void Measure(benchmark::State& state, Many many, Single single) {
  ErdasImg image;
  MakeImage(image);
  std::vector<Places> places;
  for (std::size_t row = 0; row < kRows; ++row) places.push_back(PlacesOfRow(row));
  std::vector<double> values(kRow);
  std::vector<double> others(kRow);
  const auto ours = [&] {
    for (const Places& row : places) (image.*many)(0, row.rows, row.cols, values);
    return true;
  };
  const auto yardstick = [&] {
    for (const Places& row : places) {
      for (std::size_t i = 0; i < kRow; ++i) (image.*single)(0, row.rows[i], row.cols[i], others[i]);
    }
    return true;
  };
  const Seconds seconds = Compare(state, ours, yardstick);
  if (values != others) state.SkipWithError("the forms differ");
  const double nSamples = static_cast<double>(kRow * kRows) * static_cast<double>(state.iterations());
  state.counters["samples/s"] = nSamples / seconds.ours;
  state.counters["times"] = seconds.yardstick / seconds.ours;
}

void Nearest(benchmark::State& state) {
  Measure(state, &ErdasImg::GetPixelsNearest, &ErdasImg::GetPixelNearest);
}
void Bilinear(benchmark::State& state) {
  Measure(state, &ErdasImg::GetPixelsBilinear, &ErdasImg::GetPixelBilinear);
}
void Bicubic(benchmark::State& state) {
  Measure(state, &ErdasImg::GetPixelsBicubic, &ErdasImg::GetPixelBicubic);
}

BENCHMARK(Nearest)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(10);
BENCHMARK(Bilinear)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(10);
BENCHMARK(Bicubic)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(10);

}  // namespace
}  // namespace corvane

BENCHMARK_MAIN();
