#include "Segmentation/SegmentGraph.h"

#include <algorithm>
#include <utility>

namespace corvane {

DisjointSet SegmentGraph(std::int32_t vertexCount, std::span<SegEdge> edges, float c) {
  std::ranges::stable_sort(edges, {}, &SegEdge::w);
  RegionGrower regions(vertexCount, c);
  for (const SegEdge& edge : edges) regions.Separates(edge);
  return std::move(regions.GetSets());
}

}  // namespace corvane
