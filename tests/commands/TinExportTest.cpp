// DEMs and shape files from TINs, from prompts to files.

#include "commands/PointUtilitiesFixture.h"
#include "erdasimg/ErdasImg.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

constexpr const char* kTinFiles = "TIN Files (*.tin)|*.tin|All Files (*.*)|*.*|";
constexpr const char* kDemFiles = "DEM Files (*.dem)|*.dem|All Files (*.*)|*.*|";
constexpr const char* kShapeFiles = "Shape Files (*.shp)|*.shp|All Files (*.*)|*.*|";
constexpr const char* kTotal = "message message: Total hrs: 00 mins: 00, secs: 00";

class TinExportTest : public PointUtilitiesTest {
 protected:
  void SetUp() override {
    PointUtilitiesTest::SetUp();
    WriteFileBytes("a.tin", SquareTinBytes());
  }

  void Open(const std::string& name) {
    ui.files = {{name}};
    ASSERT_EQ(Run("File > Open"), CommandResult::Done);
    ui.events.clear();
    ui.choosers.clear();
  }
};

TEST_F(TinExportTest, CreateDemAsksReadsAndSamples) {
  ui.files = {{"a.tin"}, {"a.lan"}};
  ui.forms = {
      Enter({{"xStart", "100"}, {"yStart", "200"}, {"xEnd", "110"}, {"yEnd", "210"}, {"cellSize", "5"}})};
  EXPECT_EQ(Run("Create DEM"), CommandResult::Done);
  ExpectChooser(0, kOpen, kTinFiles, "", true);
  ExpectChooser(1, kSave, kDemFiles, "DEM");
  const Form& form = ui.shownForms.at(0);
  EXPECT_EQ(std::get<double>(form.fields[0].value), 99.0);
  EXPECT_EQ(std::get<double>(form.fields[1].value), 199.0);
  EXPECT_EQ(std::get<double>(form.fields[2].value), 111.0);
  EXPECT_EQ(std::get<double>(form.fields[3].value), 211.0);
  EXPECT_EQ(std::get<double>(form.fields[4].value), 1.0);
  EXPECT_THAT(ui.EventsWith("status"),
              ElementsAre("status 0: Reading TIN from a.tin", "status 0: Done reading TIN.",
                          "status 0: Written to a.lan: 2 rows, 2 columns."));
  EXPECT_EQ(Messages().back(), kTotal);
  EXPECT_EQ(ui.waitDepth, 0);

  ErdasImg dem;
  ASSERT_EQ(dem.Read("a.lan"), 1);
  EXPECT_EQ(dem.GetSize(), (ImageSize{2, 2}));
  // z = 1 + (x - 100) / 10 + (y - 200) / 10 below the diagonal, 1 + 3 (y - 200) / 10 - (x - 100) / 10 above
  const double expected[] = {3.0, 2.5, 1.5, 2.0};
  for (int i = 0; i < 4; ++i) {
    double z = 0.0;
    dem.GetPixel(0, i / 2, i % 2, z);
    EXPECT_NEAR(z, expected[i], 1e-6) << i;
  }
}

TEST_F(TinExportTest, DemIsAGeoTiffWithoutPosition) {
  ui.files = {{"a.tin"}, {"a.dem"}};
  ui.forms = {Accept};
  EXPECT_EQ(Run("Create DEM"), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("a.dem").substr(0, 2), "II");
  ErdasImg dem;
  ASSERT_EQ(dem.Read("a.dem"), 1);
  EXPECT_EQ(dem.GetSize(), (ImageSize{12, 12}));
  EXPECT_EQ(dem.GetHeader()->xMap, 0.0f);
  double z = 0.0;
  dem.GetPixel(0, 0, 0, z);
  EXPECT_EQ(z, 230.0);
}

TEST_F(TinExportTest, CreateDemLeavesNothingWhenCancelled) {
  ExpectCancelAtEachChooser("Create DEM", {{"a.tin"}, {"a.dem"}});
  ui.files = {{"a.tin"}, {"a.dem"}};
  const auto before = Files();
  EXPECT_EQ(Run("Create DEM"), CommandResult::Cancelled);  // at the form
  EXPECT_EQ(Files(), before);
}

TEST_F(TinExportTest, CreateDemEndsQuietlyAfterAFailedRead) {
  ExpectFailure("Create DEM", {{"none.tin"}, {"a.dem"}}, {"message warning: Open file none.tin error!"});
  EXPECT_THAT(ui.EventsWith("form"), IsEmpty());
  WriteFileBytes("short.tin", SquareTinBytes().substr(0, 50));
  ExpectFailure("Create DEM", {{"short.tin"}, {"a.dem"}}, {"message message: ReadTIN: Read TIN error!"});
}

TEST_F(TinExportTest, CreateDemTellsThatTheTinMakesNoModel) {
  WriteFileBytes("empty.tin", TinBytes({}, {}));
  ui.files = {{"empty.tin"}, {"a.dem"}};
  EXPECT_EQ(Run("Create DEM"), CommandResult::Failed);
  EXPECT_EQ(Messages().back(), "message warning: Failed to create the DEM!");
  EXPECT_THAT(ui.EventsWith("form"), IsEmpty());
}

TEST_F(TinExportTest, CreateDemRefusesCellsThatMakeNoRaster) {
  for (const char* cellSize : {"0", "-1", "1e-7"}) {
    ui.forms = {Enter({{"cellSize", cellSize}})};
    ui.files = {{"a.tin"}, {"a.dem"}};
    const auto before = Files();
    EXPECT_EQ(Run("Create DEM"), CommandResult::Failed) << cellSize;
    EXPECT_EQ(Messages().back(), "message warning: Failed to create the DEM!");
    EXPECT_EQ(Files(), before);
  }
}

TEST_F(TinExportTest, CreateDemTellsThatTheFileCannotBeWritten) {
  for (const char* path : {"missing/a.lan", "missing/a.dem"}) {
    ui.events.clear();
    ui.files = {{"a.tin"}, {path}};
    ui.forms = {Accept};
    EXPECT_EQ(Run("Create DEM"), CommandResult::Failed);
    EXPECT_THAT(Messages(),
                testing::Contains("message warning: Write file " + std::string(path) + " error!").Times(1));
  }
}

TEST_F(TinExportTest, CreateDemFromPointsRunsThreeCommandsWithTheirOwnPrompts) {
  WriteFileBytes("a.txt", "100 200 1\n110 200 2\n110 210 3\n100 210 4\n");
  ui.files = {{"a.txt"}, {"b.pts"}, {"b.pts"}, {"b.tin"}, {"b.tin"}, {"b.lan"}};
  ui.values = {1.0};
  ui.forms = {Accept};
  EXPECT_EQ(Run("Create DEM(from points)"), CommandResult::Done);
  EXPECT_EQ(ui.choosers.size(), 6u);
  ErdasImg dem;
  ASSERT_EQ(dem.Read("b.lan"), 1);
  EXPECT_EQ(dem.GetSize(), (ImageSize{12, 12}));
}

TEST_F(TinExportTest, CreateDemFromPointsGoesOnAfterACancelledStage) {
  ui.files = {};
  EXPECT_EQ(Run("Create DEM(from points)"), CommandResult::Cancelled);
  EXPECT_EQ(ui.choosers.size(), 3u);
  ui.choosers.clear();
  ui.files = {{"none.txt"}, {"b.pts"}};
  ui.values = {1.0};
  EXPECT_EQ(Run("Create DEM(from points)"), CommandResult::Failed);
  EXPECT_EQ(ui.choosers.size(), 4u);
}

TEST_F(TinExportTest, TinToShapeOnAnEmptyDocumentAsksReadsAndWrites) {
  ui.files = {{"a.tin"}, {"net.shp"}};
  EXPECT_EQ(Run("TIN to Shape"), CommandResult::Done);
  ExpectChooser(0, kOpen, kTinFiles, "");
  ExpectChooser(1, kSave, kShapeFiles, "Choose a Shape File");
  EXPECT_THAT(Messages(), IsEmpty());
  EXPECT_THAT(Files(), testing::IsSupersetOf({"net.dbf", "net.shp", "net.shx"}));
  EXPECT_EQ(ReadFileBytes("net.shp").size(), 100u + 2 * 120);
  EXPECT_FALSE(Document().GetTIN().IsStored());
  EXPECT_EQ(Document().GetTitle(), "a.tin");
  EXPECT_FALSE(app.GetMainFrame().GetTinView()->paintEnabled);
}

TEST_F(TinExportTest, TinToShapeGivesTheSameFileFromAStoredTin) {
  ui.files = {{"a.tin"}, {"raw.shp"}};
  ASSERT_EQ(Run("TIN to Shape"), CommandResult::Done);
  Open("a.tin");
  ui.files = {{"stored.shp"}};
  EXPECT_EQ(Run("TIN to Shape"), CommandResult::Done);
  for (const std::string extension : {".shp", ".shx", ".dbf"})
    EXPECT_EQ(ReadFileBytes("raw" + extension), ReadFileBytes("stored" + extension)) << extension;
}

TEST_F(TinExportTest, TinToShapeFailures) {
  ExpectFailure("TIN to Shape", {{"none.tin"}}, {"message warning: Open file none.tin error!"});
  Open("a.tin");
  ExpectFailure(
      "TIN to Shape", {{"missing/net.shp"}},
      {"message warning: Unable to create:missing/net.shp.", "message stop: Failed to Convet TIN to Shape"});
}

TEST_F(TinExportTest, TinToShapeLeavesNothingWhenCancelled) {
  ExpectCancelAtEachChooser("TIN to Shape", {{"a.tin"}});
  Open("a.tin");
  ExpectCancelAtEachChooser("TIN to Shape", {{"net.shp"}});
}

TEST_F(TinExportTest, MaskToShapeAsksAndWritesNothing) {
  WriteFileBytes("m.msk", "1\n0 2\n0 0\n10 10\n");
  const auto before = Files();
  ui.files = {{"m.msk"}, {"net.shp"}};
  EXPECT_EQ(Run("Mask to Shape"), CommandResult::Done);
  ExpectChooser(0, kOpen, kMaskFiles, "");
  ExpectChooser(1, kSave, kShapeFiles, "Choose a Shape File");
  EXPECT_THAT(Messages(), IsEmpty());
  EXPECT_EQ(Files(), before);
  ExpectCancelAtEachChooser("Mask to Shape", {{"m.msk"}, {"net.shp"}});
  ExpectFailure("Mask to Shape", {{"none.msk"}}, {"message message: Read region file error!\n"});
}

}  // namespace
}  // namespace corvane
