#include "TIN/TINPoints.h"

#include <algorithm>
#include <cmath>

#include "TIN/GridFailure.h"
#include "TIN/RecordExtent.h"
#include "TIN/Resize.h"
#include "TIN/Spacing.h"
#include "io/LargePages.h"
#include "numerics/Histogram.h"
#include "numerics/Truncate.h"

namespace corvane {

namespace {

// Of a grid: what scattered surveys need. The spare cells, for few points that lie far apart, are all that a
// wrong header alone can ask for: 96 MB.
constexpr std::int64_t kCellsPerPoint = 100;
constexpr std::int64_t kSpareCells = 4000000;

struct GridSize {
  std::int32_t nRows = 0;
  std::int32_t nCols = 0;

  std::int64_t GetCount() const { return std::int64_t{nRows} * nCols; }
};

bool IsUncrossed(const GroundRect& rect) {
  return rect.minX <= rect.maxX && rect.minY <= rect.maxY;
}

// Of an uncrossed rectangle. No cells at all where they are more than 32 bits can number.
GridSize SizeOf(double cellX, double cellY, const GroundRect& rect) {
  const std::int32_t nRows = TruncateToInt((rect.maxY - rect.minY) / cellY + 1.0).value_or(0);
  const std::int32_t nCols = TruncateToInt((rect.maxX - rect.minX) / cellX + 1.0).value_or(0);
  const GridSize size = {nRows, nCols};
  return size.GetCount() <= INT32_MAX ? size : GridSize{};
}

// The most cells that the expected points justify.
std::int64_t MaxCells(std::int64_t nExpected) {
  return kCellsPerPoint * std::clamp<std::int64_t>(nExpected, 0, INT32_MAX) + kSpareCells;
}

// Empty cells with their numbers, made in a single pass over the memory. False without it.
bool MakeCells(std::int32_t count, std::vector<GridCell>& cells) {
  try {
    ReserveLarge(cells, static_cast<std::size_t>(count));
    for (std::int32_t id = 0; id < count; ++id) cells.push_back({.id = id});
  } catch (const std::bad_alloc&) {
    return false;
  }
  return true;
}

// With NaN after all numbers.
bool IsLess(double a, double b) {
  return a < b || (std::isnan(b) && !std::isnan(a));
}

bool IsBefore(const PointRecord& a, const PointRecord& b) {
  if (IsLess(a.y, b.y)) return true;
  return !IsLess(b.y, a.y) && IsLess(a.x, b.x);
}

}  // namespace

TINPoints::TINPoints(std::int32_t n) {
  if (n <= 0 || !Resize(points, static_cast<std::size_t>(n))) return;
  nPoints = capacity = n;
}

TINPoints::TINPoints(double cellX, double cellY, const GroundRect& rect, std::int64_t nExpected) {
  if (!IsUncrossed(rect) || !IsSpacing(cellX) || !IsSpacing(cellY)) return;
  const GridSize size = SizeOf(cellX, cellY, rect);
  if (size.GetCount() < 1 || size.GetCount() > MaxCells(nExpected)) return;
  if (!MakeCells(static_cast<std::int32_t>(size.GetCount()), cells)) return;

  nRows = size.nRows;
  nCols = size.nCols;
  minX = gridMinX = rect.minX;
  minY = gridMinY = rect.minY;
  maxX = rect.maxX;
  maxY = rect.maxY;
  spacingX = cellX;
  spacingY = cellY;
}

std::string TINPoints::WhyNoGrid(double cellX, double cellY, const GroundRect& rect, std::int64_t nExpected) {
  if (!IsSpacing(cellX)) return NoGridText(cellX);
  if (!IsSpacing(cellY)) return NoGridText(cellY);
  if (!IsUncrossed(rect)) return "There is no grid: the extents are crossed or no numbers.";
  const GridSize size = SizeOf(cellX, cellY, rect);
  if (size.GetCount() < 1 || size.GetCount() > MaxCells(nExpected)) return kGridTooLarge;
  return "There is no memory for the grid.";
}

const PointRecord* TINPoints::GetPoint(std::int32_t i) const {
  return HasPoint(i) ? &points[static_cast<std::size_t>(i)] : nullptr;
}

int TINPoints::SetPoint(std::int32_t id, double x, double y, double z, double value, std::int32_t i) {
  if (!HasPoint(i)) return -1;
  points[static_cast<std::size_t>(i)] = {id, x, y, z, value};
  return 1;
}

int TINPoints::SetPointXY(std::int32_t id, double x, double y, std::int32_t i) {
  if (!HasPoint(i)) return -1;
  PointRecord& point = points[static_cast<std::size_t>(i)];
  point.id = id;
  point.x = x;
  point.y = y;
  return 1;
}

int TINPoints::Truncate(std::int32_t n) {
  if (n < 0 || n > nPoints) return 0;
  index.Free();
  nPoints = n;
  return 1;
}

void TINPoints::GetExtent(Extent6& extent) const {
  extent = {minX, maxX, minY, maxY, minZ, maxZ};
}

void TINPoints::SetExtent(int n, const Extent6& values) {
  if (n != 2 && n != 4 && n != 6) return;
  minX = values.minX;
  maxX = values.maxX;
  if (n < 4) return;
  minY = values.minY;
  maxY = values.maxY;
  if (n < 6) return;
  minZ = values.minZ;
  maxZ = values.maxZ;
}

void TINPoints::GetSpacing(double& x, double& y) const {
  x = spacingX;
  y = spacingY;
}

void TINPoints::SetSpacing(double x, double y) {
  spacingX = x;
  spacingY = y;
}

void TINPoints::RecalcExtent() {
  if (nPoints < 1) return;
  minX = maxX = points[0].x;
  minY = maxY = points[0].y;
  minZ = maxZ = points[0].z;
  for (const PointRecord& point : InUse()) {
    Widen(minX, maxX, point.x);
    Widen(minY, maxY, point.y);
    Widen(minZ, maxZ, point.z);
  }
}

int TINPoints::ValueHistogram(double binSize, Histogram& histogram) const {
  return MakeHistogram(
      InUse(), [](const PointRecord& point) { return point.value; }, binSize, histogram);
}

int TINPoints::AddPoint(const PointRecord& record) {
  const PointRecord added = record;  // may be one of ours, which growing moves
  if (nPoints == capacity) {
    const std::int64_t growth = std::max<std::int64_t>(capacity / 100, 10);
    const std::int64_t grown = std::min<std::int64_t>(capacity + growth, INT32_MAX);
    if (grown == capacity || !Resize(points, static_cast<std::size_t>(grown))) return -1;
    capacity = static_cast<std::int32_t>(grown);
  }
  points[static_cast<std::size_t>(nPoints)] = added;
  const std::int32_t position = nPoints++;
  return index.HasCells() && index.Insert(added.x, added.y, position) < 0 ? -1 : 1;
}

int TINPoints::RemovePoint(std::int32_t i) {
  if (!HasPoint(i)) return -1;
  PointRecord& point = points[static_cast<std::size_t>(i)];
  if (index.HasCells()) index.Remove(point.x, point.y, i);
  point.id = -1;
  return 1;
}

void TINPoints::Compact() {
  index.Free();
  const auto isDeleted = [](const PointRecord& point) { return point.id < 0; };
  const auto end = points.begin() + nPoints;
  nPoints = static_cast<std::int32_t>(std::remove_if(points.begin(), end, isDeleted) - points.begin());
  if (nPoints < 1) return;
  minX = maxX = points[0].x;
  minY = maxY = points[0].y;
  for (const PointRecord& point : InUse()) {
    Widen(minX, maxX, point.x);
    Widen(minY, maxY, point.y);
  }
}

void TINPoints::SortByPlace() {
  index.Free();
  std::stable_sort(points.begin(), points.begin() + nPoints, IsBefore);
}

}  // namespace corvane
