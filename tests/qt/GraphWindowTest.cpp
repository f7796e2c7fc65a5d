// The graph over the window of a view.

#include "qt/GraphWindow.h"

#include <gtest/gtest.h>

#include <QContextMenuEvent>
#include <QImage>
#include <QLabel>
#include <QMdiSubWindow>
#include <QRubberBand>
#include <QScrollBar>
#include <QStatusBar>

#include "qt/GraphBench.h"
#include "qt/ModalScript.h"

namespace corvane {

namespace {

using GraphWindowTest = GraphBench;

TEST_F(GraphWindowTest, CoversTheDrawingAndItsScrollBars) {
  EXPECT_EQ(Window().GetGraph(), nullptr);
  EXPECT_TRUE(Window().verticalScrollBar()->isVisible());
  Plot();
  ASSERT_TRUE(Window().IsGraphShown());
  EXPECT_FALSE(Window().verticalScrollBar()->isVisible());
  EXPECT_EQ(Graph().geometry(), Window().rect());
  EXPECT_EQ(bench_.ActiveView().graph.GetSize(), (PixelSize{Window().width(), Window().height()}));
  const QImage image = Window().grab().toImage();
  EXPECT_EQ(image.pixelColor(Pane().mapTo(&Window(), PlaceOf(30, 300))), QColor(Qt::red));
  ExpectAll();
}

TEST_F(GraphWindowTest, FollowsTheWindowsSize) {
  Plot();
  bench_.window.GetArea().activeSubWindow()->resize(500, 400);
  QApplication::processEvents();
  EXPECT_EQ(Graph().size(), Window().viewport()->size());
  EXPECT_LE(Graph().width(), 500);
  EXPECT_EQ(bench_.ActiveView().graph.GetSize(), (PixelSize{Graph().width(), Graph().height()}));
}

TEST_F(GraphWindowTest, HiddenItShowsTheTinAndTheNextPlotShowsItAgain) {
  Plot();
  ChooseItem("Hide");
  EXPECT_FALSE(Window().IsGraphShown());
  EXPECT_EQ(bench_.window.GetStatusPanes().GetText(0), "Graph hidden; the right-button menu shows it again");
  EXPECT_TRUE(Window().verticalScrollBar()->isVisible());
  EXPECT_EQ(Window().grab().toImage().pixelColor(50, 50), QColor(Qt::red)) << "the cut of the square";
  Plot();
  EXPECT_TRUE(Window().IsGraphShown());
  EXPECT_EQ(bench_.ActiveView().graph.GetElementCount(), 2);
}

TEST_F(GraphWindowTest, HiddenGraphStaysInPlaceWhileTheDrawingScrolls) {
  Plot();
  ChooseItem("Hide");
  Window().verticalScrollBar()->setValue(200);
  Plot();
  EXPECT_EQ(Graph().geometry(), Window().rect());
}

TEST_F(GraphWindowTest, MenuOfTheDrawingShowsItAgain) {
  QContextMenuEvent menu(QContextMenuEvent::Mouse, {10, 10}, Window().mapToGlobal(QPoint(10, 10)));
  QApplication::sendEvent(Window().viewport(), &menu);  // no graph, no menu
  Plot();
  ChooseItem("Hide");
  QStringList items;
  AnswerMenu("Show Graph", items);
  QApplication::sendEvent(Window().viewport(), &menu);
  EXPECT_EQ(items, QStringList("Show Graph"));
  EXPECT_TRUE(Window().IsGraphShown());
}

TEST_F(GraphWindowTest, WheelZoomsAroundThePointer) {
  Plot();
  const QPoint place = PlaceOf(25, 250);
  const GraphPoint before = Pane().PointAt(place);
  Wheel(place, 120);
  const GraphRange range = Pane().GetRange();
  EXPECT_NEAR(range.maxX - range.minX, 104 / 1.25, 1e-9);
  EXPECT_NEAR(range.maxY - range.minY, 1100 / 1.25, 1e-9);
  EXPECT_NEAR(Pane().PointAt(place).x, before.x, 1e-9);
  EXPECT_NEAR(Pane().PointAt(place).y, before.y, 1e-9);
  Wheel(place, -120);
  ExpectAll();
}

TEST_F(GraphWindowTest, WheelOverAnAxisZoomsAlongIt) {
  Plot();
  const QRect area = Pane().GetPlotArea();
  Wheel({area.left() - 10, area.center().y()}, 120);
  EXPECT_NEAR(Pane().GetRange().maxX, 102, 1e-9);
  EXPECT_LT(Pane().GetRange().maxY, 1000);
  Mouse(QEvent::MouseButtonDblClick, area.center(), Qt::LeftButton);
  Wheel({area.center().x(), area.bottom() + 10}, 120);
  EXPECT_NEAR(Pane().GetRange().maxY, 1050, 1e-9);
  EXPECT_LT(Pane().GetRange().maxX, 100);
}

TEST_F(GraphWindowTest, ZoomEndsWhereNumbersEnd) {
  Plot();
  for (int i = 0; i < 500; ++i) Wheel(PlaceOf(50, 500), 120);
  const GraphRange near = Pane().GetRange();
  EXPECT_LT(near.minX, near.maxX);
  for (int i = 0; i < 3000; ++i) Wheel(Pane().GetPlotArea().center(), -120);
  EXPECT_LT(Pane().GetRange().maxX, 1e102);
  QApplication::processEvents();
  ChooseItem("Reset");
  ExpectAll();
}

TEST_F(GraphWindowTest, LeftDragMoves) {
  Plot();
  const QPoint from = PlaceOf(50, 500);
  const GraphPoint held = Pane().PointAt(from);
  DragMouse(from, from + QPoint(60, 30), Qt::LeftButton);
  EXPECT_NEAR(Pane().PointAt(from + QPoint(60, 30)).x, held.x, 1e-9);
  EXPECT_NEAR(Pane().PointAt(from + QPoint(60, 30)).y, held.y, 1e-9);
  EXPECT_NEAR(Pane().GetRange().maxX - Pane().GetRange().minX, 104, 1e-9);
}

TEST_F(GraphWindowTest, RectangleZoomsToWhatItHolds) {
  Plot();
  for (const auto& [button, modifiers] :
       {std::pair(Qt::RightButton, Qt::NoModifier), std::pair(Qt::LeftButton, Qt::ShiftModifier)}) {
    const QPoint from = PlaceOf(20, 800);
    const QPoint to = PlaceOf(40, 600);
    const GraphPoint topLeft = Pane().PointAt(from);
    const GraphPoint bottomRight = Pane().PointAt(to);
    DragMouse(to, from, button, modifiers);  // from any corner to the one across
    const GraphRange range = Pane().GetRange();
    const double pixel = 104.0 / Pane().GetPlotArea().width();
    EXPECT_NEAR(range.minX, topLeft.x, 2 * pixel);
    EXPECT_NEAR(range.maxX, bottomRight.x, 2 * pixel);
    EXPECT_NEAR(range.maxY, topLeft.y, 20 * pixel);
    EXPECT_NEAR(range.minY, bottomRight.y, 20 * pixel);
    Mouse(QEvent::MouseButtonDblClick, from, Qt::LeftButton);
    ExpectAll();
  }
}

TEST_F(GraphWindowTest, RectangleThatIsNoneChangesNothing) {
  Plot();
  const QPoint from = PlaceOf(20, 800);
  for (const QPoint to : {QPoint(2, 3), QPoint(-3, -2), QPoint(0, 0)}) {
    DragMouse(from, from + to, Qt::LeftButton, Qt::ShiftModifier);
    Pane().ZoomTo(QRect(from, from + to).normalized());
    Pane().ZoomTo(QRect(-50, -50, 20, 20));
    ExpectAll();
  }
}

TEST_F(GraphWindowTest, ThinRectangleZoomsAlongItsLongSideAlone) {
  Plot();
  const QPoint from = PlaceOf(20, 800);
  const QPoint below = PlaceOf(20, 400);
  DragMouse(from, below + QPoint(2, 0), Qt::LeftButton, Qt::ShiftModifier);
  EXPECT_NEAR(Pane().GetRange().minX, -2.0, 1e-9);
  EXPECT_NEAR(Pane().GetRange().maxX, 102.0, 1e-9);
  EXPECT_NEAR(Pane().GetRange().minY, 400.0, 6.0);
  EXPECT_NEAR(Pane().GetRange().maxY, 800.0, 6.0);
  ChooseItem("Reset");
  DragMouse(from, PlaceOf(60, 800) - QPoint(0, 2), Qt::RightButton);
  EXPECT_NEAR(Pane().GetRange().minX, 20.0, 0.6);
  EXPECT_NEAR(Pane().GetRange().maxX, 60.0, 0.6);
  EXPECT_NEAR(Pane().GetRange().minY, -50.0, 1e-9);
  EXPECT_NEAR(Pane().GetRange().maxY, 1050.0, 1e-9);
}

TEST_F(GraphWindowTest, BandShowsWhatAThinRectangleMeans) {
  Plot();
  const auto& band = *Pane().findChild<QRubberBand*>();
  const QPoint from = PlaceOf(20, 800);
  const QRect area = Pane().GetPlotArea();
  Mouse(QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::ShiftModifier);
  Mouse(QEvent::MouseMove, from + QPoint(2, 2), Qt::LeftButton, Qt::ShiftModifier);
  EXPECT_FALSE(band.isVisible());
  Mouse(QEvent::MouseMove, from + QPoint(2, 60), Qt::LeftButton, Qt::ShiftModifier);
  EXPECT_EQ(band.geometry(), QRect(area.left(), from.y(), area.width(), 61));
  Mouse(QEvent::MouseMove, from + QPoint(70, 60), Qt::LeftButton, Qt::ShiftModifier);
  EXPECT_EQ(band.geometry(), QRect(from, QSize(71, 61)));
}

TEST_F(GraphWindowTest, ButtonPressedInADragEndsIt) {
  Plot();
  const QPoint from = PlaceOf(20, 800);
  Mouse(QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::ShiftModifier);
  Mouse(QEvent::MouseMove, from + QPoint(50, 50), Qt::LeftButton, Qt::ShiftModifier);
  EXPECT_TRUE(Pane().findChild<QRubberBand*>()->isVisible());
  Mouse(QEvent::MouseButtonPress, from + QPoint(50, 50), Qt::BackButton);
  EXPECT_FALSE(Pane().findChild<QRubberBand*>()->isVisible());
  Mouse(QEvent::MouseMove, from + QPoint(80, 80), Qt::NoButton);
  ExpectAll();
}

TEST_F(GraphWindowTest, ReadoutStandsBesideThePointerAndInTheStatusBar) {
  Plot();
  auto* label = Pane().findChild<QLabel*>("readout");
  const QPoint place = PlaceOf(25, 250);
  Mouse(QEvent::MouseMove, place, Qt::NoButton);
  EXPECT_TRUE(label->isVisible());
  EXPECT_EQ(label->text(), Pane().ReadoutAt(place));
  EXPECT_NEAR(label->text().section(", ", 0, 0).toDouble(), 25.0, 0.2);
  EXPECT_NEAR(label->text().section(", ", 1, 1).toDouble(), 250.0, 2.0);
  EXPECT_EQ(bench_.window.statusBar()->currentMessage(), label->text());
  EXPECT_TRUE(Pane().rect().contains(label->geometry()));
  Mouse(QEvent::MouseMove, Pane().GetPlotArea().topRight() + QPoint(-1, 1), Qt::NoButton);
  EXPECT_TRUE(Pane().rect().contains(label->geometry())) << "also in a corner";
  QEvent leave(QEvent::Leave);
  QApplication::sendEvent(&Pane(), &leave);
  EXPECT_FALSE(label->isVisible());
  EXPECT_EQ(bench_.window.statusBar()->currentMessage(), "");
}

// Whatever brings other coordinates under a pointer that rests.
TEST_F(GraphWindowTest, ReadoutFollowsEveryChangeOfRange) {
  Plot();
  const QPoint place = PlaceOf(25, 250);
  auto* label = Pane().findChild<QLabel*>("readout");
  Mouse(QEvent::MouseMove, place, Qt::NoButton);
  QString before = label->text();
  const auto expectNew = [&](const char* after) {
    QApplication::processEvents();
    EXPECT_TRUE(label->isVisible()) << after;
    EXPECT_NE(label->text(), before) << after;
    EXPECT_EQ(label->text(), Pane().ReadoutAt(place)) << after;
    EXPECT_EQ(bench_.window.statusBar()->currentMessage(), label->text()) << after;
    before = label->text();
  };
  DragMouse(place - QPoint(60, 60), place, Qt::LeftButton, Qt::ShiftModifier);
  expectNew("a rectangle");
  Mouse(QEvent::MouseButtonDblClick, place, Qt::LeftButton);
  expectNew("a double click");
  for (const int key : {Qt::Key_Up, Qt::Key_Left, Qt::Key_Home, Qt::Key_Right}) {
    PressKey(Window(), key);
    expectNew("a key");
  }
  ChooseItem("Reset");
  expectNew("Reset");
  bench_.ActiveView().PlotSeries(-1, {{-500.0, 700.0}}, {{-50.0, 9000.0}}, kCurveColour, 1);
  expectNew("a new plot");
  auto& subWindow = *bench_.window.GetArea().activeSubWindow();
  subWindow.resize(subWindow.size() - QSize(40, 30));
  expectNew("a new size");
}

TEST_F(GraphWindowTest, ReadoutStaysHiddenWhereThePointerIsOutside) {
  Plot();
  auto* label = Pane().findChild<QLabel*>("readout");
  const QPoint place = PlaceOf(25, 250);
  const auto expectHidden = [&] {
    for (const int key : {Qt::Key_Up, Qt::Key_Home}) PressKey(Window(), key);
    QApplication::processEvents();
    EXPECT_FALSE(label->isVisible());
    EXPECT_EQ(bench_.window.statusBar()->currentMessage(), "");
  };
  expectHidden();  // it has never been in the graph
  Mouse(QEvent::MouseMove, place, Qt::NoButton);
  QEvent leave(QEvent::Leave);
  QApplication::sendEvent(&Pane(), &leave);
  expectHidden();
  Mouse(QEvent::MouseMove, place, Qt::NoButton);
  Mouse(QEvent::MouseMove, {2, 2}, Qt::NoButton);  // beside the axes
  expectHidden();
  QStringList items;
  Mouse(QEvent::MouseMove, place, Qt::NoButton);
  AnswerMenu("Reset", items);
  Mouse(QEvent::MouseButtonPress, place, Qt::RightButton);
  Mouse(QEvent::MouseButtonRelease, place, Qt::RightButton);
  expectHidden();
}

TEST_F(GraphWindowTest, HintGivesWayWhereThereIsNoRoom) {
  Plot();
  auto& subWindow = *bench_.window.GetArea().activeSubWindow();
  const auto* hint = Graph().findChild<QLabel*>("hint");
  subWindow.resize(1100, 600);
  QApplication::processEvents();
  EXPECT_TRUE(hint->text().endsWith("Double click: all"));
  for (const int width : {800, 600, 480, 400, 300}) {
    subWindow.resize(width, 400);
    QApplication::processEvents();
    EXPECT_LE(hint->fontMetrics().horizontalAdvance(hint->text()), hint->width());
    EXPECT_TRUE(hint->text().isEmpty() || hint->text().endsWith("all") || hint->text().endsWith("\u2026"))
        << hint->text().toStdString();
  }
  EXPECT_TRUE(hint->toolTip().contains("Double click"));
}

TEST_F(GraphWindowTest, ArrowsAndHomeMoveTheGraphAndNotTheDrawing) {
  Plot();
  PressKey(Window(), Qt::Key_Up);
  EXPECT_LT(Pane().GetRange().maxX, 102);
  EXPECT_EQ(bench_.ActiveView().displayScale, 1.0);
  EXPECT_FALSE(bench_.window.GetStatusPanes().GetText(0).contains("Scale")) << "of what does not show";
  PressKey(Window(), Qt::Key_Down);
  ExpectAll();
  PressKey(Window(), Qt::Key_Right);
  EXPECT_GT(Pane().GetRange().minX, -2);
  PressKey(Window(), Qt::Key_Left);
  ExpectAll();
  PressKey(Window(), Qt::Key_Left);
  PressKey(Window(), Qt::Key_Home);
  ExpectAll();
  PressKey(Window(), Qt::Key_Escape);
  EXPECT_FALSE(Window().IsGraphShown());
  PressKey(Window(), Qt::Key_Up);
  EXPECT_EQ(bench_.ActiveView().displayScale, 2.0);
}

TEST_F(GraphWindowTest, LettersStillMoveTheExamPoint) {
  Plot();
  bench_.ActiveView().examStep = {1.5, 1.0, 1.0};
  PressKey(Window(), Qt::Key_D);
  EXPECT_EQ(bench_.ActiveView().examPoint.x, 1.5);
}

TEST_F(GraphWindowTest, RightClickHasTheMenuOfTheRow) {
  Plot();
  Wheel(PlaceOf(25, 250), 120);
  QStringList items;
  AnswerMenu("Reset", items);
  const QPoint place = PlaceOf(30, 300);
  Mouse(QEvent::MouseButtonPress, place, Qt::RightButton);
  Mouse(QEvent::MouseButtonRelease, place, Qt::RightButton);
  EXPECT_EQ(items, QStringList({"Reset", "Save as PNG...", "Save as CSV...", "Hide"}));
  ExpectAll();
}

TEST_F(GraphWindowTest, EachWindowHasItsOwnAndClosingDropsIt) {
  Plot();
  CCorvaneView& first = bench_.ActiveView();
  bench_.Choose("Window > New Window");
  EXPECT_EQ(Window().GetGraph(), nullptr);
  Plot();
  const GraphView* closed = &bench_.ActiveView().graph;
  QPointer<CGraphWindow> graph = &Graph();
  bench_.app.CloseView(bench_.ActiveView());
  EXPECT_EQ(graph->GetGraph(), nullptr);
  graph->Plot(-1);
  bench_.window.PlotGraph(*closed, 0);
  bench_.window.ResizeGraph(first.graph);
  QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_TRUE(graph.isNull());
  EXPECT_TRUE(bench_.window.FindWindow(first)->IsGraphShown());
}

TEST_F(GraphWindowTest, DocumentClosesUnderItsGraph) {
  Plot();
  bench_.Choose("File > Close");
  QApplication::processEvents();
  QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_EQ(bench_.window.statusBar()->currentMessage(), "");
}

TEST(GraphWithoutAWindow, CanNotBeMade) {
  QtFrontEnd frontEnd;
  CNTGraph graph;
  Workbench bench;
  EXPECT_FALSE(frontEnd.ShowGraph(bench.ActiveView(), graph)) << "no main window";
  frontEnd.PlotGraph(graph, 0);
  frontEnd.ResizeGraph(graph);
}

}  // namespace

}  // namespace corvane
