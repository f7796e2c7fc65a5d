// The commands on the menu Utilities > Points that make points files and texts from points files.

#include <algorithm>
#include <cmath>
#include <optional>

#include "TIN/GridFailure.h"
#include "TIN/GridMerge.h"
#include "TIN/TINPoints.h"
#include "commands/Choosers.h"
#include "commands/Failures.h"
#include "commands/PointsInput.h"
#include "commands/UtilitiesMenu.h"
#include "forms/ExtentInput.h"
#include "io/NumberText.h"
#include "io/OutputFile.h"
#include "shell/CommandShapes.h"

namespace corvane {

namespace {

// Kept: a title stands in the place of the default extension, and is appended as one.
const FileChooser kOpenSource{.filter = kPointsFilter, .defaultExtension = "Choose a Points Set."};
const FileChooser kSaveResampled{
    .mode = FileChooser::Mode::Save, .filter = kPointsFilter, .defaultExtension = "Choose a Points Set."};
const FileChooser kOpenGrids{.filter = kPointsFilter, .defaultExtension = "pts", .multiple = true};
const FileChooser kOpenReplacements{.filter = kPointsFilter, .defaultExtension = "pts", .mustExist = true};

constexpr const char* kCannotReadPoints = "Read points file error!\n";
constexpr const char* kCannotReadRegions = "Read region file error!\n";

std::string CannotReadText(const std::string& path) {
  return "Read points file " + path + " error!\n";
}

// Writes the point as a line "x, y, z, value". `row` is scratch, so that not every line asks for memory.
bool WriteRow(const PointRecord& point, std::string& row, OutputFile& file) {
  row.clear();
  AppendNumbers(row, {point.x, point.y, point.z, point.value}, 13);
  row += '\n';
  return file.Write(row);
}

// Reads points and a mask, and indexes the points. False after a failure, which has been shown.
bool ReadPointsAndMask(const std::string& pointsPath, const std::string& maskPath, TINPoints& points,
                       std::vector<Region>& regions) {
  if (!ReadPoints(pointsPath, kCannotReadPoints, points) || points.BuildIndex(1.0) < 0) return false;
  if (TINPoints::ReadRegions(maskPath, regions) >= 1) return true;
  ShowMessage(kCannotReadRegions);
  return false;
}

// What the last status text of a command says about regions of the mask that could not be used.
std::string RegionsText(std::size_t nUsed, std::size_t nRegions) {
  if (nRegions == 0) return " The mask gives no regions that can be used.";
  if (nUsed == nRegions) return "";
  return " Regions used: " + std::to_string(nUsed) + " of " + std::to_string(nRegions) + ".";
}

bool IsInWindow(const PointRecord& point, const ExtentWindow& window) {
  return window.xStart <= point.x && point.x <= window.xEnd && window.yStart <= point.y &&
         point.y <= window.yEnd;
}

int AskWindow(const TINPoints& points, ExtentWindow& window, float& minCorr) {
  float ignoredCellSize = 0.0f;
  return ExtentInput().AskPoints(points.minX, points.maxY, points.maxX, points.minY, points.spacingX, window,
                                 &ignoredCellSize, &minCorr);
}

// The points in the window with at least this score, as text. The number of lines; -1 if they can't be
// written.
std::int32_t WriteWindow(const TINPoints& points, const ExtentWindow& window, float minScore,
                         OutputFile& file) {
  std::int32_t nWritten = 0;
  std::string row;
  for (std::int32_t i = 0; i < points.GetCount(); ++i) {
    const PointRecord& point = *points.GetPoint(i);
    if (!IsInWindow(point, window) || !(minScore <= static_cast<float>(point.value))) continue;
    if (!WriteRow(point, row, file)) return -1;
    ++nWritten;
  }
  return file.Commit() ? nWritten : -1;
}

// What has been taken from the regions of a mask.
struct Taken {
  std::int64_t nPoints = 0;
  std::size_t nRegions = 0;  // that could be used
};

// The points in the regions, as text. Region by region, so that no mask needs more memory than the points:
// points in several are written anew. Nothing if they can't be written.
std::optional<Taken> WriteInRegions(const TINPoints& points, const std::vector<Region>& regions,
                                    OutputFile& file) {
  Taken taken;
  std::vector<std::int32_t> list;
  std::string row;
  for (const Region& region : regions) {
    list.clear();
    if (points.CollectInRegion(region, list) >= 0) ++taken.nRegions;
    for (const std::int32_t i : list) {
      if (!WriteRow(*points.GetPoint(i), row, file)) return std::nullopt;
    }
    taken.nPoints += static_cast<std::int64_t>(list.size());
  }
  return taken;
}

std::string ResampleText(const TINPoints& points, double cellSize, std::int32_t nWritten) {
  std::string text = "Points written: " + std::to_string(nWritten) + ".";
  const double side = std::trunc(std::min(points.maxX - points.minX, points.maxY - points.minY));
  if (nWritten == 0 && side < cellSize) {
    text += " There are no samples: the extents are shorter than one unit, or than the cell size.";
  }
  return text;
}

// Puts the points of both files on the grid of the first and writes it over the first file.
CommandResult ReplaceOnGrid(const TINPoints& first, const TINPoints& second, const ExtentWindow& window,
                            const std::vector<std::string>& paths) {
  OutputFile file(paths[0]);
  if (!file.IsOpen()) return FailToOpen(paths[0]);
  const GroundRect extent = {first.minX, first.minY, first.maxX, first.maxY};
  const std::int64_t nExpected = std::int64_t{first.GetCount()} + second.GetCount();
  TINPoints grid(first.spacingX, first.spacingY, extent, nExpected);
  if (grid.cells.empty()) {
    return FailToWrite(paths[0], TINPoints::WhyNoGrid(first.spacingX, first.spacingY, extent, nExpected));
  }
  const std::int32_t nKept = grid.ReplaceFrom(first, extent);
  const std::int32_t nReplaced =
      grid.ReplaceFrom(second, {window.xStart, window.yStart, window.xEnd, window.yEnd});
  std::int32_t nWritten = -1;
  if (grid.WriteGrid(file, &nWritten) < 0 || !file.Commit()) {
    return FailToWrite(paths[0], nWritten == 0 ? kNoPointInGrid : "");
  }
  Ui().SetStatusText(0, "Points of the first file on its grid: " + std::to_string(nKept) + " of " +
                            std::to_string(first.GetCount()) +
                            ". Points of the second put in: " + std::to_string(nReplaced) + "." +
                            MissingText(first, paths[0]) + MissingText(second, paths[1]));
  return CommandResult::Done;
}

}  // namespace

CommandResult OnCropOutPoints(CCorvaneView&) {
  const auto paths = ChooseInOrder({kOpenPoints, kOpenMask});
  if (!paths) return CommandResult::Cancelled;
  WaitCursor wait;
  TINPoints points;
  std::vector<Region> regions;
  if (!ReadPointsAndMask((*paths)[0], (*paths)[1], points, regions)) return CommandResult::Failed;
  const std::int32_t nRead = points.GetCount();
  const auto nUsed = static_cast<std::size_t>(std::count_if(
      regions.begin(), regions.end(), [&](const Region& region) { return points.MarkRegion(region) >= 0; }));
  points.Compact();
  wait.End();

  const auto outPath = ChooseFile(kSavePoints);
  if (!outPath) return CommandResult::Cancelled;
  WaitCursor waitForWriting;
  OutputFile file(*outPath);
  if (!file.IsOpen()) return FailToOpen(*outPath);
  if (points.Write(file) < 0 || !file.Commit()) return FailToWrite(*outPath);
  Ui().SetStatusText(0, "Points cut out: " + std::to_string(nRead - points.GetCount()) + " of " +
                            std::to_string(nRead) + "." + RegionsText(nUsed, regions.size()) +
                            MissingText(points, (*paths)[0]));
  return CommandResult::Done;
}

CommandResult OnSubsetPoints(CCorvaneView&) {
  const auto paths = ChooseInOrder({kOpenPoints, kSaveText});
  if (!paths) return CommandResult::Cancelled;
  TINPoints points;
  if (!ReadPoints((*paths)[0], kCannotReadPoints, points)) return CommandResult::Failed;
  ExtentWindow window;
  float minScore = 0.0f;
  if (AskWindow(points, window, minScore) < 0) return CommandResult::Cancelled;

  WaitCursor wait;
  OutputFile file((*paths)[1]);
  if (!file.IsOpen()) return FailToOpen((*paths)[1]);
  const std::int32_t nWritten = WriteWindow(points, window, minScore, file);
  if (nWritten < 0) return FailToWrite((*paths)[1]);
  Ui().SetStatusText(0,
                     "Points written: " + std::to_string(nWritten) + "." + MissingText(points, (*paths)[0]));
  return CommandResult::Done;
}

CommandResult OnSubsetPoints2(CCorvaneView&) {
  const auto paths = ChooseInOrder({kOpenPoints, kOpenMask, kSaveText});
  if (!paths) return CommandResult::Cancelled;
  WaitCursor wait;
  TINPoints points;
  std::vector<Region> regions;
  if (!ReadPointsAndMask((*paths)[0], (*paths)[1], points, regions)) return CommandResult::Failed;

  OutputFile file((*paths)[2]);
  const auto taken = WriteInRegions(points, regions, file);
  if (!taken && !file.IsOpen()) return FailToOpen((*paths)[2]);
  if (!taken) return FailToWrite((*paths)[2]);
  if (taken->nPoints > 0 && !file.Commit()) return FailToWrite((*paths)[2]);
  Ui().SetStatusText(0, "Points written: " + std::to_string(taken->nPoints) + "." +
                            RegionsText(taken->nRegions, regions.size()) + MissingText(points, (*paths)[0]));
  if (taken->nPoints > 0) return CommandResult::Done;
  return FailWith("There is no Points in the subset area!\n");
}

CommandResult OnResamplePoints(CCorvaneView&) {
  const auto paths = ChooseInOrder({kOpenSource, kSaveResampled});
  if (!paths) return CommandResult::Cancelled;
  TINPoints points;
  if (!ReadPoints((*paths)[0], "Read source points file error!\n", points)) return CommandResult::Failed;
  const double extent4[4] = {points.minX, points.maxX, points.minY, points.maxY};
  ExtentWindow ignored;
  auto cellSize = static_cast<float>(points.spacingX);
  if (ExtentInput().Ask(extent4, ignored, &cellSize) < 0) return CommandResult::Cancelled;

  WaitCursor wait;
  if (points.BuildIndexWithCell(points.spacingX) < 0) return CommandResult::Failed;
  OutputFile file((*paths)[1]);
  if (!file.IsOpen()) return FailToOpen((*paths)[1]);
  std::int32_t nWritten = 0;
  const int result = points.Resample(file, cellSize, &nWritten);
  if (result == -2) return FailToWrite((*paths)[1], NoGridText(cellSize));
  if (result == -3) return FailToWrite((*paths)[1], kGridTooLarge);
  if (result < 0 || !file.Commit()) return FailToWrite((*paths)[1]);
  Ui().SetStatusText(0, ResampleText(points, cellSize, nWritten) + MissingText(points, (*paths)[0]));
  return CommandResult::Done;
}

CommandResult OnMergeGridPoints(CCorvaneView&) {
  const auto outPath = ChooseFile(kSavePoints);
  if (!outPath) return CommandResult::Cancelled;
  const auto paths = Ui().ChooseFiles(kOpenGrids);
  if (!paths || paths->empty()) return CommandResult::Cancelled;
  WaitCursor wait;
  GridMerge merge;
  for (const std::string& path : *paths) {
    if (merge.AddFile(path) != GridMerge::Added::OtherSpacing) continue;
    Ui().ShowMessage(MessageKind::Message, MessageButtons::OkCancel,
                     path + ": The points spacing does not match, so won't be merged.");
  }
  const int nMerged = merge.Write(*outPath);
  Ui().SetStatusText(0, merge.GetReport());
  if (nMerged == -2) return FailToOpen(*outPath);
  return nMerged < 0 ? FailToWrite(*outPath, merge.GetFailure()) : CommandResult::Done;
}

CommandResult OnReplaceGridPoints(CCorvaneView&) {
  const auto paths = ChooseInOrder({kSavePoints, kOpenReplacements});
  if (!paths) return CommandResult::Cancelled;
  const std::string& firstPath = (*paths)[0];
  const std::string& secondPath = (*paths)[1];
  TINPoints first;
  if (!ReadPoints(firstPath, CannotReadText(firstPath), first)) return CommandResult::Failed;
  ExtentWindow window;
  float ignoredScore = 0.0f;
  if (AskWindow(first, window, ignoredScore) < 0) return CommandResult::Cancelled;
  TINPoints second;
  if (!ReadPoints(secondPath, CannotReadText(secondPath), second)) return CommandResult::Failed;

  WaitCursor wait;
  LeaveOutMissing(first);
  LeaveOutMissing(second);
  return ReplaceOnGrid(first, second, window, *paths);
}

}  // namespace corvane
