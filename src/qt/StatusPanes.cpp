#include "qt/StatusPanes.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QStatusBar>

#include "qt/QtText.h"

namespace corvane {

namespace {

// A lock's indicator, its key, and its bit among the modifiers that the desktop reports with a key (0 where
// it reports none).
struct Lock {
  const char* text;
  int key;
  quint32 modifier;
};
constexpr Lock kLocks[] = {
    {"CAP", Qt::Key_CapsLock, 0x02}, {"NUM", Qt::Key_NumLock, 0x10}, {"SCRL", Qt::Key_ScrollLock, 0}};

}  // namespace

CStatusPanes::CStatusPanes(QStatusBar& statusBar) : statusBar_(statusBar) {
  panes_[0] = new QLabel("Ready");
  panes_[0]->setTextFormat(Qt::PlainText);
  panes_[0]->setIndent(4);
  panes_[0]->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  statusBar.addWidget(panes_[0], 1);
  for (std::size_t i = 1; i < panes_.size(); ++i) {
    panes_[i] = new QLabel;
    panes_[i]->setAlignment(Qt::AlignCenter);
    panes_[i]->setFrameShape(QFrame::StyledPanel);
    panes_[i]->setFrameShadow(QFrame::Sunken);
    panes_[i]->setMinimumWidth(panes_[i]->fontMetrics().horizontalAdvance(" SCRL ") + 8);
    statusBar.addPermanentWidget(panes_[i]);
  }
  qApp->installEventFilter(this);
}

void CStatusPanes::SetText(int pane, const std::string& text) {
  if (pane < 0 || pane >= static_cast<int>(panes_.size())) return;
  if (pane == 0) statusBar_.clearMessage();  // a menu's prompt would hide it
  QLabel& label = *panes_[static_cast<std::size_t>(pane)];
  label.setText(Shown(text));
  label.repaint();
}

QString CStatusPanes::GetText(int pane) const {
  return panes_[static_cast<std::size_t>(pane)]->text();
}

// A key reaches its window once, and after that one widget after the other.
bool CStatusPanes::eventFilter(QObject* watched, QEvent* event) {
  if (watched->isWindowType() && event->type() == QEvent::KeyPress) {
    FollowKey(static_cast<QKeyEvent&>(*event));
  }
  return false;
}

// The modifiers of a key are those before it; a lock key itself turns its lock over.
void CStatusPanes::FollowKey(const QKeyEvent& event) {
  for (int i = 0; i < 3; ++i) {
    const Lock& lock = kLocks[i];
    const bool pressed = event.key() == lock.key && !event.isAutoRepeat();
    const bool before =
        lock.modifier ? (event.nativeModifiers() & lock.modifier) != 0 : !GetText(i + 1).isEmpty();
    SetLock(i + 1, before != pressed);
  }
}

void CStatusPanes::SetLock(int pane, bool on) {
  panes_[static_cast<std::size_t>(pane)]->setText(on ? kLocks[pane - 1].text : "");
}

}  // namespace corvane
