// Least squares with a disparity a pixel.

#include <algorithm>
#include <cstdint>
#include <new>
#include <string>

#include "StereoPair/BandedEquations.h"
#include "StereoPair/DisparityPasses.h"
#include "StereoPair/DisparityWindow.h"
#include "StereoPair/LeastSquaresPatch.h"
#include "StereoPair/StereoPair.h"
#include "StereoPair/WindowBytes.h"
#include "io/MachineMemory.h"
#include "numerics/LeastSquares.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

// The disparities, row by row.
DisparityLattice LatticeOf(int width, int height) {
  return {static_cast<std::size_t>(width), static_cast<std::size_t>(height)};
}

// The disparities as the only unknowns.
class PixelModel {
 public:
  static bool Fits(const DisparityLattice& lattice) {
    const auto n = static_cast<double>(lattice.GetCount());
    return FitNumbers(BandedEquations::CountNumbers(n, static_cast<double>(lattice.GetBand())) +
                      n * DisparityWindow::kNumbersOfPixel);
  }

  explicit PixelModel(DisparityWindow& window)
      : window_(window), equations_(window.GetCount(), window.GetLattice().GetBand()) {}

  bool HasRoom() const { return equations_.HasRoom(); }

  double Sample(std::span<const double> disparities) {
    window_.Sample(disparities, 1.0, 0.0);
    return window_.GetScore();
  }

  bool Adjust(std::span<const double> disparities, std::span<double> corrections) {
    equations_.Clear();
    for (std::size_t i = 0; i < window_.GetCount(); ++i) {
      const double factor = window_.GetFactor(i);
      equations_.Add({&i, 1}, {&factor, 1}, window_.GetObservation(i), kBrightnessWeight);
    }
    for (std::size_t k = 0; k < 2 * window_.GetCount(); ++k) {
      const DisparityDifference difference = window_.GetLattice().GetDifference(k);
      equations_.Add(std::span(difference.unknowns).first(difference.count), difference.factors,
                     difference.GetObservation(disparities), kSmoothnessWeight);
    }
    equations_.Solve(corrections.data());
    return true;
  }

 private:
  DisparityWindow& window_;
  BandedEquations equations_;
};

// The same with grey values of the right image that are shifted and stretched: two unknowns more, behind the
// disparities.
class GainModel {
 public:
  static bool Fits(const DisparityLattice& lattice) {
    const auto n = static_cast<double>(lattice.GetCount());
    return FitsDenseEquations(3.0 * n, n + 2.0, n * DisparityWindow::kNumbersOfPixel);
  }

  explicit GainModel(DisparityWindow& window) : window_(window), x_(window.GetCount() + 2) {}

  static bool HasRoom() { return true; }

  double Sample(std::span<const double> disparities) {
    window_.Sample(disparities, gain_, shift_);
    return window_.GetScore();
  }

  bool Adjust(std::span<const double> disparities, std::span<double> corrections) {
    if (!SolveDense(disparities)) return false;
    const std::size_t n = corrections.size();
    std::copy_n(x_.begin(), n, corrections.begin());
    shift_ += x_[n];
    gain_ += x_[n + 1];
    return true;
  }

 private:
  bool SolveDense(std::span<const double> disparities);

  DisparityWindow& window_;
  std::vector<double> x_;
  double shift_ = 0.0;
  double gain_ = 1.0;
};

// By the whole design, a row a pixel and a row a difference. False without memory.
bool GainModel::SolveDense(std::span<const double> disparities) {
  const std::size_t n = window_.GetCount();
  const auto m = static_cast<std::int64_t>(3 * n);
  const OwnedMatrix design(AllocMatrix(m, static_cast<std::int64_t>(x_.size())));
  const OwnedArray<double> observations = NewArray<double>(m);
  const OwnedArray<double> weights = NewArray<double>(m);
  if (!design || !observations || !weights) return false;
  for (std::size_t i = 0; i < n; ++i) {
    design[i][i] = window_.GetFactor(i);
    design[i][n] = 1.0;
    design[i][n + 1] = window_.GetSample(i);
    observations[i] = window_.GetObservation(i);
    weights[i] = kBrightnessWeight;
  }
  for (std::size_t k = 0; k < 2 * n; ++k) {
    const DisparityDifference difference = window_.GetLattice().GetDifference(k);
    for (std::size_t j = 0; j < difference.count; ++j) {
      design[n + k][difference.unknowns[j]] = difference.factors[j];
    }
    observations[n + k] = difference.GetObservation(disparities);
    weights[n + k] = kSmoothnessWeight;
  }
  std::fill(x_.begin(), x_.end(), 0.0);
  return WeightedLeastSquaresCholesky(design.get(), observations.get(), weights.get(), static_cast<int>(m),
                                      static_cast<int>(x_.size()), x_.data()) > 0;
}

// A window, and where it is looked for.
struct WindowPlace {
  const Point2& left;
  const Point2& right;
  int width;
  int height;

  bool IsUsable(const StereoPair& pair) const {
    return pair.leftImage && pair.rightImage && width > 0 && height > 0 &&
           CanMatchAt(*pair.leftImage, left) && CanMatchAt(*pair.rightImage, right);
  }
};

std::size_t SizeOfWindow(int width, int height) {
  return width > 0 && height > 0 ? static_cast<std::size_t>(width) * static_cast<std::size_t>(height) : 0;
}

// Whether there is memory for as many pairs and their ground points, and a number for each.
bool FitPairs(std::size_t nPairs) {
  constexpr double kBytes = sizeof(MatchPair) + sizeof(PointRecord);
  return nPairs <= INT32_MAX &&
         kBytes * static_cast<double>(nPairs) <= 0.25 * static_cast<double>(BytesOfMachine());
}

template <typename Model>
double MatchWindow(StereoPair& pair, const WindowPlace& place, const DisparityLimits& limits,
                   std::vector<double>& disparities, std::vector<double>& rowDisparities,
                   const ErdasImg* startMap) {
  const auto& [left, right, width, height] = place;
  const WindowCorner corner(left, width, height);
  const DisparityLattice lattice = LatticeOf(width, height);
  DisparityWindow window(*pair.leftImage, *pair.rightImage, corner, lattice, left.y - right.y);
  Model model(window);
  if (!model.HasRoom()) return -1.0;
  rowDisparities.assign(lattice.GetCount(), left.y - right.y);
  disparities.resize(lattice.GetCount());
  for (std::size_t i = 0; i < disparities.size(); ++i) {
    const auto row = static_cast<std::int64_t>(i / lattice.nCols);
    const auto col = static_cast<std::int64_t>(i % lattice.nCols);
    disparities[i] = StartDisparity(startMap, corner.row + row, corner.col + col, left.x - right.x);
  }
  std::vector<double> corrections(lattice.GetCount());
  DisparityMatch match;
  if (!RunDisparityPasses(model, limits, disparities, corrections, match)) return -1.0;
  if (pair.AddDisparityWindow(left, width, height, disparities, rowDisparities, match.score) < 0) return -1.0;
  Ui().Trace(std::string("\n") + LsmOutcomeName(match.outcome));
  return match.score;
}

template <typename Model>
double TryWindow(StereoPair& pair, const WindowPlace& place, const DisparityLimits& limits,
                 std::vector<double>& disparities, std::vector<double>& rowDisparities,
                 const ErdasImg* startMap) {
  if (!place.IsUsable(pair) || !Model::Fits(LatticeOf(place.width, place.height))) return -1.0;
  try {
    return MatchWindow<Model>(pair, place, limits, disparities, rowDisparities, startMap);
  } catch (const std::bad_alloc&) {
    return -1.0;
  }
}

}  // namespace

double StereoPair::LeastSquaresDisparity(const Point2& left, const Point2& right, int width, int height,
                                         double disparityLimit, int iterationLimit,
                                         std::vector<double>& disparities,
                                         std::vector<double>& rowDisparities, const ErdasImg* startMap) {
  return TryWindow<PixelModel>(*this, {left, right, width, height},
                               {disparityLimit, iterationLimit, matchThreshold}, disparities, rowDisparities,
                               startMap);
}

double StereoPair::LeastSquaresDisparityGain(const Point2& left, const Point2& right, int width, int height,
                                             double disparityLimit, int iterationLimit,
                                             std::vector<double>& disparities,
                                             std::vector<double>& rowDisparities, const ErdasImg* startMap) {
  return TryWindow<GainModel>(*this, {left, right, width, height},
                              {disparityLimit, iterationLimit, matchThreshold}, disparities, rowDisparities,
                              startMap);
}

int StereoPair::AddDisparityWindow(const Point2& left, int width, int height,
                                   std::span<const double> disparities,
                                   std::span<const double> rowDisparities, double score) {
  const WindowCorner corner(left, width, height);
  const Point2 first = {static_cast<double>(corner.col), static_cast<double>(corner.row)};
  const std::size_t n = SizeOfWindow(width, height);
  if (n == 0 || n > disparities.size()) return -1;
  return AddDisparityNodes(first, width, 1, 1, disparities.first(n), rowDisparities, score);
}

int StereoPair::AddDisparityNodes(const Point2& first, int nCols, int stepX, int stepY,
                                  std::span<const double> disparities, std::span<const double> rowDisparities,
                                  double score) {
  const std::size_t n = disparities.size();
  if (nCols <= 0 || rowDisparities.size() < n) return -1;
  if (!leftPhoto || !rightPhoto) return 0;
  if (!FitPairs(matchPairs.size() + n)) return -1;
  TINPoints& points = GetGroundPoints();
  try {
    for (std::size_t i = 0; i < n; ++i) {
      const auto row = static_cast<double>(i / static_cast<std::size_t>(nCols));
      const auto col = static_cast<double>(i % static_cast<std::size_t>(nCols));
      const Point2 left = {first.x + col * stepX, first.y + row * stepY};
      const Point2 right = {left.x - disparities[i], left.y - rowDisparities[i]};
      const MatchPair pair = {static_cast<std::int32_t>(matchPairs.size()), left, right, score};
      if (AddGroundPoint(pair, points) < 0) return -1;
      matchPairs.push_back(pair);
    }
  } catch (const std::bad_alloc&) {
    return -1;
  }
  return 1;
}

void StereoPair::StoreDisparityWindow(const Point2& left, int width, int height,
                                      std::span<const double> disparities, int marginX, int marginY) {
  if (!disparityMap || SizeOfWindow(width, height) > disparities.size()) return;
  const WindowCorner corner(left, width, height);
  const auto [mapCols, mapRows] = disparityMap->GetSize();
  // Of the window, as far as it is in the map.
  const std::int64_t firstCol = std::max<std::int64_t>({marginX, -corner.col, 0});
  const std::int64_t endCol = std::min<std::int64_t>(std::int64_t{width} - marginX, mapCols - corner.col);
  const std::int64_t firstRow = std::max<std::int64_t>({marginY, -corner.row, 0});
  const std::int64_t endRow = std::min<std::int64_t>(std::int64_t{height} - marginY, mapRows - corner.row);
  for (std::int64_t row = firstRow; row < std::min<std::int64_t>(endRow, height); ++row) {
    for (std::int64_t col = firstCol; col < std::min<std::int64_t>(endCol, width); ++col) {
      disparityMap->SetPixel(0, static_cast<std::int32_t>(corner.row + row),
                             static_cast<std::int32_t>(corner.col + col),
                             disparities[static_cast<std::size_t>(row * width + col)] + 0.5);
    }
  }
}

}  // namespace corvane
