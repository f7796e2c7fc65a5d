#include <cmath>
#include <random>
#include <set>

#include "shell/ChildFrm.h"
#include "shell/ShellFixture.h"

namespace corvane {
namespace {

using testing::ElementsAre;

constexpr Colour kRed{255, 0, 0};
constexpr Colour kGreen{0, 255, 0};
constexpr PixelRect kEverywhere{0, 0, 100000, 100000};

class ViewTest : public ShellTest {};

TEST_F(ViewTest, AnEmptyDocumentPaintsNothing) {
  Start();
  EXPECT_EQ(View().GetScrollSize(), (PixelSize{100, 100}));
  RecordingCanvas canvas(kEverywhere);
  View().OnDraw(canvas);
  EXPECT_TRUE(canvas.edges.empty());
  EXPECT_FALSE(View().HasPicture());
  EXPECT_EQ(View().extent, nullptr);
}

TEST_F(ViewTest, PaintsClosedOutlinesNorthUp) {
  WriteFileBytes("square.tin", SquareTinBytes());
  Start("square.tin");
  RecordingCanvas canvas(kEverywhere);
  View().OnDraw(canvas);
  // (100, 200) is the lower left corner: pixel (0, 10)
  const PixelPoint a{0, 10};
  const PixelPoint b{10, 10};
  const PixelPoint c{10, 0};
  const PixelPoint d{0, 0};
  ASSERT_EQ(canvas.edges.size(), 6u);
  const PixelSegment expected[] = {{a, b}, {b, c}, {c, a}, {a, c}, {c, d}, {d, a}};
  for (std::size_t i = 0; i < 6; ++i) {
    EXPECT_EQ(canvas.edges[i].segment, expected[i]);
    EXPECT_EQ(canvas.edges[i].colour, kRed);
  }
  EXPECT_EQ(ui.waitDepth, 0);
}

TEST_F(ViewTest, CutsPixelsTowardsZero) {
  WriteFileBytes("t.tin",
                 TinBytes({{0, 0.0, 0.0, 1, 1}, {1, 10.75, 0.0, 1, 1}, {2, 3.4, 9.9, 1, 1}}, {{0, 1, 2}}));
  Start("t.tin");
  RecordingCanvas canvas(kEverywhere);
  View().OnDraw(canvas);
  // y: (9.9 - 0) = 9.9 gives 9; x: 10.75 gives 10, 3.4 gives 3
  EXPECT_EQ(canvas.edges[0].segment, (PixelSegment{{0, 9}, {10, 9}}));
  EXPECT_EQ(canvas.edges[1].segment, (PixelSegment{{10, 9}, {3, 0}}));
  EXPECT_EQ(View().GetScrollSize(), (PixelSize{10, 9}));
}

TEST_F(ViewTest, PaintsNothingWithPaintingOff) {
  WriteFileBytes("square.tin", SquareTinBytes());
  Start("square.tin");
  View().paintEnabled = false;
  RecordingCanvas canvas(kEverywhere);
  View().OnDraw(canvas);
  EXPECT_TRUE(canvas.edges.empty());
}

TEST_F(ViewTest, PaintsHighlightAndGroupsInGreen) {
  WriteFileBytes("square.tin", SquareTinBytes());
  Start("square.tin");
  TIN& tin = Document().GetTIN();
  tin.highlight = {1};
  tin.labels = {7, 7, -1, 7};
  TINGroup group;
  group.members = {0, 1};
  tin.groups = {group};
  RecordingCanvas canvas(kEverywhere);
  View().OnDraw(canvas);
  std::vector<PixelSegment> green;
  for (const auto& edge : canvas.edges) {
    if (edge.colour == kGreen) green.push_back(edge.segment);
  }
  // the outline of triangle 1 (0, 2, 3), then 0-1 and 0-3 (2 has another label), then 1-0
  const PixelPoint a{0, 10};
  const PixelPoint b{10, 10};
  const PixelPoint c{10, 0};
  const PixelPoint d{0, 0};
  EXPECT_EQ(green, (std::vector<PixelSegment>{{a, c}, {c, d}, {d, a}, {a, b}, {a, d}, {b, a}}));
}

TEST_F(ViewTest, UpDoublesAndDownHalves) {
  WriteFileBytes("square.tin", SquareTinBytes());
  Start("square.tin");
  EXPECT_EQ(View().GetScrollSize(), (PixelSize{10, 10}));
  EXPECT_TRUE(View().OnKeyDown(Key::kUp, 1));
  EXPECT_EQ(View().displayScale, 2.0);
  EXPECT_EQ(View().GetScrollSize(), (PixelSize{20, 20}));
  EXPECT_TRUE(View().OnKeyDown(Key::kDown, 1));
  EXPECT_TRUE(View().OnKeyDown(Key::kDown, 1));
  EXPECT_EQ(View().GetScrollSize(), (PixelSize{5, 5}));
}

TEST_F(ViewTest, ASizeBelowOneFallsBackTo100) {
  WriteFileBytes("t.tin", TinBytes({{0, 0, 0, 1, 1}, {1, 64, 0, 1, 1}, {2, 0, 2, 1, 1}}, {{0, 1, 2}}));
  Start("t.tin");
  View().OnKeyDown(Key::kDown, 1);
  View().OnKeyDown(Key::kDown, 1);
  EXPECT_EQ(View().GetScrollSize(), (PixelSize{16, 100}));  // 2 / 4 is below 1
}

TEST_F(ViewTest, RepeatedUpHasNoLimitButThatOfNumbers) {
  WriteFileBytes("square.tin", SquareTinBytes());
  Start("square.tin");
  RecordingCanvas canvas({0, 0, 100, 100});
  for (int i = 0; i < 1100; ++i) View().OnKeyDown(Key::kUp, 1);
  EXPECT_EQ(View().displayScale, 0x1p1023);
  EXPECT_EQ(View().GetScrollSize(), (PixelSize{INT32_MAX, INT32_MAX}));
  View().OnDraw(canvas);
  for (int i = 0; i < 2200; ++i) View().OnKeyDown(Key::kDown, 1);
  EXPECT_EQ(View().displayScale, 0x1p-1022);
  EXPECT_EQ(View().GetScrollSize(), (PixelSize{100, 100}));
  View().OnDraw(canvas);
  for (int i = 0; i < 1022; ++i) View().OnKeyDown(Key::kUp, 1);
  EXPECT_EQ(View().displayScale, 1.0);
}

TEST_F(ViewTest, ScrollPositionKeepsItsRelativePlace) {
  WriteFileBytes("square.tin", SquareTinBytes());
  Start("square.tin");
  View().OnKeyDown(Key::kUp, 1);
  View().SetScrollPosition({5, 15});
  View().OnKeyDown(Key::kUp, 1);
  EXPECT_EQ(View().GetScrollPosition(), (PixelPoint{10, 30}));
  View().OnKeyDown(Key::kDown, 1);
  EXPECT_EQ(View().GetScrollPosition(), (PixelPoint{5, 15}));
}

TEST_F(ViewTest, LettersMoveTheExamPoint) {
  Start();
  View().examStep = {1, 2, 4};
  for (const char key : {'A', 'A', 'D', 'E', 'E', 'S'}) EXPECT_TRUE(View().OnKeyDown(key, 1));
  EXPECT_EQ(View().examPoint, (Point3{-1, 2, 0}));
  View().OnMouseWheel(2);
  View().OnMouseWheel(-1);
  View().OnMouseWheel(1);
  EXPECT_EQ(View().examPoint.z, 4.0);
  EXPECT_FALSE(View().OnKeyDown('Q', 1));
}

TEST_F(ViewTest, GAsksForTheExamPoint) {
  Start();
  View().examPoint = {1, 2, 3};
  ui.forms = {[](Form& form) {
    form.Find("x")->value = 9.0;
    return true;
  }};
  ui.events.clear();
  View().OnKeyDown('G', 1);
  EXPECT_EQ(View().examPoint, (Point3{9, 2, 3}));
  View().OnKeyDown('G', 1);  // cancelled
  EXPECT_EQ(View().examPoint, (Point3{9, 2, 3}));
  EXPECT_THAT(ui.events, ElementsAre("form: 3DCoordInput", "form: 3DCoordInput", "repaint: Corvane1"));
}

TEST_F(ViewTest, StatusNumbers) {
  Start();
  View().ShowStatusNumbers(std::vector<int>{1, -2});
  EXPECT_EQ(app.GetMainFrame().GetStatusBar().GetPaneText(0), "[1, -2, ]");
  View().ShowStatusNumbers(std::vector<double>{0.5});
  EXPECT_EQ(app.GetMainFrame().GetStatusBar().GetPaneText(0), "[0.500000, ]");
}

TEST_F(ViewTest, ANewWindowOnALoadedDocumentPaints) {
  WriteFileBytes("square.tin", SquareTinBytes());
  Start("square.tin");
  View().paintEnabled = false;
  auto& second = static_cast<CCorvaneView&>(Document().AddView());
  RecordingCanvas canvas(kEverywhere);
  second.OnDraw(canvas);
  EXPECT_EQ(canvas.edges.size(), 6u);
}

// A mesh of n x n squares of side 10 with jittered heights, two triangles each.
std::string MeshBytes(int n) {
  std::vector<PointRecord> points;
  for (int row = 0; row <= n; ++row) {
    for (int col = 0; col <= n; ++col) {
      points.push_back({row * (n + 1) + col, col * 10.0, row * 10.0, 1.0 * ((row * 7 + col * 3) % 5), 1.0});
    }
  }
  std::vector<std::vector<std::size_t>> triangles;
  const auto at = [n](int row, int col) { return static_cast<std::size_t>(row * (n + 1) + col); };
  for (int row = 0; row < n; ++row) {
    for (int col = 0; col < n; ++col) {
      triangles.push_back({at(row, col), at(row, col + 1), at(row + 1, col + 1)});
      triangles.push_back({at(row, col), at(row + 1, col + 1), at(row + 1, col)});
    }
  }
  return TinBytes(points, triangles);
}

using EdgeKey = std::tuple<std::int64_t, std::int64_t, std::int64_t, std::int64_t>;

// What shows: the edges whose bounding box touches the rectangle.
std::multiset<EdgeKey> EdgesTouching(const RecordingCanvas& canvas, const PixelRect& rect) {
  std::multiset<EdgeKey> keys;
  for (const auto& [colour, s] : canvas.edges) {
    if (std::max(s.from.x, s.to.x) < rect.left || std::min(s.from.x, s.to.x) >= rect.right) continue;
    if (std::max(s.from.y, s.to.y) < rect.top || std::min(s.from.y, s.to.y) >= rect.bottom) continue;
    keys.emplace(s.from.x, s.from.y, s.to.x, s.to.y);
  }
  return keys;
}

TEST_F(ViewTest, PaintingAPartShowsTheSameAsPaintingAll) {
  WriteFileBytes("mesh.tin", MeshBytes(40));
  Start("mesh.tin");
  View().displayScale = 3.7;
  RecordingCanvas all({-10, -10, 100000, 100000});
  View().OnDraw(all);
  ASSERT_EQ(all.edges.size(), 3u * 3200u);
  std::mt19937 random(1);
  for (int i = 0; i < 200; ++i) {
    const auto upTo = [&random](int n) { return static_cast<std::int64_t>(random() % n); };
    const std::int64_t left = upTo(1600) - 100;
    const std::int64_t top = upTo(1600) - 100;
    const PixelRect visible{left, top, left + 1 + upTo(300), top + 1 + upTo(300)};
    RecordingCanvas part(visible);
    View().OnDraw(part);
    EXPECT_EQ(EdgesTouching(part, visible), EdgesTouching(all, visible));
    EXPECT_LT(part.edges.size(), 3u * 400u);  // only what is near is walked
  }
}

TEST_F(ViewTest, ARawTinPaintsNothing) {
  WriteFileBytes("square.tin", SquareTinBytes());
  Start();
  Document().GetTIN().ReadTIN("square.tin");
  RecordingCanvas canvas(kEverywhere);
  View().OnDraw(canvas);
  EXPECT_TRUE(canvas.edges.empty());
  EXPECT_FALSE(View().HasPicture());
}

TEST_F(ViewTest, GroupsWithoutLabelsPaintNothing) {
  WriteFileBytes("square.tin", SquareTinBytes());
  Start("square.tin");
  TINGroup group;
  group.members = {0, 1};
  Document().GetTIN().groups = {group};
  RecordingCanvas canvas(kEverywhere);
  View().OnDraw(canvas);
  EXPECT_EQ(canvas.edges.size(), 6u);
}

TEST_F(ViewTest, TheUpdateHintTakesTheNewSize) {
  WriteFileBytes("square.tin", SquareTinBytes());
  Start("square.tin");
  View().displayScale = 3.0;
  Document().UpdateAllViews();
  EXPECT_EQ(View().GetScrollSize(), (PixelSize{30, 30}));
  View().paintEnabled = false;
  View().displayScale = 5.0;
  Document().UpdateAllViews();
  EXPECT_EQ(View().GetScrollSize(), (PixelSize{30, 30}));
}

TEST_F(ViewTest, PicturesOfOddExtentsHaveASize) {
  const std::vector<std::pair<double, double>> sizes = {{1e-310, 1e-310}, {0.0, 2e-310}, {0.0, 10.0},
                                                        {10.0, 0.0},      {1e9, 1e-3},   {1e300, 1e300}};
  for (const auto& [width, height] : sizes) {
    WriteFileBytes("odd.tin",
                   TinBytes({{0, 0, 0, 1, 1}, {1, width, 0, 1, 1}, {2, width, height, 1, 1}}, {{0, 1, 2}}));
    CCorvaneApp odd{{}, ""};
    odd.InitInstance("odd.tin");
    CCorvaneView& view = *odd.GetMainFrame().GetTinView();
    const PixelSize size = view.GetPictureSize();
    EXPECT_GE(size.width, 1);
    EXPECT_LE(size.width, 3001);
    EXPECT_GE(size.height, 1);
    EXPECT_LE(size.height, 3001);
    RecordingCanvas canvas({0, 0, size.width, size.height});
    view.DrawPicture(canvas);
  }
}

TEST_F(ViewTest, PicturesFitTheirLimits) {
  WriteFileBytes("mesh.tin", MeshBytes(40));
  Start("mesh.tin");
  const PixelSize size = View().GetPictureSize();
  EXPECT_EQ(size.width, size.height);
  EXPECT_GE(size.width, 400);
  EXPECT_LE(size.width, 3001);
  RecordingCanvas canvas({0, 0, size.width, size.height});
  View().DrawPicture(canvas);
  EXPECT_EQ(canvas.edges.size(), 3u * 3200u);
  EXPECT_EQ(View().displayScale, 1.0);
}

}  // namespace
}  // namespace corvane
