#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

#include "numerics/OneBased.h"
#include "numerics/RowKernels.h"
#include "numerics/Solvers.h"

namespace corvane {

namespace {

struct IntRelease {
  void operator()(int* v) const { free_ivector(v, 0); }
};
using Ints = std::unique_ptr<int[], IntRelease>;

struct Pivot {
  int row = 0;
  int col = 0;
};

// The pivots of n passes. A row is open until it has been the pivot row, and so is the column of the same
// index: the swap brings the pivot to the diagonal.
struct Pivots {
  explicit Pivots(int n) : rows(ivector(0, n - 1)), cols(ivector(0, n - 1)), counts(ivector(0, n - 1)) {
    std::fill_n(counts.get(), n, 0);
  }

  void Record(int pass, Pivot pivot) {
    rows[pass] = pivot.row;
    cols[pass] = pivot.col;
  }

  Ints rows;    // of each pass, before the swap
  Ints cols;    // of each pass, which is also where the swap brings the row
  Ints counts;  // how often each column has been the pivot's
};

// Further room for the passes. Memory that can't be had ends the program as it does in ivector.
template <typename T>
OwnedArray<T> WorkArray(std::int64_t n) {
  OwnedArray<T> array = NewArray<T>(n);
  if (!array) nrerror("allocation failure in ivector()");
  return array;
}

void ScaleRow(double* row, int count, double factor) {
  for (int k = 0; k < count; ++k) row[k] *= factor;
}

// Undoes the swaps of rows in the inverse's columns, the last one first.
void Unscramble(Matrix a, int n, const Pivots& pivots) {
  for (int i = 0; i < n; ++i) {
    for (int pass = n - 1; pass >= 0; --pass) std::swap(a[i][pivots.rows[pass]], a[i][pivots.cols[pass]]);
  }
}

// Few unknowns: the passes as they are defined, as work ahead would cost more than it saves.

constexpr int kFewUnknowns = 16;

// The indices of open rows and columns, in their order.
struct OpenIndices {
  explicit OpenIndices(int n) : count(n) {
    for (int i = 0; i < n; ++i) indices[i] = i;
  }

  void Close(int index) {
    int kept = 0;
    for (int i = 0; i < count; ++i) {
      indices[kept] = indices[i];
      kept += indices[i] != index;
    }
    count = kept;
  }

  int indices[kFewUnknowns];
  int count;
};

// The largest element in open rows and columns, the last of equal ones; the previous pivot if there is none:
// all are NaN. Written for conditional moves, as nobody can foresee the branches.
Pivot FindPivot(ConstMatrix a, const OpenIndices& open, Pivot previous) {
  double best = 0.0;
  int row = previous.row;
  int col = previous.col;
  for (int r = 0; r < open.count; ++r) {
    const int i = open.indices[r];
    const double* const values = a[i];
    for (int c = 0; c < open.count; ++c) {
      const int k = open.indices[c];
      const double size = std::fabs(values[k]);
      const bool isBest = size >= best;
      best = isBest ? size : best;
      row = isBest ? i : row;
      col = isBest ? k : col;
    }
  }
  return {row, col};
}

void ReduceRow(double* __restrict row, const double* __restrict pivotRow, double factor, int count) {
  for (int k = 0; k < count; ++k) row[k] -= pivotRow[k] * factor;
}

// Scales the row of the pivot at (col, col) and clears its column. The elements there are set behind their
// rows: a row that is fetched as a whole just after one element was stored would have to wait for it.
void ReduceByPivot(Matrix a, int n, Matrix b, int m, int col) {
  double* const pivotRow = a[col];
  const double inverse = 1.0 / pivotRow[col];
  ScaleRow(pivotRow, n, inverse);
  if (m > 0) ScaleRow(b[col], m, inverse);
  for (int i = 0; i < n; ++i) {
    if (i == col) continue;
    const double factor = a[i][col];
    ReduceRow(a[i], pivotRow, factor, n);
    a[i][col] = 0.0 - inverse * factor;
    if (m > 0) ReduceRow(b[i], b[col], factor, m);
  }
  pivotRow[col] = inverse;
}

// Takes the passes, with pivots that are new. 1, or -1 if the system is singular.
int SolveFew(Matrix a, int n, Matrix b, int m, Pivots& pivots) {
  OpenIndices open(n);
  Pivot pivot;
  for (int pass = 0; pass < n; ++pass) {
    if (pivots.counts[pivot.col] > 1) return -1;  // the pass before has used a pivot again
    pivot = FindPivot(a, open, pivot);
    const auto [row, col] = pivot;
    ++pivots.counts[col];
    open.Close(col);
    pivots.Record(pass, pivot);
    if (row != col) {
      std::swap_ranges(a[row], a[row] + n, a[col]);
      if (m > 0) std::swap_ranges(b[row], b[row] + m, b[col]);
    }
    if (a[col][col] == 0.0) return -1;
    ReduceByPivot(a, n, b, m, col);
  }
  for (int pass = n - 1; pass >= 0; --pass) {
    const int row = pivots.rows[pass];
    const int col = pivots.cols[pass];
    for (int i = 0; row != col && i < n; ++i) std::swap(a[i][row], a[i][col]);
  }
  return 1;
}

// Many unknowns. Two things make the passes fast and change no bit:
//
// - An open row is searched for its largest element while it is reduced.
// - A closed row is not searched any more. It waits until kMostTerms passes are at hand and then takes them
//   in one go: the same operations in the same order for each element. Until then it stands as it was, so the
//   pivot rows of these passes are still what the others need. Right sides, which nobody searches, wait in
//   open rows, too.
class ManyUnknowns {
 public:
  ManyUnknowns(Matrix a, int n, Matrix b, int m, Pivots& pivots);

  // As SolveFew.
  int Run();

 private:
  bool IsOpen(std::ptrdiff_t index) const { return pivots_.counts[index] == 0; }
  double* GetFactors(std::ptrdiff_t row) const { return factors_.get() + row * kMostTerms; }
  bool FindPivot();
  bool FindZeroPivot();
  bool TakePass(int pass);
  void SwapRows(int i, int j);
  void ScalePivotRow();
  void ReduceOpenRows();
  void ReduceRows(const int* chosen, int count);
  void CatchUp();
  void CatchUpOpenRow(int row);
  void CatchUpClosedRow(int row);

  Matrix a_;
  Matrix b_;
  const int n_;
  const int m_;

  Pivots& pivots_;
  OwnedArray<int> firstWaiting_;         // of each closed row, the first of the waiting passes it has to take
  OwnedArray<double> factors_;           // of each open row and waiting pass, n x kMostTerms
  OwnedArray<double> largest_;           // of each open row, the largest absolute value in its open columns
  OwnedArray<std::int64_t> columnMask_;  // shows the open columns to the search
  Pivot pivot_;                          // the present one
  int waiting_[kMostTerms];              // the pivot columns of the passes that closed rows wait for
  int nWaiting_ = 0;
};

ManyUnknowns::ManyUnknowns(Matrix a, int n, Matrix b, int m, Pivots& pivots)
    : a_(a),
      b_(b),
      n_(n),
      m_(m),
      pivots_(pivots),
      firstWaiting_(WorkArray<int>(n)),
      factors_(WorkArray<double>(std::int64_t{n} * kMostTerms)),
      largest_(WorkArray<double>(n)),
      columnMask_(WorkArray<std::int64_t>(n)) {
  std::fill_n(columnMask_.get(), n, kShown);
  for (int i = 0; i < n; ++i) {
    for (int k = 0; k < n; ++k) largest_[i] = std::max(largest_[i], std::fabs(a_[i][k]));
  }
}

int ManyUnknowns::Run() {
  bool isSolved = true;
  for (int pass = 0; isSolved && pass < n_; ++pass) isSolved = TakePass(pass);
  CatchUp();
  if (isSolved) Unscramble(a_, n_, pivots_);
  return isSolved ? 1 : -1;
}

// False if the system turns out to be singular.
bool ManyUnknowns::TakePass(int pass) {
  if (pivots_.counts[pivot_.col] > 1) return false;  // the pass before has used a pivot again
  if (!FindPivot()) CatchUp();                       // goes on with the pivot of the pass before
  const auto [row, col] = pivot_;
  ++pivots_.counts[col];
  columnMask_[col] = kHidden;
  firstWaiting_[col] = nWaiting_;
  if (row != col) SwapRows(row, col);
  CatchUpOpenRow(col);
  pivots_.Record(pass, pivot_);
  if (a_[col][col] == 0.0) return false;

  ScalePivotRow();
  ReduceOpenRows();
  waiting_[nWaiting_++] = col;
  firstWaiting_[col] = nWaiting_;
  if (nWaiting_ == kMostTerms) CatchUp();
  return true;
}

// Looks for the largest element in open rows and columns; the last of equal ones is taken.
// False, with the pivot as before, if there is none: all are NaN.
bool ManyUnknowns::FindPivot() {
  double best = 0.0;
  int row = 0;
  for (int i = 0; i < n_; ++i) {
    if (!IsOpen(i) || largest_[i] < best) continue;
    best = largest_[i];
    row = i;
  }
  if (best == 0.0) return FindZeroPivot();
  int col = n_ - 1;
  while (!IsOpen(col) || std::fabs(a_[row][col]) != best) --col;
  pivot_ = {row, col};
  return true;
}

bool ManyUnknowns::FindZeroPivot() {
  for (int i = n_ - 1; i >= 0; --i) {
    for (int k = n_ - 1; IsOpen(i) && k >= 0; --k) {
      if (!IsOpen(k) || a_[i][k] != 0.0) continue;
      pivot_ = {i, k};
      return true;
    }
  }
  return false;
}

void ManyUnknowns::SwapRows(int i, int j) {
  std::swap_ranges(a_[i], a_[i] + n_, a_[j]);
  std::swap_ranges(GetFactors(i), GetFactors(i) + nWaiting_, GetFactors(j));
  if (m_ > 0) std::swap_ranges(b_[i], b_[i] + m_, b_[j]);
}

void ManyUnknowns::ScalePivotRow() {
  const int col = pivot_.col;
  const double inverse = 1.0 / a_[col][col];
  a_[col][col] = 1.0;
  ScaleRow(a_[col], n_, inverse);
  if (m_ > 0) ScaleRow(b_[col], m_, inverse);
}

void ManyUnknowns::ReduceOpenRows() {
  for (int i = 0; i < n_;) {
    int chosen[kMostRows];
    int count = 0;
    for (; i < n_ && count < kMostRows; ++i) {
      if (IsOpen(i)) chosen[count++] = i;
    }
    ReduceRows(chosen, count);
  }
}

void ManyUnknowns::ReduceRows(const int* chosen, int count) {
  double* rows[kMostRows];
  double factors[kMostRows];
  double largest[kMostRows];
  for (int r = 0; r < count; ++r) {
    rows[r] = a_[chosen[r]];
    factors[r] = std::exchange(rows[r][pivot_.col], 0.0);
  }
  SubtractAndSearch(rows, factors, count, a_[pivot_.col], columnMask_.get(), n_, largest);
  for (int r = 0; r < count; ++r) {
    largest_[chosen[r]] = largest[r];
    GetFactors(chosen[r])[nWaiting_] = factors[r];
  }
}

// Lets all rows take the waiting passes. A pivot row of one of these takes only the later ones, after the
// rows that need it as it is.
void ManyUnknowns::CatchUp() {
  for (int i = 0; i < n_; ++i) {
    if (IsOpen(i)) {
      CatchUpOpenRow(i);
    } else if (firstWaiting_[i] == 0) {
      CatchUpClosedRow(i);
    }
  }
  for (int g = 0; g < nWaiting_; ++g) CatchUpClosedRow(waiting_[g]);
  nWaiting_ = 0;
}

// An open row's left side is up to date.
void ManyUnknowns::CatchUpOpenRow(int row) {
  if (m_ <= 0) return;
  const double* pivots[kMostTerms];
  for (int g = 0; g < nWaiting_; ++g) pivots[g] = b_[waiting_[g]];
  SubtractMultiples(b_[row], pivots, GetFactors(row), nWaiting_, m_);
}

void ManyUnknowns::CatchUpClosedRow(int row) {
  const int* const cols = waiting_ + firstWaiting_[row];
  const int count = nWaiting_ - firstWaiting_[row];
  const double* pivots[kMostTerms] = {};
  double factors[kMostTerms] = {};
  double inPivotCols[kMostTerms];  // the row's elements there, which begin anew from 0 in their pass
  for (int g = 0; g < count; ++g) {
    pivots[g] = a_[cols[g]];
    factors[g] = a_[row][cols[g]];
    inPivotCols[g] = 0.0;
    for (int h = 0; h < g; ++h) factors[g] -= pivots[h][cols[g]] * factors[h];
    for (int h = 0; h <= g; ++h) inPivotCols[h] -= pivots[g][cols[h]] * factors[g];
  }
  SubtractMultiples(a_[row], pivots, factors, count, n_);
  for (int g = 0; g < count; ++g) a_[row][cols[g]] = inPivotCols[g];
  firstWaiting_[row] = 0;
  if (m_ <= 0) return;
  for (int g = 0; g < count; ++g) pivots[g] = b_[cols[g]];
  SubtractMultiples(b_[row], pivots, factors, count, m_);
}

}  // namespace

int GaussJordan(Matrix a, int n, Matrix b, int m) {
  if (n <= 0) return 1;
  Pivots pivots(n);
  return n <= kFewUnknowns ? SolveFew(a, n, b, m, pivots) : ManyUnknowns(a, n, b, m, pivots).Run();
}

int InvertMatrix(Matrix a, Matrix* inv, int n) {
  const int result = IdentityMatrix(inv, n);
  if (result < 0) return result;
  GaussJordan(a, n, *inv, n);
  return 1;
}

int InvertWithRhs(Matrix a, Matrix b, int n) {
  GaussJordan(a, n, b, n);
  return 0;
}

}  // namespace corvane
