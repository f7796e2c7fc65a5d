#pragma once

#include "shell/CommandTable.h"

namespace corvane {

CommandResult OnFileNew(CMainFrame& frame);
CommandResult OnFileOpen(CMainFrame& frame);
CommandResult OnFileClose(CDocument& document);
CommandResult OnFileSave(CDocument& document);
CommandResult OnFileSaveAs(CDocument& document);

}  // namespace corvane
