#pragma once

#include <cstdint>
#include <span>

#include "Segmentation/DisjointSet.h"

namespace corvane {

// An edge between two vertices.
struct SegEdge {
  float w = 0.0f;  // how different they are
  std::int32_t a = 0;
  std::int32_t b = 0;
};

// Makes regions of a graph's vertices from its edges, the lightest first. A region's threshold says which
// edges are too heavy for it: it begins at c, and a region made by an edge of weight w has w + c / size.
class RegionGrower {
 public:
  // Throws std::bad_alloc without memory.
  RegionGrower(std::int32_t nVertices, float c) : sets_(nVertices, c), c_(c) {}

  // Joins the regions at the edge's ends if it is not too heavy for either. Whether they remain two.
  bool Separates(const SegEdge& edge) {
    const std::int32_t a = sets_.Find(edge.a);
    const std::int32_t b = sets_.Find(edge.b);
    if (a == b) return false;
    if (edge.w > sets_.Threshold(a) || edge.w > sets_.Threshold(b)) return true;
    sets_.Join(a, b);
    const std::int32_t root = sets_.Find(a);
    sets_.Threshold(root) = edge.w + c_ / static_cast<float>(sets_.Size(root));
    return false;
  }

  DisjointSet& GetSets() { return sets_; }

 private:
  DisjointSet sets_;
  float c_;
};

// The regions of any graph. Sorts the edges by weight, those of equal weight in the order given; no weight is
// NaN. Throws std::bad_alloc without memory.
DisjointSet SegmentGraph(std::int32_t vertexCount, std::span<SegEdge> edges, float c);

}  // namespace corvane
