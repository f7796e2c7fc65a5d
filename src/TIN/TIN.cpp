#include "TIN/TIN.h"

#include <new>

#include "Geometry/Cross.h"
#include "TIN/RecordExtent.h"
#include "ui/FrontEnd.h"

namespace corvane {

TIN::TIN() = default;
TIN::~TIN() = default;

void TIN::TriangleBox(std::int32_t i, Extent6& box) const {
  box = ExtentOf(GetVertex(i, 0));
  for (int k = 1; k < 3; ++k) Widen(box, GetVertex(i, k));
}

void TIN::RecalcZExtent() {
  if (vertices.empty()) return;
  ptsMinZ = ptsMaxZ = vertices.front().z;
  for (const TINVertex& vertex : vertices) Widen(ptsMinZ, ptsMaxZ, vertex.z);
  extent.minZ = ptsMinZ;
  extent.maxZ = ptsMaxZ;
}

int TIN::CalcTrianglesArea() {
  if (nTriangles == 0) {
    ShowMessage("CalcTrianglesArea(): No TIN read");
    return -1;
  }
  if (triangleAreas.size() == corners_.size()) return 1;
  try {
    triangleAreas.reserve(corners_.size());
  } catch (const std::bad_alloc&) {
    return -1;
  }
  for (const Corners& corners : corners_) {
    triangleAreas.push_back(Cross(corners.c[0], corners.c[1], corners.c[2]) / 2.0);
  }
  return 1;
}

int TIN::BuildNeighbours() {
  if (!neighbours.empty()) return 1;
  NeighbourLists lists;
  try {
    lists.begins_.reserve(vertices.size() + 1);
    lists.items_.reserve(3 * triangles.size());  // a closed net has six neighbours a vertex on average
    std::vector<std::int32_t> seenBy(vertices.size(), -1);  // by vertex: the last one that listed it
    lists.begins_.push_back(0);
    for (std::int32_t v = 0; v < nPoints; ++v) {
      AppendNeighbours(v, seenBy, lists.items_);
      lists.begins_.push_back(lists.items_.size());
    }
  } catch (const std::bad_alloc&) {
    return -1;
  }
  neighbours = std::move(lists);
  return 1;
}

void TIN::AppendNeighbours(std::int32_t vertex, std::vector<std::int32_t>& seenBy,
                           std::vector<std::int32_t>& list) const {
  for (const std::int32_t t : vertices[static_cast<std::size_t>(vertex)].triangles) {
    for (const std::int32_t corner : GetTriangle(t).v) {
      std::int32_t& seen = seenBy[static_cast<std::size_t>(corner)];
      if (corner == vertex || seen == vertex) continue;
      seen = vertex;
      list.push_back(corner);
    }
  }
}

}  // namespace corvane
