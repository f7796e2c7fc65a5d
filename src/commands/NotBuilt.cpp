#include "commands/NotBuilt.h"

namespace corvane {

namespace {

CommandResult ShowNotBuilt() {
  ShowMessage("This command is not built yet.");
  return CommandResult::Failed;
}

}  // namespace

CommandResult OnNotBuilt(CCorvaneView&) {
  return ShowNotBuilt();
}

CommandResult OnFrameNotBuilt(CMainFrame&) {
  return ShowNotBuilt();
}

}  // namespace corvane
