#include "TIN/PointRaster.h"

#include "TIN/PointsHeader.h"
#include "TIN/TINPoints.h"
#include "erdasimg/RasterTools.h"
#include "io/OutputFile.h"
#include "numerics/Truncate.h"

namespace corvane {

namespace {

PointsHeader HeaderOf(const ErdasHeader& image, const PixelWindow& window, std::int32_t nPoints) {
  const double endRow = static_cast<double>(window.firstRow) + window.nRows;
  const double endCol = static_cast<double>(window.firstCol) + window.nCols;
  return {.nPoints = nPoints,
          .minX = (window.firstCol + 0.5) * image.xCell + image.xMap,
          .maxY = (window.firstRow + 0.5) * image.yCell + image.yMap,
          .maxX = (endCol - 0.5) * image.xCell + image.xMap,
          .minY = (endRow - 0.5) * image.yCell + image.yMap,
          .spacingX = image.xCell,
          .spacingY = -image.yCell};
}

// The sum in single precision.
double Step(double value, float cell) {
  return static_cast<float>(value) + cell;
}

}  // namespace

int WriteRasterPoints(const ErdasImg& image, const PixelWindow& window, OutputFile& file) {
  const std::int64_t nPoints = std::int64_t{window.nRows} * window.nCols;
  if (nPoints > INT32_MAX) return -2;
  const ErdasHeader& raster = *image.GetHeader();
  const PointsHeader header = HeaderOf(raster, window, static_cast<std::int32_t>(nPoints));
  const auto bytes = header.Pack();
  if (!file.Write(bytes.data(), bytes.size())) return -1;

  WindowRows rows(image, window);
  PointRecord point;
  point.y = header.maxY;
  for (std::int32_t row = 0; row < window.nRows; ++row) {
    point.x = header.minX;
    for (const double value : rows.Next()) {
      point.z = value;
      char record[kPointBytes];
      PackPoint(point, record);
      if (!file.Write(record, sizeof record)) return -1;
      point.x = Step(point.x, raster.xCell);
    }
    point.y = Step(point.y, raster.yCell);
  }
  return 1;
}

int PointsToDem(const TINPoints& points, ErdasImg& dem, std::int32_t& nPlaced) {
  nPlaced = 0;
  const double dx = points.spacingX;
  const double dy = points.spacingY;
  if (!(dx > 0.0 && dy > 0.0)) return -1;
  ErdasHeader header;
  header.xMap = static_cast<float>(points.minX - dx / 2);
  header.yMap = static_cast<float>(points.maxY + dy / 2);
  header.xCell = static_cast<float>(dx);
  header.yCell = static_cast<float>(-dy);
  const double rows = (points.maxY - points.minY) / dy + 0.5 + 1.0;
  const double cols = (points.maxX - points.minX) / dx + 0.5 + 1.0;
  const int status = FillDem(header, rows, cols, kNoDataZ, dem);
  if (status < 0) return status;

  const ImageSize size = dem.GetSize();
  for (std::int32_t i = 0; i < points.GetCount(); ++i) {
    const PointRecord& point = *points.GetPoint(i);
    const auto row = TruncateToInt((header.yMap - point.y) / dy);
    const auto col = TruncateToInt((point.x - header.xMap) / dx);
    if (!row || !col || *row < 0 || *row >= size.cy || *col < 0 || *col >= size.cx) continue;
    dem.SetPixel(0, *row, *col, point.z);
    ++nPlaced;
  }
  return 1;
}

}  // namespace corvane
