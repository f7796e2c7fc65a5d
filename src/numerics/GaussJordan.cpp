#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
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

struct DoubleRelease {
  void operator()(double* v) const { free_dvector(v, 0); }
};
using Doubles = std::unique_ptr<double[], DoubleRelease>;

// The passes of GaussJordan. A row is open until it has been the pivot row, and so is the column of the same
// index. Two things make the passes fast and change no bit:
//
// - An open row is searched for its largest element while it is reduced.
// - A closed row is not searched any more. It waits until kMostPivots passes are at hand and then takes them
//   in one go: the same operations in the same order for each element. Until then it stands as it was, so the
//   pivot rows of these passes are still what the others need. Right sides, which nobody searches, wait in
//   open rows, too.
class Elimination {
 public:
  Elimination(Matrix a, int n, Matrix b, int m);

  // 1, or -1 if the system is singular.
  int Run();

 private:
  bool IsOpen(std::ptrdiff_t index) const { return counts_[index] == 0; }
  double* GetFactors(std::ptrdiff_t row) const { return factors_.get() + row * kMostPivots; }
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
  void Unscramble();

  Matrix a_;
  Matrix b_;
  const int n_;
  const int m_;

  Ints pivotRows_;      // of each pass, before the swap
  Ints pivotCols_;      // of each pass, which is also where the swap brings the row
  Ints counts_;         // how often each column has been the pivot's
  Ints firstWaiting_;   // of each closed row, the first of the waiting passes that it has to take
  Doubles factors_;     // of each open row and waiting pass, n x kMostPivots
  Doubles largest_;     // of each open row, the largest absolute value in its open columns
  Doubles columnMask_;  // shows the open columns to the search
  int row_ = 0;         // of the present pivot
  int col_ = 0;
  int waiting_[kMostPivots];  // the pivot columns of the passes that closed rows wait for
  int nWaiting_ = 0;
};

Elimination::Elimination(Matrix a, int n, Matrix b, int m)
    : a_(a),
      b_(b),
      n_(n),
      m_(m),
      pivotRows_(ivector(0, n - 1)),
      pivotCols_(ivector(0, n - 1)),
      counts_(ivector(0, n - 1)),
      firstWaiting_(ivector(0, n - 1)),
      factors_(dvector(0, std::int64_t{n} * kMostPivots - 1)),
      largest_(dvector(0, n - 1)),
      columnMask_(dvector(0, n - 1)) {
  std::fill_n(counts_.get(), n, 0);
  std::fill_n(columnMask_.get(), n, Shown());
  for (int i = 0; i < n; ++i) {
    largest_[i] = 0.0;
    for (int k = 0; k < n; ++k) largest_[i] = std::max(largest_[i], std::fabs(a_[i][k]));
  }
}

int Elimination::Run() {
  bool isSolved = true;
  for (int pass = 0; isSolved && pass < n_; ++pass) isSolved = TakePass(pass);
  CatchUp();
  if (isSolved) Unscramble();
  return isSolved ? 1 : -1;
}

// False if the system turns out to be singular.
bool Elimination::TakePass(int pass) {
  if (counts_[col_] > 1) return false;  // the pass before has used a pivot again
  if (!FindPivot()) CatchUp();          // goes on with the pivot of the pass before
  ++counts_[col_];
  columnMask_[col_] = kHidden;
  firstWaiting_[col_] = nWaiting_;
  if (row_ != col_) SwapRows(row_, col_);
  CatchUpOpenRow(col_);
  pivotRows_[pass] = row_;
  pivotCols_[pass] = col_;
  if (a_[col_][col_] == 0.0) return false;

  ScalePivotRow();
  ReduceOpenRows();
  waiting_[nWaiting_++] = col_;
  firstWaiting_[col_] = nWaiting_;
  if (nWaiting_ == kMostPivots) CatchUp();
  return true;
}

// Looks for the largest element in open rows and columns; the last of equal ones is taken.
// False, with the pivot as before, if there is none: all are NaN.
bool Elimination::FindPivot() {
  double best = 0.0;
  int row = 0;
  for (int i = 0; i < n_; ++i) {
    if (!IsOpen(i) || largest_[i] < best) continue;
    best = largest_[i];
    row = i;
  }
  if (best == 0.0) return FindZeroPivot();
  row_ = row;
  col_ = n_ - 1;
  while (!IsOpen(col_) || std::fabs(a_[row_][col_]) != best) --col_;
  return true;
}

bool Elimination::FindZeroPivot() {
  for (int i = n_ - 1; i >= 0; --i) {
    for (int k = n_ - 1; IsOpen(i) && k >= 0; --k) {
      if (!IsOpen(k) || a_[i][k] != 0.0) continue;
      row_ = i;
      col_ = k;
      return true;
    }
  }
  return false;
}

void Elimination::SwapRows(int i, int j) {
  std::swap_ranges(a_[i], a_[i] + n_, a_[j]);
  std::swap_ranges(GetFactors(i), GetFactors(i) + nWaiting_, GetFactors(j));
  if (m_ > 0) std::swap_ranges(b_[i], b_[i] + m_, b_[j]);
}

void Elimination::ScalePivotRow() {
  const double inverse = 1.0 / a_[col_][col_];
  a_[col_][col_] = 1.0;
  for (int k = 0; k < n_; ++k) a_[col_][k] *= inverse;
  for (int k = 0; k < m_; ++k) b_[col_][k] *= inverse;
}

void Elimination::ReduceOpenRows() {
  for (int i = 0; i < n_;) {
    int chosen[kMostRows];
    int count = 0;
    for (; i < n_ && count < kMostRows; ++i) {
      if (IsOpen(i)) chosen[count++] = i;
    }
    ReduceRows(chosen, count);
  }
}

void Elimination::ReduceRows(const int* chosen, int count) {
  double* rows[kMostRows];
  double factors[kMostRows];
  double largest[kMostRows];
  for (int r = 0; r < count; ++r) {
    rows[r] = a_[chosen[r]];
    factors[r] = std::exchange(rows[r][col_], 0.0);
  }
  SubtractAndSearch(rows, factors, count, a_[col_], columnMask_.get(), n_, largest);
  for (int r = 0; r < count; ++r) {
    largest_[chosen[r]] = largest[r];
    GetFactors(chosen[r])[nWaiting_] = factors[r];
  }
}

// Lets all rows take the waiting passes. A pivot row of one of these takes only the later ones, after the
// rows that need it as it is.
void Elimination::CatchUp() {
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
void Elimination::CatchUpOpenRow(int row) {
  if (m_ <= 0) return;
  const double* pivots[kMostPivots];
  for (int g = 0; g < nWaiting_; ++g) pivots[g] = b_[waiting_[g]];
  SubtractMultiples(b_[row], pivots, GetFactors(row), nWaiting_, m_);
}

void Elimination::CatchUpClosedRow(int row) {
  const int* const cols = waiting_ + firstWaiting_[row];
  const int count = nWaiting_ - firstWaiting_[row];
  const double* pivots[kMostPivots] = {};
  double factors[kMostPivots] = {};
  double inPivotCols[kMostPivots];  // the row's elements there, which begin anew from 0 in their pass
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

// Undoes the swaps of rows in the inverse's columns, the last one first.
void Elimination::Unscramble() {
  for (int i = 0; i < n_; ++i) {
    for (int pass = n_ - 1; pass >= 0; --pass) std::swap(a_[i][pivotRows_[pass]], a_[i][pivotCols_[pass]]);
  }
}

}  // namespace

int GaussJordan(Matrix a, int n, Matrix b, int m) {
  return n > 0 ? Elimination(a, n, b, m).Run() : 1;
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
