#include "TIN/PointComparison.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <iomanip>
#include <random>
#include <sstream>

#include "TIN/StoredPoints.h"
#include "TINSample.h"
#include "io/InputFile.h"
#include "io/OutputFile.h"
#include "support/TempFolder.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

using Row = PointComparison::Row;

class PointComparisonTest : public testing::Test {
 protected:
  void LoadTriangles(const std::vector<SampleTriangle>& triangles) {
    WriteFileBytes("a.tin", TinBytes(triangles));
    ASSERT_TRUE(Load(tin, "a.tin"));
    ui.events.clear();
  }

  // Compares the points, and leaves the log in "a.log".
  ComparisonSummary Compare(Row row, const std::vector<Point3>& points) {
    OutputFile log("a.log");
    PointComparison comparison(tin, row, log);
    EXPECT_TRUE(comparison.Allocate(points.size()));
    for (std::size_t i = 0; i < points.size(); ++i) comparison.Compare(i, points[i]);
    const ComparisonSummary summary = comparison.Finish();
    EXPECT_TRUE(log.Commit());
    return summary;
  }

  std::string LogOf(Row row, const std::vector<Point3>& points) {
    Compare(row, points);
    return ReadFileBytes("a.log");
  }

  TempFolder folder;
  TestFrontEnd ui;
  TIN tin;
};

// The square's first triangle is z = 1 + 0.1 x + 0.1 y, its second one z = 1 - 0.1 x + 0.3 y.

TEST_F(PointComparisonTest, HeightOnAVertexIsItsOwnWithoutInterpolation) {
  LoadTriangles(TwoTriangles());
  tin.vertices[1].z = 77.0;  // the normals stay as they were
  double z = 0.0;
  EXPECT_EQ(HeightAt(tin, {10.0, 0.0, 0.0}, z), 1);
  EXPECT_EQ(z, 77.0);
}

TEST_F(PointComparisonTest, HeightInATriangleIsThatOfItsPlane) {
  LoadTriangles(TwoTriangles());
  double z = 0.0;
  EXPECT_EQ(HeightAt(tin, {8.0, 3.0, 99.0}, z), 3);
  EXPECT_NEAR(z, 2.1, 1e-14);
  EXPECT_EQ(HeightAt(tin, {3.0, 8.0, 99.0}, z), 3);
  EXPECT_NEAR(z, 3.1, 1e-14);
}

TEST_F(PointComparisonTest, ThereIsNoHeightOutside) {
  LoadTriangles({TwoTriangles()[0]});
  double z = 5.0;
  EXPECT_EQ(HeightAt(tin, {2.0, 8.0, 1.0}, z), -2);
  EXPECT_EQ(HeightAt(tin, {2.0, 11.0, 1.0}, z), -1);
  EXPECT_EQ(z, 5.0);
}

TEST_F(PointComparisonTest, RowsHaveThreeForms) {
  LoadTriangles(TwoTriangles());
  const std::vector<Point3> points = {{10.0, 10.0, 1.25}};
  const std::string last = "1, 1.7e+308, 1.75, 1.75, 0, 1.75\n";
  EXPECT_EQ(LogOf(Row::Numbered, points), "0, 10, 10, 1.25, 1.75\n" + last);
  EXPECT_EQ(LogOf(Row::Plan, points), "10, 10, 1.75\n" + last);
  EXPECT_EQ(LogOf(Row::WithHeights, points), "10, 10, 1.25, 3 ,1.75\n" + last);
}

TEST_F(PointComparisonTest, PointsWithoutAHeightLeaveNoTraceButTheirNumber) {
  LoadTriangles({TwoTriangles()[0]});
  const double nan = std::nan("");
  EXPECT_EQ(LogOf(Row::Numbered, {{0, 10, 0}, {0, 0, 3}, {20, 20, 0}, {10, 0, 6}, {nan, 0, 0}}),
            "1, 0, 0, 3, -2\n3, 10, 0, 6, -4\n2, -4, -2, -3, 1.4142135623731, 3.16227766016838\n");
}

TEST_F(PointComparisonTest, MaxStartsAtNoDataWhereTheFirstPointHasNoHeight) {
  LoadTriangles({TwoTriangles()[0]});
  const ComparisonSummary summary = Compare(Row::Plan, {{0, 10, 0}, {0, 0, 5001}, {10, 0, 5004}});
  EXPECT_EQ(summary.max, -4096.0);  // above both differences, -5000 and -5002
  EXPECT_EQ(summary.min, -5002.0);
  EXPECT_EQ(summary.mean, -5001.0);
}

TEST_F(PointComparisonTest, WithOneMatchTheDeviationIsZeroAndRmsTheAbsoluteDifference) {
  LoadTriangles(TwoTriangles());
  const ComparisonSummary summary = Compare(Row::Plan, {{50, 50, 0}, {0, 0, 3.5}});
  EXPECT_EQ(summary.count, 1);
  EXPECT_EQ(summary.nPoints, 2);
  EXPECT_EQ(summary.mean, -2.5);
  EXPECT_EQ(summary.stdDev, 0.0);
  EXPECT_EQ(summary.rms, 2.5);
  EXPECT_EQ(summary.min, -2.5);
}

TEST_F(PointComparisonTest, MinMissesAFirstPointWithTheLowestDifference) {
  LoadTriangles(TwoTriangles());
  const ComparisonSummary summary = Compare(Row::Plan, {{0, 0, 10}, {10, 0, 1}, {10, 10, 1}});
  EXPECT_EQ(summary.min, 1.0);
  EXPECT_EQ(summary.max, 2.0);
}

TEST_F(PointComparisonTest, DifferenceOfExactlyNoDataCountsButHasNoPartInTheStatistics) {
  LoadTriangles(TwoTriangles());
  const ComparisonSummary summary = Compare(Row::Plan, {{0, 0, 4097}, {10, 0, 1}, {10, 10, 1}});
  EXPECT_EQ(summary.count, 3);
  EXPECT_EQ(summary.mean, 1.5);
  EXPECT_THAT(ReadFileBytes("a.log"), testing::StartsWith("0, 0, -4096\n10, 0, 1\n"));
}

TEST_F(PointComparisonTest, NoPointsHaveNoStatistics) {
  LoadTriangles(TwoTriangles());
  EXPECT_EQ(LogOf(Row::Numbered, {}), "0, 0, 0, 0, 0, 0\n");
  EXPECT_EQ(LogOf(Row::Numbered, {{50, 50, 0}}), "0, 1.7e+308, -4096, 0, 0, 0\n");
}

TEST_F(PointComparisonTest, ALogThatIsNotOpenDoesNotMatter) {
  LoadTriangles(TwoTriangles());
  OutputFile log;
  PointComparison comparison(tin, Row::Plan, log);
  ASSERT_TRUE(comparison.Allocate(1));
  comparison.Compare(0, {0, 0, 0});
  EXPECT_EQ(comparison.Finish().mean, 1.0);
  EXPECT_FALSE(log.Commit());
}

// The height at p by the triangle's area coordinates, from all triangles in file order; false for none.
bool PlainHeight(const std::vector<SampleTriangle>& triangles, const Point3& p, long double& z) {
  for (const SampleTriangle& t : triangles) {
    const auto area = [&](const PointRecord& a, const PointRecord& b) -> long double {
      return (static_cast<long double>(b.x) - a.x) * (static_cast<long double>(p.y) - a.y) -
             (static_cast<long double>(p.x) - a.x) * (static_cast<long double>(b.y) - a.y);
    };
    const long double w0 = area(t[1], t[2]);
    const long double w1 = area(t[2], t[0]);
    const long double w2 = area(t[0], t[1]);
    if (w0 < 0 || w1 < 0 || w2 < 0) continue;
    z = (w0 * t[0].z + w1 * t[1].z + w2 * t[2].z) / (w0 + w1 + w2);
    return true;
  }
  return false;
}

// Some of them beside the TIN.
std::vector<Point3> RandomPoints(const Extent6& extent, std::size_t n) {
  std::mt19937_64 random(4);
  const auto uniform = [&random](double from, double to) {
    return from + (to - from) * static_cast<double>(random() >> 11) * 0x1p-53;
  };
  std::vector<Point3> points(n);
  for (Point3& p : points) {
    p = {uniform(extent.minX - 1.0, extent.maxX), uniform(extent.minY - 1.0, extent.maxY),
         uniform(0.0, 50.0)};
  }
  return points;
}

void WriteRow(std::ostream& log, Row row, std::size_t i, const Point3& p, double height) {
  const double difference = height - p.z;
  if (row == Row::Numbered) log << i << ", ";
  log << p.x << ", " << p.y << ", ";
  if (row == Row::Numbered) log << p.z << ", ";
  if (row == Row::WithHeights) log << p.z << ", " << height << " ,";
  log << difference << "\n";
}

TEST_F(PointComparisonTest, LogsAreThoseOfAPlainLoopAndAStream) {
  const auto triangles = JitteredMesh(20, 20, 8);
  LoadTriangles(triangles);
  std::vector<Point3> points = RandomPoints(tin.GetExtent(), 4000);
  for (const SampleTriangle& t : triangles) points.push_back({t[0].x, t[0].y, t[0].z + 1e-7});
  for (const Row row : {Row::Numbered, Row::Plan, Row::WithHeights}) {
    const ComparisonSummary all = Compare(row, points);
    std::ostringstream log;
    log << std::setprecision(15);
    for (std::size_t i = 0; i < points.size(); ++i) {
      double height = 0.0;
      if (HeightAt(tin, points[i], height) >= 0) WriteRow(log, row, i, points[i], height);
    }
    log << all.count << ", " << all.min << ", " << all.max << ", " << all.mean << ", " << all.stdDev << ", "
        << all.rms << "\n";
    EXPECT_TRUE(ReadFileBytes("a.log") == log.str());
    EXPECT_GT(all.count, 3000);
  }
}

TEST_F(PointComparisonTest, EqualsAnIndependentInterpolationOnRandomPoints) {
  const auto triangles = JitteredMesh(20, 20, 8);
  LoadTriangles(triangles);
  const std::vector<Point3> points = RandomPoints(tin.GetExtent(), 5000);
  const ComparisonSummary summary = Compare(Row::WithHeights, points);

  std::vector<long double> differences;
  std::string rest = ReadFileBytes("a.log");
  for (const Point3& p : points) {
    long double z = 0;
    if (!PlainHeight(triangles, p, z)) continue;
    double number[5] = {};
    int used = 0;
    ASSERT_EQ(std::sscanf(rest.c_str(), "%lf, %lf, %lf, %lf ,%lf\n%n", number, number + 1, number + 2,
                          number + 3, number + 4, &used),
              5);
    rest.erase(0, static_cast<std::size_t>(used));
    EXPECT_NEAR(number[0], p.x, 1e-11);
    EXPECT_NEAR(number[3], static_cast<double>(z), 1e-9);
    EXPECT_NEAR(number[4], static_cast<double>(z - p.z), 1e-9);
    differences.push_back(z - p.z);
  }
  long double sum = 0, squares = 0;
  for (const long double d : differences) sum += d;
  const long double mean = sum / differences.size();
  for (const long double d : differences) squares += (d - mean) * (d - mean);
  ASSERT_GT(differences.size(), 3000u);
  EXPECT_EQ(summary.count, static_cast<std::int64_t>(differences.size()));
  EXPECT_NEAR(summary.mean, static_cast<double>(mean), 1e-9);
  EXPECT_NEAR(summary.stdDev, static_cast<double>(std::sqrt(squares / (differences.size() - 1))), 1e-9);
}

TEST_F(PointComparisonTest, PointsOfTwoRegionsAreListedTwice) {
  TINPoints points(3);
  points.SetPoint(0, 1.0, 1.0, 5.0, 1.0, 0);
  points.SetPoint(1, 5.0, 5.0, 6.0, 1.0, 1);
  points.SetPoint(2, 9.0, 9.0, 7.0, 1.0, 2);
  points.RecalcExtent();
  ASSERT_EQ(points.BuildIndex(1), 1);
  const Region left = {Region::kRectangle, 2, {0, 0, 6, 6}};
  const Region right = {Region::kRectangle, 2, {4, 4, 10, 10}};
  const Region none = {Region::kPolygon, 3, {0, 0, 9, 0, 9, 9}};
  std::vector<std::int32_t> list;
  EXPECT_TRUE(CollectInRegions(points, std::vector<Region>{left, none, right}, list));
  EXPECT_THAT(list, testing::ElementsAre(0, 1, 1, 2));
}

TEST_F(PointComparisonTest, LogTakesThePlaceOfNoInput) {
  WriteFileBytes("p.pts", "points");
  std::filesystem::create_symlink("p.pts", "link.log");
  for (const char* path : {"p.pts", "./p.pts", "link.log"}) {
    OutputFile log;
    EXPECT_FALSE(OpenLog(log, path, {"none.tin", "p.pts"}));
    EXPECT_FALSE(log.IsOpen());
  }
  OutputFile log;
  EXPECT_TRUE(OpenLog(log, "new.log", {"none.tin", "p.pts", "new.log"}));  // no input is there
}

// A points file of `count` announced points that holds `numbers`.
std::string StoredBytes(const std::vector<double>& numbers) {
  std::string bytes(numbers.size() * sizeof(double), '\0');
  std::memcpy(bytes.data(), numbers.data(), bytes.size());
  return bytes;
}

TEST_F(PointComparisonTest, StoredPointsReadAsTheyStand) {
  WriteFileBytes("p", StoredBytes({1, 2, 3, 4, 5, 6, 7, 8, 9}));
  InputFile file("p");
  const auto points = ReadStoredPoints(file, 2);
  ASSERT_TRUE(points);
  EXPECT_EQ(points->size(), 2u);
  EXPECT_EQ((*points)[1].x, 5.0);
  EXPECT_EQ((*points)[1].value, 8.0);
}

TEST_F(PointComparisonTest, StoredPointsThatAreMissingAreZero) {
  WriteFileBytes("p", StoredBytes({1, 2, 3, 4, 5, 6}));
  InputFile file("p");
  std::int32_t nMissing = 0;
  const auto points = ReadStoredPoints(file, 3, &nMissing);
  ASSERT_TRUE(points);
  EXPECT_EQ(nMissing, 2);  // the second one in part
  EXPECT_EQ((*points)[1].y, 6.0);
  EXPECT_EQ((*points)[1].z, 0.0);
  EXPECT_EQ((*points)[2].x, 0.0);
}

TEST_F(PointComparisonTest, StoredPointsThatTheFileCanNotHoldAreNotRead) {
  WriteFileBytes("p", StoredBytes({1, 2, 3, 4}));
  for (const std::int32_t count : {-1, 2000000000, INT32_MIN}) {
    InputFile file("p");
    EXPECT_FALSE(ReadStoredPoints(file, count));
  }
  InputFile file("p");
  EXPECT_EQ(ReadStoredPoints(file, 0)->size(), 0u);
}

}  // namespace
}  // namespace corvane
