#include "numerics/LeastSquares.h"

#include <algorithm>

#include "numerics/NormalEquations.h"
#include "numerics/Solvers.h"

namespace corvane {

namespace {

enum class Outcome { Solved, Unsolved, NoMemory };

Outcome SolveByGaussJordan(ConstMatrix a, const double* l, const double* w, int m, int n, double* x) {
  const OwnedMatrix normal(AllocMatrix(n, n));
  const OwnedMatrix rhs(AllocMatrix(n, 1));
  if (!normal || !rhs || BuildNormalMatrix(a, w, m, n, normal.get()) < 0) return Outcome::NoMemory;
  BuildNormalVector(a, l, w, m, n, rhs[0]);  // one column: the rows are neighbours
  const int result = GaussJordan(normal.get(), n, rhs.get(), 1);
  std::copy_n(rhs[0], n, x);
  return result == 1 ? Outcome::Solved : Outcome::Unsolved;
}

Outcome SolveByCholesky(ConstMatrix a, const double* l, const double* w, int m, int n, double* x) {
  const OwnedMatrix normal(AllocMatrix(n, n));
  const OwnedArray<double> rhs = NewArray<double>(n);
  if (!normal || !rhs || BuildNormalMatrix(a, w, m, n, normal.get()) < 0) return Outcome::NoMemory;
  BuildNormalVector(a, l, w, m, n, rhs.get());
  const int result = CholeskySolve(normal.get(), n, rhs.get());
  std::copy_n(rhs.get(), n, x);
  return result == 1 ? Outcome::Solved : Outcome::Unsolved;
}

// Kept: the solver's result is dropped, only exhausted memory is a failure.
int DropSolverResult(Outcome outcome) {
  return outcome == Outcome::NoMemory ? -1 : 1;
}

template <typename Height>
int FitLineTo(const double* x, const Height* y, int n, double* out) {
  const OwnedMatrix design(AllocMatrix(n, 2));
  const OwnedMatrix heights(AllocMatrix(n, 1));
  if (!design || !heights) return -1;
  for (int i = 0; i < n; ++i) {
    design[i][0] = x[i];
    design[i][1] = 1.0;
    heights[i][0] = y[i];
  }
  return DropSolverResult(SolveByGaussJordan(design.get(), heights[0], nullptr, n, 2, out));
}

}  // namespace

int LeastSquares(ConstMatrix a, const double* l, int m, int n, double* x) {
  return SolveByGaussJordan(a, l, nullptr, m, n, x) == Outcome::Solved ? 1 : -1;
}

int WeightedLeastSquares(ConstMatrix a, const double* l, const double* w, int m, int n, double* x) {
  return DropSolverResult(SolveByGaussJordan(a, l, w, m, n, x));
}

int LeastSquaresCholesky(ConstMatrix a, const double* l, int m, int n, double* x) {
  return SolveByCholesky(a, l, nullptr, m, n, x) == Outcome::Solved ? 1 : -1;
}

int WeightedLeastSquaresCholesky(ConstMatrix a, const double* l, const double* w, int m, int n, double* x) {
  return DropSolverResult(SolveByCholesky(a, l, w, m, n, x));
}

int FitAugmented(ConstMatrix aug, int m, int n, double* x) {
  if (n <= 0) return 1;
  const OwnedMatrix design(AllocMatrix(m, n));
  const OwnedMatrix heights(AllocMatrix(m, 1));
  if (!design || !heights) return -1;
  for (int i = 0; i < m; ++i) {
    std::copy_n(aug[i], n - 1, design[i]);
    design[i][n - 1] = 1.0;
    heights[i][0] = aug[i][n - 1];
  }
  return DropSolverResult(SolveByGaussJordan(design.get(), heights[0], nullptr, m, n, x));
}

int FitLine(const double* x, const double* y, int n, double* out) {
  return FitLineTo(x, y, n, out);
}

int FitLineToBytes(const double* x, const std::uint8_t* y, int n, double* out) {
  return FitLineTo(x, y, n, out);
}

}  // namespace corvane
