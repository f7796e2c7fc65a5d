// Selection of points through the grid index.

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

#include "Geometry/Cross.h"
#include "TIN/Spacing.h"
#include "TIN/TINPoints.h"
#include "numerics/Truncate.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

// Left, top, right, bottom, with top the smaller y.
struct IntegerRect {
  std::int32_t left = 0;
  std::int32_t top = 0;
  std::int32_t right = 0;
  std::int32_t bottom = 0;
};

struct PlanPoint {
  double x = 0.0;
  double y = 0.0;
};

// The direction of a search along an axis: how far a candidate lies ahead and aside, and the next cell.
struct Direction {
  double aheadX;
  double aheadY;
  double asideX;
  double asideY;
  std::int32_t nextCol;
  std::int32_t nextRow;
};

constexpr std::array<Direction, 4> kDirections = {{{-1.0, 0.0, 0.0, 1.0, -1, 0},
                                                   {1.0, 0.0, 0.0, 1.0, 1, 0},
                                                   {0.0, -1.0, 1.0, 0.0, 0, -1},
                                                   {0.0, 1.0, 1.0, 0.0, 0, 1}}};

IntegerRect RectangleOf(const Region& region) {
  IntegerRect rect = {TruncateSaturated(region.coords[0]), TruncateSaturated(region.coords[1]),
                      TruncateSaturated(region.coords[2]), TruncateSaturated(region.coords[3])};
  if (rect.left > rect.right) std::swap(rect.left, rect.right);
  if (rect.top > rect.bottom) std::swap(rect.top, rect.bottom);
  return rect;
}

bool IsInRectangle(const PointRecord& point, const IntegerRect& rect) {
  return rect.left <= point.x && point.x <= rect.right && rect.top <= point.y && point.y <= rect.bottom;
}

// Kept: cutting towards zero takes what lies less than 1 below a left or top edge of 0 along.
bool IsMarkedInRectangle(const PointRecord& point, const IntegerRect& rect) {
  const auto x = TruncateToInt(point.x);
  const auto y = TruncateToInt(point.y);
  return x && y && rect.left <= *x && *x < rect.right && rect.top <= *y && *y < rect.bottom;
}

PlanPoint VertexOf(const Region& polygon, std::size_t k) {
  return {polygon.coords[2 * k], polygon.coords[2 * k + 1]};
}

// Whether the point lies on the same side of all edges as the third vertex of the first.
bool IsInPolygon(const PointRecord& point, const Region& polygon) {
  const bool clockwise = Cross(VertexOf(polygon, 0), VertexOf(polygon, 1), VertexOf(polygon, 2)) < 0.0;
  for (std::size_t k = 0; k + 1 < static_cast<std::size_t>(polygon.nVertices); ++k) {
    if ((Cross(VertexOf(polygon, k), VertexOf(polygon, k + 1), point) < 0.0) != clockwise) return false;
  }
  return true;
}

// Whether a region has its vertices, `nLeast` or more, and they are numbers.
bool HasCoords(const Region& region, std::int32_t nLeast) {
  if (region.nVertices < nLeast) return false;
  const std::size_t nCoords = 2 * static_cast<std::size_t>(region.nVertices);
  if (region.coords.size() < nCoords) return false;
  const auto isNoNumber = [](double coordinate) { return std::isnan(coordinate); };
  const std::span<const double> coords(region.coords.data(), nCoords);
  return std::none_of(coords.begin(), coords.end(), isNoNumber);
}

bool IsInRuns(const PointRecord& point, const ScanShape& shape) {
  const auto row = TruncateToInt(point.y);
  if (!row) return false;
  const std::int64_t i = std::int64_t{*row} - shape.firstRow;
  if (i < 0 || i >= static_cast<std::int64_t>(shape.rows.size())) return false;
  const auto& runs = shape.rows[static_cast<std::size_t>(i)];
  return std::any_of(runs.begin(), runs.end(),
                     [&point](const ScanRun& run) { return run.from <= point.x && point.x <= run.to; });
}

// A rectangle that holds every point which the shape can hold. Row 0 reaches from -1 to 1, so that a row
// may begin one unit below its number.
IntegerRect BoundsOf(const ScanShape& shape) {
  double left = std::numeric_limits<double>::infinity();
  double right = -left;
  for (const auto& runs : shape.rows) {
    for (const ScanRun& run : runs) {
      left = std::min(left, run.from);
      right = std::max(right, run.to);
    }
  }
  const double firstRow = shape.firstRow;
  return {TruncateSaturated(std::floor(left)), TruncateSaturated(firstRow - 1.0),
          TruncateSaturated(std::ceil(right)),
          TruncateSaturated(firstRow + static_cast<double>(shape.rows.size()))};
}

// Drops from the positions in `list`, from `first` on, those whose point is not in.
template <typename IsIn>
void KeepOnly(IsIn isIn, const TINPoints& set, std::size_t first, std::vector<std::int32_t>& list) {
  const auto isOut = [&](std::int32_t i) { return !isIn(set.points[static_cast<std::size_t>(i)]); };
  list.erase(std::remove_if(list.begin() + static_cast<std::ptrdiff_t>(first), list.end(), isOut),
             list.end());
}

using RectangleTest = bool (*)(const PointRecord&, const IntegerRect&);

int SelectInRegion(const TINPoints& set, const Region& region, RectangleTest isInRectangle,
                   std::vector<std::int32_t>& list) {
  const std::size_t first = list.size();
  if (!set.GetIndex()) return -1;
  if (region.type == Region::kRectangle && HasCoords(region, 2)) {
    const IntegerRect rect = RectangleOf(region);
    set.index.QueryRect(rect.left, rect.top, rect.right, rect.bottom, list);
    KeepOnly([&](const PointRecord& point) { return isInRectangle(point, rect); }, set, first, list);
    return 1;
  }
  if (region.type == Region::kPolygon && HasCoords(region, 4)) {
    const std::size_t nCoords = 2 * static_cast<std::size_t>(region.nVertices);
    set.index.QueryPolygon(std::span(region.coords).first(nCoords), list);
    KeepOnly([&](const PointRecord& point) { return IsInPolygon(point, region); }, set, first, list);
    return 1;
  }
  return -1;
}

// The live point nearest to (x, y) in its cell whose squared distance is below `limit`, or -1.
std::int32_t NearestInCellOf(const TINPoints& set, std::int32_t x, std::int32_t y, double limit) {
  std::int32_t col = 0;
  std::int32_t row = 0;
  set.index.CellOf(x, y, col, row);
  std::int32_t nearest = -1;
  for (const std::int32_t i : set.index.GetCell(row, col)) {
    const PointRecord& point = set.points[static_cast<std::size_t>(i)];
    const double dx = point.x - x;
    const double dy = point.y - y;
    const double distance = dx * dx + dy * dy;
    if (point.id < 0 || !(distance < limit)) continue;
    limit = distance;
    nearest = i;
  }
  return nearest;
}

// The best candidate of a cell for the neighbour of `from`, less than `limit` to the side; -1 for none.
std::int32_t BestAhead(const TINPoints& set, const PointRecord& from, const Direction& way, double limit,
                       std::span<const std::int32_t> cell) {
  std::int32_t best = -1;
  double bestScore = std::numeric_limits<double>::infinity();
  for (const std::int32_t i : cell) {
    const PointRecord& candidate = set.points[static_cast<std::size_t>(i)];
    const double dx = candidate.x - from.x;
    const double dy = candidate.y - from.y;
    const double ahead = way.aheadX * dx + way.aheadY * dy;
    const double aside = std::fabs(way.asideX * dx + way.asideY * dy);
    if (candidate.id < 0 || !(ahead > 0.0 && aside < limit)) continue;
    const double score = ahead + aside / 2;
    if (!(score < bestScore)) continue;
    best = i;
    bestScore = score;
  }
  return best;
}

int IndexAll(TINPoints& set) {
  const auto pointAt = [&set](std::int32_t i) -> const PointRecord& {
    return set.points[static_cast<std::size_t>(i)];
  };
  const int result = set.index.InsertAll(set.nPoints, pointAt);
  if (result == -1) ShowWarning(kExtensionError);  // a point outside has been told
  return result < 0 ? -1 : 1;
}

}  // namespace

int TINPoints::BuildIndex(double density) {
  const double extent4[4] = {minX, maxX, minY, maxY};
  index.Free();
  if (nPoints < 1) return -1;
  index.Size(extent4, nPoints, density);
  return IndexAll(*this);
}

int TINPoints::BuildIndexWithCell(double cellSize) {
  const double extent4[4] = {minX, maxX, minY, maxY};
  index.Free();
  if (nPoints < 1) return -1;
  if (!IsSpacing(cellSize)) {
    ShowWarning(kExtensionError);
    return -1;
  }
  index.SizeWithCell(extent4, cellSize, nPoints);
  return IndexAll(*this);
}

const GridIndex* TINPoints::GetIndex() const {
  return index.HasCells() ? &index : nullptr;
}

std::int32_t TINPoints::NearestWithin(std::int32_t x, std::int32_t y, double radius) const {
  return NearestInCellOf(*this, x, y, radius * radius);
}

std::int32_t TINPoints::NearestInCell(std::int32_t x, std::int32_t y) const {
  return NearestInCellOf(*this, x, y, std::numeric_limits<double>::infinity());
}

std::int32_t TINPoints::NearestInDirection(std::int32_t i, int direction) const {
  if (!index.HasCells() || !HasPoint(i)) return -1;
  const PointRecord& from = points[static_cast<std::size_t>(i)];
  std::int32_t col = 0;
  std::int32_t row = 0;
  index.CellOf(from.x, from.y, col, row);
  if (!index.HasCell(row, col)) return -2;
  if (direction < 0 || direction > 3) return -3;
  const Direction& way = kDirections[static_cast<std::size_t>(direction)];
  const double limit = direction < 2 ? spacingX : spacingY;
  for (; index.HasCell(row, col); col += way.nextCol, row += way.nextRow) {
    const std::int32_t best = BestAhead(*this, from, way, limit, index.GetCell(row, col));
    if (best >= 0) return best;
  }
  return -4;
}

int TINPoints::CollectInRegion(const Region& region, std::vector<std::int32_t>& list) const {
  return SelectInRegion(*this, region, IsInRectangle, list);
}

int TINPoints::MarkRegion(const Region& region) {
  std::vector<std::int32_t> list;
  const int result = SelectInRegion(*this, region, IsMarkedInRectangle, list);
  for (const std::int32_t i : list) points[static_cast<std::size_t>(i)].id = -1;
  return result;
}

int TINPoints::CollectInRuns(const ScanShape& scanShape, std::vector<std::int32_t>& list) const {
  if (!index.HasCells()) return -1;
  const std::size_t first = list.size();
  const IntegerRect bounds = BoundsOf(scanShape);
  index.QueryRect(bounds.left, bounds.top, bounds.right, bounds.bottom, list);
  KeepOnly([&](const PointRecord& point) { return IsInRuns(point, scanShape); }, *this, first, list);
  return 1;
}

}  // namespace corvane
