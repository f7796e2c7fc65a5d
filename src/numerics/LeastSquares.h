#pragma once

#include <cstdint>

#include "numerics/Matrix.h"

namespace corvane {

// Adjustments of l = A x by least squares: x (n) makes the sum of squared residuals of the observations l (m)
// smallest, A (m x n) being the design matrix, which stays as it is. The normal equations (At A) x = At l are
// built as by NormalMatrix and NormalVector, then solved. x may be l. Results: 1 is success, -1 a failure; a
// negative n fails as memory that can't be had, a negative m counts as no observations.

// By GaussJordan. -1: the system is singular (x is what the solver has left), or memory can't be had.
int LeastSquares(ConstMatrix a, const double* l, int m, int n, double* x);

// By GaussJordan, with weights w (m): N[i][j] += A[k][i] A[k][j] w[k], v[i] += A[k][i] l[k] w[k].
// -1: memory can't be had. Kept: 1 for a singular system, too, x being what the solver has left.
int WeightedLeastSquares(ConstMatrix a, const double* l, const double* w, int m, int n, double* x);

// By CholeskySolve. -1: a pivot is not positive (x is At l then), or memory can't be had.
int LeastSquaresCholesky(ConstMatrix a, const double* l, int m, int n, double* x);

// By CholeskySolve, with weights as above.
// -1: memory can't be had. Kept: 1 where a pivot is not positive, too, x being At l (weighted).
int WeightedLeastSquaresCholesky(ConstMatrix a, const double* l, const double* w, int m, int n, double* x);

// Fits a hyperplane: each row of aug (m x n) holds n - 1 coordinates and the height over them, x (n) becomes
// the n - 1 slopes and the height over the origin. By LeastSquares.
//
// -1: memory can't be had, or m is negative. Kept: a singular system gives 1. Without columns (n <= 0) there
// is nothing to do: 1.
int FitAugmented(ConstMatrix aug, int m, int n, double* x);

// Fits the line y = out[0] x + out[1] to n points, heights in doubles or bytes. By LeastSquares.
//
// -1: memory can't be had, or n is negative. Kept: a singular system gives 1.
int FitLine(const double* x, const double* y, int n, double* out);
int FitLineToBytes(const double* x, const std::uint8_t* y, int n, double* out);

}  // namespace corvane
