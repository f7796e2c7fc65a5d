// Whole sessions of the real commands on the command line, compared with their transcripts line by line.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "cli/CommandLine.h"
#include "commands/CommandRows.h"
#include "support/TempFolder.h"
#include "support/TinBytes.h"

namespace corvane {
namespace {

class SessionTest : public testing::Test {
 protected:
  ExitStatus RunScript(const std::string& script) {
    std::istringstream in(script);
    std::ostringstream out;
    std::ostringstream err;
    return RunCommandLine({"script", "--transcript", "t.jsonl", "-"}, CommandRows(), {in, out, err});
  }

  static std::vector<std::string> Transcript() {
    std::vector<std::string> lines;
    std::istringstream text(ReadFileBytes("t.jsonl"));
    for (std::string line; std::getline(text, line);) lines.push_back(line);
    return lines;
  }

  TempFolder folder;
};

const std::string kStart = R"({"event":"window","kind":"tin","title":"Corvane1","width":100,"height":100})";
const std::string kWait = R"({"event":"wait-cursor","on":true})";
const std::string kWaitEnd = R"({"event":"wait-cursor","on":false})";

std::string Command(const std::string& name, const std::string& result = "") {
  std::string line =
      R"({"event":"command","name":")" + name + R"(","phase":")" + (result.empty() ? "start" : "end") + '"';
  if (!result.empty()) line += R"(,"result":")" + result + '"';
  return line + '}';
}

std::string Chooser(const std::string& mode, const std::string& filter, const std::string& extension,
                    const std::string& name, const std::string& answer) {
  return R"({"event":"choose-file","mode":")" + mode + R"(","title":"","filter":")" + filter +
         R"(","defaultExtension":")" + extension + R"(","defaultName":")" + name +
         R"(","mustExist":false,"multiple":false,"answer":)" + answer + '}';
}

const std::string kTextFilter = "Text Files (*.txt)|*.txt|All Files (*.*)|*.*|";
const std::string kBinaryFilter = "Binary Points Files (*.pts)|*.pts|All Files (*.*)|*.*|";
const std::string kPointsFilter = "Points Files (*.pts)|*.pts|All Files (*.*)|*.*|";

TEST_F(SessionTest, TextPointsWithIds) {
  const std::string name = "Utilities > Points > Text Points(IDXYZ) to Bin";
  WriteFileBytes("a.txt", "1, 1, 2, 3\n");
  EXPECT_EQ(RunScript('"' + name + "\" a.txt p -5 x 2\n"), ExitStatus::Done);
  const auto value = [](const char* shown, const char* answer) {
    return std::string(R"({"event":"value-input","title":"Please input a value.","shown":)") + shown +
           R"(,"answer":)" + answer + '}';
  };
  EXPECT_EQ(
      Transcript(),
      (std::vector<std::string>{
          kStart, Command(name), Chooser("open", kTextFilter, "TXT", "*.txt", R"(["a.txt"])"),
          Chooser("save", kBinaryFilter, "BIN", "*.pts", R"(["p.BIN"])"), value("1.0", "-5.0"),
          value("-5.0", "2.0"), kWait, R"({"event":"print","stream":"output","text":"x, y, z\n"})",
          R"({"event":"status","pane":0,"text":"Points written: 1."})", kWaitEnd, Command(name, "done")}));
}

TEST_F(SessionTest, PointsHead) {
  const std::string name = "Utilities > View/Change Points Head";
  std::string bytes;
  AppendBytes(bytes, std::int32_t{1});
  for (const double number : {10.7, 20.5, 11.2, 19.9, 0.5, 0.5, 11.0, 20.0, 5.0, 1.0})
    AppendBytes(bytes, number);
  WriteFileBytes("p.pts", bytes);
  EXPECT_EQ(RunScript('"' + name + "\" p.pts cellSize=0.1\n"), ExitStatus::Done);
  const std::string extents = R"("xStart":9.0,"yStart":18.0,"xEnd":12.0,"yEnd":21.0,)";
  EXPECT_EQ(Transcript(),
            (std::vector<std::string>{
                kStart, Command(name), Chooser("open", kPointsFilter, "", "", R"(["p.pts"])"),
                R"({"event":"form","form":"ExtentInput","title":"Input the extent for the image","shown":{)" +
                    extents + R"("cellSize":0.5,"minCorrCoeff":0.0},"answer":{)" + extents +
                    R"("cellSize":0.1,"minCorrCoeff":0.0}})",
                Command(name, "done")}));
}

TEST_F(SessionTest, PointsHeadThatDoesNotOpen) {
  const std::string name = "Utilities > View/Change Points Head";
  EXPECT_EQ(RunScript('"' + name + "\" none.pts\n"), ExitStatus::Failed);
  EXPECT_EQ(
      Transcript(),
      (std::vector<std::string>{
          kStart, Command(name), Chooser("open", kPointsFilter, "", "", R"(["none.pts"])"),
          R"({"event":"message","kind":"message","buttons":"ok-cancel","text":"Open file none.pts error!"})",
          Command(name, "failed")}));
}

TEST_F(SessionTest, CreateTinCancelledAtTheSecondChooser) {
  EXPECT_EQ(RunScript("\"Create TIN\" p.pts @cancel\n"), ExitStatus::Cancelled);
  EXPECT_EQ(Transcript(),
            (std::vector<std::string>{
                kStart, Command("TIN > Create TIN"), Chooser("open", kPointsFilter, "", "", R"(["p.pts"])"),
                Chooser("save", "TIN Files (*.tin)|*.tin|All Files (*.*)|*.*|", "tin", "", "null"),
                Command("TIN > Create TIN", "cancelled")}));
}

TEST_F(SessionTest, OpenAndSave) {
  WriteFileBytes("s.tin", SquareTinBytes());
  EXPECT_EQ(RunScript("\"File > Open\" s.tin\n\"File > Save\"\n\"Test\"\n\"Bare Earth\"\n"),
            ExitStatus::Done);
  const auto status = [](const std::string& text) {
    return R"({"event":"status","pane":0,"text":")" + text + "\"}";
  };
  EXPECT_EQ(
      Transcript(),
      (std::vector<std::string>{
          kStart,
          Command("File > Open"),
          R"({"event":"choose-file","mode":"open","title":"Open","filter":"Files(*.tin)|*.TIN|","defaultExtension":".TIN","defaultName":"","mustExist":false,"multiple":false,"answer":["s.tin"]})",
          status("Reading TIN from s.tin"),
          kWait,
          R"({"event":"print","stream":"output","text":"Number of triangles = 2\n"})",
          status("Done reading TIN."),
          R"({"event":"message","kind":"information","buttons":"ok","text":"triangles: 2\nmin: 100.000000 200.000000 1.000000\nmax: 110.000000 210.000000 4.000000"})",
          kWaitEnd,
          R"({"event":"window","kind":"tin","title":"s.tin","width":10,"height":10})",
          Command("File > Open", "done"),
          Command("File > Save"),
          status("Writing TIN to s.tin"),
          kWait,
          kWaitEnd,
          status("Done writing TIN."),
          status("Writing Pts to s_filted.pts"),
          kWait,
          kWaitEnd,
          status("Done writing PTS."),
          Command("File > Save", "done"),
          Command("Utilities > Test"),
          Command("Utilities > Test", "done"),
          Command("LiDAR > Bare Earth"),
          Command("LiDAR > Bare Earth", "done")}));
}

}  // namespace
}  // namespace corvane
