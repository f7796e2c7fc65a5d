#include "numerics/RowKernels.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

#include "numerics/SimdVersion.h"

namespace corvane {

namespace {

template <std::size_t width>
constexpr auto kLanesOf = static_cast<std::ptrdiff_t>(SimdPack<double, width>::kLanes);

struct AddMultipleKernel {
  template <std::size_t width>
  [[gnu::always_inline]] static inline void Run(double* to, const double* from, double factor,
                                                std::ptrdiff_t n) {
    SimdPack<double, width> sum, term;
    std::ptrdiff_t j = 0;
    for (; j + kLanesOf<width> <= n; j += kLanesOf<width>) {
      sum.Load(to + j);
      term.Load(from + j);
      sum.lanes += factor * term.lanes;
      sum.Store(to + j);
    }
    for (; j < n; ++j) to[j] += factor * from[j];
  }
};

struct SubtractMultiplesKernel {
  // Takes `nPacks` packs of the row at a time, so that each factor is fetched once for all of them.
  template <std::size_t width, int nPacks>
  [[gnu::always_inline]] static inline void Step(double* row, const double* const* pivots,
                                                 const double* factors, int nPivots, std::ptrdiff_t j) {
    SimdPack<double, width> values[nPacks], term;
    for (int p = 0; p < nPacks; ++p) values[p].Load(row + j + p * kLanesOf<width>);
    for (int g = 0; g < nPivots; ++g) {
      const double factor = factors[g];
      for (int p = 0; p < nPacks; ++p) {
        term.Load(pivots[g] + j + p * kLanesOf<width>);
        values[p].lanes -= term.lanes * factor;
      }
    }
    for (int p = 0; p < nPacks; ++p) values[p].Store(row + j + p * kLanesOf<width>);
  }

  template <std::size_t width>
  [[gnu::always_inline]] static inline void Run(double* row, const double* const* pivots,
                                                const double* factors, int nPivots, std::ptrdiff_t n) {
    constexpr std::ptrdiff_t kLanes = kLanesOf<width>;
    std::ptrdiff_t j = 0;
    for (; j + 4 * kLanes <= n; j += 4 * kLanes) Step<width, 4>(row, pivots, factors, nPivots, j);
    for (; j + kLanes <= n; j += kLanes) Step<width, 1>(row, pivots, factors, nPivots, j);
    for (; j < n; ++j) {
      for (int g = 0; g < nPivots; ++g) row[j] -= pivots[g][j] * factors[g];
    }
  }
};

struct SubtractAndSearchKernel {
  template <std::size_t width, int nRows>
  [[gnu::always_inline]] static inline void RunRows(double* const* rows, const double* factors,
                                                    const double* pivot, const double* mask, std::ptrdiff_t n,
                                                    double* largest) {
    constexpr std::ptrdiff_t kLanes = kLanesOf<width>;
    SimdPack<double, width> best[nRows], value, subtrahend;
    SimdPack<std::int64_t, width> bits, shown;
    for (auto& pack : best) pack.Fill(0.0);
    std::ptrdiff_t j = 0;
    for (; j + kLanes <= n; j += kLanes) {
      subtrahend.Load(pivot + j);
      std::memcpy(&shown.lanes, mask + j, width);
      for (int r = 0; r < nRows; ++r) {
        value.Load(rows[r] + j);
        value.lanes -= subtrahend.lanes * factors[r];
        value.Store(rows[r] + j);
        std::memcpy(&bits.lanes, &value.lanes, width);
        bits.lanes &= shown.lanes;
        std::memcpy(&value.lanes, &bits.lanes, width);
        best[r].lanes = value.lanes > best[r].lanes ? value.lanes : best[r].lanes;
      }
    }
    for (int r = 0; r < nRows; ++r) {
      largest[r] = 0.0;
      for (std::ptrdiff_t i = 0; i < kLanes; ++i) largest[r] = std::max(largest[r], double{best[r].lanes[i]});
      for (std::ptrdiff_t i = j; i < n; ++i) {
        rows[r][i] -= pivot[i] * factors[r];
        if (mask[i] != kHidden) largest[r] = std::max(largest[r], std::fabs(rows[r][i]));
      }
    }
  }

  template <std::size_t width>
  [[gnu::always_inline]] static inline void Run(double* const* rows, const double* factors, int nRows,
                                                const double* pivot, const double* mask, std::ptrdiff_t n,
                                                double* largest) {
    if (nRows == kMostRows) {
      RunRows<width, kMostRows>(rows, factors, pivot, mask, n, largest);
      return;
    }
    for (int r = 0; r < nRows; ++r) RunRows<width, 1>(rows + r, factors + r, pivot, mask, n, largest + r);
  }
};

}  // namespace

void AddMultiple(double* to, const double* from, double factor, std::ptrdiff_t n) {
  RunSimd<AddMultipleKernel>(to, from, factor, n);
}

void SubtractMultiple(double* row, const double* pivot, double factor, std::ptrdiff_t n) {
  RunSimd<SubtractMultiplesKernel>(row, &pivot, &factor, 1, n);
}

void SubtractMultiples(double* row, const double* const* pivots, const double* factors, int nPivots,
                       std::ptrdiff_t n) {
  RunSimd<SubtractMultiplesKernel>(row, pivots, factors, nPivots, n);
}

double Shown() {
  return std::bit_cast<double>(INT64_MAX);
}

void SubtractAndSearch(double* const* rows, const double* factors, int nRows, const double* pivot,
                       const double* mask, std::ptrdiff_t n, double* largest) {
  RunSimd<SubtractAndSearchKernel>(rows, factors, nRows, pivot, mask, n, largest);
}

}  // namespace corvane
