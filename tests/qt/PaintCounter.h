#pragma once

#include <QEvent>
#include <QObject>
#include <QWidget>

namespace corvane {

// Counts how often a widget is painted.
class PaintCounter : public QObject {
 public:
  explicit PaintCounter(QWidget& widget) { widget.installEventFilter(this); }

  int Count() const { return count_; }
  void Clear() { count_ = 0; }

 protected:
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() == QEvent::Paint) ++count_;
    return false;
  }

 private:
  int count_ = 0;
};

}  // namespace corvane
