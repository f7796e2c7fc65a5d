// The commands on the menu Utilities > DEM that turn rasters of heights into other files and back.

#include "TIN/GridFailure.h"
#include "TIN/PointComparison.h"
#include "TIN/PointRaster.h"
#include "TIN/Spacing.h"
#include "TIN/TINPoints.h"
#include "commands/Choosers.h"
#include "commands/Failures.h"
#include "commands/ImageExtent.h"
#include "commands/ImageFiles.h"
#include "commands/PointsInput.h"
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

// Tells in the message pane what of an image has been written: the values of a window.
void TellWindow(const std::string& path, const PixelWindow& window, const std::string& more) {
  if (window.nRows > 0 && window.nCols > 0) {
    TellValuesWritten(path, {window.nCols, window.nRows}, more);
  } else {
    Ui().SetStatusText(0, "There is no cell in the rectangle." + more);
  }
}

// Why FillDem has made no DEM of cells of these sizes, as a sentence for the person.
std::string NoDemText(int status, double cellX, double cellY) {
  if (status == -2) return ErdasImg::kNoMemoryText;
  if (status == -3) return "The grid is too large.";
  for (const double cell : {cellX, cellY}) {
    if (!IsSpacing(static_cast<float>(cell))) return NoGridText(cell);
  }
  return "There is no cell in the extents.";
}

// About cells of an ASCII grid that could not be read, if there are any.
std::string CellsText(std::int64_t nRead, const ImageSize& size) {
  const std::int64_t nCells = std::int64_t{size.cy} * size.cx;
  if (nRead == nCells) return "";
  return " Cells written: " + std::to_string(nRead) + " of " + std::to_string(nCells) +
         "; the rest is missing or no number.";
}

std::string PlacedText(std::int32_t nPlaced, std::int32_t nPoints) {
  const std::string text = " Points placed: " + std::to_string(nPlaced) + " of " + std::to_string(nPoints);
  return text + (nPlaced < nPoints ? ", left out: " + std::to_string(nPoints - nPlaced) + "." : ".");
}

// Why a points file could not be read, as TINPoints::Read says.
CommandResult FailToRead(const std::string& path, int status) {
  if (status < -1) return FailWith(kPointsMemoryError);
  return FailWithWarning(OpenErrorText(path) + (InputFile(path).IsOpen() ? "\nIt holds no points." : ""));
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
  TellWindow((*paths)[1], window, CutText(dem));
  return ResultOf(isRead);
}

CommandResult OnAsciiGridToDem(CCorvaneView&) {
  const auto paths = ChooseInOrder({kOpenAscii, kSaveLanDem});
  if (!paths) return CommandResult::Cancelled;
  WaitCursor wait;
  ErdasImg dem;
  std::int64_t nUnread = 0;
  if (dem.ReadAsciiGrid((*paths)[0], &nUnread) < 0 || !dem.HasPixels()) {
    return FailWithWarning("Conversion from ASCII Grid to DEM failed");
  }
  const auto [cols, rows] = dem.GetSize();
  const std::int64_t nRead = std::int64_t{rows} * cols - nUnread;
  return StoreImage((*paths)[1], dem, true, CellsText(nRead, dem.GetSize()));
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
  const ImageSize size = {header.nCols, header.nRows};
  TellValuesWritten(topazPath, size, CellsText(nCells, size));
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
  TellWindow((*paths)[1], window, CutText(dem));
  return ResultOf(isRead);
}

CommandResult OnPointsToDem(CCorvaneView&) {
  const auto paths = ChooseInOrder({kOpenPoints, kSaveDem});
  if (!paths) return CommandResult::Cancelled;
  WaitCursor wait;
  TINPoints points;
  const int read = points.Read((*paths)[0]);
  if (read < 1) return FailToRead((*paths)[0], read);
  LeaveOutMissing(points);

  ErdasImg dem;
  std::int32_t nPlaced = 0;
  const int status = PointsToDem(points, dem, nPlaced);
  if (status < 0) return FailToWrite((*paths)[1], NoDemText(status, points.spacingX, points.spacingY));
  if (!WriteImage((*paths)[1], dem)) return CommandResult::Failed;
  TellWritten((*paths)[1], dem.GetSize(),
              PlacedText(nPlaced, points.GetCount()) + MissingText(points, (*paths)[0]));
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
  if (status < 0) return FailToWrite(*path, NoDemText(status, cellSize, cellSize));
  return StoreImage(*path, dem, true);
}

}  // namespace corvane
