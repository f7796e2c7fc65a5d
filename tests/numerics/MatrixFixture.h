#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <vector>

#include "numerics/Matrix.h"

namespace corvane {

// A matrix of these rows.
inline OwnedMatrix MatrixOf(std::initializer_list<std::vector<double>> rows) {
  const std::size_t cols = rows.size() > 0 ? rows.begin()->size() : 0;
  OwnedMatrix m(AllocMatrix(static_cast<std::int64_t>(rows.size()), static_cast<std::int64_t>(cols)));
  std::size_t i = 0;
  for (const std::vector<double>& row : rows) std::copy(row.begin(), row.end(), m[i++]);
  return m;
}

inline OwnedMatrix CopyOf(const OwnedMatrix& m, int rows, int cols) {
  OwnedMatrix copy(AllocMatrix(rows, cols));
  std::copy_n(m[0], static_cast<std::ptrdiff_t>(rows) * cols, copy[0]);
  return copy;
}

inline std::vector<double> ElementsOf(const OwnedMatrix& m, int rows, int cols) {
  return {m[0], m[0] + static_cast<std::ptrdiff_t>(rows) * cols};
}

// The same bits, but any NaN for a NaN: which one comes out of two is the machine's choice.
inline bool IsSameNumber(double a, double b) {
  return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b) ||
         (std::isnan(a) && std::isnan(b));
}

inline testing::AssertionResult AreSameNumbers(const std::vector<double>& a, const std::vector<double>& b) {
  if (a.size() != b.size())
    return testing::AssertionFailure() << a.size() << " and " << b.size() << " numbers";
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (!IsSameNumber(a[i], b[i])) {
      return testing::AssertionFailure() << "number " << i << ": " << a[i] << " and " << b[i];
    }
  }
  return testing::AssertionSuccess();
}

}  // namespace corvane
