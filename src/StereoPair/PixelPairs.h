#pragma once

#include <cstddef>
#include <cstdint>

#include "numerics/SimdVersion.h"

namespace corvane {

// Pixels two by two: a 32-bit lane holds one pixel in its lower half, one in its upper half.
template <std::size_t width>
using PixelPairs = SimdPack<std::uint32_t, width>;

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wpsabi"  // of functions that never are called, as they are always inlined

// Adds to each lane of `sums` the product of the lower halves of a and b, and that of the upper halves; all
// are below 2^15.
template <std::size_t width>
[[gnu::always_inline]] inline void AddPairProducts(SimdPack<std::uint32_t, width>& sums,
                                                   const PixelPairs<width>& a, const PixelPairs<width>& b) {
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__)
  // One instruction; the other compiler takes it only in functions that are compiled for one version.
  using Lanes = typename PixelPairs<width>::Lanes;
  using Halves = typename SimdPack<short, width>::Lanes;
  if constexpr (width == 16) {
    sums.lanes += (Lanes)__builtin_ia32_pmaddwd128((Halves)a.lanes, (Halves)b.lanes);
  } else if constexpr (width == 32) {
    sums.lanes += (Lanes)__builtin_ia32_pmaddwd256((Halves)a.lanes, (Halves)b.lanes);
  } else {
    using Ints = typename SimdPack<int, width>::Lanes;
    sums.lanes += (Lanes)__builtin_ia32_pmaddwd512_mask((Halves)a.lanes, (Halves)b.lanes, Ints{}, 0xFFFF);
  }
#else
  sums.lanes += (a.lanes & 0xFFFFu) * (b.lanes & 0xFFFFu) + (a.lanes >> 16) * (b.lanes >> 16);
#endif
}

#pragma GCC diagnostic pop

// Adds both pixels of each pair to its lane, half by half. Halves hold at most 257 sums of one pixel; then
// they are joined.
template <std::size_t width>
[[gnu::always_inline]] inline void AddPairs(PixelPairs<width>& sums, const PixelPairs<width>& pairs) {
  using Halves = typename SimdPack<std::uint16_t, width>::Lanes;
  using Lanes = typename PixelPairs<width>::Lanes;
  sums.lanes = (Lanes)((Halves)sums.lanes + (Halves)pairs.lanes);
}

template <std::size_t width>
[[gnu::always_inline]] inline void JoinHalves(PixelPairs<width>& sums) {
  sums.lanes = (sums.lanes & 0xFFFFu) + (sums.lanes >> 16);
}

}  // namespace corvane
