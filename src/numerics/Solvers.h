#pragma once

#include "numerics/Matrix.h"

namespace corvane {

// Solvers of linear systems. They work in place and destroy the coefficient matrix. Results: 1 is success, -1
// a failure (a singular system, memory exhausted), if nothing else is said. Callers may run on with what a
// failed solver has left, so this is as well defined as a solution: the order of all operations is fixed, and
// every version of the machine code gives the same bits (of a NaN only that it is one).
//
// A system without unknowns (n = 0) is solved. So is one with a negative n, as there is nothing to do, but
// for those that need memory for n numbers and fail: CholeskySolve, LuDecompose, LuSolve, and InvertMatrix
// where it allocates. With m <= 0 there are no right sides, and b may be null.

// Gauss-Jordan elimination with full pivoting: a (n x n) becomes its inverse, b (n x m) the solution x of
// a x = b, a column each. Of equally large pivots the last in row order is taken.
// -1: the system is singular; a and b stay partly reduced. Exhausted memory ends the program through nrerror.
//
// Numbers that are NaN are no candidates for a pivot. A pass without any candidate goes on with the pivot row
// and column of the pass before (0 and 0 in the first one), which ends the next pass as singular; in the last
// pass the result is 1 and the matrices hold NaN.
int GaussJordan(Matrix a, int n, Matrix b, int m);

// The inverse of a (n x n) in *inv, which is allocated if it is null, and in a as well.
// Returns 1, or -1 if memory can't be had.
// Kept: 1 for a singular matrix, too; iterations run on with what GaussJordan has left.
int InvertMatrix(Matrix a, Matrix* inv, int n);

// GaussJordan with n right sides. Kept: returns 0 always.
int InvertWithRhs(Matrix a, Matrix b, int n);

// The factor L of a = L Lt (a symmetric, n x n), the part below the diagonal in a, the diagonal in p (n). The
// upper triangle of a with its diagonal is what is read; it stays.
// -1: a pivot sum is zero, negative or NaN. The columns of L before that pivot stand then, in p as well.
int CholeskyDecompose(Matrix a, int n, double* p);

// Solves L Lt x = b with the factor of CholeskyDecompose. x may be b.
void CholeskySubstitute(ConstMatrix a, int n, const double* p, const double* b, double* x);

// Both together: the solution replaces b. -1: as CholeskyDecompose, or memory can't be had; b then stays.
int CholeskySolve(Matrix a, int n, double* b);

// The factors L and U of a (n x n) with its rows in another order, by Crout with partial pivoting, in which
// each row counts relative to its largest element (the later of equal rows is taken): U in a's upper triangle
// with the diagonal, L, whose diagonal is 1, below. Row j was swapped with row indx[j] (n); d is 1.0 for an
// even number of swaps, -1.0 for an odd one. A pivot that is exactly zero becomes 1e-20.
//
// -1: a row without an element other than 0 (or NaN), or memory can't be had; a is as it was.
// A column that is all NaN has no candidate for a pivot, and no rows are swapped for it.
int LuDecompose(Matrix a, int n, int* indx, double* d);

// Solves a x = b with the factors of LuDecompose; x replaces b. Zeros at b's start are skipped.
void LuSubstitute(ConstMatrix a, int n, const int* indx, double* b);

// Both together: the solution replaces b. -1: as LuDecompose, or memory can't be had; b then stays.
int LuSolve(Matrix a, int n, double* b);

}  // namespace corvane
