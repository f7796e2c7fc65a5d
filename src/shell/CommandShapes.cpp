#include "shell/CommandShapes.h"

#include "io/InputFile.h"
#include "shell/ChildFrm.h"

namespace corvane {

bool HasLoadedTin(CCorvaneView& view) {
  TIN& tin = view.GetDocument().GetTIN();
  if (tin.GetTriangleCount() >= 1 && tin.StoreRawTriangles() >= 0) return true;
  ShowWarning("No TIN Read! Please load a TIN first!");
  return false;
}

void ShowChangedTin(CCorvaneView& view) {
  view.GetDocument().SetModifiedFlag(true);
  Ui().UpdateWindowFrame(view);
  RedrawTin(view);
}

void RedrawTin(CCorvaneView& view) {
  for (const auto& frame : view.GetDocument().GetFrames()) frame->GetView().Invalidate();
  view.UpdateWindow();
  Ui().ActivateWindow(view);
}

CommandResult RunOnLoadedTin(CCorvaneView& view, const std::function<bool()>& ask,
                             const std::function<int(TIN&)>& operation) {
  if (!HasLoadedTin(view)) return CommandResult::Failed;
  if (ask && !ask()) return CommandResult::Cancelled;
  {
    WaitCursor wait;
    if (operation(view.GetDocument().GetTIN()) < 0) return CommandResult::Failed;
  }
  ShowChangedTin(view);
  return CommandResult::Done;
}

std::optional<std::vector<std::string>> ChooseInOrder(const std::vector<FileChooser>& choosers) {
  std::vector<std::string> paths;
  for (const FileChooser& chooser : choosers) {
    const auto path = ChooseFile(chooser);
    if (!path) return std::nullopt;
    paths.push_back(*path);
  }
  return paths;
}

CommandResult LoadTinOnDemand(CCorvaneView& view, TinForm form) {
  CCorvaneDoc& document = view.GetDocument();
  std::string path = document.GetPathName();
  if (path.empty()) {
    const auto chosen = ChooseFile({.filter = "TIN Files (*.tin)|*.tin|All Files (*.*)|*.*|"});
    if (!chosen) return CommandResult::Cancelled;
    path = *chosen;
  }
  const bool isLoaded = document.GetTIN().GetTriangleCount() >= 1;
  if (form == TinForm::RawOrStored) {
    WaitCursor wait;
    if (!isLoaded && document.GetTIN().ReadTIN(path) != 0) return CommandResult::Failed;
  } else {
    if (!isLoaded && document.OnOpenDocument(path) <= 0) return CommandResult::Failed;
    if (!HasLoadedTin(view)) return CommandResult::Failed;
  }
  view.paintEnabled = false;  // Kept: also where the TIN was loaded and painted before
  document.SetPathName(path, true);
  return CommandResult::Done;
}

std::optional<std::string> ChooseBatchFile() {
  return ChooseFile({.filter = "Batch Files (*.txt)|*.txt|All Files (*.*)|*.*|",
                     .defaultExtension = "TXT",
                     .mustExist = true});
}

bool BatchLines::Open(const std::string& path) {
  auto content = ReadWholeFile(path);
  if (!content) {
    ShowWarning(OpenErrorText(path));
    return false;
  }
  content_ = std::move(*content);
  scanner_ = TextScanner(content_);
  return true;
}

bool BatchLines::Next(std::string& first, std::string& second) {
  if (!scanner_.ScanWord(first)) return false;
  if (!scanner_.ScanWord(second)) {
    Ui().SetStatusText(0, "The batch ends with one word alone: " + first);
    return false;
  }
  scanner_.SkipSpace();
  return true;
}

}  // namespace corvane
