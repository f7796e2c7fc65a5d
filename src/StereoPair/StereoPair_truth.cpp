// The command "Exam Truth": the DEM is a map of true disparities, of which the scores are examined.

#include <algorithm>
#include <array>
#include <cmath>
#include <exception>
#include <limits>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include "StereoPair/DenseMaps.h"
#include "StereoPair/GridMatching.h"
#include "StereoPair/MaskedWindows.h"
#include "StereoPair/StereoPair.h"
#include "erdasimg/BandPixels.h"
#include "numerics/Truncate.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

constexpr double kThreshold = 0.75;
constexpr std::int32_t kRange = 16;
constexpr double kEveryPixel = 1.0;

constexpr int kMostPasses = 1000;
constexpr int kPassesAFile = 200;

constexpr const char* kTruthScores = "MeasureMap_Disp.lan";

// The files of the maps; `pass` is the number of a pass, or "".
std::string MeasureFile(const std::string& pass) {
  return "MeasureMap" + pass + ".lan";
}
std::string DisparityFile(const std::string& pass) {
  return "DispTrueNew" + pass + ".lan";
}

std::vector<std::string> AllFiles() {
  std::vector<std::string> files = {MeasureFile(""), DisparityFile(""), kTruthScores};
  for (int pass = kPassesAFile; pass <= kMostPasses; pass += kPassesAFile) {
    files.push_back(MeasureFile(std::to_string(pass)));
    files.push_back(DisparityFile(std::to_string(pass)));
  }
  return files;
}

void WriteMaps(const StereoPair& pair, const std::string& pass, ResultFiles& files) {
  WriteMap(MeasureFile(pass), *pair.measureMap, files);
  WriteMap(DisparityFile(pass), *pair.disparityMap, files);
}

// The places that are examined, in both directions.
struct ExamPlaces {
  explicit ExamPlaces(const StereoPair& pair)
      : rows(pair.leftImage->GetSize().cy, pair.targetHeight, kEveryPixel),
        cols(pair.leftImage->GetSize().cx, pair.targetWidth, kEveryPixel) {}

  std::int64_t GetCount() const { return rows.GetCount() * cols.GetCount(); }

  DensePlaces rows;
  DensePlaces cols;
};

// The rows of a disparity map, as wide as the left image.
class DisparityRows {
 public:
  DisparityRows(const StereoPair& pair, const ErdasImg& map)
      : map_(map), values_(static_cast<std::size_t>(std::max(pair.leftImage->GetSize().cx, 0))) {}

  // Not a number outside of the map. Valid until the next call.
  const std::vector<double>& Read(std::int64_t row) {
    std::fill(values_.begin(), values_.end(), std::numeric_limits<double>::quiet_NaN());
    map_.GetPixelRow(0, static_cast<std::int32_t>(row), 0, values_);
    return values_;
  }

 private:
  const ErdasImg& map_;
  std::vector<double> values_;
};

// Looks around a true disparity. Whether the score is not below the threshold.
bool SearchAround(StereoPair& pair, std::int32_t row, std::int32_t col, double truth) {
  if (!IsDisparity(truth)) {
    pair.disparityMap->SetPixel(0, row, col, StereoPair::kNoDisparity);
    return false;
  }
  const Point2 left = {static_cast<double>(col), static_cast<double>(row)};
  Point2 right = {col - truth, left.y};
  const double score = pair.SearchCorrelationInWindow(left, right, 0, TruncateSaturated(pair.demAccuracy));
  const bool isBelow = score < pair.matchThreshold;
  pair.disparityMap->SetPixel(0, row, col, isBelow ? StereoPair::kNoDisparity : left.x - right.x);
  pair.measureMap->SetPixel(0, row, col, score);
  return !isBelow;
}

// The first pass. Returns at how many places there is a disparity.
std::int64_t SearchAroundTruth(StereoPair& pair) {
  const ExamPlaces places(pair);
  if (places.GetCount() == 0) return 0;
  DisparityRows truths(pair, *pair.dem);
  std::int64_t nMatched = 0;
  for (std::int64_t row = places.rows.first; row < places.rows.end; ++row) {
    pair.TellDone(row - places.rows.first, places.rows.GetCount());
    const std::vector<double>& truth = truths.Read(row);
    for (std::int64_t col = places.cols.first; col < places.cols.end; ++col) {
      nMatched += SearchAround(pair, static_cast<std::int32_t>(row), static_cast<std::int32_t>(col),
                               truth[static_cast<std::size_t>(col)]);
    }
  }
  return nMatched;
}

// Smooths disparityMap as long as the score of a pixel becomes better than in measureMap, which stays.
//
// A pixel that was not updated stays as it is until something changes in its window or among its neighbours,
// and is passed over: with the same input it would fail again.
class DisparitySmoother {
 public:
  explicit DisparitySmoother(const StereoPair& pair)
      : pair_(pair),
        places_(pair),
        nCols_(pair.leftImage->GetSize().cx),
        nRows_(pair.leftImage->GetSize().cy),
        disparities_(*pair.disparityMap, 0),
        scores_(*pair.measureMap, 0),
        windows_(*pair.leftImage, *pair.rightImage, *pair.disparityMap, pair.targetWidth, pair.targetHeight),
        isSettled_(static_cast<std::size_t>(nCols_ * nRows_)) {}

  // Visits all pixels, row by row, and changes them in place. Returns how many it has updated.
  std::int64_t RunPass() {
    std::int64_t nUpdated = 0;
    for (std::int64_t row = places_.rows.first; row < places_.rows.end; ++row) {
      const auto rowStart = isSettled_.begin() + row * nCols_;
      const auto end = rowStart + places_.cols.end;
      auto next = std::find(rowStart + places_.cols.first, end, kUnsettled);
      for (; next != end; next = std::find(next + 1, end, kUnsettled)) {
        *next = kSettled;
        nUpdated += Update(static_cast<std::int32_t>(row), static_cast<std::int32_t>(next - rowStart));
      }
    }
    return nUpdated;
  }

 private:
  static constexpr std::uint8_t kUnsettled = 0;
  static constexpr std::uint8_t kSettled = 1;

  bool Update(std::int32_t row, std::int32_t col) {
    const std::int64_t index = disparities_.IndexOf(row, col);
    const std::optional<std::int16_t> mean = MeanAround(row, col);
    if (!mean || *mean == disparities_.Get(index)) return false;
    const double score = windows_.CompareMasked(row, col, *mean);
    if (!(score > double{scores_.Get(index)})) return false;
    disparities_.Set(index, *mean);
    windows_.SetDisparity(row, col, *mean);
    UnsettleAround(row, col);
    return true;
  }

  // The mean of the neighbours' disparities, 0.5 added and truncated; nothing if none of them has one.
  std::optional<std::int16_t> MeanAround(std::int64_t row, std::int64_t col) const {
    int sum = 0;
    int n = 0;
    for (std::int64_t i = 0; i < 9; ++i) {
      const int disparity = disparities_.Get(disparities_.IndexOf(row + i / 3 - 1, col + i % 3 - 1));
      if (i == 4 || disparity == StereoPair::kNoDisparity) continue;
      sum += disparity;
      ++n;
    }
    if (n == 0) return std::nullopt;
    return static_cast<std::int16_t>(static_cast<double>(sum) / n + 0.5);
  }

  // All pixels whose window or neighbours hold this one.
  void UnsettleAround(std::int64_t row, std::int64_t col) {
    const std::int64_t reachUp = std::max(pair_.targetHeight - 1 - pair_.targetHeight / 2, 1);
    const std::int64_t reachLeft = std::max(pair_.targetWidth - 1 - pair_.targetWidth / 2, 1);
    const std::int64_t endRow = std::min(row + std::max(pair_.targetHeight / 2, 1) + 1, nRows_);
    const std::int64_t endCol = std::min(col + std::max(pair_.targetWidth / 2, 1) + 1, nCols_);
    const std::int64_t firstCol = std::max<std::int64_t>(col - reachLeft, 0);
    for (std::int64_t y = std::max<std::int64_t>(row - reachUp, 0); y < endRow; ++y) {
      std::fill_n(isSettled_.begin() + y * nCols_ + firstCol, endCol - firstCol, kUnsettled);
    }
  }

  const StereoPair& pair_;
  ExamPlaces places_;
  std::int64_t nCols_;
  std::int64_t nRows_;
  BandPixels<std::int16_t> disparities_;
  BandPixels<float> scores_;
  MaskedWindows windows_;
  std::vector<std::uint8_t> isSettled_;
};

struct Smoothing {
  int nPasses = 0;
  std::int64_t nUpdates = 0;
};

// There is nothing to do without a place.
Smoothing SmoothDisparities(const StereoPair& pair, ResultFiles& files) {
  Smoothing result;
  if (ExamPlaces(pair).GetCount() == 0) return result;
  DisparitySmoother smoother(pair);
  std::int64_t nUpdated = 1;
  while (result.nPasses < kMostPasses && nUpdated > 0) {
    nUpdated = smoother.RunPass();
    ++result.nPasses;
    result.nUpdates += nUpdated;
    if (result.nPasses % kPassesAFile == 0) WriteMaps(pair, std::to_string(result.nPasses), files);
    if (!pair.progressWindow) continue;
    pair.progressWindow->SetStatusText(0, "Updated " + std::to_string(nUpdated) + ", Done " +
                                              std::to_string(result.nPasses * 100 / kMostPasses) + "% ...");
  }
  return result;
}

// " Passes of smoothing: 7, updates: 42.", and whether their maps are not among the files; "" without a pass.
std::string TextOf(const Smoothing& smoothing) {
  if (smoothing.nPasses == 0) return "";
  const std::string text = " Passes of smoothing: " + std::to_string(smoothing.nPasses) +
                           ", updates: " + std::to_string(smoothing.nUpdates) + ".";
  if (smoothing.nPasses >= kPassesAFile) return text;
  return text + " The smoothed maps are not written before pass " + std::to_string(kPassesAFile) + ".";
}

int FailWithoutTruth() {
  Ui().SetStatusText(0, "No DEM is named: it is to be the true disparity map.");
  ShowMessage("Open DEM file error!");
  return StereoPair::kNoInput;
}

int ExamineOpenPair(StereoPair& pair) {
  const std::string input = pair.FindInputAmong(AllFiles());
  if (!input.empty()) return RefuseToReplace(input);
  if (pair.MakeMaps() < 0) return StereoPair::kNoInput;
  ResultFiles files;
  const std::int64_t nMatched = SearchAroundTruth(pair);
  WriteMaps(pair, "", files);
  ErdasImg truthScores;
  if (pair.ScoreOfDisparityMap(*pair.dem, truthScores) < 0) throw std::bad_alloc();
  WriteMap(kTruthScores, truthScores, files);
  const Smoothing smoothing = SmoothDisparities(pair, files);
  pair.TellOutcome(MatchedText(nMatched, ExamPlaces(pair).GetCount()) + TextOf(smoothing) + files.GetText());
  return files.GetStatus();
}

}  // namespace

int StereoPair::ExamTruth() {
  matchThreshold = kThreshold;
  maxDisparity = kRange;
  if (RunMatchDialog() < 0) return kCancelled;
  return RunOpenPair(*this, [this] {
    if (!dem) return FailWithoutTruth();
    try {
      return ExamineOpenPair(*this);
    } catch (const std::exception&) {  // no memory for rows or windows
      ShowWarning(ErdasImg::kNoMemoryText);
      return kNoInput;
    }
  });
}

int StereoPair::ScoreOfDisparityMap(const ErdasImg& disparities, ErdasImg& scores) const {
  try {
    auto map = MakeMap(*leftImage, kPackFloat);
    if (!map) return -1;
    const MaskedWindows windows(*leftImage, *rightImage, disparities, targetWidth, targetHeight);
    const ExamPlaces places(*this);
    DisparityRows rows(*this, disparities);
    for (std::int64_t row = places.rows.first; row < places.rows.end; ++row) {
      const std::vector<double>& own = rows.Read(row);
      for (std::int64_t i = places.cols.first; i < places.cols.end; ++i) {
        const double disparity = own[static_cast<std::size_t>(i)];
        if (!IsDisparity(disparity)) continue;
        const auto col = static_cast<std::int32_t>(i);
        const double score = windows.CompareMasked(static_cast<std::int32_t>(row), col, disparity);
        map->SetPixel(0, static_cast<std::int32_t>(row), col, score);
      }
    }
    scores = std::move(*map);
  } catch (const std::exception&) {
    return -1;
  }
  return 1;
}

}  // namespace corvane
