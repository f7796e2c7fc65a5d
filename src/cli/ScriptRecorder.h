#pragma once

#include <cstdint>
#include <fstream>
#include <string>

#include "cli/ForwardingFrontEnd.h"

namespace corvane {

// Writes what a person does as a script: a line a command, with the answers that its prompts took and
// "@cancel" for each cancelled one. The file is a whole script after every answer, so that a crash loses
// nothing, not even the command it happened in. (An entry is rewritten in place and only ever grows.)
//
// Saving on the question about unsaved changes is written as the "File > Save" that it amounts to; a closing
// that was cancelled there, as a comment, and so is a command with an answer that does not fit on a line.
// A script can't bring the window on a bitmap to the front again, nor that on an unnamed document: what is
// done to such a document after a person has gone over to it (saving, closing) is written as a comment. A
// record that can't be written any more is told once, by a box after the command.
class ScriptRecorder : public ForwardingFrontEnd {
 public:
  // Whether a record may take the place of what is on the path: of nothing, of an empty file or an older
  // record, not of any other file.
  static bool MayReplace(const std::string& path);

  // Starts a new script file. `inner` is the front end that the person sees.
  ScriptRecorder(FrontEnd& inner, const std::string& path);

  // Whether everything so far is in the file.
  bool IsGood() const { return file_.good(); }

  // A person has made another document's window the active one. A script does that by opening the document's
  // path again; a document without a path is only noted, by its title.
  void NoteActivation(const std::string& path, const std::string& title);

  std::optional<std::vector<std::string>> ChooseFiles(const FileChooser& chooser) override;
  std::optional<double> AskValue(const std::string& title, double shown) override;
  bool AskForm(Form& form) override;
  SaveChoice AskSaveChanges(const std::string& documentTitle) override;
  void CommandStarted(const std::string& name) override;
  void CommandEnded(const std::string& name, CommandResult result) override;
  void FileGiven(const FileChooser& chooser, const std::string& path) override;
  void OpenWindow(WindowView& view) override;
  // What comes from the desktop's clipboard is only noted.
  std::vector<std::uint8_t> GetBitmap() override;

 private:
  void BeginEntry(const std::string& command);
  void AddAnswer(const std::string& answer);
  void WriteEntry();
  void TellLoss();

  std::string path_;
  std::ofstream file_;
  std::int64_t entryStart_ = 0;  // where the present entry begins in the file
  std::string entry_;            // the command that takes answers, and those so far
  std::string behind_;           // the command that follows a saving it asked about, or ""
  bool isNote_ = false;          // the entry is a comment
  bool isAdrift_ = false;        // a window is in front that the script can't have there
  bool saveAsked_ = false;       // the command has asked about unsaved changes
  bool inCommand_ = false;       // prompts that a key in a view opens belong to no command
  bool saving_ = false;          // a saving that belongs to no command: the window was closed by hand
  bool lossTold_ = false;
};

}  // namespace corvane
