#include "StereoPair/GridMatching.h"

#include <algorithm>
#include <new>
#include <stdexcept>
#include <utility>

#include "StereoPair/StereoPair.h"
#include "forms/ValueInput.h"
#include "io/Paths.h"
#include "numerics/Truncate.h"
#include "ui/ErrorTexts.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

constexpr double kFirstOffset = -10.0;  // columns

std::int32_t Saturated(std::int64_t value) {
  return static_cast<std::int32_t>(std::clamp<std::int64_t>(value, INT32_MIN, INT32_MAX));
}

void AskColumnOffset(StereoPair& pair) {
  ValueInput input;
  input.value = kFirstOffset;
  input.Ask();  // Kept: after Cancel the value that was shown counts
  pair.columnOffset = TruncateSaturated(input.value);
}

bool MatchInColumns(PlaceMatcher& matcher, std::int32_t col, std::int32_t row, std::int32_t halfW) {
  const std::int64_t nCols = matcher.GetPair().rightImage->GetSize().cx;
  const ColumnRange range(matcher.GetPair(), col);
  if (range.IsBeside(nCols)) {
    matcher.Skip();
    return true;
  }
  const std::int64_t first = halfW;
  const std::int64_t last = nCols - halfW;
  return matcher.Match(col, row, std::min(std::max(range.start, first), last), std::max(range.first, first),
                       std::min(range.last, last));
}

}  // namespace

PlaceSearch SearchOfCorrelation(StereoPair& pair) {
  return [&pair](const Point2& left, Point2& right, const ImageRect& rect) {
    return pair.SearchCorrelation(left, right, pair.targetWidth, pair.targetHeight, rect, pair.useDiffCheck);
  };
}

ColumnRange::ColumnRange(const StereoPair& pair, std::int32_t col)
    : start(std::int64_t{col} + pair.columnOffset),
      first(start - pair.maxDisparity),
      last(start + pair.maxDisparity) {}

PlaceMatcher::PlaceMatcher(StereoPair& pair, PlaceSearch search, const MatchTargets& targets)
    : pair_(pair), search_(std::move(search)), targets_(targets) {}

bool PlaceMatcher::Match(std::int32_t col, std::int32_t row, std::int64_t start, std::int64_t first,
                         std::int64_t last) {
  ++nPlaces_;
  const std::int64_t margin = pair_.rightPhoto->maxRowDisparity;
  const ImageRect rect = {Saturated(first), Saturated(row - margin), Saturated(last),
                          Saturated(row + margin)};
  const Point2 left{static_cast<double>(col), static_cast<double>(row)};
  Point2 right{static_cast<double>(start), left.y};
  const double score = search_(left, right, rect);
  return !pair_.IsMatched(score) || Keep(left, right, score);
}

bool PlaceMatcher::Keep(const Point2& left, const Point2& right, double score) {
  const MatchPair found{.id = nMatched_++, .left = left, .right = right, .score = score};
  if (targets_.pairs) pair_.matchPairs.push_back(found);
  return !targets_.groundPoints || pair_.AddGroundPoint(found, pair_.GetGroundPoints()) > 0;
}

bool MatchGrid(PlaceMatcher& matcher) {
  const StereoPair& pair = matcher.GetPair();
  const LeftGrid grid = pair.GetLeftGrid();
  if (grid.nCols <= 0) return true;
  for (std::int64_t i = 0; i < grid.nRows; ++i) {
    pair.TellDone(i, grid.nRows);
    for (std::int64_t j = 0; j < grid.nCols; ++j) {
      if (!MatchInColumns(matcher, grid.GetCol(j), grid.GetRow(i), grid.halfW)) return false;
    }
  }
  return true;
}

void ResultFiles::Add(const std::string& path, int status, const std::string& note) {
  if (status < 0) hasFailed_ = true;
  if (status <= 0) return;
  const auto isThis = [&path](const Written& file) { return file.path == path; };
  const auto found = std::find_if(written_.begin(), written_.end(), isThis);
  if (found == written_.end()) {
    written_.push_back({path, note});
  } else {
    found->note = note;
  }
}

int ResultFiles::GetStatus() const {
  return hasFailed_ ? StereoPair::kNotWritten : StereoPair::kDone;
}

std::string ResultFiles::GetText() const {
  std::string text;
  for (const Written& file : written_) {
    text += (text.empty() ? " Written: " : ", ") + FileName(file.path) + file.note;
  }
  return text.empty() ? text : text + ".";
}

void WriteGroundPoints(StereoPair& pair, const std::string& pointsPath, ResultFiles& files) {
  const std::int32_t nPoints = pair.GetGroundPoints().GetCount();
  files.Add(StereoPair::kGroundLog, pair.WriteGroundLog());
  files.Add(pointsPath, pair.SaveGroundPoints(pointsPath),
            " (" + std::to_string(nPoints) + (nPoints == 1 ? " point)" : " points)"));
}

void WriteMatchPairs(const StereoPair& pair, const std::string& path, ResultFiles& files) {
  files.Add(path, StereoPair::StorePairs(path, pair.matchPairs));
}

std::string MatchedText(std::int64_t nMatched, std::int64_t nPlaces) {
  if (nPlaces == 0) return "There is no place to match in the left image.";
  return std::to_string(nMatched) + " of " + std::to_string(nPlaces) + " places matched.";
}

int FinishGridMethod(StereoPair& pair, const PlaceMatcher& matcher, bool writesPairs,
                     const std::string& note) {
  ResultFiles files;
  WriteGroundPoints(pair, pair.matchPointsPath, files);
  if (writesPairs) WriteMatchPairs(pair, pair.GetLeftName(kGridPairSuffix), files);
  pair.TellOutcome(MatchedText(matcher.GetMatchCount(), matcher.GetPlaceCount()) + files.GetText() + note);
  return files.GetStatus();
}

int FailForMemory() {
  ShowWarning("There is no memory for the matches.");
  return StereoPair::kNoInput;
}

int RefuseToReplace(const std::string& path) {
  ShowWarning(WriteErrorText(path) + "\n" + kIsInputText);
  return StereoPair::kNotWritten;
}

int RunOnPair(StereoPair& pair, const std::vector<std::string>& results, const std::function<int()>& run) {
  WaitCursor wait;
  const auto runOpen = [&] {
    std::vector<std::string> all = {StereoPair::kGroundLog, pair.matchPointsPath};
    all.insert(all.end(), results.begin(), results.end());
    const std::string input = pair.FindInputAmong(all);
    if (!input.empty()) return RefuseToReplace(input);
    AskColumnOffset(pair);
    return run();
  };
  int status = pair.OpenPair();
  try {
    if (status == StereoPair::kDone) status = runOpen();
  } catch (const std::bad_alloc&) {
    status = FailForMemory();
  } catch (const std::length_error&) {
    status = FailForMemory();
  }
  pair.FreePair();
  return status;
}

int RunGridMethod(StereoPair& pair, double threshold, bool keepsPairs, const PlaceSearch& search) {
  pair.matchThreshold = threshold;
  pair.maxDisparity = kGridDisparity;
  if (pair.RunMatchDialog() < 0) return StereoPair::kCancelled;
  std::vector<std::string> results;
  if (keepsPairs) results.push_back(pair.GetLeftName(kGridPairSuffix));
  return RunOnPair(pair, results, [&] {
    PlaceMatcher matcher(pair, search, {.pairs = keepsPairs});
    return MatchGrid(matcher) ? FinishGridMethod(pair, matcher, keepsPairs) : FailForMemory();
  });
}

}  // namespace corvane
