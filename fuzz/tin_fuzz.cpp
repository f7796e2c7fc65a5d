// Any bytes as a ".tin" file: read, store, search, link, filter, segment, write. The raw
// triangles give the same.

#include <cstdlib>

#include "FuzzFolder.h"
#include "TIN/TIN.h"
#include "io/OutputFile.h"

namespace corvane {
namespace {

void FilterTin(TIN& tin) {
  tin.SlopeFilter(30.0, 1.0);
  tin.Smooth();
  tin.RecalcZExtent();
  const double zStep = (tin.extent.maxZ - tin.extent.minZ) / 20.0;
  tin.SegmentByPlaneCut(tin.extent.minZ, tin.extent.maxZ, zStep, 10.0);
  tin.DropFlatGroups(0.0);
  std::vector<std::int32_t> pits;
  tin.FindPits(0.0, pits);
  tin.MarkVertices(pits);
  tin.ReduceSurface(10.0);
  Histogram histogram;
  tin.ZHistogram(0.1, histogram);
}

void UseTin(TIN& tin) {
  const Extent6& extent = tin.GetExtent();
  const Point3 middle = {(extent.minX + extent.maxX) / 2.0, (extent.minY + extent.maxY) / 2.0, 0.0};
  std::int32_t triangle = 0;
  if (tin.FindTriangle(middle, triangle) >= 0) tin.InterpolateZ(middle, triangle);
  tin.BuildNeighbours();
  tin.CalcTrianglesArea();
  tin.RecalcZExtent();
  for (std::int32_t v = 0; v < tin.GetPointCount(); v += 3) {
    tin.RecomputeNormals(v);
    tin.NormalizeNormals(v);
  }
  FilterTin(tin);
  OutputFile file(FuzzPath("out.tin"));
  tin.WriteTIN(file);
  for (int mode = 0; mode < 3; ++mode) tin.WritePoints(FuzzPath("out.pts"), mode);
}

void Run(const std::uint8_t* data, std::size_t size) {
  const std::string path = FuzzFile("in.tin", data, size);
  TIN tin;
  if (tin.ReadTIN(path) < 0) return;
  const int stored = tin.StoreTriangle(path);
  if (stored == 0) UseTin(tin);
  if (stored == -2 && tin.GetTriangleCount() != 0) std::abort();
  if (stored == -1 && tin.StoreRawTriangles() != -1) std::abort();

  TIN raw;
  if (raw.ReadTIN(path) == 0 && raw.StoreRawTriangles() != stored) std::abort();
}

}  // namespace
}  // namespace corvane

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  corvane::Run(data, size);
  return 0;
}
