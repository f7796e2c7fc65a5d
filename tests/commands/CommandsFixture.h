#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

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

  CCorvaneDoc& Document() { return app.GetMainFrame().GetActiveTinView()->GetDocument(); }

  // The names of the files in the current folder, sorted.
  static std::vector<std::string> Files() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator("."))
      names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    return names;
  }

  TempFolder folder;
  TestFrontEnd ui;
  CCorvaneApp app{CommandRows(), ""};
};

}  // namespace corvane
