// Least squares with disparities at nodes.

#include <algorithm>
#include <array>
#include <cstdint>
#include <new>
#include <string>

#include "StereoPair/DisparityPasses.h"
#include "StereoPair/DisparityWindow.h"
#include "StereoPair/LeastSquaresPatch.h"
#include "StereoPair/StereoPair.h"
#include "StereoPair/WindowBytes.h"
#include "numerics/LeastSquares.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

constexpr std::size_t kFewestNodes = 3;  // in a row of nodes

// Nodes every `step` pixels of a line of `length` pixels, the first at pixel 0, the last at the last pixel or
// behind it.
struct NodeLine {
  std::size_t step;
  std::size_t length;

  std::size_t GetCount() const { return (length - 1 + step - 1) / step + 1; }

  // The node at a pixel or before it, so that there is one behind, if there are two.
  std::size_t Before(std::size_t pixel) const {
    const std::size_t n = GetCount();
    return n < 2 ? 0 : std::min(pixel / step, n - 2);
  }
  // How far the pixel is on its way to the next node, from 0 to 1.
  double GetFraction(std::size_t pixel) const {
    return static_cast<double>(pixel - Before(pixel) * step) / static_cast<double>(step);
  }
};

struct NodeGrid {
  NodeLine x;
  NodeLine y;

  DisparityLattice GetLattice() const { return {x.GetCount(), y.GetCount()}; }
};

// The four nodes around a pixel, and their parts in its disparity. A node that has no part may not be there.
struct NodeParts {
  std::array<std::size_t, 4> nodes;
  std::array<double, 4> parts;

  NodeParts(const NodeGrid& grid, std::size_t col, std::size_t row) {
    const std::size_t nCols = grid.x.GetCount();
    const std::size_t first = grid.y.Before(row) * nCols + grid.x.Before(col);
    const double fx = grid.x.GetFraction(col);
    const double fy = grid.y.GetFraction(row);
    nodes = {first, first + 1, first + nCols, first + nCols + 1};
    parts = {(1.0 - fx) * (1.0 - fy), fx * (1.0 - fy), (1.0 - fx) * fy, fx * fy};
  }
};

// One pixel of the window.
struct NodePixel {
  NodeParts at;
  Point2 left;            // its place
  double pattern;         // the left image's sample
  double sample = 0.0;    // the right image's
  double gradient = 0.0;  // along the row
};

// The left image's grey value at a pixel; 0 outside.
double GreyAt(const ErdasImg& image, const Point2& pixel) {
  const auto [cols, rows] = image.GetSize();
  double value = 0.0;
  const bool isInside = pixel.x >= 0.0 && pixel.x < cols && pixel.y >= 0.0 && pixel.y < rows;
  if (isInside) image.GetPixelBilinear(0, pixel.y, pixel.x, value);
  return value;
}

class NodeModel {
 public:
  NodeModel(const ErdasImg& left, const ErdasImg& right, const WindowCorner& corner, const NodeGrid& grid,
            double rowDisparity);

  double Sample(std::span<const double> disparities);
  bool Adjust(std::span<const double> disparities, std::span<double> corrections) const;

 private:
  void SamplePixel(NodePixel& pixel, std::span<const double> disparities) const;

  const ErdasImg& right_;
  NodeGrid grid_;
  double rowDisparity_;
  std::vector<NodePixel> pixels_;
  std::vector<double> pattern_;
  std::vector<double> samples_;
  double sum_ = 0.0;  // of the pattern
  double sumSq_ = 0.0;
};

NodeModel::NodeModel(const ErdasImg& left, const ErdasImg& right, const WindowCorner& corner,
                     const NodeGrid& grid, double rowDisparity)
    : right_(right), grid_(grid), rowDisparity_(rowDisparity) {
  for (std::size_t i = 0; i < grid.x.length * grid.y.length; ++i) {
    const std::size_t col = i % grid.x.length;
    const std::size_t row = i / grid.x.length;
    const Point2 place = {static_cast<double>(corner.col) + static_cast<double>(col),
                          static_cast<double>(corner.row) + static_cast<double>(row)};
    const double value = GreyAt(left, place);
    pixels_.push_back({NodeParts(grid, col, row), place, value});
    pattern_.push_back(value);
    sum_ += value;
    sumSq_ += value * value;
  }
  samples_.resize(pixels_.size());
}

double NodeModel::Sample(std::span<const double> disparities) {
  for (std::size_t i = 0; i < pixels_.size(); ++i) {
    SamplePixel(pixels_[i], disparities);
    samples_[i] = pixels_[i].sample;
  }
  return CorrelationOfPatchDoubles(pattern_, samples_, sum_, sumSq_);
}

void NodeModel::SamplePixel(NodePixel& pixel, std::span<const double> disparities) const {
  double disparity = 0.0;
  for (std::size_t k = 0; k < 4; ++k) {
    const double part = pixel.at.parts[k];
    if (part != 0.0) disparity += part * disparities[pixel.at.nodes[k]];
  }
  const double row = pixel.left.y - rowDisparity_;
  const double col = pixel.left.x - disparity;
  const auto [nCols, nRows] = right_.GetSize();
  pixel.sample = pixel.pattern;
  pixel.gradient = 0.0;
  if (!(row >= 0.0 && row < nRows && col >= 0.0 && col < nCols)) return;
  double gRow = 0.0;
  right_.GetPixelBilinear(0, row, col, pixel.sample);
  right_.GetGradientBilinearFore(0, row, col, pixel.gradient, gRow);
}

bool NodeModel::Adjust(std::span<const double> disparities, std::span<double> corrections) const {
  const std::size_t n = disparities.size();
  const auto m = static_cast<std::int64_t>(pixels_.size() + 2 * n);
  const OwnedMatrix design(AllocMatrix(m, static_cast<std::int64_t>(n)));
  const OwnedArray<double> observations = NewArray<double>(m);
  const OwnedArray<double> weights = NewArray<double>(m);
  if (!design || !observations || !weights) return false;
  for (std::size_t i = 0; i < pixels_.size(); ++i) {
    const NodePixel& pixel = pixels_[i];
    for (std::size_t k = 0; k < 4; ++k) {
      if (pixel.at.parts[k] != 0.0) design[i][pixel.at.nodes[k]] = -pixel.gradient * pixel.at.parts[k];
    }
    observations[i] = pixel.pattern - pixel.sample;
    weights[i] = kBrightnessWeight;
  }
  for (std::size_t k = 0; k < 2 * n; ++k) {
    const std::size_t i = pixels_.size() + k;
    const DisparityDifference difference = grid_.GetLattice().GetDifference(k);
    for (std::size_t j = 0; j < difference.count; ++j) {
      design[i][difference.unknowns[j]] = difference.factors[j];
    }
    observations[i] = difference.GetObservation(disparities);
    weights[i] = kSmoothnessWeight;
  }
  std::fill(corrections.begin(), corrections.end(), 0.0);
  return WeightedLeastSquares(design.get(), observations.get(), weights.get(), static_cast<int>(m),
                              static_cast<int>(n), corrections.data()) > 0;
}

// Whether the equations of the grid can be solved.
bool Fits(const NodeGrid& grid) {
  const double nPixels = static_cast<double>(grid.x.length) * static_cast<double>(grid.y.length);
  const double nNodes = static_cast<double>(grid.x.GetCount()) * static_cast<double>(grid.y.GetCount());
  constexpr double kNumbersOfPixel = sizeof(NodePixel) / sizeof(double) + 2.0;
  return FitsDenseEquations(nPixels + 2.0 * nNodes, nNodes, nPixels * kNumbersOfPixel);
}

// Whether there are images, places in them, a window and steps.
bool IsUsable(const StereoPair& pair, const Point2& left, const Point2& right, int stepX, int stepY) {
  if (!pair.leftImage || !pair.rightImage || stepX <= 0 || stepY <= 0) return false;
  if (pair.targetWidth <= 0 || pair.targetHeight <= 0) return false;
  return CanMatchAt(*pair.leftImage, left) && CanMatchAt(*pair.rightImage, right);
}

}  // namespace

double StereoPair::LeastSquaresDisparityGrid(const Point2& left, const Point2& right, int width, int height,
                                             double disparityLimit, int iterationLimit,
                                             std::vector<double>& disparities,
                                             std::vector<double>& rowDisparities, const ErdasImg* startMap) {
  if (!IsUsable(*this, left, right, width, height)) return -1.0;
  const NodeGrid grid = {{static_cast<std::size_t>(width), static_cast<std::size_t>(targetWidth)},
                         {static_cast<std::size_t>(height), static_cast<std::size_t>(targetHeight)}};
  const DisparityLattice lattice = grid.GetLattice();
  if (lattice.nCols < kFewestNodes || !Fits(grid)) return -1.0;
  try {
    const WindowCorner corner(left, targetWidth, targetHeight);
    NodeModel model(*leftImage, *rightImage, corner, grid, left.y - right.y);
    rowDisparities.assign(lattice.GetCount(), left.y - right.y);
    disparities.resize(lattice.GetCount());
    for (std::size_t i = 0; i < disparities.size(); ++i) {
      const auto row = static_cast<std::int64_t>(i / lattice.nCols * grid.y.step);
      const auto col = static_cast<std::int64_t>(i % lattice.nCols * grid.x.step);
      disparities[i] = StartDisparity(startMap, corner.row + row, corner.col + col, left.x - right.x);
    }
    std::vector<double> corrections(lattice.GetCount());
    const DisparityLimits limits = {disparityLimit, iterationLimit, matchThreshold};
    DisparityMatch match;
    if (!RunDisparityPasses(model, limits, disparities, corrections, match)) return -1.0;
    const Point2 first = {static_cast<double>(corner.col), static_cast<double>(corner.row)};
    const int added = AddDisparityNodes(first, static_cast<int>(lattice.nCols), width, height, disparities,
                                        rowDisparities, match.score);
    if (added < 0) return -1.0;
    Ui().Trace(std::string("\n") + LsmOutcomeName(match.outcome));
    return match.score;
  } catch (const std::bad_alloc&) {
    return -1.0;
  }
}

}  // namespace corvane
