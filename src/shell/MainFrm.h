#pragma once

#include <array>
#include <string>
#include <vector>

namespace corvane {

class CCorvaneApp;
class CCorvaneView;
class CDibView;
class CDocument;
class CView;

// The status bar: pane 0 is the message pane; Caps Lock, Num Lock and Scroll Lock stand behind it.
class CStatusBar {
 public:
  static constexpr int kPanes = 4;

  void SetPaneText(int pane, const std::string& text);
  std::string GetPaneText(int pane) const;

 private:
  std::array<std::string, kPanes> texts_;
};

// The main window: status bar, status slots and the active document window.
class CMainFrame {
 public:
  static constexpr int kStatusSlots = 3;
  static constexpr int kStatusSlotSize = 120;

  explicit CMainFrame(CCorvaneApp& app) : app_(app) {}

  CStatusBar& GetStatusBar() { return statusBar_; }

  // The slot's text, zero-terminated in kStatusSlotSize bytes, for i from 0 to 2; otherwise nothing.
  char* GetStatusSlot(int i);

  // Joins the slots that are not empty, in order, as the text of a pane.
  void ShowStatusSlots(int pane);

  // The window in front; nothing with no document open.
  CView* GetActiveView() const { return views_.empty() ? nullptr : views_.back(); }
  CDocument* GetActiveDocument() const;
  // The windows that commands act on: of each kind the one that was in front last; nothing without one.
  CCorvaneView* GetTinView() const;
  CDibView* GetDibView() const;
  void SetActiveView(CView* view);
  // The view is about to end.
  void ForgetView(const CView& view);

  CCorvaneApp& GetApp() const { return app_; }

 private:
  CCorvaneApp& app_;
  CStatusBar statusBar_;
  std::array<std::array<char, kStatusSlotSize>, kStatusSlots> slots_{};
  std::vector<CView*> views_;  // that have been in front, the latest last
};

}  // namespace corvane
