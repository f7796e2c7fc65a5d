#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <deque>
#include <filesystem>
#include <string>
#include <vector>

#include "TIN/TINPoints.h"
#include "commands/CommandRows.h"
#include "shell/CorvaneApp.h"
#include "shell/CorvaneView.h"
#include "support/TempFolder.h"
#include "support/TestFrontEnd.h"
#include "support/TinBytes.h"

namespace corvane {

// The whole program without a display, in an empty folder, with one empty TIN document.
class CommandsTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(app.InitInstance(""));
    ui.events.clear();
  }

  CommandResult Run(const std::string& name) {
    const CommandRow* row = FindCommand(app.GetCommands(), name).row;
    if (!row) throw std::invalid_argument("no command " + name);
    return app.RunCommand(*row);
  }

  CCorvaneDoc& Document() { return app.GetMainFrame().GetTinView()->GetDocument(); }

  // The names of the files in the current folder, sorted.
  static std::vector<std::string> Files() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator("."))
      names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    return names;
  }

  std::vector<std::string> Messages() const { return ui.EventsWith("message"); }

  // A run with these answers of choosers fails with these boxes, and leaves no new file.
  void ExpectFailure(const std::string& command, const std::deque<std::vector<std::string>>& answers,
                     const std::vector<std::string>& boxes) {
    const auto before = Files();
    ui.events.clear();
    ui.files = answers;
    EXPECT_EQ(Run(command), CommandResult::Failed);
    EXPECT_EQ(Messages(), boxes);
    EXPECT_EQ(Files(), before);
    EXPECT_EQ(ui.waitDepth, 0);
    ui.files.clear();
    ui.forms.clear();
  }

  // Opens a TIN file with these bytes, and forgets what was shown.
  void OpenTin(const std::string& name, const std::string& bytes) {
    WriteFileBytes(name, bytes);
    ui.files = {{name}};
    ASSERT_EQ(Run("File > Open"), CommandResult::Done);
    ui.events.clear();
    ui.choosers.clear();
  }

  // The z of the points in a points file.
  static std::vector<double> HeightsIn(const std::string& path) {
    TINPoints points;
    points.Read(path);
    std::vector<double> heights;
    for (std::int32_t i = 0; i < points.GetCount(); ++i) heights.push_back(points.GetPoint(i)->z);
    return heights;
  }

  TempFolder folder;
  TestFrontEnd ui;
  CCorvaneApp app{CommandRows(), ""};
};

}  // namespace corvane
