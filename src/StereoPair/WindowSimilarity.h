#pragma once

#include <cstdint>
#include <optional>
#include <span>

namespace corvane {

// Measures of how alike two windows are, each given as its pixels, pixel by pixel. Two windows have the same
// number of pixels; of a longer one the rest is not looked at. Sums of bytes are whole numbers, and so exact
// in any order.

// With the sums of a, a^2, b, b^2, a b over n pixels, and vA = Saa - Sa Sa / n, vB = Sbb - Sb Sb / n:
// (Sab - Sa Sb / n) / sqrt(vA vB). 1.0 if vA and vB are 0, as two flat windows count as a perfect match; 0.0
// if one of them is. Not a number without pixels.
double CorrelationCoefficient(std::span<const std::uint8_t> a, std::span<const std::uint8_t> b);

// The same of doubles, added from the first to the last.
double CorrelationCoefficientOfDoubles(std::span<const double> a, std::span<const double> b);

// The same over the pixels whose mask is 1.
double CorrelationCoefficientMasked(std::span<const std::uint8_t> a, std::span<const std::uint8_t> b,
                                    std::span<const std::uint8_t> mask);

// The sum of |a - b|.
double SumAbsDifference(std::span<const std::uint8_t> a, std::span<const std::uint8_t> b);

// The mean of |a - b| / a. A pixel a = 0 divides by zero: the result is infinite then, or, if b = 0 there,
// not a number.
double RelativeAbsDifference(std::span<const std::uint8_t> a, std::span<const std::uint8_t> b);

// The sum of (a - b)^2.
double SumSquaredDifference(std::span<const std::uint8_t> a, std::span<const std::uint8_t> b);

// The sample standard deviation of a - b: sqrt((sum of squares - n mean^2) / (n - 1)); 0 for n < 2.
double DiffStdev(std::span<const std::uint8_t> a, std::span<const std::uint8_t> b);

// The number of pixels with a = b, without those of the background if there is one.
std::int64_t MatchedPixelCount(std::span<const std::uint8_t> a, std::span<const std::uint8_t> b,
                               std::optional<std::uint8_t> background = std::nullopt);

// The number of pixels unlike the background; all of them without one.
std::int64_t NonBackgroundCount(std::span<const std::uint8_t> pixels, std::optional<std::uint8_t> background);

// What the coefficient is made of.
struct CorrelationSums {
  double n = 0.0;
  double a = 0.0;
  double aa = 0.0;
  double b = 0.0;
  double bb = 0.0;
  double ab = 0.0;

  double GetCoefficient() const;
};

CorrelationSums SumPixels(std::span<const std::uint8_t> a, std::span<const std::uint8_t> b);

}  // namespace corvane
