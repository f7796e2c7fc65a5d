#pragma once

#include <QAbstractScrollArea>
#include <functional>

#include "qt/GraphWindow.h"
#include "ui/WindowView.h"

class QKeyEvent;
class QPainter;

namespace corvane {

// The window on a view: shows its drawing, or why there is none, scrolls it, and passes keys, wheel and
// pointer on to it. A graph covers the drawing and its scroll bars while it shows; it then has the keys
// first.
class CViewWindow : public QAbstractScrollArea {
 public:
  explicit CViewWindow(WindowView& view);

  // Hears of a key or the wheel having changed the scale.
  std::function<void()> onZoom;
  // Hears of the coordinates under the pointer in the graph, and of "" when it leaves the graph.
  std::function<void(const QString& text)> onReadout;

  // Null after Detach.
  WindowView* GetView() const { return view_; }
  // The view is about to end, perhaps before this window does: it is not touched any more.
  void Detach();

  // Shows the graph over the drawing, which makes its window at the first call.
  void ShowGraph(const GraphView& graph, const CGraphWindow::Browser& browse);
  void HideGraph();
  bool IsGraphShown() const { return graph_ && !graph_->isHidden(); }
  // Null before the first ShowGraph.
  CGraphWindow* GetGraph() const { return graph_; }

  // Takes scroll size and scroll position over from the view.
  void UpdateScrollBars();

  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void scrollContentsBy(int dx, int dy) override;
  void keyPressEvent(QKeyEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;

 private:
  // Whether the view shows a picture with a zoom of its own.
  bool IsZoomable() const { return view_ && view_->GetZoom() > 0.0; }
  void SetIdleCursor();
  void PaintPart(QPainter& painter, const QRect& part);
  QSize ShownSize() const;
  void SetScrollBars(QSize shown);
  void MakeGraph(const GraphView& graph, const CGraphWindow::Browser& browse);
  void CoverWithGraph();
  void SetScrollBarPolicy(Qt::ScrollBarPolicy policy);
  // Takes the wheel's whole notches to the view; true if it has used them.
  bool PassWheel(int angle);
  int WholeNotches(int angle);
  bool PassKey(int key, int repeatCount);
  // The wheel over a picture with a zoom: zooms around the pointer, with Shift or tilted scrolls sideways.
  void TurnOverPicture(const QWheelEvent& event);
  bool ZoomByKey(const QKeyEvent& event);
  void ZoomBySteps(int steps, QPoint anchor);
  bool ScrollByKey(int key);

  WindowView* view_;
  CGraphWindow* graph_ = nullptr;
  bool updating_ = false;  // the scroll bars follow the view, not a person
  int wheelAngle_ = 0;     // turned so far towards a whole notch, in eighths of a degree
  QPoint grabbed_;         // where a drag was last, in the viewport
  bool dragging_ = false;
};

// The view's key for a key event: letters and digits as upper-case characters, the arrows as Key's; 0 for
// keys that views do not get.
int ViewKey(const QKeyEvent& event);

// Why the view has nothing to paint; "" if it has.
QString WhyEmpty(const WindowView& view);

}  // namespace corvane
