#include "Wavelet/Wavelet.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <numeric>
#include <random>

namespace corvane {
namespace {

using testing::DoubleNear;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pointwise;

constexpr double kRounded = 1e-10;  // the filters have 14 digits
const double kRoot2 = std::sqrt(2.0);

Wavelet WaveletOf(const char* name) {
  Wavelet wavelet;
  EXPECT_EQ(wavelet.SetFilter(name), 1);
  return wavelet;
}

std::vector<double> RandomSignal(std::size_t n) {
  std::mt19937 random(static_cast<unsigned>(n));
  std::vector<double> signal(n);
  for (double& sample : signal) sample = static_cast<double>(random() % 256);
  return signal;
}

std::vector<double> FirstOf(const std::vector<double>& numbers, std::size_t n) {
  return {numbers.begin(), numbers.begin() + static_cast<std::ptrdiff_t>(n)};
}

// Coefficient k of a level by the filters themselves: the convolution's sample 2k + 1, its terms from the
// last tap to the first.
double Coefficient(const std::vector<double>& signal, const std::vector<double>& filter, std::size_t k) {
  const auto last = static_cast<std::ptrdiff_t>(signal.size()) - 1;
  double sum = 0.0;
  for (std::size_t t = filter.size(); t-- > 0;) {
    const std::ptrdiff_t place = static_cast<std::ptrdiff_t>(2 * k + 1) - static_cast<std::ptrdiff_t>(t);
    sum += signal[static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(place, 0, last))] * filter[t];
  }
  return sum;
}

TEST(WaveletTest, FiltersFollowFromTheBaseFilter) {
  const Wavelet wavelet = WaveletOf("db2");
  EXPECT_EQ(wavelet.m_length, 4);
  EXPECT_THAT(wavelet.m_loD,
              ElementsAre(-0.12940952255092, 0.22414386804186, 0.83651630373747, 0.48296291314469));
  EXPECT_THAT(wavelet.m_hiD,
              ElementsAre(-0.48296291314469, 0.83651630373747, -0.22414386804186, -0.12940952255092));
  EXPECT_THAT(wavelet.m_loR,
              ElementsAre(0.48296291314469, 0.83651630373747, 0.22414386804186, -0.12940952255092));
  EXPECT_THAT(wavelet.m_hiR,
              ElementsAre(-0.12940952255092, -0.22414386804186, 0.83651630373747, -0.48296291314469));
}

TEST(WaveletTest, SetFilterRefusesDb3AtIsKnown) {
  EXPECT_EQ(Wavelet::IsKnown("db1"), 1);
  EXPECT_EQ(Wavelet::IsKnown("db2"), 1);
  for (const char* name : {"db3", "db4", "", "DB1", "db1 "}) EXPECT_EQ(Wavelet::IsKnown(name), -1) << name;
  Wavelet wavelet = WaveletOf("db2");
  EXPECT_EQ(wavelet.SetFilter("db3"), -1);
  EXPECT_EQ(wavelet.m_length, 0);
  EXPECT_THAT(wavelet.m_loD, IsEmpty());
}

TEST(WaveletTest, Db1OfAnEvenSignalHasAsManyCoefficients) {
  std::vector<double> result;
  EXPECT_EQ(WaveletOf("db1").Decompose(std::vector<double>{1, 3, 4, 8}, result), 1);
  EXPECT_THAT(result, Pointwise(DoubleNear(kRounded), {4 / kRoot2, 12 / kRoot2, -2 / kRoot2, -4 / kRoot2}));
}

TEST(WaveletTest, AnOddSignalGetsOneMoreSampleAtTheRight) {
  std::vector<double> result;
  EXPECT_EQ(WaveletOf("db1").Decompose(std::vector<double>{1, 3, 4}, result), 1);
  EXPECT_THAT(result, Pointwise(DoubleNear(kRounded), {4 / kRoot2, 8 / kRoot2, -2 / kRoot2, 0.0}));
}

TEST(WaveletTest, DetailsOfAConstantSignalAreZero) {
  for (const char* name : {"db1", "db2"}) {
    std::vector<double> result;
    WaveletOf(name).Decompose(std::vector<double>(11, 5.0), result);
    const std::size_t half = result.size() / 2;
    for (std::size_t i = 0; i < half; ++i) {
      EXPECT_NEAR(result[i], 5 * kRoot2, kRounded);
      EXPECT_NEAR(result[half + i], 0.0, kRounded);
    }
  }
}

TEST(WaveletTest, CoefficientsAreEverySecondSampleOfTheConvolution) {
  for (const char* name : {"db1", "db2"}) {
    const Wavelet wavelet = WaveletOf(name);
    for (std::size_t n = 1; n < 20; ++n) {
      const std::vector<double> signal = RandomSignal(n);
      std::vector<double> result;
      ASSERT_EQ(wavelet.Decompose(signal, result), 1);
      const std::size_t half = (n - 1 + wavelet.m_loD.size()) / 2;
      ASSERT_EQ(result.size(), 2 * half);
      for (std::size_t k = 0; k < half; ++k) {
        EXPECT_EQ(result[k], Coefficient(signal, wavelet.m_loD, k)) << name << " " << n << " " << k;
        EXPECT_EQ(result[half + k], Coefficient(signal, wavelet.m_hiD, k)) << name << " " << n << " " << k;
      }
    }
  }
}

TEST(WaveletTest, BytesGiveWhatTheSameDoublesGive) {
  const Wavelet wavelet = WaveletOf("db2");
  const std::vector<double> signal = RandomSignal(37);
  const std::vector<std::uint8_t> bytes(signal.begin(), signal.end());
  std::vector<double> ofBytes, ofDoubles;
  std::vector<std::int32_t> lengths;
  wavelet.Decompose(bytes, ofBytes);
  wavelet.Decompose(signal, ofDoubles);
  EXPECT_EQ(ofBytes, ofDoubles);
  wavelet.DecomposeLevels(bytes, ofBytes, lengths, 3);
  wavelet.DecomposeLevels(signal, ofDoubles, lengths, 3);
  EXPECT_EQ(ofBytes, ofDoubles);
}

TEST(WaveletTest, ReconstructionGivesTheSignal) {
  for (const char* name : {"db1", "db2"}) {
    const Wavelet wavelet = WaveletOf(name);
    for (std::size_t n = 1; n < 40; ++n) {
      const std::vector<double> signal = RandomSignal(n);
      std::vector<double> coefficients, back;
      ASSERT_EQ(wavelet.Decompose(signal, coefficients), 1);
      ASSERT_EQ(wavelet.Reconstruct(coefficients, back), 1);
      EXPECT_EQ(back.size(), n + n % 2);
      EXPECT_THAT(FirstOf(back, n), Pointwise(DoubleNear(1e-9), signal)) << name;
    }
  }
}

TEST(WaveletTest, ReconstructionTakesBothHalvesThroughTheirFilters) {
  std::vector<double> back;  // of pairs x, y: the sums are x + y, the details x - y, over sqrt(2)
  EXPECT_EQ(WaveletOf("db1").Reconstruct(std::vector<double>{2, 0, 0, 4}, back), 1);
  EXPECT_THAT(back, Pointwise(DoubleNear(kRounded), {kRoot2, kRoot2, 2 * kRoot2, -2 * kRoot2}));
}

TEST(WaveletTest, LevelsAreStoredFromTheCoarsest) {
  std::vector<double> coefficients;
  std::vector<std::int32_t> lengths;
  const std::vector<double> signal = {1, 3, 5, 7, 9, 11, 13, 15};
  EXPECT_EQ(WaveletOf("db1").DecomposeLevels(signal, coefficients, lengths, 3), 1);
  EXPECT_THAT(lengths, ElementsAre(1, 1, 2, 4));
  const double sum = std::accumulate(signal.begin(), signal.end(), 0.0);
  EXPECT_THAT(coefficients, Pointwise(DoubleNear(kRounded), {sum / std::sqrt(8.0), -32 / std::sqrt(8.0), -4.0,
                                                             -4.0, -kRoot2, -kRoot2, -kRoot2, -kRoot2}));
}

TEST(WaveletTest, LevelsOfOddSizesReconstructTheSignal) {
  for (const char* name : {"db1", "db2"}) {
    const Wavelet wavelet = WaveletOf(name);
    for (std::size_t n = 1; n < 60; n += 3) {
      for (const int levels : {1, 2, 3, 10, Wavelet::kMostLevels}) {
        const std::vector<double> signal = RandomSignal(n);
        std::vector<double> coefficients, back;
        std::vector<std::int32_t> lengths;
        ASSERT_EQ(wavelet.DecomposeLevels(signal, coefficients, lengths, levels), 1);
        EXPECT_EQ(std::accumulate(lengths.begin(), lengths.end(), 0), std::ssize(coefficients));
        ASSERT_EQ(wavelet.ReconstructLevels(coefficients, lengths, back, levels), 1);
        ASSERT_EQ(back.size(), n + n % 2);
        EXPECT_THAT(FirstOf(back, n), Pointwise(DoubleNear(1e-8), signal)) << name << " " << levels;
      }
    }
  }
}

TEST(WaveletTest, ApproximationOfDb1IsTheMeanOfPairs) {
  const std::vector<std::uint8_t> bytes = {1, 3, 200, 100, 7};
  std::vector<double> result;
  EXPECT_EQ(WaveletOf("db1").ApproximateBytes(bytes, result, 1), 1);
  EXPECT_THAT(result, Pointwise(DoubleNear(kRounded), {2.0, 2.0, 150.0, 150.0, 7.0}));
  EXPECT_EQ(WaveletOf("db1").ApproximateBytes(std::vector<std::uint8_t>{1, 3, 200, 100}, result, 2), 1);
  EXPECT_THAT(result, Pointwise(DoubleNear(kRounded), {76.0, 76.0, 76.0, 76.0, 7.0}));
}

TEST(WaveletTest, ApproximationFillsOnlyTheRoomThatIsThere) {
  std::vector<double> result(2);
  EXPECT_EQ(WaveletOf("db2").ApproximateBytes(std::vector<std::uint8_t>(9, 40), result, 2), 1);
  EXPECT_THAT(result, Pointwise(DoubleNear(kRounded), {40.0, 40.0}));
}

TEST(WaveletTest, NothingComesWithoutAFilter) {
  const Wavelet wavelet;
  const std::vector<double> signal = {1, 2, 3};
  std::vector<double> result = {1};
  std::vector<std::int32_t> lengths = {1, 1};
  EXPECT_EQ(wavelet.Decompose(signal, result), -1);
  EXPECT_THAT(result, IsEmpty());
  EXPECT_EQ(wavelet.Reconstruct(signal, result), -1);
  EXPECT_EQ(wavelet.ReconstructLevels(signal, lengths, result, 1), -1);
  EXPECT_EQ(wavelet.DecomposeLevels(signal, result, lengths, 1), -1);
  EXPECT_THAT(lengths, IsEmpty());
  EXPECT_EQ(wavelet.ApproximateBytes(std::vector<std::uint8_t>{1}, result, 1), -1);
}

TEST(WaveletTest, SignalsAndCoefficientsThatAreTooShortGiveNothing) {
  const Wavelet wavelet = WaveletOf("db2");
  std::vector<double> result;
  EXPECT_EQ(wavelet.Decompose(std::vector<double>{}, result), -1);
  for (const std::size_t n : {0u, 1u, 2u}) {
    EXPECT_EQ(wavelet.Reconstruct(std::vector<double>(n), result), -1) << n;
  }
  EXPECT_EQ(wavelet.Reconstruct(std::vector<double>{1, 2, 3}, result), 1);  // an odd count
  EXPECT_EQ(result.size(), 1u);
  EXPECT_THAT(result, Each(testing::Not(testing::IsNan())));
}

TEST(WaveletTest, LevelsOutOfRangeGiveNothing) {
  const Wavelet wavelet = WaveletOf("db1");
  const std::vector<double> signal(8, 1.0);
  std::vector<double> result;
  std::vector<std::int32_t> lengths;
  const std::vector<std::int32_t> manyLengths(Wavelet::kMostLevels + 2, 1);
  const std::vector<double> many(manyLengths.size(), 1.0);
  EXPECT_EQ(wavelet.ReconstructLevels(many, manyLengths, result, Wavelet::kMostLevels), 1);
  for (const int levels : {INT32_MIN, -1, 0, Wavelet::kMostLevels + 1, INT32_MAX}) {
    EXPECT_EQ(wavelet.DecomposeLevels(signal, result, lengths, levels), -1) << levels;
    EXPECT_EQ(wavelet.ReconstructLevels(many, manyLengths, result, levels), -1) << levels;
    EXPECT_THAT(result, IsEmpty());
    EXPECT_EQ(wavelet.ApproximateBytes(std::vector<std::uint8_t>(8), result, levels), -1);
  }
}

TEST(WaveletTest, AResultMayBeTheVectorOfTheInput) {
  const Wavelet wavelet = WaveletOf("db2");
  const std::vector<double> signal = RandomSignal(21);
  std::vector<double> expected, numbers = signal;
  std::vector<std::int32_t> lengths;
  wavelet.Decompose(signal, expected);
  EXPECT_EQ(wavelet.Decompose(numbers, numbers), 1);
  EXPECT_EQ(numbers, expected);
  EXPECT_EQ(wavelet.Reconstruct(numbers, numbers), 1);
  EXPECT_THAT(FirstOf(numbers, 21), Pointwise(DoubleNear(1e-9), signal));
  numbers = signal;
  wavelet.DecomposeLevels(signal, expected, lengths, 3);
  EXPECT_EQ(wavelet.DecomposeLevels(numbers, numbers, lengths, 3), 1);
  EXPECT_EQ(numbers, expected);
  EXPECT_EQ(wavelet.ReconstructLevels(numbers, lengths, numbers, 3), 1);
  EXPECT_THAT(FirstOf(numbers, 21), Pointwise(DoubleNear(1e-9), signal));
  EXPECT_EQ(wavelet.DecomposeLevels(numbers, numbers, lengths, 0), -1);
  EXPECT_THAT(numbers, IsEmpty());
}

TEST(WaveletTest, LengthsThatDoNotFitTheCoefficientsGiveNothing) {
  const std::vector<double> coefficients(8, 1.0);
  const std::vector<std::vector<std::int32_t>> all = {
      {4, 5},    {4, 0},     {4, -1},        {4, INT32_MAX},    {2, 2, 5},     {2, 2, 0},
      {1, 4, 4}, {2, 2, -4}, {4, INT32_MIN}, {2, 2, INT32_MAX}, {1, 1, 1, 100}};
  for (const auto& lengths : all) {
    std::vector<double> result = {1};
    const int levels = static_cast<int>(lengths.size()) - 1;
    EXPECT_EQ(WaveletOf("db1").ReconstructLevels(coefficients, lengths, result, levels), -1)
        << testing::PrintToString(lengths);
    EXPECT_THAT(result, IsEmpty());
  }
}

}  // namespace
}  // namespace corvane
