// Create Epipolar Images, end to end.

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

#include "OpenGL/Stereo_2Cursor/EpipolarPair.h"
#include "commands/ImageFixture.h"
#include "support/SharedData.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kCommand = "Create Epipolar Images";

class EpipolarCommandTest : public ImageCommandsTest {
 protected:
  // Two photos of 60 x 40 pixels of a unit on the ground, 20 units apart along x and slightly turned.
  void SetUp() override {
    ImageCommandsTest::SetUp();
    WriteImageFile("a.lan", 3);
    WriteImageFile("b.lan", 5);
    WriteFileBytes("a.orn", OrientationText(1000, 0.5));
    WriteFileBytes("b.orn", OrientationText(1020, -0.5));
  }

  static std::string OrientationText(int x, double kappa) {
    return "ORIENTATION n w\n150\n" + std::to_string(x) + " 2000 1500\n0.1 0.2 " + std::to_string(kappa) +
           "\n90 0 0\n0.1 0 -2.95\n0 -0.1 1.95\n0 0\n0.1 0.1\n";
  }

  static void WriteImageFile(const std::string& path, int step) {
    std::string bytes = BytesOf(HeaderOf(kPackByte, 1, 60, 40));
    for (int i = 0; i < 60 * 40; ++i) bytes += static_cast<char>(1 + i * step % 250);
    WriteFileBytes(path, bytes);
  }

  // Runs the command on both photos with this overlap.
  CommandResult RunOnBoth(double overlap = 1.0) {
    ui.events.clear();
    ui.files = {{"a.lan"}, {"b.lan"}};
    ui.values = {overlap};
    return Run(kCommand);
  }

  static std::string SizeText(const AerialPhoto& photo) {
    const auto [cols, rows] = photo.image.GetSize();
    return std::to_string(cols) + " x " + std::to_string(rows);
  }

  std::string LastStatus() const { return ui.EventsWith("status").back(); }

  static const std::vector<std::string>& FilesBefore() {
    static const std::vector<std::string> files = {"a.lan", "a.orn", "b.lan", "b.orn"};
    return files;
  }
};

TEST_F(EpipolarCommandTest, AsksInOrderAndWritesBothImagesWithTheirOrientations) {
  EXPECT_EQ(RunOnBoth(0.8), CommandResult::Done);
  const char* const filter = "Image Files (*.lan)|*.lan|All Files (*.*)|*.*|";
  ExpectChoosers({{kOpen, filter, "Choose the left image."}, {kOpen, filter, "Choose the left image."}});
  EXPECT_THAT(ui.EventsWith("value"),
              ElementsAre("value: Please input the overlap % of the stereo pair 0.6"));
  EXPECT_THAT(Messages(), IsEmpty());
  EXPECT_THAT(Files(), ElementsAre("a.lan", "a.orn", "aEpi_L.lan", "aEpi_L.orn", "b.lan", "b.orn",
                                   "bEpi_R.lan", "bEpi_R.orn"));
  EXPECT_EQ(ui.waitDepth, 0);
}

TEST_F(EpipolarCommandTest, FilesHoldThePair) {
  ASSERT_EQ(RunOnBoth(0.8), CommandResult::Done);
  AerialPhoto left;
  AerialPhoto right;
  ASSERT_EQ(left.LoadOrientation("a.orn"), 1);
  ASSERT_EQ(right.LoadOrientation("b.orn"), 1);
  ASSERT_EQ(left.image.Read("a.lan"), 1);
  ASSERT_EQ(right.image.Read("b.lan"), 1);
  EpipolarPair pair(left, right, 0.8);
  ASSERT_EQ(pair.left.ResampleFrom(left, pair.leftExtent.data(), pair.cell), 1);
  ASSERT_EQ(pair.right.ResampleFrom(right, pair.rightExtent.data(), pair.cell), 1);
  EXPECT_EQ(ReadFileBytes("aEpi_L.lan"),
            BytesOf(*pair.left.image.GetHeader()) + BandBytes(pair.left.image, 0));
  EXPECT_EQ(ReadFileBytes("bEpi_R.lan"),
            BytesOf(*pair.right.image.GetHeader()) + BandBytes(pair.right.image, 0));
  EXPECT_EQ(pair.left.image.GetSize().cy, pair.right.image.GetSize().cy);

  const std::string orientation = ReadFileBytes("aEpi_L.orn");
  EXPECT_TRUE(
      orientation.starts_with("ORIENTATION aEpi_L.lan aEpi_L.lan\n\t150.000000\n"
                              "\t1000.000000\t2000.000000\t1500.000000\n"))
      << orientation;
  AerialPhoto epipolar;
  ASSERT_EQ(epipolar.LoadOrientation("aEpi_L.orn"), 1);
  EXPECT_EQ(epipolar.imageToPhoto[0][0], 0.1);
  EXPECT_EQ(epipolar.imageToPhoto[1][1], -0.1);
  EXPECT_NEAR(epipolar.imageToPhoto[0][2], pair.leftExtent[0], 1e-6);
  EXPECT_NEAR(epipolar.imageToPhoto[1][2], pair.leftExtent[4], 1e-6);
  EXPECT_EQ(LastStatus(), "status 0: Written: aEpi_L.lan (" + SizeText(pair.left) + "), bEpi_R.lan (" +
                              SizeText(pair.right) + ").");
}

TEST_F(EpipolarCommandTest, ResultsAreToldWithoutFolders) {
  std::filesystem::create_directory("p");
  for (const char* name : {"a.lan", "a.orn", "b.lan", "b.orn"}) {
    std::filesystem::rename(name, std::string("p/") + name);
  }
  ui.files = {{"p/a.lan"}, {"p/b.lan"}};
  ui.values = {0.8};
  EXPECT_EQ(Run(kCommand), CommandResult::Done);
  EXPECT_THAT(LastStatus(), testing::StartsWith("status 0: Written: aEpi_L.lan ("));
  EXPECT_THAT(LastStatus(), testing::HasSubstr("), bEpi_R.lan ("));
  EXPECT_TRUE(std::filesystem::exists("p/aEpi_L.lan"));
}

TEST_F(EpipolarCommandTest, ChecksInOrder) {
  const std::string box = "message warning: Open ";
  const auto expect = [&](const std::string& word, const std::string& path) {
    std::filesystem::remove(path);
    ExpectFailure(kCommand, {{"a.lan"}, {"b.lan"}}, {box + word + " error!"});
    EXPECT_EQ(LastStatus(), "status 0: " + path + " does not open.");
  };
  expect("Right Orientation Parameters File", "b.orn");
  expect("Left Orientation Parameters File", "a.orn");
  expect("Right Image", "b.lan");
  expect("Left Image", "a.lan");
  EXPECT_THAT(ui.EventsWith("value"), IsEmpty());
}

TEST_F(EpipolarCommandTest, OrientationsWithTheExtensionInCapitals) {
  std::filesystem::rename("a.orn", "a.ORN");
  std::filesystem::rename("b.orn", "b.ORN");
  EXPECT_EQ(RunOnBoth(), CommandResult::Done);
}

TEST_F(EpipolarCommandTest, CancelledChoosersLeaveNothing) {
  ui.files = {};
  EXPECT_EQ(Run(kCommand), CommandResult::Cancelled);
  ui.files = {{"a.lan"}};
  EXPECT_EQ(Run(kCommand), CommandResult::Cancelled);
  EXPECT_EQ(Files(), FilesBefore());
  EXPECT_EQ(ui.waitDepth, 0);
}

TEST_F(EpipolarCommandTest, CancelOfTheOverlapGoesOnWithTheValueShown) {
  ui.files = {{"a.lan"}, {"b.lan"}};
  EXPECT_EQ(Run(kCommand), CommandResult::Done);
  const std::string cancelled = ReadFileBytes("aEpi_L.lan");
  EXPECT_EQ(RunOnBoth(0.6), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("aEpi_L.lan"), cancelled);
}

TEST_F(EpipolarCommandTest, OverlapIsAskedForUntilItIsAboveZero) {
  ui.files = {{"a.lan"}, {"b.lan"}};
  ui.values = {-1.0, 0.0, std::nan(""), 0.5};
  EXPECT_EQ(Run(kCommand), CommandResult::Done);
  const std::string prompt = "value: Please input the overlap % of the stereo pair ";
  EXPECT_THAT(ui.EventsWith("value"),
              ElementsAre(prompt + "0.6", prompt + "-1", prompt + "0", prompt + "nan"));
}

TEST_F(EpipolarCommandTest, CancelWithNoOverlapEndsTheCommand) {
  EXPECT_EQ(RunOnBoth(-1.0), CommandResult::Cancelled);
  EXPECT_EQ(ui.EventsWith("value").size(), 2u);
  EXPECT_EQ(Files(), FilesBefore());
  EXPECT_EQ(ui.waitDepth, 0);
}

TEST_F(EpipolarCommandTest, WithoutImagesTheOrientationsAreWritten) {
  std::string fine = OrientationText(1000, 0.0);
  fine.replace(fine.find("0.1 0 -2.95"), 3, "0.0004");  // a scale that is 0 in thousandths
  WriteFileBytes("a.orn", fine);
  EXPECT_EQ(RunOnBoth(), CommandResult::Failed);
  EXPECT_THAT(Messages(), IsEmpty());
  EXPECT_THAT(Files(), ElementsAre("a.lan", "a.orn", "aEpi_L.orn", "b.lan", "b.orn", "bEpi_R.orn"));
  EXPECT_EQ(LastStatus(),
            "status 0: There is no left image of that overlap and cell size. There is no right image of that "
            "overlap and cell size. The left photo's scale, 0.0004, is 0 in thousandths.");
}

TEST_F(EpipolarCommandTest, AnOverlapAboveOneIsToldToBeAFraction) {
  RunOnBoth(60.0);
  EXPECT_THAT(LastStatus(), testing::EndsWith(" The overlap is a fraction: 60 means 6000 %."));
  EXPECT_EQ(RunOnBoth(1.1), CommandResult::Done);
  EXPECT_THAT(LastStatus(), testing::EndsWith("). The overlap is a fraction: 1.1 means 110 %."));
  EXPECT_EQ(RunOnBoth(1.0), CommandResult::Done);
  EXPECT_THAT(LastStatus(), testing::EndsWith(")."));
}

TEST_F(EpipolarCommandTest, PhotosInTheWrongOrderAreTold) {
  const std::string doubt =
      " The images are turned by more than 90 degrees: is the left photo really the left one?";
  ui.files = {{"b.lan"}, {"a.lan"}};
  ui.values = {0.8};
  EXPECT_EQ(Run(kCommand), CommandResult::Done);
  EXPECT_THAT(LastStatus(), testing::EndsWith(doubt));
  // The base is at 0 degrees: the photo's own angle counts, as a turn of less than a whole one.
  for (const auto& [kappa, isTurned] :
       {std::pair{90.1, true}, {-90.1, true}, {180.0, true}, {89.9, false}, {-89.9, false}, {350.0, false}}) {
    WriteFileBytes("a.orn", OrientationText(1000, kappa));
    RunOnBoth();
    EXPECT_EQ(LastStatus().ends_with(doubt), isTurned) << kappa;
  }
}

TEST_F(EpipolarCommandTest, AnInputIsNotWrittenOver) {
  ASSERT_EQ(RunOnBoth(), CommandResult::Done);
  const auto before = Files();
  const std::string image = ReadFileBytes("aEpi_L.lan");
  const auto reason = [](const std::string& path) {
    return "message warning: Write file " + path + " error!\nIt is one of the files that the command reads.";
  };
  // The right image is what the left one's result is called.
  ExpectFailure(kCommand, {{"a.lan"}, {"aEpi_L.lan"}}, {reason("aEpi_L.lan")});
  EXPECT_EQ(ReadFileBytes("aEpi_L.lan"), image);
  EXPECT_EQ(Files(), before);
  // An orientation that is another name of a result.
  std::filesystem::remove("b.orn");
  std::filesystem::create_hard_link("aEpi_L.orn", "b.orn");
  ExpectFailure(kCommand, {{"a.lan"}, {"b.lan"}}, {reason("aEpi_L.orn")});
  EXPECT_THAT(ui.EventsWith("value"), IsEmpty());
}

TEST_F(EpipolarCommandTest, AForeignImageDoesNoHarm) {
  // The size is looked for where a .lan has it.
  ErdasImg foreign;
  ASSERT_EQ(foreign.Create(HeaderOf(kPackByte, 1, 60, 40), false), 1);
  foreign.Write("a.tif");
  ui.files = {{"a.tif"}, {"b.lan"}};
  ui.values = {0.6};
  Run(kCommand);
  EXPECT_THAT(Messages(), IsEmpty());
  EXPECT_THAT(Files(), testing::IsSupersetOf({"aEpi_L.orn", "bEpi_R.lan", "bEpi_R.orn"}));
}

TEST_F(EpipolarCommandTest, AnOverlapBeyondAllImagesDoesNoHarm) {
  for (const double overlap : {1.5, 1e9, 1e300, std::numeric_limits<double>::infinity()}) {
    RunOnBoth(overlap);
    EXPECT_THAT(Messages(), IsEmpty());
    EXPECT_THAT(Files(), testing::IsSupersetOf({"aEpi_L.orn", "bEpi_R.orn"}));
    EXPECT_EQ(ui.waitDepth, 0);
  }
}

TEST_F(EpipolarCommandTest, AnImageThatCannotBeReadEndsTheCommand) {
  WriteFileBytes("b.lan", "");  // opens, and holds nothing
  EXPECT_EQ(RunOnBoth(), CommandResult::Failed);
  EXPECT_THAT(Messages(),
              ElementsAre("message warning: Open file b.lan error!\nIt is shorter than the header "
                          "of an image."));
  EXPECT_THAT(Files(), ElementsAre("a.lan", "a.orn", "aEpi_L.lan", "aEpi_L.orn", "b.lan", "b.orn"));
}

TEST_F(EpipolarCommandTest, AnImageThatCannotBeWritten) {
  std::filesystem::create_directory("aEpi_L.lan");
  EXPECT_EQ(RunOnBoth(), CommandResult::Failed);
  EXPECT_THAT(Messages(), ElementsAre("message warning: Write file aEpi_L.lan error!"));
  EXPECT_THAT(Files(), testing::IsSupersetOf({"aEpi_L.orn", "bEpi_R.lan", "bEpi_R.orn"}));
}

TEST_F(EpipolarCommandTest, AnOrientationOfAnyTextDoesNoHarm) {
  for (const char* text :
       {"", "x", "a b c nan inf -inf", "a b c 1e400 1e308 -1e308 1e308 1 1 1 0 0 0 1e-300 0",
        "a b c 0\n0 0 0\n0 0 0\n0 0 0\n0 0 0\n0 0 0\n0 0\n"}) {
    WriteFileBytes("a.orn", text);
    EXPECT_EQ(RunOnBoth(), CommandResult::Failed) << text;
    EXPECT_THAT(LastStatus(), testing::EndsWith(" The numbers in a.orn make no orientation: it is cut short, "
                                                "or a word stands among them."));
    EXPECT_THAT(Messages(), IsEmpty());
    EXPECT_EQ(ui.waitDepth, 0);
  }
}

TEST_F(EpipolarCommandTest, AFileThatIsCutShortIsTold) {
  std::filesystem::resize_file("a.lan", 128 + 60 * 39);
  EXPECT_EQ(RunOnBoth(), CommandResult::Done);
  EXPECT_THAT(LastStatus(), testing::HasSubstr(" The left image is cut short: bytes missing: 60."));
}

TEST_F(EpipolarCommandTest, HillsAsTheirOrientationsSay) {
  if (SharedData("block/hills_s1p1.lan").empty()) GTEST_SKIP() << "no real test data";
  for (const char* name : {"hills_s1p1", "hills_s1p2"}) {
    for (const char* extension : {".lan", ".orn"}) {
      std::filesystem::copy(SharedData(std::string("block/") + name + extension), ".");
    }
  }
  ui.files = {{"hills_s1p1.lan"}, {"hills_s1p2.lan"}};
  ui.values = {0.6};
  EXPECT_EQ(Run(kCommand), CommandResult::Done);
  AerialPhoto left;
  AerialPhoto right;
  ASSERT_EQ(left.LoadOrientation("hills_s1p1Epi_L.orn"), 1);
  ASSERT_EQ(right.LoadOrientation("hills_s1p2Epi_R.orn"), 1);
  // Angles in degrees and places with six decimals: half a unit of the last one in an angle is 1e-8 radians,
  // which moves the edge of the photo by 1e-5 pixels.
  for (const double x : {1450.0, 1500.0, 1550.0}) {
    for (const double y : {5300.0, 5400.0, 5500.0}) {
      double col, leftRow, rightRow;
      left.GroundToImage(x, y, 500.0, col, leftRow);
      right.GroundToImage(x, y, 500.0, col, rightRow);
      EXPECT_NEAR(leftRow, rightRow, 5e-5);
    }
  }
}

}  // namespace
}  // namespace corvane
