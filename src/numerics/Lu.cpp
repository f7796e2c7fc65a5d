#include <algorithm>
#include <cmath>
#include <cstddef>

#include "numerics/RowKernels.h"
#include "numerics/SimdVersion.h"
#include "numerics/Solvers.h"

namespace corvane {

namespace {

// A block of rows and columns, from first to before end.
struct Range {
  std::ptrdiff_t first;
  std::ptrdiff_t end;

  std::ptrdiff_t GetCount() const { return end - first; }
  std::ptrdiff_t GetMiddle() const { return first + GetCount() / 2; }
};

constexpr std::ptrdiff_t kFewColumns = 16;  // that are not worth to be halved

// What SubtractProduct works on at a time: rows, the depth of sums, columns. The part of U, `kDepth` x
// `kWidth`, stays in the second-level cache.
constexpr int kTileRows = 4;
constexpr std::ptrdiff_t kDepth = 128;
constexpr std::ptrdiff_t kWidth = 512;
constexpr std::ptrdiff_t kMostTileColumns = 32;

// a[i][j] -= a[i][k] a[k][j] for i in rows and j in columns, k running upwards in `depth`; the three touch
// only where nothing is both read and written. `packed` is room for the part of U, its columns rounded up to
// whole tiles.
struct SubtractProduct {
  template <std::size_t width>
  static constexpr int kPacks = width == 64 ? 4 : 2;  // a tile fits the registers

  template <std::size_t width>
  static constexpr auto kTileColumns = static_cast<std::ptrdiff_t>(kPacks<width>* width / sizeof(double));

  // Reduces a tile of kTileRows x kTileColumns; its part of U is packed row by row.
  template <std::size_t width>
  [[gnu::always_inline]] static inline void Tile(double* const* tile, const double* const* left,
                                                 const double* packed, std::ptrdiff_t depth) {
    using Pack = SimdPack<double, width>;
    constexpr auto kLanes = static_cast<std::ptrdiff_t>(Pack::kLanes);
    Pack sums[kTileRows][kPacks<width>], factors[kPacks<width>];
    for (int r = 0; r < kTileRows; ++r) {
      for (int p = 0; p < kPacks<width>; ++p) sums[r][p].Load(tile[r] + p * kLanes);
    }
    for (std::ptrdiff_t k = 0; k < depth; ++k, packed += kTileColumns<width>) {
      for (int p = 0; p < kPacks<width>; ++p) factors[p].Load(packed + p * kLanes);
      for (int r = 0; r < kTileRows; ++r) {
        const double factor = left[r][k];
        for (int p = 0; p < kPacks<width>; ++p) sums[r][p].lanes -= factor * factors[p].lanes;
      }
    }
    for (int r = 0; r < kTileRows; ++r) {
      for (int p = 0; p < kPacks<width>; ++p) sums[r][p].Store(tile[r] + p * kLanes);
    }
  }

  // A tile that sticks out of the rows or columns: reduced in a copy. Rows that aren't there repeat the
  // first.
  template <std::size_t width>
  [[gnu::always_inline]] static inline void CutTile(double* const* tile, const double* const* left, int nRows,
                                                    std::ptrdiff_t nCols, const double* packed,
                                                    std::ptrdiff_t depth) {
    double copy[kTileRows][kTileColumns<width>] = {};
    double* copiedRows[kTileRows];
    for (int r = 0; r < kTileRows; ++r) copiedRows[r] = copy[r];
    for (int r = 0; r < nRows; ++r) std::copy_n(tile[r], nCols, copy[r]);
    Tile<width>(copiedRows, left, packed, depth);
    for (int r = 0; r < nRows; ++r) std::copy_n(copy[r], nCols, tile[r]);
  }

  // Packs U tile by tile, the last one filled up with zeros.
  template <std::size_t width>
  [[gnu::always_inline]] static inline void PackUpper(ConstMatrix a, Range depth, Range columns,
                                                      double* packed) {
    for (std::ptrdiff_t j = columns.first; j < columns.end; j += kTileColumns<width>) {
      const std::ptrdiff_t count = std::min(columns.end - j, kTileColumns<width>);
      for (std::ptrdiff_t k = depth.first; k < depth.end; ++k, packed += kTileColumns<width>) {
        std::copy_n(a[k] + j, count, packed);
        std::fill(packed + count, packed + kTileColumns<width>, 0.0);
      }
    }
  }

  template <std::size_t width>
  [[gnu::always_inline]] static inline void RowsOfTiles(Matrix a, Range rows, Range depth, Range columns,
                                                        const double* packed) {
    for (std::ptrdiff_t i = rows.first; i < rows.end; i += kTileRows) {
      const int nRows = static_cast<int>(std::min<std::ptrdiff_t>(rows.end - i, kTileRows));
      double* tile[kTileRows];
      const double* left[kTileRows];
      for (int r = 0; r < kTileRows; ++r) {
        tile[r] = a[i + (r < nRows ? r : 0)] + columns.first;
        left[r] = a[i + (r < nRows ? r : 0)] + depth.first;
      }
      const double* part = packed;
      for (std::ptrdiff_t j = columns.first; j < columns.end; j += kTileColumns<width>) {
        const std::ptrdiff_t nCols = std::min(columns.end - j, kTileColumns<width>);
        if (nRows == kTileRows && nCols == kTileColumns<width>) {
          Tile<width>(tile, left, part, depth.GetCount());
        } else {
          CutTile<width>(tile, left, nRows, nCols, part, depth.GetCount());
        }
        for (double*& row : tile) row += nCols;
        part += depth.GetCount() * kTileColumns<width>;
      }
    }
  }

  template <std::size_t width>
  [[gnu::always_inline]] static inline void Run(Matrix a, Range rows, Range depth, Range columns,
                                                double* packed) {
    for (std::ptrdiff_t k = depth.first; k < depth.end; k += kDepth) {
      const Range depthPart = {k, std::min(depth.end, k + kDepth)};
      for (std::ptrdiff_t j = columns.first; j < columns.end; j += kWidth) {
        const Range columnPart = {j, std::min(columns.end, j + kWidth)};
        PackUpper<width>(a, depthPart, columnPart, packed);
        RowsOfTiles<width>(a, rows, depthPart, columnPart, packed);
      }
    }
  }
};

// Divides what is below the diagonal of column j by the pivot, and subtracts the products with the pivot's
// row from the columns between j and `end`.
struct ReduceColumn {
  template <std::size_t width>
  [[gnu::always_inline]] static inline void Run(Matrix a, std::ptrdiff_t n, std::ptrdiff_t j,
                                                std::ptrdiff_t end) {
    SimdPack<double, width> value, term;
    constexpr auto kLanes = static_cast<std::ptrdiff_t>(value.kLanes);
    const double* const pivotRow = a[j];
    const double inverse = 1.0 / pivotRow[j];
    for (std::ptrdiff_t i = j + 1; i < n; ++i) {
      double* const row = a[i];
      const double factor = row[j] * inverse;
      row[j] = factor;
      std::ptrdiff_t k = j + 1;
      for (; k + kLanes <= end; k += kLanes) {
        value.Load(row + k);
        term.Load(pivotRow + k);
        value.lanes -= factor * term.lanes;
        value.Store(row + k);
      }
      for (; k < end; ++k) row[k] -= factor * pivotRow[k];
    }
  }
};

// The elimination of LuDecompose, column by column, in halves: the left half of some columns is factored,
// then the right half takes what the left one subtracts from it, as one product of matrices, and is factored
// itself. Each element loses the same products in the same order as in Crout's two sums.
class LuFactoring {
 public:
  LuFactoring(Matrix a, int n, int* indx, double* scales, double* packed)
      : a_(a), n_(n), indx_(indx), scales_(scales), packed_(packed) {}

  // 1.0, or -1.0 after an odd number of row swaps.
  double Run() {
    Factor({0, n_});
    return parity_;
  }

 private:
  void Factor(Range columns);
  void FactorFew(Range columns);
  void TakePivot(std::ptrdiff_t column);
  void SolveUpper(Range rows, Range columns);
  void Subtract(Range rows, Range depth, Range columns) {
    RunSimd<SubtractProduct>(a_, rows, depth, columns, packed_);
  }

  Matrix a_;
  const std::ptrdiff_t n_;
  int* const indx_;
  double* const scales_;
  double* const packed_;
  double parity_ = 1.0;
};

// Factors these columns, from the diagonal on down; they have lost all products of the columns before.
void LuFactoring::Factor(Range columns) {
  if (columns.GetCount() <= kFewColumns) {
    FactorFew(columns);
    return;
  }
  const Range left = {columns.first, columns.GetMiddle()};
  const Range right = {left.end, columns.end};
  Factor(left);
  SolveUpper(left, right);
  Subtract({left.end, n_}, left, right);
  Factor(right);
}

void LuFactoring::FactorFew(Range columns) {
  for (std::ptrdiff_t j = columns.first; j < columns.end; ++j) {
    TakePivot(j);
    if (j < n_ - 1) RunSimd<ReduceColumn>(a_, n_, j, columns.end);
  }
}

// Brings the largest element of a column, relative to its row, to the diagonal.
void LuFactoring::TakePivot(std::ptrdiff_t column) {
  double largest = 0.0;
  std::ptrdiff_t best = column;
  for (std::ptrdiff_t i = column; i < n_; ++i) {
    const double size = scales_[i] * std::fabs(a_[i][column]);
    if (size >= largest) {
      largest = size;
      best = i;
    }
  }
  if (best != column) {
    std::swap_ranges(a_[best], a_[best] + n_, a_[column]);
    parity_ = -parity_;
    scales_[best] = scales_[column];
  }
  indx_[column] = static_cast<int>(best);
  if (a_[column][column] == 0.0) a_[column][column] = 1e-20;
}

// Makes U of these rows in columns to the right of their factored square.
void LuFactoring::SolveUpper(Range rows, Range columns) {
  if (rows.GetCount() > kFewColumns) {
    const Range top = {rows.first, rows.GetMiddle()};
    const Range bottom = {top.end, rows.end};
    SolveUpper(top, columns);
    Subtract(bottom, top, columns);
    SolveUpper(bottom, columns);
    return;
  }
  for (std::ptrdiff_t i = rows.first; i < rows.end; ++i) {
    for (std::ptrdiff_t k = rows.first; k < i; ++k) {
      SubtractMultiple(a_[i] + columns.first, a_[k] + columns.first, a_[i][k], columns.GetCount());
    }
  }
}

// The room that SubtractProduct needs in factoring n columns.
std::ptrdiff_t GetPackedSize(std::ptrdiff_t n) {
  return n > kFewColumns ? std::min(n, kDepth) * std::min(n + kMostTileColumns, kWidth) : 0;
}

double LargestAbsolute(const double* row, std::ptrdiff_t n) {
  double largest = 0.0;
  for (std::ptrdiff_t j = 0; j < n; ++j) largest = std::max(largest, std::fabs(row[j]));
  return largest;
}

}  // namespace

int LuDecompose(Matrix a, int n, int* indx, double* d) {
  *d = 1.0;
  const OwnedArray<double> scales = NewArray<double>(n);
  const OwnedArray<double> packed = NewArray<double>(GetPackedSize(n));
  if (!scales || !packed) return -1;
  for (int i = 0; i < n; ++i) {
    const double largest = LargestAbsolute(a[i], n);
    if (largest == 0.0) return -1;
    scales[i] = 1.0 / largest;
  }
  *d = LuFactoring(a, n, indx, scales.get(), packed.get()).Run();
  return 1;
}

void LuSubstitute(ConstMatrix a, int n, const int* indx, double* b) {
  int first = -1;  // the first row whose right side is not zero
  for (int i = 0; i < n; ++i) {
    double sum = b[indx[i]];
    b[indx[i]] = b[i];
    if (first < 0 && sum != 0.0) first = i;
    for (int j = first; j >= 0 && j < i; ++j) sum -= a[i][j] * b[j];
    b[i] = sum;
  }
  for (int i = n - 1; i >= 0; --i) {
    double sum = b[i];
    for (int j = i + 1; j < n; ++j) sum -= a[i][j] * b[j];
    b[i] = sum / a[i][i];
  }
}

int LuSolve(Matrix a, int n, double* b) {
  const OwnedArray<int> indx = NewArray<int>(n);
  double d = 0.0;
  if (!indx || LuDecompose(a, n, indx.get(), &d) < 0) return -1;
  LuSubstitute(a, n, indx.get(), b);
  return 1;
}

}  // namespace corvane
