#include "plot/AxisText.h"

#include <gtest/gtest.h>

#include <clocale>

namespace corvane {
namespace {

TEST(AxisText, HasTheDecimalsOfTheStep) {
  EXPECT_EQ(AxisText(636001.75, 0.25), "636001.75");
  EXPECT_EQ(AxisText(636001.5, 0.5), "636001.5");
  EXPECT_EQ(AxisText(636001.0, 0.5), "636001.0");
  EXPECT_EQ(AxisText(4851000.0, 20.0), "4851000");
  EXPECT_EQ(AxisText(122.5, 2.5), "122.5");
  EXPECT_EQ(AxisText(0.3, 0.1), "0.3");
  EXPECT_EQ(AxisText(0.1 + 0.2, 0.1), "0.3");
  EXPECT_EQ(AxisText(-1e-9, 1e-9), "-0.000000001");
}

TEST(AxisText, ZeroHasNoSign) {
  EXPECT_EQ(AxisText(-0.0, 1.0), "0");
  EXPECT_EQ(AxisText(-1e-17, 0.1), "0.0");
}

TEST(AxisText, FarNumbersTakeAnExponent) {
  EXPECT_EQ(AxisText(2e20, 5e19), "2e+20");
  EXPECT_EQ(AxisText(1.25e-12, 2.5e-13), "1.25e-12");
  EXPECT_EQ(AxisText(-3e-15, 1e-15), "-3e-15");
  EXPECT_EQ(AxisText(0.0, 1e-15), "0");
  EXPECT_EQ(AxisText(999999999999999.0, 1.0), "999999999999999");
}

TEST(AxisText, TheDesktopsLanguageDoesNotCount) {
  if (!std::setlocale(LC_NUMERIC, "de_DE.UTF-8")) GTEST_SKIP() << "there is no such language here";
  EXPECT_EQ(AxisText(0.5, 0.5), "0.5");
  std::setlocale(LC_NUMERIC, "C");
}

}  // namespace
}  // namespace corvane
