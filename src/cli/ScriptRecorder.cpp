#include "cli/ScriptRecorder.h"

#include <algorithm>
#include <filesystem>
#include <utility>

#include "cli/FormAnswer.h"
#include "cli/ScriptFile.h"
#include "io/NumberText.h"

namespace corvane {

namespace {

constexpr const char* kCancel = "@cancel";

// The first line of every record.
constexpr const char* kHeading = "# Recorded by corvane. To replay: corvane-cli script --keep-going FILE";

// The answer that gives these paths again. A name that begins like an answer of its own gets a folder.
std::string PathsAnswer(const std::vector<std::string>& paths) {
  std::string answer;
  for (const std::string& path : paths) answer += (answer.empty() ? "" : "|") + path;
  return answer.starts_with('@') ? "./" + answer : answer;
}

constexpr const char* kLineEnds = "\r\n";

std::string OneLine(std::string text) {
  std::replace_if(
      text.begin(), text.end(), [](char c) { return c == '\r' || c == '\n'; }, ' ');
  return text;
}

bool ActsOnDocument(const std::string& entry) {
  const auto isOf = [&](const char* name) { return entry.starts_with(ScriptWord(name)); };
  return isOf("File > Save") || isOf("File > Save As") || isOf("File > Close");
}

// A script has no way to give an answer that holds a line end.
std::string ScriptLine(const std::string& entry) {
  if (entry.find_first_of(kLineEnds) == entry.npos) return entry + '\n';
  return "# Left out, because an answer holds a line end: " + OneLine(entry) + '\n';
}

}  // namespace

bool ScriptRecorder::MayReplace(const std::string& path) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error)) return true;
  if (std::filesystem::file_size(path, error) == 0) return true;
  std::ifstream file(path, std::ios::binary);
  std::string line;
  return std::getline(file, line) && line == kHeading;
}

ScriptRecorder::ScriptRecorder(FrontEnd& inner, const std::string& path)
    : ForwardingFrontEnd(inner), path_(path), file_(path, std::ios::binary | std::ios::trunc) {
  const std::string head =
      kHeading + std::string("\n# (--keep-going passes over commands that failed or were cancelled.)\n");
  file_ << head << std::flush;
  entryStart_ = static_cast<std::int64_t>(head.size());
}

void ScriptRecorder::NoteActivation(const std::string& path, const std::string& title) {
  saving_ = false;
  isAdrift_ = path.empty();
  if (isAdrift_) {
    BeginEntry("# The window on " + OneLine(title) + " became the active one.");
  } else {
    BeginEntry(ScriptWord("File > Open") + ' ' + ScriptWord(PathsAnswer({path})));
  }
}

// A command opens its window in the script, too.
void ScriptRecorder::OpenWindow(WindowView& view) {
  if (inCommand_) isAdrift_ = false;
  ForwardingFrontEnd::OpenWindow(view);
}

std::vector<std::uint8_t> ScriptRecorder::GetBitmap() {
  BeginEntry("# A picture was pasted from the clipboard.");
  return ForwardingFrontEnd::GetBitmap();
}

std::optional<std::vector<std::string>> ScriptRecorder::ChooseFiles(const FileChooser& chooser) {
  auto paths = ForwardingFrontEnd::ChooseFiles(chooser);
  if (inCommand_ || saving_) AddAnswer(paths ? PathsAnswer(*paths) : kCancel);
  return paths;
}

std::optional<double> ScriptRecorder::AskValue(const std::string& title, double shown) {
  const auto value = ForwardingFrontEnd::AskValue(title, shown);
  if (inCommand_) AddAnswer(value ? ShortestText(*value) : kCancel);
  return value;
}

bool ScriptRecorder::AskForm(Form& form) {
  const bool accepted = ForwardingFrontEnd::AskForm(form);
  if (inCommand_) AddAnswer(accepted ? FormAnswer(form) : kCancel);
  return accepted;
}

SaveChoice ScriptRecorder::AskSaveChanges(const std::string& documentTitle) {
  const SaveChoice choice = ForwardingFrontEnd::AskSaveChanges(documentTitle);
  saving_ = choice == SaveChoice::Save && !inCommand_;
  saveAsked_ = inCommand_;
  if (saving_) BeginEntry(ScriptWord("File > Save"));
  if (inCommand_ && choice == SaveChoice::Save) {
    behind_ = std::exchange(entry_, ScriptWord("File > Save"));
    WriteEntry();
  }
  return choice;
}

void ScriptRecorder::CommandStarted(const std::string& name) {
  ForwardingFrontEnd::CommandStarted(name);
  inCommand_ = true;
  saving_ = false;
  BeginEntry(ScriptWord(name));
}

void ScriptRecorder::CommandEnded(const std::string& name, CommandResult result) {
  // No answer of a script can cancel a closing, so it must not be replayed.
  if (saveAsked_ && result != CommandResult::Done) {
    std::string& command = behind_.empty() ? entry_ : behind_;
    command = "# " + command + " was cancelled.";
    WriteEntry();
  }
  inCommand_ = false;
  ForwardingFrontEnd::CommandEnded(name, result);
  TellLoss();
}

void ScriptRecorder::FileGiven(const FileChooser& chooser, const std::string& path) {
  if (inCommand_) AddAnswer(PathsAnswer({path}));
  ForwardingFrontEnd::FileGiven(chooser, path);
}

void ScriptRecorder::BeginEntry(const std::string& command) {
  file_.seekp(0, std::ios::end);
  entryStart_ = file_.tellp();
  entry_ = command;
  isNote_ = isAdrift_ && ActsOnDocument(command);
  behind_.clear();
  saveAsked_ = false;
  WriteEntry();
}

void ScriptRecorder::AddAnswer(const std::string& answer) {
  entry_ += ' ' + ScriptWord(answer);
  WriteEntry();
}

void ScriptRecorder::WriteEntry() {
  const char* const mark = isNote_ ? "# " : "";
  std::string text = mark + ScriptLine(entry_);
  if (!behind_.empty()) text += mark + ScriptLine(behind_);
  file_.seekp(entryStart_);
  file_ << text << std::flush;
}

void ScriptRecorder::TellLoss() {
  if (IsGood() || lossTold_) return;
  lossTold_ = true;
  ForwardingFrontEnd::ShowMessage(MessageKind::Warning, MessageButtons::Ok,
                                  "The record " + path_ + " can not be written any more.");
}

}  // namespace corvane
