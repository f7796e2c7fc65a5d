#include "shell/CorvaneDoc.h"

#include "io/InputFile.h"
#include "io/OutputFile.h"
#include "io/Paths.h"
#include "shell/CommandShapes.h"
#include "shell/MainFrm.h"
#include "ui/FrontEnd.h"

namespace corvane {

int CCorvaneDoc::OnOpenDocument(const std::string& path) {
  if (CDocument::OnOpenDocument(path) <= 0) return 0;
  CStatusBar& statusBar = GetMainFrame().GetStatusBar();
  statusBar.SetPaneText(0, "Reading TIN from " + path);
  unreadPath_ = path;
  InputFile file(path);
  if (!file.IsOpen()) {
    // Kept: the text holds only the first character of the path, and the empty window opens all the same.
    ShowWarning(OpenErrorText(FirstCharacter(path)));
    return -1;
  }
  WaitCursor wait;
  if (ReadAndStore(file) >= 0) unreadPath_.clear();
  return 1;
}

// Below 0 if the file's triangles are not in the model now. A file without any, or with all corners at one
// (x, y), has none to lose.
int CCorvaneDoc::ReadAndStore(InputFile& file) {
  const int read = tin.ReadTIN(file);
  GetMainFrame().GetStatusBar().SetPaneText(0, "Done reading TIN.");
  if (read < 0 || !file.Seek(TIN::kFirstTriangle)) return -1;
  const int stored = tin.StoreTriangle(file);
  return stored == -1 ? 0 : stored;
}

int CCorvaneDoc::OnSaveDocument(const std::string& path) {
  return SaveTin(path) ? SavePoints(path) : 0;
}

bool CCorvaneDoc::SaveTin(const std::string& path) {
  CStatusBar& statusBar = GetMainFrame().GetStatusBar();
  if (!unreadPath_.empty() && IsSameFile(path, unreadPath_)) {
    ShowWarning(WriteErrorText(path) + "\nIt did not read when it was opened, and is left as it is.");
    return false;
  }
  OutputFile file(path);
  if (!file.IsOpen()) {
    ShowWarning(WriteErrorText(FirstCharacter(path)));  // Kept: the first character only
    return false;
  }
  statusBar.SetPaneText(0, "Writing TIN to " + path);
  bool written = false;
  {
    WaitCursor wait;
    written = tin.WriteTIN(file) >= 0 && file.Commit();
  }
  statusBar.SetPaneText(0, "Done writing TIN.");
  // A document that could not be written still asks to be saved when it closes.
  if (written) SetModifiedFlag(false);
  if (!written) ShowWarning(WriteErrorText(path));
  return written;
}

int CCorvaneDoc::SavePoints(const std::string& path) {
  CStatusBar& statusBar = GetMainFrame().GetStatusBar();
  const std::string name = DerivedName(path, "_filted.pts");
  OutputFile file(name);
  if (!file.IsOpen()) {
    ShowWarning(WriteErrorText(name));
    return -1;
  }
  statusBar.SetPaneText(0, "Writing Pts to " + name);
  bool written = false;
  {
    WaitCursor wait;
    written = tin.WritePoints(file, 0) >= 0 && file.Commit();
  }
  statusBar.SetPaneText(0, "Done writing PTS.");
  if (written) return 1;
  ShowWarning(WriteErrorText(name));
  return -2;
}

}  // namespace corvane
