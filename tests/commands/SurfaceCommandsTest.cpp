// The surface commands on the TIN menu, from prompts to files.

#include "commands/PointUtilitiesFixture.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kTotal = "message message: Total hrs: 00 mins: 00, secs: 00";

class SurfaceCommandsTest : public PointUtilitiesTest {
 protected:
  // 6 x 6 points on level ground, one unit apart, the one with id 14 far above it.
  static std::string SpikeBytes() {
    std::vector<PointRecord> points;
    for (int i = 0; i < 36; ++i) {
      points.push_back({i, i % 6 * 1.0, i / 6 * 1.0, i == 14 ? 5.0 : 0.0, 1.0});
    }
    std::vector<std::vector<std::size_t>> triangles;
    for (std::size_t i = 0; i < 29; ++i) {
      if (i % 6 == 5) continue;
      triangles.push_back({i, i + 1, i + 7});
      triangles.push_back({i, i + 7, i + 6});
    }
    return TinBytes(points, triangles);
  }
};

TEST_F(SurfaceCommandsTest, SurfaceSmoothSplitsTheVertices) {
  OpenTin("a.tin", SpikeBytes());
  EXPECT_EQ(Run("Surface Smooth"), CommandResult::Done);
  EXPECT_THAT(Messages(), ElementsAre(kTotal));
  EXPECT_THAT(ui.EventsWith("value"), IsEmpty());
  EXPECT_THAT(ui.EventsWith("form"), IsEmpty());
  EXPECT_THAT(HeightsIn("a_SmNonGrd.pts"), ElementsAre(5.0));
  EXPECT_EQ(HeightsIn("a_SmGrd.pts").size(), 35u);
  EXPECT_THAT(HeightsIn("a_SmGrd.pts"), testing::Each(0.0));
  EXPECT_FALSE(Document().IsModified());
  EXPECT_EQ(ui.waitDepth, 0);
}

TEST_F(SurfaceCommandsTest, SurfaceSmoothNeedsATin) {
  EXPECT_EQ(Run("Surface Smooth"), CommandResult::Failed);
  EXPECT_THAT(Messages(), ElementsAre("message warning: No TIN Read! Please load a TIN first!"));
}

TEST_F(SurfaceCommandsTest, SurfaceFittingWritesHeightsAndZeros) {
  ui.files = {{"p.pts"}, {"unused.txt"}};
  EXPECT_EQ(Run("Surface Fitting (RBF)"), CommandResult::Done);
  ExpectChooser(0, kOpen, kPointsFiles, "");
  ExpectChooser(1, kSave, kTextFiles, "txt");
  EXPECT_THAT(Messages(), IsEmpty());
  EXPECT_EQ(ReadFileBytes("Interp_0.pts"), ReadFileBytes("p.pts"));
  EXPECT_EQ(ReadFileBytes("Diff_0.pts"),
            File(header, {{0, 0, 0, 0.1}, {4, 0, 0, 0.2}, {4, 4, 0, 0.3}, {0, 4, 0, 0.4}, {2, 2, 0, 0.5}}));
  EXPECT_EQ(ReadFileBytes("unused.txt"), "");
  EXPECT_THAT(ui.EventsWith("status").back(), "status 0: Surface fitted to 5 points.");
  EXPECT_EQ(ui.waitDepth, 0);
}

TEST_F(SurfaceCommandsTest, SurfaceFittingGoesOnWithoutASavePathAndWithoutASurface) {
  WriteFileBytes("two.pts", File(header, {a, a}));
  ui.files = {{"two.pts"}};
  EXPECT_EQ(Run("Surface Fitting (RBF)"), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("Interp_0.pts"), ReadFileBytes("two.pts"));
  EXPECT_THAT(ui.EventsWith("status").back(), testing::HasSubstr("No surface"));
}

TEST_F(SurfaceCommandsTest, SurfaceFittingFailsWithoutPoints) {
  ExpectFailure("Surface Fitting (RBF)", {{"none.pts"}, {"x.txt"}},
                {"message message: Read points file error!\n"});
  ui.files = {};
  EXPECT_EQ(Run("Surface Fitting (RBF)"), CommandResult::Cancelled);
}

}  // namespace
}  // namespace corvane
