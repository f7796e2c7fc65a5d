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

RowRange Overlap(const RowRange& a, const RowRange& b) {
  return {std::max(a.first, b.first), std::min(a.last, b.last)};
}

// An edge that is not horizontal, as x = slope * y + intercept, and the rows that it crosses.
struct Edge {
  double slope = 0.0;
  double intercept = 0.0;
  RowRange rows;
};

// The rows of the polygon, held where their numbers are exact; nothing for coordinates that are no numbers.
std::optional<RowRange> RowsOf(std::span<const Point2D> points, const Grid& grid) {
  for (const Point2D& point : points) {
    if (!std::isfinite(point.x) || !std::isfinite(point.y)) return std::nullopt;
  }
  Box2D box;
  PolygonBounds(points, box);
  double first = std::floor(grid.RowOf(box.minY));
  double last = std::ceil(grid.RowOf(box.maxY));
  if (last < first) std::swap(first, last);
  constexpr double kExact = 9007199254740992.0;  // 2^53
  return RowRange{TruncateTo64(std::clamp(first, -kExact, kExact)),
                  TruncateTo64(std::clamp(last, -kExact, kExact))};
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

// Adds the edge's crossings with the rows `region`, which `rows` holds.
void AddCrossings(const Edge& edge, const Grid& grid, const RowRange& region, std::vector<ScanRow>& rows) {
  const RowRange crossed = Overlap(edge.rows, region);
  for (std::int64_t r = crossed.first; r <= crossed.last; ++r) {
    const double x = (static_cast<double>(r) * edge.slope * grid.cellY + edge.intercept +
                      edge.slope * grid.originY - grid.originX) /
                     grid.cellX;
    ScanRow& row = rows[static_cast<std::size_t>(r - region.first)];
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

// A polygon's edges, and the rows from its top to its bottom.
struct Outline {
  Grid grid;
  RowRange rows;
  std::vector<Edge> edges;
};

// Nothing for what makes no raster.
std::optional<Outline> OutlineOf(std::int32_t count, const double* points, const Grid& grid) {
  if (count < 3 || !points || !grid.IsUsable()) return std::nullopt;
  std::vector<Point2D> polygon;
  for (std::int64_t i = 0; i < count; ++i) polygon.push_back({points[2 * i], points[2 * i + 1]});
  const auto rows = RowsOf(polygon, grid);
  if (!rows) return std::nullopt;
  return Outline{grid, *rows, EdgesOf(polygon, grid, *rows)};
}

// The first row that an odd number of edges crosses. It is one where the number changes: where an edge begins
// or has just ended.
std::optional<std::int64_t> FirstOddRow(std::span<const Edge> edges) {
  std::vector<std::int64_t> changes;
  for (const Edge& edge : edges) {
    if (edge.rows.GetCount() > 0) changes.insert(changes.end(), {edge.rows.first, edge.rows.last + 1});
  }
  std::sort(changes.begin(), changes.end());
  for (std::size_t i = 0; i < changes.size(); i += 2) {
    if (changes[i] < changes[i + 1]) return changes[i];
  }
  return std::nullopt;
}

// Makes a region of the rows without its area. False, with the region as it was, if it is too large.
bool Rasterize(const Outline& outline, const RowRange& rows, ScanRegion& region) {
  std::int64_t nCrossings = 0;
  for (const Edge& edge : outline.edges) nCrossings += Overlap(edge.rows, rows).GetCount();
  if (rows.GetCount() > kMostRows || nCrossings > kMostCrossings) return false;
  region.rowCount = static_cast<std::int32_t>(rows.GetCount());
  region.rows.resize(static_cast<std::size_t>(region.rowCount));
  for (std::int32_t i = 0; i < region.rowCount; ++i) {
    region.rows[static_cast<std::size_t>(i)].y = static_cast<double>(rows.first + i);
  }
  for (const Edge& edge : outline.edges) AddCrossings(edge, outline.grid, rows, region.rows);
  for (ScanRow& row : region.rows) std::sort(row.x.begin(), row.x.end());
  BoundCrossings(region);
  return true;
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
  const auto outline = OutlineOf(count, points, {originX, originY, cellY, cellX});
  if (!outline) return -1;
  constexpr std::int64_t kLimit = std::numeric_limits<std::int32_t>::max();
  const RowRange& rows = outline->rows;
  if (rows.first < -kLimit || rows.last > kLimit || !Rasterize(*outline, rows, region)) return -1;
  return region.ComputeArea() < 0 ? -1 : 1;
}

int RasterizePolygonRows(std::int32_t count, const double* points, double originX, double originY,
                         double cellY, double cellX, std::int32_t firstRow, std::int32_t lastRow,
                         ScanRegion& region) {
  region = {};
  const auto outline = OutlineOf(count, points, {originX, originY, cellY, cellX});
  if (!outline) return -1;
  const auto oddRow = FirstOddRow(outline->edges);
  const bool isOdd = oddRow && *oddRow <= lastRow;
  const RowRange rows = {std::max<std::int64_t>(outline->rows.first, firstRow),
                         std::min<std::int64_t>(outline->rows.last, isOdd ? *oddRow - 1 : lastRow)};
  if (!Rasterize(*outline, rows, region)) return -1;
  region.ComputeArea();
  return isOdd ? -1 : 1;
}

}  // namespace corvane
