#include "shell/CorvaneDoc.h"

#include "io/InputFile.h"
#include "io/OutputFile.h"
#include "io/Paths.h"
#include "shell/CommandShapes.h"
#include "shell/MainFrm.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

constexpr std::int64_t kFirstTriangle = 4;  // behind the count

}  // namespace

int CCorvaneDoc::OnOpenDocument(const std::string& path) {
  if (CDocument::OnOpenDocument(path) <= 0) return 0;
  CStatusBar& statusBar = GetMainFrame().GetStatusBar();
  statusBar.SetPaneText(0, "Reading TIN from " + path);
  InputFile file(path);
  if (!file.IsOpen()) {
    // Kept: the text holds only the first character of the path, and the empty window opens all the same.
    ShowWarning(OpenErrorText(FirstCharacter(path)));
    return -1;
  }
  WaitCursor wait;
  const int read = tin.ReadTIN(file);
  statusBar.SetPaneText(0, "Done reading TIN.");
  unreadPath_ = read < 0 ? path : "";
  if (read >= 0 && file.Seek(kFirstTriangle)) tin.StoreTriangle(file);
  return 1;
}

int CCorvaneDoc::OnSaveDocument(const std::string& path) {
  return SaveTin(path) ? SavePoints(path) : 0;
}

bool CCorvaneDoc::SaveTin(const std::string& path) {
  CStatusBar& statusBar = GetMainFrame().GetStatusBar();
  if (!unreadPath_.empty() && path == unreadPath_) {
    ShowWarning(WriteErrorText(path));
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
