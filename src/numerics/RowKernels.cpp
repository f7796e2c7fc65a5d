#include "numerics/RowKernels.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

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

// `weights` is read by the weighted kernel only.
template <bool isWeighted>
struct SubtractMultiplesKernel {
  // Takes `nPacks` packs of the row at a time, so that each factor is fetched once for all of them.
  template <std::size_t width, int nPacks>
  [[gnu::always_inline]] static inline void Step(double* row, const double* const* terms,
                                                 const double* factors, const double* weights, int nTerms,
                                                 std::ptrdiff_t j) {
    SimdPack<double, width> values[nPacks], term;
    for (int p = 0; p < nPacks; ++p) values[p].Load(row + j + p * kLanesOf<width>);
    for (int g = 0; g < nTerms; ++g) {
      const double factor = factors[g];
      for (int p = 0; p < nPacks; ++p) {
        term.Load(terms[g] + j + p * kLanesOf<width>);
        term.lanes *= factor;
        if constexpr (isWeighted) term.lanes *= weights[g];
        values[p].lanes -= term.lanes;
      }
    }
    for (int p = 0; p < nPacks; ++p) values[p].Store(row + j + p * kLanesOf<width>);
  }

  template <std::size_t width>
  [[gnu::always_inline]] static inline void Run(double* row, const double* const* terms,
                                                const double* factors, const double* weights, int nTerms,
                                                std::ptrdiff_t n) {
    constexpr std::ptrdiff_t kLanes = kLanesOf<width>;
    std::ptrdiff_t j = 0;
    for (; j + 4 * kLanes <= n; j += 4 * kLanes) Step<width, 4>(row, terms, factors, weights, nTerms, j);
    for (; j + kLanes <= n; j += kLanes) Step<width, 1>(row, terms, factors, weights, nTerms, j);
    for (; j < n; ++j) {
      for (int g = 0; g < nTerms; ++g) {
        const double product = terms[g][j] * factors[g];
        row[j] -= isWeighted ? product * weights[g] : product;
      }
    }
  }
};

struct SubtractAndSearchKernel {
  template <std::size_t width, int nRows>
  [[gnu::always_inline]] static inline void RunRows(double* const* rows, const double* factors,
                                                    const double* pivot, const std::int64_t* mask,
                                                    std::ptrdiff_t n, double* largest) {
    constexpr std::ptrdiff_t kLanes = kLanesOf<width>;
    SimdPack<double, width> best[nRows], value, subtrahend;
    SimdPack<std::int64_t, width> bits, shown;
    for (auto& pack : best) pack.Fill(0.0);
    std::ptrdiff_t j = 0;
    for (; j + kLanes <= n; j += kLanes) {
      subtrahend.Load(pivot + j);
      shown.Load(mask + j);
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
        if (mask[i] == kShown) largest[r] = std::max(largest[r], std::fabs(rows[r][i]));
      }
    }
  }

  template <std::size_t width>
  [[gnu::always_inline]] static inline void Run(double* const* rows, const double* factors, int nRows,
                                                const double* pivot, const std::int64_t* mask,
                                                std::ptrdiff_t n, double* largest) {
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

void SubtractMultiple(double* row, const double* term, double factor, std::ptrdiff_t n) {
  SubtractMultiples(row, &term, &factor, 1, n);
}

void SubtractMultiples(double* row, const double* const* terms, const double* factors, int nTerms,
                       std::ptrdiff_t n) {
  const double* const noWeights = nullptr;
  RunSimd<SubtractMultiplesKernel<false>>(row, terms, factors, noWeights, nTerms, n);
}

void SubtractWeightedMultiples(double* row, const double* const* terms, const double* factors,
                               const double* weights, int nTerms, std::ptrdiff_t n) {
  RunSimd<SubtractMultiplesKernel<true>>(row, terms, factors, weights, nTerms, n);
}

void SubtractAndSearch(double* const* rows, const double* factors, int nRows, const double* pivot,
                       const std::int64_t* mask, std::ptrdiff_t n, double* largest) {
  RunSimd<SubtractAndSearchKernel>(rows, factors, nRows, pivot, mask, n, largest);
}

}  // namespace corvane
