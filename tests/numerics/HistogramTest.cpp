#include "numerics/Histogram.h"

#include <gtest/gtest.h>

#include <cmath>

namespace corvane {
namespace {

constexpr auto kItself = [](double value) { return value; };

TEST(Histogram, BinsBeginAtTheMinimum) {
  const std::vector<double> values = {1.0, 1.49, 1.5, 2.0, 2.2};
  Histogram histogram;
  EXPECT_EQ(MakeHistogram(values, kItself, 1.0, 2.2, 0.5, histogram), 1);
  EXPECT_EQ(histogram.binStarts, (std::vector<double>{1.0, 1.5, 2.0}));
  EXPECT_EQ(histogram.counts, (std::vector<std::int32_t>{2, 1, 2}));
}

TEST(Histogram, OneValueMakesOneBin) {
  const std::vector<double> values = {7.0, 7.0};
  Histogram histogram;
  EXPECT_EQ(MakeHistogram(values, kItself, 7.0, 7.0, 0.1, histogram), 1);
  EXPECT_EQ(histogram.counts, (std::vector<std::int32_t>{2}));
}

TEST(Histogram, FindsMinimumAndMaximum) {
  const std::vector<double> values = {2.0, -1.0, std::nan(""), 0.5};
  Histogram histogram;
  EXPECT_EQ(MakeHistogram(values, kItself, 1.5, histogram), 1);
  EXPECT_EQ(histogram.binStarts, (std::vector<double>{-1.0, 0.5, 2.0}));
  EXPECT_EQ(histogram.counts, (std::vector<std::int32_t>{1, 1, 1}));
  EXPECT_EQ(MakeHistogram(values, kItself, 0.0, histogram), -1);
  EXPECT_EQ(MakeHistogram(std::vector<double>{std::nan("")}, kItself, 1.0, histogram), -1);
  EXPECT_EQ(MakeHistogram(std::vector<double>(), kItself, 1.0, histogram), -1);
  EXPECT_EQ(MakeHistogram(std::vector<double>{1.0, INFINITY}, kItself, 1.0, histogram), -1);
}

TEST(Histogram, MinimumAndMaximumOf0AreFound) {
  const std::vector<double> values = {3.0, -2.0, 0.0};
  Histogram histogram;
  EXPECT_EQ(MakeHistogram(values, kItself, 0.0, -0.0, 2.5, histogram), 1);
  EXPECT_EQ(histogram.binStarts, (std::vector<double>{-2.0, 0.5, 3.0}));
  EXPECT_EQ(histogram.counts, (std::vector<std::int32_t>{2, 0, 1}));
  EXPECT_EQ(MakeHistogram(values, kItself, 0.0, 3.0, 3.0, histogram), 1);  // a maximum is given
  EXPECT_EQ(histogram.counts, (std::vector<std::int32_t>{2, 1}));          // Kept: -2 / 3 is cut to 0
  EXPECT_EQ(MakeHistogram(std::vector<double>{0.0, 0.0}, kItself, 0.0, 0.0, 1.0, histogram), 1);
  EXPECT_EQ(histogram.binStarts, (std::vector<double>{0.0}));
  EXPECT_EQ(histogram.counts, (std::vector<std::int32_t>{2}));
}

TEST(Histogram, ValuesThatAreNoNumbersAreNotCounted) {
  const std::vector<double> values = {1.0, std::nan(""), INFINITY, 1e300, -5.0};
  Histogram histogram;
  EXPECT_EQ(MakeHistogram(values, kItself, 1.0, 2.0, 1.0, histogram), 1);
  EXPECT_EQ(histogram.counts, (std::vector<std::int32_t>{1, 0}));
}

TEST(Histogram, BinsThatCanNotBeFail) {
  Histogram histogram;
  for (const double binSize : {0.0, -1.0, 1e-9, 1e-300, HUGE_VAL, -HUGE_VAL, std::nan("")})
    EXPECT_EQ(MakeBins(0.0, 1.0, binSize, histogram), -1);
  EXPECT_EQ(MakeBins(0.0, 0.0, 0.0, histogram), -1);
  EXPECT_EQ(MakeBins(0.0, INFINITY, 1.0, histogram), -1);
  EXPECT_EQ(MakeBins(std::nan(""), 1.0, 1.0, histogram), -1);
  EXPECT_EQ(MakeBins(2.0, 1.0, 0.1, histogram), -1);
  EXPECT_EQ(histogram.GetBinCount(), 0);
  EXPECT_EQ(MakeBins(0.0, 9999999.0, 1.0, histogram), 1);
  EXPECT_EQ(histogram.GetBinCount(), Histogram::kMaxBins);
  EXPECT_EQ(MakeBins(0.0, 10000000.0, 1.0, histogram), -1);
}

TEST(HistogramThresh, IsTheEdgeOfTheBinInWhichTheSumIsReached) {
  const Histogram histogram = {{0.0, 1.0, 2.0, 3.0}, {60, 30, 6, 4}};
  double threshold = kNoThreshold;
  EXPECT_EQ(HistogramThresh(100, histogram, 0.05, threshold), 10);
  EXPECT_EQ(threshold, 2.0);
  EXPECT_EQ(HistogramThresh(100, histogram, 0.04, threshold), 4);
  EXPECT_EQ(threshold, 3.0);
}

TEST(HistogramThresh, TargetOf0IsReachedInTheTopBin) {
  const Histogram histogram = {{0.0, 1.0}, {19, 0}};
  double threshold = kNoThreshold;
  EXPECT_EQ(HistogramThresh(19, histogram, 0.05, threshold), 0);
  EXPECT_EQ(threshold, 1.0);
}

TEST(HistogramThreshold, StaysWhereTheSumIsNotReached) {
  double threshold = kNoThreshold;
  EXPECT_EQ(HistogramThreshold(100, {{0.0}, {4}}, 0.05, threshold), 4);
  EXPECT_EQ(threshold, kNoThreshold);
  EXPECT_EQ(HistogramThreshold(0, {}, 0.05, threshold), -1);
  EXPECT_EQ(threshold, kNoThreshold);
}

TEST(HistogramThresh, StopsInTheFirstBinWhereTheSumIsNotReached) {
  double threshold = kNoThreshold;
  EXPECT_EQ(HistogramThresh(100, {{2.5, 3.5}, {3, 1}}, 0.05, threshold), 4);
  EXPECT_EQ(threshold, 2.5);
}

TEST(HistogramThresh, StaysWithoutBinsOrWithoutACountForEach) {
  double threshold = kNoThreshold;
  EXPECT_EQ(HistogramThresh(0, {}, 0.05, threshold), -1);
  EXPECT_EQ(HistogramThresh(4, {{0.0}, {4, 4}}, 0.05, threshold), -1);
  EXPECT_EQ(HistogramThresh(4, {{0.0, 1.0}, {4}}, 0.05, threshold), -1);
  EXPECT_EQ(HistogramThresh(4, {{}, {4}}, 0.05, threshold), -1);
  EXPECT_EQ(threshold, kNoThreshold);
}

TEST(HistogramEntropy, IsThatOfTheShares) {
  const std::int32_t even[] = {25, 25, 0, 25, 25};
  EXPECT_DOUBLE_EQ(HistogramEntropy(100, even), std::log(4.0));
  const std::int32_t uneven[] = {1, 3};
  EXPECT_DOUBLE_EQ(HistogramEntropy(4, uneven), -(0.25 * std::log(0.25) + 0.75 * std::log(0.75)));
  const std::int32_t one[] = {0, 7};
  EXPECT_EQ(HistogramEntropy(7, one), 0.0);
  EXPECT_TRUE(std::isnan(HistogramEntropy(0, std::vector<std::int32_t>())));
}

}  // namespace
}  // namespace corvane
