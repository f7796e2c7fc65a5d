// The fast routines against the plain loops, bit for bit, in all versions of the machine code.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <limits>
#include <random>
#include <vector>

#include "MatrixFixture.h"
#include "PlainLinear.h"
#include "numerics/LeastSquares.h"
#include "numerics/NormalEquations.h"
#include "numerics/SimdVersion.h"
#include "numerics/Solvers.h"

namespace corvane {
namespace {

enum class Content { Random, Sparse, Small, Repeated, ZeroRow, Wide, NaN, AllNaN, Infinite, NegativeZeros };

constexpr Content kContents[] = {Content::Random,   Content::Sparse,       Content::Small, Content::Repeated,
                                 Content::ZeroRow,  Content::Wide,         Content::NaN,   Content::AllNaN,
                                 Content::Infinite, Content::NegativeZeros};

class Numbers {
 public:
  double Uniform() { return 2.0 * Fraction() - 1.0; }
  double Fraction() { return static_cast<double>(random_() >> 11) * 0x1p-53; }
  std::size_t Below(std::size_t n) { return static_cast<std::size_t>(random_() % n); }

  double Of(Content content) {
    switch (content) {
      case Content::Sparse:
        return Fraction() < 0.1 ? Uniform() : 0.0;
      case Content::Small:  // many ties, many singular systems
        return static_cast<double>(Below(5)) - 2.0;
      case Content::Wide:
        return Uniform() * std::pow(10.0, static_cast<double>(Below(600)) - 300.0);
      case Content::NegativeZeros:
        return Fraction() < 0.4 ? (Fraction() < 0.5 ? -0.0 : 0.0) : Uniform();
      case Content::NaN:
      case Content::Infinite:
        return Fraction() < 0.2 ? 0.0 : Uniform();
      case Content::AllNaN:
        return std::numeric_limits<double>::quiet_NaN();
      default:
        return Uniform();
    }
  }

  OwnedMatrix MatrixWith(Content content, int rows, int cols) {
    OwnedMatrix m(AllocMatrix(rows, cols));
    const auto count = static_cast<std::size_t>(rows) * static_cast<std::size_t>(cols);
    for (std::size_t i = 0; i < count; ++i) m[0][i] = Of(content);
    if (count == 0) return m;
    double* const row = m[Below(static_cast<std::size_t>(rows))];
    if (content == Content::NaN) m[0][Below(count)] = std::numeric_limits<double>::quiet_NaN();
    if (content == Content::Infinite) m[0][Below(count)] = -std::numeric_limits<double>::infinity();
    if (content == Content::ZeroRow) std::fill_n(row, cols, 0.0);
    if (content == Content::Repeated) std::copy_n(m[0], cols, row);
    return m;
  }

 private:
  std::mt19937_64 random_{1};
};

// Calls test(content, n) under each version of the machine code.
template <typename Test>
void ForEachCase(std::initializer_list<int> sizes, Test test) {
  for (const SimdVersion version : AvailableSimdVersions()) {
    const ForcedSimdVersion forced(version);
    for (const Content content : kContents) {
      for (const int n : sizes) {
        SCOPED_TRACE(testing::Message() << "version " << static_cast<int>(version) << ", content "
                                        << static_cast<int>(content) << ", n " << n);
        test(content, n);
      }
    }
  }
}

TEST(SameBits, GaussJordan) {
  Numbers numbers;
  ForEachCase({1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 18, 31, 33, 50, 70}, [&](Content content, int n) {
    for (const int m : {0, 1, 3, n}) {
      const OwnedMatrix a = numbers.MatrixWith(content, n, n);
      const OwnedMatrix b = numbers.MatrixWith(content, n, m);
      const OwnedMatrix plainA = CopyOf(a, n, n);
      const OwnedMatrix plainB = CopyOf(b, n, m);
      EXPECT_EQ(GaussJordan(a.get(), n, b.get(), m), PlainGaussJordan(plainA.get(), n, plainB.get(), m));
      EXPECT_TRUE(AreSameNumbers(ElementsOf(a, n, n), ElementsOf(plainA, n, n)));
      EXPECT_TRUE(AreSameNumbers(ElementsOf(b, n, m), ElementsOf(plainB, n, m)));
    }
  });
}

TEST(SameBits, LuDecompose) {
  Numbers numbers;
  ForEachCase({1, 2, 3, 5, 8, 15, 16, 17, 31, 32, 33, 50, 64, 67, 100, 133}, [&](Content content, int n) {
    const OwnedMatrix a = numbers.MatrixWith(content, n, n);
    const OwnedMatrix plain = CopyOf(a, n, n);
    std::vector<int> indx(n, -1);
    std::vector<int> plainIndx(n, -1);
    double d = 0.0;
    double plainD = 0.0;
    EXPECT_EQ(LuDecompose(a.get(), n, indx.data(), &d),
              PlainLuDecompose(plain.get(), n, plainIndx.data(), &plainD));
    EXPECT_EQ(indx, plainIndx);
    EXPECT_EQ(d, plainD);
    EXPECT_TRUE(AreSameNumbers(ElementsOf(a, n, n), ElementsOf(plain, n, n)));
  });
}

// Wide enough for more than one block of sums and of columns.
TEST(SameBits, LuDecomposeOfALargeMatrix) {
  Numbers numbers;
  constexpr int n = 620;
  const OwnedMatrix a = numbers.MatrixWith(Content::Random, n, n);
  const OwnedMatrix plain = CopyOf(a, n, n);
  std::vector<int> indx(n);
  double d = 0.0;
  PlainLuDecompose(plain.get(), n, indx.data(), &d);
  for (const SimdVersion version : AvailableSimdVersions()) {
    const ForcedSimdVersion forced(version);
    const OwnedMatrix b = CopyOf(a, n, n);
    EXPECT_EQ(LuDecompose(b.get(), n, indx.data(), &d), 1);
    EXPECT_TRUE(AreSameNumbers(ElementsOf(b, n, n), ElementsOf(plain, n, n)));
  }
}

void ExpectSameCholesky(const OwnedMatrix& a, int n) {
  const OwnedMatrix plain = CopyOf(a, n, n);
  std::vector<double> p(n, 7.0);
  std::vector<double> plainP(n, 7.0);
  EXPECT_EQ(CholeskyDecompose(a.get(), n, p.data()), PlainCholeskyDecompose(plain.get(), n, plainP.data()));
  EXPECT_TRUE(AreSameNumbers(p, plainP));
  EXPECT_TRUE(AreSameNumbers(ElementsOf(a, n, n), ElementsOf(plain, n, n)));
}

// Few of these matrices have a factor; where a pivot fails, what stands then has to be the same, too.
TEST(SameBits, CholeskyDecompose) {
  Numbers numbers;
  ForEachCase({1, 2, 3, 8, 16, 17, 31, 33, 64, 65, 100, 130}, [&](Content content, int n) {
    OwnedMatrix a = numbers.MatrixWith(content, n, n);
    ExpectSameCholesky(CopyOf(a, n, n), n);
    for (int i = 0; i < n; ++i) a[i][i] = 2.0 * n;
    ExpectSameCholesky(CopyOf(a, n, n), n);
    const auto failing = numbers.Below(static_cast<std::size_t>(n));
    a[failing][failing] = -1.0;
    ExpectSameCholesky(a, n);
  });
}

TEST(SameBits, CholeskySubstitute) {
  Numbers numbers;
  ForEachCase({1, 2, 3, 8, 17, 40}, [&](Content content, int n) {
    const OwnedMatrix a = numbers.MatrixWith(content, n, n);
    const OwnedMatrix p = numbers.MatrixWith(Content::Random, 1, n);
    const OwnedMatrix b = numbers.MatrixWith(content, 1, n);
    std::vector<double> x(n);
    std::vector<double> plain(n);
    PlainCholeskySubstitute(a.get(), n, p[0], b[0], plain.data());
    CholeskySubstitute(a.get(), n, p[0], b[0], x.data());
    EXPECT_TRUE(AreSameNumbers(x, plain));
    CholeskySubstitute(a.get(), n, p[0], b[0], b[0]);
    EXPECT_TRUE(AreSameNumbers(ElementsOf(b, 1, n), plain));
  });
}

TEST(SameBits, LuSubstitute) {
  Numbers numbers;
  ForEachCase({1, 2, 3, 8, 17, 40}, [&](Content content, int n) {
    const OwnedMatrix a = numbers.MatrixWith(content, n, n);
    std::vector<int> indx(n);
    for (int i = 0; i < n; ++i)
      indx[i] = i + static_cast<int>(numbers.Below(static_cast<std::size_t>(n - i)));
    for (const int nZeros : {0, n / 2, n}) {
      const OwnedMatrix b = numbers.MatrixWith(content, 1, n);
      std::fill_n(b[0], nZeros, 0.0);
      const OwnedMatrix plain = CopyOf(b, 1, n);
      LuSubstitute(a.get(), n, indx.data(), b[0]);
      PlainLuSubstitute(a.get(), n, indx.data(), plain[0]);
      EXPECT_TRUE(AreSameNumbers(ElementsOf(b, 1, n), ElementsOf(plain, 1, n)));
    }
  });
}

// The rows of a design matrix: nearly empty ones, full ones and ones with a number that is not finite take
// turns. But for the last 20 rows all are finite, lest every sum becomes NaN.
OwnedMatrix MixedRows(Numbers& numbers, int m, int n) {
  OwnedMatrix a = numbers.MatrixWith(Content::Random, m, n);
  for (int k = 0; k < m; ++k) {
    const Content content = kContents[numbers.Below(std::size(kContents))];
    const OwnedMatrix row = numbers.MatrixWith(content, 1, n);
    std::copy_n(row[0], n, a[k]);
    if (k >= m - 20 && content != Content::AllNaN) continue;
    for (int i = 0; i < n; ++i) a[k][i] = std::isfinite(a[k][i]) ? a[k][i] : 0.0;
  }
  return a;
}

// Weights (m) of every kind but NaN and infinity, which come last.
std::vector<double> MixedWeights(Numbers& numbers, int m) {
  std::vector<double> w(m);
  for (double& weight : w) weight = numbers.Of(numbers.Below(2) == 0 ? Content::Small : Content::Random);
  for (int k = std::max(0, m - 4); k < m; ++k) w[k] = std::numeric_limits<double>::infinity();
  return w;
}

void ExpectSameNormalEquations(Numbers& numbers, const OwnedMatrix& a, const double* w, int m, int n) {
  const OwnedMatrix l = numbers.MatrixWith(Content::NegativeZeros, 1, m);
  const OwnedMatrix normal = numbers.MatrixWith(Content::Random, n, n);  // is overwritten
  const OwnedMatrix plain(AllocMatrix(n, n));
  std::vector<double> v(n, 7.0);
  std::vector<double> plainV(n);
  PlainNormalMatrix(a.get(), w, m, n, plain.get());
  PlainNormalVector(a.get(), l[0], w, m, n, plainV.data());
  ASSERT_EQ(BuildNormalMatrix(a.get(), w, m, n, normal.get()), 1);
  BuildNormalVector(a.get(), l[0], w, m, n, v.data());
  EXPECT_TRUE(AreSameNumbers(ElementsOf(normal, n, n), ElementsOf(plain, n, n)));
  EXPECT_TRUE(AreSameNumbers(v, plainV));
}

TEST(SameBits, NormalEquations) {
  Numbers numbers;
  ForEachCase({1, 2, 5, 8, 9, 20, 33, 70}, [&](Content content, int n) {
    for (const int m : {0, 1, 7, 8, 9, 50}) {
      const OwnedMatrix a = numbers.MatrixWith(content, m, n);
      const std::vector<double> w = MixedWeights(numbers, m);
      ExpectSameNormalEquations(numbers, a, nullptr, m, n);
      ExpectSameNormalEquations(numbers, a, w.data(), m, n);
      std::vector<double> finite(m);
      for (double& weight : finite) weight = numbers.Uniform();
      ExpectSameNormalEquations(numbers, a, finite.data(), m, n);
    }
  });
}

TEST(SameBits, NormalEquationsOfMixedRows) {
  Numbers numbers;
  constexpr int m = 200;
  for (const SimdVersion version : AvailableSimdVersions()) {
    const ForcedSimdVersion forced(version);
    for (const int n : {8, 40}) {
      const OwnedMatrix a = MixedRows(numbers, m, n);
      const std::vector<double> w = MixedWeights(numbers, m);
      ExpectSameNormalEquations(numbers, a, nullptr, m, n);
      ExpectSameNormalEquations(numbers, a, w.data(), m, n);
    }
  }
}

TEST(SameBits, NormalMatrixIsTheSumWithoutWeights) {
  Numbers numbers;
  const OwnedMatrix a = numbers.MatrixWith(Content::Random, 30, 12);
  const OwnedMatrix plain(AllocMatrix(12, 12));
  PlainNormalMatrix(a.get(), nullptr, 30, 12, plain.get());
  Matrix normal = nullptr;
  ASSERT_EQ(NormalMatrix(a.get(), 30, 12, &normal), 1);
  const OwnedMatrix owner(normal);
  EXPECT_TRUE(AreSameNumbers(ElementsOf(owner, 12, 12), ElementsOf(plain, 12, 12)));
}

// Calls test(a, l, w, m, n, normal, rhs) with the plain normal equations, for weights and for none (null).
template <typename Test>
void ForEachAdjustment(Test test) {
  Numbers numbers;
  ForEachCase({1, 3, 8, 11, 20}, [&](Content content, int n) {
    constexpr int m = 30;
    const OwnedMatrix a = numbers.MatrixWith(content, m, n);
    const OwnedMatrix l = numbers.MatrixWith(Content::Random, 1, m);
    const OwnedMatrix weights = numbers.MatrixWith(Content::Random, 1, m);
    for (int k = 0; k < m; ++k)
      weights[0][k] = std::fabs(weights[0][k]);  // so that most systems have a factor
    for (const double* const w :
         {static_cast<const double*>(nullptr), static_cast<const double*>(weights[0])}) {
      const OwnedMatrix normal(AllocMatrix(n, n));
      const OwnedMatrix rhs(AllocMatrix(n, 1));
      PlainNormalMatrix(a.get(), w, m, n, normal.get());
      PlainNormalVector(a.get(), l[0], w, m, n, rhs[0]);
      test(a, l, w, m, n, normal, rhs);
    }
  });
}

TEST(SameBits, LeastSquares) {
  ForEachAdjustment([](const OwnedMatrix& a, const OwnedMatrix& l, const double* w, int m, int n,
                       const OwnedMatrix& normal, const OwnedMatrix& rhs) {
    const int solved = PlainGaussJordan(normal.get(), n, rhs.get(), 1);
    std::vector<double> x(n);
    const int result = w ? WeightedLeastSquares(a.get(), l[0], w, m, n, x.data())
                         : LeastSquares(a.get(), l[0], m, n, x.data());
    EXPECT_EQ(result, w ? 1 : solved);
    EXPECT_TRUE(AreSameNumbers(x, ElementsOf(rhs, n, 1)));
  });
}

TEST(SameBits, LeastSquaresCholesky) {
  int nSolved = 0;
  ForEachAdjustment([&](const OwnedMatrix& a, const OwnedMatrix& l, const double* w, int m, int n,
                        const OwnedMatrix& normal, const OwnedMatrix& rhs) {
    std::vector<double> p(n);
    const int solved = PlainCholeskyDecompose(normal.get(), n, p.data());
    if (solved == 1) PlainCholeskySubstitute(normal.get(), n, p.data(), rhs[0], rhs[0]);
    nSolved += solved == 1;
    std::vector<double> x(n);
    const int result = w ? WeightedLeastSquaresCholesky(a.get(), l[0], w, m, n, x.data())
                         : LeastSquaresCholesky(a.get(), l[0], m, n, x.data());
    EXPECT_EQ(result, w ? 1 : solved);
    EXPECT_TRUE(AreSameNumbers(x, ElementsOf(rhs, n, 1)));
  });
  EXPECT_GT(nSolved, 0);
}

TEST(SameBits, MultiplyMatrixVector) {
  Numbers numbers;
  ForEachCase({1, 3, 8, 17, 40}, [&](Content content, int n) {
    constexpr int m = 9;
    const OwnedMatrix a = numbers.MatrixWith(content, m, n);
    const OwnedMatrix x = numbers.MatrixWith(content, 1, n);
    std::vector<double> y(m);
    std::vector<double> plain(m);
    MultiplyMatrixVector(a.get(), x[0], y.data(), m, n);
    PlainMultiplyMatrixVector(a.get(), x[0], plain.data(), m, n);
    EXPECT_TRUE(AreSameNumbers(y, plain));
  });
}

TEST(SameBits, MultiplyMatrix) {
  Numbers numbers;
  ForEachCase({1, 3, 8, 17}, [&](Content content, int n) {
    const int p = n + 2;
    const OwnedMatrix a = numbers.MatrixWith(content, 5, n);
    const OwnedMatrix b = numbers.MatrixWith(content, n, p);
    const OwnedMatrix c(AllocMatrix(5, p));
    const OwnedMatrix plain(AllocMatrix(5, p));
    for (int i = 0; i < 5; ++i) {
      for (int j = 0; j < p; ++j) {
        for (int l = 0; l < n; ++l) plain[i][j] += a[i][l] * b[l][j];
      }
    }
    MultiplyMatrix(a.get(), b.get(), c.get(), 5, n, p);
    EXPECT_TRUE(AreSameNumbers(ElementsOf(c, 5, p), ElementsOf(plain, 5, p)));
  });
}

}  // namespace
}  // namespace corvane
