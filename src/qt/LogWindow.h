#pragma once

#include <QDialog>
#include <QElapsedTimer>

class QPlainTextEdit;

namespace corvane {

// The modeless window of a log: a read-only text that scrolls along as it grows, unless a person has scrolled
// back in it. It is painted while a command runs, too. Closing it ends it.
class CLogWindow : public QDialog {
 public:
  CLogWindow(const QString& title, QWidget* parent);

  void Append(const QString& text);

  QString GetText() const;

 private:
  QPlainTextEdit* text_;
  QElapsedTimer painted_;  // since the last painting in the middle of a command
};

}  // namespace corvane
