// The commands that turn rasters of heights into other files and back, end to end.

#include <gmock/gmock.h>

#include <cmath>

#include "commands/ImageFixture.h"
#include "support/PointsBytes.h"
#include "support/SharedData.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kDemFiles = "DEM Files (*.dem)|*.dem|All Files (*.*)|*.*|";
constexpr const char* kAsciiFiles = "ASCII Grid Files (*.asc)|*.asc|All Files (*.*)|*.*|";
constexpr const char* kPointsFiles = "Points Files (*.pts)|*.pts|All Files (*.*)|*.*|";

class DemCommandsTest : public ImageCommandsTest {
 protected:
  void SetUp() override {
    ImageCommandsTest::SetUp();
    ErdasHeader header = HeaderOf(kPackFloat, 1, 3, 2);
    header.xMap = 100.0f;
    header.yMap = 206.0f;
    header.xCell = 2.0f;
    header.yCell = -2.0f;
    WriteFileBytes("d.lan", BytesOf(header) + PixelBytes<float>({1, 2.5f, 3, 4, 5, -4096}));
    WriteFileBytes("g.asc", "ncols 2\nnrows 1\n" + kPlace + "NODATA_value -9999\n7 8.5\n");
    WriteFileBytes("p.pts", PointsBytes(2, {10, 24, 12, 22, 2, 2}, {10, 24, 1, 0, 12, 22, 2, 0}));
  }

  static ErdasHeader DemHeader(std::int32_t cols, std::int32_t rows, float xMap, float yMap, float cell) {
    ErdasHeader header = HeaderOf(kPackFloat, 1, cols, rows);
    header.mapType = 0;
    header.xMap = xMap;
    header.yMap = yMap;
    header.xCell = cell;
    header.yCell = -cell;
    return header;
  }

  const std::string kPlace = "xllcorner 100\nyllcorner 200\ncellsize 2\n";
};

// DEM to ASCII Grid

TEST_F(DemCommandsTest, AsciiGridIsOfTheCornerHalfACellOut) {
  ui.files = {{"d.lan"}, {"out.asc"}};
  ui.forms = {Accept};
  EXPECT_EQ(Run("DEM to ASCII Grid"), CommandResult::Done);
  ExpectChoosers({{kOpen, kDemFiles}, {kSave, kAsciiFiles}});
  EXPECT_THAT(FieldsOf(ui.shownForms.at(0)), ElementsAre("XStart: 99", "YStart: 203", "XEnd 105", "YEnd: 207",
                                                         "Cell Size 2", "No-Data Value: 0"));
  EXPECT_EQ(ui.shownForms[0].title, "Input the extent for the image");
  EXPECT_THAT(ui.events, ElementsAre("command: Utilities > DEM > DEM to ASCII Grid",
                                     std::string("open: ") + kDemFiles, std::string("save: ") + kAsciiFiles,
                                     "form: ExtentInput", "status 0: Written to out.asc: 2 rows, 3 columns.",
                                     "end: Utilities > DEM > DEM to ASCII Grid done"));
  EXPECT_EQ(ReadFileBytes("out.asc"),
            "ncols 3\nnrows 2\nxllcorner 99\nyllcorner 203\ncellsize 2\nNODATA_value -4096\n"
            "1 2.5 3\n4 5 -4096\n");
  EXPECT_EQ(ui.waitDepth, 0);
}

TEST_F(DemCommandsTest, AsciiGridOfAPartOfTheDem) {
  ui.files = {{"d.lan"}, {"out.asc"}};
  ui.forms = {Enter({{"xStart", "101"}, {"yEnd", "205"}})};
  EXPECT_EQ(Run("DEM to ASCII Grid"), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("out.asc"),
            "ncols 2\nnrows 1\nxllcorner 101\nyllcorner 203\ncellsize 2\nNODATA_value -4096\n5 -4096\n");
}

// The cut to the image does not look at where the window begins.
TEST_F(DemCommandsTest, AsciiGridBeyondTheDemRepeatsTheLastValue) {
  ui.files = {{"d.lan"}, {"out.asc"}};
  ui.forms = {Enter({{"xStart", "101"}, {"xEnd", "300"}})};
  EXPECT_EQ(Run("DEM to ASCII Grid"), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("out.asc"),
            "ncols 3\nnrows 2\nxllcorner 101\nyllcorner 203\ncellsize 2\nNODATA_value -4096\n"
            "2.5 3 3\n5 -4096 -4096\n");
}

TEST_F(DemCommandsTest, AsciiGridOfOnePixelIsTruncatedNotRounded) {
  WriteFileBytes("one.lan", LanOf<float>(kPackFloat, 1, 1, {7}));
  ui.files = {{"one.lan"}, {"out.asc"}, {"one.lan"}, {"short.asc"}};
  ui.forms = {Accept, Enter({{"xEnd", "0.49"}})};
  EXPECT_EQ(Run("DEM to ASCII Grid"), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("out.asc"),
            "ncols 1\nnrows 1\nxllcorner -0.5\nyllcorner -0.5\ncellsize 1\nNODATA_value -4096\n7\n");
  EXPECT_EQ(Run("DEM to ASCII Grid"), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("short.asc"),
            "ncols 0\nnrows 1\nxllcorner -0.5\nyllcorner -0.5\ncellsize 1\nNODATA_value -4096\n\n");
}

TEST_F(DemCommandsTest, AsciiGridCancelledWritesNothing) {
  ExpectCancelAtEach("DEM to ASCII Grid", "ffe", {"d.lan", "out.asc"});
}

// The command goes on with an empty image, and has failed.
TEST_F(DemCommandsTest, AsciiGridOfADemThatDoesNotOpen) {
  ui.files = {{"none.lan"}, {"out.asc"}};
  ui.forms = {Accept};
  EXPECT_EQ(Run("DEM to ASCII Grid"), CommandResult::Failed);
  EXPECT_THAT(Messages(), ElementsAre("message warning: Open file none.lan error!"));
  EXPECT_EQ(ReadFileBytes("out.asc"),
            "ncols 1\nnrows 1\nxllcorner -0.5\nyllcorner -0.5\ncellsize 1\nNODATA_value -4096\n0\n");
}

TEST_F(DemCommandsTest, AsciiGridThatCannotBeWritten) {
  ui.forms = {Accept};
  ExpectFailure("DEM to ASCII Grid", {{"d.lan"}, {"none/out.asc"}},
                {"message warning: Open file none/out.asc error!"});
}

TEST_F(DemCommandsTest, AsciiGridOfARealDem) {
  const std::string path = SharedData("block/hills_dem.lan");
  if (path.empty()) GTEST_SKIP();
  ui.files = {{path}, {"out.asc"}};
  ui.forms = {Accept};
  EXPECT_EQ(Run("DEM to ASCII Grid"), CommandResult::Done);
  // The corner is at (1000, 6080), its cells are 2 x 2.
  std::string expected =
      "ncols 600\nnrows 540\nxllcorner 999\nyllcorner 5001\ncellsize 2\nNODATA_value -4096\n";
  const std::string bytes = ReadFileBytes(path);
  for (std::size_t i = 0; i < 324000; ++i) {
    float value = 0.0f;
    std::memcpy(&value, bytes.data() + 128 + 4 * i, sizeof value);
    char text[32];
    std::snprintf(text, sizeof text, "%.10g%c", static_cast<double>(value), i % 600 == 599 ? '\n' : ' ');
    expected += text;
  }
  EXPECT_TRUE(ReadFileBytes("out.asc") == expected);
}

// ASCII Grid to DEM

TEST_F(DemCommandsTest, DemOfAnAsciiGrid) {
  ui.files = {{"g.asc"}, {"out.lan"}};
  EXPECT_EQ(Run("ASCII Grid to DEM"), CommandResult::Done);
  ExpectChoosers({{kOpen, kAsciiFiles}, {kSave, "DEM Files (*.lan)|*.lan|All Files (*.*)|*.*|"}});
  ErdasHeader header = HeaderOf(kPackDouble, 1, 2, 1);
  header.xMap = 100.0f;
  header.yMap = 200.0f;
  header.xCell = 2.0f;
  header.yCell = -2.0f;
  EXPECT_EQ(ReadFileBytes("out.lan"), BytesOf(header) + PixelBytes<double>({7, 8.5}));
  EXPECT_EQ(ui.EventsWith("status").back(), "status 0: Written to out.lan: 1 rows, 2 columns.");
  EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(DemCommandsTest, DemOfAnAsciiGridThatCannotBeReadWritesNothing) {
  const std::string box = "message warning: Conversion from ASCII Grid to DEM failed";
  ExpectFailure("ASCII Grid to DEM", {{"none.asc"}, {"out.lan"}}, {box});
  for (const char* text :
       {"", "no grid at all", "ncols 2\nnrows -2\n", "ncols 2147483647\nnrows 2147483647\n"}) {
    WriteFileBytes("bad.asc", text);
    ExpectFailure("ASCII Grid to DEM", {{"bad.asc"}, {"out.lan"}}, {box});
  }
}

TEST_F(DemCommandsTest, DemOfAnAsciiGridThatCannotBeWritten) {
  ExpectFailure("ASCII Grid to DEM", {{"g.asc"}, {"none/out.lan"}},
                {"message warning: Write file none/out.lan error!"});
  ExpectFailure("ASCII Grid to DEM", {{"g.asc"}, {"none/out.dem"}},
                {"message warning: Write file none/out.dem error!"});
}

TEST_F(DemCommandsTest, DemOfAnAsciiGridCancelledWritesNothing) {
  ExpectCancelAtEach("ASCII Grid to DEM", "ff", {"g.asc", "out.lan"});
}

TEST_F(DemCommandsTest, DemOfARealAsciiGrid) {
  const std::string path = SharedData("block/hills_dem.asc");
  if (path.empty()) GTEST_SKIP();
  ui.files = {{path}, {"out.lan"}};
  EXPECT_EQ(Run("ASCII Grid to DEM"), CommandResult::Done);
  const std::string text = ReadFileBytes(path);
  const char* at = text.data() + text.find("-9999") + 5;
  const std::string bytes = ReadFileBytes("out.lan");
  ASSERT_EQ(bytes.size(), 128 + 8 * 324000u);
  for (std::size_t i = 0; i < 324000; ++i) {
    char* end = nullptr;
    const double expected = std::strtod(at, &end);
    at = end;
    double value = 0.0;
    std::memcpy(&value, bytes.data() + 128 + 8 * i, sizeof value);
    ASSERT_EQ(value, expected) << i;
  }
}

// ASCII Grid to TOPAZ

TEST_F(DemCommandsTest, TopazFileStandsBesideTheGrid) {
  std::filesystem::create_directory("sub");
  WriteFileBytes("sub/g.asc", ReadFileBytes("g.asc"));
  WriteFileBytes("sub/DEDNM.INP", "of an earlier run");
  ui.files = {{"sub/g.asc"}};
  EXPECT_EQ(Run("ASCII Grid to TOPAZ"), CommandResult::Done);
  ExpectChoosers({{kOpen, kAsciiFiles}});
  EXPECT_EQ(ReadFileBytes("sub/DEDNM.INP"), "7.000000\n8.500000\n");
  EXPECT_EQ(ui.EventsWith("status").back(), "status 0: Written to sub/DEDNM.INP: 1 rows, 2 columns.");
  EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(DemCommandsTest, TopazFileOfAGridWithoutFolder) {
  ui.files = {{"g.asc"}};
  EXPECT_EQ(Run("ASCII Grid to TOPAZ"), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("DEDNM.INP"), "7.000000\n8.500000\n");
}

TEST_F(DemCommandsTest, TopazWithoutNoDataLineMisreadsTheFirstRow) {
  WriteFileBytes("g.asc", "ncols 2\nnrows 2\n" + kPlace + "1 2\n3 4\n");
  ui.files = {{"g.asc"}};
  EXPECT_EQ(Run("ASCII Grid to TOPAZ"), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("DEDNM.INP"), "3.000000\n4.000000\n");
  EXPECT_EQ(ui.EventsWith("status").back(),
            "status 0: Written to DEDNM.INP: 2 rows, 2 columns. Cells written: 2 of 4; the rest is missing "
            "or no number.");
}

TEST_F(DemCommandsTest, TopazFailures) {
  ExpectFailure("ASCII Grid to TOPAZ", {{"none.asc"}}, {"message warning: Open file none.asc error!"});
  ExpectFailure("ASCII Grid to TOPAZ", {{"none/g.asc"}}, {"message warning: Open file none/g.asc error!"});
  WriteFileBytes("bad.asc", "ncols -2\nnrows 2\n" + kPlace);
  ExpectFailure("ASCII Grid to TOPAZ", {{"bad.asc"}},
                {"message warning: Conversion from ASCII Grid to TOPAZ failed"});
  std::filesystem::create_directory("DEDNM.INP");
  ExpectFailure("ASCII Grid to TOPAZ", {{"g.asc"}}, {"message warning: Open file DEDNM.INP error!"});
}

TEST_F(DemCommandsTest, TopazCancelledWritesNothing) {
  ExpectCancelAtEach("ASCII Grid to TOPAZ", "f", {"g.asc"});
}

// DEM to Points(.pts)

TEST_F(DemCommandsTest, PointsAreTheCentresOfTheCells) {
  ui.files = {{"d.lan"}, {"out.pts"}};
  ui.forms = {Accept};
  EXPECT_EQ(Run("DEM to Points(.pts)"), CommandResult::Done);
  ExpectChoosers({{kOpen, kDemFiles}, {kSave, kPointsFiles}});
  EXPECT_THAT(FieldsOf(ui.shownForms.at(0)), ElementsAre("XStart: 100", "YStart: 202", "XEnd 106",
                                                         "YEnd: 206", "Cell Size 2", "No-Data Value: 0"));
  EXPECT_EQ(ReadFileBytes("out.pts"), PointsBytes(6, {101, 205, 105, 203, 2, 2},
                                                  {101, 205, 1, 0, 103, 205, 2.5, 0, 105, 205, 3,     0,  //
                                                   101, 203, 4, 0, 103, 203, 5,   0, 105, 203, -4096, 0}));
  EXPECT_EQ(ui.EventsWith("status").back(), "status 0: Written to out.pts: 2 rows, 3 columns.");
}

TEST_F(DemCommandsTest, PointsOfAPartOfTheDem) {
  ui.files = {{"d.lan"}, {"out.pts"}};
  ui.forms = {Enter({{"xStart", "102"}, {"xEnd", "104"}, {"yEnd", "204"}})};
  EXPECT_EQ(Run("DEM to Points(.pts)"), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("out.pts"), PointsBytes(1, {103, 203, 103, 203, 2, 2}, {103, 203, 5, 0}));
}

TEST_F(DemCommandsTest, PointsCancelledAtTheFormLeaveNoFile) {
  ExpectCancelAtEach("DEM to Points(.pts)", "ffe", {"d.lan", "out.pts"});
}

TEST_F(DemCommandsTest, PointsFileThatCannotBeCreatedEndsBeforeTheForm) {
  ExpectFailure("DEM to Points(.pts)", {{"d.lan"}, {"none/out.pts"}},
                {"message warning: Create file none/out.pts error!"});
  EXPECT_THAT(ui.shownForms, IsEmpty());
}

TEST_F(DemCommandsTest, PointsOfADemThatDoesNotOpen) {
  ui.files = {{"none.lan"}, {"out.pts"}};
  ui.forms = {Accept};
  EXPECT_EQ(Run("DEM to Points(.pts)"), CommandResult::Failed);
  EXPECT_THAT(Messages(), ElementsAre("message warning: Open file none.lan error!"));
  EXPECT_EQ(ReadFileBytes("out.pts"), PointsBytes(1, {0.5, -0.5, 0.5, -0.5, 1, 1}, {0.5, -0.5, 0, 0}));
}

// Points(.pts) to DEM

TEST_F(DemCommandsTest, DemOfPoints) {
  ui.files = {{"p.pts"}, {"out.lan"}};
  EXPECT_EQ(Run("Points(.pts) to DEM"), CommandResult::Done);
  ExpectChoosers({{kOpen, kPointsFiles}, {kSave, kDemFiles}});
  EXPECT_EQ(ReadFileBytes("out.lan"),
            BytesOf(DemHeader(2, 2, 9, 25, 2)) + PixelBytes<float>({1, -4096, -4096, 2}));
  EXPECT_EQ(ui.EventsWith("status").back(),
            "status 0: Written to out.lan: 2 rows, 2 columns. Points placed: 2 of 2.");
}

// The pixels of a GeoTIFF; its place is not kept.
TEST_F(DemCommandsTest, DemOfPointsUnderItsOwnExtensionIsAGeoTiff) {
  ui.files = {{"p.pts"}, {"out.dem"}};
  EXPECT_EQ(Run("Points(.pts) to DEM"), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("out.dem").substr(0, 4), std::string("II*\0", 4));
  ErdasImg dem;
  ASSERT_EQ(dem.Read("out.dem"), 1);
  EXPECT_EQ(BandBytes(dem, 0), PixelBytes<float>({1, -4096, -4096, 2}));
}

TEST_F(DemCommandsTest, DemOfPointsLeavesOutThoseThatACutFileLacks) {
  WriteFileBytes("cut.pts", PointsBytes(3, {0, 1, 1, 0, 1, 1}, {1, 1, 5, 0, 0, 1, 6, 0, 1}));
  ui.files = {{"cut.pts"}, {"out.lan"}};
  EXPECT_EQ(Run("Points(.pts) to DEM"), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("out.lan").substr(128), PixelBytes<float>({6, 5, -4096, -4096}));
  EXPECT_EQ(ui.EventsWith("status").back(),
            "status 0: Written to out.lan: 2 rows, 2 columns. Points placed: 2 of 2. Points missing in "
            "cut.pts: 1.");
}

TEST_F(DemCommandsTest, DemOfPointsThatMakesNoGridFails) {
  const std::string box = "message warning: Write file out.lan error!\n";
  struct Case {
    std::vector<double> header;
    std::string reason;
  };
  const std::vector<Case> cases = {{{0, 4, 4, 0, 0, 1}, "There is no grid: cell size 0."},
                                   {{0, 4, 4, 0, 1, -2}, "There is no grid: cell size -2."},
                                   {{0, 4, 4, 0, NAN, 1}, "There is no grid: cell size nan."},
                                   {{4, 4, 0, 0, 1, 1}, "There is no cell in the extents."},
                                   {{0, 1e5, 1e5, 0, 1, 1}, "The grid is too large."}};
  for (const auto& [header, reason] : cases) {
    WriteFileBytes("bad.pts", PointsBytes(1, header, {0, 0, 5, 0}));
    ExpectFailure("Points(.pts) to DEM", {{"bad.pts"}, {"out.lan"}}, {box + reason});
  }
}

TEST_F(DemCommandsTest, DemOfPointsFailures) {
  ExpectFailure("Points(.pts) to DEM", {{"none.pts"}, {"out.lan"}},
                {"message warning: Open file none.pts error!"});
  ExpectFailure("Points(.pts) to DEM", {{"p.pts"}, {"none/out.lan"}},
                {"message warning: Write file none/out.lan error!"});
  ExpectFailure("Points(.pts) to DEM", {{"p.pts"}, {"none/out.dem"}},
                {"message warning: Write file none/out.dem error!"});
}

TEST_F(DemCommandsTest, DemOfPointsCancelledWritesNothing) {
  ExpectCancelAtEach("Points(.pts) to DEM", "ff", {"p.pts", "out.lan"});
}

TEST_F(DemCommandsTest, RealDemBecomesPointsAndADemAgain) {
  const std::string path = SharedData("photos/ngi_06_dem.lan");
  if (path.empty()) GTEST_SKIP();
  ui.files = {{path}, {"out.pts"}, {"out.pts"}, {"back.lan"}};
  ui.forms = {Accept};
  EXPECT_EQ(Run("DEM to Points(.pts)"), CommandResult::Done);
  EXPECT_EQ(Run("Points(.pts) to DEM"), CommandResult::Done);
  EXPECT_TRUE(ReadFileBytes("back.lan").substr(128) == ReadFileBytes(path).substr(128));
}

// Generate Flat DEM

TEST_F(DemCommandsTest, FlatDemWithDefaultsIsTwoByTwoAtZero) {
  ui.files = {{"flat.lan"}};
  ui.forms = {Accept};
  EXPECT_EQ(Run("Generate Flat DEM"), CommandResult::Done);
  ExpectChoosers({{kSave, kDemFiles}});
  EXPECT_THAT(FieldsOf(ui.shownForms.at(0)),
              ElementsAre("XStart: -1", "YStart: -1", "XEnd 1", "YEnd: 1", "Cell Size 1", "Z Value: 0"));
  EXPECT_EQ(ui.events[1], "form: ExtentInput");
  EXPECT_EQ(ui.events[2], std::string("save: ") + kDemFiles);
  EXPECT_EQ(ReadFileBytes("flat.lan"),
            BytesOf(DemHeader(2, 2, -0.5f, 0.5f, 1)) + PixelBytes<float>({0, 0, 0, 0}));
  EXPECT_EQ(ui.EventsWith("status").back(), "status 0: Written to flat.lan: 2 rows, 2 columns.");
}

TEST_F(DemCommandsTest, FlatDemOfAHeight) {
  ui.files = {{"flat.lan"}};
  ui.forms = {Enter({{"xStart", "10"},
                     {"yStart", "20"},
                     {"xEnd", "14"},
                     {"yEnd", "22"},
                     {"cellSize", "2"},
                     {"minCorrCoeff", "230.5"}})};
  EXPECT_EQ(Run("Generate Flat DEM"), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("flat.lan"),
            BytesOf(DemHeader(2, 1, 11, 21, 2)) + PixelBytes<float>({230.5f, 230.5f}));
}

TEST_F(DemCommandsTest, FlatDemThatIsNoGridFails) {
  const std::string box = "message warning: Write file flat.lan error!\n";
  struct Case {
    std::string field;
    std::string value;
    std::string reason;
  };
  const std::vector<Case> cases = {{"cellSize", "0", "There is no grid: cell size 0."},
                                   {"cellSize", "-1", "There is no grid: cell size -1."},
                                   {"cellSize", "9", "There is no cell in the extents."},
                                   {"xEnd", "-1", "There is no cell in the extents."},
                                   {"xEnd", "1e300", "The grid is too large."},
                                   {"cellSize", "1e-6", "The grid is too large."}};
  for (const auto& [field, value, reason] : cases) {
    ui.forms = {Enter({{field, value}})};
    ExpectFailure("Generate Flat DEM", {{"flat.lan"}}, {box + reason});
  }
}

TEST_F(DemCommandsTest, FlatDemThatCannotBeWritten) {
  ui.forms = {Accept};
  ExpectFailure("Generate Flat DEM", {{"none/flat.lan"}},
                {"message warning: Write file none/flat.lan error!"});
}

TEST_F(DemCommandsTest, FlatDemCancelledWritesNothing) {
  ExpectCancelAtEach("Generate Flat DEM", "ef", {"flat.lan"});
}

}  // namespace
}  // namespace corvane
