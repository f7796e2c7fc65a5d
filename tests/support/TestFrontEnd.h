#pragma once

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "ui/FrontEnd.h"

namespace corvane {

// A front end for tests of single classes: answers prompts from lists, cancels them when a list is empty, and
// records what it was asked and told, a line each.
class TestFrontEnd : public FrontEnd {
 public:
  TestFrontEnd() : installed_(*this) {}

  std::deque<std::vector<std::string>> files;    // answers of file choosers
  std::deque<double> values;                     // answers of AskValue
  std::deque<std::function<bool(Form&)>> forms;  // what to do with each form
  std::deque<SaveChoice> saveChoices;

  // "message warning: text" ("message warning ok-cancel: text" with two buttons), "open: filter", "value:
  // title 1", "form: ParamInput", "status 0: text", "print: text", "trace: text", "open-window: title",
  // "overlay: title 3 0 1", "show-graph: title", "plot: element", "log: text", "command: name", "end: name
  // done"
  std::vector<std::string> events;
  std::vector<FileChooser> choosers;
  std::vector<Form> shownForms;
  int waitDepth = 0;
  std::vector<std::uint8_t> clipboard;
  bool canMakeGraphs = true;

  // The recorded lines that begin with `prefix`.
  std::vector<std::string> EventsWith(const std::string& prefix) const;

  std::optional<std::vector<std::string>> ChooseFiles(const FileChooser& chooser) override;
  std::optional<double> AskValue(const std::string& title, double shown) override;
  bool AskForm(Form& form) override;
  bool ShowMessage(MessageKind kind, MessageButtons buttons, const std::string& text) override;
  SaveChoice AskSaveChanges(const std::string& documentTitle) override;
  void SetStatusText(int pane, const std::string& text) override;
  void SetWaitCursor(bool on) override;
  void Print(const std::string& text) override;
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
  void FileGiven(const FileChooser& chooser, const std::string& path) override;
  void PutBitmap(const std::vector<std::uint8_t>& dib) override;
  bool HasBitmap() override;
  std::vector<std::uint8_t> GetBitmap() override;

 private:
  InstalledFrontEnd installed_;
};

}  // namespace corvane
