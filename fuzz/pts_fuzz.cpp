// Any bytes as a points file: read, index, change, select, resample, triangulate, grid, merge, compare,
// write, rewrite the header.

#include <cstdlib>

#include "FuzzFolder.h"
#include "TIN/GridMerge.h"
#include "TIN/PointComparison.h"
#include "TIN/PointsHeader.h"
#include "TIN/StoredPoints.h"
#include "TIN/TINPoints.h"
#include "io/InputFile.h"
#include "io/OutputFile.h"

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

// Whether the points' own rectangle has few enough cells of this size to be quick.
bool IsSmall(const TINPoints& points, double cellSize) {
  return (points.maxX - points.minX) / cellSize < 300.0 && (points.maxY - points.minY) / cellSize < 300.0;
}

// The points' own rectangle as a grid, with the points on its nodes.
void GridPoints(const TINPoints& points) {
  const GroundRect rect = {points.minX, points.minY, points.maxX, points.maxY};
  TINPoints grid(points.spacingX, points.spacingY, rect, points.GetCount());
  grid.ReplaceFrom(points, rect);
  grid.WriteGrid(FuzzPath("out.pts"));
}

// The file merged with itself.
void MergePoints(const std::string& path) {
  GridMerge merge;
  merge.AddFile(path);
  merge.AddFile(path);
  merge.Write(FuzzPath("out.pts"));
}

// The stored records, measured against two triangles.
void ComparePoints(const std::string& path) {
  TIN tin;
  const PointRecord corners[] = {{0, 0, 0, 1, 1}, {1, 10, 0, 2, 1}, {2, 10, 10, 3, 1}, {3, 0, 10, 4, 1}};
  const std::int32_t nTriangles = 2;
  std::string bytes(reinterpret_cast<const char*>(&nTriangles), sizeof nTriangles);
  for (const std::size_t corner : {0, 1, 2, 0, 2, 3}) {
    char stored[kVertexBytes];
    PackVertex(corners[corner], stored);
    bytes.append(stored, sizeof stored);
  }
  const std::string tinPath =
      FuzzFile("square.tin", reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
  if (tin.ReadTIN(tinPath) < 0 || tin.StoreTriangle(tinPath) < 0) std::abort();

  InputFile file(path);
  const auto header = PointsHeader::Read(file);
  const auto points = header ? ReadStoredPoints(file, header->nPoints) : std::nullopt;
  if (!points) return;
  OutputFile log(FuzzPath("out.log"));
  PointComparison comparison(tin, PointComparison::Row::Numbered, log);
  if (!comparison.Allocate(points->size())) return;
  for (std::size_t i = 0; i < points->size(); ++i) {
    comparison.Compare(i, {(*points)[i].x, (*points)[i].y, (*points)[i].z});
  }
  comparison.Finish();
}

void Run(const std::uint8_t* data, std::size_t size) {
  const std::string path = FuzzFile("in.pts", data, size);
  TINPoints points;
  const int read = points.Read(path);
  if (const auto header = PointsHeader::ReadForUpdate(path)) header->Update(path);
  MergePoints(path);
  ComparePoints(path);
  if (read < 0) return;
  GridPoints(points);
  if (points.BuildIndex(1.0) > 0) {
    SelectPoints(points);
    ChangePoints(points);
    SelectPoints(points);
  }
  if (points.BuildIndexWithCell(points.spacingX) > 0) {
    SelectPoints(points);
    if (IsSmall(points, points.spacingX)) points.Resample(FuzzPath("out.pts"), points.spacingX);
  }
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
