#include "qt/PlotPane.h"

#include <QApplication>
#include <QLabel>
#include <QMouseEvent>
#include <QRubberBand>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

namespace corvane {

namespace {

constexpr double kZoomStep = 1.25;   // a notch of the wheel
constexpr int kAnglePerNotch = 120;  // eighths of a degree
constexpr int kThin = 5;             // pixels: a rectangle less wide or high is meant as a part of an axis
constexpr int kReadoutDistance = 14;
constexpr const char* kReadoutStyle =
    "color: #222222; background: rgba(255, 255, 255, 225); border: 1px solid #b0b0b0; "
    "border-radius: 2px; padding: 2px 5px; font: 12px 'DejaVu Sans', sans-serif;";

// The range that is `factor` times as wide and keeps `fixed` in its place.
void Scale(double& min, double& max, double fixed, double factor) {
  min = fixed + (min - fixed) * factor;
  max = fixed + (max - fixed) * factor;
}

}  // namespace

CPlotPane::CPlotPane(QWidget* parent)
    : GraphPlot(parent), readout_(new QLabel(this)), band_(new QRubberBand(QRubberBand::Rectangle, this)) {
  setMouseTracking(true);
  setFocusPolicy(Qt::NoFocus);
  setContextMenuPolicy(Qt::PreventContextMenu);  // it comes with the button's release, if that ends no drag
  readout_->setObjectName("readout");
  readout_->setStyleSheet(kReadoutStyle);
  readout_->setAttribute(Qt::WA_TransparentForMouseEvents);
  readout_->hide();
}

void CPlotPane::Zoom(QPointF around, double factor, Qt::Orientations axes) {
  const GraphPoint fixed = PointAt(around);
  GraphRange range = GetRange();
  if (axes & Qt::Horizontal) Scale(range.minX, range.maxX, fixed.x, factor);
  if (axes & Qt::Vertical) Scale(range.minY, range.maxY, fixed.y, factor);
  SetRange(range);
}

void CPlotPane::ZoomAtCentre(double factor) {
  Zoom(QRectF(GetPlotArea()).center(), factor);
}

void CPlotPane::Move(QPointF distance) {
  const GraphPoint from = PointAt({0.0, 0.0});
  const GraphPoint to = PointAt(distance);
  GraphRange range = GetRange();
  range.minX -= to.x - from.x;
  range.maxX -= to.x - from.x;
  range.minY -= to.y - from.y;
  range.maxY -= to.y - from.y;
  SetRange(range);
}

void CPlotPane::ZoomTo(const QRect& rectangle) {
  const QRectF part = PartToShow(rectangle);
  if (part.isEmpty()) return;
  const QRect area = GetPlotArea();
  const GraphPoint topLeft = PointAt(part.topLeft());
  const GraphPoint bottomRight = PointAt(part.bottomRight());
  GraphRange range = GetRange();
  if (part.width() < area.width()) {
    range.minX = topLeft.x;
    range.maxX = bottomRight.x;
  }
  if (part.height() < area.height()) {
    range.minY = bottomRight.y;
    range.maxY = topLeft.y;
  }
  SetRange(range);
}

// What a rectangle means: a thin one goes across the whole plot, a speck is nothing.
QRect CPlotPane::PartToShow(const QRect& rectangle) const {
  const QRect area = GetPlotArea();
  QRect part = rectangle & area;
  const bool narrow = part.width() < kThin;
  const bool low = part.height() < kThin;
  if (narrow && low) return {};
  if (narrow) part = QRect(area.left(), part.top(), area.width(), part.height());
  if (low) part = QRect(part.left(), area.top(), part.width(), area.height());
  return part;
}

void CPlotPane::wheelEvent(QWheelEvent* event) {
  event->accept();
  const int angle = event->angleDelta().y();
  if (!(event->modifiers() & Qt::ControlModifier) && takeWheel && takeWheel(angle)) return;
  const QPointF place = event->position();
  const QRect area = GetPlotArea();
  Qt::Orientations axes = Qt::Horizontal | Qt::Vertical;
  if (place.x() < area.left()) axes = Qt::Vertical;
  if (place.y() > area.bottom()) axes = Qt::Horizontal;
  Zoom(place, std::pow(kZoomStep, -static_cast<double>(angle) / kAnglePerNotch), axes);
  FollowPointer(place.toPoint());
}

void CPlotPane::mousePressEvent(QMouseEvent* event) {
  EndDrag();
  const bool left = event->button() == Qt::LeftButton;
  if (!left && event->button() != Qt::MiddleButton && event->button() != Qt::RightButton) return;
  const bool rectangle =
      event->button() == Qt::RightButton || (left && event->modifiers() & Qt::ShiftModifier);
  drag_ = rectangle ? Drag::Rectangle : Drag::Move;
  pressed_ = last_ = event->position().toPoint();
  setCursor(rectangle ? Qt::CrossCursor : Qt::ClosedHandCursor);
}

void CPlotPane::mouseMoveEvent(QMouseEvent* event) {
  const QPoint place = event->position().toPoint();
  if (drag_ == Drag::Move) Move(place - last_);
  if (drag_ == Drag::Rectangle) {
    const QRect part = PartToShow(QRect(pressed_, place).normalized());
    band_->setGeometry(part);
    band_->setVisible(!part.isEmpty());
  }
  last_ = place;
  FollowPointer(place);
}

void CPlotPane::mouseReleaseEvent(QMouseEvent* event) {
  const QPoint place = event->position().toPoint();
  const Drag drag = drag_;
  EndDrag();
  if (drag == Drag::None) return;
  const bool click = (place - pressed_).manhattanLength() < QApplication::startDragDistance();
  if (drag == Drag::Rectangle && !click) ZoomTo(QRect(pressed_, place).normalized());
  if (click && event->button() == Qt::RightButton && onMenu) {
    ForgetPointer();  // it is over the menu
    onMenu(event->globalPosition().toPoint());
  }
}

void CPlotPane::mouseDoubleClickEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) FitAxes();
}

void CPlotPane::leaveEvent(QEvent*) {
  ForgetPointer();
}

void CPlotPane::hideEvent(QHideEvent*) {
  EndDrag();
  ForgetPointer();
}

// Another point may have come under the pointer.
void CPlotPane::OnDrawn() {
  ShowReadout();
}

void CPlotPane::EndDrag() {
  drag_ = Drag::None;
  band_->hide();
  unsetCursor();
}

void CPlotPane::FollowPointer(QPoint place) {
  pointer_ = place;
  ShowReadout();
}

void CPlotPane::ForgetPointer() {
  pointer_.reset();
  HideReadout();
}

// Beside the pointer, on the side where there is room.
void CPlotPane::ShowReadout() {
  if (!pointer_ || !GetPlotArea().contains(*pointer_)) {
    HideReadout();
    return;
  }
  const QPoint place = *pointer_;
  const QString text = ReadoutAt(place);
  readout_->setText(text);
  readout_->adjustSize();
  QPoint corner = place + QPoint(kReadoutDistance, -kReadoutDistance - readout_->height());
  if (corner.x() + readout_->width() > width())
    corner.rx() = place.x() - kReadoutDistance - readout_->width();
  if (corner.y() < 0) corner.ry() = place.y() + kReadoutDistance;
  readout_->move(corner);
  readout_->show();
  if (onReadout) onReadout(text);
}

void CPlotPane::HideReadout() {
  if (readout_->isHidden()) return;
  readout_->hide();
  if (onReadout) onReadout("");
}

}  // namespace corvane
