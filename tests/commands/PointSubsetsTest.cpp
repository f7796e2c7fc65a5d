// Cutting out, subsets and samples of points files, end to end.

#include "commands/PointUtilitiesFixture.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Crop Out Points

TEST_F(PointUtilitiesTest, CropDeletesThePointsInTheRegions) {
  // A rectangle whose right and bottom edges do not belong to it, and a triangle around (0, 4).
  WriteFileBytes("m.msk", "2\n0 2\n0 0\n4 4\n1 4\n-1 3\n1 3\n0 5\n-1 3\n");
  ui.files = {{"p.pts"}, {"m.msk"}, {"out.pts"}};
  EXPECT_EQ(Run("Crop Out Points"), CommandResult::Done);
  ASSERT_EQ(ui.choosers.size(), 3u);
  ExpectChooser(0, kOpen, kPointsFiles, "");
  ExpectChooser(1, kOpen, kMaskFiles, "msk");
  ExpectChooser(2, kSave, kPointsFiles, "pts");
  EXPECT_EQ(ReadFileBytes("out.pts"), File({4, 4, 4, 0, 1, 1}, {b, c}));
  EXPECT_THAT(Messages(), IsEmpty());
  EXPECT_THAT(ui.EventsWith("status"), ElementsAre("status 0: Points cut out: 3 of 5."));
  EXPECT_EQ(ui.waitDepth, 0);
}

TEST_F(PointUtilitiesTest, CropOfAllPointsWritesAFileThatNobodyReads) {
  WriteFileBytes("m.msk", "1\n0 2\n-1 -1\n9 9\n");
  ui.files = {{"p.pts"}, {"m.msk"}, {"out.pts"}};
  EXPECT_EQ(Run("Crop Out Points"), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("out.pts"), File(header, {}));
  EXPECT_EQ(TINPoints().Read("out.pts"), -1);
}

TEST_F(PointUtilitiesTest, CropPassesOverRegionsThatAreNone) {
  WriteFileBytes("m.msk", "4\n1 3\n0 0\n9 0\n9 9\n0 2\nnan 0\n9 9\n7 1\n0 0\n0 2\n3 -1\n5 1\n");
  ui.files = {{"p.pts"}, {"m.msk"}, {"out.pts"}};
  EXPECT_EQ(Run("Crop Out Points"), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("out.pts"), File(header, {a, c, d, e}));
  EXPECT_EQ(ui.EventsWith("status").back(), "status 0: Points cut out: 1 of 5. Regions used: 1 of 3.");
}

// A mask that begins with a byte order mark, or with a heading, holds no regions, and that is told.
TEST_F(PointUtilitiesTest, CropTellsOfAMaskWithAByteOrderMarkOrAHeading) {
  for (const char* mask : {"\xef\xbb\xbf"
                           "1\n0 2\n0 0\n4 4\n",
                           "regions\n1\n0 2\n0 0\n4 4\n"}) {
    WriteFileBytes("m.msk", mask);
    ui.events.clear();
    ui.files = {{"p.pts"}, {"m.msk"}, {"out.pts"}};
    EXPECT_EQ(Run("Crop Out Points"), CommandResult::Done);
    EXPECT_THAT(ui.EventsWith("status"),
                ElementsAre("status 0: The mask begins with no number of regions.",
                            "status 0: Points cut out: 0 of 5. The mask gives no regions that can be used."));
    EXPECT_EQ(ReadFileBytes("out.pts"), ReadFileBytes("p.pts"));
  }
}

TEST_F(PointUtilitiesTest, CropTellsThatThePointsFileIsCutShort) {
  WriteFileBytes("p.pts", ReadFileBytes("p.pts").substr(0, 52 + 3 * 32));
  WriteFileBytes("m.msk", "1\n0 2\n4 0\n5 1\n");
  ui.files = {{"p.pts"}, {"m.msk"}, {"out.pts"}};
  EXPECT_EQ(Run("Crop Out Points"), CommandResult::Done);
  EXPECT_EQ(ui.EventsWith("status").back(), "status 0: Points cut out: 1 of 5. Points missing in p.pts: 2.");
}

TEST_F(PointUtilitiesTest, CropCancelledAtTheEndDiscardsTheWork) {
  WriteFileBytes("m.msk", "1\n0 2\n0 0\n4 4\n");
  ExpectCancelAtEachChooser("Crop Out Points", {{"p.pts"}, {"m.msk"}, {"out.pts"}});
}

TEST_F(PointUtilitiesTest, CropTellsWhatItCanNotReadOrWrite) {
  WriteFileBytes("m.msk", "0\n");
  ExpectFailure("Crop Out Points", {{"none.pts"}, {"m.msk"}, {"out.pts"}},
                {"message message: Read points file error!\n"});
  ExpectFailure("Crop Out Points", {{"p.pts"}, {"none.msk"}, {"out.pts"}},
                {"message message: Read region file error!\n"});
  ExpectFailure("Crop Out Points", {{"p.pts"}, {"m.msk"}, {"none/out.pts"}},
                {"message warning: Open file none/out.pts error!"});
  ExpectFailure("Crop Out Points", {{"p.pts"}, {"m.msk"}, {"/dev/full"}},
                {"message warning: Write file /dev/full error!"});
}

TEST_F(PointUtilitiesTest, CropWarnsOfAWrongHeader) {
  WriteFileBytes("m.msk", "0\n");
  WriteFileBytes("wrong.pts", File({0, 4, 1, 0, 1, 1}, {a, b}));
  WriteFileBytes("nan.pts", File({0, kNaN, 4, kNaN, 1, 1}, {a, b}));
  ExpectFailure("Crop Out Points", {{"wrong.pts"}, {"m.msk"}, {"out.pts"}}, {kExtensionBox});
  ExpectFailure("Crop Out Points", {{"nan.pts"}, {"m.msk"}, {"out.pts"}}, {kExtensionBox});
}

TEST_F(PointUtilitiesTest, CropTakesAnyBytesAsAMask) {
  for (const std::string& mask :
       {std::string(), std::string("\0\xff\n1 2", 6), std::string("-5\n0 2\n"),
        std::string("2147483647\n0 2147483647\n1 1\n"), std::string("1\n1 -3\n"),
        std::string("1\n0 2\n1e999 -1e999\n-inf inf\n"), std::string("1\n0 2\n0 0\n4")}) {
    WriteFileBytes("m.msk", mask);
    ui.files = {{"p.pts"}, {"m.msk"}, {"out.pts"}};
    EXPECT_EQ(Run("Crop Out Points"), CommandResult::Done);
    EXPECT_EQ(ReadFileBytes("out.pts").size() % 32, 52u % 32);
  }
}

// Subset Points

TEST_F(PointUtilitiesTest, SubsetWritesThePointsOfTheWindowWithTheScore) {
  ui.files = {{"p.pts"}, {"out.txt"}};
  ui.forms = {[](Form& form) {
    EXPECT_EQ(form.name, "ExtentInput");
    EXPECT_EQ(form.GetReal("xStart"), -1.0);
    EXPECT_EQ(form.GetReal("yStart"), -1.0);
    EXPECT_EQ(form.GetReal("xEnd"), 5.0);
    EXPECT_EQ(form.GetReal("yEnd"), 5.0);
    EXPECT_EQ(form.GetReal("cellSize"), 1.0);
    EXPECT_EQ(form.GetReal("minCorrCoeff"), 0.5);
    return Enter({{"xStart", "0"}, {"yStart", "2"}, {"xEnd", "4"}, {"yEnd", "4"}, {"minCorrCoeff", "0.4"}})(
        form);
  }};
  EXPECT_EQ(Run("Subset Points"), CommandResult::Done);
  ASSERT_EQ(ui.choosers.size(), 2u);
  ExpectChooser(0, kOpen, kPointsFiles, "");
  ExpectChooser(1, kSave, kTextFiles, "txt");
  EXPECT_EQ(ReadFileBytes("out.txt"), "0, 4, 13, 0.4\n2, 2, 14, 0.5\n");  // all edges belong to it
  EXPECT_THAT(ui.EventsWith("status"), ElementsAre("status 0: Points written: 2."));
  EXPECT_EQ(ui.waitDepth, 0);
}

TEST_F(PointUtilitiesTest, SubsetComparesScoresInSinglePrecision) {
  // Next below 0.5 as a double, and equal to it as a float.
  WriteFileBytes("p.pts",
                 File(header, {{1, 1, 1, std::nextafter(0.5, 0.0)}, {2, 1, 1, 0.4999999}, {3, 1, 1, kNaN}}));
  ui.files = {{"p.pts"}, {"out.txt"}};
  ui.forms = {Accept};
  EXPECT_EQ(Run("Subset Points"), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("out.txt"), "1, 1, 1, 0.5\n");
}

TEST_F(PointUtilitiesTest, SubsetWritesThirteenDigits) {
  WriteFileBytes("p.pts",
                 File({0, 9e6, 9e6, 0, 1, 1}, {{451234.56789012345, 5423456.7890123456, -1.0 / 3, 1e20}}));
  ui.files = {{"p.pts"}, {"out.txt"}};
  ui.forms = {Accept};
  EXPECT_EQ(Run("Subset Points"), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("out.txt"), "451234.5678901, 5423456.789012, -0.3333333333333, 1e+20\n");
}

TEST_F(PointUtilitiesTest, SubsetOfNoPointsIsAnEmptyText) {
  ui.files = {{"p.pts"}, {"out.txt"}};
  ui.forms = {Enter({{"minCorrCoeff", "2"}})};
  EXPECT_EQ(Run("Subset Points"), CommandResult::Done);
  EXPECT_THAT(Files(), ElementsAre("out.txt", "p.pts"));
  EXPECT_EQ(ReadFileBytes("out.txt"), "");
}

TEST_F(PointUtilitiesTest, SubsetCancelledWritesNothing) {
  ExpectCancelAtEachChooser("Subset Points", {{"p.pts"}, {"out.txt"}});
  WriteFileBytes("out.txt", "old");
  ui.files = {{"p.pts"}, {"out.txt"}};
  EXPECT_EQ(Run("Subset Points"), CommandResult::Cancelled);
  EXPECT_EQ(ui.shownForms.size(), 1u);
  EXPECT_EQ(ReadFileBytes("out.txt"), "old");
}

TEST_F(PointUtilitiesTest, SubsetTellsWhatItCanNotReadOrWrite) {
  ExpectFailure("Subset Points", {{"none.pts"}, {"out.txt"}}, {"message message: Read points file error!\n"});
  EXPECT_THAT(ui.shownForms, IsEmpty());
  ui.forms = {Accept};
  ExpectFailure("Subset Points", {{"p.pts"}, {"none/out.txt"}},
                {"message warning: Open file none/out.txt error!"});
  ui.forms = {Enter({{"minCorrCoeff", "0"}})};
  ExpectFailure("Subset Points", {{"p.pts"}, {"/dev/full"}},
                {"message warning: Write file /dev/full error!"});
}

// Subset Points 2

TEST_F(PointUtilitiesTest, Subset2WritesThePointsOfTheRegions) {
  // All edges of a rectangle belong to it; a point in two regions is written twice.
  WriteFileBytes("m.msk", "2\n0 2\n2 0\n4 4\n1 4\n1 1\n3 1\n2 3\n1 1\n");
  ui.files = {{"p.pts"}, {"m.msk"}, {"out.txt"}};
  EXPECT_EQ(Run("Subset Points 2"), CommandResult::Done);
  ASSERT_EQ(ui.choosers.size(), 3u);
  ExpectChooser(0, kOpen, kPointsFiles, "");
  ExpectChooser(1, kOpen, kMaskFiles, "msk");
  ExpectChooser(2, kSave, kTextFiles, "txt");
  EXPECT_EQ(ReadFileBytes("out.txt"), "4, 0, 11, 0.2\n2, 2, 14, 0.5\n4, 4, 12, 0.3\n2, 2, 14, 0.5\n");
  EXPECT_THAT(ui.EventsWith("status"), ElementsAre("status 0: Points written: 4."));
  EXPECT_EQ(ui.waitDepth, 0);
}

TEST_F(PointUtilitiesTest, Subset2OfNoPointsTellsSo) {
  for (const char* mask : {"1\n0 2\n90 90\n99 99\n", "1\n1 3\n0 0\n9 0\n9 9\n", "0\n", ""}) {
    WriteFileBytes("m.msk", mask);
    for (const char* output : {"out.txt", "none/out.txt"}) {
      ExpectFailure("Subset Points 2", {{"p.pts"}, {"m.msk"}, {output}},
                    {"message message: There is no Points in the subset area!\n"});
    }
  }
}

TEST_F(PointUtilitiesTest, Subset2CancelledWritesNothing) {
  WriteFileBytes("m.msk", "1\n0 2\n0 0\n9 9\n");
  ExpectCancelAtEachChooser("Subset Points 2", {{"p.pts"}, {"m.msk"}, {"out.txt"}});
}

TEST_F(PointUtilitiesTest, Subset2TellsWhatItCanNotReadOrWrite) {
  WriteFileBytes("m.msk", "1\n0 2\n0 0\n9 9\n");
  WriteFileBytes("wrong.pts", File({0, 4, 1, 0, 1, 1}, {a, b}));
  ExpectFailure("Subset Points 2", {{"none.pts"}, {"m.msk"}, {"out.txt"}},
                {"message message: Read points file error!\n"});
  ExpectFailure("Subset Points 2", {{"wrong.pts"}, {"m.msk"}, {"out.txt"}}, {kExtensionBox});
  ExpectFailure("Subset Points 2", {{"p.pts"}, {"none.msk"}, {"out.txt"}},
                {"message message: Read region file error!\n"});
  ExpectFailure("Subset Points 2", {{"p.pts"}, {"m.msk"}, {"none/out.txt"}},
                {"message warning: Open file none/out.txt error!"});
  ExpectFailure("Subset Points 2", {{"p.pts"}, {"m.msk"}, {"/dev/full"}},
                {"message warning: Write file /dev/full error!"});
}

TEST_F(PointUtilitiesTest, Subset2TellsOfRegionsThatAreNone) {
  WriteFileBytes("m.msk", "2\n1 3\n0 0\n9 0\n9 9\n0 2\n2 2\n3 3\n");
  ui.files = {{"p.pts"}, {"m.msk"}, {"out.txt"}};
  EXPECT_EQ(Run("Subset Points 2"), CommandResult::Done);
  EXPECT_EQ(ui.EventsWith("status").back(), "status 0: Points written: 1. Regions used: 1 of 2.");
}

TEST_F(PointUtilitiesTest, TellsOfACutPointsFile) {
  WriteFileBytes("m.msk", "1\n0 2\n0 0\n9 9\n");
  WriteFileBytes("p.pts", ReadFileBytes("p.pts").substr(0, 52 + 3 * 32));
  ui.files = {{"p.pts"}, {"m.msk"}, {"out.txt"}};
  EXPECT_EQ(Run("Subset Points 2"), CommandResult::Done);
  EXPECT_THAT(ui.EventsWith("status"),
              ElementsAre("status 0: The points file is cut short: 3 of 5 points are there.",
                          "status 0: Points written: 5. Points missing in p.pts: 2."));
}

// Resample Points

TEST_F(PointUtilitiesTest, ResampleTakesAPointForEachSample) {
  ui.files = {{"p.pts"}, {"out.pts"}};
  ui.forms = {[](Form& form) {
    EXPECT_EQ(form.GetReal("xStart"), -1.0);
    EXPECT_EQ(form.GetReal("yEnd"), 5.0);
    EXPECT_EQ(form.GetReal("cellSize"), 1.0);
    return Enter({{"cellSize", "2"}, {"xStart", "77"}})(form);  // only the cell size is used
  }};
  EXPECT_EQ(Run("Resample Points"), CommandResult::Done);
  ASSERT_EQ(ui.choosers.size(), 2u);
  ExpectChooser(0, kOpen, kPointsFiles, "Choose a Points Set.");
  ExpectChooser(1, kSave, kPointsFiles, "Choose a Points Set.");
  // samples at (0, 0), (2, 0), (0, 2), (2, 2) look into cells of 1
  EXPECT_EQ(ReadFileBytes("out.pts"), File({0, 2, 2, 0, 2, 2}, {a, e}));
  EXPECT_THAT(ui.EventsWith("status"), ElementsAre("status 0: Points written: 2."));
  EXPECT_EQ(ui.waitDepth, 0);
}

TEST_F(PointUtilitiesTest, ResampleOfExtentsBelowOneUnitTellsThatThereAreNoSamples) {
  WriteFileBytes("degrees.pts", File({7, 50.9, 7.9, 50, 0.1, 0.1}, {{7.1, 50.1, 1, 1}, {7.8, 50.8, 2, 1}}));
  ui.files = {{"degrees.pts"}, {"out.pts"}};
  ui.forms = {Accept};
  EXPECT_EQ(Run("Resample Points"), CommandResult::Done);
  EXPECT_EQ(ui.EventsWith("status").back(),
            "status 0: Points written: 0. There are no samples: the extents are shorter than one unit, or "
            "than the cell size.");
}

TEST_F(PointUtilitiesTest, ResampleCancelledWritesNothing) {
  ExpectCancelAtEachChooser("Resample Points", {{"p.pts"}, {"out.pts"}});
  ui.files = {{"p.pts"}, {"out.pts"}};
  EXPECT_EQ(Run("Resample Points"), CommandResult::Cancelled);
  EXPECT_THAT(Files(), ElementsAre("p.pts"));
}

TEST_F(PointUtilitiesTest, ResampleTellsWhatItCanNotReadOrWrite) {
  ExpectFailure("Resample Points", {{"none.pts"}, {"out.pts"}},
                {"message message: Read source points file error!\n"});
  ui.forms = {Accept};
  ExpectFailure("Resample Points", {{"p.pts"}, {"none/out.pts"}},
                {"message warning: Open file none/out.pts error!"});
  ui.forms = {Accept};
  ExpectFailure("Resample Points", {{"p.pts"}, {"/dev/full"}},
                {"message warning: Write file /dev/full error!"});
  for (const std::string cellSize : {"0", "-1"}) {
    ui.forms = {Enter({{"cellSize", cellSize}})};
    ExpectFailure(
        "Resample Points", {{"p.pts"}, {"out.pts"}},
        {"message warning: Write file out.pts error!\nThere is no grid: cell size " + cellSize + "."});
  }
  // 4000 x 4000 samples of five points
  for (const char* cellSize : {"0.001", "1e-30"}) {
    ui.forms = {Enter({{"cellSize", cellSize}})};
    ExpectFailure("Resample Points", {{"p.pts"}, {"out.pts"}},
                  {"message warning: Write file out.pts error!\nThe grid is too large for the number of "
                   "points."});
  }
}

TEST_F(PointUtilitiesTest, ResampleWarnsOfAWrongHeader) {
  const std::vector<std::vector<double>> headers = {
      {0, 4, 4, 0, 0, 1},        {0, 4, 4, 0, -1, 1},     {0, 4, 4, 0, kNaN, 1},
      {0, 4, 4, 0, HUGE_VAL, 1}, {0, 4, 4, 0, 1e-300, 1}, {0, 4, HUGE_VAL, 0, 1, 1},
      {0, 4, 1e300, 0, 1, 1},    {0, 4, 1, 0, 1, 1},      {kNaN, 4, 4, 0, 1, 1}};
  for (const auto& wrong : headers) {
    WriteFileBytes("wrong.pts", File(wrong, {a, b, c}));
    ui.forms = {Enter({{"cellSize", "1"}})};
    ExpectFailure("Resample Points", {{"wrong.pts"}, {"out.pts"}}, {kExtensionBox});
  }
}

}  // namespace
}  // namespace corvane
