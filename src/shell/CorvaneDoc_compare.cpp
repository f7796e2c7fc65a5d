// The TIN measured against check points.

#include <optional>
#include <utility>

#include "TIN/PointBlocks.h"
#include "TIN/PointComparison.h"
#include "TIN/PointsHeader.h"
#include "TIN/StoredPoints.h"
#include "forms/ExtentInput.h"
#include "io/InputFile.h"
#include "io/NumberText.h"
#include "io/OutputFile.h"
#include "io/Paths.h"
#include "shell/CorvaneDoc.h"
#include "shell/MainFrm.h"
#include "shell/MaskChooser.h"
#include "ui/ErrorTexts.h"
#include "ui/FrontEnd.h"
#include "ui/RunTimer.h"

namespace corvane {

namespace {

int TellAndReturn(const char* text, int status) {
  ShowMessage(text);
  return status;
}

// Nothing on Cancel.
std::optional<ExtentWindow> AskWindow(const Extent6& extent) {
  const double extent4[4] = {extent.minX, extent.maxX, extent.minY, extent.maxY};
  ExtentWindow window;
  float ignored = 1.0f;
  if (ExtentInput().Ask(extent4, window, &ignored) < 0) return std::nullopt;
  return window;
}

// Extents that touch at an edge do not miss each other.
bool Misses(const ExtentWindow& window, const PointsHeader& points) {
  return window.xEnd < points.minX || points.maxX < window.xStart || window.yEnd < points.minY ||
         points.maxY < window.yStart;
}

bool IsIn(const ExtentWindow& window, const StoredPoint& point) {
  return window.xStart <= point.x && point.x <= window.xEnd && window.yStart <= point.y &&
         point.y <= window.yEnd;
}

std::string StatisticsText(const ComparisonSummary& summary) {
  std::string text = "mean: ";
  AppendFixed(text, summary.mean);
  AppendFixed(text += " stddev: ", summary.stdDev);
  AppendFixed(text += " RMS: ", summary.rms);
  return text;
}

// "3 of 4 points measured; log: a.log"
std::string MeasuredText(const ComparisonSummary& summary, const std::string& logPath) {
  return std::to_string(summary.count) + " of " + std::to_string(summary.nPoints) +
         " points measured; log: " + logPath;
}

}  // namespace

int CCorvaneDoc::CompareWithPoints(const std::string& pointsPath) {
  InputFile file(pointsPath);
  auto header = PointsHeader::Read(file);
  if (!header) return TellAndReturn("Open file error!\n", -1);
  if (header->maxY < header->minY) std::swap(header->minY, header->maxY);
  const auto window = AskWindow(tin.GetExtent());
  if (!window) return -2;
  if (Misses(*window, *header)) return TellAndReturn("There is no overlap between TIN and Points!\n", -3);

  TellComparing(pointsPath);
  OutputFile log;
  PointComparison comparison(tin, PointComparison::Row::Numbered, log);
  std::int32_t nMissing = 0;
  const auto points = ReadStoredPoints(file, header->nPoints, &nMissing);
  if (!points || !comparison.Allocate(points->size())) return TellAndReturn(kPointsMemoryError, -4);
  file.Close();
  TellMissing(nMissing, header->nPoints);
  return RunComparison(comparison, log, {GetPathName(), pointsPath}, [&] {
    for (std::size_t i = 0; i < points->size(); ++i) {
      const StoredPoint& point = (*points)[i];
      if (IsIn(*window, point)) comparison.Compare(i, {point.x, point.y, point.z});
    }
  });
}

int CCorvaneDoc::CompareInRegions(const std::string& pointsPath) {
  TINPoints points;
  if (points.Read(pointsPath) < 0) return TellAndReturn("Read points file error!\n", -1);
  TellMissing(points.GetMissingCount(), points.GetCount());
  if (points.BuildIndex(1) < 0) return -1;
  const auto maskPath = ChooseFile(kOpenMask);
  if (!maskPath) return -1;
  std::vector<Region> regions;
  if (TINPoints::ReadRegions(*maskPath, regions) < 1) return TellAndReturn("Read region file error!\n", -2);

  OutputFile log;
  PointComparison comparison(tin, PointComparison::Row::Plan, log);
  std::vector<std::int32_t> list;
  if (!CollectInRegions(points, regions, list) || !comparison.Allocate(list.size())) {
    return TellAndReturn(kPointsMemoryError, -4);
  }
  if (list.empty()) return TellAndReturn("There is no Points in the comparing area!\n", -3);
  TellComparing(pointsPath);
  return RunComparison(comparison, log, {GetPathName(), pointsPath, *maskPath},
                       [&] { CompareListed(comparison, points, list); });
}

void CCorvaneDoc::TellComparing(const std::string& pointsPath) {
  GetMainFrame().GetStatusBar().SetPaneText(0, "Comparing with " + pointsPath);
}

// What both forms do once the points are there. `measure` gives them to the comparison.
int CCorvaneDoc::RunComparison(PointComparison& comparison, OutputFile& log,
                               const std::vector<std::string>& inputs, const std::function<void()>& measure) {
  constexpr int kNoLog = -5;
  const std::string logPath = DerivedName(GetPathName(), ".log");
  RunTimer timer;
  WaitCursor wait;
  if (OpenLog(log, logPath, inputs)) measure();
  wait.End();
  timer.Stop();
  const ComparisonSummary summary = comparison.Finish();
  if (!log.Commit()) {
    ShowWarning(WriteErrorText(logPath));
    return kNoLog;
  }
  GetMainFrame().GetStatusBar().SetPaneText(0, MeasuredText(summary, logPath));
  timer.ShowTotal();
  ShowInformation(StatisticsText(summary));
  return 1;
}

}  // namespace corvane
