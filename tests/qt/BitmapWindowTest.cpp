#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPrinter>
#include <QScreen>
#include <QScrollBar>
#include <QWheelEvent>

#include "qt/ModalScript.h"
#include "qt/Printing.h"
#include "qt/Workbench.h"
#include "shell/DibView.h"

namespace corvane {

namespace {

const QRgb kAround = qRgb(128, 128, 128);

// The colour of a chart's pixel, no two of them alike up to 4096 x 4096.
QRgb ChartColour(int col, int row) {
  return qRgb(col % 256, row % 256, col / 256 * 16 + row / 256);
}

Dib ChartDib(int width, int height) {
  Dib dib = MakeBlackDib(width, height, 24);
  for (int row = 0; row < height; ++row) {
    for (int col = 0; col < width; ++col) {
      const QRgb pixel = ChartColour(col, row);
      const std::uint8_t color[] = {static_cast<std::uint8_t>(qBlue(pixel)),
                                    static_cast<std::uint8_t>(qGreen(pixel)),
                                    static_cast<std::uint8_t>(qRed(pixel))};
      SetPixelColor(dib, col, row, color);
    }
  }
  return dib;
}

class BitmapWindowTest : public testing::Test {
 protected:
  CDibView& Open(int width, int height) {
    CDibView& view = OpenBitmapWindow(bench_.app.GetMainFrame(), ChartDib(width, height), "chart.lan");
    bench_.window.Refresh();
    QApplication::processEvents();
    return view;
  }

  CViewWindow& WindowOf(const CDibView& view) { return *bench_.window.FindWindow(view); }

  QImage Painted(const CDibView& view) {
    return WindowOf(view).viewport()->grab().toImage().convertToFormat(QImage::Format_RGB32);
  }

  void Wheel(const CDibView& view, QPoint at, QPoint angle,
             Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QWheelEvent event(at, at, QPoint(), angle, Qt::NoButton, modifiers, Qt::NoScrollPhase, false);
    QApplication::sendEvent(WindowOf(view).viewport(), &event);
  }

  void Mouse(const CDibView& view, QEvent::Type type, QPoint at, Qt::MouseButton button = Qt::NoButton) {
    const bool moves = type == QEvent::MouseMove;
    const auto held = type == QEvent::MouseButtonRelease ? Qt::NoButton : button;
    QMouseEvent event(type, at, at, moves ? Qt::NoButton : button, held, Qt::NoModifier);
    QApplication::sendEvent(WindowOf(view).viewport(), &event);
  }

  void Drag(const CDibView& view, QPoint from, QPoint to, Qt::MouseButton button = Qt::LeftButton) {
    Mouse(view, QEvent::MouseButtonPress, from, button);
    Mouse(view, QEvent::MouseMove, to, button);
    Mouse(view, QEvent::MouseButtonRelease, to, button);
  }

  QAction& Item(const char* name) { return *bench_.window.GetMenus().Find(name); }
  std::string Message() { return bench_.window.GetStatusPanes().GetText(0).toStdString(); }

  Workbench bench_;
};

TEST_F(BitmapWindowTest, PictureStandsAtTheTopLeftOnGrey) {
  const QImage image = Painted(Open(40, 30));
  for (const QPoint at : {QPoint(0, 0), QPoint(39, 0), QPoint(0, 29), QPoint(39, 29), QPoint(17, 5)}) {
    EXPECT_EQ(image.pixel(at), ChartColour(at.x(), at.y())) << at.x() << ", " << at.y();
  }
  for (const QPoint at : {QPoint(40, 0), QPoint(0, 30), QPoint(40, 30), QPoint(300, 200)}) {
    EXPECT_EQ(image.pixel(at), kAround) << at.x() << ", " << at.y();
  }
}

TEST_F(BitmapWindowTest, EnlargedPixelsAreCrisp) {
  CDibView& view = Open(40, 30);
  view.SetZoom(0, 10.0);
  const QImage image = Painted(view);
  for (int y = 0; y < 300; ++y) {
    for (int x = 0; x < 400; ++x) ASSERT_EQ(image.pixel(x, y), ChartColour(x / 10, y / 10)) << x << ", " << y;
  }
  EXPECT_EQ(image.pixel(400, 0), kAround);
}

TEST_F(BitmapWindowTest, RoomForOverlaysWithoutABitmapIsWhite) {
  CDibView& view = OpenBitmapWindow(bench_.app.GetMainFrame(), {}, "points.txt");
  EXPECT_EQ(WhyEmpty(view), "No picture");
  view.GetDocument().SetEmptySize({50, 40});
  EXPECT_EQ(WhyEmpty(view), "");
  const QImage image = Painted(view);
  EXPECT_EQ(image.pixel(49, 39), qRgb(255, 255, 255));
  EXPECT_EQ(image.pixel(50, 39), kAround);
  EXPECT_EQ(image.pixel(49, 40), kAround);
}

TEST_F(BitmapWindowTest, WheelZoomKeepsThePixelUnderThePointer) {
  CDibView& view = Open(2000, 1500);
  const QPoint pointer(311, 207);
  WindowOf(view).horizontalScrollBar()->setValue(400);
  WindowOf(view).verticalScrollBar()->setValue(300);
  const QRgb wanted = ChartColour(711, 507);
  EXPECT_EQ(Painted(view).pixel(pointer), wanted);
  double before = view.GetZoom();
  for (int i = 0; i < 6; ++i) {
    Wheel(view, pointer, {0, 120});
    EXPECT_GT(view.GetZoom(), before);
    before = view.GetZoom();
    EXPECT_EQ(Painted(view).pixel(pointer), wanted) << before;
  }
  for (int i = 0; i < 6; ++i) {
    Wheel(view, pointer, {0, -120});
    EXPECT_LT(view.GetZoom(), before);
    before = view.GetZoom();
    if (before < 1.0) continue;  // pixels are means
    EXPECT_EQ(Painted(view).pixel(pointer), wanted) << before;
  }
}

TEST_F(BitmapWindowTest, WheelPartsAddUpAndCtrlMakesNoDifference) {
  CDibView& view = Open(2000, 1500);
  for (int i = 0; i < 7; ++i) Wheel(view, {10, 10}, {0, 15});
  EXPECT_EQ(view.GetZoom(), 1.0);
  Wheel(view, {10, 10}, {0, 15});
  const double zoomed = view.GetZoom();
  EXPECT_GT(zoomed, 1.0);
  Wheel(view, {10, 10}, {0, -120}, Qt::ControlModifier);
  EXPECT_EQ(view.GetZoom(), 1.0);
  Wheel(view, {10, 10}, {0, 240});
  EXPECT_GT(view.GetZoom(), zoomed);
}

TEST_F(BitmapWindowTest, WheelWithShiftAndTiltedWheelScrollSideways) {
  CDibView& view = Open(2000, 1500);
  QScrollBar& bar = *WindowOf(view).horizontalScrollBar();
  Wheel(view, {10, 10}, {0, -120}, Qt::ShiftModifier);
  EXPECT_EQ(bar.value(), 3 * bar.singleStep());
  Wheel(view, {10, 10}, {-120, 0});
  EXPECT_EQ(bar.value(), 6 * bar.singleStep());
  Wheel(view, {10, 10}, {60, 0});
  EXPECT_EQ(bar.value(), 6 * bar.singleStep() - 3 * bar.singleStep() / 2);
  EXPECT_EQ(view.GetZoom(), 1.0);
  EXPECT_EQ(WindowOf(view).verticalScrollBar()->value(), 0);
}

TEST_F(BitmapWindowTest, PlusAndMinusZoomAroundTheMiddle) {
  CDibView& view = Open(2000, 1500);
  CViewWindow& window = WindowOf(view);
  window.horizontalScrollBar()->setValue(500);
  window.verticalScrollBar()->setValue(400);
  const QPoint middle(window.viewport()->width() / 2, window.viewport()->height() / 2);
  const QRgb wanted = Painted(view).pixel(middle);
  for (const Qt::Key key : {Qt::Key_Plus, Qt::Key_Equal}) {
    PressKey(window, key);
    EXPECT_EQ(Painted(view).pixel(middle), wanted);
  }
  EXPECT_GT(view.GetZoom(), 1.0);
  PressKey(window, Qt::Key_Minus);
  PressKey(window, Qt::Key_Minus);
  EXPECT_EQ(view.GetZoom(), 1.0);
  EXPECT_EQ(Painted(view).pixel(middle), wanted);
}

TEST_F(BitmapWindowTest, ZoomIsTold) {
  CDibView& view = Open(2000, 1500);
  Wheel(view, {10, 10}, {0, 120});
  EXPECT_EQ(Message(), "Zoom: 150 %");
  PressKey(WindowOf(view), Qt::Key_Plus);
  EXPECT_EQ(Message(), "Zoom: 200 %");
  for (int i = 0; i < 3; ++i) bench_.Choose("View > Zoom Out");
  EXPECT_EQ(Message(), "Zoom: 66.67 %");
}

TEST_F(BitmapWindowTest, ZoomItemsAndTheirKeys) {
  CDibView& view = Open(2000, 1500);
  bench_.Choose("View > Zoom In");
  EXPECT_GT(view.GetZoom(), 1.0);
  bench_.Choose("View > Zoom Out");
  EXPECT_EQ(view.GetZoom(), 1.0);
  bench_.Choose("View > Zoom Out");
  EXPECT_LT(view.GetZoom(), 1.0);
  bench_.Choose("View > Zoom 1:1");
  EXPECT_EQ(view.GetZoom(), 1.0);
  bench_.Choose("View > Zoom 1:5");
  EXPECT_EQ(Item("View > Zoom In").shortcuts(),
            QList<QKeySequence>({QKeySequence("Ctrl++"), QKeySequence("Ctrl+=")}));
  EXPECT_EQ(Item("View > Zoom Out").shortcut(), QKeySequence("Ctrl+-"));
  EXPECT_EQ(Item("View > Zoom 1:1").shortcut(), QKeySequence("Ctrl+1"));
}

TEST_F(BitmapWindowTest, DragPansWithEitherButton) {
  CDibView& view = Open(2000, 1500);
  for (const Qt::MouseButton button : {Qt::LeftButton, Qt::MiddleButton}) {
    view.SetScrollPosition({100, 100});
    WindowOf(view).UpdateScrollBars();
    Mouse(view, QEvent::MouseButtonPress, {300, 200}, button);
    EXPECT_EQ(WindowOf(view).viewport()->cursor().shape(), Qt::ClosedHandCursor);
    Mouse(view, QEvent::MouseMove, {280, 230}, button);
    Mouse(view, QEvent::MouseButtonRelease, {280, 230}, button);
    EXPECT_EQ(WindowOf(view).viewport()->cursor().shape(), Qt::CrossCursor);
    EXPECT_EQ(view.GetScrollPosition(), (PixelPoint{120, 70}));
    EXPECT_EQ(Painted(view).pixel(0, 0), ChartColour(120, 70));
  }
}

// Adds up the area of what is painted.
class PaintedArea : public QObject {
 public:
  explicit PaintedArea(QWidget& widget) { widget.installEventFilter(this); }
  int area = 0;

 protected:
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() != QEvent::Paint) return false;
    for (const QRect& part : static_cast<QPaintEvent*>(event)->region()) area += part.width() * part.height();
    return false;
  }
};

TEST_F(BitmapWindowTest, PanningPaintsOnlyWhatComesIntoSight) {
  CDibView& view = Open(2000, 1500);
  CViewWindow& window = WindowOf(view);
  QApplication::processEvents();
  PaintedArea painted(*window.viewport());
  Drag(view, {300, 200}, {287, 183});
  QApplication::processEvents();
  EXPECT_EQ(view.GetScrollPosition(), (PixelPoint{13, 17}));
  const QSize size = window.viewport()->size();
  EXPECT_GT(painted.area, 0);
  EXPECT_LE(painted.area, 13 * size.height() + 17 * size.width());
}

int CountDifferent(const QImage& a, const QImage& b) {
  EXPECT_EQ(a.size(), b.size());
  int count = 0;
  for (int y = 0; y < a.height(); ++y) {
    for (int x = 0; x < a.width(); ++x) count += a.pixel(x, y) != b.pixel(x, y);
  }
  return count;
}

// What has been moved on screen and what has been painted beside it fit together. Qt rounds long slanting
// lines and glyphs at an edge by a pixel here and there.
TEST_F(BitmapWindowTest, PannedPictureIsThatPaintedAnew) {
  CDibView& view = Open(2000, 1500);
  for (int i = 0; i < 2000; i += 10) {
    view.m_points.insert(view.m_points.end(), {1.0 * i, 0.7 * i});
    view.m_labels.push_back({0.3 * i, 0.7 * i, "label " + std::to_string(i)});
  }
  view.m_polylines = {{0, 0, 2000, 1111, 3, 1500, 1500, 3}, {5, 700, 1900, 690}};
  view.Redraw();
  const auto shown = [this] {
    QApplication::processEvents();
    return bench_.window.screen()->grabWindow(bench_.window.winId()).toImage();
  };
  for (const double zoom : {1.0, 3.0, 1.0 / 3, 2.0 / 3}) {
    view.SetZoom(0, zoom);
    const QImage before = shown();
    Drag(view, {300, 200}, {283, 187});
    Drag(view, {300, 200}, {290, 207});
    const QImage panned = shown();
    if (zoom > 0.5) {
      EXPECT_GT(CountDifferent(panned, before), 100000) << zoom;
    }
    WindowOf(view).viewport()->repaint();
    EXPECT_LT(CountDifferent(shown(), panned), 100) << zoom;
  }
}

TEST_F(BitmapWindowTest, PointerTellsThePlaceAndThePixel) {
  CDibView& view = Open(40, 30);
  EXPECT_TRUE(WindowOf(view).viewport()->hasMouseTracking());
  view.SetZoom(0, 2.0);
  Mouse(view, QEvent::MouseMove, {21, 15});
  EXPECT_EQ(Message(), "(col:10, row:7) (0,7,10)");  // blue, green, red
  Mouse(view, QEvent::MouseMove, {80, 15});
  EXPECT_EQ(Message(), "(col:40, row:7)(Out of range)");
}

TEST_F(BitmapWindowTest, PointerTellsThePlaceInAScrolledPicture) {
  CDibView& view = Open(2000, 1500);
  WindowOf(view).horizontalScrollBar()->setValue(300);
  WindowOf(view).verticalScrollBar()->setValue(100);
  Mouse(view, QEvent::MouseMove, {7, 9});
  EXPECT_EQ(Message(), "(col:307, row:109) (16,109,51)");
}

TEST_F(BitmapWindowTest, ArrowsScrollUnlessTheyMoveAPoint) {
  CDibView& view = Open(2000, 1500);
  CViewWindow& window = WindowOf(view);
  PressKey(window, Qt::Key_Right);
  PressKey(window, Qt::Key_Down);
  EXPECT_EQ(window.horizontalScrollBar()->value(), window.horizontalScrollBar()->singleStep());
  EXPECT_EQ(window.verticalScrollBar()->value(), window.verticalScrollBar()->singleStep());
  view.m_polylines = {{5, 6}};
  PressKey(window, Qt::Key_Left);
  PressKey(window, Qt::Key_Up);
  EXPECT_EQ(view.m_polylines.front(), (std::vector<double>{4, 5}));
  EXPECT_EQ(window.verticalScrollBar()->value(), window.verticalScrollBar()->singleStep());
  EXPECT_NE(Message(), "Zoom: 100 %");
}

TEST_F(BitmapWindowTest, HomeEndAndPageKeysScroll) {
  CDibView& view = Open(2000, 1500);
  CViewWindow& window = WindowOf(view);
  PressKey(window, Qt::Key_End);
  EXPECT_EQ(Painted(view).pixel(window.viewport()->rect().bottomRight()), ChartColour(1999, 1499));
  PressKey(window, Qt::Key_Home);
  EXPECT_EQ(Painted(view).pixel(0, 0), ChartColour(0, 0));
  PressKey(window, Qt::Key_PageDown);
  EXPECT_EQ(window.verticalScrollBar()->value(), window.viewport()->height());
}

TEST_F(BitmapWindowTest, LHidesAndShowsLabels) {
  CDibView& view = Open(400, 300);
  const QImage bare = Painted(view);
  view.m_labels = {{50, 60, "label"}};
  view.Redraw();
  const QImage labelled = Painted(view);
  EXPECT_NE(labelled, bare);
  PressKey(WindowOf(view), Qt::Key_L);
  EXPECT_EQ(Painted(view), bare);
  PressKey(WindowOf(view), Qt::Key_L, Qt::ShiftModifier);
  EXPECT_EQ(Painted(view), labelled);
}

TEST_F(BitmapWindowTest, PointsKeepTheirSizeWhenZoomed) {
  CDibView& view = OpenBitmapWindow(bench_.app.GetMainFrame(), MakeBlackDib(400, 300, 8), "black.lan");
  view.m_points = {50, 60};
  view.Redraw();
  for (const double zoom : {1.0, 4.0, 0.5}) {
    view.SetZoom(0, zoom);
    PressKey(WindowOf(view), Qt::Key_Home);
    const QImage image = Painted(view);
    int nRed = 0;
    for (int y = 0; y < image.height(); ++y) {
      for (int x = 0; x < image.width(); ++x) nRed += image.pixel(x, y) == qRgb(255, 0, 0);
    }
    EXPECT_EQ(nRed, 13) << zoom;  // a cross of 7 x 7
  }
}

TEST_F(BitmapWindowTest, CopyAndPasteGoThroughTheClipboard) {
  QApplication::clipboard()->clear();
  CDibView& source = Open(40, 30);
  EXPECT_TRUE(Item("Edit > Copy").isEnabled());
  EXPECT_FALSE(Item("Edit > Paste").isEnabled());
  bench_.Choose("Edit > Copy");
  EXPECT_TRUE(Item("Edit > Paste").isEnabled());

  CDibView& target = Open(7, 5);
  bench_.Choose("Edit > Paste");
  EXPECT_EQ(target.GetDocument().GetDib(), source.GetDocument().GetDib());
  EXPECT_EQ(Painted(target).pixel(39, 29), ChartColour(39, 29));
  EXPECT_EQ(target.GetScrollSize(), (PixelSize{40, 30}));
  EXPECT_TRUE(bench_.window.isWindowModified());
}

TEST_F(BitmapWindowTest, PasteFollowsTheClipboard) {
  Open(40, 30);
  QApplication::clipboard()->setText("text");
  EXPECT_FALSE(Item("Edit > Paste").isEnabled());
  QApplication::clipboard()->setImage(QImage(3, 3, QImage::Format_RGB32));
  EXPECT_TRUE(Item("Edit > Paste").isEnabled());
  QApplication::clipboard()->clear();
  EXPECT_FALSE(Item("Edit > Paste").isEnabled());
}

TEST_F(BitmapWindowTest, WindowWithoutABitmapHasNothingToCopy) {
  OpenBitmapWindow(bench_.app.GetMainFrame(), {}, "points.txt");
  EXPECT_FALSE(Item("Edit > Copy").isEnabled());
  EXPECT_FALSE(Item("File > Print").isEnabled());
}

TEST_F(BitmapWindowTest, BesideItATinWindowHasNothingToEditOrToZoom) {
  Open(40, 30);
  bench_.Choose("Edit > Copy");
  bench_.Choose("Window > Next Pane");
  EXPECT_EQ(bench_.app.GetMainFrame().GetActiveView()->GetKind(), WindowKind::Tin);
  for (const char* name : {"Edit > Undo", "Edit > Cut", "Edit > Copy", "Edit > Paste", "View > Zoom In",
                           "View > Zoom Out", "View > Zoom 1:1", "View > Zoom 1:5"}) {
    EXPECT_FALSE(Item(name).isEnabled()) << name;
  }
}

TEST_F(BitmapWindowTest, SecondWindowOfADocumentHasAZoomOfItsOwn) {
  CDibView& first = Open(400, 300);
  first.SetZoom(0, 4.0);
  bench_.Choose("Window > New Window");
  auto& second = dynamic_cast<CDibView&>(*bench_.app.GetMainFrame().GetActiveView());
  EXPECT_EQ(second.GetTitle(), "chart.lan:2");
  bench_.Choose("View > Zoom Out");
  EXPECT_EQ(first.GetZoom(), 4.0);
  EXPECT_LT(second.GetZoom(), 1.0);
}

TEST_F(BitmapWindowTest, PrintsItsPicture) {
  CDibView& view = Open(400, 300);
  view.m_labels = {{50, 60, "label"}};
  EXPECT_TRUE(Item("File > Print").isEnabled());
  QPrinter printer;
  printer.setOutputFormat(QPrinter::PdfFormat);
  printer.setOutputFileName("page.pdf");
  EXPECT_TRUE(DrawPage(view, printer));
  const std::string page = ReadFileBytes("page.pdf");
  EXPECT_EQ(page.substr(0, 5), "%PDF-");
  EXPECT_NE(page.find("/Subtype /Image"), std::string::npos);
  EXPECT_NE(page.find("/Width 400"), std::string::npos);
}

TEST_F(BitmapWindowTest, LargestZoomScrollsToTheEnd) {
  CDibView& view = Open(2000, 1500);
  for (int i = 0; i < 40; ++i) bench_.Choose("View > Zoom In");
  PressKey(WindowOf(view), Qt::Key_End);
  const QImage image = Painted(view);
  EXPECT_EQ(image.pixel(image.width() - 1, image.height() - 1), ChartColour(1999, 1499));
  for (int i = 0; i < 80; ++i) bench_.Choose("View > Zoom Out");
  EXPECT_EQ(Painted(view).pixel(300, 300), kAround);
}

}  // namespace

}  // namespace corvane
