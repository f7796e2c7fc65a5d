#include "plot/GraphPlot.h"

#include <qcustomplot.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>

#include "plot/AxisText.h"
#include "plot/NumberTicker.h"

namespace corvane {

namespace {

constexpr const char* kFontName = "DejaVu Sans";
constexpr int kFontSize = 12;  // pixels
constexpr int kTitleSize = 15;
constexpr QColor kTextColour(0x33, 0x33, 0x33);
constexpr QColor kAxisColour(0x66, 0x66, 0x66);
constexpr QColor kGridColour(0xe4, 0xe4, 0xe4);
constexpr QColor kZeroColour(0xb0, 0xb0, 0xb0);

constexpr double kFarthest = 1e100;     // points beyond are left out
constexpr double kWidestRange = 1e101;  // an axis ends here
constexpr double kNarrowest = 1e-12;    // of an axis, relative to its numbers

// An axis along which all points have the same number shows this much, but at least kFlatRange of the number.
constexpr double kFlatHeight = 1.0;
constexpr double kFlatRange = 2e-6;
constexpr double kRoomX = 0.02;  // beside the curves, relative to their extent
constexpr double kRoomY = 0.05;

constexpr int kFillAlpha = 80;                    // of bars, out of 255
constexpr std::size_t kMostOutlinedBars = 20000;  // beyond, bars have no sides where they touch
constexpr std::size_t kMostSmoothed = 2000;       // points of a curve with smoothed edges
constexpr std::size_t kMostWide = 100000;         // points of a curve that is wider than a pixel

bool IsDrawable(const GraphPoint& point) {
  return std::abs(point.x) <= kFarthest && std::abs(point.y) <= kFarthest;  // not a number fails, too
}

bool IsBefore(const GraphPoint& a, const GraphPoint& b) {
  return a.x < b.x;
}

using Points = std::span<const GraphPoint>;

bool IsAscending(Points points) {
  return std::is_sorted(points.begin(), points.end(), IsBefore);
}

// The points that can be drawn. Only if they are not all of them, they are copied, to `kept`.
Points DrawablePoints(Points points, std::vector<GraphPoint>& kept) {
  if (std::all_of(points.begin(), points.end(), IsDrawable)) return points;
  std::copy_if(points.begin(), points.end(), std::back_inserter(kept), IsDrawable);
  return kept;
}

// The points with ascending x. `kept` is the place for a copy, and may hold the points already.
Points AscendingPoints(Points points, std::vector<GraphPoint>& kept) {
  if (IsAscending(points)) return points;
  if (kept.empty()) kept.assign(points.begin(), points.end());
  std::stable_sort(kept.begin(), kept.end(), IsBefore);
  return kept;
}

GraphRange NoExtent() {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  return {kInfinity, -kInfinity, kInfinity, -kInfinity};
}

void Include(GraphRange& extent, const GraphRange& other) {
  extent = {std::min(extent.minX, other.minX), std::max(extent.maxX, other.maxX),
            std::min(extent.minY, other.minY), std::max(extent.maxY, other.maxY)};
}
void Include(GraphRange& extent, double x, double y) {
  Include(extent, {x, x, y, y});
}

GraphRange ExtentOf(Points points) {
  GraphRange extent = NoExtent();
  for (const GraphPoint& point : points) Include(extent, point.x, point.y);
  return extent;
}

// The range of an axis for numbers from `min` to `max`.
QCPRange FittedRange(double min, double max, double room) {
  if (min > max) return {0.0, 1.0};
  const double magnitude = std::max(std::abs(min), std::abs(max));
  const double size = max - min;
  if (size <= magnitude * kNarrowest * 100 || size == 0.0) {
    const double half = std::max(kFlatHeight, magnitude * kFlatRange) / 2;
    return {min - half, max + half};
  }
  return {min - size * room, max + size * room};
}

bool IsUsable(double min, double max) {
  const double magnitude = std::max(std::abs(min), std::abs(max));
  return magnitude <= kWidestRange && max - min > magnitude * kNarrowest &&
         max - min > std::numeric_limits<double>::min() / kNarrowest;
}

// How wide the bars of points with ascending x are: the smallest distance of two. 1 for a single bar.
double BarWidth(Points points) {
  double width = std::numeric_limits<double>::infinity();
  for (std::size_t i = 1; i < points.size(); ++i) {
    const double distance = points[i].x - points[i - 1].x;
    if (distance > 0.0) width = std::min(width, distance);
  }
  return std::isfinite(width) ? width : 1.0;
}

// The outline of bars, all sides from the axis up and back. With many bars only the steps, without the sides
// between bars that touch and the tops that go on.
QVector<QCPGraphData> BarOutline(Points points, double width) {
  const bool sides = points.size() <= kMostOutlinedBars;
  QVector<QCPGraphData> outline;
  outline.reserve(static_cast<qsizetype>(points.size() * (sides ? 4 : 2)));
  for (std::size_t i = 0; i < points.size(); ++i) {
    const auto [x, y] = points[i];
    const bool last = i + 1 == points.size();
    const double next = last ? std::numeric_limits<double>::infinity() : points[i + 1].x;
    const double end = std::min(x + width, next);
    const bool gap = next > x + width * 1.5;
    const bool startsHere = i == 0 || x > points[i - 1].x + width * 1.5;
    const bool goesOn = !startsHere && !gap && !last && points[i - 1].y == y && points[i + 1].y == y;
    if (!sides && goesOn) continue;
    if (sides || startsHere) outline.append({x, 0.0});
    outline.append({x, y});
    outline.append({end, y});
    if (sides || gap) outline.append({end, 0.0});
  }
  return outline;
}

template <typename Data, typename Make>
QVector<Data> ConvertedPoints(Points points, Make make) {
  QVector<Data> converted;
  converted.reserve(static_cast<qsizetype>(points.size()));
  for (const GraphPoint& point : points) converted.append(make(point, converted.size()));
  return converted;
}

QFont PlotFont(int pixels, QFont::Weight weight) {
  QFont font(kFontName);
  font.setStyleHint(QFont::SansSerif);
  font.setPixelSize(pixels);
  font.setWeight(weight);
  return font;
}

void DressAxis(QCPAxis& axis) {
  axis.setBasePen(QPen(kAxisColour));
  axis.setTickPen(QPen(kAxisColour));
  axis.setSubTickPen(QPen(kAxisColour));
  axis.setTickLabelFont(PlotFont(kFontSize, QFont::Normal));
  axis.setTickLabelColor(kTextColour);
  axis.setTickLabelPadding(6);
  axis.grid()->setPen(QPen(kGridColour));
  axis.grid()->setZeroLinePen(QPen(kZeroColour));
}

// White ground, a box of four axes, numbers at two of them, the title above.
QCustomPlot* MakePlot(QWidget* parent) {
  auto* plot = new QCustomPlot(parent);
  plot->setAttribute(Qt::WA_TransparentForMouseEvents);
  plot->setFocusPolicy(Qt::NoFocus);
  plot->setBackground(QBrush(Qt::white));
  plot->setNoAntialiasingOnDrag(false);
  plot->setPlottingHint(QCP::phCacheLabels, false);  // cached ones stand at whole pixels, in windows only
  plot->axisRect()->setupFullAxesBox();
  for (QCPAxis* axis : plot->axisRect()->axes()) DressAxis(*axis);
  plot->xAxis2->setTicks(false);
  plot->yAxis2->setTicks(false);
  const auto upright = QSharedPointer<UprightTicker>::create(*plot->yAxis);
  plot->yAxis->setTicker(upright);
  plot->xAxis->setTicker(QSharedPointer<LevelTicker>::create(*plot->xAxis, upright));
  plot->xAxis->setPadding(8);
  plot->yAxis->setPadding(8);
  plot->axisRect()->setMinimumMargins(QMargins(16, 4, 24, 12));
  auto* title = new QCPTextElement(plot, "", PlotFont(kTitleSize, QFont::DemiBold));
  title->setTextColor(kTextColour);
  title->setMargins(QMargins(0, 10, 0, 2));
  plot->plotLayout()->insertRow(0);
  plot->plotLayout()->addElement(0, 0, title);
  return plot;
}

// A pen of width 0 draws lines of one pixel, much faster than one of width 1.
QPen CurvePen(const GraphElement& element, std::size_t nPoints) {
  const bool wide = element.width > 1 && nPoints <= kMostWide;
  const QColor colour(element.colour.red, element.colour.green, element.colour.blue);
  return QPen(colour, wide ? element.width : 0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
}

// Bars of points with ascending x. Mitred corners would stand as spikes on bars narrower than the pen.
QCPAbstractPlottable* AddBars(QCustomPlot& plot, Points points, QPen pen, GraphRange& extent) {
  const double width = BarWidth(points);
  if (!points.empty()) {
    Include(extent, points.front().x, 0.0);
    Include(extent, points.back().x + width, 0.0);
  }
  QCPGraph* bars = plot.addGraph();
  bars->data()->set(BarOutline(points, width), true);
  pen.setJoinStyle(Qt::BevelJoin);
  bars->setPen(pen);
  QColor fill = pen.color();
  fill.setAlpha(kFillAlpha);
  bars->setBrush(fill);
  bars->setAntialiased(false);
  bars->setAntialiasedFill(false);
  return bars;
}

// A curve in the order of its points, whatever way they go.
QCPAbstractPlottable* AddLine(QCustomPlot& plot, Points points, const QPen& pen) {
  QCPAbstractPlottable* line = nullptr;
  const QCPScatterStyle dot = points.size() == 1 ? QCPScatterStyle(QCPScatterStyle::ssDisc, pen.widthF() + 5)
                                                 : QCPScatterStyle(QCPScatterStyle::ssNone);
  if (IsAscending(points)) {
    QCPGraph* graph = plot.addGraph();
    graph->data()->set(
        ConvertedPoints<QCPGraphData>(
            points, [](const GraphPoint& point, qsizetype) { return QCPGraphData(point.x, point.y); }),
        true);
    graph->setScatterStyle(dot);
    line = graph;
  } else {
    auto* curve = new QCPCurve(plot.xAxis, plot.yAxis);
    curve->data()->set(ConvertedPoints<QCPCurveData>(points,
                                                     [](const GraphPoint& point, qsizetype i) {
                                                       return QCPCurveData(static_cast<double>(i), point.x,
                                                                           point.y);
                                                     }),
                       true);
    curve->setAntialiased(points.size() <= kMostSmoothed);  // smoothing takes long where lines cross
    line = curve;
  }
  line->setPen(pen);
  return line;
}

// The largest power of ten that is not above the size of a pixel.
double ReadoutStep(const QCPRange& range, int pixels) {
  return std::pow(10.0, std::floor(std::log10(range.size() / std::max(pixels, 1))));
}

}  // namespace

GraphPlot::GraphPlot(QWidget* parent) : QWidget(parent), plot_(MakePlot(this)) {
  setAttribute(Qt::WA_OpaquePaintEvent);  // the plot fills it
  connect(plot_, &QCustomPlot::afterReplot, this, [this] { OnDrawn(); });
  FitAxes();
}

void GraphPlot::Plot(const GraphView& graph, int element) {
  const auto elements = graph.GetElements();
  const std::size_t first =
      element < 0 ? 0 : std::min({static_cast<std::size_t>(element), curves_.size(), elements.size()});
  for (; curves_.size() > first; curves_.pop_back()) plot_->removePlottable(curves_.back().plottable);
  for (std::size_t i = first; i < elements.size(); ++i) AddCurve(elements[i]);
  auto* title = static_cast<QCPTextElement*>(plot_->plotLayout()->element(0, 0));
  title->setText(QString::fromStdString(graph.GetTitle()));
  FitAxes();
}

void GraphPlot::AddCurve(const GraphElement& element) {
  std::vector<GraphPoint> kept;
  Points points = DrawablePoints(element.points, kept);
  const QPen pen = CurvePen(element, points.size());
  const bool bars = element.style == GraphElement::Style::Bars;
  if (bars) points = AscendingPoints(points, kept);
  Curve curve{nullptr, ExtentOf(points), bars && !points.empty()};
  curve.plottable = bars ? AddBars(*plot_, points, pen, curve.extent) : AddLine(*plot_, points, pen);
  curves_.push_back(curve);
}

void GraphPlot::FitAxes() {
  GraphRange all = NoExtent();
  for (const Curve& curve : curves_) Include(all, curve.extent);
  QCPRange y = FittedRange(all.minY, all.maxY, kRoomY);
  const bool grounded =
      std::any_of(curves_.begin(), curves_.end(), [](const Curve& c) { return c.grounded; });
  if (grounded && all.minY == 0.0) y.lower = 0.0;
  plot_->xAxis->setRange(FittedRange(all.minX, all.maxX, kRoomX));
  plot_->yAxis->setRange(y);
  plot_->replot(QCustomPlot::rpQueuedReplot);
}

void GraphPlot::SetRange(const GraphRange& range) {
  if (!IsUsable(range.minX, range.maxX) || !IsUsable(range.minY, range.maxY)) return;
  plot_->xAxis->setRange(range.minX, range.maxX);
  plot_->yAxis->setRange(range.minY, range.maxY);
  plot_->replot(QCustomPlot::rpQueuedReplot);
}

GraphRange GraphPlot::GetRange() const {
  const QCPRange x = plot_->xAxis->range();
  const QCPRange y = plot_->yAxis->range();
  return {x.lower, x.upper, y.lower, y.upper};
}

QRect GraphPlot::GetPlotArea() const {
  return plot_->axisRect()->rect();
}

GraphPoint GraphPlot::PointAt(QPointF pixel) const {
  return {plot_->xAxis->pixelToCoord(pixel.x()), plot_->yAxis->pixelToCoord(pixel.y())};
}

QPointF GraphPlot::PixelOf(GraphPoint point) const {
  return {plot_->xAxis->coordToPixel(point.x), plot_->yAxis->coordToPixel(point.y)};
}

QString GraphPlot::ReadoutAt(QPointF pixel) const {
  const GraphPoint point = PointAt(pixel);
  const QRect area = GetPlotArea();
  const std::string x = AxisText(point.x, ReadoutStep(plot_->xAxis->range(), area.width()));
  const std::string y = AxisText(point.y, ReadoutStep(plot_->yAxis->range(), area.height()));
  return QString::fromStdString(x + ", " + y);
}

QImage GraphPlot::DrawPicture(QSize size, double scale) const {
  return plot_->toPixmap(size.width(), size.height(), scale).toImage();
}

void GraphPlot::resizeEvent(QResizeEvent*) {
  plot_->setGeometry(rect());
}

}  // namespace corvane
