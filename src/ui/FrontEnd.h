#pragma once

#include <optional>
#include <string>

#include "ui/Clipboard.h"
#include "ui/Feedback.h"
#include "ui/Prompts.h"
#include "ui/Windows.h"

namespace corvane {

enum class CommandResult { Done, Failed, Cancelled };

// The name of a result in transcripts: "done", "failed", "cancelled".
const char* CommandResultName(CommandResult result);

// Everything that a front end does for the program. Exactly one is installed at a time.
class FrontEnd : public Prompts, public Feedback, public Windows, public Clipboard {
 public:
  // The bounds of a command, named with its whole menu path ("TIN > Create TIN").
  virtual void CommandStarted(const std::string& name) = 0;
  virtual void CommandEnded(const std::string& name, CommandResult result) = 0;

  // A file chooser of the running command that was not shown, because its answer was given already: a path
  // from the recent-file list, dropped on the window, or from the command line.
  virtual void FileGiven(const FileChooser& chooser, const std::string& path) = 0;
};

// The installed front end. Without one, prompts are cancelled and nothing is shown.
FrontEnd& Ui();

// Installs a front end for its own lifetime, and the one before it again at the end.
class InstalledFrontEnd {
 public:
  explicit InstalledFrontEnd(FrontEnd& frontEnd);
  ~InstalledFrontEnd();
  InstalledFrontEnd(const InstalledFrontEnd&) = delete;
  InstalledFrontEnd& operator=(const InstalledFrontEnd&) = delete;

 private:
  FrontEnd* previous_;
};

// The wait cursor for a scope.
class WaitCursor {
 public:
  WaitCursor() { Ui().SetWaitCursor(true); }
  ~WaitCursor() { End(); }
  WaitCursor(const WaitCursor&) = delete;
  WaitCursor& operator=(const WaitCursor&) = delete;

  void End();

 private:
  bool on_ = true;
};

// Boxes with an OK button.
void ShowMessage(const std::string& text);
void ShowWarning(const std::string& text);
void ShowStop(const std::string& text);
void ShowInformation(const std::string& text);

// One file from a chooser, or nothing on Cancel.
std::optional<std::string> ChooseFile(const FileChooser& chooser);

}  // namespace corvane
