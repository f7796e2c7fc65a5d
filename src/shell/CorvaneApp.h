#pragma once

#include <memory>
#include <span>
#include <string>
#include <vector>

#include "shell/CommandTable.h"
#include "shell/DocTemplate.h"
#include "shell/MainFrm.h"
#include "shell/RecentFiles.h"

namespace corvane {

// The application: templates, main frame, open documents, recent files, and the way from a command to its
// handler. The front end must be installed before InitInstance and outlive the application object.
class CCorvaneApp {
 public:
  // `commands` is the command table. `profilePath` keeps the recent-file list ("" for none, see
  // RecentFileList).
  CCorvaneApp(std::span<const CommandRow> commands, std::string profilePath);
  ~CCorvaneApp();
  CCorvaneApp(const CCorvaneApp&) = delete;
  CCorvaneApp& operator=(const CCorvaneApp&) = delete;

  // Start-up: makes the templates and the frame, then opens `commandLineFile`, or an empty TIN document if
  // that is "". False if the program has to end.
  bool InitInstance(const std::string& commandLineFile);
  // Closes all documents without asking and drops the image template.
  void ExitInstance();

  std::span<const CommandRow> GetCommands() const { return commands_; }

  // Whether the row can be chosen now.
  bool IsEnabled(const CommandRow& row) const;
  // Runs an enabled row's handler between CommandStarted and CommandEnded. Memory exhaustion that the
  // handler lets through is reported and counts as failed.
  CommandResult RunCommand(const CommandRow& row);
  // Runs "File > Open" on a path without asking for it (recent list, drag and drop, command line).
  // To the front end it is a "File > Open" whose chooser answered the path.
  CommandResult OpenPath(const std::string& path);

  // A document of the kind, without a window. It ends with its last one, or with the application.
  CDocument& AddDocument(const CDocTemplate& kind);

  // File New.
  CDocument* NewDocument();
  // Opens a document, or activates the one that is open on this path. Failed if the file does not open or
  // read, which has been reported and leaves an empty window.
  CommandResult OpenDocumentFile(const std::string& path);
  // Saves, asking for a path where the document has none or `askForPath` is set.
  CommandResult SaveDocument(CDocument& document, bool askForPath);
  // Asks whether to save a changed document; false if the closing was cancelled.
  bool CloseDocument(CDocument& document);
  // Closes one window; the document goes with its last one.
  bool CloseView(CView& view);

  CMainFrame& GetMainFrame() { return *mainFrame_; }
  RecentFileList& GetRecentFiles() { return recentFiles_; }
  const std::vector<std::unique_ptr<CDocument>>& GetDocuments() const { return documents_; }

  // The template that File New and File Open know, and the one that only commands open windows with.
  const CDocTemplate& GetTinTemplate() const { return *tinTemplate_; }
  const CDocTemplate& GetImageTemplate() const { return *imageTemplate_; }

 private:
  CommandResult RunHandler(const CommandRow& row);
  CDocument* FindDocument(const std::string& path) const;  // a TIN
  bool SaveModified(CDocument& document);
  void DestroyDocument(CDocument& document);

  std::span<const CommandRow> commands_;
  RecentFileList recentFiles_;
  std::unique_ptr<CDocTemplate> tinTemplate_;
  std::unique_ptr<CDocTemplate> imageTemplate_;
  std::unique_ptr<CMainFrame> mainFrame_;
  std::vector<std::unique_ptr<CDocument>> documents_;
  int untitledCount_ = 0;
};

}  // namespace corvane
