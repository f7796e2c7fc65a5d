#include "shell/MainFrm.h"

#include <algorithm>

#include "shell/CorvaneView.h"
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
  return activeView_ ? &activeView_->GetDocumentBase() : nullptr;
}

CCorvaneView* CMainFrame::GetActiveTinView() const {
  return dynamic_cast<CCorvaneView*>(activeView_);
}

}  // namespace corvane
