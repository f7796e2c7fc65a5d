#include "numerics/OneBased.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace corvane {
namespace {

constexpr std::int64_t kTooMany = std::int64_t{1} << 61;

std::string ErrorWith(const std::string& text) {
  return "^Numerical Recipes run-time error\\.\\.\\.\n" + text +
         "\n\\.\\.\\.now exiting to system\\.\\.\\.\n$";
}

TEST(OneBasedDeathTest, NrerrorEndsTheProgramWithOne) {
  EXPECT_EXIT(nrerror("what went wrong"), testing::ExitedWithCode(1), ErrorWith("what went wrong"));
}

// Under a sanitizer an element outside of the bounds, or a block not released, is an error.
template <typename T, typename Release>
void ExpectBounds(T* (*allocate)(std::int64_t, std::int64_t), Release release) {
  for (const std::int64_t low : {std::int64_t{-2}, std::int64_t{0}, std::int64_t{1}, std::int64_t{5}}) {
    T* const v = allocate(low, low + 3);
    for (std::int64_t i = low; i <= low + 3; ++i) v[i] = static_cast<T>(i - low);
    EXPECT_EQ(v[low], T{0});
    EXPECT_EQ(v[low + 3], T{3});
    release(v, low);
    release(allocate(low, low - 1), low);
  }
}

TEST(OneBased, VectorsTakeTheirBounds) {
  ExpectBounds(vector, free_vector);
  ExpectBounds(ivector, free_ivector);
  ExpectBounds(cvector, free_cvector);
  ExpectBounds(lvector, free_lvector);
  ExpectBounds(dvector, free_dvector);
}

TEST(OneBasedDeathTest, VectorsFailWithTheirTexts) {
  const auto failsWith = testing::ExitedWithCode(1);
  EXPECT_EXIT(vector(1, kTooMany), failsWith, ErrorWith("allocation failure in vector\\(\\)"));
  EXPECT_EXIT(ivector(1, kTooMany), failsWith, ErrorWith("allocation failure in ivector\\(\\)"));
  EXPECT_EXIT(cvector(0, INT64_MAX), failsWith, ErrorWith("allocation failure in cvector\\(\\)"));
  EXPECT_EXIT(lvector(1, kTooMany), failsWith, ErrorWith("allocation failure in lvector\\(\\)"));
  EXPECT_EXIT(dvector(1, kTooMany), failsWith, ErrorWith("allocation failure in dvector\\(\\)"));
  EXPECT_EXIT(dvector(2, 0), failsWith, ErrorWith("allocation failure in dvector\\(\\)"));
  EXPECT_EXIT(dvector(INT64_MIN, INT64_MAX), failsWith, ErrorWith("allocation failure in dvector\\(\\)"));
}

template <typename T, typename Release>
void ExpectMatrix(T** (*allocate)(std::int64_t, std::int64_t, std::int64_t, std::int64_t), Release release) {
  T** const m = allocate(1, 3, -1, 2);
  for (std::int64_t i = 1; i <= 3; ++i) {
    for (std::int64_t j = -1; j <= 2; ++j) m[i][j] = static_cast<T>(10 * i + j);
  }
  EXPECT_EQ(m[1][-1], T{9});
  EXPECT_EQ(m[3][2], T{32});
  EXPECT_EQ(&m[2][-1], &m[1][2] + 1);  // rows are chained
  release(m, 1, -1);
  release(allocate(1, 0, 1, 0), 1, 1);
}

TEST(OneBased, MatricesTakeTheirBounds) {
  ExpectMatrix(matrix, free_matrix);
  ExpectMatrix(dmatrix, free_dmatrix);
  ExpectMatrix(imatrix, free_imatrix);
}

TEST(OneBasedDeathTest, MatricesFailWithTheSameTwoTexts) {
  const auto failsWith = testing::ExitedWithCode(1);
  const std::string first = ErrorWith("allocation failure 1 in matrix\\(\\)");
  const std::string second = ErrorWith("allocation failure 2 in matrix\\(\\)");
  EXPECT_EXIT(matrix(1, kTooMany, 1, 1), failsWith, first);
  EXPECT_EXIT(dmatrix(1, kTooMany, 1, 1), failsWith, first);
  EXPECT_EXIT(imatrix(1, kTooMany, 1, 1), failsWith, first);
  EXPECT_EXIT(matrix(1, 1, 1, kTooMany), failsWith, second);
  EXPECT_EXIT(dmatrix(1, 1, 1, kTooMany), failsWith, second);
  EXPECT_EXIT(imatrix(1, 1, 1, kTooMany), failsWith, second);
}

TEST(OneBased, SubmatrixSeesTheSameElements) {
  float** const m = matrix(1, 4, 1, 4);
  for (std::int64_t i = 1; i <= 4; ++i) {
    for (std::int64_t j = 1; j <= 4; ++j) m[i][j] = static_cast<float>(10 * i + j);
  }
  float** const part = submatrix(m, 2, 3, 3, 4, 0, 1);
  EXPECT_EQ(part[0][1], 23.0F);
  EXPECT_EQ(part[1][2], 34.0F);
  part[0][2] = 5.0F;
  EXPECT_EQ(m[2][4], 5.0F);
  free_submatrix(part, 0, 1);
  free_matrix(m, 1, 1);
}

TEST(OneBased, ConvertMatrixSeesAFlatBlock) {
  float block[] = {1, 2, 3, 4, 5, 6};
  float** const m = convert_matrix(block, 1, 2, 1, 3);
  EXPECT_EQ(m[1][1], 1.0F);
  EXPECT_EQ(m[1][3], 3.0F);
  EXPECT_EQ(m[2][1], 4.0F);
  m[2][3] = 9.0F;
  EXPECT_EQ(block[5], 9.0F);
  free_convert_matrix(m, 1, 1);
}

TEST(OneBasedDeathTest, TablesFailWithTheirTexts) {
  const auto failsWith = testing::ExitedWithCode(1);
  EXPECT_EXIT(submatrix(nullptr, 1, kTooMany, 1, 1, 1, 1), failsWith,
              ErrorWith("allocation failure in submatrix\\(\\)"));
  EXPECT_EXIT(convert_matrix(nullptr, 1, kTooMany, 1, 1), failsWith,
              ErrorWith("allocation failure in convert_matrix\\(\\)"));
}

TEST(OneBasedDeathTest, AnInvertedRangeOfColumnsFails) {
  const auto failsWith = testing::ExitedWithCode(1);
  EXPECT_EXIT(matrix(1, 1, 2, 0), failsWith, ErrorWith("allocation failure 2 in matrix\\(\\)"));
  EXPECT_EXIT(submatrix(nullptr, 1, 0, 2, 0, 1, 1), failsWith,
              ErrorWith("allocation failure in submatrix\\(\\)"));
  EXPECT_EXIT(convert_matrix(nullptr, 1, 0, 2, 0), failsWith,
              ErrorWith("allocation failure in convert_matrix\\(\\)"));
}

TEST(OneBased, TensorTakesItsBounds) {
  float*** const t = f3tensor(1, 2, 0, 2, -1, 2);
  float value = 0.0F;
  for (std::int64_t i = 1; i <= 2; ++i) {
    for (std::int64_t j = 0; j <= 2; ++j) {
      for (std::int64_t k = -1; k <= 2; ++k) t[i][j][k] = value++;
    }
  }
  EXPECT_EQ(t[1][0][-1], 0.0F);
  EXPECT_EQ(t[2][2][2], 23.0F);
  EXPECT_EQ(&t[2][0][-1], &t[1][0][-1] + 12);  // one block
  free_f3tensor(t, 1, 0, -1);
  free_f3tensor(f3tensor(1, 0, 1, 0, 1, 0), 1, 1, 1);
  free_f3tensor(f3tensor(1, 2, 1, 0, 1, 2), 1, 1, 1);
}

TEST(OneBasedDeathTest, TensorFailsWithItsTexts) {
  const auto failsWith = testing::ExitedWithCode(1);
  EXPECT_EXIT(f3tensor(1, kTooMany, 1, 1, 1, 1), failsWith,
              ErrorWith("allocation failure 1 in f3tensor\\(\\)"));
  EXPECT_EXIT(f3tensor(1, 1, 1, kTooMany, 1, 1), failsWith,
              ErrorWith("allocation failure 2 in f3tensor\\(\\)"));
  EXPECT_EXIT(f3tensor(1, 1, 1, 1, 1, kTooMany), failsWith,
              ErrorWith("allocation failure 3 in f3tensor\\(\\)"));
}

}  // namespace
}  // namespace corvane
