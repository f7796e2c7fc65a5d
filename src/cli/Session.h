#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "cli/Console.h"
#include "cli/PictureBook.h"
#include "cli/ScriptFile.h"
#include "cli/ScriptedFrontEnd.h"
#include "cli/Transcript.h"
#include "shell/CorvaneApp.h"

namespace corvane {

// The exit statuses of the command line.
enum class ExitStatus {
  Done = 0,
  Failed = 1,     // the command ended on one of its failure paths
  Cancelled = 2,  // a prompt was cancelled and the command ended for that
  Answers = 3,    // answers and prompts did not fit
  Disabled = 4,
  Usage = 64,  // unknown command, option or script syntax
};

struct SessionOptions {
  std::string openFile;        // the document to open first, "" for an empty one
  std::string transcriptFile;  // "" for none
  std::string picturesFolder;  // "" for none
  bool trace = false;
  bool quiet = false;
  bool keepGoing = false;
};

// One session of the program without a display: a document that is open from the start, and commands on it.
class Session {
 public:
  Session(std::span<const CommandRow> rows, SessionOptions options, Console& console);

  // Runs the commands in order and returns the first status that is not Done, at which the session ends
  // unless keepGoing is set. Unsaved changes are dropped at its end, with a warning. All names are looked up
  // before anything runs. `scriptName` stands before the line numbers of messages; it is "" for a command
  // that stands in no script.
  ExitStatus Run(const std::vector<ScriptCommand>& commands, const std::string& scriptName);

 private:
  std::optional<std::vector<const CommandRow*>> FindRows(const std::vector<ScriptCommand>& commands);
  bool Start();
  bool OpenFirstDocument();
  ExitStatus RunAll(const std::vector<ScriptCommand>& commands, const std::vector<const CommandRow*>& rows);
  ExitStatus RunOne(const ScriptCommand& command, const CommandRow& row);
  bool SavePictures();
  void WarnOfUnsavedChanges();
  std::string Place(const ScriptCommand& command) const;
  std::string Place(const ScriptCommand& command, const CommandRow& row) const;
  void Report(const std::string& text);

  std::span<const CommandRow> rows_;
  SessionOptions options_;
  Console& console_;
  std::string scriptName_;
  ScriptedFrontEnd frontEnd_;
  // From here on each one uses those above it.
  std::unique_ptr<Transcript> transcript_;
  std::unique_ptr<PictureBook> pictures_;
  std::optional<InstalledFrontEnd> installed_;
  std::unique_ptr<CCorvaneApp> app_;
};

}  // namespace corvane
