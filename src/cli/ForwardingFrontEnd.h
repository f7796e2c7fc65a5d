#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ui/FrontEnd.h"

namespace corvane {

// A front end that passes everything on to another one: the base of those that only watch.
class ForwardingFrontEnd : public FrontEnd {
 public:
  explicit ForwardingFrontEnd(FrontEnd& inner) : inner_(inner) {}

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
  FrontEnd& inner_;
};

}  // namespace corvane
