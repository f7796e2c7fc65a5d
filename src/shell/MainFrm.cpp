#include "shell/MainFrm.h"

#include <algorithm>

#include "shell/CorvaneView.h"
#include "shell/DibView.h"
#include "ui/FrontEnd.h"

namespace corvane {

void CStatusBar::SetPaneText(int pane, const std::string& text) {
  if (pane < 0 || pane >= kPanes) return;
  texts_[static_cast<std::size_t>(pane)] = text;
  Ui().SetStatusText(pane, text);
}

std::string CStatusBar::GetPaneText(int pane) const {
  return pane < 0 || pane >= kPanes ? "" : texts_[static_cast<std::size_t>(pane)];
}

char* CMainFrame::GetStatusSlot(int i) {
  return i < 0 || i >= kStatusSlots ? nullptr : slots_[static_cast<std::size_t>(i)].data();
}

void CMainFrame::ShowStatusSlots(int pane) {
  std::string text;
  for (const auto& slot : slots_) text.append(slot.begin(), std::find(slot.begin(), slot.end(), '\0'));
  statusBar_.SetPaneText(pane, text);
}

CDocument* CMainFrame::GetActiveDocument() const {
  return views_.empty() ? nullptr : &views_.back()->GetDocumentBase();
}

namespace {

template <typename View>
View* LatestOf(const std::vector<CView*>& views) {
  for (auto view = views.rbegin(); view != views.rend(); ++view) {
    if (auto* found = dynamic_cast<View*>(*view)) return found;
  }
  return nullptr;
}

}  // namespace

CCorvaneView* CMainFrame::GetTinView() const {
  return LatestOf<CCorvaneView>(views_);
}

CDibView* CMainFrame::GetDibView() const {
  return LatestOf<CDibView>(views_);
}

void CMainFrame::SetActiveView(CView* view) {
  ForgetView(*view);
  views_.push_back(view);
}

void CMainFrame::ForgetView(const CView& view) {
  std::erase(views_, &view);
}

}  // namespace corvane
