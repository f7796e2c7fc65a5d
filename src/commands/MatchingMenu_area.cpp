// Area matching and dense matching of the menu Matching.

#include "commands/MatchingMenu.h"
#include "commands/MatchingRun.h"

namespace corvane {

CommandResult OnAreaCorrelationCoeff(CCorvaneView& view) {
  return RunMatching(view, &StereoPair::MatchAreaCC);
}

CommandResult OnAreaDifference(CCorvaneView& view) {
  return RunMatching(view, &StereoPair::MatchAreaDifference);
}

CommandResult OnAreaFeatureCC(CCorvaneView& view) {
  return RunMatching(view, &StereoPair::MatchAreaFeatureCC);
}

CommandResult OnStructuralDescriptorCC(CCorvaneView& view) {
  return RunMatching(view, &StereoPair::MatchStructuralDescriptor);
}

CommandResult OnTwoWayMatch(CCorvaneView& view) {
  return RunMatching(view, &StereoPair::MatchTwoWay);
}

CommandResult OnAreaCorrelation(CCorvaneView& view) {
  return RunMatching(view, &StereoPair::DenseAreaCorrelation);
}

CommandResult OnExamTruth(CCorvaneView& view) {
  return RunMatching(view, &StereoPair::ExamTruth);
}

CommandResult OnEntropyMap(CCorvaneView&) {
  return ResultOfMatching(StereoPair::MakeEntropyMap());
}

}  // namespace corvane
