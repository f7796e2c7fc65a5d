#include "ui/FrontEnd.h"

namespace corvane {

namespace {

// What stands in while no front end is installed.
class SilentFrontEnd : public FrontEnd {
 public:
  std::optional<std::vector<std::string>> ChooseFiles(const FileChooser&) override { return std::nullopt; }
  std::optional<double> AskValue(const std::string&, double) override { return std::nullopt; }
  bool AskForm(Form&) override { return false; }
  bool ShowMessage(MessageKind, MessageButtons, const std::string&) override { return true; }
  SaveChoice AskSaveChanges(const std::string&) override { return SaveChoice::Cancel; }
  void SetStatusText(int, const std::string&) override {}
  void SetWaitCursor(bool) override {}
  void Print(const std::string&) override {}
  void Trace(const std::string&) override {}
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
  void AppendToLog(const LogView&, const std::string&) override {}
  void CloseLog(const LogView&) override {}
  void CommandStarted(const std::string&) override {}
  void CommandEnded(const std::string&, CommandResult) override {}
  void FileGiven(const FileChooser&, const std::string&) override {}
  void PutBitmap(const std::vector<std::uint8_t>&) override {}
  bool HasBitmap() override { return false; }
  std::vector<std::uint8_t> GetBitmap() override { return {}; }
};

FrontEnd* installed = nullptr;

}  // namespace

const char* CommandResultName(CommandResult result) {
  static const char* const kNames[] = {"done", "failed", "cancelled"};
  return kNames[static_cast<int>(result)];
}

const char* WindowKindName(WindowKind kind) {
  static const char* const kNames[] = {"tin", "bitmap", "graph", "log"};
  return kNames[static_cast<int>(kind)];
}

const char* MessageKindName(MessageKind kind) {
  static const char* const kNames[] = {"message", "stop", "warning", "information"};
  return kNames[static_cast<int>(kind)];
}

FrontEnd& Ui() {
  static SilentFrontEnd silent;
  return installed ? *installed : silent;
}

InstalledFrontEnd::InstalledFrontEnd(FrontEnd& frontEnd) : previous_(installed) {
  installed = &frontEnd;
}

InstalledFrontEnd::~InstalledFrontEnd() {
  installed = previous_;
}

void WaitCursor::End() {
  if (on_) Ui().SetWaitCursor(false);
  on_ = false;
}

void ShowMessage(const std::string& text) {
  Ui().ShowMessage(MessageKind::Message, MessageButtons::Ok, text);
}

void ShowWarning(const std::string& text) {
  Ui().ShowMessage(MessageKind::Warning, MessageButtons::Ok, text);
}

void ShowStop(const std::string& text) {
  Ui().ShowMessage(MessageKind::Stop, MessageButtons::Ok, text);
}

void ShowInformation(const std::string& text) {
  Ui().ShowMessage(MessageKind::Information, MessageButtons::Ok, text);
}

std::optional<std::string> ChooseFile(const FileChooser& chooser) {
  const auto chosen = Ui().ChooseFiles(chooser);
  if (!chosen || chosen->empty()) return std::nullopt;
  return chosen->front();
}

}  // namespace corvane
