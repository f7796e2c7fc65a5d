#pragma once

#include <functional>
#include <optional>

#include "plot/GraphPlot.h"

class QLabel;
class QRubberBand;

namespace corvane {

// A plot that a person moves about in: the wheel zooms around the pointer, over the numbers of an axis along
// that axis alone; dragging with the left button moves the curves, with the right one or with Shift it zooms
// to a rectangle, to a thin one along its long side alone; a double click shows everything again. The
// coordinates under the pointer stand beside it.
class CPlotPane : public GraphPlot {
 public:
  explicit CPlotPane(QWidget* parent = nullptr);

  // Hears of the coordinates under the pointer, and of "" when it leaves the plot.
  std::function<void(const QString& text)> onReadout;
  // Hears of a click with the right button, at a place on screen.
  std::function<void(QPoint place)> onMenu;
  // Has the wheel first; true if it has used it.
  std::function<bool(int angle)> takeWheel;

  // Zooms around a pixel: what is `factor` times the size shows. Axes that are not named stay.
  void Zoom(QPointF around, double factor, Qt::Orientations axes = Qt::Horizontal | Qt::Vertical);
  void ZoomAtCentre(double factor);
  // Moves the curves by that many pixels.
  void Move(QPointF distance);
  // Shows what lies in a rectangle of pixels. A thin one tells a part of one axis, and the other axis stays;
  // a speck changes nothing.
  void ZoomTo(const QRect& rectangle);

 protected:
  void wheelEvent(QWheelEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void OnDrawn() override;

 private:
  enum class Drag { None, Move, Rectangle };

  void EndDrag();
  QRect PartToShow(const QRect& rectangle) const;
  void FollowPointer(QPoint place);
  void ForgetPointer();
  void ShowReadout();
  void HideReadout();

  QLabel* readout_;
  QRubberBand* band_;
  Drag drag_ = Drag::None;
  QPoint pressed_;                 // where the drag began
  QPoint last_;                    // and where it was last
  std::optional<QPoint> pointer_;  // nothing while it is elsewhere
};

}  // namespace corvane
