#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "numerics/Matrix.h"

namespace corvane {

// Normal equations of observations that each tie a few neighbouring unknowns: the matrix is zero but for a
// band around its diagonal. The same sums and the same solution, bit for bit, as WeightedLeastSquaresCholesky
// makes of the observations in the same order: what is left out are products with zeros. If one of the
// unknowns is not finite all are NaN, as those products would make them.
//
// Cost: n band^2 operations for a solution, where the full matrix takes n^3 / 3.
class BandedEquations {
 public:
  // How many numbers it holds for n unknowns.
  static double CountNumbers(double n, double band) { return n * (2.0 * band + 3.0); }

  // For n unknowns of which no observation ties two that are more than `band` apart. Without memory
  // HasRoom() is false.
  BandedEquations(std::size_t n, std::size_t band);

  bool HasRoom() const { return columns_ && vector_ && pivots_; }

  // Sets all sums to zero.
  void Clear();

  // Adds an observation l = sum of factors[k] x[unknowns[k]], with the unknowns in ascending order.
  void Add(std::span<const std::size_t> unknowns, std::span<const double> factors, double l, double weight);

  // The solution, n numbers. Destroys the sums.
  // Kept: where a pivot is not positive it is the equations' vector.
  void Solve(double* x);

 private:
  double* GetColumn(std::size_t i) { return columns_.get() + i * stride_; }
  bool Decompose();
  void MakeColumn(std::size_t i);
  void Substitute(double* x);

  std::size_t n_;
  std::size_t band_;
  std::size_t stride_;  // of a column: from its diagonal on, and as many zeros behind the band
  OwnedArray<double> columns_;
  OwnedArray<double> vector_;
  OwnedArray<double> pivots_;
};

}  // namespace corvane
