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
#include "ui/FrontEnd.h"

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

// The most samples of so many points: many more than anybody thins them out to, and no endless run.
std::int64_t MaxSamples(std::int32_t nPoints) {
  return std::min<std::int64_t>(100 * std::int64_t{nPoints} + 1000000, INT32_MAX);
}

// Tells how many of many samples have been taken.
class SampleProgress {
 public:
  explicit SampleProgress(std::int64_t nSamples) : nSamples_(nSamples) {}

  void Follow(std::int64_t nTaken) {
    if (nTaken < next_) return;
    Ui().SetStatusText(
        0, "Resampling: " + std::to_string(nTaken) + " of " + std::to_string(nSamples_) + " samples");
    next_ = nTaken + kStep;
  }

 private:
  static constexpr std::int64_t kStep = 4000000;
  std::int64_t nSamples_;
  std::int64_t next_ = kStep;
};

}  // namespace

int TINPoints::Resample(const std::string& path, double spacing) const {
  OutputFile file(path);
  if (!file.IsOpen()) return -1;
  const int result = Resample(file, spacing);
  if (result < 0) return result;
  return file.Commit() ? 0 : -1;
}

int TINPoints::Resample(OutputFile& file, double spacing, std::int32_t* nWritten) const {
  if (!index.HasCells() || !IsSpacing(spacing)) return -2;
  const auto rows = SamplesAlong(maxY - minY, spacing);
  const auto cols = SamplesAlong(maxX - minX, spacing);
  if (!rows || !cols || std::int64_t{*rows} * *cols > MaxSamples(nPoints)) return -3;

  // Kept: without samples these crossed bounds stay.
  PointsHeader header = {0, maxX, minY, minX, maxY, spacing, spacing};
  bool good = file.Seek(PointsHeader::kBytes);
  SampleProgress progress(std::int64_t{*rows} * *cols);
  const std::int32_t nRows = *cols > 0 ? *rows : 0;
  double y = minY - spacing;
  for (std::int32_t row = 0; row < nRows && good; ++row) {
    y += spacing;
    good = WriteSampleRow(y, *cols, header, file);
    progress.Follow((row + std::int64_t{1}) * *cols);
  }
  const auto bytes = header.Pack();
  if (!good || !file.Seek(0) || !file.Write(bytes.data(), bytes.size())) return -1;
  if (nWritten) *nWritten = header.nPoints;
  return 0;
}

// The samples of one row, a spacing apart from minX on. False if a write fails.
bool TINPoints::WriteSampleRow(double y, std::int32_t nSamples, PointsHeader& header,
                               OutputFile& file) const {
  double x = minX - header.spacingX;
  for (std::int32_t i = 0; i < nSamples; ++i) {
    x += header.spacingX;
    if (!WriteSample(x, y, header, file)) return false;
  }
  return true;
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
