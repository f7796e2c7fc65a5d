#include "TIN/TinRaster.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

#include "Geometry/Cross.h"
#include "TIN/Prefetch.h"
#include "numerics/SimdVersion.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

// Marks a node that no triangle has taken: a signalling not-a-number, which no arithmetic gives.
constexpr std::uint32_t kEmptyBits = 0x7FA5A5A5;

bool IsEmpty(const float& height) {
  return std::bit_cast<std::uint32_t>(height) == kEmptyBits;
}

constexpr double kMargin = 1.0 / 64.0;         // of a cell: nodes so far outside of a box are tested, too
constexpr double kMaxDrift = 1.0 / 256.0;      // of a cell: how far rounding may move a node from its place
constexpr double kSureDistance = 1.0 / 128.0;  // of a cell: nodes that are not tested are farther away
constexpr double kRounding = 0x1p-46;          // 128 times the half unit in the last place of 1.0

// Triangles that cover each other would be tested with every node below all of them.
constexpr std::int64_t kTestsPerNode = 64;
constexpr std::int64_t kSpareTests = 10000000;

constexpr std::size_t kRowsBetweenTexts = 100;
constexpr std::size_t kMinCols = 4;  // of a raster whose nodes are taken several at a time
constexpr int kRowsAtOnce = 16;
constexpr std::int32_t kAhead = 16;  // triangles whose vertices are asked for in advance

// The first whole number at or above `value`, held to first .. last + 1; first is 0 or more.
std::int64_t CeilWithin(double value, std::int64_t first, std::int64_t last) {
  const double held = std::clamp(value, static_cast<double>(first), static_cast<double>(last + 1));
  const auto whole = static_cast<std::int64_t>(held);
  return static_cast<double>(whole) < held ? whole + 1 : whole;
}

// The last whole number at or below `value`, held to first - 1 .. last. Rounding may make it one more for a
// value close below a whole number.
std::int64_t FloorWithin(double value, std::int64_t first, std::int64_t last) {
  const double held = std::clamp(value, static_cast<double>(first - 1), static_cast<double>(last));
  return static_cast<std::int64_t>(held + 1.0) - 1;
}

// A triangle that goes round counter-clockwise, and rows of nodes in its box of which none is on a corner.
struct PlainTriangle {
  struct Side {
    double x, y;    // where it begins
    double dx, dy;  // from there to its end
  };
  struct Row {
    double y;
    float* heights;  // of all columns
  };

  Side sides[3];
  double nx, ny, nz;  // the plane
  double offset;      // nx * x + ny * y + nz * z of its first corner
  double minX, maxX;  // of the nodes to take
  const double* xs;
  std::int64_t nCols;
  std::int64_t firstCol, lastCol;
};

// TIN::TestPoint and TIN::InterpolateZ, with the same sums and products, for a few nodes of a row at a time;
// those in the triangle that are still empty take their heights. It does not branch on what is inside: that
// is a matter of chance, and a processor loses more by a wrong guess than by heights in vain.
struct FillRows {
  template <std::size_t width>
  [[gnu::always_inline]] static inline void Run(const PlainTriangle& t, const PlainTriangle::Row* rows,
                                                int nRows) {
    using Pack = SimdPack<double, std::min<std::size_t>(width, 32)>;  // more nodes than a triangle has
    constexpr auto kLanes = static_cast<std::int64_t>(Pack::kLanes);
    for (int i = 0; i < nRows; ++i) {
      const PlainTriangle::Row& row = rows[i];
      double products[3];
      for (int k = 0; k < 3; ++k) products[k] = t.sides[k].dx * (row.y - t.sides[k].y);
      for (std::int64_t col = t.firstCol; col <= t.lastCol; col += kLanes) {
        const std::int64_t first = std::min(col, t.nCols - kLanes);
        FillNodes<Pack>(t, products, t.ny * row.y, t.xs + first, row.heights + first);
      }
    }
  }

  template <typename Pack>
  [[gnu::always_inline]] static inline void FillNodes(const PlainTriangle& t, const double* products,
                                                      double nyY, const double* xs, float* heights) {
    typedef float Floats __attribute__((vector_size(Pack::kLanes * 4)));
    typedef std::int32_t Bits __attribute__((vector_size(Pack::kLanes * 4)));
    Pack x;
    x.Load(xs);
    auto isInside = (x.lanes >= t.minX) & (x.lanes <= t.maxX);
    for (int k = 0; k < 3; ++k) isInside &= products[k] - (x.lanes - t.sides[k].x) * t.sides[k].dy >= 0.0;
    const Floats z = __builtin_convertvector((t.offset - t.nx * x.lanes - nyY) / t.nz, Floats);
    Bits old, taken;
    std::memcpy(&old, heights, sizeof old);
    std::memcpy(&taken, &z, sizeof taken);
    const Bits takes =
        __builtin_convertvector(isInside, Bits) & (old == static_cast<std::int32_t>(kEmptyBits));
    const Bits result = (taken & takes) | (old & ~takes);
    std::memcpy(heights, &result, sizeof result);
  }
};

}  // namespace

TinRaster::TinRaster(const TIN& tin, std::span<const double> xs, std::span<const double> ys, double cellSize,
                     double defaultZ, std::span<float> heights)
    : tin_(tin),
      xs_(xs),
      ys_(ys),
      cellSize_(cellSize),
      nodesPerUnit_(1.0 / cellSize),
      defaultZ_(defaultZ),
      heights_(heights) {}

void TinRaster::Fill() {
  std::fill(heights_.begin(), heights_.end(), std::bit_cast<float>(kEmptyBits));
  if (HasEvenSteps()) {
    FindNodesWithinExtent();
    const std::int64_t maxTested = kTestsPerNode * static_cast<std::int64_t>(heights_.size()) + kSpareTests;
    const auto nTriangles = static_cast<std::int32_t>(tin_.triangles.size());
    std::int32_t i = 0;
    while (i < nTriangles && nTested_ <= maxTested) FillTriangle(i++);
    if (i == nTriangles) {
      for (float& height : heights_) {
        if (IsEmpty(height)) height = static_cast<float>(defaultZ_);
      }
      return;
    }
  }
  FillEmptyByNode();
}

void TinRaster::FillByNode() {
  std::fill(heights_.begin(), heights_.end(), std::bit_cast<float>(kEmptyBits));
  FillEmptyByNode();
}

void TinRaster::FillEmptyByNode() {
  for (std::size_t row = 0; row < ys_.size(); ++row) {
    if (row % kRowsBetweenTexts == 0 && row > 0) {
      Ui().SetStatusText(0, "Row " + std::to_string(row) + " of " + std::to_string(ys_.size()) + " ...");
    }
    for (std::size_t col = 0; col < xs_.size(); ++col) {
      float& height = heights_[row * xs_.size() + col];
      if (!IsEmpty(height)) continue;
      const Point3 node{xs_[col], ys_[row], defaultZ_};
      std::int32_t triangle = -1;
      const int result = tin_.FindTriangle(node, triangle);
      height = HeightAt(node, triangle, result);
    }
  }
}

// Whether a node's place follows from its number, but for a small part of a cell.
bool TinRaster::HasEvenSteps() const {
  const auto drift = [this](std::span<const double> places) {
    if (places.empty()) return 0.0;
    const double farthest = std::max(std::fabs(places.front()), std::fabs(places.back()));
    return static_cast<double>(places.size()) * 0x1p-52 * (farthest * nodesPerUnit_ + 1.0);
  };
  return cellSize_ > 0.0 && drift(xs_) < kMaxDrift && drift(ys_) < kMaxDrift;
}

void TinRaster::FindNodesWithinExtent() {
  const Extent6& extent = tin_.GetExtent();
  within_.firstCol = std::lower_bound(xs_.begin(), xs_.end(), extent.minX) - xs_.begin();
  within_.lastCol = std::upper_bound(xs_.begin(), xs_.end(), extent.maxX) - xs_.begin() - 1;
  within_.firstRow = std::lower_bound(ys_.begin(), ys_.end(), extent.maxY, std::greater<>()) - ys_.begin();
  within_.lastRow = std::upper_bound(ys_.begin(), ys_.end(), extent.minY, std::greater<>()) - ys_.begin() - 1;
  std::int32_t ignored = 0;
  gridCols_.resize(xs_.size());
  gridRows_.resize(ys_.size());
  for (std::size_t col = 0; col < xs_.size(); ++col)
    tin_.triangleGrid.CellOf(xs_[col], extent.minY, gridCols_[col], ignored);
  for (std::size_t row = 0; row < ys_.size(); ++row)
    tin_.triangleGrid.CellOf(extent.minX, ys_[row], ignored, gridRows_[row]);
}

// Whether rounding can not let a node outside of the box, by more than a sure distance d, pass the test.
//
// Only nodes in the cells that list the triangle matter, which are at most e = w + h + 2 cells away, w by h
// being the box. With twice the area T and s = w + h: the shortest side is at least T / s, and the sine of
// each half angle at least T / (2 s^2), so that the product for some side of a node at distance d is below
// -d * T^2 / (2 s^3), while its rounding error is below 8 * 2^-53 * e^2. T itself is rounded by less than
// 8 * 2^-53 * s^2, a small part of it wherever the condition holds and d is below e. kRounding has a factor
// of 8 to spare.
bool TinRaster::IsPlain(const TIN::Corners& corners, const Extent6& box) const {
  const double doubleArea = Cross(corners.c[0], corners.c[1], corners.c[2]);
  const double s = (box.maxX - box.minX) + (box.maxY - box.minY);
  const double e = s + 2.0 * tin_.triangleGrid.cellSize;
  return doubleArea > 0.0 &&
         doubleArea * doubleArea * (kSureDistance * cellSize_) > kRounding * (e * e) * (s * s * s);
}

TinRaster::NodeRange TinRaster::NodesNear(const Extent6& box) const {
  const double x0 = xs_.front();
  const double y0 = ys_.front();
  return {CeilWithin((y0 - box.maxY) * nodesPerUnit_ - kMargin, within_.firstRow, within_.lastRow),
          FloorWithin((y0 - box.minY) * nodesPerUnit_ + kMargin, within_.firstRow, within_.lastRow),
          CeilWithin((box.minX - x0) * nodesPerUnit_ - kMargin, within_.firstCol, within_.lastCol),
          FloorWithin((box.maxX - x0) * nodesPerUnit_ + kMargin, within_.firstCol, within_.lastCol)};
}

TinRaster::NodeRange TinRaster::NodesInCells(const CellRange& cells) const {
  const auto colsFrom = [this](std::int32_t cell) {
    return std::lower_bound(gridCols_.begin(), gridCols_.end(), cell) - gridCols_.begin();
  };
  const auto rowsFrom = [this](std::int32_t cell) {
    return std::lower_bound(gridRows_.begin(), gridRows_.end(), cell, std::greater<>()) - gridRows_.begin();
  };
  return {std::max<std::int64_t>(rowsFrom(cells.lastRow), within_.firstRow),
          std::min<std::int64_t>(rowsFrom(cells.firstRow - 1) - 1, within_.lastRow),
          std::max<std::int64_t>(colsFrom(cells.firstCol), within_.firstCol),
          std::min<std::int64_t>(colsFrom(cells.lastCol + 1) - 1, within_.lastCol)};
}

void TinRaster::FillTriangle(std::int32_t triangle) {
  const auto index = static_cast<std::size_t>(triangle);
  if (index + kAhead < tin_.triangles.size()) {
    Prefetch(&tin_.vertices[static_cast<std::size_t>(tin_.triangles[index + kAhead].v[0])]);
  }
  const TIN::Corners& corners = tin_.corners_[index];
  const auto& c = corners.c;
  Extent6 box;
  box.minX = std::min(std::min(c[0].x, c[1].x), c[2].x);
  box.maxX = std::max(std::max(c[0].x, c[1].x), c[2].x);
  box.minY = std::min(std::min(c[0].y, c[1].y), c[2].y);
  box.maxY = std::max(std::max(c[0].y, c[1].y), c[2].y);
  const bool isPlain = IsPlain(corners, box);
  const NodeRange nodes = isPlain ? NodesNear(box) : NodesInCells(tin_.CellsOfTriangle(triangle));
  const std::int64_t nNodes = nodes.GetCount();
  if (nNodes == 0) return;
  nTested_ += nNodes;
  if (isPlain && xs_.size() >= kMinCols && AreWithin(nodes, box) &&
      std::fabs(tin_.triangles[index].nz) >= TIN::kMinNormalZ) {
    FillPlain(triangle, corners, box, nodes);
  } else {
    FillTested(triangle, corners, nodes);
  }
}

bool TinRaster::AreWithin(const NodeRange& nodes, const Extent6& box) const {
  return xs_[static_cast<std::size_t>(nodes.firstCol)] >= box.minX &&
         xs_[static_cast<std::size_t>(nodes.lastCol)] <= box.maxX &&
         ys_[static_cast<std::size_t>(nodes.firstRow)] <= box.maxY &&
         ys_[static_cast<std::size_t>(nodes.lastRow)] >= box.minY;
}

void TinRaster::FillPlain(std::int32_t triangle, const TIN::Corners& corners, const Extent6& box,
                          const NodeRange& nodes) {
  const auto& [a, b, c] = corners.c;
  const TINTriangle& plane = tin_.GetTriangle(triangle);
  const PlainTriangle plain{
      {{a.x, a.y, b.x - a.x, b.y - a.y}, {b.x, b.y, c.x - b.x, c.y - b.y}, {c.x, c.y, a.x - c.x, a.y - c.y}},
      plane.nx,
      plane.ny,
      plane.nz,
      plane.nx * a.x + plane.ny * a.y + plane.nz * tin_.GetVertex(triangle, 0).z,
      std::max(box.minX, xs_[static_cast<std::size_t>(nodes.firstCol)]),
      std::min(box.maxX, xs_[static_cast<std::size_t>(nodes.lastCol)]),
      xs_.data(),
      static_cast<std::int64_t>(xs_.size()),
      nodes.firstCol,
      nodes.lastCol};
  PlainTriangle::Row rows[kRowsAtOnce];
  int nRows = 0;
  for (std::int64_t row = nodes.firstRow; row <= nodes.lastRow; ++row) {
    const double y = ys_[static_cast<std::size_t>(row)];
    if (y == a.y || y == b.y || y == c.y) {  // a node may be on a corner
      FillTested(triangle, corners, {row, row, nodes.firstCol, nodes.lastCol});
    } else {
      rows[nRows++] = {y, &Height(row, 0)};
      if (nRows < kRowsAtOnce) continue;
      RunSimd<FillRows, const PlainTriangle&>(plain, rows, nRows);
      nRows = 0;
    }
  }
  if (nRows > 0) RunSimd<FillRows, const PlainTriangle&>(plain, rows, nRows);
}

// A node that passes by rounding alone may stand in a cell whose list does not hold the triangle.
bool TinRaster::IsListed(std::int32_t triangle, std::int64_t row, std::int64_t col) const {
  const CellRange cells = tin_.CellsOfTriangle(triangle);
  const std::int32_t gridRow = gridRows_[static_cast<std::size_t>(row)];
  const std::int32_t gridCol = gridCols_[static_cast<std::size_t>(col)];
  return gridRow >= cells.firstRow && gridRow <= cells.lastRow && gridCol >= cells.firstCol &&
         gridCol <= cells.lastCol;
}

void TinRaster::FillTested(std::int32_t triangle, const TIN::Corners& corners, const NodeRange& nodes) {
  for (std::int64_t row = nodes.firstRow; row <= nodes.lastRow; ++row) {
    for (std::int64_t col = nodes.firstCol; col <= nodes.lastCol; ++col) {
      if (!IsEmpty(Height(row, col))) continue;
      const Point3 node{xs_[static_cast<std::size_t>(col)], ys_[static_cast<std::size_t>(row)], defaultZ_};
      const int result = TIN::TestPoint(node, corners);
      if (result >= 0 && IsListed(triangle, row, col)) Height(row, col) = HeightAt(node, triangle, result);
    }
  }
}

// Kept: a node on corner 0 keeps the default height, on corner 1 or 2 it takes the corner's.
float TinRaster::HeightAt(const Point3& node, std::int32_t triangle, int result) const {
  if (result <= 0) return static_cast<float>(node.z);
  if (result < 3) return static_cast<float>(tin_.GetVertex(triangle, result).z);
  return static_cast<float>(tin_.InterpolateZ(node, triangle));
}

}  // namespace corvane
