// The commands on blocks of photos, end to end.

#include <gmock/gmock.h>

#include <filesystem>
#include <sstream>

#include "OpenGL/Stereo_2Cursor/AerialPhoto.h"
#include "PhotoProject/ProjectFiles.h"
#include "cli/CommandLine.h"
#include "commands/ImageFixture.h"
#include "io/MachineMemory.h"

namespace corvane {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* kProjectFiles = "Project Files (*.pj)|*.pj|All Files (*.*)|*.*|";
constexpr const char* kPhotoFiles = "Lan Files (*.lan)|*.lan|All Files (*.*)|*.*|";
constexpr const char* kControlFiles = "Ground Point Files (*.txt)|*.txt|All Files (*.*)|*.*|";

const std::string kNoGround = "message warning: Read GPT File Error!";
const std::string kNoCamera = "message message: Open camera calibration file error!";
const std::string kNoProject = "message warning: Read Project File Error!";
const std::string kNoOrientation =
    "message warning: Orientation Parameters File Cannot be opened for writing!";

// One photo that looks straight down, f = 100 and a pixel one unit, from 1000 above the origin, but entered
// as 5 further in X. With R = 1 the ground point (X, Y, 0) stands at col = X / 10, row = -Y / 10; so each
// observation is x + f U / W = 5 / 10 = 0.5 off in x, which a correction of X by -5 takes away.
class ProjectCommandsTest : public ImageCommandsTest {
 protected:
  void SetUp() override {
    ImageCommandsTest::SetUp();
    files.ground =
        "POINTS 4\nNW 3 -100 100 0 1 1 1\nNE 3 100 100 0 1 1 1\nSW 3 -100 -100 0 1 1 1\n"
        "SE 3 100 -100 0 1 1 1\n0\n";
    files.camera = "CAMERA x\nFocal 100\nFiducials 0\n1 0 0\n0 0 0 0 0 0\n";
    files.strips = "1\n1 North\n";
    files.photos = "n1.lan N1\n";
    files.interiors = {"0 1 1 n1\n1 0 0 0 -1 0\n0 4\nNW -10 -10\nNE 10 -10\nSW -10 10\nSE 10 10\n"};
    files.exteriors = {"0 1 1 n1\n0 0 0 0 0 0\n0 0 0 5 0 1000\n"};
    files.Write();
  }

  // The numbers in a text, other words left out.
  static std::vector<double> NumbersIn(std::string text) {
    std::replace(text.begin(), text.end(), ',', ' ');
    std::istringstream words(text);
    std::vector<double> numbers;
    for (std::string word; words >> word;) {
      std::size_t used = 0;
      try {
        const double number = std::stod(word, &used);
        if (used == word.size()) numbers.push_back(number);
      } catch (const std::exception&) {
      }
    }
    return numbers;
  }

  static void ExpectNear(const std::vector<double>& numbers, const std::vector<double>& expected) {
    ASSERT_EQ(numbers.size(), expected.size());
    for (std::size_t i = 0; i < numbers.size(); ++i) EXPECT_NEAR(numbers[i], expected[i], 1.5e-6) << i;
  }

  static ExitStatus RunScript(const std::string& script) {
    std::istringstream in(script);
    std::ostringstream out;
    std::ostringstream err;
    return RunCommandLine({"script", "--transcript", "t.jsonl", "-"}, CommandRows(), {in, out, err});
  }

  // The lines behind the one of the window that a session begins with.
  static std::vector<std::string> Transcript() {
    std::vector<std::string> lines;
    std::istringstream text(ReadFileBytes("t.jsonl"));
    for (std::string line; std::getline(text, line);) lines.push_back(line);
    if (!lines.empty()) lines.erase(lines.begin());
    return lines;
  }

  void ExpectProjectFailures(const std::string& command) {
    ExpectFailure(command, {{"none.pj"}}, {kNoGround});
    WriteFileBytes("lone.gpt", files.ground);
    ExpectFailure(command, {{"lone.pj"}}, {kNoProject});
    WriteFileBytes("lone.pj", "");
    ExpectFailure(command, {{"lone.pj"}}, {kNoProject});
    WriteFileBytes("lone.pj", "PROJECT x cam.txt\n100 0 0 0 0\n1\nx North\n");
    ExpectFailure(command, {{"lone.pj"}}, {kNoProject});
    EXPECT_THAT(ui.events, Contains("status 0: Line 4 of lone.pj can't be read."));
    WriteFileBytes("lone.gpt", "POINTS 1");
    ExpectFailure(command, {{"lone.pj"}}, {kNoGround});
    WriteFileBytes("lone.gpt", files.ground);
    WriteFileBytes("lone.pj", "PROJECT x none.txt\n100 0 0 0 0\n1\n1 North\n");
    ExpectFailure(command, {{"lone.pj"}}, {kNoCamera, kNoGround});
  }

  ProjectFiles files;
  const std::string kBlock =
      "status 0: Strips: 1, photos: 1, control points: 4, pass points: 0, measurements: 4.";
};

// Import Project

TEST_F(ProjectCommandsTest, ImportSolvesTheFirstSystem) {
  ui.files = {{"block.pj"}};
  EXPECT_EQ(Run("Import Project"), CommandResult::Done);
  ExpectChoosers({{kOpen, kProjectFiles, "Choose a Project File."}});
  EXPECT_THAT(
      ui.events,
      ElementsAre("command: Utilities > Import Project", std::string("open: ") + kProjectFiles,
                  "status 0: Import: writing 8 equations ...", "status 0: Import: solving for 6 unknowns ...",
                  kBlock + " Files written: 4.", "end: Utilities > Import Project done"));
  EXPECT_EQ(ui.waitDepth, 0);
  EXPECT_THAT(Files(), ElementsAre("_PassPt.txt", "block.gpt", "block.pj", "blockBundleMat.txt",
                                   "blockSolution.txt", "cam.txt", "n1.orn"));
  ExpectNear(NumbersIn(ReadFileBytes("blockSolution.txt")), {0, 0, 0, -5, 0, 0});
  EXPECT_EQ(ReadFileBytes("_PassPt.txt"), "");
}

// With R = 1 the vector D to the first point, (-105, 100, -1000), is (U, V, W) too, and with all angles 0 the
// bracket behind W in dphi is -dZ of the x row and 0 of the y row.
TEST_F(ProjectCommandsTest, ImportWritesTheSystem) {
  ui.files = {{"block.pj"}};
  EXPECT_EQ(Run("Import Project"), CommandResult::Done);
  const std::string text = ReadFileBytes("blockBundleMat.txt");
  EXPECT_TRUE(text.starts_with("8,7\n"));
  const auto numbers = NumbersIn(text.substr(4));
  ASSERT_EQ(numbers.size(), 56u);
  const double dx = -105;
  const double dy = 100;
  const double dz = -1000;
  const double f = 100;
  const double w2 = dz * dz;
  const std::vector<double> x = {
      f * -dy * dx / w2, f * (dx * dx + dz * dz) / w2, -f * dy / dz, f * dz / w2, 0, -f * dx / w2, 0.5};
  const std::vector<double> y = {
      f * (-dy * dy - dz * dz) / w2, f * dx * dy / w2, f * dx / dz, 0, f * dz / w2, -f * dy / w2, 0};
  ExpectNear({numbers.begin(), numbers.begin() + 7}, x);
  ExpectNear({numbers.begin() + 7, numbers.begin() + 14}, y);
}

TEST_F(ProjectCommandsTest, ImportOfASingularSystemIsDone) {
  files = {};
  files.Write();
  ui.files = {{"block.pj"}};
  EXPECT_EQ(Run("Import Project"), CommandResult::Done);
  EXPECT_THAT(Messages(), IsEmpty());
  EXPECT_THAT(
      ui.events,
      Contains("status 0: Strips: 2, photos: 3, control points: 1, pass points: 2, measurements: 5. The "
               "equations have no single solution. Pass points in one photo alone: 1. Files written: 6."));
  EXPECT_TRUE(ReadFileBytes("blockBundleMat.txt").starts_with("10,25\n"));
  EXPECT_FALSE(ReadFileBytes("blockSolution.txt").empty());
}

TEST_F(ProjectCommandsTest, ImportWithTooFewMeasurements) {
  files.interiors = {"0 1 1 n1\n1 0 0 0 -1 0\n0 2\nNW -10 -10\nNE 10 -10\n"};
  files.Write();
  ui.files = {{"block.pj"}};
  EXPECT_EQ(Run("Import Project"), CommandResult::Done);
  EXPECT_THAT(
      ui.events,
      Contains("status 0: Strips: 1, photos: 1, control points: 4, pass points: 0, measurements: 2. The "
               "equations have no single solution. Equations: 4 for 6 unknowns. Files written: 4."));
}

TEST_F(ProjectCommandsTest, ImportOfAnotherFolderWritesHere) {
  std::filesystem::create_directory("sub");
  for (const char* name : {"block.pj", "block.gpt"}) {
    std::filesystem::rename(name, std::string("sub/") + name);
  }
  ui.files = {{"sub/block.pj"}};
  EXPECT_EQ(Run("Import Project"), CommandResult::Done);
  EXPECT_THAT(Files(), ElementsAre("_PassPt.txt", "blockBundleMat.txt", "blockSolution.txt", "cam.txt",
                                   "n1.orn", "sub"));
}

TEST_F(ProjectCommandsTest, ImportFailures) {
  ExpectProjectFailures("Import Project");
}

TEST_F(ProjectCommandsTest, AProjectThatIsNotThereIsNamed) {
  ExpectFailure("Import Project", {{"block"}}, {"message warning: Read GPT File Error!"});
  EXPECT_THAT(ui.events, Contains("status 0: There is no project file block."));
}

TEST_F(ProjectCommandsTest, ImportCancelledWritesNothing) {
  ExpectCancelAtEach("Import Project", "f", {"block.pj"});
}

// The photos' box shows once, and the work goes on; the command has failed.
TEST_F(ProjectCommandsTest, ImportWhereFilesCannotBeWritten) {
  files = {};
  files.photos = "none/n1.lan N1\nnone/n2.lan N2\nnone/s1.lan S1\n";
  files.Write();
  std::filesystem::create_directory("blockSolution.txt");
  ui.files = {{"block.pj"}};
  EXPECT_EQ(Run("Import Project"), CommandResult::Failed);
  EXPECT_THAT(Messages(), ElementsAre(kNoOrientation));
  EXPECT_THAT(ui.EventsWith("status 0: Strips").at(0),
              HasSubstr(" Files written: 2. Not written: none/n2.orn and 3 more."));
  EXPECT_TRUE(std::filesystem::exists("blockBundleMat.txt"));
}

// Four photos: two of one name, by different ways to it, one without any block and one without its interior.
TEST_F(ProjectCommandsTest, FilesAreCountedOnce) {
  std::filesystem::create_directory("sub");
  files.strips = "1\n4 North\n";
  files.photos = "n1.lan N1\nsub/../n1.lan N2\nn3.lan N3\nn4.lan N4\n";
  const std::string block = files.interiors[0];
  files.interiors = {block, "0 1 2 n2\n" + block.substr(9), block, block};
  const std::string place = files.exteriors[0].substr(9);
  files.exteriors = {"0 1 1 n1\n" + place, "0 1 2 n2\n" + place, "0 1 1 n1\n" + place, "0 1 4 n4\n" + place};
  files.Write();
  ui.files = {{"block.pj"}};
  EXPECT_EQ(Run("Import Project"), CommandResult::Done);
  const std::string told = ui.EventsWith("status 0: Strips").at(0);
  EXPECT_THAT(told,
              HasSubstr(" measurements: 16. Photos without a block: n3.lan and 1 more. The equations "));
  EXPECT_THAT(told, testing::EndsWith(" Photos that share an orientation file: 2. Files written: 5."));
  EXPECT_THAT(Files(), ElementsAre("_PassPt.txt", "block.gpt", "block.pj", "blockBundleMat.txt",
                                   "blockSolution.txt", "cam.txt", "n1.orn", "n4.orn", "sub"));
}

// Two rays of one photo see no more than one does.
TEST_F(ProjectCommandsTest, PassPointMeasuredTwiceInOnePhoto) {
  files.interiors = {
      "0 1 1 n1\n1 0 0 0 -1 0\n2 4\nA 1 2\nA 1 2\nNW -10 -10\nNE 10 -10\nSW -10 10\nSE 10 10\n"};
  files.Write();
  for (const char* command : {"Import Project", "Bundle Adjustment"}) {
    ui.files = {{"block.pj"}};
    ui.events.clear();
    EXPECT_EQ(Run(command), CommandResult::Done);
    EXPECT_THAT(ui.EventsWith("status 0: Strips").at(0),
                HasSubstr("The equations have no single solution. Pass points in one photo alone: 1."));
  }
}

// 80000 equations for 120006 unknowns: their matrices would take 192 GB.
TEST_F(ProjectCommandsTest, EquationsBeyondTheMemory) {
  if (BytesOfMachine() > std::int64_t{190} << 30) GTEST_SKIP() << "this machine holds them";
  std::string block = "0 1 1 n1\n1 0 0 0 -1 0\n40000 0\n";
  for (int i = 0; i < 40000; ++i) block += "p" + std::to_string(i) + " 1 2\n";
  files.interiors = {block};
  files.Write();
  const std::string told =
      "Strips: 1, photos: 1, control points: 4, pass points: 40000, measurements: 40000. There is no memory "
      "for the equations. Files written: ";
  EXPECT_EQ(RunScript("\"Import Project\" block.pj\n"), ExitStatus::Failed);
  EXPECT_THAT(Transcript(), Contains(HasSubstr(told + "2.")));
  EXPECT_EQ(RunScript("\"Bundle Adjustment\" block.pj\n"), ExitStatus::Failed);
  EXPECT_THAT(Transcript(), Contains(HasSubstr(told + "3.")));
  EXPECT_FALSE(std::filesystem::exists("blockBundleMat.txt"));
  EXPECT_FALSE(std::filesystem::exists("blockBundleMat0.txt"));
}

// Bundle Adjustment

TEST_F(ProjectCommandsTest, BundleAdjustmentRunsThreeRounds) {
  ui.files = {{"block.pj"}};
  EXPECT_EQ(Run("Bundle Adjustment"), CommandResult::Done);
  ExpectChoosers({{kOpen, kProjectFiles, "Choose a Project File."}});
  EXPECT_THAT(Messages(), IsEmpty());
  EXPECT_EQ(ui.events.at(ui.events.size() - 2), kBlock + " Files written: 12.");
  EXPECT_EQ(ui.events.back(), "end: Image > Bundle Adjustment done");
  EXPECT_EQ(ui.waitDepth, 0);
  EXPECT_THAT(Files(),
              ElementsAre("block.gpt", "block.pj", "blockBundleMat0.txt", "blockBundleMat1.txt",
                          "blockBundleMat2.txt", "blockResult0.txt", "blockResult1.txt", "blockResult2.txt",
                          "blockResultInit.txt", "blockSolution0.txt", "blockSolution1.txt",
                          "blockSolution2.txt", "block_PassPt.txt", "cam.txt", "n1.orn"));
}

TEST_F(ProjectCommandsTest, BundleAdjustmentMovesThePhotoToItsPlace) {
  ui.files = {{"block.pj"}};
  EXPECT_EQ(Run("Bundle Adjustment"), CommandResult::Done);
  const std::string points =
      "NW: -100.000000, 100.000000, 0.000000\nNE: 100.000000, 100.000000, 0.000000\n"
      "SW: -100.000000, -100.000000, 0.000000\nSE: 100.000000, -100.000000, 0.000000\n\n";
  EXPECT_EQ(ReadFileBytes("blockResultInit.txt"),
            "Strip: 0, PhotoName: n1.lan\n"
            "0.000000, 0.000000, 0.000000, 5.000000, 0.000000, 1000.000000\n\n" +
                points);
  ExpectNear(NumbersIn(ReadFileBytes("blockSolution0.txt")), {0, 0, 0, -5, 0, 0});
  for (const char* name : {"blockResult0.txt", "blockResult1.txt", "blockResult2.txt"}) {
    const std::string text = ReadFileBytes(name);
    EXPECT_THAT(text, AllOf(HasSubstr("PhotoName: n1.lan\n"), HasSubstr("\n\n" + points))) << name;
    const std::string photo = text.substr(text.find('\n'), text.find("\n\n") - text.find('\n'));
    ExpectNear(NumbersIn(photo), {0, 0, 0, 0, 0, 1000});
  }
  ExpectNear(NumbersIn(ReadFileBytes("blockSolution2.txt")), {0, 0, 0, 0, 0, 0});
}

TEST_F(ProjectCommandsTest, BundleAdjustmentOfASingularSystemWritesAllFiles) {
  files = {};
  files.Write();
  ui.files = {{"block.pj"}};
  EXPECT_EQ(Run("Bundle Adjustment"), CommandResult::Done);
  EXPECT_THAT(Messages(), IsEmpty());
  EXPECT_THAT(ui.EventsWith("status 0: Strips").at(0),
              HasSubstr("The equations have no single solution. Pass points in one photo alone: 1. Files "
                        "written: 14."));
  EXPECT_EQ(Files().size(), 3u + 14u);
}

TEST_F(ProjectCommandsTest, BundleAdjustmentFailures) {
  ExpectProjectFailures("Bundle Adjustment");
}

TEST_F(ProjectCommandsTest, BundleAdjustmentCancelledWritesNothing) {
  ExpectCancelAtEach("Bundle Adjustment", "f", {"block.pj"});
}

TEST_F(ProjectCommandsTest, BundleAdjustmentWhereAFileCannotBeWritten) {
  std::filesystem::create_directory("blockResult1.txt");
  ui.files = {{"block.pj"}};
  EXPECT_EQ(Run("Bundle Adjustment"), CommandResult::Failed);
  EXPECT_THAT(Messages(), IsEmpty());
  EXPECT_THAT(ui.events, Contains(kBlock + " Files written: 11. Not written: blockResult1.txt."));
  EXPECT_TRUE(std::filesystem::exists("blockResult2.txt"));
}

TEST_F(ProjectCommandsTest, PassPointListThatCannotBeWritten) {
  std::filesystem::create_directory("block_PassPt.txt");
  ui.files = {{"block.pj"}};
  EXPECT_EQ(Run("Bundle Adjustment"), CommandResult::Failed);
  EXPECT_THAT(Messages(), ElementsAre("message warning: Write file block_PassPt.txt error!"));
}

// Sessions on the command line, line by line.

TEST_F(ProjectCommandsTest, TranscriptOfAnImport) {
  EXPECT_EQ(RunScript("\"Import Project\" block.pj\n"), ExitStatus::Done);
  EXPECT_THAT(
      Transcript(),
      ElementsAre(
          R"({"event":"command","name":"Utilities > Import Project","phase":"start"})",
          R"({"event":"choose-file","mode":"open","title":"Choose a Project File.","filter":)"
          R"("Project Files (*.pj)|*.pj|All Files (*.*)|*.*|","defaultExtension":"","defaultName":"",)"
          R"("mustExist":false,"multiple":false,"answer":["block.pj"]})",
          R"({"event":"wait-cursor","on":true})",
          R"({"event":"status","pane":0,"text":"Import: writing 8 equations ..."})",
          R"({"event":"status","pane":0,"text":"Import: solving for 6 unknowns ..."})",
          R"({"event":"status","pane":0,"text":"Strips: 1, photos: 1, control points: 4, pass points: 0, )"
          R"(measurements: 4. Files written: 4."})",
          R"({"event":"wait-cursor","on":false})",
          R"({"event":"command","name":"Utilities > Import Project","phase":"end","result":"done"})"));
}

TEST_F(ProjectCommandsTest, TranscriptOfABlockWithoutItsCamera) {
  std::filesystem::remove("cam.txt");
  EXPECT_EQ(RunScript("\"Bundle Adjustment\" block.pj\n"), ExitStatus::Failed);
  EXPECT_THAT(
      Transcript(),
      ElementsAre(
          R"({"event":"command","name":"Image > Bundle Adjustment","phase":"start"})",
          R"({"event":"choose-file","mode":"open","title":"Choose a Project File.","filter":)"
          R"("Project Files (*.pj)|*.pj|All Files (*.*)|*.*|","defaultExtension":"","defaultName":"",)"
          R"("mustExist":false,"multiple":false,"answer":["block.pj"]})",
          R"({"event":"wait-cursor","on":true})",
          R"({"event":"status","pane":0,"text":"The camera file cam.txt, the third word of the project file, does not open."})",
          R"({"event":"message","kind":"message","buttons":"ok","text":"Open camera calibration file error!"})",
          R"({"event":"message","kind":"warning","buttons":"ok","text":"Read GPT File Error!"})",
          R"({"event":"wait-cursor","on":false})",
          R"({"event":"command","name":"Image > Bundle Adjustment","phase":"end","result":"failed"})"));
}

TEST_F(ProjectCommandsTest, TranscriptOfAResectionWithoutInitialValues) {
  EXPECT_EQ(RunScript("\"Space Resection\" photo\n"), ExitStatus::Failed);
  EXPECT_THAT(
      Transcript(),
      ElementsAre(
          R"({"event":"command","name":"Image > Space Resection","phase":"start"})",
          R"({"event":"choose-file","mode":"open","title":"Please select a image","filter":)"
          R"("Lan Files (*.lan)|*.lan|All Files (*.*)|*.*|","defaultExtension":".lan","defaultName":"",)"
          R"("mustExist":false,"multiple":false,"answer":["photo.lan"]})",
          R"({"event":"status","pane":0,"text":"The file photo.ini does not open."})",
          R"({"event":"message","kind":"warning","buttons":"ok","text":)"
          R"("Open Initial Orientation Parameters File error!"})",
          R"({"event":"command","name":"Image > Space Resection","phase":"end","result":"failed"})"));
}

// Space Resection

class SpaceResectionTest : public ProjectCommandsTest {
 protected:
  void SetUp() override {
    ProjectCommandsTest::SetUp();
    AerialPhoto photo;
    photo.name = "photo.lan";
    photo.WriteOrientation("photo.ini", "Photo");
    WriteFileBytes("photo.lan", LanOf<std::uint8_t>(kPackByte, 1, 1, {7}));
    std::filesystem::copy("block.gpt", "points.txt");
    before = Files();
  }

  std::vector<std::string> before;
};

TEST_F(SpaceResectionTest, ReadsAndComputesNothing) {
  ui.files = {{"photo.lan"}, {"points.txt"}};
  EXPECT_EQ(Run("Space Resection"), CommandResult::Done);
  EXPECT_THAT(ui.events, ElementsAre("command: Image > Space Resection", std::string("open: ") + kPhotoFiles,
                                     std::string("open: ") + kControlFiles,
                                     "status 0: Ground points: 4. No resection is computed.",
                                     "end: Image > Space Resection done"));
  EXPECT_EQ(ui.choosers[0].title, "Please select a image");
  EXPECT_EQ(ui.choosers[0].defaultExtension, ".lan");
  EXPECT_EQ(ui.choosers[1].title, "Please choose a Ground Control Point file");
  EXPECT_EQ(ui.choosers[1].defaultExtension, "");
  EXPECT_EQ(Files(), before);
}

TEST_F(SpaceResectionTest, WithoutTheInitialValues) {
  ExpectFailure("Space Resection", {{"other.lan"}, {"points.txt"}},
                {"message warning: Open Initial Orientation Parameters File error!"});
  EXPECT_EQ(ui.choosers.size(), 1u);
}

// The image's own box is no reason to end.
TEST_F(SpaceResectionTest, WithoutTheImage) {
  std::filesystem::rename("photo.ini", "other.ini");
  ExpectFailure("Space Resection", {{"other.lan"}, {"points.txt"}},
                {"message warning: Open file other.lan error!"});
  EXPECT_EQ(ui.choosers.size(), 2u);
  EXPECT_THAT(ui.events, Contains("status 0: Ground points: 4. No resection is computed."));
}

TEST_F(SpaceResectionTest, WithoutGroundPoints) {
  ExpectFailure("Space Resection", {{"photo.lan"}, {"none.txt"}}, {});
  EXPECT_THAT(ui.events, Contains("status 0: The ground point file none.txt does not open."));
  WriteFileBytes("points.txt", "POINTS 1\n");
  ExpectFailure("Space Resection", {{"photo.lan"}, {"points.txt"}}, {});
}

TEST_F(SpaceResectionTest, GroundPointsWithoutAnEnd) {
  std::filesystem::remove("points.txt");
  std::filesystem::create_symlink("/dev/zero", "points.txt");
  ExpectFailure("Space Resection", {{"photo.lan"}, {"points.txt"}}, {});
  EXPECT_THAT(ui.events, Contains("status 0: The ground point file points.txt does not open."));
}

TEST_F(SpaceResectionTest, CancelledWritesNothing) {
  ExpectCancelAtEach("Space Resection", "ff", {"photo.lan", "points.txt"});
}

}  // namespace
}  // namespace corvane
