#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "ImgProcess/ImgProcess.h"

namespace corvane {
namespace {

using testing::ElementsAre;

double SumOf(const Kernel1D& kernel) {
  double sum = 0.0;
  for (const double value : kernel.values) sum += value;
  return sum;
}

TEST(HasGaussian, WithSigmasFrom0ToTheWidest) {
  for (const double sigma : {0.0, -0.0, 1e-300, 2.0, 10000.0}) EXPECT_TRUE(ImgProcess::HasGaussian(sigma));
  for (const double sigma : {-1e-300, -1.0, 10000.001, HUGE_VAL, std::nan("")}) {
    EXPECT_FALSE(ImgProcess::HasGaussian(sigma)) << sigma;
  }
}

TEST(Gaussian, ReachesThreeSigmaOnEachSide) {
  const std::pair<double, int> sizes[] = {{0.1, 3}, {1.0, 7}, {1.01, 9}, {2.0, 13}, {3.0, 19}};
  for (const auto& [sigma, size] : sizes) {
    Kernel1D kernel;
    EXPECT_EQ(ImgProcess::MakeGaussian(sigma, kernel), 1);
    EXPECT_EQ(kernel.size, size) << sigma;
    EXPECT_TRUE(kernel.IsWhole());
    EXPECT_NEAR(SumOf(kernel), 1.0, 1e-15);
  }
}

TEST(Gaussian, HasTheValuesOfTheFormula) {
  Kernel1D kernel;
  ASSERT_EQ(ImgProcess::MakeGaussian(1.0, kernel), 1);
  const double sum = 1.0 + 2.0 * (std::exp(-0.5) + std::exp(-2.0) + std::exp(-4.5));
  EXPECT_DOUBLE_EQ(kernel.values[3], 1.0 / sum);
  EXPECT_DOUBLE_EQ(kernel.values[4], std::exp(-0.5) / sum);
  EXPECT_DOUBLE_EQ(kernel.values[5], std::exp(-2.0) / sum);
  EXPECT_DOUBLE_EQ(kernel.values[6], std::exp(-4.5) / sum);
  for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(kernel.values[i], kernel.values[6 - i]);
}

TEST(Gaussian, OfSigma0IsOneValueThatIsNotANumber) {
  Kernel1D kernel;
  EXPECT_EQ(ImgProcess::MakeGaussian(0.0, kernel), 1);
  EXPECT_EQ(kernel.size, 1);
  ASSERT_EQ(kernel.values.size(), 1u);
  EXPECT_TRUE(std::isnan(kernel.values[0]));
}

TEST(Gaussian, OfASigmaThatMakesNoKernelFails) {
  for (const double sigma : {-1.0, -1e-300, 10000.5, 1e9, 1e300, HUGE_VAL, -HUGE_VAL, std::nan("")}) {
    Kernel1D kernel = {1, {1.0}};
    EXPECT_EQ(ImgProcess::MakeGaussian(sigma, kernel), -1) << sigma;
    EXPECT_FALSE(kernel.IsWhole());
    EXPECT_EQ(ImgProcess::MakeGaussian2nd(sigma, kernel), -1) << sigma;
    EXPECT_FALSE(kernel.IsWhole());
  }
}

TEST(Gaussian, OfTheLargestSigma) {
  Kernel1D kernel;
  EXPECT_EQ(ImgProcess::MakeGaussian(ImgProcess::kMaxSigma, kernel), 1);
  EXPECT_EQ(kernel.size, 60001);
}

TEST(Gaussian2nd, IsTheGaussianTimesItsCurveLessTheMean) {
  Kernel1D kernel;
  ASSERT_EQ(ImgProcess::MakeGaussian2nd(2.0, kernel), 1);
  ASSERT_EQ(kernel.size, 13);
  double sum = 0.0;
  for (int x = -6; x <= 6; ++x) sum += std::exp(-x * x / 8.0);
  double mean = 0.0;
  for (int x = -6; x <= 6; ++x) mean += std::exp(-x * x / 8.0) / sum * (x * x - 4.0) / 16.0 / 13.0;
  for (int x = -6; x <= 6; ++x) {
    const double expected = std::exp(-x * x / 8.0) / sum * (x * x - 4.0) / 16.0 - mean;
    EXPECT_NEAR(kernel.values[static_cast<std::size_t>(x + 6)], expected, 1e-16);
  }
  EXPECT_NEAR(SumOf(kernel), 0.0, 1e-16);
}

TEST(CentralDifference, IsHalfTheDifferenceOfTheNeighbours) {
  Kernel1D kernel;
  ImgProcess::MakeCentralDifference(kernel);
  EXPECT_EQ(kernel.size, 3);
  EXPECT_THAT(kernel.values, ElementsAre(-0.5, 0.0, 0.5));
}

}  // namespace
}  // namespace corvane
