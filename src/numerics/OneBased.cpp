#include "numerics/OneBased.h"

#include <cstddef>
#include <cstdio>
#include <cstdlib>

namespace corvane {

namespace {

// The number of elements from a low bound to a high one; -1 if the high one lies more than one below.
std::int64_t Count(std::int64_t low, std::int64_t high) {
  std::int64_t count = 0;
  if (__builtin_sub_overflow(high, low, &count) || count < -1) return -1;
  return __builtin_add_overflow(count, 1, &count) ? -1 : count;
}

// A block of a * b * c elements, of one at least, as an empty block could be null; or the end with `text`.
template <typename T>
T* Allocate(const char* text, std::int64_t a, std::int64_t b = 1, std::int64_t c = 1) {
  std::int64_t bytes = 0;
  const bool isTooLarge = a < 0 || b < 0 || c < 0 || __builtin_mul_overflow(a, b, &bytes) ||
                          __builtin_mul_overflow(bytes, c, &bytes) ||
                          __builtin_mul_overflow(bytes, std::int64_t{sizeof(T)}, &bytes);
  if (isTooLarge) nrerror(text);
  if (bytes == 0) bytes = sizeof(T);
  void* const block = std::malloc(static_cast<std::size_t>(bytes));
  if (!block) nrerror(text);
  return static_cast<T*>(block);
}

template <typename T>
T* AllocateVector(std::int64_t nl, std::int64_t nh, const char* text) {
  return Allocate<T>(text, Count(nl, nh)) - nl;
}

// Links a shifted table of nRows row pointers to a block of rows of nCols elements each.
template <typename T>
T** LinkRows(T** table, T* block, std::int64_t nrl, std::int64_t nRows, std::int64_t ncl,
             std::int64_t nCols) {
  if (nRows == 0) table[0] = block - ncl;  // where the release looks for the block
  for (std::int64_t i = 0; i < nRows; ++i) table[i] = block + i * nCols - ncl;
  return table - nrl;
}

template <typename T>
T** AllocateMatrix(std::int64_t nrl, std::int64_t nrh, std::int64_t ncl, std::int64_t nch) {
  const std::int64_t nRows = Count(nrl, nrh);
  const std::int64_t nCols = Count(ncl, nch);
  T** const table = Allocate<T*>("allocation failure 1 in matrix()", nRows);
  T* const block = Allocate<T>("allocation failure 2 in matrix()", nRows, nCols);
  return LinkRows(table, block, nrl, nRows, ncl, nCols);
}

template <typename T>
void ReleaseVector(T* v, std::int64_t nl) {
  std::free(v + nl);
}

template <typename T>
void ReleaseMatrix(T** m, std::int64_t nrl, std::int64_t ncl) {
  std::free(m[nrl] + ncl);
  std::free(m + nrl);
}

}  // namespace

void nrerror(const char* text) {
  std::fprintf(stderr, "Numerical Recipes run-time error...\n");
  std::fprintf(stderr, "%s\n", text);
  std::fprintf(stderr, "...now exiting to system...\n");
  std::exit(1);
}

float* vector(std::int64_t nl, std::int64_t nh) {
  return AllocateVector<float>(nl, nh, "allocation failure in vector()");
}

int* ivector(std::int64_t nl, std::int64_t nh) {
  return AllocateVector<int>(nl, nh, "allocation failure in ivector()");
}

std::uint8_t* cvector(std::int64_t nl, std::int64_t nh) {
  return AllocateVector<std::uint8_t>(nl, nh, "allocation failure in cvector()");
}

std::uint32_t* lvector(std::int64_t nl, std::int64_t nh) {
  return AllocateVector<std::uint32_t>(nl, nh, "allocation failure in lvector()");
}

double* dvector(std::int64_t nl, std::int64_t nh) {
  return AllocateVector<double>(nl, nh, "allocation failure in dvector()");
}

float** matrix(std::int64_t nrl, std::int64_t nrh, std::int64_t ncl, std::int64_t nch) {
  return AllocateMatrix<float>(nrl, nrh, ncl, nch);
}

double** dmatrix(std::int64_t nrl, std::int64_t nrh, std::int64_t ncl, std::int64_t nch) {
  return AllocateMatrix<double>(nrl, nrh, ncl, nch);
}

int** imatrix(std::int64_t nrl, std::int64_t nrh, std::int64_t ncl, std::int64_t nch) {
  return AllocateMatrix<int>(nrl, nrh, ncl, nch);
}

float** submatrix(float** a, std::int64_t oldrl, std::int64_t oldrh, std::int64_t oldcl, std::int64_t oldch,
                  std::int64_t newrl, std::int64_t newcl) {
  const char* const failure = "allocation failure in submatrix()";
  const std::int64_t nRows = Count(oldrl, oldrh);
  if (Count(oldcl, oldch) < 0) nrerror(failure);
  float** const table = Allocate<float*>(failure, nRows);
  for (std::int64_t i = 0; i < nRows; ++i) table[i] = a[oldrl + i] + (oldcl - newcl);
  return table - newrl;
}

float** convert_matrix(float* a, std::int64_t nrl, std::int64_t nrh, std::int64_t ncl, std::int64_t nch) {
  const char* const failure = "allocation failure in convert_matrix()";
  const std::int64_t nRows = Count(nrl, nrh);
  const std::int64_t nCols = Count(ncl, nch);
  if (nCols < 0) nrerror(failure);
  return LinkRows(Allocate<float*>(failure, nRows), a, nrl, nRows, ncl, nCols);
}

float*** f3tensor(std::int64_t nrl, std::int64_t nrh, std::int64_t ncl, std::int64_t nch, std::int64_t ndl,
                  std::int64_t ndh) {
  const std::int64_t nRows = Count(nrl, nrh);
  const std::int64_t nCols = Count(ncl, nch);
  const std::int64_t nDeep = Count(ndl, ndh);
  float*** const rows = Allocate<float**>("allocation failure 1 in f3tensor()", nRows);
  float** const columns = Allocate<float*>("allocation failure 2 in f3tensor()", nRows, nCols);
  float* const block = Allocate<float>("allocation failure 3 in f3tensor()", nRows, nCols, nDeep);
  LinkRows(columns, block, 0, nRows * nCols, ndl, nDeep);
  return LinkRows(rows, columns, nrl, nRows, ncl, nCols);
}

void free_vector(float* v, std::int64_t nl) {
  ReleaseVector(v, nl);
}

void free_ivector(int* v, std::int64_t nl) {
  ReleaseVector(v, nl);
}

void free_cvector(std::uint8_t* v, std::int64_t nl) {
  ReleaseVector(v, nl);
}

void free_lvector(std::uint32_t* v, std::int64_t nl) {
  ReleaseVector(v, nl);
}

void free_dvector(double* v, std::int64_t nl) {
  ReleaseVector(v, nl);
}

void free_matrix(float** m, std::int64_t nrl, std::int64_t ncl) {
  ReleaseMatrix(m, nrl, ncl);
}

void free_dmatrix(double** m, std::int64_t nrl, std::int64_t ncl) {
  ReleaseMatrix(m, nrl, ncl);
}

void free_imatrix(int** m, std::int64_t nrl, std::int64_t ncl) {
  ReleaseMatrix(m, nrl, ncl);
}

void free_submatrix(float** m, std::int64_t nrl, std::int64_t) {
  ReleaseVector(m, nrl);
}

void free_convert_matrix(float** m, std::int64_t nrl, std::int64_t) {
  ReleaseVector(m, nrl);
}

void free_f3tensor(float*** t, std::int64_t nrl, std::int64_t ncl, std::int64_t ndl) {
  std::free(t[nrl][ncl] + ndl);
  ReleaseMatrix(t, nrl, ncl);
}

}  // namespace corvane
