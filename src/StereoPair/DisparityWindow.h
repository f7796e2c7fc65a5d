#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "StereoPair/DisparityPasses.h"
#include "StereoPair/WindowBytes.h"
#include "erdasimg/ErdasImg.h"

namespace corvane {

// Whether as many numbers, each a double, fit half of the machine's memory.
bool FitNumbers(double n);

// Dense equations take n^2 operations an observation, and n^3 for their solution: with more unknowns than
// these, minutes.
constexpr double kMostDenseUnknowns = 4096.0;

// Whether the dense equations of m observations of n unknowns can be solved: no more unknowns than those, and
// the design, the normal equations and `nBeside` numbers fit.
bool FitsDenseEquations(double m, double n, double nBeside);

// The map's disparity at a pixel, or the other value where it has none.
double StartDisparity(const ErdasImg* map, std::int64_t row, std::int64_t col, double otherwise);

// A window of the left image, every pixel of which has a column disparity of its own, and what the right
// image has at column - disparity, row - rowDisparity. Throws std::bad_alloc.
class DisparityWindow {
 public:
  DisparityWindow(const ErdasImg& left, const ErdasImg& right, const WindowCorner& corner,
                  const DisparityLattice& lattice, double rowDisparity);

  const DisparityLattice& GetLattice() const { return lattice_; }
  std::size_t GetCount() const { return pattern_.size(); }

  // How many numbers a pixel takes, those of its disparities and their correction included.
  static constexpr double kNumbersOfPixel = 12.0;

  // Samples the right image with the disparities; the values are gain * sample + shift. A place outside of it
  // has the left image's pixel as sample and value, and no gradient.
  void Sample(std::span<const double> disparities, double gain, double shift);

  // The correlation coefficient of the left image's pixels with the values.
  double GetScore() const;

  // Of pixel i.
  double GetSample(std::size_t i) const { return samples_[i]; }
  // What the value grows by with the disparity.
  double GetFactor(std::size_t i) const { return -gradients_[i]; }
  // What the value lacks.
  double GetObservation(std::size_t i) const { return pattern_[i] - values_[i]; }

 private:
  const ErdasImg& right_;
  DisparityLattice lattice_;
  std::vector<std::uint8_t> pattern_;
  double sum_ = 0.0;  // of the pattern
  double sumSq_ = 0.0;
  std::vector<double> leftCols_;
  std::vector<double> rows_;  // in the right image
  std::vector<double> cols_;
  std::vector<double> samples_;
  std::vector<double> values_;
  std::vector<double> gradients_;  // of the values, along the row
  std::vector<double> gRow_;
};

}  // namespace corvane
