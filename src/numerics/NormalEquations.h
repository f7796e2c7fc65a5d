#pragma once

#include "numerics/Matrix.h"

namespace corvane {

// The builders of NormalMatrix and NormalVector into what is there, with a weight a row (w, m numbers) or
// without (null). A product is added if both matrix factors differ from exact zero, whatever the weight.

// `normal` (n x n) = At W A. Returns 1, or -1 if memory can't be had.
int BuildNormalMatrix(ConstMatrix a, const double* w, int m, int n, Matrix normal);

// v (n) = At W l.
void BuildNormalVector(ConstMatrix a, const double* l, const double* w, int m, int n, double* v);

}  // namespace corvane
