// Least-squares matching of the pixels of a region.

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <new>
#include <span>
#include <vector>

#include "StereoPair/LeastSquaresMatch.h"
#include "StereoPair/LeastSquaresPasses.h"
#include "StereoPair/LeastSquaresPatch.h"
#include "StereoPair/MatchRegion.h"
#include "StereoPair/WindowBytes.h"
#include "numerics/Truncate.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

constexpr std::size_t kFewestPixels = 8;  // in RegionMode::All

bool AllFinite(std::initializer_list<double> numbers) {
  return std::all_of(numbers.begin(), numbers.end(), [](double number) { return std::isfinite(number); });
}

// Takes the pixels of a region from the image, run by run.
class RunReader {
 public:
  RunReader(const ErdasImg& image, RegionPixels& pixels) : image_(image), pixels_(pixels) {}

  // Adds the pixels of a row from `first` to before `end`, as far as they are on the image. More of them than
  // a match has memory for are as bad as no memory.
  void Add(std::int64_t row, std::int64_t first, std::int64_t end) {
    const auto [cols, rows] = image_.GetSize();
    first = std::max<std::int64_t>(first, 0);
    end = std::min<std::int64_t>(end, cols);
    if (row < 0 || row >= rows || first >= end) return;
    const auto nHeld = static_cast<std::int64_t>(pixels_.size());
    if (nHeld + end - first > LeastSquaresPatch::MostPixels()) throw std::bad_alloc();
    values_.resize(static_cast<std::size_t>(end - first));
    CopyBytes(image_, row, first, values_);
    for (const std::uint8_t value : values_) {
      pixels_.push_back({static_cast<std::int32_t>(first++), static_cast<std::int32_t>(row), value});
    }
  }

 private:
  const ErdasImg& image_;
  RegionPixels& pixels_;
  std::vector<std::uint8_t> values_;  // of a run
};

void AddScanLines(const ErdasImg& image, const ScanRegion& region, RegionPixels& pixels) {
  RunReader reader(image, pixels);
  for (const ScanRow& row : region.GetRows()) {
    const auto crossings = row.GetCrossings();
    for (std::size_t k = 0; k + 1 < crossings.size(); k += 2) {
      if (!AllFinite({row.y, crossings[k], crossings[k + 1]})) continue;
      reader.Add(TruncateTo64(row.y), TruncateTo64(crossings[k]), TruncateTo64(crossings[k + 1]));
    }
  }
}

// 2 half + 1 is the smallest odd number that is not less than the length.
std::int64_t HalfOf(double length) {
  return std::max(TruncateSaturated(std::ceil((length - 1.0) / 2.0)), 0);
}

void AddRectangle(const ErdasImg& image, const MatchRegion& region, RegionPixels& pixels) {
  if (!AllFinite({region.centerX, region.centerY})) return;
  if (!AllFinite({region.leftBound, region.topBound, region.rightBound, region.bottomBound})) return;
  const std::int64_t col = TruncateSaturated(region.centerX);
  const std::int64_t row = TruncateSaturated(region.centerY);
  const std::int64_t halfW = HalfOf(region.rightBound - region.leftBound);
  const std::int64_t halfH = HalfOf(region.bottomBound - region.topBound);
  const std::int64_t first = std::max<std::int64_t>(row - halfH, 0);
  const std::int64_t last = std::min<std::int64_t>(row + halfH, image.GetSize().cy - 1);
  RunReader reader(image, pixels);
  for (std::int64_t line = first; line <= last; ++line) reader.Add(line, col - halfW, col + halfW + 1);
}

// The pixels of the region; none without enough of them.
RegionPixels MakePixels(const ErdasImg& left, const MatchRegion& region, RegionMode mode) {
  RegionPixels pixels;
  if (mode == RegionMode::Rectangle) {
    AddRectangle(left, region, pixels);
  } else {
    AddScanLines(left, region.scanRegion, pixels);
  }
  if (mode == RegionMode::All && pixels.size() < kFewestPixels) pixels.clear();
  return pixels;
}

// The sums of a template.
struct PatternSums {
  double sum = 0.0;
  double sumSq = 0.0;
};

PatternSums TakePixels(std::span<const RegionPixel> pixels, const Point2& origin, LeastSquaresPatch& patch) {
  PatternSums sums;
  for (std::size_t i = 0; i < pixels.size(); ++i) {
    const auto [col, row, value] = pixels[i];
    patch.GetPattern()[i] = value;
    patch.SetOffset(i, col - origin.x, row - origin.y);
    sums.sum += value;
    sums.sumSq += value * value;
  }
  return sums;
}

// The parameters with each pixel kept in its row.
LsmParameters Locked(LsmParameters parameters) {
  parameters.b0 = 0.0;
  parameters.b1 = 0.0;
  parameters.b2 = 1.0;
  return parameters;
}

struct RegionMatch {
  LsmOutcome outcome = LsmOutcome::Irregular;
  double score = -1.0;
};

RegionMatch RunPasses(LeastSquaresPatch& patch, const PatternSums& sums, const Point2& origin,
                      LsmParameters& parameters, bool isRowLocked) {
  const int nUnknowns = isRowLocked ? LeastSquaresPatch::kLockedColumns : LeastSquaresPatch::kColumns;
  RegionMatch match;
  for (int pass = 1;; ++pass) {
    patch.Sample(isRowLocked ? Locked(parameters) : parameters, origin);
    match.score = patch.GetScore(sums.sum, sums.sumSq);
    if (match.outcome == LsmOutcome::Converged || pass == kLastLsmPass) return match;
    double x[LeastSquaresPatch::kColumns];
    patch.Adjust({.usesPlaces = false, .isByGaussJordan = true, .nUnknowns = nUnknowns}, x);
    const LsmStep step = AddCorrections(parameters, x);
    if (!step.IsBounded() || !AreFinite(parameters)) return {LsmOutcome::Diverge, 0.0};
    if (step.IsSmall()) match.outcome = LsmOutcome::Converged;
  }
}

double MatchPixels(std::span<const RegionPixel> pixels, const ErdasImg& search, std::int32_t id,
                   Point2& position, LsmParameters& parameters, bool isRowLocked) {
  if (pixels.empty()) return -1.0;
  LeastSquaresPatch patch(search, static_cast<std::int64_t>(pixels.size()));
  if (!patch.HasRoom()) return -1.0;
  Ui().Trace("\nRegion ID: " + std::to_string(id) + "\n");
  const Point2 origin = {std::trunc(position.x), std::trunc(position.y)};
  const PatternSums sums = TakePixels(pixels, origin, patch);
  const RegionMatch match = RunPasses(patch, sums, origin, parameters, isRowLocked);
  Ui().Trace(LsmOutcomeName(match.outcome) + std::string(match.outcome == LsmOutcome::Irregular ? "\n" : ""));
  if (match.outcome == LsmOutcome::Diverge) return match.score;
  position.x += parameters.a0;
  if (!isRowLocked) position.y += parameters.b0;
  return match.score;
}

}  // namespace

double LeastSquaresMatchRegion(const ErdasImg& left, const ErdasImg& search, const MatchRegion& region,
                               Point2& position, LsmParameters& parameters, RegionMode mode, bool isRowLocked,
                               RegionPixels* cache) {
  if (!CanMatchAt(search, position) || !left.HasPixels()) return -1.0;
  try {
    RegionPixels own;
    const bool isCached = mode == RegionMode::ScanLines && cache;
    RegionPixels& pixels = isCached ? *cache : own;
    if (pixels.empty()) pixels = MakePixels(left, region, mode);
    return MatchPixels(pixels, search, region.id, position, parameters, isRowLocked);
  } catch (const std::bad_alloc&) {
    return -1.0;
  }
}

}  // namespace corvane
