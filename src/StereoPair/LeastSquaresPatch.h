#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "StereoPair/LsmParameters.h"
#include "erdasimg/ErdasImg.h"
#include "numerics/Matrix.h"
#include "numerics/Point2.h"

namespace corvane {

// Whether a match may begin at the place: in [0, cols) x [0, rows), though not exactly on the last column or
// row, of an image that has pixels.
bool CanMatchAt(const ErdasImg& image, const Point2& place);

// The least-squares matching of a template that is given as a list of pixels: what is sampled, observed and
// adjusted in a pass. See LeastSquaresMatch.h. Who decides about passes is the caller.
class LeastSquaresPatch {
 public:
  static constexpr int kColumns = 8;        // of the design, in the order of LsmParameters
  static constexpr int kLockedColumns = 5;  // without the b

  // How an adjustment is made.
  struct Adjustment {
    bool usesPlaces;       // multiplies gradients by x' - x, y' - y, not by dx, dy
    bool isByGaussJordan;  // as LeastSquares; otherwise as LeastSquaresCholesky
    int nUnknowns;         // the first ones
  };

  // What the machine's memory, and the equations, allow.
  static std::int64_t MostPixels();

  // For `n` pixels of a template and the image to search in, which must stay. Without memory, or pixels,
  // HasRoom() is false.
  LeastSquaresPatch(const ErdasImg& search, std::int64_t n);

  bool HasRoom() const { return design_ && numbers_ && pattern_; }

  // The template: grey values, and offsets from its centre.
  std::span<std::uint8_t> GetPattern() { return {pattern_.get(), n_}; }
  void SetOffset(std::size_t i, double dx, double dy) {
    dx_[i] = dx;
    dy_[i] = dy;
  }

  // Samples the search image and its gradients with the patch at `position`.
  void Sample(const LsmParameters& parameters, const Point2& position);

  // The correlation coefficient of template and samples; the template's sums are told.
  double GetScore(double sum, double sumSq) const;

  // The adjustment's unknowns; x has room for kColumns, and is 0 where there is no unknown.
  void Adjust(const Adjustment& adjustment, double* x);

 private:
  bool IsOutside(std::size_t i) const;
  void FillDesign(bool usesPlaces);

  const ErdasImg& search_;
  std::size_t n_ = 0;
  OwnedArray<std::uint8_t> pattern_;
  OwnedArray<double> numbers_;  // those of the spans below, n of each
  OwnedMatrix design_;          // n x kColumns

  std::span<double> dx_;  // offsets in the template
  std::span<double> dy_;
  std::span<double> placeX_;  // x' - x
  std::span<double> placeY_;
  std::span<double> cols_;  // x'
  std::span<double> rows_;
  std::span<double> samples_;  // v
  std::span<double> gCol_;     // times r1
  std::span<double> gRow_;
  std::span<double> observations_;
};

}  // namespace corvane
