#pragma once

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QMouseEvent>
#include <QTimer>
#include <QWheelEvent>

#include "qt/PlotPane.h"
#include "qt/Workbench.h"

namespace corvane {

constexpr Colour kCurveColour{255, 0, 0};

// A window on a square TIN over which a red line is plotted.
class GraphBench : public testing::Test {
 protected:
  GraphBench() {
    WriteSquareTin("square.tin", 2000.0);
    bench_.Open("square.tin");
  }

  void Plot() {
    ASSERT_EQ(bench_.ActiveView().PlotSeries(-1, {{0.0, 100.0}}, {{0.0, 1000.0}}, kCurveColour, 3), 0);
    QApplication::processEvents();
  }

  CViewWindow& Window() { return bench_.ActiveWindow(); }
  CGraphWindow& Graph() { return *Window().GetGraph(); }
  CPlotPane& Pane() { return Graph().GetPane(); }
  QPoint PlaceOf(double x, double y) { return Pane().PixelOf({x, y}).toPoint(); }

  void Mouse(QEvent::Type type, QPoint at, Qt::MouseButton button,
             Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    const bool held = type != QEvent::MouseButtonRelease;
    QMouseEvent event(type, at, Pane().mapToGlobal(at), type == QEvent::MouseMove ? Qt::NoButton : button,
                      held ? button : Qt::NoButton, modifiers);
    QApplication::sendEvent(&Pane(), &event);
  }

  void DragMouse(QPoint from, QPoint to, Qt::MouseButton button,
                 Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    Mouse(QEvent::MouseButtonPress, from, button, modifiers);
    Mouse(QEvent::MouseMove, (from + to) / 2, button, modifiers);
    Mouse(QEvent::MouseMove, to, button, modifiers);
    Mouse(QEvent::MouseButtonRelease, to, button, modifiers);
  }

  void Wheel(QPoint at, int angle, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QWheelEvent event(at, Pane().mapToGlobal(at), QPoint(), QPoint(0, angle), Qt::NoButton, modifiers,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(&Pane(), &event);
  }

  void ChooseItem(const char* text) {
    for (QAction* item : Graph().GetItems()) {
      if (item->text() == text) return item->trigger();
    }
    ADD_FAILURE() << "no item " << text;
  }

  // Chooses an item of the menu that opens next; notes what it holds.
  void AnswerMenu(const char* text, QStringList& items) {
    QTimer::singleShot(20, &bench_.window, [text, &items] {
      auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
      ASSERT_NE(menu, nullptr);
      QAction* chosen = nullptr;
      for (QAction* item : menu->actions()) {
        items.append(item->text());
        if (item->text() == text) chosen = item;
      }
      if (chosen) chosen->trigger();
      menu->close();
    });
  }

  void ExpectAll() {
    const GraphRange range = Pane().GetRange();
    EXPECT_NEAR(range.minX, -2.0, 1e-9);
    EXPECT_NEAR(range.maxX, 102.0, 1e-9);
    EXPECT_NEAR(range.minY, -50.0, 1e-9);
    EXPECT_NEAR(range.maxY, 1050.0, 1e-9);
  }

  Workbench bench_;
};

}  // namespace corvane
