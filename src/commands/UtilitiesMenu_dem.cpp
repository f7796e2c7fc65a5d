// The commands on the menu Utilities > DEM that turn rasters of heights into other files and back.

#include "TIN/GridFailure.h"
#include "TIN/PointRaster.h"
#include "TIN/Spacing.h"
#include "TIN/TINPoints.h"
#include "commands/Choosers.h"
#include "commands/Failures.h"
#include "commands/ImageExtent.h"
#include "commands/ImageFiles.h"
#include "commands/UtilitiesMenu.h"
#include "erdasimg/PixelWindow.h"
#include "erdasimg/RasterTools.h"
#include "erdasimg/Topaz.h"
#include "io/InputFile.h"
#include "io/OutputFile.h"
#include "shell/CommandShapes.h"

namespace corvane {

namespace {

constexpr const char* kDemFilter = "DEM Files (*.dem)|*.dem|All Files (*.*)|*.*|";
constexpr const char* kAsciiFilter = "ASCII Grid Files (*.asc)|*.asc|All Files (*.*)|*.*|";

const FileChooser kOpenDem{.filter = kDemFilter};
const FileChooser kSaveDem{.mode = FileChooser::Mode::Save, .filter = kDemFilter};
const FileChooser kSaveLanDem{.mode = FileChooser::Mode::Save,
                              .filter = "DEM Files (*.lan)|*.lan|All Files (*.*)|*.*|"};
const FileChooser kOpenAscii{.filter = kAsciiFilter};
const FileChooser kSaveAscii{.mode = FileChooser::Mode::Save, .filter = kAsciiFilter};
const FileChooser kSaveGridPoints{.mode = FileChooser::Mode::Save, .filter = kPointsFilter};

// Puts `xMap` and `yMap`, taken as the centre of the first pixel, to its corner.
void MoveToCorner(ErdasHeader& header) {
  header.xMap -= header.xCell / 2;
  header.yMap -= header.yCell / 2;
}

// Why FillDem has made no DEM, as a sentence for the person.
std::string NoDemText(int status, double cellSize) {
  if (status == -2) return ErdasImg::kNoMemoryText;
  if (status == -3) return "The grid is too large.";
  return IsSpacing(cellSize) ? "There is no cell in the extents." : NoGridText(cellSize);
}

std::string MissingCellsText(const AsciiGridHeader& header, std::int64_t nCells) {
  const std::int64_t nMissing = std::int64_t{header.nRows} * header.nCols - nCells;
  return nMissing > 0 ? " The grid is cut short: cells missing: " + std::to_string(nMissing) + "." : "";
}

std::string PlacedText(std::int32_t nPlaced, std::int32_t nPoints, std::int32_t nMissing) {
  std::string text = " Points placed: " + std::to_string(nPlaced) + " of " + std::to_string(nPoints) + ".";
  if (nMissing > 0) {
    text += " The points file is cut short: points missing: " + std::to_string(nMissing) + ".";
  }
  return text;
}

}  // namespace

CommandResult OnDemToAsciiGrid(CCorvaneView&) {
  const auto paths = ChooseInOrder({kOpenDem, kSaveAscii});
  if (!paths) return CommandResult::Cancelled;
  ErdasImg dem;
  const bool isRead = ReadImage((*paths)[0], dem);
  MoveToCorner(*dem.GetHeader());
  GroundExtent rect;
  if (GetGroundExtent(*dem.GetHeader(), rect) < 0) return CommandResult::Cancelled;

  WaitCursor wait;
  const PixelWindow window = WindowOf(*dem.GetHeader(), rect);
  OutputFile file((*paths)[1]);
  if (!file.IsOpen()) return FailToOpen((*paths)[1]);
  if (!WriteAsciiGrid(dem, window, kNoDataZ, file) || !file.Commit()) return FailToWrite((*paths)[1]);
  TellWritten((*paths)[1], {window.nCols, window.nRows});
  return ResultOf(isRead);
}

CommandResult OnAsciiGridToDem(CCorvaneView&) {
  const auto paths = ChooseInOrder({kOpenAscii, kSaveLanDem});
  if (!paths) return CommandResult::Cancelled;
  WaitCursor wait;
  ErdasImg dem;
  if (dem.ReadAsciiGrid((*paths)[0]) < 0 || !HasPixels(dem)) {
    return FailWithWarning("Conversion from ASCII Grid to DEM failed");
  }
  return StoreImage((*paths)[1], dem, true);
}

CommandResult OnAsciiGridToTopaz(CCorvaneView&) {
  const auto path = ChooseFile(kOpenAscii);
  if (!path) return CommandResult::Cancelled;
  const std::string topazPath = TopazName(*path);
  InputFile ascii(*path);
  if (!ascii.IsOpen()) return FailToOpen(*path);
  OutputFile topaz(topazPath);
  if (!topaz.IsOpen()) return FailToOpen(topazPath);

  WaitCursor wait;
  AsciiGridHeader header;
  std::int64_t nCells = 0;
  const int status = AsciiGridToTopaz(ascii, topaz, header, nCells);
  if (status == -1) return FailWithWarning("Conversion from ASCII Grid to TOPAZ failed");
  if (status < 0 || !topaz.Commit()) return FailToWrite(topazPath);
  TellWritten(topazPath, {header.nCols, header.nRows}, MissingCellsText(header, nCells));
  return CommandResult::Done;
}

CommandResult OnDemToPoints(CCorvaneView&) {
  const auto paths = ChooseInOrder({kOpenDem, kSaveGridPoints});
  if (!paths) return CommandResult::Cancelled;
  ErdasImg dem;
  const bool isRead = ReadImage((*paths)[0], dem);
  OutputFile file((*paths)[1]);
  if (!file.IsOpen()) return FailWithWarning("Create file " + (*paths)[1] + " error!");
  GroundExtent rect;
  if (GetGroundExtent(*dem.GetHeader(), rect) < 0) return CommandResult::Cancelled;

  WaitCursor wait;
  const PixelWindow window = WindowOf(*dem.GetHeader(), rect);
  const int status = WriteRasterPoints(dem, window, file);
  if (status == -2) return FailToWrite((*paths)[1], "There are too many points.");
  if (status < 0 || !file.Commit()) return FailToWrite((*paths)[1]);
  TellWritten((*paths)[1], {window.nCols, window.nRows});
  return ResultOf(isRead);
}

CommandResult OnPointsToDem(CCorvaneView&) {
  const auto paths = ChooseInOrder({kOpenPoints, kSaveDem});
  if (!paths) return CommandResult::Cancelled;
  WaitCursor wait;
  TINPoints points;
  if (points.Read((*paths)[0]) < 1) return FailToOpen((*paths)[0]);
  const std::int32_t nMissing = points.GetMissingCount();
  points.Truncate(points.GetCount() - nMissing);

  ErdasImg dem;
  std::int32_t nPlaced = 0;
  const int status = PointsToDem(points, dem, nPlaced);
  const double cellSize = IsSpacing(points.spacingX) ? points.spacingY : points.spacingX;
  if (status < 0) return FailToWrite((*paths)[1], NoDemText(status, cellSize));
  if (!WriteImage((*paths)[1], dem)) return CommandResult::Failed;
  TellWritten((*paths)[1], dem.GetSize(), PlacedText(nPlaced, points.GetCount(), nMissing));
  return CommandResult::Done;
}

CommandResult OnGenerateFlatDem(CCorvaneView&) {
  GroundExtent rect;
  float cellSize = 1.0f;
  float z = 0.0f;
  if (GetExtent({}, rect, cellSize, z) < 0) return CommandResult::Cancelled;
  const auto path = ChooseFile(kSaveDem);
  if (!path) return CommandResult::Cancelled;

  WaitCursor wait;
  ErdasImg dem;
  const int status = FlatDem(rect, cellSize, z, dem);
  if (status < 0) return FailToWrite(*path, NoDemText(status, cellSize));
  return StoreImage(*path, dem, true);
}

}  // namespace corvane
