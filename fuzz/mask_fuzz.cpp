// Any bytes as a mask, and its regions on a small set of points.

#include "FuzzFolder.h"
#include "TIN/TINPoints.h"

namespace corvane {
namespace {

void Run(const std::uint8_t* data, std::size_t size) {
  std::vector<Region> regions;
  if (TINPoints::ReadRegions(FuzzFile("in.msk", data, size), regions) < 1) return;
  TINPoints points;
  for (int i = 0; i < 25; ++i) points.AddPoint({i, i % 5 - 2.0, i / 5 - 2.0, 0.0, 0.0});
  points.RecalcExtent();
  points.BuildIndex(1.0);
  std::vector<std::int32_t> list;
  for (const Region& region : regions) {
    points.CollectInRegion(region, list);
    points.MarkRegion(region);
  }
}

}  // namespace
}  // namespace corvane

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  corvane::Run(data, size);
  return 0;
}
