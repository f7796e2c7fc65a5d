// The TIN measured against check points.

#include <optional>
#include <utility>

#include "TIN/PointComparison.h"
#include "TIN/PointsHeader.h"
#include "TIN/StoredPoints.h"
#include "forms/ExtentInput.h"
#include "io/InputFile.h"
#include "io/NumberText.h"
#include "io/OutputFile.h"
#include "io/Paths.h"
#include "shell/CorvaneDoc.h"
#include "shell/MaskChooser.h"
#include "shell/RunTimer.h"
#include "ui/ErrorTexts.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

int FailWith(const char* text, int status) {
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

}  // namespace

int CCorvaneDoc::CompareWithPoints(const std::string& pointsPath) {
  InputFile file(pointsPath);
  auto header = PointsHeader::Read(file);
  if (!header) return FailWith("Open file error!\n", -1);
  if (header->maxY < header->minY) std::swap(header->minY, header->maxY);
  const auto window = AskWindow(tin.GetExtent());
  if (!window) return -2;
  if (Misses(*window, *header)) return FailWith("There is no overlap between TIN and Points!\n", -3);

  OutputFile log;
  PointComparison comparison(tin, PointComparison::Row::Numbered, log);
  const auto points = ReadStoredPoints(file, header->nPoints);
  if (!points || !comparison.Allocate(points->size())) return FailWith(kPointsMemoryError, -4);
  file.Close();
  return RunComparison(comparison, log, [&] {
    for (std::size_t i = 0; i < points->size(); ++i) {
      const StoredPoint& point = (*points)[i];
      if (IsIn(*window, point)) comparison.Compare(i, {point.x, point.y, point.z});
    }
  });
}

int CCorvaneDoc::CompareInRegions(const std::string& pointsPath) {
  TINPoints points;
  if (points.Read(pointsPath) < 0) return FailWith("Read points file error!\n", -1);
  points.BuildIndex(1);  // points outside their extents have been told, and no region finds any then
  const auto maskPath = ChooseFile(kOpenMask);
  if (!maskPath) return -1;
  std::vector<Region> regions;
  if (TINPoints::ReadRegions(*maskPath, regions) < 1) return FailWith("Read region file error!\n", -2);

  OutputFile log;
  PointComparison comparison(tin, PointComparison::Row::Plan, log);
  std::vector<std::int32_t> list;
  if (!CollectInRegions(points, regions, list) || !comparison.Allocate(list.size())) {
    return FailWith(kPointsMemoryError, -4);
  }
  if (list.empty()) return FailWith("There is no Points in the comparing area!\n", -3);
  return RunComparison(comparison, log, [&] { CompareListed(comparison, points, list); });
}

// What both forms do once the points are there. `measure` gives them to the comparison.
int CCorvaneDoc::RunComparison(PointComparison& comparison, OutputFile& log,
                               const std::function<void()>& measure) {
  constexpr int kNoLog = -5;
  const std::string logPath = DerivedName(GetPathName(), ".log");
  RunTimer timer;
  WaitCursor wait;
  if (log.Open(logPath)) measure();
  wait.End();
  timer.Stop();
  const ComparisonSummary summary = comparison.Finish();
  if (!log.Commit()) {
    ShowWarning(WriteErrorText(logPath));
    return kNoLog;
  }
  timer.ShowTotal();
  ShowInformation(StatisticsText(summary));
  return 1;
}

}  // namespace corvane
