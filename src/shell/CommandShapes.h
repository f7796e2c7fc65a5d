#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "io/TextScanner.h"
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

// Its parts, for commands that differ in between. The guard builds the model of a TIN that is still raw; it
// shows "No TIN Read! Please load a TIN first!" where there is none.
bool HasLoadedTin(CCorvaneView& view);
void ShowChangedTin(CCorvaneView& view);
// Repaints the views of the document, this one at once, and gives it the focus, with the modified flag as it
// was.
void RedrawTin(CCorvaneView& view);

// Shape B, the file-to-file command: shows the choosers in order. Nothing as soon as one is cancelled.
std::optional<std::vector<std::string>> ChooseInOrder(const std::vector<FileChooser>& choosers);

// Shape C, the TIN-on-demand command: the document's path, or one from a chooser; loads the TIN where none
// is loaded, with painting off. Done when the TIN is at hand, otherwise the command's result. A file that
// opens and gives no TIN ends in the text of the guard. For a command that takes raw triangles as well the
// file is only read, and may hold none.
enum class TinForm { Stored, RawOrStored };
CommandResult LoadTinOnDemand(CCorvaneView& view, TinForm form = TinForm::Stored);

// Shape D, the batch command: the chooser for the batch file. Nothing on Cancel.
std::optional<std::string> ChooseBatchFile();

// The lines of a batch file, read as "%s %s\n" each.
class BatchLines {
 public:
  BatchLines() = default;
  BatchLines(const BatchLines&) = delete;
  BatchLines& operator=(const BatchLines&) = delete;

  // False, after the composed open text with the warning icon, if the file does not open.
  bool Open(const std::string& path);

  // The two words of the next line; false at the end of the file. A word that stands there alone is told in
  // status pane 0.
  bool Next(std::string& first, std::string& second);

 private:
  std::string content_;
  TextScanner scanner_{{}};
};

}  // namespace corvane
