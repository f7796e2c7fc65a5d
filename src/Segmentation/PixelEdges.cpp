#include "Segmentation/PixelEdges.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

#include "io/LargePages.h"

namespace corvane {

namespace {

// Edges are distributed to groups by the upper bits of their weights, which keeps the groups of a photo
// within the caches, and then sorted by the lower ones.
constexpr int kGroupShift = 48;
constexpr std::size_t kGroups = std::size_t{1} << 16;
constexpr int kDigitBits = 8;
constexpr int kDigitShifts[] = {32, 40};

class EdgeWeights {
 public:
  explicit EdgeWeights(const std::vector<PlaneImage<float>>& planes) {
    for (std::size_t k = 0; k < 3; ++k) planes_[k] = planes[k % planes.size()].pixels.data();
  }

  float Between(std::size_t a, std::size_t b) const {
    const float dr = planes_[0][a] - planes_[0][b];
    const float dg = planes_[1][a] - planes_[1][b];
    const float db = planes_[2][a] - planes_[2][b];
    return std::sqrt(dr * dr + dg * dg + db * db);
  }

 private:
  std::array<const float*, 3> planes_;
};

// Calls `visit` with each edge, in the order of the pixels.
template <typename Visit>
void VisitEdges(const std::vector<PlaneImage<float>>& planes, Visit visit) {
  const EdgeWeights weights(planes);
  const auto width = static_cast<std::size_t>(planes[0].width);
  const auto height = static_cast<std::size_t>(planes[0].height);
  const auto visitEdge = [&](std::size_t a, std::size_t b, std::size_t neighbour) {
    visit(std::uint64_t{std::bit_cast<std::uint32_t>(weights.Between(a, b))} << 32 | (4 * a + neighbour));
  };
  for (std::size_t y = 0; y < height; ++y) {
    for (std::size_t x = 0; x < width; ++x) {
      const std::size_t pixel = y * width + x;
      const bool hasRight = x + 1 < width;
      const bool hasBelow = y + 1 < height;
      if (hasRight) visitEdge(pixel, pixel + 1, 0);
      if (hasBelow) visitEdge(pixel, pixel + width, 1);
      if (hasRight && hasBelow) visitEdge(pixel, pixel + width + 1, 2);
      if (hasRight && y > 0) visitEdge(pixel, pixel + 1 - width, 3);
    }
  }
}

std::size_t EdgeCount(const PlaneImage<float>& plane) {
  const auto width = static_cast<std::size_t>(plane.width);
  const auto height = static_cast<std::size_t>(plane.height);
  return width * (height - 1) + (width - 1) * height + 2 * (width - 1) * (height - 1);
}

// Sorts by one digit, equal ones in the order that they have. False, with nothing done, if all are equal.
bool SortByDigit(const std::uint64_t* from, std::uint64_t* to, std::size_t n, int shift) {
  constexpr std::size_t kDigits = std::size_t{1} << kDigitBits;
  const auto digitOf = [shift](std::uint64_t edge) { return edge >> shift & (kDigits - 1); };
  std::array<std::size_t, kDigits> starts = {};
  for (std::size_t i = 0; i < n; ++i) ++starts[digitOf(from[i])];
  if (starts[digitOf(from[0])] == n) return false;
  std::exclusive_scan(starts.begin(), starts.end(), starts.begin(), std::size_t{0});
  for (std::size_t i = 0; i < n; ++i) to[starts[digitOf(from[i])]++] = from[i];
  return true;
}

// Sorts edges whose weights differ in their lower bits only. `room` holds as many.
void SortGroup(std::uint64_t* edges, std::size_t n, std::uint64_t* room) {
  constexpr std::size_t kFew = 256;
  if (n < kFew) return std::sort(edges, edges + n);
  std::uint64_t* from = edges;
  std::uint64_t* to = room;
  for (const int shift : kDigitShifts) {
    if (SortByDigit(from, to, n, shift)) std::swap(from, to);
  }
  if (from != edges) std::copy_n(from, n, edges);
}

}  // namespace

PixelEdges::PixelEdges(std::vector<PlaneImage<float>> planes) {
  const std::int32_t width = planes[0].width;
  toNeighbour_ = {1, width, width + 1, 1 - width};
  size_ = EdgeCount(planes[0]);
  edges_ = std::make_unique_for_overwrite<std::uint64_t[]>(size_);
  UseLargePages(edges_.get(), size_ * sizeof edges_[0]);

  std::vector<std::size_t>& ends = groupEnds_;
  ends.resize(kGroups);
  VisitEdges(planes, [&](std::uint64_t edge) { ++ends[edge >> kGroupShift]; });
  std::exclusive_scan(ends.begin(), ends.end(), ends.begin(), std::size_t{0});
  VisitEdges(planes, [&](std::uint64_t edge) { edges_[ends[edge >> kGroupShift]++] = edge; });
}

void PixelEdges::Sort() {
  std::size_t largest = 0;
  std::size_t start = 0;
  for (const std::size_t end : groupEnds_) {
    largest = std::max(largest, end - start);
    start = end;
  }
  const auto room = std::make_unique_for_overwrite<std::uint64_t[]>(largest);
  start = 0;
  for (const std::size_t end : groupEnds_) {
    SortGroup(&edges_[start], end - start, room.get());
    start = end;
  }
  groupEnds_ = {};
}

}  // namespace corvane
