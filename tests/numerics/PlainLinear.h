#pragma once

#include "numerics/Matrix.h"

namespace corvane {

// The solvers and the normal equations as their definitions read, loop by loop: what the fast ones have to
// give to the bit.

int PlainGaussJordan(Matrix a, int n, Matrix b, int m);
int PlainCholeskyDecompose(Matrix a, int n, double* p);
int PlainLuDecompose(Matrix a, int n, int* indx, double* d);
void PlainCholeskySubstitute(ConstMatrix a, int n, const double* p, const double* b, double* x);
void PlainLuSubstitute(ConstMatrix a, int n, const int* indx, double* b);
void PlainMultiplyMatrixVector(ConstMatrix a, const double* x, double* y, int m, int n);

// With weights w, or without (null).
void PlainNormalMatrix(ConstMatrix a, const double* w, int m, int n, Matrix normal);
void PlainNormalVector(ConstMatrix a, const double* l, const double* w, int m, int n, double* v);

}  // namespace corvane
