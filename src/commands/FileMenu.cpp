#include "commands/FileMenu.h"

#include "shell/CorvaneApp.h"

namespace corvane {

CommandResult OnFileNew(CMainFrame& frame) {
  return frame.GetApp().NewDocument() ? CommandResult::Done : CommandResult::Failed;
}

CommandResult OnFileOpen(CMainFrame& frame) {
  CCorvaneApp& app = frame.GetApp();
  const auto path = ChooseFile(app.GetTinTemplate().MakeChooser(FileChooser::Mode::Open, ""));
  if (!path) return CommandResult::Cancelled;
  return app.OpenDocumentFile(*path);
}

CommandResult OnFileClose(CDocument& document) {
  const bool closed = document.GetMainFrame().GetApp().CloseDocument(document);
  return closed ? CommandResult::Done : CommandResult::Cancelled;
}

CommandResult OnFileSave(CDocument& document) {
  return document.GetMainFrame().GetApp().SaveDocument(document, false);
}

CommandResult OnFileSaveAs(CDocument& document) {
  return document.GetMainFrame().GetApp().SaveDocument(document, true);
}

}  // namespace corvane
