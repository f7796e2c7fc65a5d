// The laser road on a real survey, where the data is at hand.

#include <algorithm>
#include <cstring>
#include <map>

#include "TIN/TINPoints.h"
#include "commands/CommandsFixture.h"
#include "support/SharedData.h"

namespace corvane {
namespace {

// Above 0 if d lies inside the circle through the counter-clockwise a, b, c. Coordinates are taken relative
// to d, in extended precision.
long double InCircle(const PointRecord& a, const PointRecord& b, const PointRecord& c, const PointRecord& d) {
  const long double ax = a.x - d.x;
  const long double ay = a.y - d.y;
  const long double bx = b.x - d.x;
  const long double by = b.y - d.y;
  const long double cx = c.x - d.x;
  const long double cy = c.y - d.y;
  const long double aa = ax * ax + ay * ay;
  const long double bb = bx * bx + by * by;
  const long double cc = cx * cx + cy * cy;
  return aa * (bx * cy - cx * by) - bb * (ax * cy - cx * ay) + cc * (ax * by - bx * ay);
}

// The largest InCircle value over all pairs of neighbouring triangles.
long double WorstInCircle(const TIN& tin) {
  std::map<std::pair<std::int32_t, std::int32_t>, std::int32_t>
      opposite;  // directed edge to the third corner
  for (const TINTriangle& t : tin.triangles) {
    for (int k = 0; k < 3; ++k) opposite[{t.v[k], t.v[(k + 1) % 3]}] = t.v[(k + 2) % 3];
  }
  long double worst = 0;
  for (const TINTriangle& t : tin.triangles) {
    for (int k = 0; k < 3; ++k) {
      const auto across = opposite.find({t.v[(k + 1) % 3], t.v[k]});
      if (across == opposite.end()) continue;
      const auto vertex = [&](std::int32_t i) -> const PointRecord& {
        return tin.vertices[static_cast<std::size_t>(i)];
      };
      worst =
          std::max(worst, InCircle(vertex(t.v[0]), vertex(t.v[1]), vertex(t.v[2]), vertex(across->second)));
    }
  }
  return worst;
}

TEST_F(CommandsTest, TheLaserRoadRunsOnARealSurvey) {
  const std::string survey = SharedData("lidar/autzen_trim.xyz");
  if (survey.empty()) GTEST_SKIP() << "the real survey is not at hand";

  ui.files = {{survey}, {"s.pts"}, {"s.pts"}, {"s.tin"}, {"s.tin"}};
  ASSERT_EQ(Run("Text Points(XYZ) to Bin"), CommandResult::Done);
  ASSERT_EQ(Run("Create TIN"), CommandResult::Done);
  ASSERT_EQ(Run("File > Open"), CommandResult::Done);

  TINPoints points;
  ASSERT_EQ(points.Read("s.pts"), 1);
  EXPECT_EQ(points.nPoints, 110000);
  EXPECT_NEAR(points.minX, 636001.8, 0.05);
  EXPECT_NEAR(points.maxX, 637179.2, 0.05);
  EXPECT_NEAR(points.minY, 848935.2, 0.05);
  EXPECT_NEAR(points.maxY, 849497.9, 0.05);
  EXPECT_NEAR(points.minZ, 406.3, 0.05);
  EXPECT_NEAR(points.maxZ, 520.5, 0.05);

  const TIN& tin = Document().GetTIN();
  EXPECT_EQ(tin.GetExtent(),
            (Extent6{points.minX, points.maxX, points.minY, points.maxY, points.minZ, points.maxZ}));
  // every place once: v vertices and e edges on the hull make 2 v - e - 2 triangles
  std::map<std::pair<double, double>, int> places;
  for (std::int32_t i = 0; i < points.nPoints; ++i)
    places[{points.GetPoint(i)->x, points.GetPoint(i)->y}] += 1;
  EXPECT_EQ(tin.GetPointCount(), static_cast<std::int32_t>(places.size()));
  std::map<std::pair<std::int32_t, std::int32_t>, int> edges;
  for (const TINTriangle& t : tin.triangles) {
    for (int k = 0; k < 3; ++k) edges[std::minmax(t.v[k], t.v[(k + 1) % 3])] += 1;
  }
  const auto nHull =
      std::count_if(edges.begin(), edges.end(), [](const auto& edge) { return edge.second == 1; });
  EXPECT_EQ(tin.GetTriangleCount(), 2 * tin.GetPointCount() - nHull - 2);

  // Delaunay: no neighbour lies inside a triangle's circle, up to rounding in the test itself
  EXPECT_LT(WorstInCircle(tin), 1e-6L);

  ui.files.clear();
  ASSERT_EQ(Run("File > Save"), CommandResult::Done);
  EXPECT_EQ(std::filesystem::file_size("s_filted.pts"), 52u + 32u * places.size());
}

}  // namespace
}  // namespace corvane
