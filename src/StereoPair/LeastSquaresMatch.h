#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "StereoPair/LsmParameters.h"
#include "erdasimg/ErdasImg.h"
#include "numerics/Point2.h"

namespace corvane {

struct MatchRegion;

// Least-squares image matching moves and shapes a patch of a search image until its grey values fit those of
// a template: see LsmParameters.h.
//
// A match takes up to 19 passes, counted from 1. A pass samples the search image (bilinear samples, central
// differences as gradients) and correlates the template with the samples, which is the score. With the
// differences, template minus sample, as observations it adjusts the eight parameters. A match ends
//   Converged    after one pass more, which makes the score alone: when a pass moves the patch by less than
//                0.15 pixel in each direction;
//   Oscillating  likewise: when the patch jumps to and fro between two places;
//   Irregular    in pass 19, whose score it is;
//   Diverge      at once, with the score 0.0: when shift or step exceed 10.0 pixels in a pass that does not
//                converge, or a parameter is not finite.
// All but Diverge move the position, and the caller asks whether the score is above its threshold.
//
// Pixels that come to lie outside of the search image, beyond [0, cols) x [0, rows), count as fitting: their
// sample is the template's grey value, their gradients are 0. Samples behind the centres of the last row and
// column mix in the background of ErdasImg::GetPixelBilinear.
//
// Kept: whether a system of equations could be solved is not looked at; the parameters take whatever the
// solver has left. And a patch that has left the image fits perfectly.
enum class LsmOutcome { Converged, Oscillating, Irregular, Diverge };

// "Converged", and so on.
const char* LsmOutcomeName(LsmOutcome outcome);

// The correlation coefficient of the first n numbers of template and samples, n being the smaller count:
// (p - s S / n) / sqrt((Q - S^2 / n) (q - s^2 / n)), S and Q being the template's sum and sum of squares, s,
// q and p the sums of samples, their squares and products with the template, from the first to the last. 1.0
// if both variances are 0, 0.0 if one is. Samples that differ by rounding alone have the variance 0.
// 0.0 without pixels.
double CorrelationOfPatch(std::span<const std::uint8_t> pattern, std::span<const double> samples, double sum,
                          double sumSq);
// The same for a template of doubles.
double CorrelationOfPatchDoubles(std::span<const double> pattern, std::span<const double> samples, double sum,
                                 double sumSq);

// Matches a template around `position` in the search image, x being the column. The template's centre is at
// column cols / 2 - 0.5 and row rows / 2 - 0.5, in doubles; its pixels are the bytes of band 0. Its sums are
// made by ComputeSums where m_pixelSumSq is negative, and believed otherwise.
//
// The adjustment is by LeastSquaresCholesky over the columns 1, v, gCol, dx gCol, dy gCol, gRow, dx gRow,
// dy gRow, gradients times r1; the step is composed with the parameters.
//
// `log`, if given, gets a line of the score, a0 and b0, cut to three decimals, and an empty line for each
// pass that adjusts, and the outcome at the end.
//
// Returns the score; -1.0, with nothing changed, without pixels or memory, and for a position outside of
// [0, cols) x [0, rows) of the search image, or exactly on its last column or row.
// Kept: of an oscillating match the row stays and the column gets two additions: of the ring's a0 [3] or the
// template's centre column, and of its b0 [3] or a0 [0], the smaller in magnitude each.
double LeastSquaresMatch(const ErdasImg& search, ErdasImg& pattern, Point2& position,
                         LsmParameters& parameters, std::string* log = nullptr);

// The same with x' - x, y' - y in place of dx, dy in the columns, solved by LeastSquares, the steps added to
// the parameters, and the steps of a0 and b0 as what decides about convergence and divergence. The lines
// "score a0 b0", the outcome and the final "x y" go to `log` or, without one, to the debug stream.
double LeastSquaresMatchTemplate(const ErdasImg& search, ErdasImg& pattern, Point2& position,
                                 LsmParameters& parameters, std::string* log = nullptr);

// A pixel of the left image.
struct RegionPixel {
  std::int32_t col = 0;
  std::int32_t row = 0;
  std::uint8_t value = 0;

  friend bool operator==(const RegionPixel&, const RegionPixel&) = default;
};
using RegionPixels = std::vector<RegionPixel>;

// The pixels that stand for a region, always those on the left image alone.
enum class RegionMode {
  All = 1,        // those of its runs; fewer than 8 are too few
  ScanLines = 2,  // the same, from the cache; made there, if it is empty
  // Its bounding box, grown to odd numbers of columns and rows around its centre: columns trunc(centerX) -
  // half to trunc(centerX) + half, with half = ceil((rightBound - leftBound - 1) / 2), not below 0; rows
  // likewise.
  Rectangle = 3,
};

// Matches the pixels of a region of the left image. The integer part of `position` is where offsets count
// from, (dx, dy) = (col - x, row - y), and where the patch is: with a0 = b0 = 0 it begins at the same columns
// and rows in the search image. So a match usually starts at the region's centre, with a0 the column of the
// right image less that of the left one.
//
// As LeastSquaresMatchTemplate, but with dx, dy in the columns; only the steps of a0 and b0 are held against
// 10.0, not a0 and b0 themselves; and there is no "Oscillating". A row-locked match leaves the b alone, and
// each pixel in its row. "\nRegion ID: ", the id and a newline go to the debug stream, and the outcome at the
// end.
//
// Rows, runs, centres and bounds that are not finite have no pixels.
//
// Returns the score; -1.0, with nothing changed, as LeastSquaresMatch, and without pixels, or enough of them.
double LeastSquaresMatchRegion(const ErdasImg& left, const ErdasImg& search, const MatchRegion& region,
                               Point2& position, LsmParameters& parameters, RegionMode mode, bool isRowLocked,
                               RegionPixels* cache = nullptr);

}  // namespace corvane
