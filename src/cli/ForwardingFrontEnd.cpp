#include "cli/ForwardingFrontEnd.h"

namespace corvane {

std::optional<std::vector<std::string>> ForwardingFrontEnd::ChooseFiles(const FileChooser& chooser) {
  return inner_.ChooseFiles(chooser);
}

std::optional<double> ForwardingFrontEnd::AskValue(const std::string& title, double shown) {
  return inner_.AskValue(title, shown);
}

bool ForwardingFrontEnd::AskForm(Form& form) {
  return inner_.AskForm(form);
}

bool ForwardingFrontEnd::ShowMessage(MessageKind kind, MessageButtons buttons, const std::string& text) {
  return inner_.ShowMessage(kind, buttons, text);
}

SaveChoice ForwardingFrontEnd::AskSaveChanges(const std::string& documentTitle) {
  return inner_.AskSaveChanges(documentTitle);
}

void ForwardingFrontEnd::SetStatusText(int pane, const std::string& text) {
  inner_.SetStatusText(pane, text);
}
void ForwardingFrontEnd::SetWaitCursor(bool on) {
  inner_.SetWaitCursor(on);
}
void ForwardingFrontEnd::Print(const std::string& text) {
  inner_.Print(text);
}
void ForwardingFrontEnd::Trace(const std::string& text) {
  inner_.Trace(text);
}

void ForwardingFrontEnd::OpenWindow(WindowView& view) {
  inner_.OpenWindow(view);
}
void ForwardingFrontEnd::CloseWindow(WindowView& view) {
  inner_.CloseWindow(view);
}
void ForwardingFrontEnd::ActivateWindow(WindowView& view) {
  inner_.ActivateWindow(view);
}
void ForwardingFrontEnd::RepaintWindow(WindowView& view, bool atOnce) {
  inner_.RepaintWindow(view, atOnce);
}
void ForwardingFrontEnd::ShowOverlay(WindowView& view, const OverlayCounts& counts) {
  inner_.ShowOverlay(view, counts);
}

void ForwardingFrontEnd::UpdateWindowFrame(WindowView& view) {
  inner_.UpdateWindowFrame(view);
}

bool ForwardingFrontEnd::ShowGraph(WindowView& view, const GraphView& graph) {
  return inner_.ShowGraph(view, graph);
}
void ForwardingFrontEnd::PlotGraph(const GraphView& graph, int element) {
  inner_.PlotGraph(graph, element);
}
void ForwardingFrontEnd::ResizeGraph(const GraphView& graph) {
  inner_.ResizeGraph(graph);
}

void ForwardingFrontEnd::OpenLog(const LogView& log) {
  inner_.OpenLog(log);
}
void ForwardingFrontEnd::AppendToLog(const LogView& log, const std::string& text) {
  inner_.AppendToLog(log, text);
}
void ForwardingFrontEnd::CloseLog(const LogView& log) {
  inner_.CloseLog(log);
}

void ForwardingFrontEnd::CommandStarted(const std::string& name) {
  inner_.CommandStarted(name);
}

void ForwardingFrontEnd::CommandEnded(const std::string& name, CommandResult result) {
  inner_.CommandEnded(name, result);
}

void ForwardingFrontEnd::FileGiven(const FileChooser& chooser, const std::string& path) {
  inner_.FileGiven(chooser, path);
}

void ForwardingFrontEnd::PutBitmap(const std::vector<std::uint8_t>& dib) {
  inner_.PutBitmap(dib);
}

bool ForwardingFrontEnd::HasBitmap() {
  return inner_.HasBitmap();
}

std::vector<std::uint8_t> ForwardingFrontEnd::GetBitmap() {
  return inner_.GetBitmap();
}

}  // namespace corvane
