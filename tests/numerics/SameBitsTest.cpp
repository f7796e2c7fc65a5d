// The fast routines against the plain loops, bit for bit, in all versions of the machine code.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <random>

#include "MatrixFixture.h"
#include "PlainLinear.h"
#include "numerics/LeastSquares.h"
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
  ForEachCase({1, 2, 3, 4, 5, 7, 8, 9, 16, 17, 31, 33, 50, 70}, [&](Content content, int n) {
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

TEST(SameBits, NormalMatrix) {
  Numbers numbers;
  ForEachCase({1, 2, 5, 8, 9, 20, 33, 70}, [&](Content content, int n) {
    for (const int m : {0, 1, 7, 8, 9, 50}) {
      const OwnedMatrix a = numbers.MatrixWith(content, m, n);
      const OwnedMatrix plain(AllocMatrix(n, n));
      PlainNormalMatrix(a.get(), nullptr, m, n, plain.get());
      Matrix normal = nullptr;
      ASSERT_EQ(NormalMatrix(a.get(), m, n, &normal), 1);
      const OwnedMatrix owner(normal);
      EXPECT_TRUE(AreSameNumbers(ElementsOf(owner, n, n), ElementsOf(plain, n, n)));
    }
  });
}

// Rows that are nearly empty, rows that are full and rows with a number that is not finite take turns.
TEST(SameBits, NormalMatrixOfMixedRows) {
  Numbers numbers;
  constexpr int m = 200;
  constexpr int n = 40;
  const OwnedMatrix a = numbers.MatrixWith(Content::Random, m, n);
  for (int k = 0; k < m; ++k) {
    const Content content = kContents[numbers.Below(std::size(kContents))];
    const OwnedMatrix row = numbers.MatrixWith(content, 1, n);
    std::copy_n(row[0], n, a[k]);
    if (k >= m - 20 && content != Content::AllNaN) continue;
    for (int i = 0; i < n; ++i) a[k][i] = std::isfinite(a[k][i]) ? a[k][i] : 0.0;
  }
  const OwnedMatrix plain(AllocMatrix(n, n));
  PlainNormalMatrix(a.get(), nullptr, m, n, plain.get());
  for (const SimdVersion version : AvailableSimdVersions()) {
    const ForcedSimdVersion forced(version);
    Matrix normal = nullptr;
    ASSERT_EQ(NormalMatrix(a.get(), m, n, &normal), 1);
    const OwnedMatrix owner(normal);
    EXPECT_TRUE(AreSameNumbers(ElementsOf(owner, n, n), ElementsOf(plain, n, n)));
  }
}

TEST(SameBits, WeightedLeastSquares) {
  Numbers numbers;
  ForEachCase({1, 3, 8, 11}, [&](Content content, int n) {
    constexpr int m = 30;
    const OwnedMatrix a = numbers.MatrixWith(content, m, n);
    const OwnedMatrix l = numbers.MatrixWith(Content::Random, 1, m);
    const OwnedMatrix w = numbers.MatrixWith(Content::Random, 1, m);
    const OwnedMatrix normal(AllocMatrix(n, n));
    const OwnedMatrix rhs(AllocMatrix(n, 1));
    PlainNormalMatrix(a.get(), w[0], m, n, normal.get());
    for (int k = 0; k < m; ++k) {
      for (int i = 0; i < n; ++i) {
        if (a[k][i] != 0.0 && l[0][k] != 0.0) rhs[i][0] += a[k][i] * l[0][k] * w[0][k];
      }
    }
    PlainGaussJordan(normal.get(), n, rhs.get(), 1);
    std::vector<double> x(n);
    EXPECT_EQ(WeightedLeastSquares(a.get(), l[0], w[0], m, n, x.data()), 1);
    EXPECT_TRUE(AreSameNumbers(x, ElementsOf(rhs, n, 1)));
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
