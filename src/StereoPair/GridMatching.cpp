#include "StereoPair/GridMatching.h"

#include <algorithm>
#include <new>
#include <stdexcept>
#include <utility>

#include "StereoPair/MatchTexts.h"
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

bool MatchInColumns(PlaceMatcher& matcher, std::int32_t col, std::int32_t row, std::int32_t halfW) {
  const std::int64_t nCols = matcher.GetPair().rightImage->GetSize().cx;
  const ColumnRange range(matcher.GetPair(), col);
  if (range.IsBeside(nCols)) {
    matcher.Skip();
    return true;
  }
  const std::int64_t firstCol = halfW;
  const std::int64_t lastCol = nCols - halfW;
  const std::int64_t first = std::max(range.first, firstCol);
  const std::int64_t last = std::min(range.last, lastCol);
  if (first > last) matcher.NoteBeside();
  return matcher.Match(col, row, std::min(std::max(range.start, firstCol), lastCol), first, last);
}

// The first of the results that is the same file as one before it, or will be; "" if none.
std::string FindRepeated(const std::vector<std::string>& results) {
  for (auto result = results.begin(); result != results.end(); ++result) {
    const auto isThis = [&path = *result](const std::string& other) {
      return !path.empty() && (IsSameFile(other, path) || AbsolutePath(other) == AbsolutePath(path));
    };
    if (std::any_of(results.begin(), result, isThis)) return *result;
  }
  return "";
}

int RefuseToRepeat(const std::string& path) {
  ShowWarning(WriteErrorText(path) + "\nIt is another result of the command.");
  return StereoPair::kNotWritten;
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
  std::erase_if(missing_, [&path](const Result& result) { return result.path == path; });
  Put(written_, {path, note});
}

void ResultFiles::AddMissing(const std::string& path, const std::string& reason) {
  Put(missing_, {path, reason});
}

// In place of what stands there for its path.
void ResultFiles::Put(std::vector<Result>& results, const Result& result) {
  const auto isThis = [&result](const Result& other) { return other.path == result.path; };
  const auto found = std::find_if(results.begin(), results.end(), isThis);
  if (found == results.end()) {
    results.push_back(result);
  } else {
    *found = result;
  }
}

int ResultFiles::GetStatus() const {
  return hasFailed_ ? StereoPair::kNotWritten : StereoPair::kDone;
}

std::string ResultFiles::GetText() const {
  std::string text;
  for (const Result& file : written_) {
    text += (text.empty() ? " Written: " : ", ") + FileName(file.path) + file.text;
  }
  if (!text.empty()) text += ".";
  for (const Result& file : missing_) text += UnwrittenText(file.path, file.text);
  return text;
}

void WriteGroundPoints(StereoPair& pair, const std::string& pointsPath, std::int64_t nNew,
                       ResultFiles& files) {
  const std::int32_t nPoints = pair.GetGroundPoints().GetCount();
  files.Add(StereoPair::kGroundLog, pair.WriteGroundLog());
  files.Add(pointsPath, pair.SaveGroundPoints(pointsPath), " (" + PointsText(nPoints, nNew) + ")");
  if (nPoints == 0 && !pointsPath.empty()) files.AddMissing(pointsPath, "there are no points");
}

void WriteMatchPairs(const StereoPair& pair, const std::string& path, ResultFiles& files) {
  files.Add(path, StereoPair::StorePairs(path, pair.matchPairs));
}

std::string MatchedText(std::int64_t nMatched, std::int64_t nPlaces, std::string_view whyNone) {
  if (nPlaces == 0) return std::string(whyNone);
  return std::to_string(nMatched) + " of " + std::to_string(nPlaces) + " places matched.";
}

std::string RangeText(const PlaceMatcher& matcher) {
  if (matcher.GetPlaceCount() > 0 && matcher.GetPair().maxDisparity < 0) {
    return " Max Disparity is negative: the range of columns is empty.";
  }
  if (matcher.GetBesideCount() == 0) return "";
  return " Beside the right image at this offset: " + Counted(matcher.GetBesideCount(), "place") + ".";
}

std::string RepeatText(const LeftGrid& grid) {
  return grid.RepeatsPlaces() ? " The ground spacing is below a pixel: places repeat." : "";
}

int FinishGridMethod(StereoPair& pair, const PlaceMatcher& matcher, bool writesPairs,
                     std::string_view whyNone, const std::string& note) {
  const std::string text = MatchedText(matcher.GetMatchCount(), matcher.GetPlaceCount(), whyNone) +
                           RangeText(matcher) + UnplacedText(pair.GetGroundPoints(), matcher.GetMatchCount());
  ResultFiles files;
  WriteGroundPoints(pair, pair.matchPointsPath, matcher.GetMatchCount(), files);
  if (writesPairs) WriteMatchPairs(pair, pair.GetLeftName(kGridPairSuffix), files);
  pair.TellOutcome(text + files.GetText() + note);
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

void AskColumnOffset(StereoPair& pair) {
  ValueInput input;
  input.value = kFirstOffset;
  Ui().SetStatusText(0, kOffsetHint);
  input.Ask();  // Kept: after Cancel the value that was shown counts
  pair.columnOffset = TruncateSaturated(input.value);
}

int RunOpenPair(StereoPair& pair, const std::function<int()>& run) {
  WaitCursor wait;
  int status = pair.OpenPair();
  try {
    if (status == StereoPair::kDone) status = run();
  } catch (const std::bad_alloc&) {
    status = FailForMemory();
  } catch (const std::length_error&) {
    status = FailForMemory();
  }
  pair.FreePair();
  return status;
}

int RunOnPair(StereoPair& pair, const std::vector<std::string>& results, const std::function<int()>& run) {
  return RunOpenPair(pair, [&] {
    std::vector<std::string> all = {StereoPair::kGroundLog};
    all.insert(all.end(), results.begin(), results.end());
    all.push_back(pair.matchPointsPath);
    const std::string input = pair.FindInputAmong(all);
    if (!input.empty()) return RefuseToReplace(input);
    const std::string repeated = FindRepeated(all);
    return repeated.empty() ? run() : RefuseToRepeat(repeated);
  });
}

int RunGridMethod(StereoPair& pair, double threshold, bool keepsPairs, const PlaceSearch& search,
                  std::string (*noteOn)(std::int32_t width)) {
  pair.matchThreshold = threshold;
  pair.maxDisparity = kGridDisparity;
  if (pair.RunMatchDialog() < 0) return StereoPair::kCancelled;
  std::vector<std::string> results;
  if (keepsPairs) results.push_back(pair.GetLeftName(kGridPairSuffix));
  return RunOnPair(pair, results, [&] {
    AskColumnOffset(pair);
    const LeftGrid grid = pair.GetLeftGrid();
    PlaceMatcher matcher(pair, search, {.pairs = keepsPairs});
    if (!MatchGrid(matcher)) return FailForMemory();
    const std::string note = RepeatText(grid) + (noteOn ? noteOn(pair.targetWidth) : "");
    return FinishGridMethod(pair, matcher, keepsPairs, grid.whyNone, note);
  });
}

}  // namespace corvane
