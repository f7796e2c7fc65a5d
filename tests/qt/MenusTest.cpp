#include "qt/Menus.h"

#include <gtest/gtest.h>

#include <QMenuBar>
#include <set>

#include "qt/ModalScript.h"
#include "qt/Workbench.h"
#include "shell/DibView.h"

namespace corvane {

namespace {

struct ShownItem {
  std::string path;
  const QAction* action;
};

// Every item of a menu and its submenus, in order.
void CollectItems(const QMenu& menu, const std::string& path, std::vector<ShownItem>& items) {
  for (const QAction* action : menu.actions()) {
    if (action->isSeparator()) continue;
    if (action->menu()) {
      CollectItems(*action->menu(), path + " > " + action->menu()->title().toStdString(), items);
    } else {
      items.push_back({path, action});
    }
  }
}

std::vector<ShownItem> ShownItems(const CMainWindow& window) {
  std::vector<ShownItem> items;
  for (const QAction* action : window.menuBar()->actions()) {
    CollectItems(*action->menu(), action->menu()->title().remove('&').toStdString(), items);
  }
  return items;
}

std::vector<std::string> MenuTitles(const CMainWindow& window) {
  std::vector<std::string> titles;
  for (const QAction* action : window.menuBar()->actions()) titles.push_back(action->text().toStdString());
  return titles;
}

std::vector<std::string> TextsUnder(const CMainWindow& window, const std::string& path) {
  std::vector<std::string> texts;
  for (const ShownItem& item : ShownItems(window)) {
    if (item.path == path && item.action->isVisible()) texts.push_back(item.action->text().toStdString());
  }
  return texts;
}

using Texts = std::vector<std::string>;

TEST(Menus, TinWindowHasTheWorkingMenus) {
  Workbench bench;
  EXPECT_EQ(MenuTitles(bench.window), (Texts{"&File", "&Edit", "&View", "Features", "Matching", "TIN",
                                             "Image", "Vector", "Utilities", "&Window", "&Help"}));
  EXPECT_EQ(TextsUnder(bench.window, "File"),
            (Texts{"&New", "&Open", "&Close", "&Save", "Save &As", "&Print", "Print Pre&view", "P&rint Setup",
                   "Recent File", "E&xit"}));
  EXPECT_EQ(TextsUnder(bench.window, "Edit"), (Texts{"&Undo", "Cu&t", "&Copy", "&Paste"}));
  EXPECT_EQ(TextsUnder(bench.window, "View"), (Texts{"&Toolbar", "&Status Bar"}));
  EXPECT_EQ(TextsUnder(bench.window, "Window"),
            (Texts{"&New Window", "&Cascade", "&Tile", "&Arrange Icons"}));
  EXPECT_EQ(TextsUnder(bench.window, "Help"), (Texts{"&Help Topics", "&About"}));
}

TEST(Menus, WithoutAWindowTheFrameMenusShow) {
  Workbench bench;
  bench.Run("File > Close");
  EXPECT_EQ(MenuTitles(bench.window), (Texts{"&File", "&View", "LiDAR", "&Help"}));
  EXPECT_EQ(TextsUnder(bench.window, "File"),
            (Texts{"&New", "&Open", "P&rint Setup", "Recent File", "E&xit"}));
  EXPECT_EQ(TextsUnder(bench.window, "View"), (Texts{"&Toolbar", "&Status Bar", "StereoGram"}));
  EXPECT_EQ(TextsUnder(bench.window, "LiDAR"), (Texts{"Bare Earth"}));
}

TEST(Menus, BitmapWindowHasTheImageMenus) {
  Workbench bench;
  const Texts fileItems = TextsUnder(bench.window, "File");
  OpenBitmapWindow(bench.app.GetMainFrame(), MakeBlackDib(4, 3, 8), "a.lan");
  EXPECT_EQ(MenuTitles(bench.window), (Texts{"&File", "&Edit", "&View", "&Window", "&Help"}));
  EXPECT_EQ(TextsUnder(bench.window, "File"), fileItems);
  EXPECT_EQ(TextsUnder(bench.window, "Edit"), (Texts{"&Undo", "Cu&t", "&Copy", "&Paste"}));
  EXPECT_EQ(TextsUnder(bench.window, "View"),
            (Texts{"&Toolbar", "&Status Bar", "Zoom &In", "Zoom &Out", "Zoom 1:1", "Zoom 1:5"}));
  EXPECT_EQ(TextsUnder(bench.window, "Window"),
            (Texts{"&New Window", "&Cascade", "&Tile", "&Arrange Icons"}));
  bench.Choose("Window > Next Pane");
  EXPECT_EQ(MenuTitles(bench.window).size(), 11u);
}

// Numbers that the image menu shares with other commands.
TEST(Menus, ZoomItemsShowThePromptsOfOtherCommands) {
  Workbench bench;
  const std::map<std::string, std::string> kPrompts = {
      {"View > Zoom In", "Export a subset of points in user defined area."},
      {"View > Zoom Out", "Create Epipolar Images from a Stereo Photo Pair."},
      {"View > Zoom 1:1", ""},
      {"View > Zoom 1:5", "Zoom in some times."},
  };
  for (const auto& [name, prompt] : kPrompts) {
    EXPECT_EQ(bench.window.GetMenus().Find(name)->statusTip().toStdString(), prompt);
  }
}

TEST(Menus, ChangeWithTheActiveWindow) {
  Workbench bench;
  bench.Run("File > Close");
  EXPECT_EQ(MenuTitles(bench.window).size(), 4u);
  bench.Run("File > New");
  EXPECT_EQ(MenuTitles(bench.window).size(), 11u);
  EXPECT_TRUE(bench.window.GetMenus().Find("File > Save")->isEnabled());
  bench.Run("File > Close");
  EXPECT_EQ(MenuTitles(bench.window).size(), 4u);
  EXPECT_FALSE(bench.window.GetMenus().Find("File > Save")->isEnabled());
}

// The rows of the table under each path appear in the order of the table; submenus keep theirs apart.
TEST(Menus, EqualTheCommandTable) {
  Workbench bench;
  std::vector<const CommandRow*> wanted;
  std::set<std::string> paths;
  for (const CommandRow& row : CommandRows()) {
    if (row.place != MenuPlace::Working) continue;
    wanted.push_back(&row);
    paths.insert(row.path);
  }
  EXPECT_EQ(wanted.size(), 120u);

  std::size_t found = 0;
  for (const std::string& path : paths) {
    std::vector<const CommandRow*> rows;
    std::copy_if(wanted.begin(), wanted.end(), std::back_inserter(rows),
                 [&](const CommandRow* row) { return row->path == path; });
    std::vector<const QAction*> actions;
    for (const ShownItem& item : ShownItems(bench.window)) {
      if (item.path == path) actions.push_back(item.action);
    }
    ASSERT_EQ(actions.size(), rows.size()) << path;
    for (std::size_t i = 0; i < rows.size(); ++i) {
      EXPECT_EQ(actions[i]->text().toStdString(), rows[i]->item);
      EXPECT_EQ(actions[i]->statusTip().toStdString(), rows[i]->prompt);
      EXPECT_EQ(actions[i]->isEnabled(), HasHandler(*rows[i])) << rows[i]->item;
      ++found;
    }
  }
  EXPECT_EQ(found, 120u);
}

TEST(Menus, SubmenusStandWhereTheTableNamesThemFirst) {
  Workbench bench;
  Texts entries;
  for (const QAction* action : bench.window.menuBar()->actions()) {
    if (action->text() != "Matching") continue;
    for (const QAction* entry : action->menu()->actions()) entries.push_back(entry->text().toStdString());
  }
  entries.resize(6);
  EXPECT_EQ(entries, (Texts{"Create Epipolar Images", "Exams", "Match Muiti-Models", "Area Matching",
                            "Dense Match", "Relaxation Match"}));
}

TEST(Menus, CannyEdgeCanNotBeChosen) {
  Workbench bench;
  EXPECT_FALSE(bench.window.GetMenus().Find("Features > Canny Edge")->isEnabled());
}

TEST(Menus, EditItemsStandDisabledInATinWindow) {
  Workbench bench;
  for (const char* name : {"Edit > Undo", "Edit > Cut", "Edit > Copy", "Edit > Paste"}) {
    EXPECT_FALSE(bench.window.GetMenus().Find(name)->isEnabled()) << name;
  }
}

TEST(Menus, StandardItemsCarryTheUsualPrompts) {
  Workbench bench;
  const std::map<std::string, std::string> kPrompts = {
      {"File > New", "Create a new document"},
      {"File > Open", "Open an existing document"},
      {"File > Close", "Close the active document"},
      {"File > Save", "Save the active document"},
      {"File > Save As", "Save the active document with a new name"},
      {"File > Print", "Print the active document"},
      {"File > Exit", "Quit the application; prompts to save documents"},
      {"View > Toolbar", "Show or hide the toolbar"},
      {"Window > Cascade", "Arrange windows so they overlap"},
  };
  for (const auto& [name, prompt] : kPrompts) {
    EXPECT_EQ(bench.window.GetMenus().Find(name)->statusTip().toStdString(), prompt);
  }
}

TEST(Menus, AcceleratorsOfTheTable) {
  Workbench bench;
  const std::map<std::string, std::vector<const char*>> kKeys = {
      {"File > New", {"Ctrl+N"}},
      {"File > Open", {"Ctrl+O"}},
      {"File > Save", {"Ctrl+S"}},
      {"File > Print", {"Ctrl+P"}},
      {"Edit > Undo", {"Ctrl+Z", "Alt+Backspace"}},
      {"Edit > Cut", {"Ctrl+X", "Shift+Del"}},
      {"Edit > Copy", {"Ctrl+C", "Ctrl+Ins"}},
      {"Edit > Paste", {"Ctrl+V", "Shift+Ins"}},
      {"Window > Next Pane", {"F6"}},
      {"Window > Previous Pane", {"Shift+F6"}},
      {"Help > Help Topics", {"F1", "Shift+F1"}},
  };
  for (const auto& [name, keys] : kKeys) {
    const auto shortcuts = bench.window.GetMenus().Find(name)->shortcuts();
    ASSERT_EQ(static_cast<std::size_t>(shortcuts.size()), keys.size()) << name;
    for (std::size_t i = 0; i < keys.size(); ++i) {
      EXPECT_EQ(shortcuts[static_cast<qsizetype>(i)].toString(QKeySequence::PortableText).toStdString(),
                keys[i]);
    }
  }
}

TEST(Menus, RecentFilesAreNumberedAndTheLatestIsFirst) {
  Workbench bench;
  for (int i = 1; i <= 7; ++i) bench.app.GetRecentFiles().Add("/data/t" + std::to_string(i) + ".tin");
  bench.window.Refresh();
  const Texts texts = TextsUnder(bench.window, "File");
  EXPECT_EQ(Texts(texts.begin() + 8, texts.begin() + 14),
            (Texts{"&1 /data/t7.tin", "&2 /data/t6.tin", "&3 /data/t5.tin", "&4 /data/t4.tin",
                   "&5 /data/t3.tin", "&6 /data/t2.tin"}));
  EXPECT_EQ(texts.size(), 15u);
}

TEST(Menus, RecentFileOpensItsPath) {
  Workbench bench;
  WriteSquareTin("a.tin", 100.0);
  bench.Open("a.tin");
  bench.Run("File > Close");
  EXPECT_EQ(bench.app.GetDocuments().size(), 1u);
  for (const ShownItem& item : ShownItems(bench.window)) {
    if (!item.action->text().startsWith("&1 ")) continue;
    ModalScript script({Press("OK")});
    const_cast<QAction*>(item.action)->trigger();
    break;
  }
  EXPECT_EQ(bench.ActiveView().GetTitle(), "a.tin");
}

TEST(Menus, LongRecentPathsLoseTheirFirstFolders) {
  EXPECT_EQ(RecentFileText(1, "/a/b.tin").toStdString(), "&1 /a/b.tin");
  EXPECT_EQ(RecentFileText(2, "/a/R&D.tin").toStdString(), "&2 /a/R&&D.tin");
  const std::string tens = "0123456789/0123456789/0123456789/0123456789/0123456789";  // 54
  EXPECT_EQ(RecentFileText(3, "/first/" + tens + "/x.tin").toStdString(),
            "&3 .../0123456789/0123456789/0123456789/0123456789/x.tin");
  const std::string longName(70, 'n');
  EXPECT_EQ(RecentFileText(4, "/" + longName).toStdString(), "&4 /" + longName);
}

TEST(Menus, ACommandThatRunsKeepsOthersFromStarting) {
  Workbench bench;
  bench.window.CommandStarted();
  bench.Choose("File > New");
  bench.window.OpenPath("a.tin");
  EXPECT_EQ(bench.app.GetDocuments().size(), 1u);
  bench.window.CommandEnded(CommandResult::Done);
  bench.Choose("File > New");
  EXPECT_EQ(bench.app.GetDocuments().size(), 2u);
}

TEST(Menus, BareEarthDoesNothingAtAll) {
  Workbench bench;
  bench.Run("File > Close");
  ModalScript noDialog({});
  bench.Choose("LiDAR > Bare Earth");
  EXPECT_TRUE(bench.app.GetDocuments().empty());
}

}  // namespace

}  // namespace corvane
