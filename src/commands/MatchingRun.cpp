#include "commands/MatchingRun.h"

#include "shell/CorvaneView.h"
#include "shell/DibView.h"

namespace corvane {

namespace {

void DrawPlaces(CDibView& window, const std::vector<MatchPair>& pairs, Point2 MatchPair::*side) {
  for (const MatchPair& pair : pairs) {
    const Point2& place = pair.*side;
    window.m_points.push_back(place.x);
    window.m_points.push_back(place.y);
    window.m_labels.push_back({place.x, place.y, std::to_string(pair.id)});
  }
  window.Redraw();
}

}  // namespace

CommandResult ResultOfMatching(int status) {
  if (status == StereoPair::kCancelled) return CommandResult::Cancelled;
  return status < 0 ? CommandResult::Failed : CommandResult::Done;
}

CommandResult RunMatching(CCorvaneView& view, int (StereoPair::*method)()) {
  view.stereoPair.progressWindow = &Ui();
  const int status = (view.stereoPair.*method)();
  view.stereoPair.progressWindow = nullptr;
  return ResultOfMatching(status);
}

CommandResult RunMatchingWithDisplay(CCorvaneView& view, int (StereoPair::*method)()) {
  const CommandResult result = RunMatching(view, method);
  ShowMatchPairs(view.GetDocument().GetMainFrame(), view.stereoPair);
  view.stereoPair.FreePair();
  return result;
}

void ShowMatchPairs(CMainFrame& frame, const StereoPair& pair) {
  if (pair.matchPairs.empty() || !pair.leftPhoto || !pair.rightPhoto) return;
  CDibView* const left = OpenImageWindow(frame, &pair.leftPhoto->image, pair.leftPhoto->name);
  CDibView* const right = OpenImageWindow(frame, &pair.rightPhoto->image, pair.rightPhoto->name);
  if (!left || !right) return;
  DrawPlaces(*left, pair.matchPairs, &MatchPair::left);
  DrawPlaces(*right, pair.matchPairs, &MatchPair::right);
}

}  // namespace corvane
