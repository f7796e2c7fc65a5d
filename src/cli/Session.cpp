#include "cli/Session.h"

#include "shell/CorvaneView.h"

namespace corvane {

namespace {

// Ends a command that goes on asking without answers. It is the one exception that crosses the handlers:
// nothing handles it before the session's end, and on its way files that are half written are removed.
struct SessionStopped {};

ExitStatus StatusOf(CommandResult result) {
  switch (result) {
    case CommandResult::Done:
      return ExitStatus::Done;
    case CommandResult::Failed:
      return ExitStatus::Failed;
    case CommandResult::Cancelled:
      return ExitStatus::Cancelled;
  }
  return ExitStatus::Failed;
}

std::string DisabledText(const CommandRow& row) {
  const std::string name = Quoted(CommandName(row)) + " is disabled: ";
  if (!HasHandler(row)) return name + "nothing serves it.";
  if (std::holds_alternative<ViewHandler>(row.handler)) return name + "it needs an open TIN document.";
  return name + "it needs an open document.";
}

std::string UnknownText(const std::string& typed, const CommandLookup& lookup) {
  std::string text = lookup.ambiguous ? "several commands are named " : "unknown command ";
  text += ShownText(typed) + (lookup.ambiguous ? ":" : "; the nearest names:");
  for (const std::string& name : lookup.nearestNames) text += "\n  " + name;
  return text;
}

}  // namespace

Session::Session(std::span<const CommandRow> rows, SessionOptions options, Console& console)
    : rows_(rows),
      options_(std::move(options)),
      console_(console),
      frontEnd_(console, {options_.quiet, options_.trace}, [] { throw SessionStopped(); }) {}

ExitStatus Session::Run(const std::vector<ScriptCommand>& commands, const std::string& scriptName) {
  scriptName_ = scriptName;
  const auto rows = FindRows(commands);
  if (!rows) return ExitStatus::Usage;
  if (!Start()) return ExitStatus::Failed;
  ExitStatus status = RunAll(commands, *rows);
  WarnOfUnsavedChanges();
  if (transcript_ && !transcript_->IsGood()) {
    Report("the transcript " + options_.transcriptFile + " could not be written.");
    if (status == ExitStatus::Done) status = ExitStatus::Failed;
  }
  return status;
}

std::optional<std::vector<const CommandRow*>> Session::FindRows(const std::vector<ScriptCommand>& commands) {
  std::vector<const CommandRow*> rows;
  for (const ScriptCommand& command : commands) {
    const CommandLookup lookup = FindCommand(rows_, command.name);
    if (!lookup.row) {
      Report(Place(command) + UnknownText(command.name, lookup));
      return std::nullopt;
    }
    rows.push_back(lookup.row);
  }
  return rows;
}

bool Session::Start() {
  FrontEnd* outermost = &frontEnd_;
  if (!options_.picturesFolder.empty()) {
    pictures_ = std::make_unique<PictureBook>(*outermost, options_.picturesFolder);
    outermost = pictures_.get();
    if (!pictures_->MakeFolder()) {
      Report("the folder " + options_.picturesFolder + " can't be written.");
      return false;
    }
  }
  if (!options_.transcriptFile.empty()) {
    transcript_ = std::make_unique<Transcript>(*outermost, options_.transcriptFile);
    outermost = transcript_.get();
    if (!transcript_->IsGood()) {
      Report("the transcript " + options_.transcriptFile + " can't be written.");
      return false;
    }
  }
  installed_.emplace(*outermost);
  // The recent-file list belongs to the person at the window.
  app_ = std::make_unique<CCorvaneApp>(rows_, "");
  if (!app_->InitInstance(options_.openFile)) return false;
  return options_.openFile.empty() || OpenFirstDocument();
}

bool Session::OpenFirstDocument() {
  CCorvaneView* view = app_->GetMainFrame().GetTinView();
  if (view && view->GetDocument().GetTIN().nTriangles > 0) return true;
  Report("no TIN could be read from " + options_.openFile + ".");
  return false;
}

ExitStatus Session::RunAll(const std::vector<ScriptCommand>& commands,
                           const std::vector<const CommandRow*>& rows) {
  ExitStatus first = ExitStatus::Done;
  std::size_t i = 0;
  try {
    for (; i < commands.size(); ++i) {
      const ExitStatus status = RunOne(commands[i], *rows[i]);
      if (first == ExitStatus::Done) first = status;
      if (status != ExitStatus::Done && !options_.keepGoing) break;
    }
  } catch (const SessionStopped&) {
    Report(Place(commands[i], *rows[i]) + "stopped: a second prompt of one command found no answer.");
    if (first == ExitStatus::Done) first = ExitStatus::Answers;
  }
  return first;
}

ExitStatus Session::RunOne(const ScriptCommand& command, const CommandRow& row) {
  if (!app_->IsEnabled(row)) {
    Report(Place(command) + DisabledText(row));
    return ExitStatus::Disabled;
  }
  frontEnd_.SetAnswers(command.answers, Place(command, row));
  const CommandResult result = app_->RunCommand(row);
  const bool answersFitted = frontEnd_.FinishAnswers();
  const bool picturesSaved = SavePictures();
  if (result != CommandResult::Done) Report(Place(command, row) + CommandResultName(result));
  if (!answersFitted) return ExitStatus::Answers;
  return picturesSaved || result != CommandResult::Done ? StatusOf(result) : ExitStatus::Failed;
}

bool Session::SavePictures() {
  if (!pictures_) return true;
  const PictureBook::SavedPictures saved = pictures_->Save();
  for (const std::string& path : saved.paths) {
    if (!options_.quiet) console_.ErrorLine("picture: " + path);
  }
  for (const std::string& failure : saved.failures) Report(failure);
  return saved.failures.empty();
}

void Session::WarnOfUnsavedChanges() {
  for (const auto& document : app_->GetDocuments()) {
    if (document->IsModified()) frontEnd_.AskSaveChanges(document->GetTitle());
  }
}

// "day.txt:57: ", or "" for a command that stands in no script.
std::string Session::Place(const ScriptCommand& command) const {
  return scriptName_.empty() ? "" : scriptName_ + ":" + std::to_string(command.line) + ": ";
}

// "day.txt:57: TIN > Create TIN: "
std::string Session::Place(const ScriptCommand& command, const CommandRow& row) const {
  return Place(command) + CommandName(row) + ": ";
}

void Session::Report(const std::string& text) {
  console_.ErrorLine("corvane-cli: " + text);
}

}  // namespace corvane
