// The built program as a child process.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>

#include "erdasimg/ErdasHeader.h"
#include "support/TempFolder.h"

namespace corvane {
namespace {

using testing::HasSubstr;
using testing::UnorderedElementsAre;

class ProgramTest : public testing::Test {
 protected:
  // The exit status of a call; its outputs go to "out" and "err".
  static int Call(const std::string& arguments, const std::string& out = "out") {
    const std::string command = "'" CORVANE_CLI "' " + arguments + " > " + out + " 2> err < /dev/null";
    return StatusOf(std::system(command.c_str()));
  }

  // -1 after a signal.
  static int StatusOf(int status) { return WIFEXITED(status) ? WEXITSTATUS(status) : -1; }

  // The names of the files in the current folder.
  static std::vector<std::string> Files() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(".")) {
      names.push_back(entry.path().filename());
    }
    return names;
  }

  TempFolder folder_;
};

TEST_F(ProgramTest, RunsTheRoadFromTextToPictureWithoutADisplay) {
  WriteFileBytes("survey.txt", "0 0 1\n10 0 2\n10 10 3\n0 10 4\n5 5 9\n");
  WriteFileBytes("day.txt",
                 "\"Utilities > Points > Text Points(XYZ) to Bin\" survey.txt survey.pts 1.0\n"
                 "\"TIN > Create TIN\" survey.pts \"my survey.tin\"\n"
                 "\"File > Open\" \"my survey.tin\"\n");
  ASSERT_EQ(Call("script --transcript t.jsonl --pictures pictures day.txt"), 0) << ReadFileBytes("err");
  EXPECT_EQ(std::filesystem::file_size("survey.pts"), 52u + 5 * 32);
  EXPECT_EQ(std::filesystem::file_size("my survey.tin"), 4u + 4 * 108)
      << "four triangles around the middle point";
  EXPECT_EQ(ReadFileBytes("pictures/01-my survey.tin.png").substr(1, 3), "PNG");
  EXPECT_THAT(ReadFileBytes("t.jsonl"),
              HasSubstr(R"({"event":"command","name":"TIN > Create TIN","phase":"start"})"));
  EXPECT_THAT(ReadFileBytes("err"), HasSubstr("picture: pictures/01-my survey.tin.png\n"));
}

// Heights 1 to 9 in bins of 0.1.
TEST_F(ProgramTest, GraphIsAPictureAndAnEvent) {
  WriteFileBytes("survey.txt", "0 0 1\n10 0 2\n10 10 3\n0 10 4\n5 5 9\n");
  ASSERT_EQ(Call("run 'Text Points(XYZ) to Bin' survey.txt survey.pts 1.0"), 0);
  ASSERT_EQ(Call("run 'Create TIN' survey.pts survey.tin"), 0);
  ASSERT_EQ(Call("run --open survey.tin --transcript t.jsonl --pictures pictures 'TIN Points Z Histgram'"), 0)
      << ReadFileBytes("err");
  EXPECT_THAT(ReadFileBytes("t.jsonl"),
              HasSubstr(R"({"event":"window","kind":"graph","title":"Data Graph","width":960,"height":640})"
                        "\n"
                        R"({"event":"plot","element":0,"count":81,"colour":"#ff0000","width":1})"
                        "\n"));
  EXPECT_EQ(ReadFileBytes("pictures/01-survey.tin.png").substr(1, 3), "PNG");
  EXPECT_EQ(ReadFileBytes("pictures/02-Data Graph.png").substr(1, 3), "PNG");
}

TEST_F(ProgramTest, CreateTinWithoutAnswersNamesThePrompt) {
  EXPECT_EQ(Call("run 'Create TIN'"), 3);
  EXPECT_THAT(ReadFileBytes("err"), HasSubstr("no answer left for the file to open, Points Files (*.pts)\n"));
}

TEST_F(ProgramTest, ExitStatuses) {
  EXPECT_EQ(Call("run 'Create TIN' @cancel"), 2);
  EXPECT_EQ(Call("run 'Create TIN' gone.pts gone.tin"), 1);
  EXPECT_EQ(Call("run 'Canny Edge'"), 4);
  EXPECT_EQ(Call("run 'Create TINN'"), 64);
  EXPECT_EQ(Call("run --open gone.tin 'Create TIN'"), 1);
}

TEST_F(ProgramTest, SpacingThatIsCancelledForEverEndsTheProcess) {
  WriteFileBytes("survey.txt", "0 0 1\n");
  EXPECT_EQ(Call("run 'Text Points(XYZ) to Bin' survey.txt survey.pts -5 @cancel"), 3);
  EXPECT_FALSE(std::filesystem::exists("survey.pts"));
}

TEST_F(ProgramTest, ALimitOfFileSizesIsAFailedWrite) {
  ErdasHeader header;
  header.cols = header.rows = 100;
  WriteFileBytes(
      "a.lan", std::string(reinterpret_cast<const char*>(&header), sizeof header) + std::string(10000, '\7'));
  const std::string call = "ulimit -f 8 && '" CORVANE_CLI "' run 'Gaussian Smooth' a.lan 2 b.lan 2> err";
  EXPECT_EQ(StatusOf(std::system(call.c_str())), 1);  // the result has 40128 bytes
  EXPECT_THAT(ReadFileBytes("err"), HasSubstr("Write file b.lan error!"));
  EXPECT_THAT(Files(), UnorderedElementsAre("a.lan", "err"));
}

TEST_F(ProgramTest, OutputOnAFullDeviceIsStatus1) {
  for (const std::string call : {"list", "list --json", "--help", "--version"}) {
    EXPECT_EQ(Call(call, "/dev/full"), 1) << call;
    EXPECT_EQ(ReadFileBytes("err"), "corvane-cli: standard output can't be written.\n");
  }
}

TEST_F(ProgramTest, ListsTheWholeTable) {
  ASSERT_EQ(Call("list"), 0);
  EXPECT_THAT(ReadFileBytes("out"), HasSubstr("\nTIN > Create TIN "));
  EXPECT_THAT(ReadFileBytes("out"), HasSubstr("\nFeatures > Canny Edge (disabled) "));
  ASSERT_EQ(Call("list --json"), 0);
  EXPECT_THAT(ReadFileBytes("out"), HasSubstr(R"("item":"&Slope Filter","prompt":"","enabled":true})"));
}

}  // namespace
}  // namespace corvane
