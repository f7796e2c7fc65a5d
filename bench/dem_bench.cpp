// A DEM of 2000 x 2000 cells from a TIN of about 2,000,000 triangles.
//   SampleHeights, the heights alone:
//     "of scan conversion": their time over that of a plain scan conversion of the same triangles
//       (wanted: 1 or less)
//     "of search": the same over FindTriangle for each cell
//   CreateDem, the whole command, from the .tin file to the .dem file:
//     "seconds"; "faster than gdal_grid": `gdal_grid -a linear` on the same points and grid, reading its
//     points from a text file of x,y,z (wanted: 20 or more)

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "RandomSurvey.h"
#include "TIN/TIN.h"
#include "TIN/TinRaster.h"
#include "TakingTurns.h"
#include "forms/ExtentInput.h"

namespace corvane {
namespace {

constexpr std::int32_t kPoints = 1000000;
constexpr int kSide = 2000;  // cells; the survey's side is 1000 units
constexpr double kCellSize = 0.5;
constexpr double kNoHeight = 230.0;

const RandomSurvey& Survey() {
  static const RandomSurvey survey(kPoints);
  return survey;
}

bool Load(TIN& tin) {
  const std::string path = Survey().GetTinPath();
  return tin.ReadTIN(path) == 0 && tin.StoreTriangle(path) == 0;
}

struct Grid {
  std::vector<double> xs;
  std::vector<double> ys;
  std::vector<float> heights;
};

Grid MakeGrid(const TIN& tin) {
  Grid grid;
  for (int i = 0; i < kSide; ++i) {
    grid.xs.push_back(std::floor(tin.GetExtent().minX) + (i + 0.5) * kCellSize);
    grid.ys.push_back(std::ceil(tin.GetExtent().maxY) - (i + 0.5) * kCellSize);
  }
  grid.heights.resize(std::size_t{kSide} * kSide);
  return grid;
}

// What anyone would write first: for each triangle its plane, for each row the columns between two sides.
void ScanConvert(const TIN& tin, Grid& grid) {
  std::fill(grid.heights.begin(), grid.heights.end(), static_cast<float>(kNoHeight));
  const double x0 = grid.xs.front();
  const double y0 = grid.ys.front();
  for (const TINTriangle& triangle : tin.triangles) {
    const TINVertex* v[3];
    for (int k = 0; k < 3; ++k) v[k] = &tin.vertices[static_cast<std::size_t>(triangle.v[k])];
    if (v[0]->y < v[1]->y) std::swap(v[0], v[1]);
    if (v[1]->y < v[2]->y) std::swap(v[1], v[2]);
    if (v[0]->y < v[1]->y) std::swap(v[0], v[1]);
    const double slopeX = -triangle.nx / triangle.nz;
    const double slopeY = -triangle.ny / triangle.nz;
    const int first = std::max(0, static_cast<int>(std::ceil((y0 - v[0]->y) / kCellSize)));
    const int last = std::min(kSide - 1, static_cast<int>(std::floor((y0 - v[2]->y) / kCellSize)));
    for (int row = first; row <= last; ++row) {
      const double y = grid.ys[static_cast<std::size_t>(row)];
      const TINVertex* const upper = y > v[1]->y ? v[0] : v[1];
      const TINVertex* const lower = y > v[1]->y ? v[1] : v[2];
      const double height = upper->y - lower->y;
      const double onShort =
          height > 0.0 ? upper->x + (upper->y - y) / height * (lower->x - upper->x) : upper->x;
      const double onLong = v[0]->x + (v[0]->y - y) / (v[0]->y - v[2]->y) * (v[2]->x - v[0]->x);
      const int left = std::max(0, static_cast<int>(std::ceil((std::min(onShort, onLong) - x0) / kCellSize)));
      const int right =
          std::min(kSide - 1, static_cast<int>(std::floor((std::max(onShort, onLong) - x0) / kCellSize)));
      float* const heights = grid.heights.data() + static_cast<std::size_t>(row) * kSide;
      for (int col = left; col <= right; ++col) {
        heights[col] = static_cast<float>(
            v[0]->z + slopeX * (grid.xs[static_cast<std::size_t>(col)] - v[0]->x) + slopeY * (y - v[0]->y));
      }
    }
  }
  benchmark::DoNotOptimize(grid.heights.data());
}

void SampleHeights(benchmark::State& state) {
  TIN tin;
  if (!Load(tin)) return state.SkipWithError("no TIN");
  Grid ours = MakeGrid(tin);
  Grid plain = MakeGrid(tin);
  Grid searched = MakeGrid(tin);
  const auto fill = [&] {
    TinRaster(tin, ours.xs, ours.ys, kCellSize, kNoHeight, ours.heights).Fill();
    return true;
  };
  const auto scan = [&] {
    ScanConvert(tin, plain);
    return true;
  };
  const Seconds total = Compare(state, fill, scan);
  const double search = SecondsOf(
      [&] { TinRaster(tin, searched.xs, searched.ys, kCellSize, kNoHeight, searched.heights).FillByNode(); });
  if (searched.heights != ours.heights) state.SkipWithError("the search finds other heights");
  const double seconds = total.ours / static_cast<double>(state.iterations());
  state.counters["seconds"] = seconds;
  state.counters["of scan conversion"] = total.ours / total.yardstick;
  state.counters["of search"] = seconds / search;
}
BENCHMARK(SampleHeights)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(10);

// The survey's points as a layer that GDAL reads from their text.
std::string LayerPath() {
  const std::string path = Survey().PathOf("points.vrt");
  std::ofstream(Survey().PathOf("points.csv"))
      << "x,y,z\n"
      << std::ifstream(Survey().GetTextPath(RandomSurvey::TextForm::Commas)).rdbuf();
  std::ofstream(path) << "<OGRVRTDataSource><OGRVRTLayer name=\"points\"><SrcDataSource>"
                      << Survey().PathOf("points.csv")
                      << "</SrcDataSource><GeometryType>wkbPoint25D</GeometryType>"
                         "<GeometryField encoding=\"PointFromColumns\" x=\"x\" y=\"y\" z=\"z\"/>"
                         "</OGRVRTLayer></OGRVRTDataSource>";
  return path;
}

bool RunGdalGrid(const std::string& layer, const ExtentWindow& window) {
  char command[1000];
  std::snprintf(command, sizeof command,
                "gdal_grid -q --config GDAL_NUM_THREADS 1 -a linear:radius=0:nodata=230 -txe %.17g %.17g "
                "-tye %.17g %.17g -outsize %d %d "
                "-ot Float32 -of GTiff -l points %s %s",
                window.xStart, window.xEnd, window.yEnd, window.yStart, kSide, kSide, layer.c_str(),
                Survey().PathOf("gdal.tif").c_str());
  return std::system(command) == 0;
}

void CreateDem(benchmark::State& state) {
  TIN tin;
  if (!Load(tin)) return state.SkipWithError("no TIN");
  const double x = std::floor(tin.GetExtent().minX);
  const double y = std::ceil(tin.GetExtent().maxY);
  const ExtentWindow window{x, y - kSide * kCellSize, x + kSide * kCellSize, y};
  const std::string layer = LayerPath();
  const auto ours = [&] {
    return tin.CreateDem(Survey().PathOf("a.dem"), window, kCellSize, kNoHeight) == 0;
  };
  const auto loading = [] {
    TIN read;
    return Load(read);
  };
  const Seconds total = Compare(state, ours, loading);
  const double gdal = SecondsOf([&] {
    if (!RunGdalGrid(layer, window)) state.SkipWithError("gdal_grid has failed");
  });
  const auto runs = static_cast<double>(state.iterations());
  state.counters["seconds"] = total.ours / runs;
  state.counters["faster than gdal_grid"] = gdal * runs / total.ours;
  state.counters["whole command faster"] = gdal * runs / (total.ours + total.yardstick);
}
BENCHMARK(CreateDem)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

}  // namespace
}  // namespace corvane

BENCHMARK_MAIN();
