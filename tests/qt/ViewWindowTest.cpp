#include "qt/ViewWindow.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QKeyEvent>
#include <QMdiSubWindow>
#include <QMouseEvent>
#include <QScrollBar>
#include <QWheelEvent>

#include "qt/ModalScript.h"
#include "qt/PaintCounter.h"
#include "qt/Workbench.h"
#include "shell/CommandShapes.h"

namespace corvane {

namespace {

const QRgb kRed = qRgb(255, 0, 0);
const QRgb kWhite = qRgb(255, 255, 255);

QImage Painted(CViewWindow& window) {
  return window.viewport()->grab().toImage().convertToFormat(QImage::Format_RGB32);
}

void Wheel(CViewWindow& window, int angle, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
  QWheelEvent event(QPointF(10, 10), QPointF(10, 10), QPoint(), QPoint(0, angle), Qt::NoButton, modifiers,
                    Qt::NoScrollPhase, false);
  QApplication::sendEvent(window.viewport(), &event);
}

void Mouse(CViewWindow& window, QEvent::Type type, QPoint at, Qt::MouseButton button) {
  const auto buttons = type == QEvent::MouseButtonRelease ? Qt::NoButton : button;
  QMouseEvent event(type, at, at, type == QEvent::MouseMove ? Qt::NoButton : button, buttons, Qt::NoModifier);
  QApplication::sendEvent(window.viewport(), &event);
}

// Doubles the scale that many times.
void ZoomIn(CViewWindow& window, int times) {
  for (int i = 0; i < times; ++i) PressKey(window, Qt::Key_Up);
}

class ViewWindowTest : public testing::Test {
 protected:
  ViewWindowTest() {
    WriteSquareTin("square.tin", 100.0);
    bench_.Open("square.tin");
  }

  Workbench bench_;
};

// The square stands at (0, 0) with its corners at pixels 0 and 100, and its cut from the top left one.
TEST_F(ViewWindowTest, PaintsTheTrianglesInRed) {
  const QImage image = Painted(bench_.ActiveWindow());
  for (const QPoint on : {QPoint(0, 0), QPoint(50, 0), QPoint(100, 0), QPoint(0, 50), QPoint(100, 50),
                          QPoint(50, 100), QPoint(50, 50), QPoint(20, 20)}) {
    EXPECT_EQ(image.pixel(on), kRed) << on.x() << ", " << on.y();
  }
  for (const QPoint off :
       {QPoint(25, 75), QPoint(75, 25), QPoint(101, 50), QPoint(50, 101), QPoint(300, 300)}) {
    EXPECT_EQ(image.pixel(off), kWhite) << off.x() << ", " << off.y();
  }
}

TEST_F(ViewWindowTest, UpDoublesTheScale) {
  PressKey(bench_.ActiveWindow(), Qt::Key_Up);
  EXPECT_EQ(bench_.ActiveView().GetScrollSize(), (PixelSize{200, 200}));
  const QImage image = Painted(bench_.ActiveWindow());
  EXPECT_EQ(image.pixel(200, 150), kRed);
  EXPECT_EQ(image.pixel(150, 150), kRed);
  EXPECT_EQ(image.pixel(100, 50), kWhite);
}

TEST_F(ViewWindowTest, DownHalvesTheScale) {
  PressKey(bench_.ActiveWindow(), Qt::Key_Down);
  EXPECT_EQ(bench_.ActiveView().GetScrollSize(), (PixelSize{50, 50}));
  EXPECT_EQ(Painted(bench_.ActiveWindow()).pixel(50, 25), kRed);
}

TEST_F(ViewWindowTest, ScrollBarsFollowTheScale) {
  CViewWindow& window = bench_.ActiveWindow();
  EXPECT_EQ(window.verticalScrollBar()->maximum(), 0);
  ZoomIn(window, 5);  // 3200 pixels
  EXPECT_EQ(window.horizontalScrollBar()->maximum(), 3200 - window.viewport()->width());
  EXPECT_EQ(window.verticalScrollBar()->maximum(), 3200 - window.viewport()->height());
  for (int i = 0; i < 5; ++i) PressKey(window, Qt::Key_Down);
  EXPECT_EQ(window.verticalScrollBar()->maximum(), 0);
}

TEST_F(ViewWindowTest, ScrolledDrawingMoves) {
  CViewWindow& window = bench_.ActiveWindow();
  ZoomIn(window, 5);
  window.horizontalScrollBar()->setValue(1000);
  window.verticalScrollBar()->setValue(900);
  EXPECT_EQ(bench_.ActiveView().GetScrollPosition(), (PixelPoint{1000, 900}));
  const QImage image = Painted(window);
  EXPECT_EQ(image.pixel(200, 300), kRed);  // (1200, 1200) on the cut
  EXPECT_EQ(image.pixel(200, 200), kWhite);
}

TEST_F(ViewWindowTest, ZoomKeepsTheRelativePlace) {
  CViewWindow& window = bench_.ActiveWindow();
  ZoomIn(window, 5);
  window.horizontalScrollBar()->setValue(800);
  PressKey(window, Qt::Key_Up);
  EXPECT_EQ(window.horizontalScrollBar()->value(), 1600);
}

TEST_F(ViewWindowTest, ScaleWithoutLimitKeepsScrollingSafe) {
  CViewWindow& window = bench_.ActiveWindow();
  ZoomIn(window, 40);
  EXPECT_EQ(bench_.ActiveView().GetScrollSize(), (PixelSize{2147483647, 2147483647}));
  EXPECT_EQ(window.verticalScrollBar()->maximum(), 2147483647 - window.viewport()->height());
  PressKey(window, Qt::Key_End);
  EXPECT_EQ(window.verticalScrollBar()->value(), window.verticalScrollBar()->maximum());
  PressKey(window, Qt::Key_PageDown);
  Painted(window);
  Mouse(window, QEvent::MouseButtonPress, {500, 400}, Qt::LeftButton);
  Mouse(window, QEvent::MouseMove, {100, 100}, Qt::LeftButton);
  Mouse(window, QEvent::MouseButtonRelease, {100, 100}, Qt::LeftButton);
  EXPECT_EQ(window.verticalScrollBar()->value(), window.verticalScrollBar()->maximum());
  PressKey(window, Qt::Key_Home);
  EXPECT_EQ(bench_.ActiveView().GetScrollPosition(), (PixelPoint{0, 0}));
}

TEST_F(ViewWindowTest, PageKeysScroll) {
  CViewWindow& window = bench_.ActiveWindow();
  ZoomIn(window, 6);
  PressKey(window, Qt::Key_PageDown);
  EXPECT_EQ(window.verticalScrollBar()->value(), window.viewport()->height());
  PressKey(window, Qt::Key_PageUp);
  EXPECT_EQ(window.verticalScrollBar()->value(), 0);
}

TEST_F(ViewWindowTest, DragPans) {
  CViewWindow& window = bench_.ActiveWindow();
  ZoomIn(window, 5);
  for (const Qt::MouseButton button : {Qt::LeftButton, Qt::MiddleButton}) {
    window.horizontalScrollBar()->setValue(100);
    window.verticalScrollBar()->setValue(100);
    Mouse(window, QEvent::MouseButtonPress, {300, 200}, button);
    Mouse(window, QEvent::MouseMove, {280, 230}, button);
    Mouse(window, QEvent::MouseButtonRelease, {280, 230}, button);
    Mouse(window, QEvent::MouseMove, {100, 100}, Qt::NoButton);
    EXPECT_EQ(bench_.ActiveView().GetScrollPosition(), (PixelPoint{120, 70}));
  }
}

TEST_F(ViewWindowTest, WheelScrollsAndCtrlWheelZooms) {
  CViewWindow& window = bench_.ActiveWindow();
  ZoomIn(window, 5);
  Wheel(window, -120);
  EXPECT_GT(window.verticalScrollBar()->value(), 0);
  Wheel(window, 120, Qt::ControlModifier);
  EXPECT_EQ(bench_.ActiveView().GetScrollSize().width, 6400);
  Wheel(window, -60, Qt::ControlModifier);
  EXPECT_EQ(bench_.ActiveView().GetScrollSize().width, 6400);
  Wheel(window, -60, Qt::ControlModifier);
  EXPECT_EQ(bench_.ActiveView().GetScrollSize().width, 3200);
}

TEST_F(ViewWindowTest, ZoomTellsTheScale) {
  const auto shown = [this] { return bench_.window.GetStatusPanes().GetText(0); };
  ZoomIn(bench_.ActiveWindow(), 2);
  EXPECT_EQ(shown(), "Scale: 4 pixels a unit");
  for (int i = 0; i < 4; ++i) Wheel(bench_.ActiveWindow(), -120, Qt::ControlModifier);
  EXPECT_EQ(shown(), "Scale: 0.25 pixels a unit");
  EXPECT_NE(bench_.app.GetMainFrame().GetStatusBar().GetPaneText(0), "Scale: 0.25 pixels a unit");
}

TEST_F(ViewWindowTest, TinLoadedForACommandIsNotPaintedAndSaysSo) {
  EXPECT_EQ(WhyEmpty(bench_.ActiveView()), "");
  bench_.ActiveView().paintEnabled = false;
  EXPECT_EQ(WhyEmpty(bench_.ActiveView()),
            "Not painted since a comparison; Window > New Window shows the TIN");
}

// A comparison that is cancelled at its points has taken the TIN for itself all the same.
TEST_F(ViewWindowTest, TinThatAComparisonHasBlankedSaysHowToSeeItAgain) {
  CViewWindow& window = bench_.ActiveWindow();
  ZoomIn(window, 5);
  EXPECT_GT(window.verticalScrollBar()->maximum(), 0);
  {
    ModalScript script({[](QWidget& dialog) { PressKey(dialog, Qt::Key_Escape); }});
    bench_.Run("TIN > TIN/Points Comparing");
  }
  EXPECT_EQ(WhyEmpty(bench_.ActiveView()),
            "Not painted since a comparison; Window > New Window shows the TIN");
  EXPECT_EQ(window.verticalScrollBar()->maximum(), 0);
  EXPECT_EQ(window.horizontalScrollBar()->maximum(), 0);
  EXPECT_EQ(Painted(window).pixel(20, 20), kWhite);
  bench_.Choose("Window > New Window");
  EXPECT_EQ(WhyEmpty(bench_.ActiveView()), "");
  EXPECT_EQ(Painted(bench_.ActiveWindow()).pixel(20, 20), kRed);
}

TEST_F(ViewWindowTest, CommandRepaintsEveryWindowOfTheDocument) {
  CViewWindow& first = bench_.ActiveWindow();
  bench_.Choose("Window > New Window");
  bench_.Choose("Window > Tile");
  QApplication::processEvents();
  const PaintCounter painted(*first.viewport());
  const PaintCounter paintedAtOnce(*bench_.ActiveWindow().viewport());
  RedrawTin(bench_.ActiveView());
  EXPECT_EQ(paintedAtOnce.Count(), 1);
  QApplication::processEvents();
  EXPECT_EQ(painted.Count(), 1);
}

TEST_F(ViewWindowTest, WheelMovesTheExamPoint) {
  bench_.ActiveView().examStep = {1.0, 2.0, 4.0};
  Wheel(bench_.ActiveWindow(), 120);
  EXPECT_EQ(bench_.ActiveView().examPoint.z, 4.0);
  Wheel(bench_.ActiveWindow(), -240);
  EXPECT_EQ(bench_.ActiveView().examPoint.z, 0.0);
}

TEST_F(ViewWindowTest, LettersActInEitherCase) {
  bench_.ActiveView().examStep = {1.0, 2.0, 4.0};
  PressKey(bench_.ActiveWindow(), Qt::Key_D);
  PressKey(bench_.ActiveWindow(), Qt::Key_D, Qt::ShiftModifier);
  PressKey(bench_.ActiveWindow(), Qt::Key_E);
  EXPECT_EQ(bench_.ActiveView().examPoint, (Point3{2.0, 2.0, 0.0}));
}

TEST_F(ViewWindowTest, GAsksForTheExamPoint) {
  ModalScript script({[](QWidget& dialog) {
    EXPECT_EQ(dialog.windowTitle(), "Please Input XYZ");
    TypeInto(dialog, "x", "1.5");
    PressButton(dialog, "OK");
  }});
  PressKey(bench_.ActiveWindow(), Qt::Key_G);
  EXPECT_EQ(bench_.ActiveView().examPoint.x, 1.5);
}

TEST(ViewWindow, EmptyDocumentSaysSo) {
  Workbench bench;
  EXPECT_EQ(bench.ActiveView().GetScrollSize(), (PixelSize{100, 100}));
  EXPECT_EQ(WhyEmpty(bench.ActiveView()), "No TIN");
  const QImage image = Painted(bench.ActiveWindow());
  int nOther = 0;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) nOther += image.pixel(x, y) != kWhite;
  }
  EXPECT_GT(nOther, 10);
  EXPECT_LT(nOther, 2000);
  EXPECT_EQ(image.pixel(5, 5), kWhite);
}

TEST(ViewKey, ArrowsLettersAndDigitsOnly) {
  const auto key = [](int code, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    return ViewKey(QKeyEvent(QEvent::KeyPress, code, modifiers));
  };
  EXPECT_EQ(key(Qt::Key_A), 'A');
  EXPECT_EQ(key(Qt::Key_7), '7');
  EXPECT_EQ(key(Qt::Key_Left), Key::kLeft);
  EXPECT_EQ(key(Qt::Key_Up), Key::kUp);
  EXPECT_EQ(key(Qt::Key_S, Qt::ControlModifier), 0);
  EXPECT_EQ(key(Qt::Key_F5), 0);
}

}  // namespace

}  // namespace corvane
