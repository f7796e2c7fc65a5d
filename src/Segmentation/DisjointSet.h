#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "io/LargePages.h"

namespace corvane {

struct SegNode {
  std::int32_t rank = 0;
  std::int32_t parent = 0;
  std::int32_t size = 1;   // elements of the set, if the node is its root
  float threshold = 0.0f;  // for users of the sets, who want it where they look at a root anyway
};

// The elements 0 to n - 1 in sets: at first each in one of its own. A set is a tree of nodes; its root stands
// for it.
class DisjointSet {
 public:
  // Throws std::bad_alloc without memory.
  explicit DisjointSet(std::int32_t n, float threshold = 0.0f) : count_(n) {
    ReserveLarge(nodes_, static_cast<std::size_t>(n));
    for (std::int32_t i = 0; i < n; ++i) nodes_.push_back({.parent = i, .threshold = threshold});
  }

  // The root of the element's set.
  // Kept: only the element itself is then tied to the root, not those on the way.
  std::int32_t Find(std::int32_t x) {
    std::int32_t root = x;
    while (At(root).parent != root) root = At(root).parent;
    if (At(x).parent != root) At(x).parent = root;  // a look costs less than a needless change
    return root;
  }

  // Makes one set of those with the roots x and y. The root with the higher rank remains; y of equal ones.
  void Join(std::int32_t x, std::int32_t y) {
    SegNode& a = At(x);
    SegNode& b = At(y);
    if (a.rank > b.rank) {
      b.parent = x;
      a.size += b.size;
    } else {
      a.parent = y;
      b.size += a.size;
      if (a.rank == b.rank) ++b.rank;
    }
    --count_;
  }

  // The number of elements in the set with this root.
  std::int32_t Size(std::int32_t root) const { return nodes_[static_cast<std::size_t>(root)].size; }

  float& Threshold(std::int32_t root) { return At(root).threshold; }

  std::int32_t SetCount() const { return count_; }

  // Begin to load the element's node, and its parent's, from memory: a Find that comes later need not wait.
  void Prefetch(std::int32_t x) const { __builtin_prefetch(&nodes_[static_cast<std::size_t>(x)]); }
  void PrefetchParent(std::int32_t x) const { Prefetch(nodes_[static_cast<std::size_t>(x)].parent); }

 private:
  SegNode& At(std::int32_t x) { return nodes_[static_cast<std::size_t>(x)]; }

  std::vector<SegNode> nodes_;
  std::int32_t count_;
};

}  // namespace corvane
