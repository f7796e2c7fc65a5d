#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

namespace corvane {

// Small dense matrices, rows x cols, zero based: m[row][column]. A matrix is a table of row pointers over one
// block that holds all rows one behind the other, so that a whole matrix is copied with one copy from m[0] of
// rows * cols * element size bytes. A null Matrix does not exist yet. The elements are double unless
// AllocMatrix was told another size; each row is then cast: reinterpret_cast<float*>(m[row]).
//
// Vectors are zero-based arrays that the caller owns. Results: 1 is success, -1 a failure, if nothing else is
// said. Memory that can't be had is a failure; nothing is thrown or printed.
//
// A count of 0 is an empty matrix or vector. With a negative count, what has to allocate fails, and
// everything else has nothing to do, which counts as success.
using Matrix = double**;
using ConstMatrix = const double* const*;

// A matrix of zeros; null if memory can't be had, or a count is negative. Released by FreeMatrix.
Matrix AllocMatrix(std::int64_t rows, std::int64_t cols, std::size_t elementSize = sizeof(double));

// Releases the block, then the table; a null matrix is left alone. Returns 0.
int FreeMatrix(Matrix m);

// The owner of a matrix: `OwnedMatrix a(AllocMatrix(2, 3)); a[1][2] = 5.0; GaussJordan(a.get(), ...)`.
struct MatrixRelease {
  void operator()(Matrix m) const { FreeMatrix(m); }
};
using OwnedMatrix = std::unique_ptr<double*[], MatrixRelease>;

// An array of n zeros that owns itself; null if memory can't be had, or n is negative.
struct ArrayRelease {
  void operator()(void* array) const { std::free(array); }
};
template <typename T>
using OwnedArray = std::unique_ptr<T[], ArrayRelease>;

template <typename T>
OwnedArray<T> NewArray(std::int64_t n) {
  if (n < 0) return nullptr;
  // One element at least, as an empty block could be null.
  return OwnedArray<T>(static_cast<T*>(std::calloc(n > 0 ? static_cast<std::size_t>(n) : 1, sizeof(T))));
}

// Makes the n x n identity in *m, which is allocated if it is null and overwritten if not.
// Returns 0, or -1 if memory can't be had.
int IdentityMatrix(Matrix* m, int n);

// c (n x n) = a (n x k) b (k x n): c[i][j] is the sum over l, from 0 up, of a[i][l] b[l][j].
// c is neither a nor b.
void MultiplySquare(ConstMatrix a, ConstMatrix b, Matrix c, int n, int k);

// c (m x p) = a (m x n) b (n x p), as MultiplySquare.
void MultiplyMatrix(ConstMatrix a, ConstMatrix b, Matrix c, int m, int n, int p);

// y (m) = a (m x n) x (n), summed from column 0 up. A term with a factor that is exactly zero is skipped, so
// that an infinity meeting a zero adds nothing. y is not x.
void MultiplyMatrixVector(ConstMatrix a, const double* x, double* y, int m, int n);

// t (rows x cols) = the transpose of a (cols x rows). t is not a.
void TransposeMatrix(ConstMatrix a, Matrix t, int rows, int cols);

// The normal matrix N (n x n) = At A of a design matrix A (m x n), allocated by AllocMatrix if *normal is
// null. Each element is the sum over the rows of A, from 0 up, of the products whose factors both differ from
// exact zero. Returns 1, or -1 if memory can't be had.
//
// Cost: per row of A, n to look at it and n_k (n_k + 1) / 2 products, n_k being the number of its elements
// that are not zero. For a rather full row these are n_k n / 2 products instead, a register of them at a
// time.
int NormalMatrix(ConstMatrix a, int m, int n, Matrix* normal);

// The right side v (n) = At l of observations l (m), summed as in NormalMatrix. *v is not l; if it is null
// it is allocated, to be released by std::free or held in an OwnedArray. Returns 1, or -1 if memory can't be
// had.
int NormalVector(ConstMatrix a, const double* l, int m, int n, double** v);

// Allocates *out and copies the block of rows and columns from first to last, both included.
// Returns 1; -1, with *out null, if memory can't be had or a last one stands more than one before its first.
int CopySubMatrix(ConstMatrix a, int firstRow, int lastRow, int firstCol, int lastCol, Matrix* out);

// c = a - b, all m x n; c may be a or b.
void SubtractMatrix(ConstMatrix a, ConstMatrix b, Matrix c, int m, int n);

}  // namespace corvane
