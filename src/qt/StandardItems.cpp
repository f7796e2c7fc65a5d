#include "qt/StandardItems.h"

namespace corvane {

std::span<const StandardItem> StandardItems() {
  static constexpr StandardItem kItems[] = {
      {"File", "&Print", "Print the active document"},
      {"File", "Print Pre&view", "Display full pages"},
      {"File", "P&rint Setup", "Change the printer and printing options"},
      {"File", "E&xit", "Quit the application; prompts to save documents"},
      {"Edit", "&Undo", "Undo the last action"},
      {"Edit", "Cu&t", "Cut the selection and put it on the Clipboard"},
      {"Edit", "&Copy", "Copy the selection and put it on the Clipboard"},
      {"Edit", "&Paste", "Insert Clipboard contents"},
      {"View", "&Toolbar", "Show or hide the toolbar"},
      {"View", "&Status Bar", "Show or hide the status bar"},
      // Kept: these show the prompts of other commands, as their numbers are shared.
      {"View", "Zoom &In", "Export a subset of points in user defined area."},
      {"View", "Zoom &Out", "Create Epipolar Images from a Stereo Photo Pair."},
      {"View", "Zoom 1:1", ""},
      {"View", "Zoom 1:5", "Zoom in some times."},
      {"Window", "&New Window", "Open another window for the active document"},
      {"Window", "&Cascade", "Arrange windows so they overlap"},
      {"Window", "&Tile", "Arrange windows as non-overlapping tiles"},
      {"Window", "&Arrange Icons", "Arrange icons at the bottom of the window"},
      {"Help", "&Help Topics", "List Help topics"},
      {"Help", "&About", "Display program information, version number and copyright"},
      {"Window", "Next Pane", "Switch to the next window pane"},
      {"Window", "Previous Pane", "Switch back to the previous window pane"},
      {"Window", "Close Window", "Close the active window; prompts to save its document"},
  };
  return kItems;
}

std::string ItemName(const StandardItem& item) {
  return CommandName({MenuPlace::Standard, item.path, item.item, item.prompt, {}});
}

std::span<const Accelerator> Accelerators() {
  static constexpr Accelerator kAccelerators[] = {
      {"File > New", "Ctrl+N"},
      {"File > Open", "Ctrl+O"},
      {"File > Save", "Ctrl+S"},
      {"File > Print", "Ctrl+P"},
      {"Edit > Undo", "Ctrl+Z"},
      {"Edit > Undo", "Alt+Backspace"},
      {"Edit > Cut", "Ctrl+X"},
      {"Edit > Cut", "Shift+Del"},
      {"Edit > Copy", "Ctrl+C"},
      {"Edit > Copy", "Ctrl+Ins"},
      {"Edit > Paste", "Ctrl+V"},
      {"Edit > Paste", "Shift+Ins"},
      {"View > Zoom In", "Ctrl++"},
      {"View > Zoom In", "Ctrl+="},
      {"View > Zoom Out", "Ctrl+-"},
      {"View > Zoom 1:1", "Ctrl+1"},
      {"Window > Next Pane", "F6"},
      {"Window > Previous Pane", "Shift+F6"},
      {"Window > Close Window", "Ctrl+W"},
      {"Window > Close Window", "Ctrl+F4"},
      {"Help > Help Topics", "F1"},
      {"Help > Help Topics", "Shift+F1"},
  };
  return kAccelerators;
}

namespace {

const MenuLayout kFile = {
    "&File",
    {"File > New", "File > Open", "File > Close", "File > Save", "File > Save As", kSeparator, "File > Print",
     "File > Print Preview", "File > Print Setup", kSeparator, kRecentFiles, kSeparator, "File > Exit"}};
const MenuLayout kFileWithoutWindow = {"&File",
                                       {"File > New", "File > Open", kSeparator, "File > Print Setup",
                                        kSeparator, kRecentFiles, kSeparator, "File > Exit"}};
const MenuLayout kEdit = {"&Edit", {"Edit > Undo", kSeparator, "Edit > Cut", "Edit > Copy", "Edit > Paste"}};
const MenuLayout kView = {"&View", {"View > Toolbar", "View > Status Bar"}};
const MenuLayout kViewWithZooms = {"&View",
                                   {"View > Toolbar", "View > Status Bar", kSeparator, "View > Zoom In",
                                    "View > Zoom Out", "View > Zoom 1:1", "View > Zoom 1:5"}};
const MenuLayout kWindow = {
    "&Window", {"Window > New Window", "Window > Cascade", "Window > Tile", "Window > Arrange Icons"}};
const MenuLayout kHelp = {"&Help", {"Help > Help Topics", "Help > About"}};

}  // namespace

const MenuBarLayout& MenuBarFor(std::optional<WindowKind> kind) {
  static const MenuBarLayout kNoWindow = {{kFileWithoutWindow, kView}, MenuPlace::Frame, {kHelp}};
  static const MenuBarLayout kWorking = {{kFile, kEdit, kView}, MenuPlace::Working, {kWindow, kHelp}};
  static const MenuBarLayout kImage = {{kFile, kEdit, kViewWithZooms}, std::nullopt, {kWindow, kHelp}};
  if (!kind) return kNoWindow;
  return kind == WindowKind::Bitmap ? kImage : kWorking;
}

std::span<const char* const> ToolBarNames() {
  static constexpr const char* kNames[] = {"File > New",   "File > Open", "File > Save",  kSeparator,
                                           "Edit > Cut",   "Edit > Copy", "Edit > Paste", kSeparator,
                                           "File > Print", kSeparator,    "Help > About"};
  return kNames;
}

}  // namespace corvane
