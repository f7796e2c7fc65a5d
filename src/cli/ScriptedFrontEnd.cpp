#include "cli/ScriptedFrontEnd.h"

#include <algorithm>

#include "cli/FormAnswer.h"
#include "cli/ScriptFile.h"
#include "forms/ChosenPath.h"
#include "forms/FieldText.h"
#include "io/NumberText.h"
#include "io/Paths.h"

namespace corvane {

namespace {

constexpr const char* kCancel = "@cancel";
constexpr const char* kAccept = "@ok";
constexpr int kMostMissing = 2;

// How the prompts are named to a person.
std::string PromptName(const FileChooser& chooser) {
  std::string name = chooser.mode == FileChooser::Mode::Open ? "the file to open" : "the file to save";
  if (!chooser.title.empty()) name += ", \"" + chooser.title + "\"";
  const auto entries = FilterEntries(chooser.filter);
  if (!entries.empty()) name += ", " + entries.front().name;
  return name;
}

std::string PromptName(const std::string& title, double shown) {
  return "the number \"" + title + "\", shown: " + ShortestText(shown);
}

std::string PromptName(const Form& form) {
  return "the form " + form.name + " \"" + form.title + "\", shown: " + FormAnswer(form);
}

// What a chooser accepts as it is shown: its default name, unless that only chooses what the folder lists.
std::string ShownName(const FileChooser& chooser) {
  return chooser.defaultName.find_first_of("*?") == std::string::npos ? chooser.defaultName : "";
}

std::vector<std::string> SplitPaths(std::string_view answer) {
  std::vector<std::string> paths;
  while (!answer.empty()) {
    const std::size_t end = std::min(answer.find('|'), answer.size());
    if (end > 0) paths.emplace_back(answer.substr(0, end));
    answer.remove_prefix(std::min(end + 1, answer.size()));
  }
  return paths;
}

// The paths that a typed name stands for; none for an empty one.
std::vector<std::string> ChosenPaths(const FileChooser& chooser, const std::string& answer) {
  std::vector<std::string> paths;
  if (chooser.multiple) {
    paths = SplitPaths(answer);
  } else if (!answer.empty()) {
    paths.push_back(answer);
  }
  for (std::string& path : paths) path = ChosenPath(chooser, path);
  return paths;
}

// What the chooser says to paths that it does not take.
std::optional<std::string> RefusedPaths(const FileChooser& chooser, const std::vector<std::string>& paths) {
  if (paths.empty()) return "Please enter a file name.";
  if (!chooser.mustExist) return std::nullopt;
  const auto missing = std::find_if_not(paths.begin(), paths.end(), FileExists);
  if (missing == paths.end()) return std::nullopt;
  return *missing + ": File not found. Please verify the correct file name was given.";
}

}  // namespace

ScriptedFrontEnd::ScriptedFrontEnd(Console& console, Options options, std::function<void()> stop)
    : console_(console), options_(options), stop_(std::move(stop)) {}

void ScriptedFrontEnd::SetAnswers(std::vector<std::string> answers, const std::string& place) {
  place_ = place;
  answers_ = std::move(answers);
  next_ = 0;
  nMissing_ = 0;
}

bool ScriptedFrontEnd::FinishAnswers() {
  const bool fitted = nMissing_ == 0 && next_ == answers_.size();
  for (; next_ < answers_.size(); ++next_) {
    Report("no prompt asked for the answer " + ShownText(answers_[next_]));
  }
  return fitted;
}

std::optional<std::vector<std::string>> ScriptedFrontEnd::ChooseFiles(const FileChooser& chooser) {
  while (const auto answer = NextAnswer(PromptName(chooser))) {
    auto paths = ChosenPaths(chooser, *answer == kAccept ? ShownName(chooser) : *answer);
    const auto refusal = RefusedPaths(chooser, paths);
    if (!refusal) return paths;
    Refuse(*answer, *refusal);
  }
  return std::nullopt;
}

std::optional<double> ScriptedFrontEnd::AskValue(const std::string& title, double shown) {
  while (const auto answer = NextAnswer(PromptName(title, shown))) {
    FormField field;
    field.value = shown;
    const auto refusal = SetFieldFromText(field, *answer == kAccept ? FieldText(field) : *answer);
    if (!refusal) return std::get<double>(field.value);
    Refuse(*answer, *refusal);
  }
  return std::nullopt;
}

bool ScriptedFrontEnd::AskForm(Form& form) {
  while (const auto answer = NextAnswer(PromptName(form))) {
    const auto refusal = ApplyFormAnswer(form, *answer == kAccept ? "" : *answer);
    if (!refusal) return true;
    Refuse(*answer, *refusal);
  }
  return false;
}

bool ScriptedFrontEnd::ShowMessage(MessageKind kind, MessageButtons, const std::string& text) {
  const std::string line = text.substr(0, text.find_last_not_of("\r\n") + 1);
  EndLogLine();
  console_.ErrorLine(std::string(MessageKindName(kind)) + ": " + line);
  return true;
}

SaveChoice ScriptedFrontEnd::AskSaveChanges(const std::string& documentTitle) {
  ShowWarning(documentTitle + " was closed without saving its changes.");
  return SaveChoice::Discard;
}

void ScriptedFrontEnd::SetStatusText(int pane, const std::string& text) {
  if (pane != 0 || options_.quiet) return;
  EndLogLine();
  console_.Status(text);
}

void ScriptedFrontEnd::Print(const std::string& text) {
  console_.Print(text);
}

void ScriptedFrontEnd::Trace(const std::string& text) {
  if (!options_.trace) return;
  EndLogLine();
  console_.ErrorText(text);
}

void ScriptedFrontEnd::AppendToLog(const LogView&, const std::string& text) {
  if (options_.quiet || text.empty()) return;
  console_.ErrorText(text);
  logLineOpen_ = !text.ends_with('\n');
}

void ScriptedFrontEnd::EndLogLine() {
  if (logLineOpen_) console_.ErrorText("\n");
  logLineOpen_ = false;
}

std::optional<std::string> ScriptedFrontEnd::NextAnswer(const std::string& prompt) {
  if (next_ == answers_.size()) {
    Report("no answer left for " + prompt);
    if (++nMissing_ == kMostMissing) stop_();
    return std::nullopt;
  }
  const std::string& answer = answers_[next_++];
  if (answer == kCancel) return std::nullopt;
  return answer;
}

void ScriptedFrontEnd::Report(const std::string& text) {
  EndLogLine();
  console_.ErrorLine("corvane-cli: " + place_ + text);
}

void ScriptedFrontEnd::Refuse(const std::string& answer, const std::string& words) {
  Report("refused " + ShownText(answer) + ": " + words);
}

}  // namespace corvane
