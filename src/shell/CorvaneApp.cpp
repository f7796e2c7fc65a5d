#include "shell/CorvaneApp.h"

#include <algorithm>
#include <new>

#include "io/Paths.h"
#include "shell/ChildFrm.h"
#include "shell/CorvaneDoc.h"
#include "shell/CorvaneView.h"
#include "shell/DibDoc.h"
#include "shell/DibView.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

constexpr int kTinResource = 129;
constexpr int kImageResource = 130;

constexpr const char* kTinStrings =
    "\nCorvane\nCorvane\nFiles(*.tin)\n.TIN\nCorvane.Document\nCorvane Document";
constexpr const char* kImageStrings =
    "\nImage\nImage\nBitmap Files (*.bmp)\n.bmp\nImageType\nImage File Type\nDIB \n"
    "Device-Independent Bitmap\n";

// Tells the front end where a command begins and ends. A handler that runs out of memory has failed; the end
// is told also when the front end itself stops the command.
template <typename Run>
CommandResult RunBetweenEvents(const std::string& name, const Run& run) {
  Ui().CommandStarted(name);
  CommandResult result = CommandResult::Failed;
  try {
    result = run();
  } catch (const std::bad_alloc&) {
    ShowMessage("Out of memory.");
  } catch (...) {
    Ui().CommandEnded(name, CommandResult::Cancelled);
    throw;
  }
  Ui().CommandEnded(name, result);
  return result;
}

}  // namespace

CCorvaneApp::CCorvaneApp(std::span<const CommandRow> commands, std::string profilePath)
    : commands_(commands), recentFiles_(std::move(profilePath)) {}

CCorvaneApp::~CCorvaneApp() {
  ExitInstance();
}

bool CCorvaneApp::InitInstance(const std::string& commandLineFile) {
  tinTemplate_ = std::make_unique<CDocTemplate>(
      kTinResource, kTinStrings, [](CMainFrame& frame) { return std::make_unique<CCorvaneDoc>(frame); },
      [](CDocument& document) {
        return std::make_unique<CCorvaneView>(static_cast<CCorvaneDoc&>(document));
      });
  // File New and File Open do not know this one.
  imageTemplate_ = std::make_unique<CDocTemplate>(
      kImageResource, kImageStrings, [](CMainFrame& frame) { return std::make_unique<CDibDoc>(frame); },
      [](CDocument& document) { return std::make_unique<CDibView>(static_cast<CDibDoc&>(document)); });
  mainFrame_ = std::make_unique<CMainFrame>(*this);
  if (commandLineFile.empty()) {
    NewDocument();
  } else {
    OpenPath(commandLineFile);
  }
  return !documents_.empty();
}

void CCorvaneApp::ExitInstance() {
  while (!documents_.empty()) DestroyDocument(*documents_.back());
  imageTemplate_.reset();
}

bool CCorvaneApp::IsEnabled(const CommandRow& row) const {
  if (std::holds_alternative<ViewHandler>(row.handler)) return mainFrame_->GetTinView() != nullptr;
  if (std::holds_alternative<DocumentHandler>(row.handler)) return mainFrame_->GetActiveView() != nullptr;
  return HasHandler(row);
}

CommandResult CCorvaneApp::RunCommand(const CommandRow& row) {
  return RunBetweenEvents(CommandName(row), [&] { return RunHandler(row); });
}

CommandResult CCorvaneApp::RunHandler(const CommandRow& row) {
  if (const auto* view = std::get_if<ViewHandler>(&row.handler)) {
    return (*view)(*mainFrame_->GetTinView());
  }
  if (const auto* document = std::get_if<DocumentHandler>(&row.handler)) {
    return (*document)(*mainFrame_->GetActiveDocument());
  }
  if (const auto* frame = std::get_if<FrameHandler>(&row.handler)) return (*frame)(*mainFrame_);
  return CommandResult::Failed;
}

CommandResult CCorvaneApp::OpenPath(const std::string& path) {
  return RunBetweenEvents("File > Open", [&] {
    Ui().FileGiven(tinTemplate_->MakeChooser(FileChooser::Mode::Open, ""), path);
    return OpenDocumentFile(path);
  });
}

CDocument& CCorvaneApp::AddDocument(const CDocTemplate& kind) {
  documents_.push_back(kind.MakeDocument(*mainFrame_));
  return *documents_.back();
}

CDocument* CCorvaneApp::NewDocument() {
  CDocument& document = AddDocument(*tinTemplate_);
  document.SetTitle(tinTemplate_->GetDocumentName() + std::to_string(++untitledCount_));
  document.AddView();
  return &document;
}

CommandResult CCorvaneApp::OpenDocumentFile(const std::string& path) {
  CDocument* open = FindDocument(path);
  if (open && (open->HasContent() || open->IsModified())) {
    CView& view = open->GetFrames().front()->GetView();
    mainFrame_->SetActiveView(&view);
    Ui().ActivateWindow(view);
    return CommandResult::Done;
  }
  if (open) DestroyDocument(*open);

  CDocument& document = AddDocument(*tinTemplate_);
  const int opened = document.OnOpenDocument(path);
  if (opened == 0) {
    documents_.pop_back();
    return CommandResult::Failed;
  }
  document.SetPathName(path, document.HasContent());
  document.AddView();
  return document.HasContent() ? CommandResult::Done : CommandResult::Failed;
}

CommandResult CCorvaneApp::SaveDocument(CDocument& document, bool askForPath) {
  std::string path = document.GetPathName();
  if (path.empty() || askForPath) {
    const std::string shown = path.empty() ? document.GetSuggestedName() : path;
    const auto chosen = ChooseFile(document.GetTemplate().MakeChooser(FileChooser::Mode::Save, shown));
    if (!chosen) return CommandResult::Cancelled;
    path = *chosen;
  }
  const int saved = document.OnSaveDocument(path);
  // File Open would take any file of the list as a TIN.
  if (saved != 0) document.SetPathName(path, &document.GetTemplate() == tinTemplate_.get());
  return saved > 0 ? CommandResult::Done : CommandResult::Failed;
}

bool CCorvaneApp::CloseDocument(CDocument& document) {
  if (!SaveModified(document)) return false;
  DestroyDocument(document);
  return true;
}

bool CCorvaneApp::CloseView(CView& view) {
  CDocument& document = view.GetDocumentBase();
  if (document.GetFrames().size() == 1) return CloseDocument(document);
  const auto frame = std::find_if(document.frames_.begin(), document.frames_.end(),
                                  [&](const auto& candidate) { return &candidate->GetView() == &view; });
  Ui().CloseWindow(view);
  const bool wasActive = mainFrame_->GetActiveView() == &view;
  mainFrame_->ForgetView(view);
  document.frames_.erase(frame);
  if (wasActive) {
    mainFrame_->SetActiveView(&document.GetFrames().front()->GetView());
    Ui().ActivateWindow(*mainFrame_->GetActiveView());
  }
  document.SetTitle(document.GetTitle());
  return true;
}

CDocument* CCorvaneApp::FindDocument(const std::string& path) const {
  const std::string wanted = AbsolutePath(path);
  const auto found = std::find_if(documents_.begin(), documents_.end(), [&](const auto& document) {
    return &document->GetTemplate() == tinTemplate_.get() && !document->GetPathName().empty() &&
           AbsolutePath(document->GetPathName()) == wanted;
  });
  return found == documents_.end() ? nullptr : found->get();
}

bool CCorvaneApp::SaveModified(CDocument& document) {
  if (!document.IsModified()) return true;
  switch (Ui().AskSaveChanges(document.GetTitle())) {
    case SaveChoice::Save:
      return SaveDocument(document, false) == CommandResult::Done;
    case SaveChoice::Discard:
      return true;
    case SaveChoice::Cancel:
      return false;
  }
  return false;
}

void CCorvaneApp::DestroyDocument(CDocument& document) {
  const bool wasActive = mainFrame_->GetActiveDocument() == &document;
  for (const auto& frame : document.GetFrames()) {
    Ui().CloseWindow(frame->GetView());
    mainFrame_->ForgetView(frame->GetView());
  }
  std::erase_if(documents_, [&](const auto& candidate) { return candidate.get() == &document; });
  if (wasActive && !documents_.empty()) {
    CView& next = documents_.back()->GetFrames().back()->GetView();
    mainFrame_->SetActiveView(&next);
    Ui().ActivateWindow(next);
  }
}

}  // namespace corvane
