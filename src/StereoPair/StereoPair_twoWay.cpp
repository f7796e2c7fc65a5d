// Matching there and back.

#include <cmath>
#include <utility>

#include "StereoPair/GridMatching.h"
#include "StereoPair/MatchTexts.h"
#include "StereoPair/StereoPair.h"
#include "io/NumberText.h"

namespace corvane {

namespace {

constexpr const char* kPairSuffix = "_GridMatchPair2Way.txt";
constexpr const char* kPointSuffix = "_TwoWay.pts";
constexpr const char* kNoPairText = "no pair is left";
constexpr double kForwardThreshold = 0.75;
constexpr double kLeastEntropy = 3.0;    // nats; a window with less is too even to be matched back
constexpr double kMostDifference = 1.0;  // columns between a left place and where its partner leads back

// Exchanges the images for its lifetime.
class ExchangedPhotos {
 public:
  explicit ExchangedPhotos(StereoPair& pair) : pair_(pair) { Exchange(); }
  ~ExchangedPhotos() { Exchange(); }
  ExchangedPhotos(const ExchangedPhotos&) = delete;
  ExchangedPhotos& operator=(const ExchangedPhotos&) = delete;

 private:
  void Exchange() {
    std::swap(pair_.leftPhoto, pair_.rightPhoto);
    std::swap(pair_.leftImage, pair_.rightImage);
  }

  StereoPair& pair_;
};

std::string PointsPathOf(const StereoPair& pair) {
  return pair.matchPointsPath.empty() ? pair.GetLeftName(kPointSuffix) : pair.matchPointsPath;
}

// Whether the window of the match's left place, in what is the right image while photos are exchanged, has
// too little in it.
bool IsTooEven(const StereoPair& exchanged, const MatchPair& match) {
  std::vector<double> entropies;  // one a band
  StereoPair::WindowEntropy(*exchanged.rightImage, match.left, exchanged.targetWidth, exchanged.targetHeight,
                            entropies);
  return !entropies.empty() && entropies.front() < kLeastEntropy;
}

// Whether the match's right place leads back to its left one.
// Kept: the columns decide alone, so that a place found in another row will do.
bool IsMatchedBack(StereoPair& exchanged, const PlaceSearch& search, const MatchPair& match) {
  Point2 found{match.right.x - exchanged.columnOffset, match.right.y};
  const ImageRect rect = StereoPair::BuildSearchRect(
      found, exchanged.maxDisparity, exchanged.rightPhoto->maxRowDisparity, exchanged.rightImage->GetSize(),
      exchanged.targetWidth, exchanged.targetHeight);
  const double score = search(match.right, found, rect);
  return exchanged.IsMatched(score) && std::fabs(match.left.x - found.x) <= kMostDifference;
}

// Leaves the pairs that are matched both ways, with the score of the way there. Returns how many were too
// even to be looked at.
std::int64_t KeepMatchedBack(StereoPair& pair) {
  const ExchangedPhotos exchanged(pair);
  const PlaceSearch search = SearchOfCorrelation(pair);
  const auto nPairs = static_cast<std::int64_t>(pair.matchPairs.size());
  std::int64_t nDone = 0;
  std::int64_t nTooEven = 0;
  double row = -1.0;
  std::erase_if(pair.matchPairs, [&](const MatchPair& match) {
    if (match.left.y != row) pair.TellDone(nDone, nPairs);
    row = match.left.y;
    ++nDone;
    if (!IsTooEven(pair, match)) return !IsMatchedBack(pair, search, match);
    ++nTooEven;
    return true;
  });
  return nTooEven;
}

// The way back from the pairs of the way there, what it writes, and what there is to say of it. False without
// memory.
bool MatchBack(StereoPair& pair, ResultFiles& files, std::string& text) {
  const std::int64_t nTooEven = KeepMatchedBack(pair);
  const auto nKept = static_cast<std::int64_t>(pair.matchPairs.size());
  text += " " + std::to_string(nKept) + " of them matched both ways.";
  if (nTooEven > 0) {
    text += " Left out for lack of texture (entropy below " + FixedText(kLeastEntropy, 1) +
            "): " + Counted(nTooEven, "pair") + ".";
  }
  if (nKept > 0) WriteMatchPairs(pair, pair.GetLeftName(kPairSuffix), files);
  TINPoints& points = pair.GetGroundPoints();
  if (pair.AddPairsToGround(pair.matchPairs, points) < 0) return false;
  text += UnplacedText(points, nKept) + (nKept > 0 ? OriginText(pair) : "");
  WriteGroundPoints(pair, PointsPathOf(pair), nKept, files);
  return true;
}

// The method on a pair that is open.
int MatchBothWays(StereoPair& pair) {
  AskColumnOffset(pair);
  const LeftGrid grid = pair.GetLeftGrid();
  PlaceMatcher matcher(pair, SearchOfCorrelation(pair), {.groundPoints = false});
  if (!MatchGrid(matcher)) return FailForMemory();
  ResultFiles files;
  WriteGroundPoints(pair, pair.matchPointsPath, 0, files);
  WriteMatchPairs(pair, pair.GetLeftName(kGridPairSuffix), files);
  std::string text = MatchedText(matcher.GetMatchCount(), matcher.GetPlaceCount(), grid.whyNone);
  const bool goesBack = !pair.matchPairs.empty();
  if (goesBack && !MatchBack(pair, files, text)) return FailForMemory();
  if (pair.matchPairs.empty()) files.AddMissing(pair.GetLeftName(kPairSuffix), kNoPairText);
  if (!goesBack && pair.matchPointsPath.empty()) files.AddMissing(PointsPathOf(pair), kNoPairText);
  pair.TellOutcome(text + RangeText(matcher) + files.GetText() + RepeatText(grid));
  return files.GetStatus();
}

}  // namespace

int StereoPair::MatchTwoWay() {
  matchThreshold = kForwardThreshold;
  maxDisparity = kGridDisparity;
  if (RunMatchDialog() < 0) return kCancelled;
  std::vector<std::string> results = {GetLeftName(kGridPairSuffix), GetLeftName(kPairSuffix)};
  if (matchPointsPath.empty()) results.push_back(GetLeftName(kPointSuffix));
  return RunOnPair(*this, results, [this] { return MatchBothWays(*this); });
}

}  // namespace corvane
