// Any bytes as a points file: read, index, change, select, triangulate, grid, write, rewrite the header.

#include <algorithm>

#include "FuzzFolder.h"
#include "TIN/PointsHeader.h"
#include "TIN/TINPoints.h"
#include "io/OutputFile.h"
#include "numerics/Truncate.h"

namespace corvane {
namespace {

void SelectPoints(TINPoints& points) {
  std::vector<std::int32_t> list;
  points.CollectInRegion({Region::kRectangle, 2, {0.0, 0.0, 10.0, 10.0}}, list);
  points.CollectInRegion({Region::kPolygon, 4, {0.0, 0.0, 9.0, 0.0, 0.0, 9.0, 0.0, 0.0}}, list);
  points.NearestWithin(5, 5, 3.0);
  points.NearestInCell(1, 1);
  for (int direction = 0; direction < 4; ++direction) points.NearestInDirection(0, direction);
}

// Single changes of an index that was built at once.
void ChangePoints(TINPoints& points) {
  const PointRecord first = *points.GetPoint(0);
  points.RemovePoint(points.GetCount() / 2);
  points.AddPoint(first);
  points.RemovePoint(points.GetCount() - 1);
  points.AddPoint({points.GetCount(), first.y, first.x, first.z, first.value});
}

// The points' own rectangle as a grid, if it is small, with those of them that lie in it.
void GridPoints(const TINPoints& points) {
  const double nCols = (points.maxX - points.minX) / points.spacingX;
  const double nRows = (points.maxY - points.minY) / points.spacingY;
  if (!(nCols < 300.0 && nRows < 300.0)) return;
  TINPoints grid(points.spacingX, points.spacingY, {points.minX, points.minY, points.maxX, points.maxY});
  for (std::int32_t i = 0; i < std::min(points.GetCount(), 1000); ++i) {
    const PointRecord& point = *points.GetPoint(i);
    const auto row = TruncateToInt((point.y - grid.gridMinY) / grid.spacingY).value_or(-1);
    const auto col = TruncateToInt((point.x - grid.gridMinX) / grid.spacingX).value_or(-1);
    if (row < 0 || row >= grid.nRows || col < 0 || col >= grid.nCols) continue;
    GridCell& cell = grid.cells[static_cast<std::size_t>(row * grid.nCols + col)];
    cell.z = point.z;
    cell.value = point.value;
  }
  grid.WriteGrid(FuzzPath("out.pts"));
}

void Run(const std::uint8_t* data, std::size_t size) {
  const std::string path = FuzzFile("in.pts", data, size);
  TINPoints points;
  const int read = points.Read(path);
  if (const auto header = PointsHeader::ReadForUpdate(path)) header->Update(path);
  if (read < 0) return;
  GridPoints(points);
  if (points.BuildIndex(1.0) > 0) {
    SelectPoints(points);
    ChangePoints(points);
    SelectPoints(points);
  }
  if (points.BuildIndexWithCell(points.spacingX) > 0) SelectPoints(points);
  Triangulation triangles;
  if (points.Triangulate(nullptr, nullptr, triangles) > 0) {
    OutputFile file(FuzzPath("out.tin"));
    points.WriteTriangles(file, triangles);
  }
  points.RecalcExtent();
  points.RemovePoint(0);
  points.MarkRegion({Region::kRectangle, 2, {0.0, 0.0, 10.0, 10.0}});
  points.Compact();
  OutputFile file(FuzzPath("out.pts"));
  points.Write(file);
}

}  // namespace
}  // namespace corvane

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  corvane::Run(data, size);
  return 0;
}
