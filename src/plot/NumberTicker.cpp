#include "plot/NumberTicker.h"

#include <QFontMetrics>
#include <algorithm>

#include "plot/AxisText.h"

namespace corvane {

namespace {

constexpr int kMostTicks = 10;

// In pixels.
constexpr int kTickDistanceX = 80;
constexpr int kTickDistanceY = 40;
constexpr int kNumberGap = 20;  // between the numbers of the x axis

}  // namespace

int NumberTicker::WidestNumber(const QCPRange& range) {
  getTickStep(range);
  return WidestShown(range);
}

int NumberTicker::WidestShown(const QCPRange& range) {
  const QFontMetrics metrics(axis_.tickLabelFont());
  int widest = 0;
  for (const double tick : createTickVector(step_, range)) {
    widest = std::max(widest, metrics.horizontalAdvance(QString::fromStdString(AxisText(tick, step_))));
  }
  return widest;
}

double NumberTicker::getTickStep(const QCPRange& range) {
  const double pixels = std::max(Length(), 1);
  const auto isTight = [&] { return step_ / range.size() * pixels < LeastDistance(range); };
  for (int count = kMostTicks; count > 0; --count) {
    setTickCount(count);
    step_ = QCPAxisTicker::getTickStep(range);
    if (!isTight()) return step_;
  }
  while (isTight()) step_ *= 2.0;
  return step_;
}

QString NumberTicker::getTickLabel(double tick, const QLocale&, QChar, int) {
  return QString::fromStdString(AxisText(tick, step_));
}

UprightTicker::UprightTicker(const QCPAxis& axis) : NumberTicker(axis), plot_(*axis.parentPlot()) {}

int UprightTicker::Length() const {
  return plot_.viewport().height();
}

int UprightTicker::LeastDistance(const QCPRange&) {
  return kTickDistanceY;
}

LevelTicker::LevelTicker(const QCPAxis& axis, QSharedPointer<UprightTicker> beside)
    : NumberTicker(axis), plot_(*axis.parentPlot()), beside_(std::move(beside)) {}

// The plot's layout tells the width between the margins only once the ticks stand.
int LevelTicker::Length() const {
  const QCPAxis& y = *plot_.yAxis;
  const QMargins least = plot_.axisRect()->minimumMargins();
  const int numbers = beside_->WidestNumber(y.range()) + y.tickLabelPadding() + y.padding();
  return plot_.viewport().width() - std::max(numbers, least.left()) - least.right();
}

int LevelTicker::LeastDistance(const QCPRange& range) {
  return std::max(kTickDistanceX, WidestShown(range) + kNumberGap);
}

}  // namespace corvane
