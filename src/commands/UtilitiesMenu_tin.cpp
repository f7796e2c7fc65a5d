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

const FileChooser kOpenTin{.filter = "TIN Files (*.tin)|*.tin|All Files (*.*)|*.*|", .mustExist = true};
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
  if (tin.GetTriangleCount() > 0) Ui().SetStatusText(0, "All corners of the TIN are at one place.");
  ShowWarning("Failed to create the DEM!");
  return false;
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
  const auto paths = ChooseInOrder({kOpenTin, kSaveDem});
  if (!paths) return CommandResult::Cancelled;
  TIN tin;
  if (!LoadTin((*paths)[0], tin)) return CommandResult::Failed;

  const Extent6& extent = tin.GetExtent();
  const double extent4[4] = {extent.minX, extent.maxX, extent.minY, extent.maxY};
  ExtentWindow window;
  float cellSize = kFirstCellSize;
  if (ExtentInput().Ask(extent4, window, &cellSize) < 0) return CommandResult::Cancelled;
  WaitCursor wait;
  StoredDem stored;
  const int created = tin.CreateDem((*paths)[1], window, cellSize, kHeightOfNoData, &stored);
  wait.End();
  if (created < 0) return FailWithWarning("Failed to create the DEM!");
  if (!IsWritten((*paths)[1], stored.status)) return CommandResult::Failed;
  TellWritten((*paths)[1], {stored.nCols, stored.nRows});
  return CommandResult::Done;
}

CommandResult OnCreateDemFromPoints(CCorvaneView& view) {
  const CommandResult text = OnTextPointsXyzToBin(view);
  const CommandResult points = OnCreateTin(view);
  const CommandResult tin = OnCreateDem(view);
  return WorstOf({text, points, tin});
}

CommandResult OnTinToShape(CCorvaneView& view) {
  const CommandResult loaded = LoadTinOnDemand(view, TinForm::RawOrStored);
  if (loaded != CommandResult::Done) return loaded;
  const auto path = ChooseFile(kSaveShape);
  if (!path) return CommandResult::Cancelled;
  WaitCursor wait;
  std::int64_t nPolygons = 0;
  const int written = view.GetDocument().GetTIN().WriteShape(*path, &nPolygons);
  wait.End();
  if (written >= 0) {
    Ui().SetStatusText(0, "Written to " + *path + ": " + std::to_string(nPolygons) + " polygons.");
    return CommandResult::Done;
  }
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
