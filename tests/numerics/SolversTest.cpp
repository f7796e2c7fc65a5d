#include "numerics/Solvers.h"

#include <gtest/gtest.h>
#include <malloc.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <random>
#include <vector>

#include "MatrixFixture.h"

namespace corvane {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
using Row = std::vector<double>;

OwnedMatrix RandomMatrix(int rows, int cols, unsigned seed) {
  std::mt19937_64 random(seed);
  OwnedMatrix m(AllocMatrix(rows, cols));
  for (int i = 0; i < rows * cols; ++i) m[0][i] = static_cast<double>(random() >> 11) * 0x1p-52 - 1.0;
  return m;
}

// The largest element of |a x - b|.
double Residual(const OwnedMatrix& a, const double* x, const double* b, int n) {
  double largest = 0.0;
  for (int i = 0; i < n; ++i) {
    double sum = -b[i];
    for (int j = 0; j < n; ++j) sum += a[i][j] * x[j];
    largest = std::max(largest, std::fabs(sum));
  }
  return largest;
}

// Powers of two as pivots make all steps exact:
//   2x + y = 8, 4x + 4y = 24 has the solution (2, 4), and its inverse is (1, -1/4; -1, 1/2).
TEST(GaussJordan, SolvesAndInverts) {
  const OwnedMatrix a = MatrixOf({{2, 1}, {4, 4}});
  const OwnedMatrix b = MatrixOf({{8, 0}, {24, 4}});
  EXPECT_EQ(GaussJordan(a.get(), 2, b.get(), 2), 1);
  EXPECT_EQ(ElementsOf(a, 2, 2), Row({1, -0.25, -1, 0.5}));
  EXPECT_EQ(ElementsOf(b, 2, 2), Row({2, -1, 4, 2}));
}

TEST(GaussJordan, LeavesASmallResidual) {
  constexpr int n = 60;
  const OwnedMatrix a = RandomMatrix(n, n, 1);
  const OwnedMatrix b = RandomMatrix(n, 1, 2);
  const OwnedMatrix inverse = CopyOf(a, n, n);
  const OwnedMatrix x = CopyOf(b, n, 1);
  EXPECT_EQ(GaussJordan(inverse.get(), n, x.get(), 1), 1);
  EXPECT_LT(Residual(a, x[0], b[0], n), 1e-10);
  for (int j = 0; j < n; ++j) {
    Row column(n), unit(n, 0.0);
    for (int i = 0; i < n; ++i) column[i] = inverse[i][j];
    unit[j] = 1.0;
    EXPECT_LT(Residual(a, column.data(), unit.data(), n), 1e-10);
  }
}

TEST(GaussJordan, OfAZeroRowFailsAndReleasesItsWorkVectors) {
  const auto attempt = [] {
    const OwnedMatrix a = MatrixOf({{1, 2}, {0, 0}});
    const OwnedMatrix b = MatrixOf({{1}, {1}});
    return GaussJordan(a.get(), 2, b.get(), 1);
  };
  EXPECT_EQ(attempt(), -1);
  const std::size_t before = mallinfo2().uordblks;
  for (int i = 0; i < 1000; ++i) attempt();
  EXPECT_LE(mallinfo2().uordblks, before + 4096);
}

// The pivot is -2 at (1, 1). Its row times -1/2, with 1 in place of the pivot, is (1/2, -1/2), right side -2.
// Row 0, with 0 in place of its 1, loses 1 times that. The next pivot is exactly zero.
TEST(GaussJordan, LeavesASingularSystemPartlyReduced) {
  const OwnedMatrix a = MatrixOf({{0.5, 1}, {-1, -2}});
  const OwnedMatrix b = MatrixOf({{3}, {4}});
  EXPECT_EQ(GaussJordan(a.get(), 2, b.get(), 1), -1);
  EXPECT_EQ(ElementsOf(a, 2, 2), Row({0, 0.5, 0.5, -0.5}));
  EXPECT_EQ(ElementsOf(b, 2, 1), Row({5, -2}));
}

// All four elements are equally large. The last one as pivot makes row 1 (-1, 1/2), right side 2, of which
// row 0 loses -2 times; any other pivot would leave other numbers, or the rows swapped.
TEST(GaussJordan, TakesTheLastOfEqualPivots) {
  const OwnedMatrix a = MatrixOf({{2, -2}, {-2, 2}});
  const OwnedMatrix b = MatrixOf({{3}, {4}});
  EXPECT_EQ(GaussJordan(a.get(), 2, b.get(), 1), -1);
  EXPECT_EQ(ElementsOf(a, 2, 2), Row({0, 1, -1, 0.5}));
  EXPECT_EQ(ElementsOf(b, 2, 1), Row({7, 2}));
}

// A system of n unknowns with the last one of these equal pivots in the last two rows and columns.
TEST(GaussJordan, TakesTheLastOfEqualPivotsAmongMany) {
  constexpr int n = 40;
  const OwnedMatrix a(AllocMatrix(n, n));
  for (const int i : {n - 2, n - 1}) {
    for (const int k : {n - 2, n - 1}) a[i][k] = i == k ? 2.0 : -2.0;
  }
  EXPECT_EQ(GaussJordan(a.get(), n, nullptr, 0), -1);
  EXPECT_EQ(Row(a[n - 2] + n - 2, a[n - 2] + n), Row({0, 1}));
  EXPECT_EQ(Row(a[n - 1] + n - 2, a[n - 1] + n), Row({-1, 0.5}));
}

TEST(GaussJordan, WithoutUnknownsSucceeds) {
  const OwnedMatrix empty(AllocMatrix(0, 0));
  EXPECT_EQ(GaussJordan(empty.get(), 0, empty.get(), 0), 1);
  EXPECT_EQ(GaussJordan(nullptr, -1, nullptr, -1), 1);
}

TEST(GaussJordan, WithoutRightSidesInverts) {
  const OwnedMatrix a = MatrixOf({{0, 2}, {4, 0}});
  EXPECT_EQ(GaussJordan(a.get(), 2, nullptr, 0), 1);
  EXPECT_EQ(ElementsOf(a, 2, 2), Row({0, 0.25, 0.5, 0}));
}

TEST(GaussJordan, OfNaNEndsAsSingularWhenAPivotIsTakenAgain) {
  const OwnedMatrix three = MatrixOf({{kNaN, kNaN, kNaN}, {kNaN, kNaN, kNaN}, {kNaN, kNaN, kNaN}});
  EXPECT_EQ(GaussJordan(three.get(), 3, nullptr, 0), -1);
  const OwnedMatrix two = MatrixOf({{kNaN, kNaN}, {kNaN, kNaN}});
  EXPECT_EQ(GaussJordan(two.get(), 2, nullptr, 0), 1);
  EXPECT_TRUE(std::isnan(two[1][1]));
}

TEST(InvertMatrix, GivesTheInverseInBoth) {
  const OwnedMatrix a = MatrixOf({{2, 1}, {4, 4}});
  Matrix inverse = nullptr;
  EXPECT_EQ(InvertMatrix(a.get(), &inverse, 2), 1);
  const OwnedMatrix owner(inverse);
  EXPECT_EQ(ElementsOf(a, 2, 2), Row({1, -0.25, -1, 0.5}));
  EXPECT_EQ(ElementsOf(owner, 2, 2), Row({1, -0.25, -1, 0.5}));
}

TEST(InvertMatrix, OfASingularMatrixSucceedsAllTheSame) {
  const OwnedMatrix a(AllocMatrix(2, 2));
  Matrix inverse = nullptr;
  EXPECT_EQ(InvertMatrix(a.get(), &inverse, 2), 1);
  const OwnedMatrix owner(inverse);
  EXPECT_EQ(ElementsOf(owner, 2, 2), Row({1, 0, 0, 1}));
}

TEST(InvertMatrix, FailsWithoutMemory) {
  Matrix inverse = nullptr;
  EXPECT_EQ(InvertMatrix(nullptr, &inverse, -1), -1);
}

TEST(InvertMatrix, OfANegativeCountHasNothingToDoWhereAMatrixIsThere) {
  const OwnedMatrix a = MatrixOf({{7}});
  Matrix inverse = a.get();
  EXPECT_EQ(InvertMatrix(nullptr, &inverse, -1), 1);
  EXPECT_EQ(a[0][0], 7.0);
}

TEST(InvertWithRhs, InvertsAndSolvesAsManyRightSides) {
  const OwnedMatrix a = MatrixOf({{2, 1}, {4, 4}});
  const OwnedMatrix b = MatrixOf({{8, 0}, {24, 4}});
  EXPECT_EQ(InvertWithRhs(a.get(), b.get(), 2), 0);
  EXPECT_EQ(ElementsOf(a, 2, 2), Row({1, -0.25, -1, 0.5}));
  EXPECT_EQ(ElementsOf(b, 2, 2), Row({2, -1, 4, 2}));
}

TEST(InvertWithRhs, ReturnsZeroForASingularMatrixToo) {
  const OwnedMatrix a(AllocMatrix(2, 2));
  const OwnedMatrix b = MatrixOf({{1, 2}, {3, 4}});
  EXPECT_EQ(InvertWithRhs(a.get(), b.get(), 2), 0);
  EXPECT_EQ(ElementsOf(b, 2, 2), Row({1, 2, 3, 4}));
}

// (4, 2, 6; 2, 10, 9; 6, 9, 19) = L Lt with L = (2; 1, 3; 3, 2, sqrt 6).
TEST(CholeskyDecompose, FactorsBelowTheDiagonalOnly) {
  const OwnedMatrix a = MatrixOf({{4, 2, 6}, {-9, 10, 9}, {-9, -9, 19}});  // what is below is not read
  double p[3];
  EXPECT_EQ(CholeskyDecompose(a.get(), 3, p), 1);
  EXPECT_EQ(ElementsOf(a, 3, 3), Row({4, 2, 6, 1, 10, 9, 3, 2, 19}));
  EXPECT_EQ(Row(p, p + 3), Row({2, 3, std::sqrt(6.0)}));
}

// The second pivot is 1 - 1 * 1.
TEST(CholeskyDecompose, FailsAtAZeroPivotAndTheRowsAboveKeepTheirFactors) {
  const OwnedMatrix a = MatrixOf({{4, 2, 6}, {2, 1, 9}, {6, 9, 19}});
  double p[] = {-1, -1, -1};
  EXPECT_EQ(CholeskyDecompose(a.get(), 3, p), -1);
  EXPECT_EQ(ElementsOf(a, 3, 3), Row({4, 2, 6, 1, 1, 9, 3, 9, 19}));
  EXPECT_EQ(Row(p, p + 3), Row({2, -1, -1}));
}

TEST(CholeskyDecompose, FailsAtANegativePivotOrNaN) {
  for (const double pivot : {-1.0, kNaN}) {
    const OwnedMatrix a = MatrixOf({{pivot}});
    double p = 0.0;
    EXPECT_EQ(CholeskyDecompose(a.get(), 1, &p), -1);
  }
}

TEST(CholeskySubstitute, SolvesIntoAnotherVectorOrTheSame) {
  const OwnedMatrix a = MatrixOf({{0, 0}, {1, 0}});  // L = (2; 1, 4), L Lt = (4, 2; 2, 17)
  const double p[] = {2, 4};
  double b[] = {8, 36};
  double x[2];
  CholeskySubstitute(a.get(), 2, p, b, x);
  EXPECT_EQ(Row(x, x + 2), Row({1, 2}));
  CholeskySubstitute(a.get(), 2, p, b, b);
  EXPECT_EQ(Row(b, b + 2), Row({1, 2}));
}

TEST(CholeskySolve, LeavesASmallResidual) {
  constexpr int n = 90;
  const OwnedMatrix a = RandomMatrix(n, n, 3);
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j < i; ++j) a[i][j] = a[j][i];
    a[i][i] = n;
  }
  const OwnedMatrix b = RandomMatrix(n, 1, 4);
  const OwnedMatrix factor = CopyOf(a, n, n);
  const OwnedMatrix x = CopyOf(b, n, 1);
  EXPECT_EQ(CholeskySolve(factor.get(), n, x[0]), 1);
  EXPECT_LT(Residual(a, x[0], b[0], n), 1e-12);
}

TEST(CholeskySolve, KeepsTheRightSideWhereItFails) {
  const OwnedMatrix a = MatrixOf({{1, 2}, {2, 1}});
  double b[] = {5, 6};
  EXPECT_EQ(CholeskySolve(a.get(), 2, b), -1);
  EXPECT_EQ(Row(b, b + 2), Row({5, 6}));
}

TEST(CholeskySolve, WithoutUnknownsSucceeds) {
  const OwnedMatrix empty(AllocMatrix(0, 0));
  EXPECT_EQ(CholeskySolve(empty.get(), 0, nullptr), 1);
  EXPECT_EQ(CholeskyDecompose(nullptr, -1, nullptr), 1);
  EXPECT_EQ(CholeskySolve(nullptr, -1, nullptr), -1);
}

// Relative to their largest elements the first column is 1/4 and 1, so the rows are swapped.
TEST(LuDecompose, FactorsWithScaledPivots) {
  const OwnedMatrix a = MatrixOf({{4, 16}, {2, 1}});
  int indx[2];
  double d = 0.0;
  EXPECT_EQ(LuDecompose(a.get(), 2, indx, &d), 1);
  EXPECT_EQ(ElementsOf(a, 2, 2), Row({2, 1, 2, 14}));
  EXPECT_EQ(indx[0], 1);
  EXPECT_EQ(indx[1], 1);
  EXPECT_EQ(d, -1.0);
}

TEST(LuDecompose, TakesTheLaterOfEqualRows) {
  const OwnedMatrix a = MatrixOf({{2, 1}, {4, -1}});
  int indx[2];
  double d = 0.0;
  EXPECT_EQ(LuDecompose(a.get(), 2, indx, &d), 1);
  EXPECT_EQ(indx[0], 1);
  EXPECT_EQ(ElementsOf(a, 2, 2), Row({4, -1, 0.5, 1.5}));
}

TEST(LuDecompose, OfAZeroPivotWithoutAZeroRowLeavesATinyNumber) {
  const OwnedMatrix a = MatrixOf({{1, 1}, {1, 1}});
  int indx[2];
  double d = 0.0;
  EXPECT_EQ(LuDecompose(a.get(), 2, indx, &d), 1);
  EXPECT_EQ(a[1][1], 1e-20);
  EXPECT_EQ(d, -1.0);
}

// Of two zeros the later one is taken, so the rows are swapped.
TEST(LuDecompose, OfAZeroPivotInTheFirstColumnLeavesATinyNumberThere) {
  const OwnedMatrix a = MatrixOf({{0, 1}, {0, 2}});
  int indx[2];
  double d = 0.0;
  EXPECT_EQ(LuDecompose(a.get(), 2, indx, &d), 1);
  EXPECT_EQ(ElementsOf(a, 2, 2), Row({1e-20, 2, 0, 1}));
  EXPECT_EQ(indx[0], 1);
  EXPECT_EQ(indx[1], 1);
  EXPECT_EQ(d, -1.0);
}

TEST(LuDecompose, FailsOnAZeroRowAndChangesNothing) {
  const OwnedMatrix a = MatrixOf({{1, 2}, {0, -0.0}});
  int indx[2];
  double d = 0.0;
  EXPECT_EQ(LuDecompose(a.get(), 2, indx, &d), -1);
  EXPECT_EQ(ElementsOf(a, 2, 2), Row({1, 2, 0, 0}));
  EXPECT_EQ(d, 1.0);
}

TEST(LuDecompose, OfNaNStaysInBounds) {
  const OwnedMatrix a = MatrixOf({{kNaN, 1}, {kNaN, 1}});
  int indx[] = {-1, -1};
  double d = 0.0;
  EXPECT_EQ(LuDecompose(a.get(), 2, indx, &d), 1);
  EXPECT_EQ(indx[0], 0);
  EXPECT_EQ(indx[1], 1);
  EXPECT_TRUE(std::isnan(a[1][1]));
}

TEST(LuSubstitute, SkipsLeadingZerosOfTheRightSide) {
  const OwnedMatrix a = MatrixOf({{2, 0, 0}, {kNaN, 4, 0}, {kNaN, 0.5, 8}});  // L = (1; NaN, 1; NaN, 1/2, 1)
  const int indx[] = {0, 1, 2};
  double b[] = {0, 8, 12};
  LuSubstitute(a.get(), 3, indx, b);
  EXPECT_EQ(Row(b, b + 3), Row({0, 2, 1}));
}

TEST(LuSolve, SolvesByHand) {
  const OwnedMatrix a = MatrixOf({{4, 16}, {2, 1}});
  double b[] = {36, 4};  // of x = 1, y = 2
  EXPECT_EQ(LuSolve(a.get(), 2, b), 1);
  EXPECT_EQ(Row(b, b + 2), Row({1, 2}));
}

TEST(LuSolve, LeavesASmallResidual) {
  constexpr int n = 150;
  const OwnedMatrix a = RandomMatrix(n, n, 5);
  const OwnedMatrix b = RandomMatrix(n, 1, 6);
  const OwnedMatrix factors = CopyOf(a, n, n);
  const OwnedMatrix x = CopyOf(b, n, 1);
  EXPECT_EQ(LuSolve(factors.get(), n, x[0]), 1);
  EXPECT_LT(Residual(a, x[0], b[0], n), 1e-10);
}

TEST(LuSolve, KeepsTheRightSideWhereItFails) {
  const OwnedMatrix a(AllocMatrix(2, 2));
  double b[] = {5, 6};
  EXPECT_EQ(LuSolve(a.get(), 2, b), -1);
  EXPECT_EQ(Row(b, b + 2), Row({5, 6}));
}

TEST(LuSolve, WithoutUnknownsSucceeds) {
  const OwnedMatrix empty(AllocMatrix(0, 0));
  EXPECT_EQ(LuSolve(empty.get(), 0, nullptr), 1);
  double d = 0.0;
  EXPECT_EQ(LuDecompose(nullptr, -1, nullptr, &d), -1);
  EXPECT_EQ(LuSolve(nullptr, -1, nullptr), -1);
}

}  // namespace
}  // namespace corvane
