// Matching there and back.

#include <cmath>
#include <utility>

#include "StereoPair/GridMatching.h"
#include "StereoPair/StereoPair.h"

namespace corvane {

namespace {

constexpr const char* kPairSuffix = "_GridMatchPair2Way.txt";
constexpr const char* kPointSuffix = "_TwoWay.pts";
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

// Leaves the pairs that are matched both ways, with the score of the way there.
void KeepMatchedBack(StereoPair& pair) {
  const ExchangedPhotos exchanged(pair);
  const PlaceSearch search = SearchOfCorrelation(pair);
  const auto nPairs = static_cast<std::int64_t>(pair.matchPairs.size());
  std::int64_t nDone = 0;
  double row = -1.0;
  std::erase_if(pair.matchPairs, [&](const MatchPair& match) {
    if (match.left.y != row) pair.TellDone(nDone, nPairs);
    row = match.left.y;
    ++nDone;
    return IsTooEven(pair, match) || !IsMatchedBack(pair, search, match);
  });
}

// The method on a pair that is open.
int MatchBothWays(StereoPair& pair) {
  PlaceMatcher matcher(pair, SearchOfCorrelation(pair), {.groundPoints = false});
  if (!MatchGrid(matcher)) return FailForMemory();
  ResultFiles files;
  WriteGroundPoints(pair, pair.matchPointsPath, files);
  WriteMatchPairs(pair, pair.GetLeftName(kGridPairSuffix), files);
  std::string text = MatchedText(matcher.GetMatchCount(), matcher.GetPlaceCount());
  if (!pair.matchPairs.empty()) {
    KeepMatchedBack(pair);
    text += " " + std::to_string(pair.matchPairs.size()) + " of them matched both ways.";
    if (!pair.matchPairs.empty()) WriteMatchPairs(pair, pair.GetLeftName(kPairSuffix), files);
    if (pair.AddPairsToGround(pair.matchPairs, pair.GetGroundPoints()) < 0) return FailForMemory();
    WriteGroundPoints(pair, PointsPathOf(pair), files);
  }
  pair.TellOutcome(text + files.GetText());
  return files.GetStatus();
}

}  // namespace

int StereoPair::MatchTwoWay() {
  matchThreshold = kForwardThreshold;
  maxDisparity = kGridDisparity;
  if (RunMatchDialog() < 0) return kCancelled;
  const std::vector<std::string> results = {GetLeftName(kGridPairSuffix), GetLeftName(kPairSuffix),
                                            PointsPathOf(*this)};
  return RunOnPair(*this, results, [this] { return MatchBothWays(*this); });
}

}  // namespace corvane
