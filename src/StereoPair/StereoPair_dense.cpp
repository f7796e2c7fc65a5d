// Dense matching by correlation: a disparity and a score for each pixel of the left image.

#include <algorithm>
#include <cmath>
#include <exception>
#include <limits>
#include <string>
#include <vector>

#include "StereoPair/DenseMaps.h"
#include "StereoPair/GridMatching.h"
#include "StereoPair/StereoPair.h"
#include "forms/ValueInput.h"
#include "numerics/Truncate.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

constexpr double kThreshold = 0.75;
constexpr double kStartOffset = -10.0;

// The search of "Area Correlation" in the columns of one pair.
class DenseSearch {
 public:
  DenseSearch(StereoPair& pair, const DensePlaces& cols)
      : pair_(pair), cols_(cols), halfRange_(pair.dem ? std::trunc(pair.demAccuracy) : pair.maxDisparity) {
    if (pair.dem) demRow_.resize(static_cast<std::size_t>(pair.leftImage->GetSize().cx));
  }

  // Fills the maps in a row. Returns at how many places the score is not below the threshold.
  std::int64_t MatchRow(std::int32_t row) {
    std::fill(demRow_.begin(), demRow_.end(), std::numeric_limits<double>::quiet_NaN());
    if (pair_.dem) pair_.dem->GetPixelRow(0, row, 0, demRow_);
    std::int64_t nMatched = 0;
    for (std::int64_t col = cols_.first; col < cols_.end; col += cols_.step) {
      nMatched += Match(row, static_cast<std::int32_t>(col));
    }
    return nMatched;
  }

 private:
  // Fills the maps at a place. Whether its score is not below the threshold. The map of 16-bit numbers takes
  // a disparity as SetPixel cuts it: one beyond them keeps its lower 16 bits. Kept: the start is one row up,
  // and there is no range of rows, so that row r is compared with row r - 1. Kept: so the start lies on the
  // bottom edge of its rectangle, and is never compared itself.
  bool Match(std::int32_t row, std::int32_t col) {
    Point2 right = {static_cast<double>(col - DisparityToBeginWith(col)), row - 1.0};
    const ImageRect rect = StereoPair::BuildSearchRect(right, halfRange_, 0.0, pair_.rightImage->GetSize(),
                                                       pair_.targetWidth, pair_.targetHeight);
    const Point2 left = {static_cast<double>(col), static_cast<double>(row)};
    const double score =
        pair_.SearchCorrelation(left, right, pair_.targetWidth, pair_.targetHeight, rect, pair_.useDiffCheck);
    const bool isBelow = score < pair_.matchThreshold;
    pair_.disparityMap->SetPixel(0, row, col, isBelow ? StereoPair::kNoDisparity : left.x - right.x);
    pair_.measureMap->SetPixel(0, row, col, score);
    return !isBelow;
  }

  std::int64_t DisparityToBeginWith(std::int32_t col) const {
    double disparity = -static_cast<double>(pair_.columnOffset);
    if (!demRow_.empty()) {
      const double ofDem = demRow_[static_cast<std::size_t>(col)];
      if (std::isfinite(ofDem)) disparity = ofDem;
    }
    return TruncateTo64(disparity / pair_.disparityScale);
  }

  StereoPair& pair_;
  DensePlaces cols_;
  double halfRange_;            // columns
  std::vector<double> demRow_;  // the DEM's disparities in it; not a number where it has none
};

std::string NoteOnSpacing(const StereoPair& pair) {
  const bool isAbove = pair.groundSpacingX > 0.0 && pair.groundSpacingY > 0.0;
  return isAbove ? "" : " The ground spacing is not above 0.";
}

int MatchOpenPair(StereoPair& pair) {
  const std::string disparityPath = pair.GetLeftName("_DispMap.lan");
  const std::string measurePath = pair.GetLeftName("_MeasureMap.lan");
  const std::string input = pair.FindInputAmong({disparityPath, measurePath});
  if (!input.empty()) return RefuseToReplace(input);
  ValueInput offset;
  offset.value = kStartOffset;
  Ui().SetStatusText(0, kOffsetHint);
  if (!offset.Ask()) return StereoPair::kCancelled;
  pair.columnOffset = TruncateSaturated(offset.value);

  DenseCounts counts;
  if (pair.CorrelateDense(&counts) < 0) return StereoPair::kNoInput;
  ResultFiles files;
  WriteMap(disparityPath, *pair.disparityMap, files);
  WriteMap(measurePath, *pair.measureMap, files);
  pair.TellOutcome(MatchedText(counts.nMatched, counts.nPlaces) + NoteOnSpacing(pair) + files.GetText());
  return files.GetStatus();
}

}  // namespace

int StereoPair::DenseAreaCorrelation() {
  matchThreshold = kThreshold;
  maxDisparity = kGridDisparity;
  if (RunMatchDialog() < 0) return kCancelled;
  return RunOpenPair(*this, [this] { return MatchOpenPair(*this); });
}

int StereoPair::MakeMaps() {
  disparityMap = MakeMap(*leftImage, kPackInt16);
  measureMap = MakeMap(*leftImage, kPackFloat);
  if (disparityMap && measureMap) return 1;
  ShowWarning(ErdasImg::kNoMemoryText);
  return -1;
}

int StereoPair::CorrelateDense(DenseCounts* counts) {
  if (MakeMaps() < 0) return -1;
  const auto [nCols, nRows] = leftImage->GetSize();
  const DensePlaces rows(nRows, targetHeight, groundSpacingY);
  const DensePlaces cols(nCols, targetWidth, groundSpacingX);
  std::int64_t nMatched = 0;
  try {
    DenseSearch search(*this, cols);
    for (std::int64_t i = 0; i < rows.GetCount() && cols.GetCount() > 0; ++i) {
      TellDone(i, rows.GetCount());
      nMatched += search.MatchRow(static_cast<std::int32_t>(rows.first + i * rows.step));
    }
  } catch (const std::exception&) {  // no memory for a row
    ShowWarning(ErdasImg::kNoMemoryText);
    return -1;
  }
  if (counts) *counts = {.nPlaces = rows.GetCount() * cols.GetCount(), .nMatched = nMatched};
  return 1;
}

}  // namespace corvane
