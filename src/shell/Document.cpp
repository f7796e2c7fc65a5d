#include "shell/Document.h"

#include "io/Paths.h"
#include "shell/ChildFrm.h"
#include "shell/CorvaneApp.h"
#include "shell/DocTemplate.h"
#include "shell/MainFrm.h"
#include "ui/FrontEnd.h"

namespace corvane {

CDocument::CDocument(CMainFrame& frame) : frame_(frame) {}
CDocument::~CDocument() = default;

int CDocument::OnOpenDocument(const std::string&) {
  modified_ = false;
  return 1;
}

int CDocument::OnSaveDocument(const std::string&) {
  modified_ = false;
  return 1;
}

void CDocument::SetPathName(const std::string& path, bool addToRecentList) {
  pathName_ = path;
  SetTitle(FileName(path));
  if (addToRecentList) frame_.GetApp().GetRecentFiles().Add(AbsolutePath(path));
}

void CDocument::SetTitle(const std::string& title) {
  title_ = title;
  for (const auto& frame : frames_) Ui().UpdateWindowFrame(frame->GetView());
}

CView& CDocument::AddView() {
  frames_.push_back(std::make_unique<CChildFrame>(template_->MakeView(*this)));
  CView& view = frames_.back()->GetView();
  view.OnInitialUpdate();
  Ui().OpenWindow(view);
  frame_.SetActiveView(&view);
  SetTitle(title_);  // windows are numbered as soon as there are two
  return view;
}

void CDocument::UpdateAllViews() {
  for (const auto& frame : frames_) {
    frame->GetView().OnUpdate();
    frame->GetView().Invalidate();
  }
}

}  // namespace corvane
