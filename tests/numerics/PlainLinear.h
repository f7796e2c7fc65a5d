#pragma once

#include "numerics/Matrix.h"

namespace corvane {

// The solvers and the normal matrix as their definitions read, loop by loop: what the fast ones have to give
// to the bit.

int PlainGaussJordan(Matrix a, int n, Matrix b, int m);
int PlainCholeskyDecompose(Matrix a, int n, double* p);
int PlainLuDecompose(Matrix a, int n, int* indx, double* d);
void PlainNormalMatrix(ConstMatrix a, const double* w, int m, int n, Matrix normal);

}  // namespace corvane
