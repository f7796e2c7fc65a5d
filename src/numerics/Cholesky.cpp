#include <algorithm>
#include <cmath>
#include <cstddef>

#include "numerics/SimdVersion.h"
#include "numerics/Solvers.h"

namespace corvane {

namespace {

constexpr int kFewRows = 16;  // that don't fill the registers

// Columns of L are made one after the other, as the sum for an element takes the newest column first.
int DecomposeFew(Matrix a, int n, double* p) {
  for (int i = 0; i < n; ++i) {
    for (int j = i; j < n; ++j) {
      double sum = a[i][j];
      for (int k = i - 1; k >= 0; --k) sum -= a[i][k] * a[j][k];
      if (j > i) {
        a[j][i] = sum / p[i];
      } else if (sum > 0.0) {
        p[i] = std::sqrt(sum);
      } else {
        return -1;
      }
    }
  }
  return 1;
}

// The elements of L in as many rows as fill kPacks registers, from `row` on, column after column; the rows
// above have theirs. Each row is one lane, so the sum of each element keeps its order. `nColumns` is the
// number of columns to make, which becomes that of the columns before the first one whose pivot fails.
// `lanes` is room for the same elements column by column: n * kMostLanes numbers.
struct DecomposeRows {
  static constexpr int kPacks = 8;
  static constexpr std::ptrdiff_t kMostLanes = kPacks * 8;

  template <std::size_t width>
  [[gnu::always_inline]] static inline std::ptrdiff_t Run(Matrix a, std::ptrdiff_t n, double* p,
                                                          std::ptrdiff_t row, double* lanes,
                                                          std::ptrdiff_t* nColumns) {
    using Pack = SimdPack<double, width>;
    constexpr auto kLanes = static_cast<std::ptrdiff_t>(Pack::kLanes);
    constexpr std::ptrdiff_t kRows = kPacks * kLanes;
    const std::ptrdiff_t nRows = std::min(kRows, n - row);
    Pack sums[kPacks], term;
    for (std::ptrdiff_t i = 0; i < std::min(*nColumns, row + nRows); ++i) {
      double* const column = lanes + i * kRows;
      std::copy_n(a[i] + row, nRows, column);
      std::fill(column + nRows, column + kRows, 0.0);
      for (int q = 0; q < kPacks; ++q) sums[q].Load(column + q * kLanes);
      for (std::ptrdiff_t k = i - 1; k >= 0; --k) {
        const double factor = a[i][k];
        for (int q = 0; q < kPacks; ++q) {
          term.Load(lanes + k * kRows + q * kLanes);
          sums[q].lanes -= factor * term.lanes;
        }
      }
      for (int q = 0; q < kPacks; ++q) sums[q].Store(column + q * kLanes);
      if (i >= row) {
        if (!(column[i - row] > 0.0)) {
          *nColumns = i;
          break;
        }
        p[i] = std::sqrt(column[i - row]);
      }
      const double pivot = p[i];
      for (std::ptrdiff_t j = 0; j < nRows; ++j) column[j] /= pivot;
      for (std::ptrdiff_t j = std::max(row, i + 1); j < row + nRows; ++j) a[j][i] = column[j - row];
    }
    return nRows;
  }
};

}  // namespace

int CholeskyDecompose(Matrix a, int n, double* p) {
  if (n <= kFewRows) return DecomposeFew(a, n, p);
  const OwnedArray<double> lanes = NewArray<double>(n * DecomposeRows::kMostLanes);
  if (!lanes) return DecomposeFew(a, n, p);
  std::ptrdiff_t nColumns = n;
  for (std::ptrdiff_t row = 0; row < n;) {
    row += RunSimd<DecomposeRows>(a, std::ptrdiff_t{n}, p, row, lanes.get(), &nColumns);
  }
  return nColumns == n ? 1 : -1;
}

void CholeskySubstitute(ConstMatrix a, int n, const double* p, const double* b, double* x) {
  for (int i = 0; i < n; ++i) {
    double sum = b[i];
    for (int k = i - 1; k >= 0; --k) sum -= a[i][k] * x[k];
    x[i] = sum / p[i];
  }
  for (int i = n - 1; i >= 0; --i) {
    double sum = x[i];
    for (int k = i + 1; k < n; ++k) sum -= a[k][i] * x[k];
    x[i] = sum / p[i];
  }
}

int CholeskySolve(Matrix a, int n, double* b) {
  const OwnedArray<double> p = NewArray<double>(n);
  if (!p || CholeskyDecompose(a, n, p.get()) < 0) return -1;
  CholeskySubstitute(a, n, p.get(), b, b);
  return 1;
}

}  // namespace corvane
