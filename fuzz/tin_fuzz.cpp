// Any bytes as a ".tin" file: read, store, search, link, sample, filter, segment, write. The raw
// triangles give the same; a raster has the heights that the search finds.

#include <cmath>
#include <cstdlib>

#include "FuzzFolder.h"
#include "TIN/TIN.h"
#include "TIN/TinRaster.h"
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

constexpr int kNodes = 23;                  // along each side
constexpr std::int32_t kFewVertices = 200;  // a surface through them is soon fitted

void SampleTin(const TIN& tin) {
  const Extent6& extent = tin.GetExtent();
  const double cell = std::fmax(extent.maxX - extent.minX, extent.maxY - extent.minY) / (kNodes - 3);
  std::vector<double> xs;
  std::vector<double> ys;
  for (int i = 0; i < kNodes; ++i) {
    xs.push_back(extent.minX + (i - 1) * cell);
    ys.push_back(extent.maxY - (i - 1) * cell);
  }
  std::vector<float> filled(xs.size() * ys.size());
  std::vector<float> searched(filled.size());
  TinRaster(tin, xs, ys, cell, 230.0, filled).Fill();
  TinRaster(tin, xs, ys, cell, 230.0, searched).FillByNode();
  for (std::size_t i = 0; i < filled.size(); ++i) {
    const bool areNumbers = !std::isnan(filled[i]) || !std::isnan(searched[i]);
    if (areNumbers && filled[i] != searched[i]) std::abort();
  }
}

void UseTin(TIN& tin) {
  SampleTin(tin);
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
  if (tin.GetPointCount() < kFewVertices) tin.FitTiles(10.0, 1.0, 1.5);
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
