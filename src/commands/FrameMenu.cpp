#include "commands/FrameMenu.h"

namespace corvane {

CommandResult OnBareEarth(CMainFrame&) {
  return CommandResult::Done;
}

}  // namespace corvane
