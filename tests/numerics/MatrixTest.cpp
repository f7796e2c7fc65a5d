#include "numerics/Matrix.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>

#include "MatrixFixture.h"

namespace corvane {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
using Row = std::vector<double>;

TEST(AllocMatrix, LinksRowsOverOneBlockOfZeros) {
  const OwnedMatrix m(AllocMatrix(3, 4));
  ASSERT_TRUE(m);
  EXPECT_EQ(ElementsOf(m, 3, 4), Row(12, 0.0));
  EXPECT_EQ(m[1], m[0] + 4);
  EXPECT_EQ(m[2], m[0] + 8);
}

TEST(AllocMatrix, TakesAnotherElementSize) {
  const OwnedMatrix m(AllocMatrix(2, 5, 1));
  ASSERT_TRUE(m);
  const auto* const bytes = reinterpret_cast<const std::uint8_t*>(m[0]);
  EXPECT_EQ(reinterpret_cast<const std::uint8_t*>(m[1]), bytes + 5);
  for (int i = 0; i < 10; ++i) EXPECT_EQ(bytes[i], 0);
}

TEST(AllocMatrix, IsCopiedWithOneBlockCopy) {
  const OwnedMatrix from = MatrixOf({{1, 2, 3}, {4, 5, 6}});
  const OwnedMatrix to(AllocMatrix(2, 3));
  std::memcpy(to[0], from[0], 6 * sizeof(double));
  EXPECT_EQ(to[1][2], 6.0);
}

TEST(AllocMatrix, CanBeEmpty) {
  EXPECT_EQ(FreeMatrix(AllocMatrix(0, 0)), 0);
  EXPECT_EQ(FreeMatrix(AllocMatrix(0, 3)), 0);
  EXPECT_EQ(FreeMatrix(AllocMatrix(3, 0)), 0);
}

TEST(AllocMatrix, GivesNullWhereMemoryCanNotBeHad) {
  EXPECT_EQ(AllocMatrix(-1, 3), nullptr);
  EXPECT_EQ(AllocMatrix(3, -1), nullptr);
  EXPECT_EQ(AllocMatrix(INT64_MAX, INT64_MAX), nullptr);
  EXPECT_EQ(AllocMatrix(std::int64_t{1} << 32, std::int64_t{1} << 32), nullptr);  // 2^64 elements
  EXPECT_EQ(AllocMatrix(std::int64_t{1} << 31, std::int64_t{1} << 30), nullptr);  // 2^64 bytes
  EXPECT_EQ(AllocMatrix(1, std::int64_t{1} << 60), nullptr);
}

TEST(FreeMatrix, AcceptsNull) {
  EXPECT_EQ(FreeMatrix(nullptr), 0);
}

TEST(IdentityMatrix, AllocatesWhereThePointerIsNull) {
  Matrix m = nullptr;
  EXPECT_EQ(IdentityMatrix(&m, 3), 0);
  const OwnedMatrix owner(m);
  ASSERT_TRUE(owner);
  EXPECT_EQ(ElementsOf(owner, 3, 3), Row({1, 0, 0, 0, 1, 0, 0, 0, 1}));
}

TEST(IdentityMatrix, KeepsTheStorageAndOverwritesIt) {
  const OwnedMatrix m = MatrixOf({{7, 7}, {7, 7}});
  Matrix pointer = m.get();
  EXPECT_EQ(IdentityMatrix(&pointer, 2), 0);
  EXPECT_EQ(pointer, m.get());
  EXPECT_EQ(ElementsOf(m, 2, 2), Row({1, 0, 0, 1}));
}

TEST(IdentityMatrix, OfANegativeCountHasNothingToDoInAMatrixThatIsThere) {
  const OwnedMatrix m = MatrixOf({{7}});
  Matrix pointer = m.get();
  EXPECT_EQ(IdentityMatrix(&pointer, -1), 0);
  EXPECT_EQ(m[0][0], 7.0);
}

TEST(IdentityMatrix, FailsWithoutMemory) {
  Matrix m = nullptr;
  EXPECT_EQ(IdentityMatrix(&m, -1), -1);
  EXPECT_EQ(m, nullptr);
}

TEST(MultiplySquare, MultipliesOverTheInnerCount) {
  const OwnedMatrix a = MatrixOf({{1, 2, 3}, {4, 5, 6}});
  const OwnedMatrix b = MatrixOf({{1, -1}, {0, 2}, {10, 0}});
  const OwnedMatrix c = MatrixOf({{9, 9}, {9, 9}});
  MultiplySquare(a.get(), b.get(), c.get(), 2, 3);
  EXPECT_EQ(ElementsOf(c, 2, 2), Row({31, 3, 64, 6}));
}

TEST(MultiplyMatrix, MultipliesRectangles) {
  const OwnedMatrix a = MatrixOf({{1, 2}, {3, 4}, {5, 6}});
  const OwnedMatrix b = MatrixOf({{1, 0, 2, 1}, {0, 1, 1, -1}});
  const OwnedMatrix c(AllocMatrix(3, 4));
  MultiplyMatrix(a.get(), b.get(), c.get(), 3, 2, 4);
  EXPECT_EQ(ElementsOf(c, 3, 4), Row({1, 2, 4, -1, 3, 4, 10, -1, 5, 6, 16, -1}));
}

TEST(MultiplyMatrix, LetsZeroMeetInfinity) {
  const OwnedMatrix a = MatrixOf({{0.0}});
  const OwnedMatrix b = MatrixOf({{kInfinity}});
  const OwnedMatrix c(AllocMatrix(1, 1));
  MultiplyMatrix(a.get(), b.get(), c.get(), 1, 1, 1);
  EXPECT_TRUE(std::isnan(c[0][0]));
}

TEST(MultiplyMatrix, CanBeEmpty) {
  const OwnedMatrix empty(AllocMatrix(0, 0));
  const OwnedMatrix c = MatrixOf({{5}});
  MultiplyMatrix(empty.get(), empty.get(), empty.get(), 0, 0, 0);
  MultiplyMatrix(c.get(), empty.get(), c.get(), 1, 0, 1);
  EXPECT_EQ(c[0][0], 0.0);
}

TEST(MultiplyMatrixVector, SkipsTermsWithAZero) {
  const OwnedMatrix a = MatrixOf({{1, 2}, {0, kInfinity}, {kInfinity, 0}});
  const double x[] = {3, 4};
  const double withZero[] = {3, 0};
  double y[3];
  MultiplyMatrixVector(a.get(), x, y, 3, 2);
  EXPECT_EQ(y[0], 11.0);
  EXPECT_EQ(y[1], kInfinity);
  EXPECT_EQ(y[2], kInfinity);
  MultiplyMatrixVector(a.get(), withZero, y, 3, 2);
  EXPECT_EQ(y[1], 0.0);
}

TEST(TransposeMatrix, TakesTheCountsOfTheResult) {
  const OwnedMatrix a = MatrixOf({{1, 2, 3}, {4, 5, 6}});
  const OwnedMatrix t(AllocMatrix(3, 2));
  TransposeMatrix(a.get(), t.get(), 3, 2);
  EXPECT_EQ(ElementsOf(t, 3, 2), Row({1, 4, 2, 5, 3, 6}));
}

TEST(NormalMatrix, IsTheProductOfTheColumns) {
  const OwnedMatrix a = MatrixOf({{1, 2}, {3, 0}, {0, 5}});
  Matrix normal = nullptr;
  EXPECT_EQ(NormalMatrix(a.get(), 3, 2, &normal), 1);
  const OwnedMatrix owner(normal);
  EXPECT_EQ(ElementsOf(owner, 2, 2), Row({10, 2, 2, 29}));
}

TEST(NormalMatrix, OverwritesAMatrixThatIsThere) {
  const OwnedMatrix a = MatrixOf({{1, 2}});
  const OwnedMatrix normal = MatrixOf({{9, 9}, {9, 9}});
  Matrix pointer = normal.get();
  EXPECT_EQ(NormalMatrix(a.get(), 1, 2, &pointer), 1);
  EXPECT_EQ(pointer, normal.get());
  EXPECT_EQ(ElementsOf(normal, 2, 2), Row({1, 2, 2, 4}));
}

TEST(NormalMatrix, LetsNoInfinityInThroughAZero) {
  const OwnedMatrix a = MatrixOf({{kInfinity, 0, 1, 2, 3}, {1, 1, 1, 1, 1}});
  Matrix normal = nullptr;
  EXPECT_EQ(NormalMatrix(a.get(), 2, 5, &normal), 1);
  const OwnedMatrix owner(normal);
  EXPECT_EQ(owner[0][0], kInfinity);
  EXPECT_EQ(owner[0][1], 1.0);
  EXPECT_EQ(owner[1][0], 1.0);
  EXPECT_EQ(owner[0][2], kInfinity);
}

TEST(NormalMatrix, OfNoRowsIsZero) {
  const OwnedMatrix empty(AllocMatrix(0, 2));
  Matrix normal = nullptr;
  EXPECT_EQ(NormalMatrix(empty.get(), 0, 2, &normal), 1);
  const OwnedMatrix owner(normal);
  EXPECT_EQ(ElementsOf(owner, 2, 2), Row(4, 0.0));
}

TEST(NormalMatrix, FailsWithoutMemory) {
  Matrix normal = nullptr;
  EXPECT_EQ(NormalMatrix(nullptr, 0, -1, &normal), -1);
}

TEST(NormalVector, IsTheProductWithTheColumns) {
  const OwnedMatrix a = MatrixOf({{1, 2}, {3, 0}, {0, 5}});
  const double l[] = {1, 10, 100};
  double* v = nullptr;
  EXPECT_EQ(NormalVector(a.get(), l, 3, 2, &v), 1);
  const OwnedArray<double> owner(v);
  EXPECT_EQ(v[0], 31.0);
  EXPECT_EQ(v[1], 502.0);
  double* const before = v;
  EXPECT_EQ(NormalVector(a.get(), l, 1, 2, &v), 1);
  EXPECT_EQ(v, before);
  EXPECT_EQ(v[0], 1.0);
}

TEST(NormalVector, LetsNoInfinityInThroughAZero) {
  const OwnedMatrix a = MatrixOf({{0, kInfinity}, {kInfinity, 1}});
  const double l[] = {kInfinity, 0};
  double v[2];
  double* pointer = v;
  EXPECT_EQ(NormalVector(a.get(), l, 2, 2, &pointer), 1);
  EXPECT_EQ(v[0], 0.0);
  EXPECT_EQ(v[1], kInfinity);
}

TEST(NormalVector, FailsWithoutMemory) {
  double* v = nullptr;
  EXPECT_EQ(NormalVector(nullptr, nullptr, 0, -1, &v), -1);
}

TEST(CopySubMatrix, CopiesFromFirstToLast) {
  const OwnedMatrix a = MatrixOf({{1, 2, 3}, {4, 5, 6}, {7, 8, 9}});
  Matrix out = nullptr;
  EXPECT_EQ(CopySubMatrix(a.get(), 1, 2, 0, 1, &out), 1);
  const OwnedMatrix owner(out);
  EXPECT_EQ(ElementsOf(owner, 2, 2), Row({4, 5, 7, 8}));
}

TEST(CopySubMatrix, FailsWhereTheLastStandsBeforeTheFirst) {
  const OwnedMatrix a = MatrixOf({{1, 2}});
  Matrix out = a.get();
  EXPECT_EQ(CopySubMatrix(a.get(), 3, 0, 0, 1, &out), -1);
  EXPECT_EQ(out, nullptr);
}

TEST(SubtractMatrix, SubtractsIntoAnyOfTheThree) {
  const OwnedMatrix a = MatrixOf({{5, 6}, {7, 8}});
  const OwnedMatrix b = MatrixOf({{1, 2}, {3, 5}});
  SubtractMatrix(a.get(), b.get(), b.get(), 2, 2);
  EXPECT_EQ(ElementsOf(b, 2, 2), Row({4, 4, 4, 3}));
}

}  // namespace
}  // namespace corvane
