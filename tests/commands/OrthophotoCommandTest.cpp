// Create Orthophoto, end to end.

#include <gmock/gmock.h>

#include <cmath>

#include "OpenGL/Stereo_2Cursor/OrthoMosaic.h"
#include "commands/ImageFixture.h"
#include "support/SharedData.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kCommand = "Create Orthophoto";

class OrthophotoCommandTest : public ImageCommandsTest {
 protected:
  // Photos of 50 x 50 pixels of a unit on the ground, from (1000, 2000) and (1020, 2000) on, over a DEM of
  // cells of 10 from (900, 2100) to (1200, 1800), which is level.
  void SetUp() override {
    ImageCommandsTest::SetUp();
    ErdasHeader header = HeaderOf(kPackFloat, 1, 30, 30);
    header.xMap = 900.0f;
    header.yMap = 2100.0f;
    header.xCell = 10.0f;
    header.yCell = -10.0f;
    WriteFileBytes("d.lan", BytesOf(header) + std::string(30 * 30 * 4, '\0'));
    WritePhoto("a", 1000, 1);
    WritePhoto("b", 1020, 101);
  }

  // The pixels of a photo's row are `first`, `first` + 1, ... `first` + 49. It is moved by a fifth of a
  // pixel, off the edges of pixels.
  static void WritePhoto(const std::string& stem, int x, int first, int y = 2000,
                         const std::string& kappa = "0") {
    std::string bytes = BytesOf(HeaderOf(kPackByte, 1, 50, 50));
    for (int i = 0; i < 50 * 50; ++i) bytes += static_cast<char>(first + i % 50);
    WriteFileBytes(stem + ".lan", bytes);
    WriteFileBytes(stem + ".orn", "ORIENTATION n w\n150\n" + std::to_string(x + 25) + " " +
                                      std::to_string(y - 25) + " 1500\n0 0 " + kappa +
                                      "\n90 0 0\n0.1 0 -2.52\n0 -0.1 2.52\n0 0\n0.1 0.1\n");
  }

  static bool Cancel(Form&) { return false; }

  CommandResult RunWith(const std::vector<std::string>& photos, std::function<bool(Form&)> form = Accept) {
    ui.events.clear();
    ui.files = {{"d.lan"}, photos, {"o.lan"}};
    ui.forms = {std::move(form)};
    return Run(kCommand);
  }

  static int PixelOf(const ErdasImg& image, std::int32_t row, std::int32_t col) {
    double value = -1.0;
    image.GetPixel(0, row, col, value);
    return static_cast<int>(value);
  }

  const std::string kNotWritten = "message warning: Write file o.lan error!\n";

  std::string LastStatus() const { return ui.EventsWith("status").back(); }
};

TEST_F(OrthophotoCommandTest, AsksInOrder) {
  EXPECT_EQ(RunWith({"a.lan"}), CommandResult::Done);
  ASSERT_EQ(ui.choosers.size(), 3u);
  const FileChooser& dem = ui.choosers[0];
  EXPECT_EQ(dem.mode, kOpen);
  EXPECT_EQ(dem.title, "Please select a DEM");
  EXPECT_EQ(dem.filter, "DEM Files (*.dem)|*.dem|All Files (*.*)|*.*|");
  EXPECT_EQ(dem.defaultExtension, ".dem");
  EXPECT_FALSE(dem.multiple);
  const FileChooser& photos = ui.choosers[1];
  EXPECT_EQ(photos.mode, kOpen);
  EXPECT_EQ(photos.title, "Please select images to create ortho");
  EXPECT_EQ(photos.filter, "Lan Files (*.lan)|*.lan|All Files (*.*)|*.*|");
  EXPECT_EQ(photos.defaultExtension, "lan");
  EXPECT_TRUE(photos.multiple);
  const FileChooser& output = ui.choosers[2];
  EXPECT_EQ(output.mode, kSave);
  EXPECT_EQ(output.title, "Please input the ortho photo name");
  EXPECT_EQ(output.defaultExtension, "lan");
  ASSERT_EQ(ui.shownForms.size(), 1u);
  EXPECT_EQ(ui.shownForms[0].name, "ExtentInput");
  EXPECT_THAT(FieldsOf(ui.shownForms[0]), ElementsAre("XStart: 900", "YStart: 1800", "XEnd 1200",
                                                      "YEnd: 2100", "Cell Size 10", "No-Data Value: 0"));
  EXPECT_THAT(Messages(), IsEmpty());
  EXPECT_EQ(ui.waitDepth, 0);
}

TEST_F(OrthophotoCommandTest, OnePhotoWhole) {
  EXPECT_EQ(RunWith({"a.lan"}, Enter({{"cellSize", "1"}})), CommandResult::Done);
  ErdasImg output;
  ASSERT_EQ(output.Read("o.lan"), 1);
  const ErdasHeader& header = *output.GetHeader();
  // The footprint is that of rows and columns 0 to 50, which is a fifth of a unit to the left and above.
  EXPECT_EQ(output.GetSize(), (ImageSize{50, 50}));
  EXPECT_EQ(header.xMap, 999.8f);
  EXPECT_EQ(header.yMap, 2000.2f);
  EXPECT_EQ(header.xCell, 1.0f);
  EXPECT_EQ(header.yCell, -1.0f);
  // Cell c is at x = 999.8 + c, which is the edge of pixel c: it shows this one or the one before.
  for (std::int32_t col = 1; col < 49; ++col) {
    EXPECT_NEAR(PixelOf(output, 20, col), 1 + col, 1) << col;
  }
  EXPECT_EQ(LastStatus(), "status 0: Written to o.lan: 50 rows, 50 columns. Photos: 1 of 1.");
}

TEST_F(OrthophotoCommandTest, TheLaterPhotoWinsWhereTwoOverlap) {
  const auto fine = Enter({{"cellSize", "1"}});
  ASSERT_EQ(RunWith({"a.lan", "b.lan"}, fine), CommandResult::Done);
  ErdasImg output;
  ASSERT_EQ(output.Read("o.lan"), 1);
  // Cropped by 20 % in x: a from 1010 to 1040, b from 1030 to 1060; by 30 % in y.
  EXPECT_EQ(output.GetSize(), (ImageSize{50, 20}));
  EXPECT_LT(PixelOf(output, 5, 10), 60);
  EXPECT_GT(PixelOf(output, 5, 25), 100);
  EXPECT_GT(PixelOf(output, 5, 45), 100);
  ASSERT_EQ(RunWith({"b.lan", "a.lan"}, fine), CommandResult::Done);
  ASSERT_EQ(output.Read("o.lan"), 1);
  EXPECT_LT(PixelOf(output, 5, 10), 60);
  EXPECT_LT(PixelOf(output, 5, 25), 60);
  EXPECT_GT(PixelOf(output, 5, 45), 100);
  EXPECT_THAT(LastStatus(), testing::EndsWith("Photos: 2 of 2."));
}

TEST_F(OrthophotoCommandTest, ExtentIsWhatIsEntered) {
  EXPECT_EQ(RunWith({"a.lan"}, Enter({{"xStart", "1010"},
                                      {"yStart", "1960"},
                                      {"xEnd", "1030.5"},
                                      {"yEnd", "1990"},
                                      {"cellSize", "0.5"}})),
            CommandResult::Done);
  ErdasImg output;
  ASSERT_EQ(output.Read("o.lan"), 1);
  EXPECT_EQ(output.GetSize(), (ImageSize{41, 60}));
  EXPECT_EQ(output.GetHeader()->xMap, 1010.0f);
  EXPECT_EQ(output.GetHeader()->yMap, 1990.0f);
}

TEST_F(OrthophotoCommandTest, AfterCancelOfTheExtentTheCellShownIsKept) {
  EXPECT_EQ(RunWith({"a.lan"}, Cancel), CommandResult::Failed);
  EXPECT_EQ(LastStatus(), "status 0: No photo is left. Left out: a.lan (outside of the extent).");
  EXPECT_EQ(ui.choosers.size(), 2u);
  // Of a photo over (-1, 0) to (0, 0) nothing but a line is left.
  WriteFileBytes("a.orn",
                 "ORIENTATION n w\n150\n0 0 1500\n0 0 0\n90 0 0\n0.1 0 -2.5\n0 -0.1 2.5\n0 0\n0.1 0.1\n");
  EXPECT_EQ(RunWith({"a.lan"}, Cancel), CommandResult::Failed);
  EXPECT_THAT(Messages(), ElementsAre(kNotWritten + "There is no cell in the extent of the photos."));
  EXPECT_THAT(Files(), ElementsAre("a.lan", "a.orn", "b.lan", "b.orn", "d.lan"));
}

TEST_F(OrthophotoCommandTest, SkippedPhotosAreToldInTheStatusPane) {
  WritePhoto("far", 5000, 1);
  WriteFileBytes("bare.lan", ReadFileBytes("a.lan"));
  WriteFileBytes("gone.orn", ReadFileBytes("a.orn"));
  EXPECT_EQ(RunWith({"far.lan", "bare.lan", "gone.lan", "a.lan"}, Enter({{"cellSize", "1"}})),
            CommandResult::Done);
  EXPECT_THAT(Messages(), ElementsAre("message warning: Open file gone.lan error!"));
  EXPECT_EQ(
      LastStatus(),
      "status 0: Written to o.lan: 20 rows, 30 columns. Photos: 1 of 4. Left out: far.lan (outside of the "
      "extent), bare.lan (no orientation file), gone.lan (does not open).");
}

TEST_F(OrthophotoCommandTest, WithoutAPhotoTheCommandEndsSilently) {
  EXPECT_EQ(RunWith({"none.lan", "nor.lan"}), CommandResult::Failed);
  EXPECT_THAT(Messages(), IsEmpty());
  EXPECT_EQ(ui.choosers.size(), 2u);
  EXPECT_EQ(
      LastStatus(),
      "status 0: No photo is left. Left out: none.lan (no orientation file), nor.lan (no orientation file).");
}

// Cuts a photo short while the name of the output is asked for.
class CuttingFrontEnd : public TestFrontEnd {
 public:
  std::optional<std::vector<std::string>> ChooseFiles(const FileChooser& chooser) override {
    if (chooser.mode == FileChooser::Mode::Save) std::filesystem::resize_file("a.lan", 60);
    return TestFrontEnd::ChooseFiles(chooser);
  }
};

TEST_F(OrthophotoCommandTest, APhotoThatCannotBeReadInTheEndLeavesAHole) {
  {
    CuttingFrontEnd cutting;
    cutting.files = {{"d.lan"}, {"a.lan", "b.lan"}, {"o.lan"}};
    cutting.forms = {Enter({{"cellSize", "1"}})};
    EXPECT_EQ(Run(kCommand), CommandResult::Failed);
    ui.events = cutting.events;
  }
  EXPECT_THAT(Messages(),
              ElementsAre("message warning: Open file a.lan error!\nIt is shorter than the header of "
                          "an image."));
  ErdasImg output;
  ASSERT_EQ(output.Read("o.lan"), 1);
  EXPECT_EQ(PixelOf(output, 5, 10), 0);
  EXPECT_GT(PixelOf(output, 5, 40), 100);
  EXPECT_THAT(LastStatus(), testing::EndsWith("Photos: 1 of 2. Left out: a.lan (could not be read)."));
}

TEST_F(OrthophotoCommandTest, FilesThatAreNoImagesAreLeftOut) {
  ErdasImg foreign;
  ASSERT_EQ(foreign.Create(HeaderOf(kPackByte, 1, 50, 50), false), 1);
  foreign.Write("f.tif");
  WriteFileBytes("text.lan", ReadFileBytes("a.orn") + ReadFileBytes("a.orn"));
  WriteFileBytes("empty.lan", "");
  WriteFileBytes("many.lan", BytesOf(HeaderOf(kPackByte, 60000, 50, 50)));
  for (const char* stem : {"f", "text", "empty", "many"}) {
    WriteFileBytes(std::string(stem) + ".orn", ReadFileBytes("a.orn"));
  }
  const std::vector<std::string> none = {"f.tif", "text.lan", "empty.lan", "many.lan"};
  const std::string omitted =
      " Left out: f.tif (it is no image), text.lan (it is no image), empty.lan (it is no image), many.lan "
      "(it "
      "is no image).";
  EXPECT_EQ(RunWith(none), CommandResult::Failed);
  EXPECT_EQ(LastStatus(), "status 0: No photo is left." + omitted);
  EXPECT_THAT(Messages(), IsEmpty());
  EXPECT_FALSE(std::filesystem::exists("o.lan"));
  EXPECT_EQ(RunWith({"f.tif", "text.lan", "empty.lan", "many.lan", "a.lan"}), CommandResult::Done);
  EXPECT_THAT(LastStatus(), testing::EndsWith(" Photos: 1 of 5." + omitted));
}

TEST_F(OrthophotoCommandTest, APhotoThatIsOrientedNowhereIsTold) {
  WriteFileBytes("a.orn", "");
  EXPECT_EQ(RunWith({"a.lan"}), CommandResult::Failed);
  EXPECT_EQ(LastStatus(),
            "status 0: No photo is left. Left out: a.lan (its orientation file makes no orientation).");
}

TEST_F(OrthophotoCommandTest, NotesNamePhotosWithoutFolders) {
  std::filesystem::create_directory("p");
  std::filesystem::rename("a.lan", "p/a.lan");
  EXPECT_EQ(RunWith({"p/a.lan"}), CommandResult::Failed);
  EXPECT_EQ(LastStatus(), "status 0: No photo is left. Left out: a.lan (no orientation file).");
}

// The photo's upper side falls from 1.29 to 1.11 cells above the extent, within a row, and its right side
// goes on down: this row has three crossings.
TEST_F(OrthophotoCommandTest, WhereNoCellIsPaintedNothingIsWritten) {
  WritePhoto("a", 1000, 1, 2000, "-0.2");
  WriteFileBytes("o.lan", "old");
  EXPECT_EQ(RunWith({"a.lan"}, Enter({{"cellSize", "1"}, {"yEnd", "1999"}})), CommandResult::Failed);
  EXPECT_EQ(LastStatus(),
            "status 0: No cell is painted, so o.lan is not written. Left out: a.lan (its footprint can't be "
            "followed in cells of this size).");
  EXPECT_THAT(Messages(), IsEmpty());
  EXPECT_EQ(ReadFileBytes("o.lan"), "old");
}

// Cropped the photo is 20 units high, 22.2 cells, and 30 wide, along which its sides fall by 0.12 cells. The
// upper one comes from 9.94 to 10.06 cells below the output's, two rows; the lower one stays in row 32, which
// has three crossings.
TEST_F(OrthophotoCommandTest, APhotoPaintedInPartIsTold) {
  WritePhoto("a", 1000, 1, 2000, "-0.2");
  WritePhoto("b", 1020, 101, 2009);
  WritePhoto("c", 1020, 101, 1995);
  EXPECT_EQ(RunWith({"b.lan", "c.lan", "a.lan"}, Enter({{"cellSize", "0.9"}})), CommandResult::Done);
  EXPECT_THAT(LastStatus(),
              testing::EndsWith(" Photos: 3 of 3. Painted in part: a.lan (its footprint can't be followed in "
                                "cells of this size)."));
  EXPECT_THAT(Messages(), IsEmpty());
  ErdasImg output;
  ASSERT_EQ(output.Read("o.lan"), 1);
  EXPECT_GT(PixelOf(output, 5, 40), 100);
  EXPECT_GT(PixelOf(output, 15, 10), 0);
  EXPECT_LT(PixelOf(output, 15, 10), 60);
}

TEST_F(OrthophotoCommandTest, AnInputIsNotWrittenOver) {
  const auto before = Files();
  const std::string photo = ReadFileBytes("a.lan");
  for (const std::string name : {"d.lan", "a.lan", "./b.lan"}) {
    ui.events.clear();
    ui.files = {{"d.lan"}, {"a.lan", "b.lan"}, {name}};
    ui.forms = {Accept};
    EXPECT_EQ(Run(kCommand), CommandResult::Failed);
    EXPECT_THAT(Messages(), ElementsAre("message warning: Write file " + name +
                                        " error!\nIt is one of the files that the command reads."));
  }
  EXPECT_EQ(Files(), before);
  EXPECT_EQ(ReadFileBytes("a.lan"), photo);
}

TEST_F(OrthophotoCommandTest, APhotoThatIsCutShortIsPaintedAndTold) {
  std::filesystem::resize_file("a.lan", 128 + 50 * 40);
  EXPECT_EQ(RunWith({"a.lan"}), CommandResult::Done);
  EXPECT_THAT(LastStatus(), testing::EndsWith("Photos: 1 of 1. a.lan is cut short: bytes missing: 500."));
}

TEST_F(OrthophotoCommandTest, NoMoreThan256PhotosAreTaken) {
  std::vector<std::string> names(257, "a.lan");
  names.back() = "none.lan";
  EXPECT_EQ(RunWith(names), CommandResult::Done);
  EXPECT_THAT(LastStatus(), testing::EndsWith("Photos: 256 of 257. Left out: the last 1, as no more than 256 "
                                              "are taken."));
}

TEST_F(OrthophotoCommandTest, CancelAtEachPrompt) {
  const auto before = Files();
  ui.files = {};
  EXPECT_EQ(Run(kCommand), CommandResult::Cancelled);
  ui.files = {{"d.lan"}};
  EXPECT_EQ(Run(kCommand), CommandResult::Cancelled);
  ui.files = {{"d.lan"}, {"a.lan"}};
  ui.forms = {Accept};
  EXPECT_EQ(Run(kCommand), CommandResult::Cancelled);
  EXPECT_EQ(Files(), before);
  EXPECT_EQ(ui.waitDepth, 0);
}

TEST_F(OrthophotoCommandTest, ADemThatCannotBeRead) {
  ExpectFailure(kCommand, {{"none.lan"}}, {"message warning: Open file none.lan error!"});
  WriteFileBytes("short.lan", "HEAD74");
  ExpectFailure(kCommand, {{"short.lan"}},
                {"message warning: Open file short.lan error!\nIt is shorter than the header of an image."});
}

TEST_F(OrthophotoCommandTest, CellsThatMakeNoImage) {
  const std::string notAbove = "The cell size must be above 0.";
  const std::string tooLarge = "The orthophoto would be too large. Choose larger cells.";
  for (const auto& [cell, reason] : {std::pair<std::string, std::string>{"0", notAbove},
                                     {"-1", notAbove},
                                     {"1e-7", tooLarge},
                                     {"1e-30", tooLarge},
                                     {"1e9", "There is no cell in the extent of the photos."}}) {
    EXPECT_EQ(RunWith({"a.lan"}, Enter({{"cellSize", cell}})), CommandResult::Failed) << cell;
    EXPECT_THAT(Messages(), ElementsAre(kNotWritten + reason));
    EXPECT_FALSE(std::filesystem::exists("o.lan"));
    EXPECT_EQ(ui.waitDepth, 0);
  }
}

TEST_F(OrthophotoCommandTest, AnOutputThatCannotBeWritten) {
  ui.files = {{"d.lan"}, {"a.lan"}, {"none/o.lan"}};
  ui.forms = {Accept};
  EXPECT_EQ(Run(kCommand), CommandResult::Failed);
  EXPECT_THAT(Messages(), ElementsAre("message warning: Write file none/o.lan error!"));
}

TEST_F(OrthophotoCommandTest, HillsInLargeCellsCannotBeFollowed) {
  if (SharedData("block/hills_dem.lan").empty()) GTEST_SKIP() << "no real test data";
  const std::string photo = SharedData("block/hills_s2p3.lan");
  ui.files = {{SharedData("block/hills_dem.lan")}, {photo, photo}, {"o.lan"}};
  ui.forms = {Enter({{"cellSize", "5"}, {"yEnd", "5700"}})};
  EXPECT_EQ(Run(kCommand), CommandResult::Failed);
  const std::string stopped = "hills_s2p3.lan (its footprint can't be followed in cells of this size)";
  EXPECT_EQ(LastStatus(), "status 0: No cell is painted, so o.lan is not written. Left out: " + stopped +
                              ", " + stopped + ".");
  EXPECT_FALSE(std::filesystem::exists("o.lan"));
}

TEST_F(OrthophotoCommandTest, HillsShowTheGroundWhereItIs) {
  if (SharedData("block/hills_dem.lan").empty()) GTEST_SKIP() << "no real test data";
  std::vector<std::string> photos;
  for (const char* name :
       {"hills_s1p1", "hills_s1p2", "hills_s1p3", "hills_s2p1", "hills_s2p2", "hills_s2p3"}) {
    for (const char* extension : {".lan", ".orn"}) {
      std::filesystem::copy(SharedData(std::string("block/") + name + extension), ".");
    }
    photos.push_back(std::string(name) + ".lan");
  }
  ui.files = {{SharedData("block/hills_dem.lan")}, photos, {"o.lan"}};
  ui.forms = {Enter({{"cellSize", "0.625"}})};
  EXPECT_EQ(Run(kCommand), CommandResult::Done);
  ErdasImg output;
  ErdasImg dem;
  ASSERT_EQ(output.Read("o.lan"), 1);
  ASSERT_EQ(dem.Read(SharedData("block/hills_dem.lan")), 1);
  // Each cell shows what some photo shows at the ground point.
  const ErdasHeader& header = *output.GetHeader();
  std::vector<std::unique_ptr<AerialPhoto>> sources;
  for (const std::string& photo : photos) {
    sources.push_back(std::make_unique<AerialPhoto>());
    ASSERT_EQ(sources.back()->LoadOrientation(photo.substr(0, 10) + ".orn"), 1);
    sources.back()->OpenImage(photo);
  }
  int nPainted = 0;
  for (std::int32_t row = 0; row < header.rows; row += 7) {
    for (std::int32_t col = 0; col < header.cols; col += 7) {
      const int pixel = PixelOf(output, row, col);
      if (pixel == 0) continue;
      ++nPainted;
      const double x = header.xMap + col * 0.625;
      const double y = header.yMap - row * 0.625;
      double z = 0.0;
      dem.GetPixelXY(0, x, y, z);
      const bool isShown = std::any_of(sources.begin(), sources.end(), [&](const auto& photo) {
        double sourceCol, sourceRow;
        photo->GroundToImage(x, y, z, sourceCol, sourceRow);
        return std::abs(sourceCol - 300) < 300 && std::abs(sourceRow - 300) < 300 &&
               PixelOf(photo->image, static_cast<int>(sourceRow), static_cast<int>(sourceCol)) == pixel;
      });
      EXPECT_TRUE(isShown) << row << " " << col;
    }
  }
  EXPECT_GT(nPainted, 5000);
}

}  // namespace
}  // namespace corvane
