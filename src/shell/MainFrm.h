#pragma once

#include <array>
#include <string>

namespace corvane {

class CCorvaneApp;
class CCorvaneView;
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

  // The window that commands act on; nothing with no document open.
  CView* GetActiveView() const { return activeView_; }
  CDocument* GetActiveDocument() const;
  // The same as a TIN view; nothing if another kind is active.
  CCorvaneView* GetActiveTinView() const;
  void SetActiveView(CView* view) { activeView_ = view; }

  CCorvaneApp& GetApp() const { return app_; }

 private:
  CCorvaneApp& app_;
  CStatusBar statusBar_;
  std::array<std::array<char, kStatusSlotSize>, kStatusSlots> slots_{};
  CView* activeView_ = nullptr;
};

}  // namespace corvane
