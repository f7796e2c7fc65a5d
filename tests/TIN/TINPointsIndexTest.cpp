#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "TIN/TINPoints.h"
#include "support/TempFolder.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

using List = std::vector<std::int32_t>;

TINPoints SetOf(const std::vector<std::pair<double, double>>& places) {
  TINPoints points;
  for (const auto& [x, y] : places) points.AddPoint({points.GetCount(), x, y, 0.0, 0.0});
  points.RecalcExtent();
  return points;
}

// All points x, y of 0..10 by 0..10, row by row, in cells of size 2.
TINPoints Lattice() {
  TINPoints points;
  for (int i = 0; i < 121; ++i) points.AddPoint({i, double(i % 11), double(i / 11), 0.0, 0.0});
  points.RecalcExtent();
  EXPECT_EQ(points.BuildIndexWithCell(2.0), 1);
  return points;
}

List Sorted(List list) {
  std::sort(list.begin(), list.end());
  return list;
}

List Collected(const TINPoints& points, const Region& region) {
  List list;
  EXPECT_EQ(points.CollectInRegion(region, list), 1);
  return list;
}

List Marked(TINPoints points, const Region& region) {
  EXPECT_EQ(points.MarkRegion(region), 1);
  List list;
  for (std::int32_t i = 0; i < points.GetCount(); ++i) {
    if (points.GetPoint(i)->id == -1) list.push_back(i);
  }
  return list;
}

Region Rectangle(double left, double top, double right, double bottom) {
  return {Region::kRectangle, 2, {left, top, right, bottom}};
}

Region Polygon(const std::vector<double>& coords) {
  return {Region::kPolygon, static_cast<std::int32_t>(coords.size() / 2), coords};
}

// Positions in the lattice with both coordinates within the limits, both included.
List LatticeBlock(int left, int top, int right, int bottom) {
  List list;
  for (int y = top; y <= bottom; ++y) {
    for (int x = left; x <= right; ++x) list.push_back(11 * y + x);
  }
  return list;
}

TEST(BuildIndex, StandsOnTheHeaderExtents) {
  TINPoints points = SetOf({{1, 1}, {3, 5}, {9, 2}, {4, 4}});
  EXPECT_EQ(points.GetIndex(), nullptr);
  EXPECT_EQ(points.BuildIndex(1.0), 1);
  ASSERT_NE(points.GetIndex(), nullptr);
  // cellSize = sqrt(8 * 4 * 1 / 4), and one cell more than whole sizes along each side
  EXPECT_EQ(points.index.cellSize, std::sqrt(8.0));
  EXPECT_EQ(points.index.nCols, 3);
  EXPECT_EQ(points.index.nRows, 2);
}

TEST(BuildIndex, APointOutsideOfTheHeaderShowsOneWarning) {
  TestFrontEnd frontEnd;
  TINPoints points = SetOf({{0, 0}, {1, 1}, {50, 50}, {60, 60}});
  points.SetExtent(4, {0, 10, 0, 10, 0, 0});
  EXPECT_EQ(points.BuildIndex(1.0), -1);
  EXPECT_EQ(points.GetIndex(), nullptr);
  EXPECT_EQ(frontEnd.EventsWith("message"),
            (std::vector<std::string>{"message warning: There is error in points extension!!"}));
}

TEST(BuildIndex, WithoutPointsFails) {
  EXPECT_EQ(TINPoints().BuildIndex(1.0), -1);
  EXPECT_EQ(TINPoints().BuildIndexWithCell(1.0), -1);
}

TEST(BuildIndex, ImpossibleCellsFail) {
  TINPoints points = SetOf({{0, 0}, {1e9, 1e9}});
  for (const double cellSize : {0.0, -1.0, 1e-3, std::nan("")}) {
    TestFrontEnd frontEnd;
    EXPECT_EQ(points.BuildIndexWithCell(cellSize), -1) << cellSize;
    EXPECT_EQ(points.GetIndex(), nullptr);
    EXPECT_EQ(frontEnd.events,
              (std::vector<std::string>{"message warning: There is error in points extension!!"}));
  }
  TestFrontEnd frontEnd;
  points.maxX = std::nan("");
  EXPECT_EQ(points.BuildIndex(1.0), -1);
  EXPECT_EQ(frontEnd.events.size(), 1u);
}

TEST(AddPoint, InsertsInTheIndex) {
  TestFrontEnd frontEnd;
  TINPoints points = Lattice();
  EXPECT_EQ(points.AddPoint({121, 3.5, 3.5, 0, 0}), 1);
  EXPECT_EQ(Sorted(Collected(points, Rectangle(3, 3, 4, 4))), (List{36, 37, 47, 48, 121}));
  EXPECT_EQ(points.AddPoint({122, 99, 99, 0, 0}), -1);
  EXPECT_EQ(points.GetCount(), 123);
}

TEST(RemovePoint, TakesThePointOutOfTheIndex) {
  TINPoints points = Lattice();
  EXPECT_EQ(points.RemovePoint(36), 1);
  EXPECT_EQ(Sorted(Collected(points, Rectangle(3, 3, 4, 4))), (List{37, 47, 48}));
}

TEST(NearestWithin, LooksInTheOneCellOfThePlace) {
  // Cells of size 10 from (0, 0).
  TINPoints points = SetOf({{0, 0}, {5, 5}, {11, 5}, {20, 20}});
  ASSERT_EQ(points.BuildIndexWithCell(10.0), 1);
  EXPECT_EQ(points.NearestWithin(9, 5, 100.0), 1);  // not 2, which is nearer but in the next cell
  EXPECT_EQ(points.NearestWithin(12, 5, 100.0), 2);
  EXPECT_EQ(points.NearestWithin(5, 15, 100.0), -1);
  EXPECT_EQ(points.NearestWithin(500, 5, 100.0), -1);
  EXPECT_EQ(points.NearestWithin(-500, 5, 100.0), -1);
}

TEST(NearestWithin, TheRadiusItselfIsTooFar) {
  TINPoints points = SetOf({{0, 0}, {3, 4}});
  ASSERT_EQ(points.BuildIndexWithCell(10.0), 1);
  points.RemovePoint(0);
  EXPECT_EQ(points.NearestWithin(0, 0, 5.0), -1);
  EXPECT_EQ(points.NearestWithin(0, 0, 5.0001), 1);
}

TEST(NearestWithin, TheFirstOfEqualsWinsAndDeletedPointsDoNotCount) {
  TINPoints points = SetOf({{4, 4}, {6, 4}, {4, 6}, {0, 0}});
  ASSERT_EQ(points.BuildIndexWithCell(10.0), 1);
  EXPECT_EQ(points.NearestWithin(5, 5, 3.0), 0);
  points.points[0].id = -1;
  EXPECT_EQ(points.NearestWithin(5, 5, 3.0), 1);
}

TEST(NearestInCell, HasNoRadius) {
  TINPoints points = SetOf({{0, 0}, {90, 90}, {100, 100}});
  ASSERT_EQ(points.BuildIndexWithCell(1000.0), 1);
  EXPECT_EQ(points.NearestInCell(40, 40), 0);
  EXPECT_EQ(points.NearestInCell(60, 60), 1);
  EXPECT_EQ(points.NearestInCell(5000, 60), -1);
  EXPECT_EQ(TINPoints().NearestInCell(0, 0), -1);
}

TEST(NearestInDirection, FindsTheNeighbourAlongEachAxis) {
  TINPoints points = Lattice();
  const std::int32_t middle = 5 * 11 + 5;
  EXPECT_EQ(points.NearestInDirection(middle, 0), middle - 1);
  EXPECT_EQ(points.NearestInDirection(middle, 1), middle + 1);
  EXPECT_EQ(points.NearestInDirection(middle, 2), middle - 11);
  EXPECT_EQ(points.NearestInDirection(middle, 3), middle + 11);
}

TEST(NearestInDirection, FailuresHaveTheirOwnNumbers) {
  TINPoints points = Lattice();
  EXPECT_EQ(SetOf({{0, 0}}).NearestInDirection(0, 0), -1);
  EXPECT_EQ(points.NearestInDirection(5000, 0), -1);
  EXPECT_EQ(points.NearestInDirection(60, 4), -3);
  EXPECT_EQ(points.NearestInDirection(60, -1), -3);
  EXPECT_EQ(points.NearestInDirection(0, 0), -4);  // nothing at smaller x
  EXPECT_EQ(points.NearestInDirection(0, 2), -4);
  EXPECT_EQ(points.NearestInDirection(120, 1), -4);
  EXPECT_EQ(points.NearestInDirection(120, 3), -4);
  points.points[60].x = 1e6;
  EXPECT_EQ(points.NearestInDirection(60, 0), -2);
}

TEST(NearestInDirection, HalfTheDistanceAsideCounts) {
  TINPoints points = SetOf({{0, 0}, {3, 0}, {2, 0.9}, {2.8, -0.5}, {10, 10}});
  points.SetExtent(4, {0, 10, -1, 10, 0, 0});
  ASSERT_EQ(points.BuildIndexWithCell(20.0), 1);
  EXPECT_EQ(points.NearestInDirection(0, 1), 2);  // 2 + 0.45 against 3 and 3.05
  points.SetSpacing(0.9, 1.0);                    // 0.9 aside is no longer less
  EXPECT_EQ(points.NearestInDirection(0, 1), 1);
}

TEST(NearestInDirection, TheFirstCellWithACandidateDecides) {
  TINPoints points = SetOf({{1, 1}, {1.9, 1.5}, {2.1, 1}, {9, 9}});
  points.SetExtent(4, {0, 10, 0, 10, 0, 0});
  ASSERT_EQ(points.BuildIndexWithCell(2.0), 1);
  EXPECT_EQ(points.NearestInDirection(0, 1), 1);  // 1.15, though the next cell has one of 1.1
}

TEST(CollectInRegion, ARectangleTakesAllFourEdges) {
  EXPECT_EQ(Sorted(Collected(Lattice(), Rectangle(2, 3, 5, 6))), LatticeBlock(2, 3, 5, 6));
}

TEST(MarkRegion, ARectangleTakesOnlyItsLeftAndTopEdges) {
  EXPECT_EQ(Marked(Lattice(), Rectangle(2, 3, 5, 6)), LatticeBlock(2, 3, 4, 5));
}

TEST(CollectInRegion, ARectangleIsCutToWholeNumbersAndNormalised) {
  EXPECT_EQ(Sorted(Collected(Lattice(), Rectangle(5.9, 6.9, 2.9, 3.9))), LatticeBlock(2, 3, 5, 6));
}

TEST(MarkRegion, APointIsCutToWholeNumbersFirst) {
  const TINPoints points = [] {
    TINPoints set = SetOf({{0, 0}, {3.9, 3.9}, {4.0, 3.0}, {1.5, 1.5}, {9, 9}});
    EXPECT_EQ(set.BuildIndexWithCell(2.0), 1);
    return set;
  }();
  EXPECT_EQ(Marked(points, Rectangle(1, 1, 4, 4)), (List{1, 3}));
  EXPECT_EQ(Sorted(Collected(points, Rectangle(1, 1, 4, 4))), (List{1, 2, 3}));
}

TEST(CollectInRegion, TheListIsInOrderOfRowColumnAndInsertion) {
  // Cells of size 2: (0..1, 0..1), then (2..3, 0..1), then the row above.
  EXPECT_EQ(Collected(Lattice(), Rectangle(0, 0, 3, 3)),
            (List{0, 1, 11, 12, 2, 3, 13, 14, 22, 23, 33, 34, 24, 25, 35, 36}));
}

TEST(CollectInRegion, AppendsToTheList) {
  List list = {77};
  EXPECT_EQ(Lattice().CollectInRegion(Rectangle(1, 1, 1, 1), list), 1);
  EXPECT_EQ(list, (List{77, 12}));
}

TEST(CollectInRegion, ARectangleBeyondTheGridTakesNothing) {
  EXPECT_EQ(Collected(Lattice(), Rectangle(100, 100, 200, 200)), List());
}

TEST(CollectInRegion, EdgesOfACounterClockwisePolygonAreInside) {
  EXPECT_EQ(Sorted(Collected(Lattice(), Polygon({2, 3, 5, 3, 5, 6, 2, 6, 2, 3}))), LatticeBlock(2, 3, 5, 6));
  EXPECT_EQ(Marked(Lattice(), Polygon({2, 3, 5, 3, 5, 6, 2, 6, 2, 3})), LatticeBlock(2, 3, 5, 6));
}

TEST(CollectInRegion, EdgesOfAClockwisePolygonAreOutside) {
  EXPECT_EQ(Sorted(Collected(Lattice(), Polygon({2, 3, 2, 6, 5, 6, 5, 3, 2, 3}))), LatticeBlock(3, 4, 4, 5));
  EXPECT_EQ(Marked(Lattice(), Polygon({2, 3, 2, 6, 5, 6, 5, 3, 2, 3})), LatticeBlock(3, 4, 4, 5));
}

TEST(CollectInRegion, ATriangleIsTheSmallestPolygon) {
  EXPECT_EQ(Sorted(Collected(Lattice(), Polygon({0, 0, 2, 0, 0, 2, 0, 0}))), (List{0, 1, 2, 11, 12, 22}));
  List list;
  TINPoints points = Lattice();
  EXPECT_EQ(points.CollectInRegion(Polygon({0, 0, 2, 0, 0, 2}), list), -1);
  EXPECT_EQ(points.MarkRegion(Polygon({0, 0, 2, 0, 0, 2})), -1);
}

TEST(CollectInRegion, DamagedRegionsAreRefused) {
  List list;
  TINPoints points = Lattice();
  for (const Region& region :
       {Region{0, 2, {1, 2, 3}}, Region{0, 1, {1, 2}}, Region{0, -5, {}},
        Region{2, 4, {0, 0, 1, 0, 1, 1, 0, 0}}, Region{1, 100, {0, 0, 1, 0, 1, 1, 0, 0}}}) {
    EXPECT_EQ(points.CollectInRegion(region, list), -1);
    EXPECT_EQ(points.MarkRegion(region), -1);
  }
  EXPECT_EQ(SetOf({{0, 0}}).CollectInRegion(Rectangle(0, 0, 1, 1), list), -1);
  EXPECT_TRUE(list.empty());
}

TEST(CollectInRegion, ACoordinateThatIsNotANumberSelectsNothing) {
  const double nan = std::nan("");
  List list;
  TINPoints points = Lattice();
  for (const Region& region :
       {Rectangle(nan, 0, 5, 5), Rectangle(0, nan, 5, 5), Rectangle(0, 0, nan, 5), Rectangle(0, 0, 5, nan),
        Polygon({0, 0, 5, 0, 0, nan, 0, 0}), Polygon({0, 0, 5, 0, 0, 5, nan, 0})}) {
    EXPECT_EQ(points.CollectInRegion(region, list), -1);
    EXPECT_EQ(points.MarkRegion(region), -1);
  }
  EXPECT_TRUE(list.empty());
  EXPECT_EQ(points.GetPoint(0)->id, 0);
}

TEST(CollectInRegion, AgreesWithAPassOverAllPoints) {
  std::mt19937 random(8);
  std::uniform_real_distribution<double> place(-50.0, 50.0);
  TINPoints points;
  for (int i = 0; i < 2000; ++i) points.AddPoint({i, place(random), place(random), 0, 0});
  points.RecalcExtent();
  ASSERT_EQ(points.BuildIndex(3.0), 1);
  for (int round = 0; round < 200; ++round) {
    const double left = std::trunc(place(random));
    const double top = std::trunc(place(random));
    const double right = left + std::trunc(std::fabs(place(random)));
    const double bottom = top + std::trunc(std::fabs(place(random)));
    List expected;
    for (std::int32_t i = 0; i < points.GetCount(); ++i) {
      const PointRecord& point = *points.GetPoint(i);
      if (point.x >= left && point.x <= right && point.y >= top && point.y <= bottom) expected.push_back(i);
    }
    ASSERT_EQ(Sorted(Collected(points, Rectangle(left, top, right, bottom))), expected);
  }
}

TEST(CollectInRuns, TakesBothEndsOfARun) {
  ScanShape shape;
  shape.firstRow = 3;
  shape.rows = {{{2, 4}, {7, 7}}, {}, {{0, 0.5}}};
  List list;
  EXPECT_EQ(Lattice().CollectInRuns(shape, list), 1);
  EXPECT_EQ(Sorted(list), (List{35, 36, 37, 40, 55}));
}

TEST(CollectInRuns, TheRowIsTheCutY) {
  TINPoints points = SetOf({{-5, -5}, {1, -0.9}, {1, 0.9}, {1, 1.0}, {1, -1.0}, {5, 5}});
  ASSERT_EQ(points.BuildIndexWithCell(0.5), 1);
  ScanShape shape;
  shape.rows = {{{0.9, 1.1}}};
  List list;
  EXPECT_EQ(points.CollectInRuns(shape, list), 1);
  EXPECT_EQ(Sorted(list), (List{1, 2}));
}

TEST(CollectInRuns, WithoutIndexOrRunsTakesNothing) {
  List list;
  EXPECT_EQ(TINPoints().CollectInRuns({}, list), -1);
  EXPECT_EQ(Lattice().CollectInRuns({}, list), 1);
  EXPECT_TRUE(list.empty());
}

std::vector<Region> RegionsOf(const std::string& text) {
  WriteFileBytes("a.msk", text);
  std::vector<Region> regions = {Region()};
  EXPECT_EQ(TINPoints::ReadRegions("a.msk", regions), 1);
  return regions;
}

TEST(ReadRegions, RectanglesAndPolygons) {
  TempFolder folder;
  EXPECT_EQ(RegionsOf("2\n0 2\n1 2\n3.5 4\n1 4\n0 0\n2 0\n0 2\n0 0\n"),
            (std::vector<Region>{{0, 2, {1, 2, 3.5, 4}}, {1, 4, {0, 0, 2, 0, 0, 2, 0, 0}}}));
}

TEST(ReadRegions, AnEmptyFileHasNoRegions) {
  TempFolder folder;
  EXPECT_TRUE(RegionsOf("").empty());
}

TEST(ReadRegions, AFileThatDoesNotOpenFails) {
  TempFolder folder;
  std::vector<Region> regions;
  EXPECT_EQ(TINPoints::ReadRegions("none.msk", regions), -1);
  EXPECT_EQ(TINPoints::ReadRegions(".", regions), -1);
}

TEST(ReadRegions, CountsBeyondTheTextReadOnlyWhatIsThere) {
  TempFolder folder;
  const std::vector<Region> first = {{0, 2, {1, 2, 3, 4}}};
  TestFrontEnd frontEnd;
  EXPECT_EQ(RegionsOf("2000000000\n0 2\n1 2\n3 4\n"), first);
  EXPECT_EQ(RegionsOf("2\n0 2\n1 2\n3 4\n1 2000000000\n1 2\n"), first);
  EXPECT_EQ(RegionsOf("3\n0 2\n1 2\n3 4\nend\n0 2 1 2 3 4\n"), first);
  EXPECT_TRUE(RegionsOf("-3\n0 2\n1 2\n3 4\n").empty());
  EXPECT_EQ(frontEnd.events,
            (std::vector<std::string>{"status 0: Regions read: 1 of 2000000000.",
                                      "status 0: Regions read: 1 of 2.", "status 0: Regions read: 1 of 3."}));
}

TEST(ReadRegions, RegionsOfNoUseAreSkipped) {
  TempFolder folder;
  const std::vector<Region> last = {{0, 2, {1, 2, 3, 4}}};
  TestFrontEnd frontEnd;
  EXPECT_EQ(RegionsOf("2\n0 1\n9 9\n0 2\n1 2\n3 4\n"), last);  // a rectangle of one pair
  EXPECT_EQ(RegionsOf("2\n7 1\n9 9\n0 2\n1 2\n3 4\n"), last);  // an unknown type
  EXPECT_EQ(RegionsOf("2\n1 -4\n0 2\n1 2\n3 4\n"), last);      // a negative count
  EXPECT_TRUE(frontEnd.events.empty());                        // all were read
}

}  // namespace
}  // namespace corvane
