#include <gtest/gtest.h>
#include <malloc.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cmath>
#include <cstring>
#include <fstream>
#include <limits>
#include <random>
#include <set>

#include "TIN/TINPoints.h"
#include "io/OutputFile.h"
#include "support/TempFolder.h"

namespace corvane {
namespace {

using Places = std::vector<std::pair<double, double>>;

TINPoints SetOf(const Places& places) {
  TINPoints points;
  for (const auto& [x, y] : places) {
    const std::int32_t i = points.GetCount();
    points.AddPoint({i, x, y, 100.0 + i, 0.5 * i});
  }
  return points;
}

int Triangulated(const Places& places, Triangulation& out) {
  return SetOf(places).Triangulate(nullptr, nullptr, out);
}

// Twice the signed area of a, b, c.
double Area(const PointRecord& a, const PointRecord& b, const PointRecord& c) {
  return (b.x - a.x) * (c.y - a.y) - (c.x - a.x) * (b.y - a.y);
}

// Positive if p lies within the circle through the counter-clockwise a, b, c; exact for small integers.
double InCircle(const PointRecord& a, const PointRecord& b, const PointRecord& c, const PointRecord& p) {
  const double ax = a.x - p.x, ay = a.y - p.y, bx = b.x - p.x, by = b.y - p.y, cx = c.x - p.x, cy = c.y - p.y;
  return (ax * ax + ay * ay) * (bx * cy - cx * by) - (bx * bx + by * by) * (ax * cy - cx * ay) +
         (cx * cx + cy * cy) * (ax * by - bx * ay);
}

std::set<std::int32_t> CornersOf(const Triangulation& out) {
  return {out.corners.begin(), out.corners.end()};
}

const PointRecord& CornerOf(const TINPoints& points, const Triangulation& out, std::size_t i) {
  return points.points[static_cast<std::size_t>(out.corners[i])];
}

TEST(Triangulate, ThreePointsAreOneCounterClockwiseTriangle) {
  const TINPoints points = SetOf({{0, 0}, {0, 1}, {1, 0}});
  Triangulation out;
  EXPECT_EQ(points.Triangulate(nullptr, nullptr, out), 1);
  ASSERT_EQ(out.nTriangles, 1);
  ASSERT_EQ(out.corners.size(), 3u);
  EXPECT_EQ(CornersOf(out), (std::set<std::int32_t>{0, 1, 2}));
  EXPECT_GT(Area(CornerOf(points, out, 0), CornerOf(points, out, 1), CornerOf(points, out, 2)), 0.0);
}

TEST(Triangulate, IsDelaunay) {
  std::mt19937 random(9);
  Places places = {{0, 0}, {1000, 0}, {1000, 1000}, {0, 1000}};
  for (int i = 0; i < 300; ++i) places.emplace_back(random() % 1001, random() % 1001);
  const TINPoints points = SetOf(places);
  Triangulation out;
  ASSERT_EQ(points.Triangulate(nullptr, nullptr, out), 1);
  double area = 0.0;
  for (std::size_t i = 0; i < out.corners.size(); i += 3) {
    const PointRecord& a = CornerOf(points, out, i);
    const PointRecord& b = CornerOf(points, out, i + 1);
    const PointRecord& c = CornerOf(points, out, i + 2);
    ASSERT_GT(Area(a, b, c), 0.0);
    area += Area(a, b, c);
    for (const PointRecord& p : std::span(points.points).first(304)) ASSERT_LE(InCircle(a, b, c, p), 0.0);
  }
  EXPECT_EQ(area, 2e6);
}

TEST(Triangulate, OneOfTwoEqualPointsNeverAppears) {
  Triangulation out;
  EXPECT_EQ(Triangulated({{0, 0}, {4, 0}, {0, 4}, {4, 0}, {4, 4}}, out), 1);
  EXPECT_EQ(out.nTriangles, 2);
  EXPECT_EQ(CornersOf(out).size(), 4u);
}

TEST(WriteTriangles, TwoEqualPointsLeaveFewerIdsThanPoints) {
  TempFolder folder;
  const TINPoints points = SetOf({{0, 0}, {4, 0}, {0, 4}, {4, 0}, {4, 4}});
  Triangulation out;
  ASSERT_EQ(points.Triangulate(nullptr, nullptr, out), 1);
  OutputFile file("a.tin");
  EXPECT_EQ(points.WriteTriangles(file, out), 0);
  EXPECT_TRUE(file.Commit());
  const std::string bytes = ReadFileBytes("a.tin");
  ASSERT_EQ(bytes.size(), 4u + 2u * 3u * 36u);
  std::set<std::int32_t> ids;
  for (std::size_t at = 4; at < bytes.size(); at += 36) {
    std::int32_t id = -1;
    std::memcpy(&id, bytes.data() + at, sizeof id);
    ids.insert(id);
  }
  EXPECT_EQ(ids.size(), 4u);
  EXPECT_NE(ids.count(1), ids.count(3));  // one of the two
}

// The status of the triangulation of 400,000 points with `spareBytes` of memory left, as an exit status.
[[noreturn]] void TriangulateWith(std::size_t spareBytes) {
  malloc_trim(0);  // what earlier tests have left behind would be more room
  TINPoints points(400000);
  for (std::int32_t i = 0; i < points.GetCount(); ++i) points.SetPointXY(i, i % 1000, i / 1000, i);
  std::ifstream statm("/proc/self/statm");
  std::size_t nPages = 0;
  statm >> nPages;
  const rlim_t limit = nPages * static_cast<std::size_t>(getpagesize()) + spareBytes;
  const rlimit limits = {limit, limit};
  setrlimit(RLIMIT_AS, &limits);
  Triangulation out;
  _exit(10 + points.Triangulate(nullptr, nullptr, out));
}

TEST(Triangulate, WithoutMemoryFailsAndTheProcessLives) {
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP() << "the sanitizer ends the process without memory";
#endif
  for (std::size_t spareMegabytes : {1, 10, 40, 80, 90}) {
    EXPECT_EXIT(TriangulateWith(spareMegabytes << 20), testing::ExitedWithCode(8), "") << spareMegabytes;
  }
  for (std::size_t spareMegabytes : {120, 200}) {
    EXPECT_EXIT(TriangulateWith(spareMegabytes << 20), testing::ExitedWithCode(11), "") << spareMegabytes;
  }
}

TEST(Triangulate, MorePointsThanTheLibraryTakesFail) {
  TINPoints points;
  points.nPoints = TINPoints::kMaxTriangulated + 1;  // refused before they are looked at
  Triangulation out;
  EXPECT_EQ(points.Triangulate(nullptr, nullptr, out), -3);
}

TEST(Triangulate, FewerThanThreeDistinctPointsFail) {
  Triangulation out;
  EXPECT_EQ(Triangulated({}, out), -1);
  EXPECT_EQ(Triangulated({{1, 1}}, out), -1);
  EXPECT_EQ(Triangulated({{1, 1}, {2, 2}}, out), -1);
  EXPECT_EQ(Triangulated({{1, 1}, {1, 1}, {1, 1}, {1, 1}}, out), -1);
  EXPECT_EQ(Triangulated({{1, 1}, {2, 1}, {1, 1}, {2, 1}, {1, 1}}, out), -1);
  EXPECT_EQ(Triangulated({{0.0, 1}, {-0.0, 1}, {2, 1}}, out), -1);
  EXPECT_EQ(out.nTriangles, 0);
}

TEST(Triangulate, PointsOnOneLineFail) {
  Triangulation out;
  EXPECT_EQ(Triangulated({{0, 0}, {1, 1}, {2, 2}}, out), -1);
  EXPECT_EQ(Triangulated({{5, 0}, {5, 1}, {5, 2}, {5, 9}}, out), -1);
  EXPECT_EQ(Triangulated({{0, 7}, {1, 7}, {2, 7}, {9, 7}, {9, 7}}, out), -1);
  EXPECT_EQ(out.nTriangles, 0);
}

TEST(Triangulate, CoordinatesThatAreNoNumbersOrTooLargeFail) {
  const double inf = std::numeric_limits<double>::infinity();
  Triangulation out;
  for (const double bad : {std::nan(""), inf, -inf, 1e71, -1e300}) {
    EXPECT_EQ(Triangulated({{0, 0}, {1, 0}, {0, 1}, {bad, 5}}, out), -1) << bad;
    EXPECT_EQ(Triangulated({{0, bad}, {1, 0}, {0, 1}, {5, 5}}, out), -1) << bad;
  }
  EXPECT_EQ(Triangulated({{0, 0}, {1e70, 0}, {0, -1e70}}, out), 1);
}

TEST(Triangulate, TinyCoordinatesCountAsZero) {
  Triangulation out;
  EXPECT_EQ(Triangulated({{1e-200, 0}, {2e-200, 0}, {3e-200, 1e-300}}, out), -1);
  EXPECT_EQ(Triangulated({{1e-200, 0}, {1, 0}, {0, 1}, {2e-200, 5e-324}}, out), 1);
  EXPECT_EQ(out.nTriangles, 1);
  EXPECT_EQ(Triangulated({{1e-50, 0}, {0, 1e-50}, {0, 0}}, out), 1);
}

TEST(Triangulate, DeletedPointsTakePart) {
  TINPoints points = SetOf({{0, 0}, {4, 0}, {0, 4}, {4, 4}});
  points.RemovePoint(3);
  Triangulation out;
  EXPECT_EQ(points.Triangulate(nullptr, nullptr, out), 1);
  EXPECT_EQ(CornersOf(out).size(), 4u);
}

TEST(Triangulate, AttributesAndMarkersChangeNothing) {
  const TINPoints points = SetOf({{0, 0}, {4, 0}, {0, 4}, {3, 4}});
  const std::vector<double> attributes(4, 7.0);
  const std::vector<int> markers(4, 3);
  Triangulation plain;
  Triangulation marked;
  EXPECT_EQ(points.Triangulate(nullptr, nullptr, plain), 1);
  EXPECT_EQ(points.Triangulate(attributes.data(), markers.data(), marked), 1);
  EXPECT_EQ(plain.corners, marked.corners);
}

TEST(Triangulate, AFailureEmptiesAnEarlierResult) {
  Triangulation out;
  ASSERT_EQ(Triangulated({{0, 0}, {1, 0}, {0, 1}}, out), 1);
  EXPECT_EQ(Triangulated({{0, 0}}, out), -1);
  EXPECT_TRUE(out.corners.empty());
}

TEST(Triangulate, FreeTriangulationLeavesNothing) {
  Triangulation out;
  ASSERT_EQ(Triangulated({{0, 0}, {1, 0}, {0, 1}}, out), 1);
  TINPoints::FreeTriangulation(out);
  EXPECT_EQ(out.nTriangles, 0);
  EXPECT_TRUE(out.corners.empty());
}

TEST(WriteTriangles, WritesTheWholeRecordsOfTheCorners) {
  TempFolder folder;
  const TINPoints points = SetOf({{0, 0}, {1, 0}, {0, 1}});
  const Triangulation out = {1, {2, 0, 1}};
  OutputFile file("a.tin");
  EXPECT_EQ(points.WriteTriangles(file, out), 0);
  EXPECT_TRUE(file.Commit());
  std::string expected("\1\0\0\0", 4);
  for (const int i : {2, 0, 1}) {
    char vertex[36];
    const double numbers[4] = {i == 1 ? 1.0 : 0.0, i == 2 ? 1.0 : 0.0, 100.0 + i, 0.5 * i};
    std::memcpy(vertex, &i, 4);
    std::memcpy(vertex + 4, numbers, 32);
    expected.append(vertex, sizeof vertex);
  }
  EXPECT_EQ(ReadFileBytes("a.tin"), expected);
}

TEST(WriteTriangles, ManyBlocksKeepTheOrder) {
  TempFolder folder;
  const TINPoints points = SetOf({{0, 0}, {1, 0}, {0, 1}, {1, 1}});
  Triangulation out;
  out.nTriangles = 40000;
  std::mt19937 random(10);
  for (int i = 0; i < 120000; ++i) out.corners.push_back(static_cast<std::int32_t>(random() % 4));
  OutputFile file("a.tin");
  EXPECT_EQ(points.WriteTriangles(file, out), 0);
  EXPECT_TRUE(file.Commit());
  const std::string bytes = ReadFileBytes("a.tin");
  ASSERT_EQ(bytes.size(), 4u + 120000u * 36u);
  for (std::size_t i = 0; i < 120000; ++i) {
    std::int32_t id = -1;
    std::memcpy(&id, bytes.data() + 4 + 36 * i, 4);
    ASSERT_EQ(id, out.corners[i]);
  }
}

TEST(WriteTriangles, RefusesNoTrianglesAndCornersThatAreNoPoints) {
  TempFolder folder;
  const TINPoints points = SetOf({{0, 0}, {1, 0}, {0, 1}});
  OutputFile file("a.tin");
  EXPECT_EQ(points.WriteTriangles(file, {}), -1);
  EXPECT_EQ(points.WriteTriangles(file, {1, {0, 1, 3}}), -1);
  EXPECT_EQ(points.WriteTriangles(file, {1, {0, 1, -1}}), -1);
  EXPECT_EQ(points.WriteTriangles(file, {2, {0, 1, 2}}), -1);
  OutputFile closed;
  EXPECT_EQ(points.WriteTriangles(closed, {1, {0, 1, 2}}), -1);
}

}  // namespace
}  // namespace corvane
