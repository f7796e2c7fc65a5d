// The comparisons with check points on the TIN menu.

#include <new>
#include <optional>
#include <stdexcept>

#include "TIN/PointComparison.h"
#include "commands/Choosers.h"
#include "commands/Failures.h"
#include "commands/PointsInput.h"
#include "commands/TinMenu.h"
#include "io/NumberText.h"
#include "io/OutputFile.h"
#include "io/Paths.h"
#include "shell/CommandShapes.h"

namespace corvane {

namespace {

// Kept: what was meant as a title stands as the extension, and a name without one gets it.
const FileChooser kOpenChecks{.filter = kPointsFilter, .defaultExtension = "Choose a Points Set."};

using Comparison = int (CCorvaneDoc::*)(const std::string& pointsPath);

CommandResult CompareTin(CCorvaneView& view, Comparison compare) {
  const CommandResult loaded = LoadTinOnDemand(view);
  if (loaded != CommandResult::Done) return loaded;
  const auto path = ChooseFile(kOpenChecks);
  if (!path) return CommandResult::Cancelled;
  if ((view.GetDocument().*compare)(*path) >= 0) return CommandResult::Done;
  ShowStop("Failed to compare TIN/Points");  // Kept: also after a Cancel in the operation's own prompts
  return CommandResult::Failed;
}

// "TIN, mask, count, min, max, mean, standard deviation, RMS".
std::string SummaryRow(const std::string& tinPath, const std::string& maskPath,
                       const ComparisonSummary& summary) {
  std::string row = tinPath + ", " + maskPath + ", ";
  AppendInt(row, summary.count);
  for (const double number : {summary.min, summary.max, summary.mean, summary.stdDev, summary.rms}) {
    AppendFixed(row += ", ", number);
  }
  return row += '\n';
}

// What all lines of a batch share.
struct CheckPoints {
  std::string path;
  std::string tag;
  TINPoints points;
};

// Measures a TIN against the points in the regions of a mask and writes the log of that. Returns its row of
// the batch's summary, "" for a line that is passed over, for a reason that has been told. Nothing, or
// std::bad_alloc, without the memory.
std::optional<std::string> CompareLine(const CheckPoints& checks, const std::string& tinPath,
                                       const std::string& maskPath) {
  TIN tin;
  // A TIN without any extent (-1) has no heights, which shows in the row.
  if (tin.ReadTIN(tinPath) < 0 || tin.StoreTriangle(tinPath) < -1) return "";
  std::vector<Region> regions;
  if (TINPoints::ReadRegions(maskPath, regions) < 1) {
    ShowWarning(OpenErrorText(maskPath));
    return "";
  }
  OutputFile log;
  PointComparison comparison(tin, PointComparison::Row::WithHeights, log);
  std::vector<std::int32_t> list;
  if (!CollectInRegions(checks.points, regions, list) || !comparison.Allocate(list.size())) {
    return std::nullopt;
  }
  const std::string logPath = DerivedName(tinPath, "_" + checks.tag + ".log");
  OpenLog(log, logPath, {tinPath, maskPath, checks.path});
  CompareListed(comparison, checks.points, list);
  const ComparisonSummary summary = comparison.Finish();
  if (!log.Commit()) ShowWarning(WriteErrorText(logPath));
  return SummaryRow(tinPath, maskPath, summary);
}

// The same, with a shortage of memory told as well: the next line may need less.
std::string CompareBatchLine(const CheckPoints& checks, const std::string& tinPath,
                             const std::string& maskPath) {
  std::optional<std::string> row;
  try {
    row = CompareLine(checks, tinPath, maskPath);
  } catch (const std::bad_alloc&) {
  } catch (const std::length_error&) {
  }
  if (!row) ShowMessage(kPointsMemoryError);
  return row.value_or("");
}

}  // namespace

CommandResult OnTinPointsComparing(CCorvaneView& view) {
  return CompareTin(view, &CCorvaneDoc::CompareWithPoints);
}

CommandResult OnTinPointsComparing2(CCorvaneView& view) {
  return CompareTin(view, &CCorvaneDoc::CompareInRegions);
}

CommandResult OnTinPtsCompareBatch(CCorvaneView&) {
  const auto batchPath = ChooseBatchFile();
  if (!batchPath) return CommandResult::Cancelled;
  BatchLines lines;
  if (!lines.Open(*batchPath)) return CommandResult::Failed;
  const std::string summaryPath = *batchPath + ".log";
  OutputFile summary(summaryPath);
  if (!summary.IsOpen()) return FailWithWarning(OpenErrorText(summaryPath));

  WaitCursor wait;
  CheckPoints checks;
  lines.Next(checks.path, checks.tag);  // a line that lacks one leaves it empty
  if (!ReadPoints(checks.path, "Read points file error!\n", checks.points)) return CommandResult::Failed;
  if (checks.points.BuildIndex(1) < 0) return CommandResult::Failed;
  std::vector<std::string> inputs = {*batchPath, checks.path};
  std::string tinPath;
  std::string maskPath;
  while (lines.Next(tinPath, maskPath)) {
    Ui().SetStatusText(0, "Comparing " + tinPath);
    summary.Write(CompareBatchLine(checks, tinPath, maskPath));
    inputs.insert(inputs.end(), {tinPath, maskPath});
  }
  if (!IsOneOfFiles(summaryPath, inputs) && summary.Commit()) return CommandResult::Done;
  return FailWithWarning(WriteErrorText(summaryPath));
}

}  // namespace corvane
