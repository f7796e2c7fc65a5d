#include "numerics/MatrixText.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "MatrixFixture.h"
#include "support/TempFolder.h"

namespace corvane {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

class MatrixText : public testing::Test {
 protected:
  TempFolder folder;
  const OwnedMatrix m = MatrixOf({{1.5, 0, -0.0}, {0, -2, 1e-9}});
};

TEST_F(MatrixText, BareShortensZerosInTheLastColumnOnly) {
  EXPECT_EQ(WriteMatrixBare("m.txt", 2, 3, m.get(), ","), 1);
  EXPECT_EQ(ReadFileBytes("m.txt"), "1.500000, 0.000000, -0\n0.000000, -2.000000, 0.000000\n");
}

TEST_F(MatrixText, AugmentedShortensAllZerosNegativeOnesToo) {
  const double rhs[] = {-0.0, 3};
  EXPECT_EQ(WriteAugmentedMatrix("m.txt", 2, 3, m.get(), rhs, ";"), 1);
  EXPECT_EQ(ReadFileBytes("m.txt"), "2;4\n1.500000; 0; -0; -0\n0; -2.000000; 0.000000; 3.000000\n");
}

TEST_F(MatrixText, PlainShortensZerosInAllButTheLastColumn) {
  EXPECT_EQ(WriteMatrix("m.txt", 2, 3, m.get(), ""), 1);
  EXPECT_EQ(ReadFileBytes("m.txt"), "23\n1.500000 0 -0.000000\n0 -2.000000 0.000000\n");
}

TEST_F(MatrixText, SpellsWhatIsNotFiniteANaNWithoutItsSign) {
  const OwnedMatrix odd = MatrixOf({{kInfinity, -kInfinity, kNaN, -kNaN, 1e30}});
  EXPECT_EQ(WriteMatrixBare("m.txt", 1, 5, odd.get(), ""), 1);
  EXPECT_EQ(ReadFileBytes("m.txt"), "inf -inf nan nan 1000000000000000019884624838656.000000\n");
}

TEST_F(MatrixText, OfNothingIsTheHeader) {
  EXPECT_EQ(WriteMatrixBare("bare.txt", 0, 0, nullptr, ","), 1);
  EXPECT_EQ(WriteMatrix("plain.txt", 2, 0, m.get(), ","), 1);
  const double rhs[] = {1};
  EXPECT_EQ(WriteAugmentedMatrix("augmented.txt", 1, 0, m.get(), rhs, ","), 1);
  EXPECT_EQ(ReadFileBytes("bare.txt"), "");
  EXPECT_EQ(ReadFileBytes("plain.txt"), "2,0\n");
  EXPECT_EQ(ReadFileBytes("augmented.txt"), "1,1\n1.000000\n");
}

TEST_F(MatrixText, ElementsAndRowsAppend) {
  std::string text = "x";
  AppendElement(text, -0.0, Zeros::Short);
  AppendElement(text, 0.0, Zeros::Long);
  EXPECT_EQ(text, "x-00.000000");
  const double row[] = {0, -0.0, 2.5, 0};
  text = "x";
  AppendMatrixRow(text, row, 4, ",");
  EXPECT_EQ(text, "x0, -0, 2.500000, 0.000000\n");
  text.clear();
  AppendMatrixRow(text, row, 1, ",");
  EXPECT_EQ(text, "0.000000\n");
}

// The largest double has 309 digits in front of the point.
TEST_F(MatrixText, HasRoomForAnyNumber) {
  std::string text;
  AppendElement(text, -std::numeric_limits<double>::max(), Zeros::Short);
  EXPECT_EQ(text.size(), 1u + 309u + 7u);
  EXPECT_TRUE(text.starts_with("-17976931348623157081"));
}

// A row is more than is held back. There is no row behind the first one that could be written.
TEST_F(MatrixText, EndsWithTheFirstWriteThatFails) {
  const std::vector<double> row(200000, 0.5);
  const double* const rows[] = {row.data(), nullptr, nullptr};
  EXPECT_EQ(WriteMatrixBare("/dev/full", 3, 200000, rows, ","), -1);
}

// A mostly empty matrix as printf writes it.
TEST_F(MatrixText, OfMostlyZerosIsWhatPrintfWrites) {
  constexpr int kRows = 60;
  constexpr int kCols = 70;
  std::mt19937_64 random(1);
  const OwnedMatrix sparse(AllocMatrix(kRows, kCols));
  const OwnedMatrix rhs(AllocMatrix(1, kRows));
  for (int i = 0; i < kRows * kCols; ++i) {
    const double sign = random() % 2 == 0 ? 1.0 : -1.0;
    const double size = std::pow(10.0, static_cast<double>(random() % 30) - 15.0);
    sparse[0][i] =
        random() % 10 == 0 ? sign * size * static_cast<double>(random() >> 11) * 0x1p-53 : 0.0 * sign;
  }
  for (int i = 0; i < kRows; i += 2) rhs[0][i] = static_cast<double>(i) / 7.0;

  std::string wanted = std::to_string(kRows) + "," + std::to_string(kCols + 1) + "\n";
  const auto print = [&](const char* shortForm, const char* longForm, double number) {
    char text[400];
    std::snprintf(text, sizeof text, number == 0.0 ? shortForm : longForm, number);
    wanted += text;
  };
  for (int i = 0; i < kRows; ++i) {
    for (int j = 0; j < kCols; ++j) print("%.0f, ", "%f, ", sparse[i][j]);
    print("%.0f\n", "%f\n", rhs[0][i]);
  }
  ASSERT_EQ(WriteAugmentedMatrix("m.txt", kRows, kCols, sparse.get(), rhs[0], ","), 1);
  EXPECT_EQ(ReadFileBytes("m.txt"), wanted);
}

TEST_F(MatrixText, FailsWhereTheFileDoesNotOpen) {
  const double rhs[] = {1, 2};
  EXPECT_EQ(WriteMatrixBare("no/m.txt", 2, 3, m.get(), ","), -1);
  EXPECT_EQ(WriteAugmentedMatrix("no/m.txt", 2, 3, m.get(), rhs, ","), -1);
  EXPECT_EQ(WriteMatrix("no/m.txt", 2, 3, m.get(), ","), -1);
}

}  // namespace
}  // namespace corvane
