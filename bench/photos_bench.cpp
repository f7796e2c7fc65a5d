// Photos resampled in memory: a byte photo of 4000 x 4000 pixels into an epipolar image, and into an
// orthophoto on a DEM of hills. The number behind a name is the turn of the photo, in degrees.
//   "pixels/s": of the result, which is made anew each time
// bench/compare-ortho puts the orthophoto beside a warp of the same photo onto the same DEM.
//
// With the environment variable CORVANE_BENCH_FOLDER the first orthophoto goes there as ortho.lan, with its
// photo, photo.lan and photo.orn, and dem.lan.

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdlib>
#include <memory>
#include <string>

#include "BenchImage.h"
#include "OpenGL/Stereo_2Cursor/AerialPhoto.h"
#include "OpenGL/Stereo_2Cursor/EpipolarPair.h"
#include "TakingTurns.h"
#include "numerics/Angles.h"
#include "numerics/Extents.h"

namespace corvane {
namespace {

constexpr double kFocalLength = 150.0;
constexpr double kPixel = 0.05;  // photo units; half a unit on the ground from 1500 above it
constexpr double kHeight = 1500.0;
constexpr float kCell = 0.5f;
constexpr double kMiddle = (kImageSize - 1) / 2.0;

// A photo from above (x, y), whose upper edge lies north but for the turn, in degrees.
std::unique_ptr<AerialPhoto> MakePhoto(double x, double y, double turn) {
  auto photo = std::make_unique<AerialPhoto>();
  photo->SetExterior(kFocalLength, 0, 0, x, y, kHeight, ToRadians(0.8), ToRadians(-0.6), ToRadians(turn));
  const double interior[3][3] = {
      {kPixel, 0, -kPixel * kMiddle}, {0, -kPixel, kPixel * kMiddle}, {0, 0, -kFocalLength}};
  for (int i = 0; i < 3; ++i) std::copy_n(interior[i], 3, photo->imageToPhoto[i]);
  photo->Recompute();
  static const ErdasImg waves = MakeWaves();
  *photo->image.GetHeader() = *waves.GetHeader();
  photo->image.SetBands(waves.GetBands());
  return photo;
}

// Hills of 40 units in cells of 5, over the photo and beyond.
ErdasImg MakeHills() {
  ErdasHeader header;
  header.packType = kPackFloat;
  header.cols = 600;
  header.rows = 600;
  header.xMap = -1500.0f;
  header.yMap = 1500.0f;
  header.xCell = 5.0f;
  header.yCell = -5.0f;
  ErdasImg dem;
  if (dem.Create(header, false) != 1) std::abort();
  for (std::int32_t row = 0; row < header.rows; ++row) {
    for (std::int32_t col = 0; col < header.cols; ++col) {
      dem.SetPixel(0, row, col, 40.0 * std::sin(0.02 * row) * std::sin(0.03 * col));
    }
  }
  return dem;
}

// Writes what the yardstick needs to the folder, if there is one.
void Share(AerialPhoto& photo, ErdasImg& dem, ErdasImg& ortho) {
  const char* const folder = std::getenv("CORVANE_BENCH_FOLDER");
  if (!folder) return;
  const std::string stem = std::string(folder) + "/";
  const bool isWritten = photo.image.Write(stem + "photo.lan") == 1 && dem.Write(stem + "dem.lan") == 1 &&
                         ortho.Write(stem + "ortho.lan") == 1 &&
                         photo.WriteOrientation(stem + "photo.orn", "photo") == 1;
  if (!isWritten) std::abort();
}

// The smallest image that holds the footprint.
ErdasHeader HeaderAround(const Footprint& footprint, ErdasHeader header) {
  double extent[4];
  ExtentOfPoints(footprint.data(), 4, 2, extent);
  header.cols = static_cast<std::int32_t>((extent[2] - extent[0]) / kCell);
  header.rows = static_cast<std::int32_t>((extent[3] - extent[1]) / kCell);
  header.xMap = static_cast<float>(extent[0]);
  header.yMap = static_cast<float>(extent[3]);
  header.xCell = kCell;
  header.yCell = -kCell;
  return header;
}

void Resampling(benchmark::State& state) {
  const double turn = static_cast<double>(state.range(0));
  const auto left = MakePhoto(0, 0, turn);
  const auto right = MakePhoto(800, 10, turn);
  double nPixels = 0.0;
  for (auto step : state) {
    EpipolarPair pair(*left, *right, 1.0);
    if (pair.left.ResampleFrom(*left, pair.leftExtent.data(), pair.cell) != 1) state.SkipWithError("failed");
    nPixels += static_cast<double>(pair.left.image.GetImageBytes());
  }
  state.counters["pixels/s"] = benchmark::Counter(nPixels, benchmark::Counter::kIsRate);
}

void Orthophoto(benchmark::State& state) {
  const auto photo = MakePhoto(0, 0, static_cast<double>(state.range(0)));
  ErdasImg dem = MakeHills();
  Footprint footprint;
  photo->FootprintAtHeight({}, 0.0, footprint);
  const ErdasHeader header = HeaderAround(footprint, *photo->image.GetHeader());
  double nPixels = 0.0;
  ErdasImg output;
  for (auto step : state) {
    const bool isFilled =
        output.Create(header, false) == 1 && photo->OrthoFill(&footprint, false, &dem, &output) == 1;
    if (!isFilled) state.SkipWithError("failed");
    nPixels += static_cast<double>(output.GetImageBytes());
  }
  state.counters["pixels"] = static_cast<double>(output.GetImageBytes());
  state.counters["pixels/s"] = benchmark::Counter(nPixels, benchmark::Counter::kIsRate);
  if (state.range(0) == 1) Share(*photo, dem, output);
}

BENCHMARK(Resampling)->Arg(1)->Arg(90)->Unit(benchmark::kMillisecond);
BENCHMARK(Orthophoto)->Arg(1)->Arg(45)->Arg(90)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace corvane

BENCHMARK_MAIN();
