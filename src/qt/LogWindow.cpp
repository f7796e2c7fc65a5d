#include "qt/LogWindow.h"

#include <QFontDatabase>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTextCursor>
#include <QVBoxLayout>

#include "ui/LogView.h"

namespace corvane {

namespace {

constexpr int kPaintInterval = 40;  // milliseconds: more often nobody can read, and painting takes time

}  // namespace

CLogWindow::CLogWindow(const QString& title, QWidget* parent) : QDialog(parent), text_(new QPlainTextEdit) {
  setAttribute(Qt::WA_DeleteOnClose);
  setAttribute(Qt::WA_ShowWithoutActivating);  // the command's next prompt keeps the keys
  setWindowTitle(title);
  setModal(false);
  text_->setReadOnly(true);
  text_->setUndoRedoEnabled(false);
  text_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  text_->setFrameShape(QFrame::NoFrame);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(text_);
  resize(kLogWindowSize.width, kLogWindowSize.height);
}

void CLogWindow::Append(const QString& text) {
  QScrollBar& bar = *text_->verticalScrollBar();
  const bool atEnd = bar.value() == bar.maximum();
  QTextCursor cursor(text_->document());
  cursor.movePosition(QTextCursor::End);
  cursor.insertText(text);
  if (atEnd) bar.setValue(bar.maximum());
  pending_ = true;
  if (!painted_.isValid() || painted_.elapsed() >= kPaintInterval) ShowAll();
}

void CLogWindow::ShowAll() {
  if (!pending_) return;
  text_->viewport()->repaint();
  painted_.start();
  pending_ = false;
}

QString CLogWindow::GetText() const {
  return text_->toPlainText();
}

}  // namespace corvane
