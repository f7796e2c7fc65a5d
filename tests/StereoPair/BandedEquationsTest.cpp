#include "StereoPair/BandedEquations.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <span>
#include <vector>

#include "LsmScenes.h"
#include "numerics/LeastSquares.h"
#include "numerics/SimdVersion.h"

namespace corvane {
namespace {

// Adds random observations of up to three neighbouring unknowns to both forms, and solves them.
void ExpectDenseSolution(std::uint32_t seed, std::size_t n, std::size_t band, std::size_t m) {
  Dice dice(seed);
  BandedEquations equations(n, band);
  ASSERT_TRUE(equations.HasRoom());
  const OwnedMatrix design(AllocMatrix(static_cast<std::int64_t>(m), static_cast<std::int64_t>(n)));
  std::vector<double> l, weights, x(n), dense(n);
  for (std::size_t k = 0; k < m; ++k) {
    const auto first = static_cast<std::size_t>(dice.Between(0.0, static_cast<double>(n)));
    std::vector<std::size_t> unknowns = {first};
    if (band > 1 && first + 1 < n) unknowns.push_back(first + 1);
    if (band > 1 && first + band < n) unknowns.push_back(first + band);
    std::vector<double> factors;
    for (const std::size_t unknown : unknowns) {
      factors.push_back(dice.Byte() < 40 ? 0.0 : dice.Between(-3.0, 3.0));
      design[k][unknown] = factors.back();
    }
    l.push_back(dice.Byte() < 40 ? 0.0 : dice.Between(-9.0, 9.0));
    weights.push_back(dice.Byte() < 100 ? 1.0 : 100.0);
    equations.Add(unknowns, factors, l.back(), weights.back());
  }
  equations.Solve(x.data());
  WeightedLeastSquaresCholesky(design.get(), l.data(), weights.data(), static_cast<int>(m),
                               static_cast<int>(n), dense.data());
  EXPECT_EQ(x, dense) << seed;
}

TEST(BandedEquations, HaveTheDenseSolutionBitForBit) {
  for (const SimdVersion version : AvailableSimdVersions()) {
    const ForcedSimdVersion forced(version);
    for (std::uint32_t seed = 1; seed <= 60; ++seed) {
      const std::size_t n = 2 + seed * 2;
      ExpectDenseSolution(seed, n, 2 + seed % std::min<std::size_t>(n - 1, 30), 6 * n);
    }
  }
}

// Too few observations leave pivots that are not positive: the vector is what is left.
TEST(BandedEquations, LeaveTheVectorOfASystemWithoutASolutionAsTheDenseOnesDo) {
  for (std::uint32_t seed = 1; seed <= 40; ++seed) ExpectDenseSolution(seed, 20, 5, 10);
  BandedEquations equations(3, 1);
  const std::size_t unknown = 1;
  const double factor = 2.0;
  equations.Add({&unknown, 1}, {&factor, 1}, 3.0, 10.0);
  double x[3];
  equations.Solve(x);
  EXPECT_EQ(x[0], 0.0);
  EXPECT_EQ(x[1], 60.0);
  EXPECT_EQ(x[2], 0.0);
}

// An observation that is not finite, or whose products are not, beside good ones. Where it leaves the dense
// solution numbers, or keeps it from being one, there is no difference; otherwise no unknown is finite.
void ExpectDenseFate(std::uint32_t seed, double factor, double l) {
  Dice dice(seed);
  constexpr std::size_t kCount = 30, kBand = 4, kRows = 2 * kCount;
  BandedEquations equations(kCount, kBand);
  const OwnedMatrix design(AllocMatrix(kRows, kCount));
  std::vector<double> observations, weights(kRows, 1.0), x(kCount), dense(kCount);
  const auto bad = static_cast<std::size_t>(dice.Between(0.0, kCount));
  for (std::size_t k = 0; k < kRows; ++k) {
    const std::size_t i = k % kCount;
    const bool isPair = k >= kCount && i + kBand < kCount;
    const std::size_t unknowns[] = {i, i + kBand};
    const double factors[] = {k == bad ? factor : dice.Between(1.0, 3.0), -1.0};
    design[k][i] = factors[0];
    if (isPair) design[k][i + kBand] = factors[1];
    observations.push_back(k == bad ? l : dice.Between(-9.0, 9.0));
    equations.Add(std::span(unknowns).first(isPair ? 2 : 1), factors, observations.back(), 1.0);
  }
  equations.Solve(x.data());
  WeightedLeastSquaresCholesky(design.get(), observations.data(), weights.data(), kRows, kCount,
                               dense.data());
  for (std::size_t i = 0; i < kCount; ++i) {
    if (x[i] == dense[i]) continue;
    EXPECT_TRUE(std::isnan(x[i]) && !std::isfinite(dense[i])) << seed << ' ' << factor << ' ' << l;
  }
}

TEST(BandedEquations, OfNumbersThatAreNotFiniteHaveTheFateOfTheDenseOnes) {
  const double nan = std::nan("");
  const double infinity = std::numeric_limits<double>::infinity();
  for (std::uint32_t seed = 1; seed <= 40; ++seed) {
    for (const double factor : {0.0, 1.0, -2.0, 1e200, nan, infinity, -infinity}) {
      for (const double l : {0.0, 3.0, 1e200, nan, infinity, -infinity}) ExpectDenseFate(seed, factor, l);
    }
  }
}

TEST(BandedEquations, AreEmptyAfterClear) {
  BandedEquations equations(1, 0);
  const std::size_t unknown = 0;
  const double factor = 2.0;
  double x = 0.0;
  equations.Add({&unknown, 1}, {&factor, 1}, 9.0, 1.0);
  equations.Solve(&x);
  EXPECT_EQ(x, 4.5);
  equations.Clear();
  equations.Add({&unknown, 1}, {&factor, 1}, 3.0, 1.0);
  equations.Solve(&x);
  EXPECT_EQ(x, 1.5);
}

}  // namespace
}  // namespace corvane
