#include "qt/QtFrontEnd.h"

#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QFileInfo>
#include <QMessageBox>
#include <QPushButton>
#include <cstdio>

#include "qt/ChooserDialog.h"
#include "qt/ClipboardBitmap.h"
#include "qt/FormDialog.h"
#include "qt/LogWindow.h"
#include "qt/MainWindow.h"
#include "qt/QtText.h"

namespace corvane {

namespace {

constexpr const char* kProgramName = "Corvane";

QMessageBox::Icon IconOf(MessageKind kind) {
  static constexpr QMessageBox::Icon kIcons[] = {QMessageBox::NoIcon, QMessageBox::Critical,
                                                 QMessageBox::Warning, QMessageBox::Information};
  return kIcons[static_cast<int>(kind)];
}

}  // namespace

QtFrontEnd::QtFrontEnd() : folder_(QDir::currentPath()) {}

// Boxes belong to the dialog that stands in front, if one does.
QWidget* QtFrontEnd::DialogParent() const {
  QWidget* modal = QApplication::activeModalWidget();
  return modal ? modal : mainWindow_;
}

// The dialog has the ordinary cursor, also in the middle of a long command.
int QtFrontEnd::Show(QDialog& dialog) {
  QApplication::setOverrideCursor(Qt::ArrowCursor);
  const int result = dialog.exec();
  QApplication::restoreOverrideCursor();
  if (mainWindow_) mainWindow_->ShowUncovered();
  return result;
}

std::optional<std::vector<std::string>> QtFrontEnd::ChooseFiles(const FileChooser& chooser) {
  CChooserDialog dialog(chooser, folder_, DialogParent());
  if (chooser.title.empty() && !command_.isEmpty()) {
    dialog.setWindowTitle(command_ + ": " + dialog.windowTitle());
  }
  if (Show(dialog) != QDialog::Accepted) return std::nullopt;
  auto paths = dialog.GetPaths();
  folder_ = QFileInfo(Shown(paths.front())).absolutePath();
  return paths;
}

std::optional<std::string> QtFrontEnd::Browse(const FileChooser& chooser) {
  const auto paths = ChooseFiles(chooser);
  return paths ? std::optional(paths->front()) : std::nullopt;
}

std::optional<double> QtFrontEnd::AskValue(const std::string& title, double shown) {
  FormField field;
  field.name = "value";
  field.hint = "(Enter confirms, Esc cancels)";
  field.value = shown;
  CFormDialog dialog({"ValueInput", title, {field}}, CFormDialog::Buttons::None, nullptr, DialogParent());
  if (Show(dialog) != QDialog::Accepted) return std::nullopt;
  return dialog.GetForm().GetReal("value");
}

bool QtFrontEnd::AskForm(Form& form) {
  CFormDialog dialog(
      form, CFormDialog::Buttons::OkCancel, [this](const FileChooser& chooser) { return Browse(chooser); },
      DialogParent());
  if (Show(dialog) != QDialog::Accepted) return false;
  form = dialog.GetForm();
  return true;
}

bool QtFrontEnd::ShowMessage(MessageKind kind, MessageButtons buttons, const std::string& text) {
  QMessageBox box(IconOf(kind), kProgramName, Shown(text), QMessageBox::Ok, DialogParent());
  box.setTextFormat(Qt::PlainText);
  if (buttons == MessageButtons::OkCancel) box.addButton(QMessageBox::Cancel);
  box.setDefaultButton(QMessageBox::Ok);
  return Show(box) == QMessageBox::Ok || buttons == MessageButtons::Ok;
}

SaveChoice QtFrontEnd::AskSaveChanges(const std::string& documentTitle) {
  QMessageBox box(QMessageBox::Warning, kProgramName, "Save changes to " + Shown(documentTitle) + "?",
                  QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, DialogParent());
  box.setTextFormat(Qt::PlainText);
  box.button(QMessageBox::Discard)->setText("Do&n't Save");
  box.setDefaultButton(QMessageBox::Save);
  switch (Show(box)) {
    case QMessageBox::Save:
      return SaveChoice::Save;
    case QMessageBox::Discard:
      return SaveChoice::Discard;
    default:
      return SaveChoice::Cancel;
  }
}

void QtFrontEnd::ShowLogs() {
  for (const auto& [log, window] : logs_) {
    if (window) window->ShowAll();
  }
}

void QtFrontEnd::SetStatusText(int pane, const std::string& text) {
  ShowLogs();
  if (mainWindow_) mainWindow_->SetStatusText(pane, text);
}

void QtFrontEnd::SetWaitCursor(bool on) {
  ShowLogs();
  waiting_ += on ? 1 : -1;
  if (on && waiting_ == 1) QApplication::setOverrideCursor(Qt::WaitCursor);
  if (!on && waiting_ == 0) QApplication::restoreOverrideCursor();
}

void QtFrontEnd::Print(const std::string& text) {
  std::fwrite(text.data(), 1, text.size(), stdout);
  std::fflush(stdout);
}

void QtFrontEnd::Trace(const std::string& text) {
  if (tracing_) std::fwrite(text.data(), 1, text.size(), stderr);
}

void QtFrontEnd::OpenWindow(WindowView& view) {
  if (mainWindow_) mainWindow_->OpenWindow(view);
}

void QtFrontEnd::CloseWindow(WindowView& view) {
  if (mainWindow_) mainWindow_->CloseWindow(view);
}

void QtFrontEnd::ActivateWindow(WindowView& view) {
  if (mainWindow_) mainWindow_->ActivateWindow(view);
}

void QtFrontEnd::RepaintWindow(WindowView& view, bool atOnce) {
  if (mainWindow_) mainWindow_->RepaintWindow(view, atOnce);
}

// The window paints overlays with the picture.
void QtFrontEnd::ShowOverlay(WindowView&, const OverlayCounts&) {}

void QtFrontEnd::UpdateWindowFrame(WindowView& view) {
  if (mainWindow_) mainWindow_->UpdateWindowFrame(view);
}

bool QtFrontEnd::ShowGraph(WindowView& view, const GraphView& graph) {
  // Saving a graph is no command: its chooser is not one that a record knows.
  const auto browse = [this](const FileChooser& chooser) { return Browse(chooser); };
  return mainWindow_ && mainWindow_->ShowGraph(view, graph, browse);
}

void QtFrontEnd::PlotGraph(const GraphView& graph, int element) {
  if (mainWindow_) mainWindow_->PlotGraph(graph, element);
}

void QtFrontEnd::ResizeGraph(const GraphView& graph) {
  if (mainWindow_) mainWindow_->ResizeGraph(graph);
}

void QtFrontEnd::OpenLog(const LogView& log) {
  if (!mainWindow_) return;
  auto* window = new CLogWindow(Shown(log.GetTitle()), mainWindow_);
  logs_[&log] = window;
  window->show();
  mainWindow_->ShowUncovered();
}

void QtFrontEnd::AppendToLog(const LogView& log, const std::string& text) {
  const auto found = logs_.find(&log);
  if (found != logs_.end() && found->second) found->second->Append(Shown(text));
}

void QtFrontEnd::CloseLog(const LogView& log) {
  const auto found = logs_.find(&log);
  if (found == logs_.end()) return;
  if (found->second) found->second->close();
  logs_.erase(found);
}

void QtFrontEnd::CommandStarted(const std::string& name) {
  command_ = Shown(name).section(" > ", -1);
  if (mainWindow_) mainWindow_->CommandStarted();
}

void QtFrontEnd::CommandEnded(const std::string&, CommandResult result) {
  command_.clear();
  if (mainWindow_) mainWindow_->CommandEnded(result);
}

void QtFrontEnd::PutBitmap(const std::vector<std::uint8_t>& dib) {
  QApplication::clipboard()->setMimeData(new CBitmapMimeData(dib));
}

bool QtFrontEnd::HasBitmap() {
  const QMimeData* data = QApplication::clipboard()->mimeData();
  return data && corvane::HasBitmap(*data);
}

std::vector<std::uint8_t> QtFrontEnd::GetBitmap() {
  const QMimeData* data = QApplication::clipboard()->mimeData();
  return data ? BitmapOf(*data) : Dib();
}

}  // namespace corvane
