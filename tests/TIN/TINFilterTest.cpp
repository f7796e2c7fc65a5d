// The slope filter and the smoother.

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>

#include "TIN/TIN.h"
#include "TINSample.h"
#include "support/TempFolder.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

// Four triangles around (0, 0); the ring is 10 away, in the order east, north, west, south.
std::vector<SampleTriangle> Tent(double centre, const std::array<double, 4>& ring) {
  const PointRecord c = {0, 0.0, 0.0, centre, 1.0};
  const PointRecord e = {1, 10.0, 0.0, ring[0], 1.0};
  const PointRecord n = {2, 0.0, 10.0, ring[1], 1.0};
  const PointRecord w = {3, -10.0, 0.0, ring[2], 1.0};
  const PointRecord s = {4, 0.0, -10.0, ring[3], 1.0};
  return {{c, e, n}, {c, n, w}, {c, w, s}, {c, s, e}};
}

class TINFilter : public testing::Test {
 protected:
  void LoadTriangles(const std::vector<SampleTriangle>& triangles) {
    WriteFileBytes("a.tin", TinBytes(triangles));
    ASSERT_TRUE(Load(tin, "a.tin"));
  }

  double Z(std::size_t vertex) const { return tin.vertices[vertex].z; }

  TempFolder folder;
  TestFrontEnd ui;
  TIN tin;
};

// The filter word for word on plain arrays.
class PlainFilter {
 public:
  explicit PlainFilter(const ReferenceTin& tin) : tin_(tin) {
    for (const auto& vertex : tin.vertices) z.push_back(vertex.record.z);
    nz.resize(tin.triangles.size());
    for (std::size_t t = 0; t < nz.size(); ++t) Renew(t);
  }

  int Run(double maxSlope, double minElevation) {
    const double cosLimit = std::cos(maxSlope * 3.141592653589793 / 180.0);
    int changed = 0;
    for (const bool spikes : {true, false}) {
      for (std::size_t t = 0; t < nz.size(); ++t) {
        if (nz[t] <= cosLimit) changed += Move(t, spikes, cosLimit, minElevation);
      }
    }
    return changed;
  }

  void Smooth() {
    std::vector<double> next;
    for (std::size_t v = 0; v < z.size(); ++v) {
      double numerator = 0.0;
      double weight = 0.0;
      for (const auto t : tin_.vertices[v].triangles) {
        for (const auto corner : tin_.triangles[static_cast<std::size_t>(t)]) {
          const auto c = static_cast<std::size_t>(corner);
          if (tin_.vertices[c].record.id == tin_.vertices[v].record.id) continue;
          const double dx = tin_.vertices[v].record.x - tin_.vertices[c].record.x;
          const double dy = tin_.vertices[v].record.y - tin_.vertices[c].record.y;
          const double d2 = dx * dx + dy * dy + (z[v] - z[c]) * (z[v] - z[c]);
          if (d2 == 0.0) continue;
          numerator += 1.0 / std::sqrt(d2) * z[c];
          weight += 1.0 / std::sqrt(d2);
        }
      }
      next.push_back((numerator / weight + z[v]) / 2.0);
    }
    z = next;
  }

  std::vector<double> z;
  std::vector<double> nz;

 private:
  void Renew(std::size_t t) {
    const auto& v = tin_.triangles[t];
    double e[2][3];
    for (std::size_t k = 0; k < 2; ++k) {
      const auto a = static_cast<std::size_t>(v[k]);
      const auto b = static_cast<std::size_t>(v[k + 1]);
      e[k][0] = tin_.vertices[b].record.x - tin_.vertices[a].record.x;
      e[k][1] = tin_.vertices[b].record.y - tin_.vertices[a].record.y;
      e[k][2] = z[b] - z[a];
    }
    const double nx = e[0][1] * e[1][2] - e[1][1] * e[0][2];
    const double ny = e[0][2] * e[1][0] - e[1][2] * e[0][0];
    const double n = e[0][0] * e[1][1] - e[1][0] * e[0][1];
    const double s = nx * nx + ny * ny + n * n;
    nz[t] = s == 0.0 ? 1.0 : n * (1.0 / std::sqrt(s));
  }

  int Move(std::size_t t, bool spike, double cosLimit, double minElevation) {
    const auto& v = tin_.triangles[t];
    const auto at = [&](std::size_t k) { return z[static_cast<std::size_t>(v[k % 3])]; };
    std::size_t pick = 0;
    for (std::size_t k = 1; k < 3; ++k) {
      if (spike ? at(k) > at(pick) : at(k) < at(pick)) pick = k;
    }
    const double a = spike ? at(pick) - at(pick + 1) : at(pick + 1) - at(pick);
    const double b = spike ? at(pick) - at(pick + 2) : at(pick + 2) - at(pick);
    if (a < minElevation || b < minElevation) return 0;
    const auto vertex = static_cast<std::size_t>(v[pick]);
    const auto& list = tin_.vertices[vertex].triangles;
    double mean = 0.0;
    double sum = 0.0;
    for (const auto other : list) mean += nz[static_cast<std::size_t>(other)];
    const auto k = static_cast<double>(list.size());
    if (mean / k > cosLimit) return 0;
    for (const auto other : list) {
      for (const auto corner : tin_.triangles[static_cast<std::size_t>(other)]) {
        sum += z[static_cast<std::size_t>(corner)];
      }
    }
    z[vertex] = (sum - k * z[vertex]) / (2 * k);
    for (const auto other : list) Renew(static_cast<std::size_t>(other));
    return 1;
  }

  const ReferenceTin& tin_;
};

std::vector<SampleTriangle> RoughMesh() {
  auto triangles = JitteredMesh(40, 50, 7);
  for (SampleTriangle& triangle : triangles) {
    for (PointRecord& corner : triangle) corner.z *= 1.0 + corner.id % 7;
  }
  return triangles;
}

TEST_F(TINFilter, SpikeGoesToTheMeanOfItsNeighbours) {
  LoadTriangles(Tent(40.0, {1.0, 2.0, 3.0, 4.0}));
  EXPECT_EQ(tin.SlopeFilter(30.0, 1.0), 1);
  EXPECT_EQ(Z(0), 2.5);  // each neighbour is in two of the four triangles
  EXPECT_EQ(Z(1), 1.0);
  EXPECT_EQ(tin.SlopeFilter(30.0, 1.0), 0);
}

TEST_F(TINFilter, PitGoesToTheMeanOfItsNeighbours) {
  LoadTriangles(Tent(-40.0, {1.0, 2.0, 3.0, 4.0}));
  EXPECT_EQ(tin.SlopeFilter(30.0, 5.0), 1);
  EXPECT_EQ(Z(0), 2.5);
}

TEST_F(TINFilter, NormalsAroundAMovedVertexAreNew) {
  LoadTriangles(Tent(40.0, {0.0, 0.0, 0.0, 0.0}));
  EXPECT_LT(tin.triangles[0].nz, 0.3);
  tin.SlopeFilter(30.0, 1.0);
  for (const TINTriangle& triangle : tin.triangles) {
    EXPECT_EQ(triangle.nx, 0.0);
    EXPECT_EQ(triangle.ny, 0.0);
    EXPECT_EQ(triangle.nz, 1.0);
  }
}

TEST_F(TINFilter, MaximumSlope90LeavesNearlyEverything) {
  LoadTriangles(Tent(1e6, {0.0, 0.0, 0.0, 0.0}));
  EXPECT_EQ(tin.SlopeFilter(90.0, 1.0), 0);
  EXPECT_EQ(Z(0), 1e6);
}

TEST_F(TINFilter, MaximumSlope0LeavesTheElevationToDecide) {
  LoadTriangles(Tent(0.5, {0.0, 0.0, 0.0, 0.0}));
  EXPECT_EQ(tin.SlopeFilter(0.0, 0.6), 0);
  EXPECT_EQ(tin.SlopeFilter(0.0, 0.5), 1);  // as high as the limit is enough
  EXPECT_EQ(Z(0), 0.0);
}

TEST_F(TINFilter, VertexThatIsSteepOnOneSideOnlyStays) {
  // east, north and west lie level with the centre, the south far below
  LoadTriangles(Tent(100.0, {100.0, 100.0, 100.0, 0.0}));
  EXPECT_LT(tin.triangles[2].nz, 0.2);
  const double mean = (tin.triangles[0].nz + tin.triangles[1].nz + tin.triangles[2].nz +  //
                       tin.triangles[3].nz) /
                      4.0;
  EXPECT_EQ(tin.NeighbourMeanZ(0, std::nextafter(mean, 0.0)), -4096.0);
  EXPECT_EQ(tin.NeighbourMeanZ(0, mean), 75.0);
  EXPECT_EQ(tin.SlopeFilter(60.0, 0.0), 1);  // of the south pit alone, which two steep triangles hold
  EXPECT_EQ(Z(0), 100.0);
  EXPECT_EQ(Z(4), 100.0);
}

TEST_F(TINFilter, MinimumElevation0LetsFlatToppedTrianglesPass) {
  const PointRecord a = {0, 0.0, 0.0, 50.0, 1.0};
  const PointRecord b = {1, 10.0, 0.0, 50.0, 1.0};
  const PointRecord c = {2, 0.0, 10.0, 0.0, 1.0};
  LoadTriangles({{a, b, c}});
  EXPECT_EQ(tin.SlopeFilter(30.0, 0.0), 2);
  EXPECT_EQ(Z(0), 25.0);  // as a spike, to the mean of 50 and 0
  EXPECT_EQ(Z(1), 50.0);
  EXPECT_EQ(Z(2), 37.5);  // as a pit, to the mean of 25 and 50
}

TEST_F(TINFilter, UprightTriangleQualifiesAt90Degrees) {
  const PointRecord a = {0, 0.0, 0.0, 0.0, 1.0};
  const PointRecord b = {1, 10.0, 0.0, 0.0, 1.0};
  const PointRecord c = {2, 5.0, 0.0, 8.0, 1.0};
  LoadTriangles({{a, b, c}});
  EXPECT_EQ(tin.triangles[0].nz, 0.0);
  EXPECT_EQ(tin.SlopeFilter(90.0, 1.0), 1);
  EXPECT_EQ(Z(2), 0.0);
}

TEST_F(TINFilter, TwoEqualHighCornersPassOnlyWithElevation0) {
  const PointRecord a = {0, 0.0, 0.0, 50.0, 1.0};
  const PointRecord b = {1, 10.0, 0.0, 50.0, 1.0};
  const PointRecord c = {2, 0.0, 10.0, 0.0, 1.0};
  LoadTriangles({{c, a, b}});
  EXPECT_EQ(tin.HighestCorner(tin.triangles[0]), 1);
  EXPECT_EQ(tin.LowestCorner(tin.triangles[0]), 0);
  // corner a goes to the mean of b and c
  EXPECT_EQ(tin.SlopeFilter(30.0, 0.0), 2);
  EXPECT_EQ(Z(1), 25.0);
}

TEST_F(TINFilter, CornersOfOneHeightAreTheFirst) {
  LoadTriangles(Tent(7.0, {7.0, 7.0, 7.0, 7.0}));
  EXPECT_EQ(tin.HighestCorner(tin.triangles[0]), 0);
  EXPECT_EQ(tin.LowestCorner(tin.triangles[0]), 0);
}

TEST_F(TINFilter, MeanOfExactlyNoDataIsSkipped) {
  LoadTriangles(Tent(0.0, {-4096.0, -4096.0, -4096.0, -4096.0}));
  EXPECT_EQ(tin.NeighbourMeanZ(0, 1.0), -4096.0);
  EXPECT_EQ(tin.SlopeFilter(30.0, 1.0), 0);
  EXPECT_EQ(Z(0), 0.0);
}

TEST_F(TINFilter, HeightsThatAreNoNumbersAreNotSteep) {
  LoadTriangles(Tent(std::nan(""), {1.0, 2.0, 3.0, 4.0}));
  EXPECT_EQ(tin.SlopeFilter(0.0, 0.0), 0);
}

TEST_F(TINFilter, EqualsThePlainFilterBitForBit) {
  const auto triangles = RoughMesh();
  LoadTriangles(triangles);
  const ReferenceTin reference(triangles);
  PlainFilter plain(reference);
  for (int pass = 0; pass < 4; ++pass) {
    const int expected = plain.Run(35.0, 0.2);
    EXPECT_GT(expected, 0);
    EXPECT_EQ(tin.SlopeFilter(35.0, 0.2), expected);
    for (std::size_t v = 0; v < plain.z.size(); ++v) ASSERT_EQ(Z(v), plain.z[v]) << v;
    for (std::size_t t = 0; t < plain.nz.size(); ++t) ASSERT_EQ(tin.triangles[t].nz, plain.nz[t]) << t;
  }
}

TEST_F(TINFilter, FilterAndSmoothingLeavePlaceIdAndConnectivity) {
  LoadTriangles(RoughMesh());
  TIN before;
  ASSERT_TRUE(Load(before, "a.tin"));
  tin.SlopeFilter(30.0, 0.1);
  tin.Smooth();
  ASSERT_EQ(tin.vertices.size(), before.vertices.size());
  std::size_t nMoved = 0;
  for (std::size_t v = 0; v < tin.vertices.size(); ++v) {
    PointRecord expected = before.vertices[v];
    nMoved += expected.z != Z(v) ? 1 : 0;
    expected.z = Z(v);
    EXPECT_EQ(static_cast<const PointRecord&>(tin.vertices[v]), expected);
    EXPECT_TRUE(std::ranges::equal(tin.vertices[v].triangles, before.vertices[v].triangles));
  }
  EXPECT_EQ(nMoved, tin.vertices.size());
  for (std::size_t t = 0; t < tin.triangles.size(); ++t) {
    EXPECT_EQ(std::memcmp(tin.triangles[t].v, before.triangles[t].v, sizeof tin.triangles[t].v), 0);
  }
}

TEST_F(TINFilter, SmoothTakesAVertexHalfwayToItsNeighbours) {
  LoadTriangles(Tent(10.0, {0.0, 0.0, 0.0, 0.0}));
  EXPECT_EQ(tin.Smooth(), 1);
  EXPECT_EQ(Z(0), 5.0);
  // east: the centre at sqrt(200) counts twice, north and south at sqrt(200) once each
  EXPECT_DOUBLE_EQ(Z(1), (10.0 * 2.0 / 4.0) / 2.0);
}

TEST_F(TINFilter, SmoothEqualsThePlainOneBitForBit) {
  const auto triangles = RoughMesh();
  LoadTriangles(triangles);
  const ReferenceTin reference(triangles);
  PlainFilter plain(reference);
  for (int pass = 0; pass < 2; ++pass) {
    plain.Smooth();
    tin.Smooth();
    for (std::size_t v = 0; v < plain.z.size(); ++v) ASSERT_EQ(Z(v), plain.z[v]) << v;
  }
}

TEST_F(TINFilter, SmoothTwiceIsNoWiderKernel) {
  LoadTriangles(Tent(8.0, {0.0, 0.0, 0.0, 0.0}));
  tin.Smooth();
  tin.Smooth();
  EXPECT_NE(Z(0), 8.0 / 4.0);  // the ring has risen meanwhile
  EXPECT_GT(Z(0), 8.0 / 4.0);
}

TEST_F(TINFilter, SmoothLeavesNormalsAndExtents) {
  LoadTriangles(Tent(40.0, {0.0, 0.0, 0.0, 0.0}));
  const double nz = tin.triangles[0].nz;
  tin.Smooth();
  EXPECT_EQ(tin.triangles[0].nz, nz);
  EXPECT_EQ(tin.extent.maxZ, 40.0);
  EXPECT_EQ(tin.ptsMaxZ, 40.0);
  EXPECT_EQ(tin.InterpolateZ({1.0, 1.0, 0.0}, 0), 12.0);  // the old slope from the new height of the centre
}

TEST_F(TINFilter, NeighboursAtNoDistanceOrOfTheSameIdDoNotCount) {
  const PointRecord a = {0, 0.0, 0.0, 4.0, 1.0};
  const PointRecord twin = {1, 0.0, 0.0, 4.0, 1.0};
  const PointRecord b = {2, 10.0, 0.0, 6.0, 1.0};
  LoadTriangles({{a, b, twin}});
  tin.Smooth();
  EXPECT_EQ(Z(0), 5.0);  // halfway to b alone
  tin.MarkVertices(std::vector<std::int32_t>{0, 1, 2});
  tin.Smooth();
  EXPECT_TRUE(std::isnan(Z(0)));  // no neighbour is left
}

TEST_F(TINFilter, PointIntervalOf0IsTheMeanDistance) {
  LoadTriangles(GridMesh(3, 3, 4.0, [](int, int) { return 0.0; }));
  tin.SetPointInterval(2.5);
  EXPECT_EQ(tin.spacingX, 2.5);
  EXPECT_EQ(tin.spacingY, 2.5);
  tin.SetPointInterval(0.0);
  EXPECT_EQ(tin.spacingX, std::sqrt(8.0 * 8.0 / 9.0));
  tin.ptsMaxX = tin.ptsMinX;
  tin.SetPointInterval(0.0);
  EXPECT_EQ(tin.spacingX, 1.0);
  EXPECT_EQ(tin.spacingY, 1.0);
}

}  // namespace
}  // namespace corvane
