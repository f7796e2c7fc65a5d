#include "erdasimg/ScanRegion.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

#include "Geometry/Plane2D.h"
#include "numerics/Truncate.h"

namespace corvane {

namespace {

constexpr std::int64_t kMostRows = std::int64_t{1} << 22;
constexpr std::int64_t kMostCrossings = std::int64_t{1} << 26;

// The raster: pixel (0, 0) begins at the origin.
struct Grid {
  double originX;
  double originY;
  double cellY;
  double cellX;

  double RowOf(double y) const { return (y - originY) / cellY; }
  bool IsUsable() const {
    return std::isfinite(originX) && std::isfinite(originY) && std::isfinite(cellX) && cellX != 0.0 &&
           std::isfinite(cellY) && cellY != 0.0;
  }
};

struct RowRange {
  std::int64_t first = 0;
  std::int64_t last = -1;

  std::int64_t GetCount() const { return std::max<std::int64_t>(last - first + 1, 0); }
};

// An edge that is not horizontal, as x = slope * y + intercept, and the rows that it crosses.
struct Edge {
  double slope = 0.0;
  double intercept = 0.0;
  RowRange rows;
};

// The rows of the polygon; nothing for coordinates that make no raster.
std::optional<RowRange> RowsOf(std::span<const Point2D> points, const Grid& grid) {
  for (const Point2D& point : points) {
    if (!std::isfinite(point.x) || !std::isfinite(point.y)) return std::nullopt;
  }
  Box2D box;
  PolygonBounds(points, box);
  double first = std::floor(grid.RowOf(box.minY));
  double last = std::ceil(grid.RowOf(box.maxY));
  if (last < first) std::swap(first, last);
  constexpr double kLimit = std::numeric_limits<std::int32_t>::max();
  if (!(first >= -kLimit && last <= kLimit && last - first < static_cast<double>(kMostRows))) {
    return std::nullopt;
  }
  return RowRange{static_cast<std::int64_t>(first), static_cast<std::int64_t>(last)};
}

// A vertex between two edges that go on in the same direction belongs to one of them: the row of the edge
// that ends there is left to the next one. Kept: the row is left out where rows grow as y falls, in a grid
// with a negative cell. In one with a positive cell the edge gets a row more instead, and the polygon an odd
// number of crossings there.
int EndAdjustment(double y0, double y1, double y2) {
  if (y0 > y1 && y1 > y2) return -1;
  return y0 < y1 && y1 < y2 ? 1 : 0;
}

Edge EdgeOf(const Point2D& start, const Point2D& end, const Point2D& next, const Grid& grid,
            const RowRange& table) {
  Edge edge;
  edge.slope = (end.x - start.x) / (end.y - start.y);
  edge.intercept = start.x - edge.slope * start.y;
  std::int64_t a = TruncateTo64(grid.RowOf(start.y));
  std::int64_t b = TruncateTo64(grid.RowOf(end.y)) + EndAdjustment(start.y, end.y, next.y);
  if (b < a) std::swap(a, b);
  edge.rows = {std::max(a, table.first), std::min(b, table.last)};
  return edge;
}

std::vector<Edge> EdgesOf(std::span<const Point2D> points, const Grid& grid, const RowRange& table) {
  std::vector<Edge> edges;
  for (std::size_t i = 1; i <= points.size(); ++i) {
    const Point2D& start = points[i - 1];
    const Point2D& end = points[i % points.size()];
    if (start.y == end.y) continue;
    edges.push_back(EdgeOf(start, end, points[(i + 1) % points.size()], grid, table));
  }
  return edges;
}

void AddCrossings(const Edge& edge, const Grid& grid, std::int64_t firstRow, std::vector<ScanRow>& rows) {
  for (std::int64_t r = edge.rows.first; r <= edge.rows.last; ++r) {
    const double x = (static_cast<double>(r) * edge.slope * grid.cellY + edge.intercept +
                      edge.slope * grid.originY - grid.originX) /
                     grid.cellX;
    ScanRow& row = rows[static_cast<std::size_t>(r - firstRow)];
    row.x.push_back(TruncateSaturated(x));
    ++row.count;
  }
}

// The bounding box of the crossings; zero without any.
void BoundCrossings(ScanRegion& region) {
  bool isFirst = true;
  for (const ScanRow& row : region.rows) {
    if (row.x.empty()) continue;
    region.minX = isFirst ? row.x.front() : std::min(region.minX, row.x.front());
    region.maxX = isFirst ? row.x.back() : std::max(region.maxX, row.x.back());
    if (isFirst) region.minY = row.y;
    region.maxY = row.y;
    isFirst = false;
  }
}

}  // namespace

std::int32_t ScanRegion::ComputeArea() {
  std::int64_t sum = 0;
  bool isOdd = false;
  for (const ScanRow& row : GetRows()) {
    const auto crossings = row.GetCrossings();
    isOdd = crossings.size() % 2 != 0;
    if (isOdd) break;
    for (std::size_t k = 0; k < crossings.size(); k += 2) {
      sum += std::int64_t{TruncateSaturated(crossings[k + 1])} - TruncateSaturated(crossings[k]);
    }
  }
  area = static_cast<std::int32_t>(std::clamp<std::int64_t>(sum, INT32_MIN, INT32_MAX));
  return isOdd ? -1 : area;
}

int RasterizePolygon(std::int32_t count, const double* points, double originX, double originY, double cellY,
                     double cellX, ScanRegion& region) {
  region = {};
  const Grid grid = {originX, originY, cellY, cellX};
  if (count < 3 || !points || !grid.IsUsable()) return -1;
  std::vector<Point2D> polygon;
  for (std::int64_t i = 0; i < count; ++i) polygon.push_back({points[2 * i], points[2 * i + 1]});
  const auto table = RowsOf(polygon, grid);
  if (!table) return -1;
  const std::vector<Edge> edges = EdgesOf(polygon, grid, *table);
  std::int64_t nCrossings = 0;
  for (const Edge& edge : edges) nCrossings += edge.rows.GetCount();
  if (nCrossings > kMostCrossings) return -1;

  region.rowCount = static_cast<std::int32_t>(table->GetCount());
  region.rows.resize(static_cast<std::size_t>(region.rowCount));
  for (std::int32_t i = 0; i < region.rowCount; ++i) {
    region.rows[static_cast<std::size_t>(i)].y = static_cast<double>(table->first + i);
  }
  for (const Edge& edge : edges) AddCrossings(edge, grid, table->first, region.rows);
  for (ScanRow& row : region.rows) std::sort(row.x.begin(), row.x.end());
  BoundCrossings(region);
  return region.ComputeArea() < 0 ? -1 : 1;
}

}  // namespace corvane
