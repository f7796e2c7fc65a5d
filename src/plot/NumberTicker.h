#pragma once

#include <qcustomplot.h>

namespace corvane {

// The ticks of an axis and their numbers: as many as stand apart from each other, with the decimals that
// their step needs. The axis and its plot must outlive it.
class NumberTicker : public QCPAxisTicker {
 public:
  explicit NumberTicker(const QCPAxis& axis) : axis_(axis) {}

  // How wide the widest number of a range is, in pixels.
  int WidestNumber(const QCPRange& range);

 protected:
  // The pixels along the axis, and how many of them two ticks must be apart.
  virtual int Length() const = 0;
  virtual int LeastDistance(const QCPRange& range) = 0;

  double getTickStep(const QCPRange& range) override;
  QString getTickLabel(double tick, const QLocale&, QChar, int) override;

  // How wide the widest number is with the step as it is.
  int WidestShown(const QCPRange& range);

 private:
  const QCPAxis& axis_;
  double step_ = 1.0;
};

// Of an axis that stands upright.
class UprightTicker : public NumberTicker {
 public:
  explicit UprightTicker(const QCPAxis& axis);

 protected:
  int Length() const override;
  int LeastDistance(const QCPRange&) override;

 private:
  const QCustomPlot& plot_;
};

// Of the x axis.
class LevelTicker : public NumberTicker {
 public:
  // `beside` is that of the y axis, whose numbers take some of the width.
  LevelTicker(const QCPAxis& axis, QSharedPointer<UprightTicker> beside);

 protected:
  int Length() const override;
  int LeastDistance(const QCPRange& range) override;

 private:
  const QCustomPlot& plot_;
  QSharedPointer<UprightTicker> beside_;
};

}  // namespace corvane
