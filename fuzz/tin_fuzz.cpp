// Any bytes as a ".tin" file: read, store, search, link, write. What is refused leaves no triangles.

#include <cstdlib>

#include "FuzzFolder.h"
#include "TIN/TIN.h"
#include "io/OutputFile.h"

namespace corvane {
namespace {

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
  OutputFile file(FuzzPath("out.tin"));
  tin.WriteTIN(file);
  for (int mode = 0; mode < 3; ++mode) tin.WritePoints(FuzzPath("out.pts"), mode);
}

void Run(const std::uint8_t* data, std::size_t size) {
  const std::string path = FuzzFile("in.tin", data, size);
  TIN tin;
  if (tin.ReadTIN(path) == 0 && tin.StoreTriangle(path) == 0) {
    UseTin(tin);
  } else if (tin.GetTriangleCount() != 0) {
    std::abort();
  }
}

}  // namespace
}  // namespace corvane

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  corvane::Run(data, size);
  return 0;
}
