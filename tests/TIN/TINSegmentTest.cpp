// Plane cuts, groups, slopes and histograms.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "TIN/CutAreas.h"
#include "TIN/TIN.h"
#include "TINSample.h"
#include "support/TempFolder.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

using testing::ElementsAre;

using List = std::vector<std::int32_t>;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

class TINSegment : public testing::Test {
 protected:
  void LoadInto(TIN& target, const std::vector<SampleTriangle>& triangles) {
    WriteFileBytes("a.tin", TinBytes(triangles));
    ASSERT_TRUE(Load(target, "a.tin"));
  }
  void LoadTriangles(const std::vector<SampleTriangle>& triangles) { LoadInto(tin, triangles); }

  // The index of the vertex with this id.
  std::int32_t WithId(std::int32_t id) const {
    const auto found = std::ranges::find(tin.vertices, id, &TINVertex::id);
    return static_cast<std::int32_t>(found - tin.vertices.begin());
  }

  List MarkedIds(const TIN& marked, const TIN& unmarked) const {
    List ids;
    for (std::size_t v = 0; v < marked.vertices.size(); ++v) {
      if (marked.vertices[v].id == -1) ids.push_back(unmarked.vertices[v].id);
    }
    std::ranges::sort(ids);
    return ids;
  }

  TempFolder folder;
  TestFrontEnd ui;
  TIN tin;
};

// A plain of 8 x 8 points, 10 apart, with a table of 3 x 3 points, 6 high, and a mast of 1 point, 4 high.
double TableAndMast(int row, int col) {
  if (row >= 1 && row <= 3 && col >= 1 && col <= 3) return 6.0;
  return row == 6 && col == 6 ? 4.0 : 0.0;
}

// Rough ground: hills with steps and spikes; vertex 1000 lies `pit` deeper.
std::vector<SampleTriangle> RoughMesh(unsigned seed, double pit = 0.0) {
  auto triangles = JitteredMesh(45, 60, seed);
  for (SampleTriangle& triangle : triangles) {
    for (PointRecord& corner : triangle) {
      const double hill = 6.0 * std::sin(corner.x / 9.0) * std::cos(corner.y / 7.0);
      const double step = (corner.id / 60 / 4 + corner.id % 60 / 5) % 3 == 0 ? 3.0 : 0.0;
      corner.z = 0.2 * corner.z + hill + step + (corner.id % 41 == 0 ? 5.0 : 0.0);
      if (corner.id == 1000) corner.z -= pit;
    }
  }
  return triangles;
}

template <typename Array>
auto& At(Array& array, std::int32_t i) {
  return array[static_cast<std::size_t>(i)];
}

// The segmentation word for word: lists of lists, whole arrays cleared for each group, groups erased.
class PlainSegmentation {
 public:
  explicit PlainSegmentation(TIN& tin) : tin_(tin), labels(tin.vertices.size(), -1) {
    tin.BuildNeighbours();
    tin.CalcTrianglesArea();
  }

  TINGroup Flood(std::int32_t vertex, double cut, std::int32_t label) {
    TINGroup group;
    group.label = label;
    group.cutHeight = cut;
    group.members = {vertex};
    At(labels, vertex) = label;
    for (std::size_t i = 0; i < group.members.size(); ++i) {
      for (const auto n : tin_.neighbours[static_cast<std::size_t>(group.members[i])]) {
        if (At(tin_.vertices, n).z >= cut && At(labels, n) != label) {
          At(labels, n) = label;
          group.members.push_back(n);
        }
      }
    }
    return group;
  }

  double Area(const TINGroup& group) {
    std::vector<bool> marked(tin_.triangles.size(), false);
    double sum = 0.0;
    for (const auto member : group.members) {
      for (const auto t : At(tin_.vertices, member).triangles) {
        if (marked[static_cast<std::size_t>(t)]) continue;
        marked[static_cast<std::size_t>(t)] = true;
        const auto& v = At(tin_.triangles, t).v;
        if (At(labels, v[0]) == group.label && At(labels, v[1]) == group.label &&
            At(labels, v[2]) == group.label) {
          sum += std::fabs(At(tin_.triangleAreas, t));
        }
      }
    }
    return sum;
  }

  void SegmentByPlaneCut(double zStart, double zEnd, double zStep, double areaLimit) {
    std::int32_t label = -1;
    double cut = zStart + zStep;
    for (std::int32_t v = 0; v < tin_.nPoints; ++v) {
      if (At(labels, v) == -1 && At(tin_.vertices, v).z >= cut) groups.push_back(Flood(v, cut, ++label));
    }
    std::size_t i = 0;
    while (i < groups.size() && cut <= zEnd) {
      groups[i].area = Area(groups[i]);
      if (groups[i].area <= areaLimit) {
        ++i;
        continue;
      }
      cut = zStep + groups[i].cutHeight;
      const TINGroup parent = groups[i];
      bool split = false;
      for (const auto member : parent.members) {
        if (At(tin_.vertices, member).z >= cut && At(labels, member) == parent.label) {
          groups.push_back(Flood(member, cut, ++label));
          split = true;
        }
      }
      if (split)
        groups.erase(groups.begin() + static_cast<std::ptrdiff_t>(i));
      else
        ++i;
    }
  }

  void Reduce(double areaLimit) {
    std::ranges::fill(labels, -1);
    std::vector<double> slopes;
    for (std::int32_t v = 0; v < tin_.nPoints; ++v) slopes.push_back(Slope(v));
    const double min = *std::ranges::min_element(slopes);
    const double max = *std::ranges::max_element(slopes);
    std::vector<int> counts(static_cast<std::size_t>((max - min) / 0.1) + 1, 0);
    for (const double slope : slopes) ++counts[static_cast<std::size_t>((slope - min) / 0.1)];
    std::size_t bin = counts.size();
    for (int sum = 0; sum < static_cast<int>(tin_.nPoints * 0.05) || bin == counts.size();)
      sum += counts[--bin];
    const double threshold = min + static_cast<double>(bin) * 0.1;

    List seeds;
    for (std::int32_t v = 0; v < tin_.nPoints; ++v) {
      if (At(slopes, v) > threshold) seeds.push_back(v);
    }
    std::ranges::stable_sort(seeds, {}, [&](std::int32_t v) { return At(tin_.vertices, v).z; });
    std::int32_t label = 0;
    for (const auto seed : seeds) {
      if (At(labels, seed) != -1) continue;
      TINGroup group = Flood(seed, At(tin_.vertices, seed).z, label);
      group.area = Area(group);
      if (group.area >= areaLimit) {
        for (const auto member : group.members) At(labels, member) = -1;
      } else {
        groups.push_back(group);
        ++label;
      }
    }
  }

  double Slope(std::int32_t v) const {
    double slope = 0.0;
    for (const auto n : tin_.neighbours[static_cast<std::size_t>(v)]) {
      const double dx = At(tin_.vertices, v).x - At(tin_.vertices, n).x;
      const double dy = At(tin_.vertices, v).y - At(tin_.vertices, n).y;
      const double d = std::sqrt(dx * dx + dy * dy);
      if (d != 0.0) slope = std::max(slope, std::fabs(At(tin_.vertices, v).z - At(tin_.vertices, n).z) / d);
    }
    return slope;
  }

 private:
  TIN& tin_;

 public:
  List labels;
  std::vector<TINGroup> groups;
};

void ExpectSame(const TIN& tin, const PlainSegmentation& plain) {
  ASSERT_EQ(tin.groups.size(), plain.groups.size());
  for (std::size_t i = 0; i < plain.groups.size(); ++i) {
    EXPECT_EQ(tin.groups[i].label, plain.groups[i].label);
    EXPECT_EQ(tin.groups[i].cutHeight, plain.groups[i].cutHeight);
    EXPECT_EQ(tin.groups[i].area, plain.groups[i].area);
    EXPECT_EQ(tin.groups[i].members, plain.groups[i].members);
  }
  EXPECT_EQ(tin.labels, plain.labels);
}

TEST_F(TINSegment, SlopeIsTheSteepestWayToANeighbour) {
  LoadTriangles(TwoTriangles());
  ASSERT_EQ(tin.ComputeSlopes(), 1);
  // heights 1, 2, 3, 4 around a square of 10; 0 and 2 are joined
  EXPECT_EQ(tin.vertexSlopes, (std::vector<double>{0.3, 0.1, 0.2 / std::sqrt(2.0), 0.3}));
  tin.vertices[1].z = 12.0;
  tin.ComputeSlopes();
  EXPECT_EQ(tin.vertexSlopes[0], 1.1);
}

TEST_F(TINSegment, NeighbourAtNoPlanDistanceIsSkipped) {
  LoadTriangles({{PointRecord{0, 0, 0, 0, 1}, {1, 10, 0, 5, 1}, {2, 0, 0, 99, 1}}});
  ASSERT_EQ(tin.ComputeSlopes(), 1);
  EXPECT_EQ(tin.vertexSlopes[0], 0.5);
}

TEST_F(TINSegment, FloodTakesConnectedVerticesBreadthFirst) {
  LoadTriangles(GridMesh(3, 3, 1.0, [](int row, int) { return row == 1 ? 5.0 : 2.0; }));
  tin.BuildNeighbours();
  TINGroup group;
  tin.FloodGroup(WithId(3), 5.0, 7, group);
  EXPECT_EQ(group.label, 7);
  EXPECT_EQ(group.cutHeight, 5.0);
  EXPECT_THAT(group.members, ElementsAre(WithId(3), WithId(4), WithId(5)));
  EXPECT_EQ(std::ranges::count(tin.labels, 7), 3);
  EXPECT_EQ(std::ranges::count(tin.labels, -1), 6);
}

TEST_F(TINSegment, GroupAreaCountsTrianglesOfWhichAllCornersBelong) {
  LoadTriangles(GridMesh(8, 8, 10.0, TableAndMast));
  tin.BuildNeighbours();
  TINGroup group;
  tin.FloodGroup(WithId(9), 6.0, 0, group);
  EXPECT_EQ(group.members.size(), 9u);
  EXPECT_EQ(tin.GroupArea(group), 0.0);  // no areas yet
  tin.CalcTrianglesArea();
  EXPECT_EQ(tin.GroupArea(group), 400.0);
  EXPECT_EQ(group.area, 400.0);
  tin.labels[static_cast<std::size_t>(WithId(18))] = 3;  // the middle: every triangle but two loses a corner
  EXPECT_EQ(tin.GroupArea(group), 100.0);
}

TEST_F(TINSegment, LabelsCountOnFromTheIncomingOne) {
  LoadTriangles(GridMesh(8, 8, 10.0, TableAndMast));
  tin.BuildNeighbours();
  std::int32_t label = 4;
  tin.LabelAboveCut(3.0, label);
  EXPECT_EQ(label, 6);
  ASSERT_EQ(tin.groups.size(), 2u);
  EXPECT_EQ(tin.groups[0].members.size(), 9u);
  EXPECT_EQ(tin.groups[1].members, List{WithId(54)});
  EXPECT_EQ(std::ranges::count(tin.labels, 4), 54);
}

TEST_F(TINSegment, SplitTakesTheMembersWithTheGroupsOwnLabel) {
  LoadTriangles(GridMesh(3, 7, 1.0, [](int, int col) { return col % 2 == 0 ? 5.0 + col : 3.0; }));
  tin.BuildNeighbours();
  std::int32_t label = -1;
  tin.LabelAboveCut(2.0, label);
  ASSERT_EQ(tin.groups.size(), 1u);
  tin.labels[static_cast<std::size_t>(WithId(0))] = 77;
  tin.labels[static_cast<std::size_t>(WithId(7))] = 77;
  tin.labels[static_cast<std::size_t>(WithId(14))] = 77;
  tin.SplitGroup(0, 4.0, label);
  EXPECT_EQ(label, 3);
  ASSERT_EQ(tin.groups.size(), 4u);
  EXPECT_EQ(tin.groups[0].members.size(), 21u);  // the parent is the caller's to erase
  for (std::size_t i = 1; i < 4; ++i) EXPECT_EQ(tin.groups[i].members.size(), 3u);
}

TEST_F(TINSegment, AreaLimitAboveThePlanAreaAcceptsTheFirstGroups) {
  LoadTriangles(GridMesh(8, 8, 10.0, TableAndMast));
  EXPECT_EQ(tin.SegmentByPlaneCut(0.0, 6.0, 0.1, 1e6), 1);
  ASSERT_EQ(tin.groups.size(), 2u);
  EXPECT_EQ(tin.groups[0].area, 400.0);
  EXPECT_EQ(tin.groups[0].cutHeight, 0.1);
}

TEST_F(TINSegment, AreaAsLargeAsTheLimitIsAccepted) {
  LoadTriangles(GridMesh(8, 8, 10.0, TableAndMast));
  tin.SegmentByPlaneCut(0.0, 6.0, 1.0, 400.0);
  ASSERT_EQ(tin.groups.size(), 2u);
  EXPECT_EQ(tin.groups[0].cutHeight, 1.0);
}

TEST_F(TINSegment, GroupThatSplitsIntoNothingStays) {
  LoadTriangles(GridMesh(8, 8, 10.0, TableAndMast));
  tin.SegmentByPlaneCut(0.0, 100.0, 1.0, 100.0);
  ASSERT_EQ(tin.groups.size(), 2u);
  EXPECT_EQ(tin.groups[0].members, List{WithId(54)});  // the mast was next when the table went to the end
  EXPECT_EQ(tin.groups[1].area, 400.0);                // larger than the limit
  EXPECT_EQ(tin.groups[1].cutHeight, 6.0);             // it splits up to its own height
}

TEST_F(TINSegment, ReachingTheEndInOneGroupEndsTheLoop) {
  LoadTriangles(GridMesh(8, 8, 10.0, TableAndMast));
  tin.SegmentByPlaneCut(0.0, 2.5, 1.0, 100.0);
  ASSERT_EQ(tin.groups.size(), 2u);
  EXPECT_EQ(tin.groups[1].cutHeight, 3.0);  // the cut that went beyond was still made
}

TEST_F(TINSegment, CutsAreARunningSum) {
  LoadTriangles(GridMesh(8, 8, 10.0, TableAndMast));
  tin.SegmentByPlaneCut(0.0, 6.0, 0.1, 100.0);
  double cut = 0.0 + 0.1;
  while (0.1 + cut <= 6.0) cut = 0.1 + cut;
  EXPECT_EQ(tin.groups[1].cutHeight, cut);
  EXPECT_NE(cut, 0.1 * std::round(cut / 0.1));
}

TEST_F(TINSegment, CutThatDoesNotRiseHasNoChildren) {
  LoadTriangles(GridMesh(4, 4, 10.0, [](int row, int) { return row == 0 ? 1e16 : 1e16 + 64.0; }));
  tin.SegmentByPlaneCut(tin.extent.minZ, tin.extent.maxZ, 0.1, 1.0);
  ASSERT_EQ(tin.groups.size(), 1u);
  EXPECT_EQ(tin.groups[0].members.size(), 16u);
}

TEST_F(TINSegment, InfiniteHeightsEnd) {
  LoadTriangles(GridMesh(4, 4, 10.0, [](int row, int) { return row == 0 ? 0.0 : kInfinity; }));
  EXPECT_EQ(tin.SegmentByPlaneCut(0.0, kInfinity, 0.1, 1.0), 1);
  EXPECT_EQ(tin.groups.size(), 1u);
}

// Also in further runs, on the labels and groups of those before, with a reduction between them.
TEST_F(TINSegment, EqualsThePlainSegmentation) {
  for (const double pit : {0.0, 70.0}) {
    for (const double areaLimit : {0.0, 1.0, 12.0, 300.0, 1e9}) {
      TIN fast;
      TIN slow;
      LoadInto(fast, RoughMesh(3, pit));
      LoadInto(slow, RoughMesh(3, pit));
      const double zStart = fast.extent.minZ;
      const double zEnd = fast.extent.maxZ;
      PlainSegmentation plain(slow);
      fast.SegmentByPlaneCut(zStart, zEnd, 0.1, areaLimit);
      plain.SegmentByPlaneCut(zStart, zEnd, 0.1, areaLimit);
      ExpectSame(fast, plain);
      fast.SegmentByPlaneCut(zStart, zEnd, 0.25, areaLimit / 2.0);
      plain.SegmentByPlaneCut(zStart, zEnd, 0.25, areaLimit / 2.0);
      ExpectSame(fast, plain);
      ASSERT_EQ(fast.ReduceSurface(areaLimit), 1);
      plain.Reduce(areaLimit);
      ExpectSame(fast, plain);
      fast.SegmentByPlaneCut(zStart, zEnd, 0.1, areaLimit / 3.0);
      plain.SegmentByPlaneCut(zStart, zEnd, 0.1, areaLimit / 3.0);
      ExpectSame(fast, plain);
    }
  }
}

TEST_F(TINSegment, CutsFromADeepPitUpEndAtTheSameGroups) {
  // A vertex without a height, -99999, makes 800,000 cuts in which nothing else happens.
  TIN shallow;
  LoadInto(shallow, RoughMesh(3, 10.0));
  shallow.SegmentByPlaneCut(-30.0, shallow.extent.maxZ, 0.125, 12.0);
  LoadTriangles(RoughMesh(3, 99999.0));
  tin.SegmentByPlaneCut(-100000.0, tin.extent.maxZ, 0.125, 12.0);
  ASSERT_EQ(tin.groups.size(), shallow.groups.size());
  for (std::size_t i = 0; i < tin.groups.size(); ++i) {
    EXPECT_EQ(tin.groups[i].members, shallow.groups[i].members);
    EXPECT_EQ(tin.groups[i].cutHeight, shallow.groups[i].cutHeight);  // steps of 1/8 add up exactly
  }
}

TEST_F(TINSegment, SecondRunGivesAnotherResult) {
  // The first run ends with the first group that would have to be split above zEnd, and leaves the others
  // whole: until the next run.
  LoadTriangles(RoughMesh(8));
  const double zEnd = tin.extent.minZ + 6.0;
  const auto run = [&] {
    tin.SegmentByPlaneCut(tin.extent.minZ, zEnd, 0.5, 12.0);
    tin.DropFlatGroups(0.0);
    std::vector<List> members;
    for (const TINGroup& group : tin.groups) members.push_back(group.members);
    return members;
  };
  const auto once = run();
  const auto twice = run();
  EXPECT_NE(twice, once);
}

TEST_F(TINSegment, DropFlatGroupsOf0DropsOnlyWhatHasNoSlopeAtAll) {
  LoadTriangles(GridMesh(8, 8, 10.0, [](int, int) { return 3.0; }));
  tin.BuildNeighbours();
  std::int32_t label = -1;
  tin.LabelAboveCut(1.0, label);
  ASSERT_EQ(tin.groups.size(), 1u);
  EXPECT_EQ(tin.DropFlatGroups(0.0), 1);
  EXPECT_TRUE(tin.groups.empty());
}

TEST_F(TINSegment, DropFlatGroupsDoesNotSkipTheGroupAfterADroppedOne) {
  LoadTriangles(GridMesh(8, 8, 10.0, TableAndMast));
  tin.BuildNeighbours();
  std::int32_t label = -1;
  tin.LabelAboveCut(3.0, label);
  tin.groups.insert(tin.groups.begin(), 2, tin.groups[1]);  // mast, mast, table, mast
  EXPECT_EQ(tin.DropFlatGroups(0.5), 1);                    // the mast's slope is 0.4, the table's 0.6
  ASSERT_EQ(tin.groups.size(), 1u);
  EXPECT_EQ(tin.groups[0].members.size(), 9u);
}

TEST_F(TINSegment, PitsHaveASlopeAndNoLowerNeighbour) {
  LoadTriangles(GridMesh(5, 5, 10.0, [](int row, int col) { return row == 2 && col == 2 ? -1.0 : 0.0; }));
  tin.ComputeSlopes();
  List pits;
  tin.FindPits(0.0, pits);
  EXPECT_EQ(pits, List{WithId(12)});
}

TEST_F(TINSegment, LevelGroundBesideAStepIsAPit) {
  LoadTriangles(GridMesh(3, 4, 10.0, [](int, int col) { return col == 3 ? 5.0 : 0.0; }));
  tin.ComputeSlopes();
  List pits;
  tin.FindPits(0.0, pits);
  std::ranges::transform(pits, pits.begin(),
                         [&](std::int32_t v) { return tin.vertices[static_cast<std::size_t>(v)].id; });
  std::ranges::sort(pits);
  EXPECT_THAT(pits, ElementsAre(2, 6, 10));
}

TEST_F(TINSegment, PitOfAFlatAreaIsNotListed) {
  LoadTriangles(GridMesh(3, 3, 10.0, [](int, int) { return 2.0; }));
  tin.ComputeSlopes();
  List pits;
  tin.FindPits(0.0, pits);
  EXPECT_TRUE(pits.empty());
}

TEST_F(TINSegment, MarkedMembersHaveIdMinusOne) {
  LoadTriangles(GridMesh(8, 8, 10.0, TableAndMast));
  TIN before;
  LoadInto(before, GridMesh(8, 8, 10.0, TableAndMast));
  tin.SegmentByPlaneCut(0.0, 6.0, 1.0, 1e6);
  tin.MarkGroupMembers();
  EXPECT_THAT(MarkedIds(tin, before), ElementsAre(9, 10, 11, 17, 18, 19, 25, 26, 27, 54));
}

TEST_F(TINSegment, AreasAboveSeedsAreThoseOfTheFloods) {
  LoadTriangles(RoughMesh(11));
  tin.CalcTrianglesArea();
  PlainSegmentation plain(tin);
  std::vector<SlopeSeed> seeds;
  for (std::int32_t v = 0; v < tin.nPoints; v += 37) {
    seeds.push_back({tin.vertices[static_cast<std::size_t>(v)].z, 0.0, v});
  }
  std::ranges::sort(seeds, {}, &SlopeSeed::z);
  const std::vector<double> areas = AreasAboveSeeds(tin, seeds);
  for (std::size_t i = 0; i < seeds.size(); ++i) {
    std::ranges::fill(plain.labels, -1);
    EXPECT_NEAR(areas[i], plain.Area(plain.Flood(seeds[i].vertex, seeds[i].z, 0)), 1e-9);
  }
}

TEST_F(TINSegment, ReduceSurfaceEqualsThePlainOne) {
  for (const double areaLimit : {-1.0, 0.0, 1.0, 20.0, 200.0, 1e9}) {
    TIN fast;
    TIN slow;
    LoadInto(fast, RoughMesh(5));
    LoadInto(slow, RoughMesh(5));
    ASSERT_EQ(fast.ReduceSurface(areaLimit), 1);
    PlainSegmentation plain(slow);
    plain.Reduce(areaLimit);
    ExpectSame(fast, plain);
    EXPECT_EQ(fast.groups.empty(), areaLimit <= 0.0);
  }
}

TEST_F(TINSegment, ReduceSurfaceDropsAnAreaAsLargeAsTheLimit) {
  LoadTriangles(GridMesh(8, 8, 10.0, TableAndMast));
  ASSERT_EQ(tin.ReduceSurface(400.0), 1);
  for (const TINGroup& group : tin.groups) EXPECT_LT(group.area, 400.0);
  TIN other;
  LoadInto(other, GridMesh(8, 8, 10.0, TableAndMast));
  ASSERT_EQ(other.ReduceSurface(400.5), 1);
  EXPECT_TRUE(std::ranges::any_of(other.groups, [](const TINGroup& group) { return group.area == 400.0; }));
}

TEST_F(TINSegment, ReduceSurfaceFailsOnSlopesWithoutHistogram) {
  LoadTriangles(GridMesh(4, 4, 1.0, [](int row, int col) { return row + col == 2 ? 1e12 : 0.0; }));
  EXPECT_EQ(tin.ReduceSurface(100.0), -1);
  EXPECT_TRUE(tin.groups.empty());
}

TEST_F(TINSegment, FewerThan20VerticesHaveTheTopBinAsThreshold) {
  LoadTriangles(GridMesh(4, 4, 10.0, [](int row, int col) { return row == 1 && col == 1 ? 3.0 : 0.0; }));
  ASSERT_EQ(tin.ReduceSurface(1e6), 1);
  // slopes of 0.3 and 0.3 / sqrt(2), 0; bins from 0: the top bin begins at 0.2 or 0.3
  EXPECT_FALSE(tin.groups.empty());
}

TEST_F(TINSegment, ZHistogramCountsFromTheLowestVertex) {
  LoadTriangles(GridMesh(2, 3, 10.0, [](int row, int col) { return 2.0 + 0.25 * row + 0.5 * col; }));
  tin.RecalcZExtent();
  Histogram histogram;
  ASSERT_EQ(tin.ZHistogram(0.5, histogram), 1);
  EXPECT_EQ(histogram.binStarts, (std::vector<double>{2.0, 2.5, 3.0}));
  EXPECT_EQ(histogram.counts, (std::vector<std::int32_t>{2, 2, 2}));
}

TEST_F(TINSegment, HeightsWithoutAnEndMakeNoHistogram) {
  LoadTriangles(GridMesh(2, 3, 10.0, [](int row, int) { return row == 0 ? 0.0 : kInfinity; }));
  tin.RecalcZExtent();
  Histogram histogram;
  EXPECT_EQ(tin.ZHistogram(0.1, histogram), -1);
}

TEST_F(TINSegment, RawTriangleIsStoredFromMemory) {
  WriteFileBytes("a.tin", TinBytes(RoughMesh(2)));
  ASSERT_EQ(tin.ReadTIN("a.tin"), 0);
  EXPECT_FALSE(tin.IsStored());
  WriteFileBytes("a.tin", "");
  EXPECT_EQ(tin.StoreRawTriangles(), 0);
  EXPECT_EQ(tin.rawRecords, nullptr);
  EXPECT_EQ(tin.StoreRawTriangles(), 0);
  TIN same;
  LoadInto(same, RoughMesh(2));
  ASSERT_EQ(tin.vertices.size(), same.vertices.size());
  for (std::size_t v = 0; v < same.vertices.size(); ++v) {
    EXPECT_EQ(static_cast<const PointRecord&>(tin.vertices[v]), same.vertices[v]);
  }
}

// A group with a cut far below all heights, as FitTiles makes them, is not raised step by step.
TEST_F(TINSegment, GroupsFarBelowTheStartDoNotSplit) {
  LoadTriangles(GridMesh(3, 3, 10.0, [](int row, int col) { return 1e9 + row + col; }));
  tin.labels.assign(tin.vertices.size(), 0);
  tin.groups.resize(1);
  for (std::int32_t v = 0; v < 9; ++v) tin.groups[0].members.push_back(v);
  EXPECT_EQ(tin.SegmentByPlaneCut(1e9, 1e9 + 4.0, 0.1, 1.0), 1);
  EXPECT_LT(tin.groups.size(), 100u);
}

}  // namespace
}  // namespace corvane
