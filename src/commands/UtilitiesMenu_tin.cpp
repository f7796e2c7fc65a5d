// The commands on the Utilities menu that lead out of a TIN: DEMs and shape files.

#include <algorithm>
#include <initializer_list>

#include "TIN/TINPoints.h"
#include "commands/Choosers.h"
#include "commands/Failures.h"
#include "commands/ImageFiles.h"
#include "commands/TinMenu.h"
#include "commands/UtilitiesMenu.h"
#include "forms/ExtentInput.h"
#include "shell/CommandShapes.h"

namespace corvane {

namespace {

const FileChooser kOpenTin{.filter = "TIN Files (*.tin)|*.tin|All Files (*.*)|*.*|"};
const FileChooser kOpenTinThatExists{.filter = kOpenTin.filter, .mustExist = true};
const FileChooser kSaveDem{.mode = FileChooser::Mode::Save,
                           .filter = "DEM Files (*.dem)|*.dem|All Files (*.*)|*.*|",
                           .defaultExtension = "DEM"};
// Kept: a title stands in the place of the default extension, and is appended as one.
const FileChooser kSaveShape{.mode = FileChooser::Mode::Save,
                             .filter = "Shape Files (*.shp)|*.shp|All Files (*.*)|*.*|",
                             .defaultExtension = "Choose a Shape File"};

constexpr float kFirstCellSize = 1.0f;     // ground units
constexpr double kHeightOfNoData = 230.0;  // Kept: fixed, and no mark of any kind

// Reads a TIN and builds its model. False after a failure, which has been shown.
bool LoadTin(const std::string& path, TIN& tin) {
  Ui().SetStatusText(0, "Reading TIN from " + path);
  WaitCursor wait;
  if (tin.ReadTIN(path) < 0) return false;
  Ui().SetStatusText(0, "Done reading TIN.");
  if (tin.StoreTriangle(path) >= 0) return true;
  ShowWarning("Failed to create the DEM!");
  return false;
}

// Has triangles, raw or stored, at hand in the document: those that it holds, or those of its file, which is
// asked for where it has none. They stay raw.
CommandResult HaveTriangles(CCorvaneView& view) {
  CCorvaneDoc& document = view.GetDocument();
  std::string path = document.GetPathName();
  if (path.empty()) {
    const auto chosen = ChooseFile(kOpenTin);
    if (!chosen) return CommandResult::Cancelled;
    path = *chosen;
  }
  if (document.GetTIN().GetTriangleCount() < 1) {
    WaitCursor wait;
    if (document.GetTIN().ReadTIN(path) != 0) return CommandResult::Failed;
  }
  view.paintEnabled = false;  // Kept: also where the TIN was loaded and painted before
  document.SetPathName(path, true);
  return CommandResult::Done;
}

// What three commands in a row come to: a failure counts before a Cancel.
CommandResult WorstOf(std::initializer_list<CommandResult> results) {
  if (std::count(results.begin(), results.end(), CommandResult::Failed) > 0) return CommandResult::Failed;
  if (std::count(results.begin(), results.end(), CommandResult::Cancelled) > 0) {
    return CommandResult::Cancelled;
  }
  return CommandResult::Done;
}

}  // namespace

CommandResult OnCreateDem(CCorvaneView&) {
  const auto paths = ChooseInOrder({kOpenTinThatExists, kSaveDem});
  if (!paths) return CommandResult::Cancelled;
  TIN tin;
  if (!LoadTin((*paths)[0], tin)) return CommandResult::Failed;

  const Extent6& extent = tin.GetExtent();
  const double extent4[4] = {extent.minX, extent.maxX, extent.minY, extent.maxY};
  ExtentWindow window;
  float cellSize = kFirstCellSize;
  if (ExtentInput().Ask(extent4, window, &cellSize) < 0) return CommandResult::Cancelled;
  WaitCursor wait;
  int stored = 1;
  const int created = tin.CreateDem((*paths)[1], window, cellSize, kHeightOfNoData, &stored);
  wait.End();
  if (created < 0) return FailWithWarning("Failed to create the DEM!");
  return IsWritten((*paths)[1], stored) ? CommandResult::Done : CommandResult::Failed;
}

CommandResult OnCreateDemFromPoints(CCorvaneView& view) {
  const CommandResult text = OnTextPointsXyzToBin(view);
  const CommandResult points = OnCreateTin(view);
  const CommandResult tin = OnCreateDem(view);
  return WorstOf({text, points, tin});
}

CommandResult OnTinToShape(CCorvaneView& view) {
  const CommandResult loaded = HaveTriangles(view);
  if (loaded != CommandResult::Done) return loaded;
  const auto path = ChooseFile(kSaveShape);
  if (!path) return CommandResult::Cancelled;
  WaitCursor wait;
  const int written = view.GetDocument().GetTIN().WriteShape(*path);
  wait.End();
  if (written >= 0) return CommandResult::Done;
  ShowStop("Failed to Convet TIN to Shape");
  return CommandResult::Failed;
}

// Kept: it asks and converts nothing.
CommandResult OnMaskToShape(CCorvaneView&) {
  const auto maskPath = ChooseFile({.filter = kOpenMask.filter});
  if (!maskPath) return CommandResult::Cancelled;
  std::vector<Region> regions;
  if (TINPoints::ReadRegions(*maskPath, regions) < 1) return FailWith("Read region file error!\n");
  return ChooseFile(kSaveShape) ? CommandResult::Done : CommandResult::Cancelled;
}

}  // namespace corvane
