#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <unordered_map>
#include <vector>

namespace corvane {

// Tells for each corner of a ".tin" file which vertex it is. Two corners are one vertex if they have the same
// id and lie in the same cell of the vertex grid; vertices are numbered from 0 as they come.
//
// An id nearly always names one vertex, and ids nearly always count from 0, so the first vertex of each id
// stands in a plain array. The rest (marked vertices, which all have the id -1; ids of a larger point set;
// one id at two places) goes to a hash with random factors, so that no file can be made to collide.
class VertexTable {
 public:
  // Ids from 0 to `nIds` - 1 go by the plain array.
  explicit VertexTable(std::size_t nIds) : firstOfId_(nIds, -1) {}

  // The vertex with this id in this cell; equal to the former GetCount() if it is a new one.
  std::int32_t FindOrAdd(std::int32_t id, std::int64_t cell) {
    if (id >= 0 && static_cast<std::size_t>(id) < firstOfId_.size()) {
      std::int32_t& first = firstOfId_[static_cast<std::size_t>(id)];
      if (first < 0) {
        first = Add(cell);
        return first;
      }
      if (cells_[static_cast<std::size_t>(first)] == cell) return first;
    }
    return FindOrAddOther(id, cell);
  }

  std::size_t GetCount() const { return cells_.size(); }

 private:
  struct Key {
    std::int32_t id = 0;
    std::int64_t cell = 0;

    friend bool operator==(const Key&, const Key&) = default;
  };

  // Multiply-shift: for any two keys chosen beforehand the upper half rarely agrees.
  struct Hash {
    std::uint64_t idFactor;
    std::uint64_t cellFactor;

    Hash() : idFactor(RandomOdd()), cellFactor(RandomOdd()) {}
    static std::uint64_t RandomOdd() {
      std::random_device device;
      return (std::uint64_t{device()} << 32) | device() | 1;
    }
    std::size_t operator()(const Key& key) const {
      const auto id = static_cast<std::uint64_t>(key.id);
      return (idFactor * id + cellFactor * static_cast<std::uint64_t>(key.cell)) >> 32;
    }
  };

  std::int32_t Add(std::int64_t cell) {
    cells_.push_back(cell);
    return static_cast<std::int32_t>(cells_.size() - 1);
  }

  std::int32_t FindOrAddOther(std::int32_t id, std::int64_t cell) {
    const auto [entry, isNew] = others_.try_emplace(Key{id, cell}, static_cast<std::int32_t>(GetCount()));
    if (isNew) Add(cell);
    return entry->second;
  }

  std::vector<std::int32_t> firstOfId_;  // by id: its first vertex, -1 for none yet
  std::vector<std::int64_t> cells_;      // by vertex
  std::unordered_map<Key, std::int32_t, Hash> others_;
};

}  // namespace corvane
