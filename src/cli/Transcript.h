#pragma once

#include <fstream>
#include <nlohmann/json_fwd.hpp>
#include <set>
#include <string>

#include "cli/ForwardingFrontEnd.h"

namespace corvane {

// Writes the events of a session as JSON objects, one a line, at once. Prompts are written with their answer,
// null for Cancel and for a prompt at which the session stops; numbers that are not finite as the texts
// "inf", "-inf" and "nan"; bytes that are no UTF-8 as the replacement character.
class Transcript : public ForwardingFrontEnd {
 public:
  Transcript(FrontEnd& inner, const std::string& path);

  // Whether everything so far is in the file.
  bool IsGood() const { return file_.good(); }

  std::optional<std::vector<std::string>> ChooseFiles(const FileChooser& chooser) override;
  std::optional<double> AskValue(const std::string& title, double shown) override;
  bool AskForm(Form& form) override;
  bool ShowMessage(MessageKind kind, MessageButtons buttons, const std::string& text) override;
  void SetStatusText(int pane, const std::string& text) override;
  // Written where the cursor changes, not for nested calls.
  void SetWaitCursor(bool on) override;
  void Print(const std::string& text) override;
  void Trace(const std::string& text) override;
  void OpenWindow(WindowView& view) override;
  void ShowOverlay(WindowView& view, const OverlayCounts& counts) override;
  void CloseWindow(WindowView& view) override;
  // A graph is a window of its own, written when it is first shown.
  bool ShowGraph(WindowView& view, const GraphView& graph) override;
  void PlotGraph(const GraphView& graph, int element) override;
  void OpenLog(const LogView& log) override;
  void AppendToLog(const LogView& log, const std::string& text) override;
  void CommandStarted(const std::string& name) override;
  void CommandEnded(const std::string& name, CommandResult result) override;
  void FileGiven(const FileChooser& chooser, const std::string& path) override;

 private:
  void Write(const nlohmann::ordered_json& event);
  void WriteWindow(WindowKind kind, const std::string& title, PixelSize size);
  void WriteChoice(const FileChooser& chooser, const nlohmann::ordered_json& answer);

  std::ofstream file_;
  int waitDepth_ = 0;
  std::set<const WindowView*> graphs_;  // the windows that have one
};

}  // namespace corvane
