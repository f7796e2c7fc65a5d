#include "numerics/SimdVersion.h"

#include <gtest/gtest.h>

#include <cstddef>

namespace corvane {
namespace {

struct RegisterWidth {
  template <std::size_t width>
  [[gnu::always_inline]] static inline std::size_t Run() {
    return width;
  }
};

struct Halve {
  template <std::size_t width>
  [[gnu::always_inline]] static inline void Run(float* numbers, const float* limits) {
    SimdPack<float, width> pack, limit, half;
    half.Fill(0.5F);
    pack.Load(numbers);
    limit.Load(limits);
    pack.lanes = pack.lanes > limit.lanes ? pack.lanes * half.lanes : pack.lanes;
    pack.Store(numbers);
  }
};

TEST(SimdVersion, TakesTheBestAvailableOne) {
  EXPECT_EQ(AvailableSimdVersions().front(), SimdVersion::Baseline);
  EXPECT_EQ(AvailableSimdVersions().back(), GetSimdVersion());
}

TEST(SimdVersion, IsForcedForALifetime) {
  const std::size_t widths[] = {16, 32, 64};
  const SimdVersion before = GetSimdVersion();
  for (const SimdVersion version : AvailableSimdVersions()) {
    const ForcedSimdVersion forced(version);
    EXPECT_EQ(RunSimd<RegisterWidth>(), widths[static_cast<int>(version)]);
  }
  EXPECT_EQ(GetSimdVersion(), before);
}

TEST(SimdVersion, PacksHoldAnyType) {
  for (const SimdVersion version : AvailableSimdVersions()) {
    const ForcedSimdVersion forced(version);
    float numbers[16] = {1, 8, 2, 6};
    const float limits[16] = {4, 4, 4, 4};
    RunSimd<Halve>(numbers, limits);
    EXPECT_EQ(numbers[0], 1.0F);
    EXPECT_EQ(numbers[1], 4.0F);
    EXPECT_EQ(numbers[2], 2.0F);
    EXPECT_EQ(numbers[3], 3.0F);
  }
}

}  // namespace
}  // namespace corvane
