#pragma once

#include <QObject>
#include <array>
#include <string>

class QKeyEvent;
class QLabel;
class QStatusBar;

namespace corvane {

// The panes of the status bar: the message pane, and behind it the Caps Lock, Num Lock and Scroll Lock
// indicators, which show "CAP", "NUM", "SCRL" while they are on.
class CStatusPanes : public QObject {
 public:
  explicit CStatusPanes(QStatusBar& statusBar);

  // Shows before the call returns, so that a long command's texts are seen.
  void SetText(int pane, const std::string& text);
  QString GetText(int pane) const;

 protected:
  // Watches the whole program's keys: there is no other way to hear of the lock keys.
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void FollowKey(const QKeyEvent& event);
  void SetLock(int pane, bool on);

  QStatusBar& statusBar_;
  std::array<QLabel*, 4> panes_{};
};

}  // namespace corvane
