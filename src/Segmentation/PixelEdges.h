#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "Segmentation/PlaneImage.h"
#include "Segmentation/SegmentGraph.h"

namespace corvane {

// The edges from each pixel to its neighbours at the right, below, at the lower right and at the upper right,
// once sorted by ascending weight: sqrt(dr^2 + dg^2 + db^2), the differences of the colours in floats. Edges
// of equal weight are in the order of their pixels, row by row, and those of one pixel in the order above.
//
// An edge takes eight bytes: the bits of its weight, which for floats that are not negative are ordered as
// the weights are, and below them four times the index of its pixel plus the number of the neighbour.
class PixelEdges {
 public:
  static constexpr std::int64_t kMostPixels = std::int64_t{1} << 30;

  // One plane of floats for a grey image, whose three colours are the same, or three: all of one size, of at
  // most kMostPixels. They are let go at the end. Throws std::bad_alloc without memory.
  explicit PixelEdges(std::vector<PlaneImage<float>> planes);

  // The second half of the work: the constructor leaves the edges in groups of nearly equal weight. Only
  // once, and before KeepIf. Throws std::bad_alloc without memory.
  void Sort();

  std::size_t size() const { return size_; }

  SegEdge operator[](std::size_t i) const {
    const auto code = static_cast<std::uint32_t>(edges_[i]);
    const auto pixel = static_cast<std::int32_t>(code / 4);
    const auto weight = std::bit_cast<float>(static_cast<std::uint32_t>(edges_[i] >> 32));
    return {weight, pixel, pixel + toNeighbour_[code % 4]};
  }

  // Asks `isKept` about each edge in order, and drops those that it refuses. `sets` are those that it looks
  // into: the nodes of the edges ahead are loaded meanwhile, as they lie all over the memory.
  template <typename IsKept>
  void KeepIf(const DisjointSet& sets, IsKept isKept) {
    constexpr std::size_t kFar = 32;  // edges
    constexpr std::size_t kNear = 16;
    std::size_t nKept = 0;
    for (std::size_t i = 0; i < size_; ++i) {
      if (i + kFar < size_) {
        const SegEdge far = (*this)[i + kFar];
        sets.Prefetch(far.a);
        sets.Prefetch(far.b);
        const SegEdge near = (*this)[i + kNear];
        sets.PrefetchParent(near.a);
        sets.PrefetchParent(near.b);
      }
      const std::uint64_t edge = edges_[i];
      if (isKept((*this)[i])) edges_[nKept++] = edge;
    }
    size_ = nKept;
  }

 private:
  std::array<std::int32_t, 4> toNeighbour_;  // from the index of a pixel
  std::vector<std::size_t> groupEnds_;       // until the edges are sorted
  std::unique_ptr<std::uint64_t[]> edges_;
  std::size_t size_ = 0;
};

}  // namespace corvane
