#include "numerics/SimdVersion.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>

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

template <typename T>
struct FillAll {
  template <std::size_t width>
  [[gnu::always_inline]] static inline std::size_t Run(T value, T* to) {
    SimdPack<T, width> pack;
    pack.Fill(value);
    pack.Store(to);
    return pack.kLanes;
  }
};

// All lanes of a pack take the bits of the value.
template <typename T>
void ExpectFill(T value) {
  for (const SimdVersion version : AvailableSimdVersions()) {
    const ForcedSimdVersion forced(version);
    T lanes[64 / sizeof(T)];
    const std::size_t nLanes = RunSimd<FillAll<T>>(value, lanes);
    for (std::size_t i = 0; i < nLanes; ++i) EXPECT_EQ(std::memcmp(&lanes[i], &value, sizeof value), 0);
  }
}

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

TEST(SimdVersion, PacksAreFilledBitForBit) {
  for (const double value :
       {0.0, -0.0, 1.5, std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::quiet_NaN()}) {
    ExpectFill(value);
    ExpectFill(static_cast<float>(value));
  }
  ExpectFill(std::uint8_t{201});
  ExpectFill(std::int16_t{-2});
  ExpectFill(std::uint32_t{0x80000001});
  ExpectFill(std::int64_t{-3});
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
