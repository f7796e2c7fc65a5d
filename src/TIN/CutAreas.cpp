#include "TIN/CutAreas.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace corvane {

namespace {

// Sets of connected vertices that grow together, each with its area.
class GrowingSets {
 public:
  explicit GrowingSets(const TIN& tin) : tin_(tin), parent_(tin.vertices.size(), -1), area_(parent_.size()) {}

  // Joins the vertex to the sets of those neighbours that are there already.
  void Add(std::int32_t vertex) {
    parent_[Index(vertex)] = vertex;
    for (const std::int32_t t : tin_.vertices[Index(vertex)].triangles) {
      bool isWhole = true;
      for (const std::int32_t corner : tin_.GetTriangle(t).v) {
        const bool isThere = parent_[Index(corner)] >= 0;
        isWhole = isWhole && isThere;
        if (isThere) Join(vertex, corner);
      }
      if (isWhole) area_[Index(Root(vertex))] += std::fabs(tin_.triangleAreas[Index(t)]);
    }
  }

  double GetArea(std::int32_t vertex) { return area_[Index(Root(vertex))]; }

 private:
  static std::size_t Index(std::int32_t i) { return static_cast<std::size_t>(i); }

  std::int32_t Root(std::int32_t vertex) {
    while (parent_[Index(vertex)] != vertex) {
      std::int32_t& parent = parent_[Index(vertex)];
      parent = parent_[Index(parent)];
      vertex = parent;
    }
    return vertex;
  }

  // The set with the larger area takes the other one in.
  void Join(std::int32_t a, std::int32_t b) {
    a = Root(a);
    b = Root(b);
    if (a == b) return;
    if (area_[Index(a)] < area_[Index(b)]) std::swap(a, b);
    parent_[Index(b)] = a;
    area_[Index(a)] += area_[Index(b)];
  }

  const TIN& tin_;
  std::vector<std::int32_t> parent_;  // -1 for a vertex that is not there yet
  std::vector<double> area_;          // of the set, at its root
};

// The vertices at or above a height, highest first.
std::vector<std::pair<double, std::int32_t>> VerticesFromTheTop(const TIN& tin, double lowest) {
  std::vector<std::pair<double, std::int32_t>> order;
  for (std::int32_t v = 0; v < tin.nPoints; ++v) {
    const double z = tin.vertices[static_cast<std::size_t>(v)].z;
    if (z >= lowest) order.emplace_back(z, v);
  }
  std::sort(order.begin(), order.end(), std::greater<>());
  return order;
}

}  // namespace

std::vector<double> AreasAboveSeeds(const TIN& tin, std::span<const SlopeSeed> seeds) {
  std::vector<double> areas(seeds.size());
  if (seeds.empty()) return areas;
  const auto order = VerticesFromTheTop(tin, seeds.front().z);
  GrowingSets sets(tin);
  auto next = order.begin();
  for (std::size_t i = seeds.size(); i-- > 0;) {
    for (; next != order.end() && next->first >= seeds[i].z; ++next) sets.Add(next->second);
    areas[i] = sets.GetArea(seeds[i].vertex);
  }
  return areas;
}

}  // namespace corvane
