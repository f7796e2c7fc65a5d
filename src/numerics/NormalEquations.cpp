#include "numerics/NormalEquations.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

#include "numerics/RowKernels.h"

namespace corvane {

namespace {

// Adds up the upper triangle of a normal matrix, a row of the design matrix at a time, so that each element's
// sum runs over the rows in their order.
//
// Design matrices are mostly empty: the products of a row's few elements are added one by one. A row that is
// rather full waits until kMostPivots such rows are together, whose products are added across columns, with
// the zeros: where all factors are finite a zero's product changes no sum, as no sum is ever -0.
class NormalSum {
 public:
  // `values` and `columns` are room for n elements of a row.
  NormalSum(int n, Matrix normal, double* values, int* columns)
      : n_(n), normal_(normal), values_(values), columns_(columns) {}

  void Add(const double* row);
  void AddWeighted(const double* row, double weight);
  void Flush();  // adds the rows that wait

 private:
  bool IsFull(const double* row) const;
  int Gather(const double* row);

  const int n_;
  const Matrix normal_;
  double* const values_;
  int* const columns_;
  const double* waiting_[kMostPivots] = {};
  int nWaiting_ = 0;
};

void NormalSum::Add(const double* row) {
  if (IsFull(row)) {
    waiting_[nWaiting_++] = row;
    if (nWaiting_ == kMostPivots) Flush();
    return;
  }
  Flush();
  const int count = Gather(row);
  for (int s = 0; s < count; ++s) {
    double* const sums = normal_[columns_[s]];
    for (int t = s; t < count; ++t) sums[columns_[t]] += values_[s] * values_[t];
  }
}

void NormalSum::AddWeighted(const double* row, double weight) {
  const int count = Gather(row);
  for (int s = 0; s < count; ++s) {
    double* const sums = normal_[columns_[s]];
    for (int t = s; t < count; ++t) sums[columns_[t]] += values_[s] * values_[t] * weight;
  }
}

void NormalSum::Flush() {
  for (int i = 0; nWaiting_ > 0 && i < n_; ++i) {
    const double* rows[kMostPivots];
    double factors[kMostPivots];
    for (int g = 0; g < nWaiting_; ++g) {
      rows[g] = waiting_[g] + i;
      factors[g] = -waiting_[g][i];  // x - (-f) a is x + f a, to the bit
    }
    SubtractMultiples(normal_[i] + i, rows, factors, nWaiting_, n_ - i);
  }
  nWaiting_ = 0;
}

// Whether at least a quarter of the row is not zero, and all is finite.
bool NormalSum::IsFull(const double* row) const {
  int nNonZero = 0;
  int nFinite = 0;
  for (int i = 0; i < n_; ++i) {
    nNonZero += row[i] != 0.0;
    nFinite += std::fabs(row[i]) <= std::numeric_limits<double>::max();
  }
  return nNonZero > n_ / 4 && nFinite == n_;
}

// Collects the elements that are not zero, and their columns; returns how many.
int NormalSum::Gather(const double* row) {
  int count = 0;
  for (int i = 0; i < n_; ++i) {
    columns_[count] = i;
    values_[count] = row[i];
    count += row[i] != 0.0;
  }
  return count;
}

}  // namespace

int BuildNormalMatrix(ConstMatrix a, const double* w, int m, int n, Matrix normal) {
  const OwnedArray<double> values = NewArray<double>(n);
  const OwnedArray<int> columns = NewArray<int>(n);
  if (!values || !columns) return -1;
  for (int i = 0; i < n; ++i) std::fill_n(normal[i], n, 0.0);
  NormalSum sum(n, normal, values.get(), columns.get());
  for (int k = 0; k < m; ++k) {
    if (w) {
      sum.AddWeighted(a[k], w[k]);
    } else {
      sum.Add(a[k]);
    }
  }
  sum.Flush();
  for (int i = 0; i < n; ++i) {
    for (int j = i + 1; j < n; ++j) normal[j][i] = normal[i][j];
  }
  return 1;
}

void BuildNormalVector(ConstMatrix a, const double* l, const double* w, int m, int n, double* v) {
  if (n > 0) std::fill_n(v, n, 0.0);
  for (int k = 0; k < m; ++k) {
    if (l[k] == 0.0) continue;
    for (int i = 0; i < n; ++i) {
      if (a[k][i] == 0.0) continue;
      const double product = a[k][i] * l[k];
      v[i] += w ? product * w[k] : product;
    }
  }
}

int NormalMatrix(ConstMatrix a, int m, int n, Matrix* normal) {
  if (!*normal) *normal = AllocMatrix(n, n);
  return *normal ? BuildNormalMatrix(a, nullptr, m, n, *normal) : -1;
}

int NormalVector(ConstMatrix a, const double* l, int m, int n, double** v) {
  if (!*v) *v = NewArray<double>(n).release();
  if (!*v) return -1;
  BuildNormalVector(a, l, nullptr, m, n, *v);
  return 1;
}

}  // namespace corvane
