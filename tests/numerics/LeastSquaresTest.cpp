#include "numerics/LeastSquares.h"

#include <gtest/gtest.h>

#include "MatrixFixture.h"

namespace corvane {
namespace {

using Row = std::vector<double>;

// Observations 1, 2, 6 of a constant and a slope at -1, 0, 1: the mean 3 and the slope (6 - 1) / 2.
class ALine : public testing::Test {
 protected:
  const OwnedMatrix design = MatrixOf({{1, -1}, {1, 0}, {1, 1}});
  const double l[3] = {1, 2, 6};
  double x[2] = {0, 0};
};

TEST_F(ALine, IsFittedByLeastSquares) {
  EXPECT_EQ(LeastSquares(design.get(), l, 3, 2, x), 1);
  EXPECT_DOUBLE_EQ(x[0], 3.0);
  EXPECT_DOUBLE_EQ(x[1], 2.5);
  EXPECT_EQ(ElementsOf(design, 3, 2), Row({1, -1, 1, 0, 1, 1}));
}

TEST_F(ALine, IsFittedByCholesky) {
  EXPECT_EQ(LeastSquaresCholesky(design.get(), l, 3, 2, x), 1);
  EXPECT_DOUBLE_EQ(x[0], 3.0);
  EXPECT_DOUBLE_EQ(x[1], 2.5);
}

// Without the middle observation the line runs through the other two: 3.5 + 2.5 x.
TEST_F(ALine, FollowsTheWeights) {
  const double w[] = {1, 0, 1};
  EXPECT_EQ(WeightedLeastSquares(design.get(), l, w, 3, 2, x), 1);
  EXPECT_EQ(Row(x, x + 2), Row({3.5, 2.5}));
  EXPECT_EQ(WeightedLeastSquaresCholesky(design.get(), l, w, 3, 2, x), 1);
  EXPECT_DOUBLE_EQ(x[0], 3.5);
  EXPECT_DOUBLE_EQ(x[1], 2.5);
}

// A column of zeros, the normal matrix being (2, 0; 0, 0) and the right side (8, 0): the pivot 2 is taken
// first, then the system is found to be singular, with x = (4, 0).
class ASingularSystem : public testing::Test {
 protected:
  const OwnedMatrix design = MatrixOf({{1, 0}, {1, 0}});
  const double l[2] = {3, 5};
  const double w[2] = {1, 1};
  double x[2] = {-1, -1};
};

TEST_F(ASingularSystem, IsHandedBackByLeastSquares) {
  EXPECT_EQ(LeastSquares(design.get(), l, 2, 2, x), -1);
  EXPECT_EQ(Row(x, x + 2), Row({4, 0}));
}

TEST_F(ASingularSystem, IsHandedBackByLeastSquaresCholesky) {
  EXPECT_EQ(LeastSquaresCholesky(design.get(), l, 2, 2, x), -1);
  EXPECT_EQ(Row(x, x + 2), Row({8, 0}));
}

TEST_F(ASingularSystem, IsSwallowedByTheWeightedForms) {
  EXPECT_EQ(WeightedLeastSquares(design.get(), l, w, 2, 2, x), 1);
  EXPECT_EQ(Row(x, x + 2), Row({4, 0}));
  EXPECT_EQ(WeightedLeastSquaresCholesky(design.get(), l, w, 2, 2, x), 1);
  EXPECT_EQ(Row(x, x + 2), Row({8, 0}));
}

TEST_F(ALine, IsFittedInPlaceOfTheObservations) {
  const auto fitted = [&](auto fit) {
    double both[] = {1, 2, 6};
    EXPECT_EQ(fit(both), 1);
    EXPECT_DOUBLE_EQ(both[0], 3.0);
    EXPECT_DOUBLE_EQ(both[1], 2.5);
    EXPECT_EQ(both[2], 6.0);
  };
  const double w[] = {1, 1, 1};
  fitted([&](double* both) { return LeastSquares(design.get(), both, 3, 2, both); });
  fitted([&](double* both) { return WeightedLeastSquares(design.get(), both, w, 3, 2, both); });
  fitted([&](double* both) { return LeastSquaresCholesky(design.get(), both, 3, 2, both); });
  fitted([&](double* both) { return WeightedLeastSquaresCholesky(design.get(), both, w, 3, 2, both); });
}

TEST_F(ASingularSystem, LeavesWhatItDoesInPlaceOfTheObservations) {
  double both[] = {3, 5};
  EXPECT_EQ(LeastSquaresCholesky(design.get(), both, 2, 2, both), -1);
  EXPECT_EQ(Row(both, both + 2), Row({8, 0}));
}

TEST(LeastSquares, WithoutObservationsIsSingular) {
  const OwnedMatrix empty(AllocMatrix(0, 1));
  double x = -1.0;
  EXPECT_EQ(LeastSquares(empty.get(), nullptr, 0, 1, &x), -1);
  EXPECT_EQ(WeightedLeastSquares(empty.get(), nullptr, nullptr, 0, 1, &x), 1);
  EXPECT_EQ(LeastSquares(empty.get(), nullptr, -1, 1, &x), -1);
}

TEST(LeastSquares, WithoutUnknownsSucceeds) {
  const OwnedMatrix empty(AllocMatrix(2, 0));
  const double l[] = {1, 2};
  EXPECT_EQ(LeastSquares(empty.get(), l, 2, 0, nullptr), 1);
  EXPECT_EQ(LeastSquaresCholesky(empty.get(), l, 2, 0, nullptr), 1);
}

TEST(LeastSquares, FailsWithoutMemory) {
  EXPECT_EQ(LeastSquares(nullptr, nullptr, 0, -1, nullptr), -1);
  EXPECT_EQ(WeightedLeastSquares(nullptr, nullptr, nullptr, 0, -1, nullptr), -1);
  EXPECT_EQ(LeastSquaresCholesky(nullptr, nullptr, 0, -1, nullptr), -1);
  EXPECT_EQ(WeightedLeastSquaresCholesky(nullptr, nullptr, nullptr, 0, -1, nullptr), -1);
  EXPECT_EQ(FitAugmented(nullptr, -1, 1, nullptr), -1);
  EXPECT_EQ(FitLine(nullptr, nullptr, -1, nullptr), -1);
  EXPECT_EQ(FitLineToBytes(nullptr, nullptr, -1, nullptr), -1);
}

// z = 2 x - y + 4 at four points.
TEST(FitAugmented, FitsAPlane) {
  const OwnedMatrix points = MatrixOf({{0, 0, 4}, {1, 0, 6}, {0, 1, 3}, {1, 1, 5}});
  double x[3];
  EXPECT_EQ(FitAugmented(points.get(), 4, 3, x), 1);
  EXPECT_NEAR(x[0], 2.0, 1e-14);
  EXPECT_NEAR(x[1], -1.0, 1e-14);
  EXPECT_NEAR(x[2], 4.0, 1e-14);
}

TEST(FitAugmented, DropsASingularSystem) {
  const OwnedMatrix point = MatrixOf({{0, 0, 4}});
  double x[3];
  EXPECT_EQ(FitAugmented(point.get(), 1, 3, x), 1);
}

TEST(FitAugmented, OfNoColumnsDoesNothing) {
  const OwnedMatrix empty(AllocMatrix(2, 0));
  EXPECT_EQ(FitAugmented(empty.get(), 2, 0, nullptr), 1);
  EXPECT_EQ(FitAugmented(empty.get(), 2, -1, nullptr), 1);
}

TEST(FitLine, FitsSlopeAndOffset) {
  const double x[] = {-1, 0, 1};
  const double y[] = {1, 2, 6};
  double out[2];
  EXPECT_EQ(FitLine(x, y, 3, out), 1);
  EXPECT_DOUBLE_EQ(out[0], 2.5);
  EXPECT_DOUBLE_EQ(out[1], 3.0);
}

TEST(FitLine, DropsASingularSystem) {
  double out[2] = {-1, -1};
  EXPECT_EQ(FitLine(nullptr, nullptr, 0, out), 1);
  EXPECT_EQ(Row(out, out + 2), Row({0, 0}));
}

TEST(FitLineToBytes, FitsSlopeAndOffset) {
  const double x[] = {0, 2};
  const std::uint8_t y[] = {250, 10};
  double out[2];
  EXPECT_EQ(FitLineToBytes(x, y, 2, out), 1);
  EXPECT_DOUBLE_EQ(out[0], -120.0);
  EXPECT_DOUBLE_EQ(out[1], 250.0);
}

}  // namespace
}  // namespace corvane
