#pragma once

#include <cstddef>
#include <cstdint>

namespace corvane {

// Loops over lines of pixels, in the version of the machine code that fits. Each product and each sum is
// rounded by itself, in the order told, whatever the version. A line that is written does not overlap those
// that are read, unless told.

// to[i] = 0 + lines[0][i] * weights[0] + lines[1][i] * weights[1] + ... of `nLines` lines, added from left to
// right, for i < n. Floats make sums of floats, and doubles of doubles. Sums of floats from doubles are
// rounded to a float after each addition; the product and the addition are those of doubles.
template <typename Number, typename Sum>
void WeightedSum(const Number* const* lines, const Sum* weights, std::ptrdiff_t nLines, Sum* to,
                 std::ptrdiff_t n);

// The `n` pixels that begin at `pixels`, which need not be aligned, in another type.
template <typename Pixel, typename Number>
void ConvertLine(const std::uint8_t* pixels, Number* to, std::ptrdiff_t n);

// to[i] += line[i] for i < n.
template <typename Number>
void AddLine(Number* to, const Number* line, std::ptrdiff_t n);

// to[i] = sqrt(x[i] * x[i] + y[i] * y[i]) for i < n. `to` may be one of the lines.
template <typename Number>
void MagnitudeLine(const Number* x, const Number* y, Number* to, std::ptrdiff_t n);

// to[i] = a[i] * b[i] for i < n. `to` may be one of the lines.
template <typename Number>
void MultiplyLine(const Number* a, const Number* b, Number* to, std::ptrdiff_t n);

}  // namespace corvane
