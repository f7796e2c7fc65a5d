#include "commands/NotBuilt.h"

namespace corvane {

CommandResult OnNotBuilt(CCorvaneView&) {
  ShowMessage("This command is not built yet.");
  return CommandResult::Failed;
}

}  // namespace corvane
