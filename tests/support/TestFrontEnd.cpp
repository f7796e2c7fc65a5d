#include "support/TestFrontEnd.h"

#include <algorithm>
#include <sstream>

namespace corvane {

namespace {

template <typename T>
std::optional<T> TakeFirst(std::deque<T>& answers) {
  if (answers.empty()) return std::nullopt;
  T first = answers.front();
  answers.pop_front();
  return first;
}

}  // namespace

std::vector<std::string> TestFrontEnd::EventsWith(const std::string& prefix) const {
  std::vector<std::string> found;
  std::copy_if(events.begin(), events.end(), std::back_inserter(found),
               [&](const std::string& event) { return event.starts_with(prefix); });
  return found;
}

std::optional<std::vector<std::string>> TestFrontEnd::ChooseFiles(const FileChooser& chooser) {
  events.push_back((chooser.mode == FileChooser::Mode::Open ? "open: " : "save: ") + chooser.filter);
  choosers.push_back(chooser);
  return TakeFirst(files);
}

std::optional<double> TestFrontEnd::AskValue(const std::string& title, double shown) {
  std::ostringstream line;
  line << "value: " << title << " " << shown;
  events.push_back(line.str());
  return TakeFirst(values);
}

bool TestFrontEnd::AskForm(Form& form) {
  events.push_back("form: " + form.name);
  shownForms.push_back(form);
  const auto answer = TakeFirst(forms);
  return answer && (*answer)(form);
}

bool TestFrontEnd::ShowMessage(MessageKind kind, MessageButtons buttons, const std::string& text) {
  events.push_back(std::string("message ") + MessageKindName(kind) +
                   (buttons == MessageButtons::OkCancel ? " ok-cancel: " : ": ") + text);
  return true;
}

SaveChoice TestFrontEnd::AskSaveChanges(const std::string& documentTitle) {
  events.push_back("save-changes: " + documentTitle);
  return TakeFirst(saveChoices).value_or(SaveChoice::Cancel);
}

void TestFrontEnd::SetStatusText(int pane, const std::string& text) {
  events.push_back("status " + std::to_string(pane) + ": " + text);
}

void TestFrontEnd::SetWaitCursor(bool on) {
  waitDepth += on ? 1 : -1;
}
void TestFrontEnd::Print(const std::string& text) {
  events.push_back("print: " + text);
}
void TestFrontEnd::Trace(const std::string& text) {
  events.push_back("trace: " + text);
}
void TestFrontEnd::OpenWindow(WindowView& view) {
  events.push_back("open-window: " + view.GetTitle());
}
void TestFrontEnd::CloseWindow(WindowView& view) {
  events.push_back("close-window: " + view.GetTitle());
}
void TestFrontEnd::ActivateWindow(WindowView& view) {
  events.push_back("activate-window: " + view.GetTitle());
}
void TestFrontEnd::RepaintWindow(WindowView& view, bool) {
  events.push_back("repaint: " + view.GetTitle());
}
void TestFrontEnd::ShowOverlay(WindowView& view, const OverlayCounts& counts) {
  events.push_back("overlay: " + view.GetTitle() + " " + std::to_string(counts.points) + " " +
                   std::to_string(counts.polylines) + " " + std::to_string(counts.labels));
}

void TestFrontEnd::UpdateWindowFrame(WindowView&) {}
bool TestFrontEnd::ShowGraph(WindowView&, const GraphView& graph) {
  events.push_back("show-graph: " + graph.GetTitle());
  return canMakeGraphs;
}
void TestFrontEnd::PlotGraph(const GraphView&, int element) {
  events.push_back("plot: " + std::to_string(element));
}
void TestFrontEnd::ResizeGraph(const GraphView& graph) {
  events.push_back("resize-graph: " + std::to_string(graph.GetSize().width) + " x " +
                   std::to_string(graph.GetSize().height));
}
void TestFrontEnd::OpenLog(const LogView& log) {
  events.push_back("open-log: " + log.GetTitle());
}
void TestFrontEnd::AppendToLog(const LogView&, const std::string& text) {
  events.push_back("log: " + text);
}
void TestFrontEnd::CloseLog(const LogView& log) {
  events.push_back("close-log: " + log.GetTitle());
}
void TestFrontEnd::CommandStarted(const std::string& name) {
  events.push_back("command: " + name);
}

void TestFrontEnd::CommandEnded(const std::string& name, CommandResult result) {
  events.push_back("end: " + name + " " + CommandResultName(result));
}

void TestFrontEnd::FileGiven(const FileChooser&, const std::string& path) {
  events.push_back("given: " + path);
}

void TestFrontEnd::PutBitmap(const std::vector<std::uint8_t>& dib) {
  clipboard = dib;
}

bool TestFrontEnd::HasBitmap() {
  return !clipboard.empty();
}

std::vector<std::uint8_t> TestFrontEnd::GetBitmap() {
  return clipboard;
}

}  // namespace corvane
