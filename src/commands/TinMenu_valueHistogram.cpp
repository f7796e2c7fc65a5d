// The histogram of point values on the TIN menu.

#include "TIN/TINPoints.h"
#include "commands/Failures.h"
#include "commands/TinMenu.h"
#include "forms/ValueInput.h"
#include "numerics/Histogram.h"
#include "shell/CorvaneView.h"

namespace corvane {

namespace {

const FileChooser kOpenPointText{
    .filter = "Points Files (*.txt)|*.txt|Log Files (*.log)|*.log|All Files (*.*)|*.*|"};

}  // namespace

CommandResult OnPointValueHistogram(CCorvaneView& view) {
  const auto path = ChooseFile(kOpenPointText);
  if (!path) return CommandResult::Cancelled;
  WaitCursor wait;
  TINPoints points;
  if (points.ReadText(*path) < 1) return FailToOpenPoints(*path);
  points.RecalcExtent();
  points.BuildIndex(5.0);  // Kept: only to warn of points that make no grid
  wait.End();
  if (points.GetCount() < 1) return CommandResult::Done;

  ValueInput bin;
  bin.title = "Please input the histogram bin interval";
  bin.value = 0.05;
  bin.Ask();  // Kept: Cancel goes on with the interval shown
  Histogram histogram;
  if (points.ValueHistogram(bin.value, histogram) < 0) {
    return FailWithWarning("HistogramThresh:Histogram has error!");
  }
  const int plotted = view.PlotHistogram(0, histogram.binStarts, histogram.counts);
  return plotted < 0 ? CommandResult::Failed : CommandResult::Done;
}

}  // namespace corvane
