// The graph over the window of a view.

#include "qt/GraphWindow.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QContextMenuEvent>
#include <QImage>
#include <QLabel>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMouseEvent>
#include <QRubberBand>
#include <QScrollBar>
#include <QStatusBar>
#include <QTimer>
#include <QWheelEvent>
#include <filesystem>

#include "cli/ScriptRecorder.h"
#include "qt/ModalScript.h"
#include "qt/PlotPane.h"
#include "qt/Workbench.h"

namespace corvane {

namespace {

constexpr Colour kRed{255, 0, 0};
const std::vector<double> kXs = {0.0, 100.0};
const std::vector<double> kYs = {0.0, 1000.0};

class GraphWindowTest : public testing::Test {
 protected:
  GraphWindowTest() {
    WriteSquareTin("square.tin", 2000.0);
    bench_.Open("square.tin");
  }

  void Plot() {
    ASSERT_EQ(bench_.ActiveView().PlotSeries(-1, kXs, kYs, kRed, 3), 0);
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
  DragMouse(from, from + QPoint(2, 100), Qt::LeftButton, Qt::ShiftModifier);
  ExpectAll();
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

TEST_F(GraphWindowTest, SavesWhatShowsAsPng) {
  Plot();
  ModalScript script({[](QWidget& dialog) {
    EXPECT_EQ(dialog.windowTitle(), "Save Graph");
    TypeInto(dialog, "fileNameEdit", "curve");
    PressButton(dialog, "Save");
  }});
  ChooseItem("Save as PNG...");
  const QImage image("curve.png");
  EXPECT_EQ(image.size(), Pane().size() * 2);
  EXPECT_EQ(image.pixelColor(PlaceOf(30, 300) * 2), QColor(Qt::red));
}

TEST_F(GraphWindowTest, SavesThePointsAsCsv) {
  Plot();
  bench_.ActiveView().PlotValues(-1, std::vector<double>{0.1}, kRed, 1);
  ModalScript script({[](QWidget& dialog) {
    TypeInto(dialog, "fileNameEdit", "curve");
    PressButton(dialog, "Save");
  }});
  ChooseItem("Save as CSV...");
  EXPECT_EQ(ReadFileBytes("curve.csv"), "element,x,y\n0,0,0\n0,100,1000\n1,0,0.1\n");
}

TEST_F(GraphWindowTest, CancelledSavingWritesNothing) {
  Plot();
  ModalScript script({[](QWidget& dialog) { PressKey(dialog, Qt::Key_Escape); }});
  ChooseItem("Save as CSV...");
  EXPECT_FALSE(std::filesystem::exists("Data Graph.csv"));
}

TEST_F(GraphWindowTest, FileThatCanNotBeWrittenIsTold) {
  Plot();
  for (const char* item : {"Save as PNG...", "Save as CSV..."}) {
    ModalScript script({[](QWidget& dialog) {
                          TypeInto(dialog, "fileNameEdit", "missing/graph.out");
                          PressButton(dialog, "Save");
                        },
                        [](QWidget& box) {
                          EXPECT_TRUE(BoxText(box).startsWith("Write file "));
                          EXPECT_TRUE(BoxText(box).endsWith("missing/graph.out error!"));
                          PressButton(box, "OK");
                        }});
    ChooseItem(item);
  }
}

TEST_F(GraphWindowTest, SavingIsNoCommandOfARecord) {
  ScriptRecorder recorder(bench_.frontEnd, "day.txt");
  const InstalledFrontEnd installed(recorder);
  // A window that was closed by hand with its changes saved: answers might still be taken for the saving's.
  {
    ModalScript script({Press("Save")});
    recorder.AskSaveChanges("a.tin");
  }
  const std::string before = ReadFileBytes("day.txt");
  Plot();
  ModalScript script({[](QWidget& dialog) {
    TypeInto(dialog, "fileNameEdit", "curve");
    PressButton(dialog, "Save");
  }});
  ChooseItem("Save as CSV...");
  EXPECT_EQ(ReadFileBytes("day.txt"), before);
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
