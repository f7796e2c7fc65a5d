#include "numerics/MatrixText.h"

#include <gtest/gtest.h>

#include <limits>

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

TEST_F(MatrixText, FailsWhereTheFileDoesNotOpen) {
  const double rhs[] = {1, 2};
  EXPECT_EQ(WriteMatrixBare("no/m.txt", 2, 3, m.get(), ","), -1);
  EXPECT_EQ(WriteAugmentedMatrix("no/m.txt", 2, 3, m.get(), rhs, ","), -1);
  EXPECT_EQ(WriteMatrix("no/m.txt", 2, 3, m.get(), ","), -1);
}

}  // namespace
}  // namespace corvane
