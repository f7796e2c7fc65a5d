#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "TIN/TIN.h"

namespace corvane {

// The heights of a TIN at the nodes of a grid.
//
// What a node gets is decided by TIN::FindTriangle: the first triangle in order that holds it. A grid cell of
// the index lists its triangles in order, so that the answer can as well be found the other way round: each
// triangle in order takes the nodes that it holds and that no triangle before has taken. That reads the
// triangles once from the first to the last, and tests each against the few nodes in its box.
//
// Cost: about 30 ns a triangle and 5 ns a node tested; FindTriangle for each node takes three to ten times
// that.
class TinRaster {
 public:
  // `xs` grow and `ys` fall in steps of `cellSize`, up to rounding. `heights` has a row of xs.size() for each
  // of the ys. Nodes in no triangle, and those on corner 0 of theirs, get `defaultZ`.
  TinRaster(const TIN& tin, std::span<const double> xs, std::span<const double> ys, double cellSize,
            double defaultZ, std::span<float> heights);

  void Fill();

  // The same, node by node.
  void FillByNode();

 private:
  // Nodes, both ends included.
  struct NodeRange {
    std::int64_t firstRow = 0;
    std::int64_t lastRow = -1;
    std::int64_t firstCol = 0;
    std::int64_t lastCol = -1;

    std::int64_t GetCount() const {
      return lastRow < firstRow || lastCol < firstCol ? 0
                                                      : (lastRow - firstRow + 1) * (lastCol - firstCol + 1);
    }
  };

  bool HasEvenSteps() const;
  void FindNodesWithinExtent();
  bool IsPlain(const TIN::Corners& corners, const Extent6& box) const;
  NodeRange NodesNear(const Extent6& box) const;
  NodeRange NodesInCells(const CellRange& cells) const;
  bool AreWithin(const NodeRange& nodes, const Extent6& box) const;
  void FillPlain(std::int32_t triangle, const TIN::Corners& corners, const Extent6& box,
                 const NodeRange& nodes);
  void FillTested(std::int32_t triangle, const TIN::Corners& corners, const NodeRange& nodes);
  bool IsListed(std::int32_t triangle, std::int64_t row, std::int64_t col) const;
  void FillTriangle(std::int32_t triangle);
  void FillEmptyByNode();
  float HeightAt(const Point3& node, std::int32_t triangle, int result) const;
  float& Height(std::int64_t row, std::int64_t col) {
    return heights_[static_cast<std::size_t>(row) * xs_.size() + static_cast<std::size_t>(col)];
  }

  const TIN& tin_;
  std::span<const double> xs_;
  std::span<const double> ys_;
  double cellSize_;
  double nodesPerUnit_;
  double defaultZ_;
  std::span<float> heights_;
  NodeRange within_;                    // the nodes within the TIN's extent
  std::vector<std::int32_t> gridCols_;  // of the TIN's grid, by node column
  std::vector<std::int32_t> gridRows_;  // by node row
  std::int64_t nTested_ = 0;
};

}  // namespace corvane
