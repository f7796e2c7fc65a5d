// The raster of heights that a TIN gives.

#include <cmath>
#include <new>

#include "TIN/TIN.h"
#include "TIN/TinRaster.h"
#include "erdasimg/ErdasImg.h"
#include "forms/ExtentInput.h"
#include "ui/RunTimer.h"

namespace corvane {

namespace {

constexpr std::int64_t kMaxNodes = std::int64_t{1} << 31;

// int(ceil(length / step)), the number of steps; 0 for what is no number of nodes.
std::int64_t StepsIn(double length, double step) {
  const double steps = std::ceil(length / step);
  return steps >= 1.0 && steps <= static_cast<double>(kMaxNodes) ? static_cast<std::int64_t>(steps) : 0;
}

// The header of a DEM of the window: one band of floats. Without rows and columns where there are no cells,
// or too many.
ErdasHeader DemHeader(const ExtentWindow& window, float cellSize) {
  ErdasHeader header;
  const std::int64_t nRows = StepsIn(window.yEnd - window.yStart, cellSize);
  const std::int64_t nCols = StepsIn(window.xEnd - window.xStart, cellSize);
  const bool isPossible = cellSize > 0.0f && nRows > 0 && nCols > 0 && nRows <= kMaxNodes / nCols;
  header.packType = kPackFloat;
  header.cols = isPossible ? static_cast<std::int32_t>(nCols) : 0;
  header.rows = isPossible ? static_cast<std::int32_t>(nRows) : 0;
  header.xMap = static_cast<float>(window.xStart);
  header.yMap = static_cast<float>(window.yEnd);
  header.xCell = cellSize;
  header.yCell = -cellSize;
  return header;
}

// The centres of cells along one side: each a step from the one before, so that rounding adds up.
std::vector<double> CellCentres(double start, double step, std::int32_t n) {
  std::vector<double> centres(static_cast<std::size_t>(n));
  for (double& centre : centres) {
    centre = start;
    start += step;
  }
  return centres;
}

}  // namespace

int TIN::CreateDem(const std::string& path, const ExtentWindow& window, float cellSize, double defaultZ,
                   StoredDem* stored) const {
  RunTimer timer;
  ErdasImg dem;
  try {
    if (dem.Create(DemHeader(window, cellSize), false) < 0) return -1;
    const double half = cellSize / 2.0;
    const std::vector<double> xs = CellCentres(window.xStart + half, cellSize, dem.GetSize().cx);
    const std::vector<double> ys = CellCentres(window.yEnd + half - cellSize, -cellSize, dem.GetSize().cy);
    const auto bytes = dem.GetBands().GetBand(0);
    TinRaster(*this, xs, ys, cellSize, defaultZ,
              {reinterpret_cast<float*>(bytes.data()), bytes.size() / sizeof(float)})
        .Fill();
  } catch (const std::bad_alloc&) {
    return -1;
  }
  const int written = dem.Write(path);
  if (stored) *stored = {dem.GetSize().cy, dem.GetSize().cx, written};
  timer.Stop();
  timer.ShowTotal();
  return 0;
}

}  // namespace corvane
