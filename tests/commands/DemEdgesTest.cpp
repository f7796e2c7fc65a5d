// The commands around rasters of heights at their edges: cells that are none, rectangles without cells, grids
// and points that are not whole.

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

#include "commands/ImageFixture.h"
#include "support/PointsBytes.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class DemEdgesTest : public ImageCommandsTest {
 protected:
  // 3 columns and 2 rows of floats with their corner at (100, 206).
  static std::string DemBytes(float xCell, float yCell) {
    ErdasHeader header = HeaderOf(kPackFloat, 1, 3, 2);
    header.xMap = 100.0f;
    header.yMap = 206.0f;
    header.xCell = xCell;
    header.yCell = yCell;
    return BytesOf(header) + PixelBytes<float>({1, 2, 3, 4, 5, 6});
  }

  std::string LastStatus() const { return ui.EventsWith("status").back(); }

  const std::string kGridHead = "ncols 2\nnrows 2\nxllcorner 100\nyllcorner 200\ncellsize 2\n";
};

// DEM to ASCII Grid, DEM to Points(.pts)

TEST_F(DemEdgesTest, ARectangleWithoutCellsIsTold) {
  WriteFileBytes("d.lan", DemBytes(2, -2));
  const std::vector<std::pair<std::string, std::string>> fields = {{"xEnd", "99"}, {"yEnd", "203.5"}};
  for (const auto& field : fields) {
    ui.files = {{"d.lan"}, {"out.asc"}, {"d.lan"}, {"out.pts"}};
    ui.forms = {Enter({field}), Enter({field})};
    EXPECT_EQ(Run("DEM to ASCII Grid"), CommandResult::Done);
    EXPECT_EQ(LastStatus(), "status 0: There is no cell in the rectangle.") << field.first;
    EXPECT_EQ(Run("DEM to Points(.pts)"), CommandResult::Done);
    EXPECT_EQ(LastStatus(), "status 0: There is no cell in the rectangle.") << field.first;
    EXPECT_EQ(ReadFileBytes("out.pts").substr(0, 4), std::string(4, '\0'));
  }
}

// A width or height divided by no cell is endless, or no number: no column, as none is asked for.
TEST_F(DemEdgesTest, CellsOfZeroOrNoNumberGiveNoCell) {
  for (const float cell : {0.0f, std::numeric_limits<float>::quiet_NaN()}) {
    WriteFileBytes("d.lan", DemBytes(cell, -2));
    ui.files = {{"d.lan"}, {"out.asc"}, {"d.lan"}, {"out.pts"}};
    ui.forms = {Accept, Accept};
    EXPECT_EQ(Run("DEM to ASCII Grid"), CommandResult::Done) << cell;
    EXPECT_EQ(LastStatus(), "status 0: There is no cell in the rectangle.") << cell;
    EXPECT_EQ(Run("DEM to Points(.pts)"), CommandResult::Done) << cell;
    EXPECT_EQ(LastStatus(), "status 0: There is no cell in the rectangle.") << cell;
    EXPECT_THAT(Messages(), IsEmpty());
  }
}

// The form then shows the lower edge above the upper one.
TEST_F(DemEdgesTest, ADemWhoseRowsGoUpHasNoCellInItsRectangle) {
  WriteFileBytes("d.lan", DemBytes(2, 2));
  ui.files = {{"d.lan"}, {"out.asc"}, {"d.lan"}, {"out.asc"}};
  ui.forms = {Accept, Enter({{"yStart", "207"}, {"yEnd", "211"}})};
  EXPECT_EQ(Run("DEM to ASCII Grid"), CommandResult::Done);
  EXPECT_THAT(FieldsOf(ui.shownForms.at(0)), ElementsAre("XStart: 99", "YStart: 209", "XEnd 105", "YEnd: 205",
                                                         "Cell Size 2", "No-Data Value: 0"));
  EXPECT_EQ(LastStatus(), "status 0: There is no cell in the rectangle.");
  EXPECT_EQ(Run("DEM to ASCII Grid"), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("out.asc"),
            "ncols 3\nnrows 2\nxllcorner 99\nyllcorner 209\ncellsize 2\nNODATA_value -4096\n1 2 3\n4 5 6\n");
}

TEST_F(DemEdgesTest, TheWaitCursorIsOffAtTheForm) {
  WriteFileBytes("d.lan", DemBytes(2, -2));
  for (const char* command : {"DEM to ASCII Grid", "DEM to Points(.pts)", "Subset", "Subset (to Text)"}) {
    ui.files = {{"d.lan"}, {"out"}};
    ui.forms = {[this](Form&) {
      EXPECT_EQ(ui.waitDepth, 0);
      return true;
    }};
    EXPECT_EQ(Run(command), CommandResult::Done);
    EXPECT_EQ(ui.waitDepth, 0);
  }
}

// ASCII Grid to DEM, ASCII Grid to TOPAZ

TEST_F(DemEdgesTest, AWordInsideAGrid) {
  WriteFileBytes("g.asc", kGridHead + "NODATA_value -1\n7 x 8.5 9\n");
  ui.files = {{"g.asc"}, {"out.lan"}, {"g.asc"}};
  EXPECT_EQ(Run("ASCII Grid to DEM"), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("out.lan").substr(128), PixelBytes<double>({7, -1, -1, -1}));
  const std::string cells = " Cells written: 1 of 4; the rest is missing or no number.";
  EXPECT_EQ(LastStatus(), "status 0: Written to out.lan: 2 rows, 2 columns." + cells);
  EXPECT_EQ(Run("ASCII Grid to TOPAZ"), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("DEDNM.INP"), "7.000000\n");
  EXPECT_EQ(LastStatus(), "status 0: Written to DEDNM.INP: 2 rows, 2 columns." + cells);
}

TEST_F(DemEdgesTest, AGridThatIsCutShort) {
  WriteFileBytes("g.asc", kGridHead + "NODATA_value -1\n7 8 9");
  ui.files = {{"g.asc"}, {"out.lan"}};
  EXPECT_EQ(Run("ASCII Grid to DEM"), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("out.lan").substr(128), PixelBytes<double>({7, 8, 9, -1}));
  EXPECT_EQ(LastStatus(),
            "status 0: Written to out.lan: 2 rows, 2 columns. Cells written: 3 of 4; the rest is missing or "
            "no number.");
}

TEST_F(DemEdgesTest, TopazOfAGridWithoutCellsFailsAndKeepsTheOldFile) {
  WriteFileBytes("DEDNM.INP", "old");
  for (const char* cells : {"", "NODATA_value -1\n", "NODATA_value -1\nx y z\n"}) {
    WriteFileBytes("g.asc", kGridHead + cells);
    ExpectFailure("ASCII Grid to TOPAZ", {{"g.asc"}},
                  {"message warning: Conversion from ASCII Grid to TOPAZ failed"});
    EXPECT_EQ(ReadFileBytes("DEDNM.INP"), "old");
  }
}

// Points(.pts) to DEM

// 5300000.25 + 0.125 becomes 5300000.5 in single precision, so that all points are a cell further down.
TEST_F(DemEdgesTest, PointsAtMillionsAreLostWhereTheCornerIsRounded) {
  WriteFileBytes("p.pts", PointsBytes(3, {0, 5300000.25, 0, 5299999.75, 0.25, 0.25},
                                      {0, 5300000.25, 1, 0, 0, 5300000, 2, 0, 0, 5299999.75, 3, 0}));
  ui.files = {{"p.pts"}, {"out.lan"}};
  EXPECT_EQ(Run("Points(.pts) to DEM"), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("out.lan").substr(128), PixelBytes<float>({-4096, 1, 2}));
  EXPECT_EQ(LastStatus(),
            "status 0: Written to out.lan: 3 rows, 1 columns. Points placed: 2 of 3, left out: 1.");
}

TEST_F(DemEdgesTest, PointsThatCannotBeReadAreToldApart) {
  const std::string noPoints = "message warning: Open file bad.pts error!\nIt holds no points.";
  WriteFileBytes("bad.pts", "");
  ExpectFailure("Points(.pts) to DEM", {{"bad.pts"}, {"out.lan"}}, {noPoints});
  WriteFileBytes("bad.pts", PointsBytes(0, {0, 4, 4, 0, 1, 1}, {}));
  ExpectFailure("Points(.pts) to DEM", {{"bad.pts"}, {"out.lan"}}, {noPoints});
  WriteFileBytes("bad.pts", PointsBytes(INT32_MAX, {0, 4, 4, 0, 1, 1}, {0, 0, 5, 0}));
  ExpectFailure("Points(.pts) to DEM", {{"bad.pts"}, {"out.lan"}},
                {"message message: Can not allocate memory for points!\n"});
}

// They are numbers, and none as the floats that the cells become.
TEST_F(DemEdgesTest, PointsInCellsTooSmallOrTooLargeForTheHeader) {
  const std::string box = "message warning: Write file out.lan error!\nThere is no grid: cell size ";
  WriteFileBytes("p.pts", PointsBytes(1, {0, 4, 4, 0, 1, 1e300}, {0, 0, 5, 0}));
  ExpectFailure("Points(.pts) to DEM", {{"p.pts"}, {"out.lan"}}, {box + "1e+300."});
  WriteFileBytes("p.pts", PointsBytes(1, {0, 4, 4, 0, 1e-300, 1}, {0, 0, 5, 0}));
  ExpectFailure("Points(.pts) to DEM", {{"p.pts"}, {"out.lan"}}, {box + "1e-300."});
}

}  // namespace
}  // namespace corvane
