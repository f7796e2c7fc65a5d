#include "PlainLinear.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace corvane {

namespace {

struct Pivot {
  int row = 0;
  int col = 0;
};

// False: a column's count is above 1.
bool FindPivot(ConstMatrix a, int n, const std::vector<int>& counts, Pivot& pivot) {
  double best = 0.0;
  for (int j = 0; j < n; ++j) {
    if (counts[j] == 1) continue;
    for (int k = 0; k < n; ++k) {
      if (counts[k] > 1) return false;
      if (counts[k] != 0 || !(std::fabs(a[j][k]) >= best)) continue;
      best = std::fabs(a[j][k]);
      pivot = {j, k};
    }
  }
  return true;
}

void Reduce(Matrix a, int n, Matrix b, int m, int pivot) {
  for (int j = 0; j < n; ++j) {
    if (j == pivot) continue;
    const double factor = a[j][pivot];
    a[j][pivot] = 0.0;
    for (int k = 0; k < n; ++k) a[j][k] -= a[pivot][k] * factor;
    for (int k = 0; k < m; ++k) b[j][k] -= b[pivot][k] * factor;
  }
}

}  // namespace

int PlainGaussJordan(Matrix a, int n, Matrix b, int m) {
  std::vector<Pivot> pivots(n);
  std::vector<int> counts(n, 0);
  Pivot pivot;
  for (int i = 0; i < n; ++i) {
    if (!FindPivot(a, n, counts, pivot)) return -1;
    const auto [row, col] = pivot;
    ++counts[col];
    for (int k = 0; row != col && k < n; ++k) std::swap(a[row][k], a[col][k]);
    for (int k = 0; row != col && k < m; ++k) std::swap(b[row][k], b[col][k]);
    pivots[i] = pivot;
    if (a[col][col] == 0.0) return -1;
    const double inverse = 1.0 / a[col][col];
    a[col][col] = 1.0;
    for (int k = 0; k < n; ++k) a[col][k] *= inverse;
    for (int k = 0; k < m; ++k) b[col][k] *= inverse;
    Reduce(a, n, b, m, col);
  }
  for (int i = n - 1; i >= 0; --i) {
    for (int k = 0; k < n; ++k) std::swap(a[k][pivots[i].row], a[k][pivots[i].col]);
  }
  return 1;
}

int PlainCholeskyDecompose(Matrix a, int n, double* p) {
  for (int i = 0; i < n; ++i) {
    for (int j = i; j < n; ++j) {
      double sum = a[i][j];
      for (int k = i - 1; k >= 0; --k) sum -= a[i][k] * a[j][k];
      if (j == i && !(sum > 0.0)) return -1;
      if (j == i) p[i] = std::sqrt(sum);
      if (j > i) a[j][i] = sum / p[i];
    }
  }
  return 1;
}

int PlainLuDecompose(Matrix a, int n, int* indx, double* d) {
  *d = 1.0;
  std::vector<double> scale(n);
  for (int i = 0; i < n; ++i) {
    double largest = 0.0;
    for (int j = 0; j < n; ++j) {
      if (std::fabs(a[i][j]) > largest) largest = std::fabs(a[i][j]);
    }
    if (largest == 0.0) return -1;
    scale[i] = 1.0 / largest;
  }
  for (int j = 0; j < n; ++j) {
    double largest = 0.0;
    int best = j;
    for (int i = 0; i < n; ++i) {
      double sum = a[i][j];
      for (int k = 0; k < std::min(i, j); ++k) sum -= a[i][k] * a[k][j];
      a[i][j] = sum;
      if (i < j || !(scale[i] * std::fabs(sum) >= largest)) continue;
      largest = scale[i] * std::fabs(sum);
      best = i;
    }
    if (best != j) {
      for (int k = 0; k < n; ++k) std::swap(a[best][k], a[j][k]);
      *d = -*d;
      scale[best] = scale[j];
    }
    indx[j] = best;
    if (a[j][j] == 0.0) a[j][j] = 1e-20;
    const double inverse = 1.0 / a[j][j];
    for (int i = j + 1; i < n; ++i) a[i][j] *= inverse;
  }
  return 1;
}

void PlainCholeskySubstitute(ConstMatrix a, int n, const double* p, const double* b, double* x) {
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

void PlainLuSubstitute(ConstMatrix a, int n, const int* indx, double* b) {
  bool isLeading = true;
  int first = 0;
  for (int i = 0; i < n; ++i) {
    double sum = b[indx[i]];
    b[indx[i]] = b[i];
    if (!isLeading) {
      for (int j = first; j < i; ++j) sum -= a[i][j] * b[j];
    } else if (sum != 0.0) {
      isLeading = false;
      first = i;
    }
    b[i] = sum;
  }
  for (int i = n - 1; i >= 0; --i) {
    double sum = b[i];
    for (int j = i + 1; j < n; ++j) sum -= a[i][j] * b[j];
    b[i] = sum / a[i][i];
  }
}

void PlainMultiplyMatrixVector(ConstMatrix a, const double* x, double* y, int m, int n) {
  for (int i = 0; i < m; ++i) {
    y[i] = 0.0;
    for (int j = 0; j < n; ++j) {
      if (a[i][j] != 0.0 && x[j] != 0.0) y[i] += a[i][j] * x[j];
    }
  }
}

void PlainNormalMatrix(ConstMatrix a, const double* w, int m, int n, Matrix normal) {
  for (int i = 0; i < n; ++i) {
    for (int j = i; j < n; ++j) {
      double sum = 0.0;
      for (int k = 0; k < m; ++k) {
        if (a[k][i] == 0.0 || a[k][j] == 0.0) continue;
        sum += w ? a[k][i] * a[k][j] * w[k] : a[k][i] * a[k][j];
      }
      normal[i][j] = sum;
      normal[j][i] = sum;
    }
  }
}

void PlainNormalVector(ConstMatrix a, const double* l, const double* w, int m, int n, double* v) {
  for (int i = 0; i < n; ++i) {
    v[i] = 0.0;
    for (int k = 0; k < m; ++k) {
      if (a[k][i] == 0.0 || l[k] == 0.0) continue;
      v[i] += w ? a[k][i] * l[k] * w[k] : a[k][i] * l[k];
    }
  }
}

}  // namespace corvane
