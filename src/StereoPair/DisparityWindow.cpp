#include "StereoPair/DisparityWindow.h"

#include <climits>
#include <cmath>
#include <new>

#include "StereoPair/GradientSamples.h"
#include "io/MachineMemory.h"

namespace corvane {

bool FitNumbers(double n) {
  return static_cast<double>(sizeof(double)) * n <= 0.5 * static_cast<double>(BytesOfMachine());
}

bool FitsDenseEquations(double m, double n, double nBeside) {
  return n <= kMostDenseUnknowns && m <= INT_MAX && FitNumbers((m + n) * (n + 3.0) + nBeside);
}

double StartDisparity(const ErdasImg* map, std::int64_t row, std::int64_t col, double otherwise) {
  double value = otherwise;
  if (!map || row < 0 || row > INT_MAX || col < 0 || col > INT_MAX) return otherwise;
  map->GetPixel(0, static_cast<std::int32_t>(row), static_cast<std::int32_t>(col), value);
  return std::isfinite(value) ? value : otherwise;
}

DisparityWindow::DisparityWindow(const ErdasImg& left, const ErdasImg& right, const WindowCorner& corner,
                                 const DisparityLattice& lattice, double rowDisparity)
    : right_(right), lattice_(lattice) {
  const auto width = static_cast<std::int32_t>(lattice.nCols);
  if (!CutWindow(left, corner, width, static_cast<std::int32_t>(lattice.nRows), pattern_)) {
    throw std::bad_alloc();
  }
  const std::size_t n = pattern_.size();
  for (std::vector<double>* const array :
       {&leftCols_, &rows_, &cols_, &samples_, &values_, &gradients_, &gRow_}) {
    array->resize(n);
  }
  for (std::size_t i = 0; i < n; ++i) {
    leftCols_[i] = static_cast<double>(corner.col + static_cast<std::int64_t>(i % lattice.nCols));
    rows_[i] = static_cast<double>(corner.row + static_cast<std::int64_t>(i / lattice.nCols)) - rowDisparity;
    sum_ += pattern_[i];
    sumSq_ += pattern_[i] * pattern_[i];
  }
}

void DisparityWindow::Sample(std::span<const double> disparities, double gain, double shift) {
  const auto [nCols, nRows] = right_.GetSize();
  for (std::size_t i = 0; i < cols_.size(); ++i) cols_[i] = leftCols_[i] - disparities[i];
  SampleWithGradients(right_, rows_, cols_, samples_, gradients_, gRow_);
  for (std::size_t i = 0; i < cols_.size(); ++i) {
    values_[i] = gain * samples_[i] + shift;
    gradients_[i] *= gain;
    if (rows_[i] >= 0.0 && rows_[i] < nRows && cols_[i] >= 0.0 && cols_[i] < nCols) continue;
    samples_[i] = pattern_[i];
    values_[i] = pattern_[i];
    gradients_[i] = 0.0;
  }
}

double DisparityWindow::GetScore() const {
  return CorrelationOfPatch(pattern_, values_, sum_, sumSq_);
}

}  // namespace corvane
