// The commands on the menu Utilities > Points that make points files and texts from points files.

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

const FileChooser kSaveText{.mode = FileChooser::Mode::Save,
                            .filter = "Text Files (*.txt)|*.txt|All Files (*.*)|*.*|",
                            .defaultExtension = "txt"};
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

// Writes the point as a line "x, y, z, value".
bool WriteRow(const PointRecord& point, OutputFile& file) {
  constexpr int kDigits = 13;
  std::string row;
  AppendGeneral(row, point.x, kDigits);
  for (const double number : {point.y, point.z, point.value}) {
    row += ", ";
    AppendGeneral(row, number, kDigits);
  }
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

bool IsInWindow(const PointRecord& point, const ExtentWindow& window) {
  return window.xStart <= point.x && point.x <= window.xEnd && window.yStart <= point.y &&
         point.y <= window.yEnd;
}

int AskWindow(const TINPoints& points, ExtentWindow& window, float& minCorr) {
  float ignoredCellSize = 0.0f;
  return ExtentInput().AskPoints(points.minX, points.maxY, points.maxX, points.minY, points.spacingX, window,
                                 &ignoredCellSize, &minCorr);
}

}  // namespace

CommandResult OnCropOutPoints(CCorvaneView&) {
  const auto paths = ChooseInOrder({kOpenPoints, kOpenMask});
  if (!paths) return CommandResult::Cancelled;
  WaitCursor wait;
  TINPoints points;
  std::vector<Region> regions;
  if (!ReadPointsAndMask((*paths)[0], (*paths)[1], points, regions)) return CommandResult::Failed;
  for (const Region& region : regions) points.MarkRegion(region);
  points.Compact();
  wait.End();

  const auto outPath = ChooseFile(kSavePoints);
  if (!outPath) return CommandResult::Cancelled;
  WaitCursor waitForWriting;
  return points.Write(*outPath) < 0 ? FailWithWarning(WriteErrorText(*outPath)) : CommandResult::Done;
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
  bool good = file.IsOpen();
  for (std::int32_t i = 0; i < points.GetCount() && good; ++i) {
    const PointRecord& point = *points.GetPoint(i);
    if (!IsInWindow(point, window) || !(minScore <= static_cast<float>(point.value))) continue;
    good = WriteRow(point, file);
  }
  if (good && file.Commit()) return CommandResult::Done;
  return FailWithWarning(WriteErrorText((*paths)[1]));
}

CommandResult OnSubsetPoints2(CCorvaneView&) {
  const auto paths = ChooseInOrder({kOpenPoints, kOpenMask, kSaveText});
  if (!paths) return CommandResult::Cancelled;
  WaitCursor wait;
  TINPoints points;
  std::vector<Region> regions;
  if (!ReadPointsAndMask((*paths)[0], (*paths)[1], points, regions)) return CommandResult::Failed;

  // Region by region, so that no mask needs more memory than the points: points in several are written anew.
  OutputFile file((*paths)[2]);
  bool good = file.IsOpen();
  bool isEmpty = true;
  std::vector<std::int32_t> list;
  for (const Region& region : regions) {
    list.clear();
    points.CollectInRegion(region, list);
    isEmpty = isEmpty && list.empty();
    for (const std::int32_t i : list) good = good && WriteRow(*points.GetPoint(i), file);
  }
  if (isEmpty) return FailWith("There is no Points in the subset area!\n");
  if (good && file.Commit()) return CommandResult::Done;
  return FailWithWarning(WriteErrorText((*paths)[2]));
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
  if (points.Resample((*paths)[1], cellSize) >= 0) return CommandResult::Done;
  return FailWithWarning(WriteErrorText((*paths)[1]));
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
  if (nMerged < 0) return FailWithWarning(WriteErrorText(*outPath));
  Ui().SetStatusText(
      0, "Files merged: " + std::to_string(nMerged) + " of " + std::to_string(paths->size()) + ".");
  return CommandResult::Done;
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
  const GroundRect extent = {first.minX, first.minY, first.maxX, first.maxY};
  TINPoints grid(first.spacingX, first.spacingY, extent, first.GetCount());
  const std::int32_t nKept = grid.ReplaceFrom(first, extent);
  const std::int32_t nReplaced =
      grid.ReplaceFrom(second, {window.xStart, window.yStart, window.xEnd, window.yEnd});
  if (grid.WriteGrid(firstPath) < 0) return FailWithWarning(WriteErrorText(firstPath));
  Ui().SetStatusText(0, "Points of the first file on its grid: " + std::to_string(nKept) + " of " +
                            std::to_string(first.GetCount()) +
                            ". Points of the second put in: " + std::to_string(nReplaced) + ".");
  return CommandResult::Done;
}

}  // namespace corvane
