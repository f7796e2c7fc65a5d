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

  // Not every text is painted before the call returns; ShowAll paints what is left.
  void Append(const QString& text);
  void ShowAll();

  QString GetText() const;

 private:
  QPlainTextEdit* text_;
  QElapsedTimer painted_;  // since the last painting in the middle of a command
  bool pending_ = false;   // some text may not be painted yet
};

}  // namespace corvane
