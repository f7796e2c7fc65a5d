// The normal equations, whole and of the photos alone.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <random>
#include <sstream>
#include <vector>

#include "ExactBlock.h"
#include "PhotoProject/BundleAdjustment.h"
#include "numerics/PlainLinear.h"
#include "support/TempFolder.h"

namespace corvane {
namespace {

// The normal equations N x = v and the reduced ones.
struct Normals {
  ~Normals() {
    FreeMatrix(normal);
    FreeMatrix(reduced);
    std::free(v);
    std::free(reducedV);
  }

  Matrix normal = nullptr;
  Matrix reduced = nullptr;
  double* v = nullptr;
  double* reducedV = nullptr;
};

// A copy of the system, solved.
std::vector<double> SolutionOf(ConstMatrix normal, const double* v, int n) {
  const OwnedMatrix a(AllocMatrix(n, n));
  const OwnedMatrix x(AllocMatrix(n, 1));
  for (int i = 0; i < n; ++i) {
    std::copy_n(normal[i], n, a[i]);
    x[i][0] = v[i];
  }
  EXPECT_EQ(PlainGaussJordan(a.get(), n, x.get(), 1), 1);
  return {x[0], x[0] + n};
}

// A design matrix with a well conditioned normal matrix, and observations.
void MakeSystem(int rows, int cols, BundleSystem& system) {
  std::mt19937_64 random(3);
  const auto number = [&] { return static_cast<double>(random() >> 11) * 0x1p-52 - 1.0; };
  system.rows = rows;
  system.cols = cols;
  system.a.reset(AllocMatrix(rows, cols));
  system.l = NewArray<double>(rows);
  for (int i = 0; i < rows; ++i) {
    for (int j = 0; j < cols; ++j) system.a[i][j] = number() < 0.0 ? 0.0 : number();
    system.l[i] = number();
  }
}

TEST(BundleNormal, EquationsAreThoseOfTheSystem) {
  BundleSystem system;
  MakeSystem(3, 2, system);
  const double numbers[3][2] = {{1, 2}, {0, 3}, {4, -1}};
  for (int i = 0; i < 3; ++i) std::copy_n(numbers[i], 2, system.a[i]);
  system.l[0] = 1;
  system.l[1] = 2;
  system.l[2] = 3;
  Normals normals;
  ASSERT_EQ(NormalEquations(system.a.get(), system.l.get(), 3, 2, &normals.normal, &normals.v), 1);
  EXPECT_EQ(normals.normal[0][0], 17);
  EXPECT_EQ(normals.normal[0][1], -2);
  EXPECT_EQ(normals.normal[1][0], -2);
  EXPECT_EQ(normals.normal[1][1], 14);
  EXPECT_EQ(normals.v[0], 13);
  EXPECT_EQ(normals.v[1], 5);
}

TEST(BundleNormal, EquationsFillWhatIsThere) {
  BundleSystem system;
  MakeSystem(12, 6, system);
  Normals normals;
  ASSERT_EQ(NormalEquations(system.a.get(), system.l.get(), 12, 6, &normals.normal, &normals.v), 1);
  const Matrix before = normals.normal;
  const double* const vBefore = normals.v;
  ASSERT_EQ(NormalEquations(system.a.get(), system.l.get(), 12, 6, &normals.normal, &normals.v), 1);
  EXPECT_EQ(normals.normal, before);
  EXPECT_EQ(normals.v, vBefore);
}

TEST(BundleNormal, EquationsHandBackTheFirstFailure) {
  Normals normals;
  EXPECT_EQ(NormalEquations(nullptr, nullptr, 0, -1, &normals.normal, &normals.v), -1);
  EXPECT_EQ(normals.normal, nullptr);
  EXPECT_EQ(normals.v, nullptr);
}

// The reduced system's solution is the photos' part of the whole one's.
void ExpectPhotoPart(const BundleSystem& system, int p, int q, double tolerance) {
  const int n = 6 * p + 3 * q;
  Normals normals;
  ASSERT_EQ(NormalEquations(system.a.get(), system.l.get(), system.rows, n, &normals.normal, &normals.v), 1);
  ASSERT_EQ(ReducedNormal(normals.normal, normals.v, p, q, &normals.reduced, &normals.reducedV), 1);
  const std::vector<double> whole = SolutionOf(normals.normal, normals.v, n);
  const std::vector<double> photos = SolutionOf(normals.reduced, normals.reducedV, 6 * p);
  for (std::size_t i = 0; i < photos.size(); ++i) {
    EXPECT_NEAR(photos[i], whole[i], tolerance * (1.0 + std::fabs(whole[i]))) << i;
  }
}

TEST(BundleNormal, ReducedSolutionIsThePhotosPartOfTheWhole) {
  for (const auto& [p, q] :
       {std::pair(1, 1), std::pair(2, 4), std::pair(1, 7), std::pair(3, 2), std::pair(2, 0)}) {
    SCOPED_TRACE(testing::Message() << p << " photos, " << q << " points");
    BundleSystem system;
    MakeSystem(3 * (6 * p + 3 * q), 6 * p + 3 * q, system);
    ExpectPhotoPart(system, p, q, 1e-11);
  }
}

TEST(BundleNormal, ReducedSolutionOfABlock) {
  PhotoProject project;
  MakeExactBlock({.controlEvery = 3}, project);
  BundleSystem system;
  BuildDesign(project, system);
  ExpectPhotoPart(system, 6, static_cast<int>(project.passPoints.size()), 1e-7);
}

TEST(BundleNormal, ReducedOfNothingIsEmpty) {
  Normals normals;
  const OwnedMatrix empty(AllocMatrix(0, 0));
  const double v[1] = {};
  EXPECT_EQ(ReducedNormal(empty.get(), v, 0, 0, &normals.reduced, &normals.reducedV), 1);
}

TEST(BundleNormal, ReducedLeavesTheWhole) {
  BundleSystem system;
  MakeSystem(40, 12, system);
  Normals normals;
  ASSERT_EQ(NormalEquations(system.a.get(), system.l.get(), 40, 12, &normals.normal, &normals.v), 1);
  const std::vector<double> before(normals.normal[0], normals.normal[0] + 144);
  ASSERT_EQ(ReducedNormal(normals.normal, normals.v, 1, 2, &normals.reduced, &normals.reducedV), 1);
  EXPECT_EQ(std::vector<double>(normals.normal[0], normals.normal[0] + 144), before);
}

TEST(BundleNormal, FilesHoldBothWithTheirRightSides) {
  const TempFolder folder;
  BundleSystem system;
  MakeSystem(40, 12, system);
  ASSERT_EQ(WriteNormals(system, 1, 2), 1);
  EXPECT_TRUE(ReadFileBytes("NormalMat.txt").starts_with("12,13\n"));
  EXPECT_TRUE(ReadFileBytes("ReducedMat.txt").starts_with("6,7\n"));
  for (const char* path : {"NormalMat.txt", "ReducedMat.txt"}) {
    std::filesystem::remove(path);
    std::filesystem::create_directory(path);
    EXPECT_EQ(WriteNormals(system, 1, 2), -1);
    std::filesystem::remove(path);
  }
}

}  // namespace
}  // namespace corvane
