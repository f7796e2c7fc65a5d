#pragma once

#include <QPointer>
#include <QString>
#include <map>
#include <string>

#include "ui/FrontEnd.h"

class QDialog;
class QWidget;

namespace corvane {

class CLogWindow;
class CMainWindow;

// The front end in windows: dialogs, boxes, the main window.
class QtFrontEnd : public FrontEnd {
 public:
  QtFrontEnd();

  // The window that shows documents and status; without one dialogs stand alone and nothing else shows.
  void SetMainWindow(CMainWindow* mainWindow) { mainWindow_ = mainWindow; }

  // Whether the debug stream goes to standard error.
  void SetTracing(bool on) { tracing_ = on; }

  std::optional<std::vector<std::string>> ChooseFiles(const FileChooser& chooser) override;
  std::optional<double> AskValue(const std::string& title, double shown) override;
  bool AskForm(Form& form) override;
  bool ShowMessage(MessageKind kind, MessageButtons buttons, const std::string& text) override;
  SaveChoice AskSaveChanges(const std::string& documentTitle) override;

  void SetStatusText(int pane, const std::string& text) override;
  void SetWaitCursor(bool on) override;
  void Print(const std::string& text) override;
  // Shows on standard error with SetTracing(true).
  void Trace(const std::string& text) override;

  void OpenWindow(WindowView& view) override;
  void CloseWindow(WindowView& view) override;
  void ActivateWindow(WindowView& view) override;
  void RepaintWindow(WindowView& view, bool atOnce) override;
  void ShowOverlay(WindowView& view, const OverlayCounts& counts) override;
  void UpdateWindowFrame(WindowView& view) override;
  bool ShowGraph(WindowView& view, const GraphView& graph) override;
  void PlotGraph(const GraphView& graph, int element) override;
  void ResizeGraph(const GraphView& graph) override;
  void OpenLog(const LogView& log) override;
  void AppendToLog(const LogView& log, const std::string& text) override;
  void CloseLog(const LogView& log) override;

  void CommandStarted(const std::string& name) override;
  void CommandEnded(const std::string& name, CommandResult result) override;
  void FileGiven(const FileChooser&, const std::string&) override {}
  void PutBitmap(const std::vector<std::uint8_t>& dib) override;
  bool HasBitmap() override;
  std::vector<std::uint8_t> GetBitmap() override;

 private:
  QWidget* DialogParent() const;
  int Show(QDialog& dialog);
  // Paints what the log windows have not shown yet: the command may say nothing more for long.
  void ShowLogs();
  std::optional<std::string> Browse(const FileChooser& chooser);

  CMainWindow* mainWindow_ = nullptr;
  QString folder_;   // where the next chooser opens
  QString command_;  // the item of the running command, "" for none
  std::map<const LogView*, QPointer<CLogWindow>> logs_;
  bool tracing_ = false;
  int waiting_ = 0;
};

}  // namespace corvane
