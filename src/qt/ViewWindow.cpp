#include "qt/ViewWindow.h"

#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>
#include <QWheelEvent>
#include <algorithm>
#include <cstdlib>

#include "picture/QtCanvas.h"
#include "qt/PlotPane.h"
#include "shell/CorvaneView.h"

namespace corvane {

namespace {

constexpr int kAnglePerNotch = 120;  // eighths of a degree
constexpr QSize kFirstSize(760, 560);
constexpr int kLinesPerNotch = 3;  // that a sideways turn of the wheel scrolls
constexpr QRgb kAroundPicture = qRgb(128, 128, 128);

void SetScrollBar(QScrollBar& bar, std::int32_t size, int shown, std::int64_t position) {
  bar.setRange(0, std::max(0, size - shown));
  bar.setPageStep(shown);
  bar.setSingleStep(std::max(1, shown / 10));
  bar.setValue(static_cast<int>(std::min<std::int64_t>(position, bar.maximum())));
}

// What there is to scroll: nothing of a TIN that is not painted any more.
PixelSize ContentSize(const WindowView& view) {
  const auto* tinView = dynamic_cast<const CCorvaneView*>(&view);
  return tinView && !tinView->paintEnabled ? PixelSize{} : view.GetScrollSize();
}

// A scroll bar's value moved by a distance, without overflow near its far end.
void MoveScrollBar(QScrollBar& bar, int distance) {
  const std::int64_t value = std::int64_t{bar.value()} + distance;
  bar.setValue(static_cast<int>(std::clamp<std::int64_t>(value, bar.minimum(), bar.maximum())));
}

}  // namespace

int ViewKey(const QKeyEvent& event) {
  if (event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) return 0;
  const int key = event.key();
  if ((key >= Qt::Key_A && key <= Qt::Key_Z) || (key >= Qt::Key_0 && key <= Qt::Key_9)) return key;
  switch (key) {
    case Qt::Key_Up:
      return Key::kUp;
    case Qt::Key_Down:
      return Key::kDown;
    case Qt::Key_Left:
      return Key::kLeft;
    case Qt::Key_Right:
      return Key::kRight;
    default:
      return 0;
  }
}

QString WhyEmpty(const WindowView& view) {
  if (view.GetKind() == WindowKind::Bitmap) return view.HasPicture() ? "" : "No picture";
  const auto* tinView = dynamic_cast<const CCorvaneView*>(&view);
  if (!tinView || tinView->HasPicture()) return {};
  return tinView->GetDocument().GetTIN().IsStored()
             ? "Not painted since a comparison; Window > New Window shows the TIN"
             : "No TIN";
}

CViewWindow::CViewWindow(WindowView& view) : view_(&view) {
  setFocusPolicy(Qt::StrongFocus);
  setFrameShape(QFrame::NoFrame);
  viewport()->setAttribute(Qt::WA_OpaquePaintEvent);  // every paint fills the background itself
  viewport()->setMouseTracking(IsZoomable());
  SetIdleCursor();
}

// Over a picture the pointer marks a pixel.
void CViewWindow::SetIdleCursor() {
  if (IsZoomable()) {
    viewport()->setCursor(Qt::CrossCursor);
  } else {
    viewport()->unsetCursor();
  }
}

QSize CViewWindow::sizeHint() const {
  return kFirstSize;
}

void CViewWindow::Detach() {
  view_ = nullptr;
  if (graph_) graph_->Detach();
}

void CViewWindow::ShowGraph(const GraphView& graph, const CGraphWindow::Browser& browse) {
  if (!graph_) MakeGraph(graph, browse);
  CoverWithGraph();
}

// The scroll bars are those of the drawing.
void CViewWindow::CoverWithGraph() {
  SetScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  graph_->setGeometry(viewport()->geometry());
  graph_->show();
  graph_->raise();
}

void CViewWindow::MakeGraph(const GraphView& graph, const CGraphWindow::Browser& browse) {
  graph_ = new CGraphWindow(graph, browse, this);
  graph_->onHide = [this] { HideGraph(); };
  CPlotPane& pane = graph_->GetPane();
  pane.takeWheel = [this](int angle) { return PassWheel(angle); };
  pane.onReadout = [this](const QString& text) {
    if (onReadout) onReadout(text);
  };
}

void CViewWindow::HideGraph() {
  if (!graph_) return;
  graph_->hide();
  SetScrollBarPolicy(Qt::ScrollBarAsNeeded);
  UpdateScrollBars();
}

void CViewWindow::SetScrollBarPolicy(Qt::ScrollBarPolicy policy) {
  setHorizontalScrollBarPolicy(policy);
  setVerticalScrollBarPolicy(policy);
}

void CViewWindow::UpdateScrollBars() {
  if (!view_ || updating_) return;
  updating_ = true;
  // A scroll bar that comes or goes changes the size that is shown; the second pass settles it.
  QSize shown = ShownSize();
  SetScrollBars(shown);
  if (ShownSize() != shown) SetScrollBars(ShownSize());
  updating_ = false;
  view_->SetScrollPosition({horizontalScrollBar()->value(), verticalScrollBar()->value()});
  viewport()->update();
}

// The viewport's size; where everything fits without scroll bars, the size without them.
QSize CViewWindow::ShownSize() const {
  const PixelSize content = ContentSize(*view_);
  const QSize whole = maximumViewportSize();
  const bool fits = content.width <= whole.width() && content.height <= whole.height();
  return fits ? whole : viewport()->size();
}

void CViewWindow::SetScrollBars(QSize shown) {
  const PixelSize content = ContentSize(*view_);
  const PixelPoint position = view_->GetScrollPosition();
  SetScrollBar(*horizontalScrollBar(), content.width, shown.width(), position.x);
  SetScrollBar(*verticalScrollBar(), content.height, shown.height(), position.y);
}

void CViewWindow::paintEvent(QPaintEvent* event) {
  QPainter painter(viewport());
  // Two thin strips after a move aslant, not all that lies between them.
  for (const QRect& part : event->region()) PaintPart(painter, part);
  const QString why = view_ ? WhyEmpty(*view_) : "";
  if (why.isEmpty()) return;
  painter.setClipping(false);
  painter.setFont(font());
  painter.setPen(IsZoomable() ? Qt::white : Qt::gray);
  painter.drawText(viewport()->rect(), Qt::AlignCenter | Qt::TextWordWrap, why);
}

// The ground is white; around a picture grey, so that white ones show their edges.
void CViewWindow::PaintPart(QPainter& painter, const QRect& part) {
  const QPoint scrolled(horizontalScrollBar()->value(), verticalScrollBar()->value());
  painter.setClipRect(part);
  if (IsZoomable()) {
    const PixelSize content = ContentSize(*view_);
    painter.fillRect(part, QColor(kAroundPicture));
    painter.fillRect(part & QRect(-scrolled, QSize(content.width, content.height)), Qt::white);
  } else {
    painter.fillRect(part, Qt::white);
  }
  if (!view_) return;
  const PixelPoint origin = {scrolled.x(), scrolled.y()};
  const PixelRect visible = {origin.x + part.left(), origin.y + part.top(),
                             origin.x + part.left() + part.width(), origin.y + part.top() + part.height()};
  QtCanvas canvas(painter, visible, origin);
  view_->OnDraw(canvas);
}

void CViewWindow::resizeEvent(QResizeEvent* event) {
  QAbstractScrollArea::resizeEvent(event);
  if (!view_ || updating_) return;
  view_->OnSize({viewport()->width(), viewport()->height()});
  UpdateScrollBars();
}

void CViewWindow::scrollContentsBy(int dx, int dy) {
  if (!view_ || updating_) return;
  view_->SetScrollPosition({horizontalScrollBar()->value(), verticalScrollBar()->value()});
  const bool near = std::abs(dx) < viewport()->width() && std::abs(dy) < viewport()->height();
  if (near && WhyEmpty(*view_).isEmpty()) {
    viewport()->scroll(dx, dy);  // only the strip that comes into sight is painted
  } else {
    viewport()->update();
  }
}

void CViewWindow::keyPressEvent(QKeyEvent* event) {
  const int key = ViewKey(*event);
  const bool plain = !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
  if (plain && IsGraphShown() && graph_->OnKey(event->key())) return;
  if (view_ && key != 0 && PassKey(key, event->count())) return;
  if (plain && ZoomByKey(*event)) return;
  if (ScrollByKey(event->key())) return;
  QAbstractScrollArea::keyPressEvent(event);
}

bool CViewWindow::PassKey(int key, int repeatCount) {
  const bool acted = view_->OnKeyDown(key, repeatCount);
  const bool zooms = !IsZoomable() && (key == Key::kUp || key == Key::kDown);
  if (acted && zooms && onZoom) onZoom();
  return acted;
}

// Around the middle of what shows.
bool CViewWindow::ZoomByKey(const QKeyEvent& event) {
  const bool in = event.key() == Qt::Key_Plus || event.key() == Qt::Key_Equal;
  if (!IsZoomable() || (!in && event.key() != Qt::Key_Minus)) return false;
  for (int i = 0; i < event.count(); ++i) view_->OnZoomItem(in ? ZoomItem::In : ZoomItem::Out);
  if (onZoom) onZoom();
  return true;
}

void CViewWindow::ZoomBySteps(int steps, QPoint anchor) {
  view_->OnZoomSteps(steps, {anchor.x(), anchor.y()});
  if (onZoom) onZoom();
}

bool CViewWindow::ScrollByKey(int key) {
  if (key != Qt::Key_Home && key != Qt::Key_End) return false;
  const auto action =
      key == Qt::Key_Home ? QAbstractSlider::SliderToMinimum : QAbstractSlider::SliderToMaximum;
  horizontalScrollBar()->triggerAction(action);
  verticalScrollBar()->triggerAction(action);
  return true;
}

// The wheel zooms a picture. Over a TIN it goes to the view, zooms with Ctrl, and scrolls where the view
// leaves it free.
void CViewWindow::wheelEvent(QWheelEvent* event) {
  if (!view_) return;
  const int angle = event->angleDelta().y();
  if (IsZoomable()) {
    TurnOverPicture(*event);
    event->accept();
  } else if (event->modifiers() & Qt::ControlModifier) {
    const int notches = WholeNotches(angle);
    for (int i = 0; i < std::abs(notches); ++i) PassKey(notches > 0 ? Key::kUp : Key::kDown, 1);
    event->accept();
  } else if (!PassWheel(angle)) {
    QAbstractScrollArea::wheelEvent(event);
  }
}

void CViewWindow::TurnOverPicture(const QWheelEvent& event) {
  const QPoint angle = event.angleDelta();
  const bool sideways = event.modifiers() & Qt::ShiftModifier || angle.y() == 0;
  if (sideways) {
    QScrollBar& bar = *horizontalScrollBar();
    const int turned = angle.x() != 0 ? angle.x() : angle.y();
    MoveScrollBar(bar, -turned * kLinesPerNotch * bar.singleStep() / kAnglePerNotch);
  } else if (const int notches = WholeNotches(angle.y())) {
    ZoomBySteps(notches, event.position().toPoint());
  }
}

bool CViewWindow::PassWheel(int angle) {
  const int notches = WholeNotches(angle);
  return view_ && notches != 0 && view_->OnMouseWheel(notches);
}

int CViewWindow::WholeNotches(int angle) {
  wheelAngle_ += angle;
  const int notches = wheelAngle_ / kAnglePerNotch;
  wheelAngle_ %= kAnglePerNotch;
  return notches;
}

void CViewWindow::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton && event->button() != Qt::MiddleButton) return;
  dragging_ = true;
  grabbed_ = event->position().toPoint();
  viewport()->setCursor(Qt::ClosedHandCursor);
}

void CViewWindow::mouseMoveEvent(QMouseEvent* event) {
  const QPoint position = event->position().toPoint();
  if (view_ && !dragging_) {
    view_->OnMouseMove(
        {horizontalScrollBar()->value() + position.x(), verticalScrollBar()->value() + position.y()});
  }
  if (!dragging_) return;
  MoveScrollBar(*horizontalScrollBar(), grabbed_.x() - position.x());
  MoveScrollBar(*verticalScrollBar(), grabbed_.y() - position.y());
  grabbed_ = position;
}

void CViewWindow::mouseReleaseEvent(QMouseEvent*) {
  dragging_ = false;
  SetIdleCursor();
}

// The way back to a graph that has been hidden.
void CViewWindow::contextMenuEvent(QContextMenuEvent* event) {
  if (!graph_ || IsGraphShown()) return;
  QMenu menu(this);
  QAction* show = menu.addAction("Show Graph");
  connect(show, &QAction::triggered, this, &CViewWindow::CoverWithGraph);
  menu.exec(event->globalPos());
}

}  // namespace corvane
