// Any bytes as a points file: read, index, select, triangulate, write.

#include "FuzzFolder.h"
#include "TIN/TINPoints.h"
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

void Run(const std::uint8_t* data, std::size_t size) {
  TINPoints points;
  if (points.Read(FuzzFile("in.pts", data, size)) < 0) return;
  if (points.BuildIndex(1.0) > 0) SelectPoints(points);
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
