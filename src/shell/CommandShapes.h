#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "shell/CorvaneView.h"
#include "ui/ErrorTexts.h"
#include "ui/FrontEnd.h"

namespace corvane {

// The four shapes that nearly all commands have, as pieces that a handler strings together.

// Shape A, the loaded-TIN command: warns and fails without a TIN; asks; runs the operation under the wait
// cursor; marks the document modified and repaints. `ask` returns false on Cancel; it may be empty. An
// operation that returns a status below 0 has failed: the command then ends without marking the document.
CommandResult RunOnLoadedTin(CCorvaneView& view, const std::function<bool()>& ask,
                             const std::function<int(TIN&)>& operation);

// Its parts, for commands that differ in between. The guard shows "No TIN Read! Please load a TIN first!".
bool HasLoadedTin(CCorvaneView& view);
void ShowChangedTin(CCorvaneView& view);

// Shape B, the file-to-file command: shows the choosers in order. Nothing as soon as one is cancelled.
std::optional<std::vector<std::string>> ChooseInOrder(const std::vector<FileChooser>& choosers);

// Shape C, the TIN-on-demand command: the document's path, or one from a chooser; loads the TIN where none
// is loaded, with painting off. Done when the TIN is at hand, otherwise the command's result.
CommandResult LoadTinOnDemand(CCorvaneView& view);

// Shape D, the batch command: the chooser for the batch file. Nothing on Cancel.
std::optional<std::string> ChooseBatchFile();
// Runs `job` on the two words of each line ("%s %s\n") until the end of the file. Failed, after the
// composed open text with the warning icon, if the file does not open.
CommandResult RunBatchLines(const std::string& batchPath,
                            const std::function<void(const std::string&, const std::string&)>& job);

}  // namespace corvane
