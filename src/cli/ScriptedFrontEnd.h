#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/Console.h"
#include "ui/FrontEnd.h"

namespace corvane {

// The front end of the command line: prompts take the next answer of a list, texts go to a console. It shows
// no windows. A refused answer is reported in the form's own words and the prompt takes the next one.
class ScriptedFrontEnd : public FrontEnd {
 public:
  struct Options {
    bool quiet = false;  // no status texts
    bool trace = false;  // the debug stream goes to standard error
  };

  // `stop` ends the work when a command goes on asking without answers; it must not return.
  ScriptedFrontEnd(Console& console, Options options, std::function<void()> stop);

  // The answers of the command that follows. `place` stands before what is said about them: "s.txt:3: X: ".
  void SetAnswers(std::vector<std::string> answers, const std::string& place = "");

  // Names the answers that no prompt asked for. False if there are any, or if a prompt lacked one.
  bool FinishAnswers();

  std::optional<std::vector<std::string>> ChooseFiles(const FileChooser& chooser) override;
  std::optional<double> AskValue(const std::string& title, double shown) override;
  bool AskForm(Form& form) override;
  // A box with OK and Cancel takes OK.
  bool ShowMessage(MessageKind kind, MessageButtons buttons, const std::string& text) override;
  // Changes are dropped, with a warning box through the installed front end.
  SaveChoice AskSaveChanges(const std::string& documentTitle) override;
  void SetStatusText(int pane, const std::string& text) override;
  void SetWaitCursor(bool) override {}
  void Print(const std::string& text) override;
  void Trace(const std::string& text) override;
  void OpenWindow(WindowView&) override {}
  void CloseWindow(WindowView&) override {}
  void ActivateWindow(WindowView&) override {}
  void RepaintWindow(WindowView&, bool) override {}
  void ShowOverlay(WindowView&, const OverlayCounts&) override {}
  void UpdateWindowFrame(WindowView&) override {}
  bool ShowGraph(WindowView&, const GraphView&) override { return true; }
  void PlotGraph(const GraphView&, int) override {}
  void ResizeGraph(const GraphView&) override {}
  void OpenLog(const LogView&) override {}
  void AppendToLog(const LogView& log, const std::string& text) override;
  void CloseLog(const LogView&) override { EndLogLine(); }
  void CommandStarted(const std::string&) override {}
  void CommandEnded(const std::string&, CommandResult) override {}
  void FileGiven(const FileChooser&, const std::string&) override {}
  // A clipboard of the session's own.
  void PutBitmap(const std::vector<std::uint8_t>& dib) override { clipboard_ = dib; }
  bool HasBitmap() override { return !clipboard_.empty(); }
  std::vector<std::uint8_t> GetBitmap() override { return clipboard_; }

 private:
  std::optional<std::string> NextAnswer(const std::string& prompt);
  // Ends the line of a log text that has none, so that nothing else stands in it.
  void EndLogLine();
  void Report(const std::string& text);
  void Refuse(const std::string& answer, const std::string& words);

  Console& console_;
  Options options_;
  std::function<void()> stop_;
  std::string place_;
  std::vector<std::string> answers_;
  std::size_t next_ = 0;  // the first answer not yet taken
  int nMissing_ = 0;      // prompts of this command that found no answer
  bool logLineOpen_ = false;
  std::vector<std::uint8_t> clipboard_;
};

}  // namespace corvane
