#include "StereoPair/WindowSimilarity.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

#include "StereoPair/PlainCoefficient.h"
#include "numerics/SimdVersion.h"

namespace corvane {
namespace {

using Bytes = std::vector<std::uint8_t>;

bool SameBits(double a, double b) {
  return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b) ||
         (std::isnan(a) && std::isnan(b));
}

// Stretches of noise, of few greys, of white, and of one grey each.
Bytes MakePool(std::size_t n) {
  std::mt19937 random(7);
  Bytes pool;
  while (pool.size() < n) {
    const auto first = static_cast<std::uint8_t>(random());
    const int kind = static_cast<int>(random() % 4);
    for (std::size_t i = 50 + random() % 400; i > 0; --i) {
      const auto noise = static_cast<std::uint8_t>(random());
      pool.push_back(kind == 0 ? noise : kind == 1 ? noise % 2 : kind == 2 ? 255 : first);
    }
  }
  pool.resize(n);
  return pool;
}

TEST(WindowSimilarity, CoefficientOfTenMillionWindowsHasTheBitsOfThePlainLoop) {
  constexpr std::size_t kPool = 1 << 15;
  constexpr std::size_t kSmall = 40;
  constexpr std::size_t kLarge = 19 * 19;
  const Bytes pool = MakePool(kPool);
  std::minstd_rand random(1);
  const auto versions = AvailableSimdVersions();
  std::int64_t nDifferent = 0;
  std::int64_t nFlat = 0;
  for (const SimdVersion version : versions) {
    const ForcedSimdVersion forced(version);
    for (std::size_t i = 0; i <= 10'000'000 / versions.size(); ++i) {
      const std::size_t n = i % 16 == 0 ? kLarge : 1 + random() % kSmall;
      const std::uint8_t* a = &pool[random() % (kPool - kLarge)];
      const std::uint8_t* b = &pool[random() % (kPool - kLarge)];
      const double value = CorrelationCoefficient({a, n}, {b, n});
      nDifferent += SameBits(value, PlainCoefficient(a, b, n)) ? 0 : 1;
      nFlat += value == 1.0 || value == 0.0 ? 1 : 0;
    }
  }
  EXPECT_EQ(nDifferent, 0);
  EXPECT_GT(nFlat, 1'000'000);
}

TEST(WindowSimilarity, CoefficientOfEachLengthHasTheBitsOfThePlainLoop) {
  const Bytes pool = MakePool(9000);
  const Bytes white(5000, 255);
  for (const SimdVersion version : AvailableSimdVersions()) {
    const ForcedSimdVersion forced(version);
    for (std::size_t n = 1; n < 4500; n += n < 300 ? 1 : 61) {
      EXPECT_TRUE(SameBits(CorrelationCoefficient({&pool[1], n}, {&pool[4400], n}),
                           PlainCoefficient(&pool[1], &pool[4400], n)))
          << n;
      EXPECT_TRUE(SameBits(CorrelationCoefficient({&pool[1], n}, {&white[1], n}),
                           PlainCoefficient(&pool[1], &white[1], n)))
          << n;
    }
  }
}

TEST(WindowSimilarity, SumsOfManyWhitePixelsDoNotOverflow) {
  constexpr std::size_t kCount = 3'000'000;
  Bytes a(kCount, 255);
  Bytes b(kCount, 255);
  a[5] = 0;
  b[7] = 0;
  EXPECT_TRUE(SameBits(CorrelationCoefficient(a, b), PlainCoefficient(a.data(), b.data(), kCount)));
}

TEST(WindowSimilarity, TwoFlatWindowsGiveOne) {
  EXPECT_EQ(CorrelationCoefficient(Bytes(9, 7), Bytes(9, 200)), 1.0);
  EXPECT_EQ(CorrelationCoefficient(Bytes(361, 0), Bytes(361, 0)), 1.0);
}

TEST(WindowSimilarity, OneFlatWindowGivesZero) {
  EXPECT_EQ(CorrelationCoefficient(Bytes(3, 7), Bytes{1, 2, 3}), 0.0);
  EXPECT_EQ(CorrelationCoefficient(Bytes{1, 2, 3}, Bytes(3, 7)), 0.0);
}

TEST(WindowSimilarity, CoefficientByHand) {
  // Deviations -1, 0, 1 and -2, 1, 1: 3 / sqrt(2 * 6)
  EXPECT_NEAR(CorrelationCoefficient(Bytes{1, 2, 3}, Bytes{1, 4, 4}), 3.0 / std::sqrt(12.0), 1e-15);
  EXPECT_NEAR(CorrelationCoefficient(Bytes{1, 2, 3}, Bytes{9, 8, 7}), -1.0, 1e-15);
}

TEST(WindowSimilarity, WithoutPixelsIsNotANumber) {
  EXPECT_TRUE(std::isnan(CorrelationCoefficient({}, {})));
  EXPECT_TRUE(std::isnan(CorrelationCoefficientOfDoubles({}, {})));
}

TEST(WindowSimilarity, CoefficientOfDoublesByHand) {
  const std::vector<double> a{0.5, 1.0, 1.5};
  EXPECT_NEAR(CorrelationCoefficientOfDoubles(a, std::vector{-1.0, 0.5, 0.5}), 3.0 / std::sqrt(12.0), 1e-15);
  EXPECT_EQ(CorrelationCoefficientOfDoubles(a, std::vector(3, 4.0)), 0.0);
  EXPECT_EQ(CorrelationCoefficientOfDoubles(std::vector(3, 1.0), std::vector(3, 4.0)), 1.0);
}

TEST(WindowSimilarity, MaskedTakesOnlyPixelsWhoseMaskIsOne) {
  const Bytes a{1, 99, 2, 3, 50};
  const Bytes b{1, 0, 4, 4, 200};
  EXPECT_EQ(CorrelationCoefficientMasked(a, b, Bytes{1, 0, 1, 1, 255}),
            CorrelationCoefficient(Bytes{1, 2, 3}, Bytes{1, 4, 4}));
}

TEST(WindowSimilarity, DifferencesByHand) {
  const Bytes a{10, 20, 0, 255};
  const Bytes b{13, 16, 0, 0};
  EXPECT_EQ(SumAbsDifference(a, b), 3.0 + 4.0 + 0.0 + 255.0);
  EXPECT_EQ(SumSquaredDifference(a, b), 9.0 + 16.0 + 0.0 + 65025.0);
  EXPECT_NEAR(RelativeAbsDifference(Bytes{10, 20}, Bytes{13, 16}), (0.3 + 0.2) / 2.0, 1e-16);
}

TEST(WindowSimilarity, RelativeDifferenceDividesByAZeroPixel) {
  EXPECT_TRUE(std::isinf(RelativeAbsDifference(Bytes{0, 5}, Bytes{1, 5})));
  EXPECT_TRUE(std::isnan(RelativeAbsDifference(Bytes{0, 5}, Bytes{0, 5})));
}

TEST(WindowSimilarity, StdevOfDifferencesByHand) {
  // Differences 1, 2, 3, 6 around their mean of 3: (4 + 1 + 0 + 9) / 3
  EXPECT_NEAR(DiffStdev(Bytes{1, 2, 3, 6}, Bytes{0, 0, 0, 0}), std::sqrt(14.0 / 3.0), 1e-15);
  EXPECT_EQ(DiffStdev(Bytes{1, 2, 3}, Bytes{11, 12, 13}), 0.0);
  EXPECT_EQ(DiffStdev(Bytes{1}, Bytes{5}), 0.0);
}

TEST(WindowSimilarity, MatchedPixelsLeaveTheBackgroundOut) {
  const Bytes a{0, 0, 5, 6, 7};
  const Bytes b{0, 1, 5, 6, 8};
  EXPECT_EQ(MatchedPixelCount(a, b), 3);
  EXPECT_EQ(MatchedPixelCount(a, b, 0), 2);
  EXPECT_EQ(NonBackgroundCount(a, 0), 3);
  EXPECT_EQ(NonBackgroundCount(a, std::nullopt), 5);
}

}  // namespace
}  // namespace corvane
