// The painting of CCorvaneView.

#include <algorithm>
#include <cmath>
#include <vector>

#include "numerics/Truncate.h"
#include "shell/CorvaneView.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

constexpr Colour kTriangleColour{255, 0, 0};
constexpr Colour kHighlightColour{0, 255, 0};
constexpr std::size_t kBatch = 8192;  // segments handed to the canvas at a time

// In a picture file a triangle gets about this many pixels, within these limits of the longer side.
constexpr double kPicturePixelsPerTriangle = 60.0;
constexpr double kSmallestPicture = 400.0;
constexpr double kLargestPicture = 3000.0;

// Turns ground coordinates into pixels, north up, and collects the edges to draw: those that may show.
class EdgePainter {
 public:
  EdgePainter(Canvas& canvas, const Extent6& extent, double scale)
      : canvas_(canvas), visible_(canvas.GetVisible()), extent_(extent), scale_(scale) {
    segments_.reserve(kBatch);
  }

  void AddEdge(const PointRecord& a, const PointRecord& b) {
    const PixelSegment segment{ToPixel(a), ToPixel(b)};
    if (!MayShow(segment)) return;
    if (segments_.size() == kBatch) Flush();
    segments_.push_back(segment);
  }

  void AddTriangle(const TIN& tin, std::int32_t i) {
    const PointRecord& a = tin.GetVertex(i, 0);
    const PointRecord& b = tin.GetVertex(i, 1);
    const PointRecord& c = tin.GetVertex(i, 2);
    AddEdge(a, b);
    AddEdge(b, c);
    AddEdge(c, a);
  }

  void Flush() {
    if (!segments_.empty()) canvas_.DrawSegments(segments_);
    segments_.clear();
  }

 private:
  PixelPoint ToPixel(const PointRecord& point) const {
    return {TruncateTo64((point.x - extent_.minX) * scale_), TruncateTo64((extent_.maxY - point.y) * scale_)};
  }

  bool MayShow(const PixelSegment& segment) const {
    const auto [left, right] = std::minmax(segment.from.x, segment.to.x);
    const auto [top, bottom] = std::minmax(segment.from.y, segment.to.y);
    return right >= visible_.left && left < visible_.right && bottom >= visible_.top && top < visible_.bottom;
  }

  Canvas& canvas_;
  PixelRect visible_;
  const Extent6& extent_;
  double scale_;
  std::vector<PixelSegment> segments_;
};

// The first and last cell of an axis from `from` to `to`, ground units from the grid's edge.
struct CellSpan {
  std::int32_t first = 0;
  std::int32_t last = -1;
};

CellSpan CellsBetween(double from, double to, double cellSize, std::int32_t nCells) {
  return {std::max(TruncateSaturated(from / cellSize), 0),
          std::min(TruncateSaturated(to / cellSize), nCells - 1)};
}

// Calls `draw` once for each triangle whose bounding box touches the cells: in the first of the cells that
// lists it.
template <typename Draw>
void ForEachTriangleIn(const TIN& tin, CellSpan rows, CellSpan cols, const Draw& draw) {
  const GridIndex& grid = tin.triangleGrid;
  for (std::int32_t row = rows.first; row <= rows.last; ++row) {
    for (std::int32_t col = cols.first; col <= cols.last; ++col) {
      for (const std::int32_t i : grid.GetCell(row, col)) {
        Extent6 box;
        tin.TriangleBox(i, box);
        std::int32_t boxCol = 0;
        std::int32_t boxRow = 0;
        grid.CellOf(box.minX, box.minY, boxCol, boxRow);
        if (row == std::max(boxRow, rows.first) && col == std::max(boxCol, cols.first)) draw(i);
      }
    }
  }
}

void DrawTriangles(Canvas& canvas, const TIN& tin, double scale) {
  const Extent6& extent = tin.GetExtent();
  EdgePainter painter(canvas, extent, scale);
  const PixelRect visible = canvas.GetVisible();
  // One pixel more on each side: pixels are cut towards zero.
  const double left = static_cast<double>(visible.left - 1) / scale;
  const double right = static_cast<double>(visible.right + 1) / scale;
  const double height = extent.maxY - extent.minY;
  const double bottom = height - static_cast<double>(visible.bottom + 1) / scale;
  const double top = height - static_cast<double>(visible.top - 1) / scale;

  const bool wholeVisible =
      !(scale > 0.0) || (left <= 0.0 && bottom <= 0.0 && right >= extent.maxX - extent.minX && top >= height);
  if (wholeVisible) {
    for (std::int32_t i = 0; i < tin.nTriangles; ++i) painter.AddTriangle(tin, i);
  } else {
    const GridIndex& grid = tin.triangleGrid;
    ForEachTriangleIn(tin, CellsBetween(bottom, top, grid.cellSize, grid.nRows),
                      CellsBetween(left, right, grid.cellSize, grid.nCols),
                      [&](std::int32_t i) { painter.AddTriangle(tin, i); });
  }
  painter.Flush();
}

// The edges between members of a group and their neighbours that carry the label of its first member. After
// several runs a group's members may carry others.
void DrawGroups(EdgePainter& painter, TIN& tin) {
  if (tin.groups.empty() || tin.labels.size() != tin.vertices.size()) return;
  if (tin.BuildNeighbours() < 0) return;
  for (const TINGroup& group : tin.groups) {
    if (group.members.empty()) continue;
    const std::int32_t label = tin.labels[static_cast<std::size_t>(group.members.front())];
    for (const std::int32_t member : group.members) {
      for (const std::int32_t neighbour : tin.neighbours[static_cast<std::size_t>(member)]) {
        if (tin.labels[static_cast<std::size_t>(neighbour)] != label) continue;
        painter.AddEdge(tin.vertices[static_cast<std::size_t>(member)],
                        tin.vertices[static_cast<std::size_t>(neighbour)]);
      }
    }
  }
}

// Pixels a ground unit for a picture file; 1 for extents that no scale fits.
double PictureScale(const TIN& tin) {
  const Extent6& extent = tin.GetExtent();
  const double width = extent.maxX - extent.minX;
  const double height = extent.maxY - extent.minY;
  const double longer = std::max(width, height);
  const double wanted = std::sqrt(kPicturePixelsPerTriangle * tin.nTriangles / (width * height));
  const double smallest = kSmallestPicture / longer;
  const double scale =
      std::isfinite(wanted) ? std::clamp(wanted, smallest, kLargestPicture / longer) : smallest;
  return std::isfinite(scale) && scale > 0.0 ? scale : 1.0;
}

std::int32_t PictureSide(double length, double scale) {
  return TruncateSaturated(std::min(length * scale, kLargestPicture)) + 1;
}

}  // namespace

bool CCorvaneView::HasPicture() const {
  return paintEnabled && document_.GetTIN().IsStored();
}

void CCorvaneView::OnDraw(Canvas& canvas) {
  if (!HasPicture()) return;
  WaitCursor wait;
  DrawTin(canvas, displayScale);
}

PixelSize CCorvaneView::GetPictureSize() const {
  if (!HasPicture()) return GetScrollSize();
  const Extent6& box = document_.GetTIN().GetExtent();
  const double scale = PictureScale(document_.GetTIN());
  return {PictureSide(box.maxX - box.minX, scale), PictureSide(box.maxY - box.minY, scale)};
}

void CCorvaneView::DrawPicture(Canvas& canvas) {
  if (HasPicture()) DrawTin(canvas, PictureScale(document_.GetTIN()));
}

void CCorvaneView::DrawTin(Canvas& canvas, double scale) {
  TIN& tin = document_.GetTIN();
  canvas.SetPen(kTriangleColour, 1);
  DrawTriangles(canvas, tin, scale);

  canvas.SetPen(kHighlightColour, 1);
  EdgePainter painter(canvas, tin.GetExtent(), scale);
  for (const std::int32_t i : tin.highlight) painter.AddTriangle(tin, i);
  DrawGroups(painter, tin);
  painter.Flush();
}

}  // namespace corvane
