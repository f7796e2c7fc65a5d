// A regular sample of scattered points.

#include <algorithm>
#include <cstdlib>
#include <optional>

#include "TIN/PointsHeader.h"
#include "TIN/RecordExtent.h"
#include "TIN/Spacing.h"
#include "TIN/TINPoints.h"
#include "io/OutputFile.h"
#include "numerics/Truncate.h"

namespace corvane {

namespace {

// Samples of this spacing within a length, which is first cut to a whole number. Nothing if one of the two is
// no number of 32 bits.
std::optional<std::int32_t> SamplesAlong(double length, double spacing) {
  const auto whole = TruncateToInt(length);
  if (!whole) return std::nullopt;
  const auto nSamples = TruncateToInt(*whole / spacing);
  if (!nSamples) return std::nullopt;
  return std::max(*nSamples, 0);
}

}  // namespace

int TINPoints::Resample(const std::string& path, double spacing) const {
  if (!index.HasCells() || !IsSpacing(spacing)) return -1;
  const auto rows = SamplesAlong(maxY - minY, spacing);
  const auto cols = SamplesAlong(maxX - minX, spacing);
  if (!rows || !cols || std::int64_t{*rows} * *cols > INT32_MAX) return -1;
  OutputFile file(path);
  if (!file.IsOpen()) return -1;

  // Kept: without samples these crossed bounds stay.
  PointsHeader header = {0, maxX, minY, minX, maxY, spacing, spacing};
  bool good = file.Seek(PointsHeader::kBytes);
  double y = minY - spacing;
  for (std::int32_t row = 0; row < *rows && good; ++row) {
    y += spacing;
    double x = minX - spacing;
    for (std::int32_t col = 0; col < *cols && good; ++col) {
      x += spacing;
      good = WriteSample(x, y, header, file);
    }
  }
  const auto bytes = header.Pack();
  good = good && file.Seek(0) && file.Write(bytes.data(), bytes.size()) && file.Commit();
  return good ? 0 : -1;
}

// Any point of the cell at (x, y), counted in the header; none of an empty cell. False if the write fails.
bool TINPoints::WriteSample(double x, double y, PointsHeader& header, OutputFile& file) const {
  std::int32_t col = 0;
  std::int32_t row = 0;
  index.CellOf(x, y, col, row);
  const std::span<const std::int32_t> cell = index.GetCell(row, col);
  if (cell.empty()) return true;
  const std::int32_t picked = cell[static_cast<std::size_t>(std::rand()) % cell.size()];
  const PointRecord& point = points[static_cast<std::size_t>(picked)];
  Widen(header.minX, header.maxX, point.x);
  Widen(header.minY, header.maxY, point.y);
  ++header.nPoints;
  char bytes[kPointBytes];
  PackPoint(point, bytes);
  return file.Write(bytes, sizeof bytes);
}

}  // namespace corvane
