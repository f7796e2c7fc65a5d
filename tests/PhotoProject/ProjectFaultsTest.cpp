// Projects whose files have no end, do not fit the memory or can't be written.

#include <gmock/gmock.h>

#include <filesystem>

#include "PhotoProject/PhotoProject.h"
#include "PhotoProject/ProjectFiles.h"
#include "support/FileSizeLimit.h"
#include "support/MemoryLimit.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

using testing::ElementsAre;

const std::string kOrnBox = "message warning: Orientation Parameters File Cannot be opened for writing!";

class ProjectFaults : public testing::Test {
 protected:
  int Read() {
    files.Write();
    return project.Read("block.pj");
  }

  TempFolder folder;
  TestFrontEnd ui;
  ProjectFiles files;
  PhotoProject project;
};

// Devices without an end.

TEST_F(ProjectFaults, DeviceAsProject) {
  WriteFileBytes(".gpt", files.ground);
  EXPECT_EQ(project.Read("/dev/zero"), -21);
  EXPECT_THAT(ui.events, ElementsAre("status 0: The project file /dev/zero does not open."));
}

TEST_F(ProjectFaults, DeviceAsCamera) {
  files.head = "PROJECT Hills /dev/zero\n100 1.5 2.5 3.5 4.5\n";
  EXPECT_EQ(Read(), -11);
  EXPECT_EQ(ui.events.back(), "message message: Open camera calibration file error!");
}

TEST_F(ProjectFaults, DeviceAsGroundPoints) {
  std::filesystem::create_symlink("/dev/zero", "zero.gpt");
  EXPECT_EQ(project.Read("zero.pj"), -11);
  EXPECT_THAT(ui.events, ElementsAre("status 0: The ground point file zero.gpt does not open."));
}

// Files beyond the memory.

// Ends the process with 10 minus the result of reading `path` with so little memory, if the texts are these.
[[noreturn]] void ReadInLittle(const std::string& path, const std::vector<std::string>& events) {
  RunWithin(std::size_t{24} << 20, [&] {
    TestFrontEnd ui;
    PhotoProject project;
    const int result = path.ends_with(".pj") ? project.Read(path) : project.ReadGroundPoints(path);
    return ui.events == events ? result : 0;
  });
}

TEST_F(ProjectFaults, FilesBeyondTheMemory) {
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP() << "the sanitizer ends the process without memory";
#endif
  constexpr std::uintmax_t kMuch = std::uintmax_t{100} << 20;
  const auto noMemory = [](const std::string& path) {
    return "status 0: There is no memory for the file " + path + ".";
  };
  files.Write();
  std::filesystem::resize_file("block.gpt", kMuch);
  EXPECT_EXIT(ReadInLittle("block.gpt", {noMemory("block.gpt")}), testing::ExitedWithCode(22), "");
  EXPECT_EXIT(ReadInLittle("block.pj", {noMemory("block.gpt")}), testing::ExitedWithCode(22), "");
  files.Write();
  std::filesystem::resize_file("cam.txt", kMuch);
  const std::string box = "message message: Open camera calibration file error!";
  EXPECT_EXIT(ReadInLittle("block.pj", {noMemory("cam.txt"), box}), testing::ExitedWithCode(21), "");
  files.Write();
  std::filesystem::resize_file("block.pj", kMuch);
  EXPECT_EXIT(ReadInLittle("block.pj", {noMemory("block.pj")}), testing::ExitedWithCode(33), "");
}

// The text fits, but not what is made of it.
TEST_F(ProjectFaults, GroundPointsBeyondTheMemory) {
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP() << "the sanitizer ends the process without memory";
#endif
  std::string text = "GROUND 500000\n";
  for (int i = 0; i < 500000; ++i) text += "C 3 1 2 3 1 1 1\n";
  WriteFileBytes("many.gpt", text + "0\n");
  EXPECT_EXIT(ReadInLittle("many.gpt", {"status 0: There is no memory for the file many.gpt."}),
              testing::ExitedWithCode(22), "");
}

// Files that can't be written.

// As on a full disk the files open, and nothing can be put into them.
TEST_F(ProjectFaults, OfManyOrientationFilesThatCannotBeFilledTheFirstFailureIsShown) {
  files.Write();
  const FileSizeLimit limit(100);
  EXPECT_EQ(project.Read("block.pj"), 1);
  EXPECT_THAT(ui.events, ElementsAre(kOrnBox));
  EXPECT_THAT(project.unwrittenFiles, ElementsAre("n2.orn", "n1.orn", "s1.orn"));
  EXPECT_FALSE(std::filesystem::exists("n1.orn"));
}

TEST_F(ProjectFaults, OfManyOrientationFilesTheFirstFailureIsShown) {
  files.photos = "none/n1.lan N1\nnone/n2.lan N2\ns1.lan S1\n";
  EXPECT_EQ(Read(), 1);
  EXPECT_THAT(ui.events, ElementsAre(kOrnBox));
  EXPECT_THAT(project.unwrittenFiles, ElementsAre("none/n2.orn", "none/n1.orn"));
  EXPECT_TRUE(std::filesystem::exists("s1.orn"));
  EXPECT_TRUE(std::filesystem::exists("_PassPt.txt"));
}

TEST_F(ProjectFaults, PassPointListThatCannotBeWritten) {
  project.name = "none/hills";
  EXPECT_EQ(Read(), 1);
  EXPECT_THAT(ui.events, ElementsAre("message warning: Write file none/hills_PassPt.txt error!"));
  EXPECT_THAT(project.unwrittenFiles, ElementsAre("none/hills_PassPt.txt"));
}

TEST_F(ProjectFaults, FailureLeavesTheOrientationFilesBeforeIt) {
  files.exteriors[1] = "0 1 1 n1\n9 9 9 9 9 9\n90 x 18 1000.5 200.25 1000\n";
  EXPECT_EQ(Read(), -23);
  EXPECT_TRUE(std::filesystem::exists("n2.orn"));
  EXPECT_FALSE(std::filesystem::exists("n1.orn"));
  EXPECT_FALSE(std::filesystem::exists("_PassPt.txt"));
}

}  // namespace
}  // namespace corvane
