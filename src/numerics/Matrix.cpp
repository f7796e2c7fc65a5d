#include "numerics/Matrix.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>

#include "numerics/RowKernels.h"

namespace corvane {

Matrix AllocMatrix(std::int64_t rows, std::int64_t cols, std::size_t elementSize) {
  if (rows < 0 || cols < 0) return nullptr;
  std::size_t rowBytes = 0;
  std::size_t bytes = 0;
  if (__builtin_mul_overflow(static_cast<std::size_t>(cols), elementSize, &rowBytes)) return nullptr;
  if (__builtin_mul_overflow(static_cast<std::size_t>(rows), rowBytes, &bytes)) return nullptr;
  if (bytes > static_cast<std::size_t>(std::numeric_limits<std::ptrdiff_t>::max())) return nullptr;

  // One row at least, so that there is a place to remember the block.
  const std::size_t tableRows = std::max<std::size_t>(static_cast<std::size_t>(rows), 1);
  auto** const table = static_cast<double**>(std::calloc(tableRows, sizeof(double*)));
  auto* const block = static_cast<char*>(std::calloc(std::max<std::size_t>(bytes, 1), 1));
  if (!table || !block) {
    std::free(block);
    std::free(table);
    return nullptr;
  }
  for (std::size_t i = 0; i < tableRows; ++i) table[i] = reinterpret_cast<double*>(block + i * rowBytes);
  return table;
}

int FreeMatrix(Matrix m) {
  if (!m) return 0;
  std::free(m[0]);
  std::free(m);
  return 0;
}

int IdentityMatrix(Matrix* m, int n) {
  if (!*m) *m = AllocMatrix(n, n);
  if (!*m) return -1;
  for (int i = 0; i < n; ++i) {
    std::fill_n((*m)[i], n, 0.0);
    (*m)[i][i] = 1.0;
  }
  return 0;
}

void MultiplySquare(ConstMatrix a, ConstMatrix b, Matrix c, int n, int k) {
  MultiplyMatrix(a, b, c, n, k, n);
}

void MultiplyMatrix(ConstMatrix a, ConstMatrix b, Matrix c, int m, int n, int p) {
  for (int i = 0; i < m; ++i) {
    if (p > 0) std::fill_n(c[i], p, 0.0);
    for (int l = 0; l < n; ++l) AddMultiple(c[i], b[l], a[i][l], p);
  }
}

void MultiplyMatrixVector(ConstMatrix a, const double* x, double* y, int m, int n) {
  for (int i = 0; i < m; ++i) {
    double sum = 0.0;
    for (int j = 0; j < n; ++j) {
      if (a[i][j] != 0.0 && x[j] != 0.0) sum += a[i][j] * x[j];
    }
    y[i] = sum;
  }
}

void TransposeMatrix(ConstMatrix a, Matrix t, int rows, int cols) {
  for (int i = 0; i < rows; ++i) {
    for (int j = 0; j < cols; ++j) t[i][j] = a[j][i];
  }
}

int CopySubMatrix(ConstMatrix a, int firstRow, int lastRow, int firstCol, int lastCol, Matrix* out) {
  const std::int64_t rows = std::int64_t{lastRow} - firstRow + 1;
  const std::int64_t cols = std::int64_t{lastCol} - firstCol + 1;
  *out = AllocMatrix(rows, cols);
  if (!*out) return -1;
  for (std::int64_t i = 0; i < rows; ++i) std::copy_n(a[firstRow + i] + firstCol, cols, (*out)[i]);
  return 1;
}

void SubtractMatrix(ConstMatrix a, ConstMatrix b, Matrix c, int m, int n) {
  for (int i = 0; i < m; ++i) {
    for (int j = 0; j < n; ++j) c[i][j] = a[i][j] - b[i][j];
  }
}

}  // namespace corvane
