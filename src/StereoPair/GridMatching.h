#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "erdasimg/ErdasImg.h"
#include "numerics/Point2.h"

namespace corvane {

class StereoPair;

// What the methods have in common that match places of the left image one by one.

// Columns that these methods look for a partner to either side, until the form changes it.
constexpr std::int32_t kGridDisparity = 55;

constexpr const char* kGridPairSuffix = "_GridMatchPair.txt";

// Looks for the partner of a left place in a rectangle of places of the right image, beginning at the one
// given, which becomes the best one. Returns its score.
using PlaceSearch = std::function<double(const Point2& left, Point2& right, const ImageRect& rect)>;

// Windows of targetWidth x targetHeight by their correlation coefficient, with the pair's useDiffCheck.
PlaceSearch SearchOfCorrelation(StereoPair& pair);

// The right columns in which the partner of a left one is looked for, all of them included.
struct ColumnRange {
  // Around col + columnOffset, within maxDisparity to either side.
  ColumnRange(const StereoPair& pair, std::int32_t col);

  // Whether it lies beside an image of so many columns. Kept: the first column behind the image is not.
  bool IsBeside(std::int64_t nCols) const { return first > nCols || last < 0; }

  std::int64_t start;
  std::int64_t first;
  std::int64_t last;
};

// What is done with places that have matched.
struct MatchTargets {
  bool pairs = true;         // they join matchPairs
  bool groundPoints = true;  // their ground points join groundPoints
};

// Matches places of the left image of a pair that is open. Those whose score exceeds matchThreshold get ids
// from 0 on.
class PlaceMatcher {
 public:
  PlaceMatcher(StereoPair& pair, PlaceSearch search, const MatchTargets& targets);

  // Looks for the partner of (col, row) from column `start` of the same row on, in the columns first to last
  // and the rows within maxRowDisparity of the right photo. Columns beyond 32 bits are held there. False, or
  // std::bad_alloc, without memory.
  bool Match(std::int32_t col, std::int32_t row, std::int64_t start, std::int64_t first, std::int64_t last);

  // A place that need not be looked at.
  void Skip() { ++nPlaces_; }

  const StereoPair& GetPair() const { return pair_; }
  std::int64_t GetPlaceCount() const { return nPlaces_; }
  std::int32_t GetMatchCount() const { return nMatched_; }

 private:
  bool Keep(const Point2& left, const Point2& right, double score);

  StereoPair& pair_;
  PlaceSearch search_;
  MatchTargets targets_;
  std::int64_t nPlaces_ = 0;
  std::int32_t nMatched_ = 0;
};

// Matches the places of GetLeftGrid, row by row. Columns that lie beside the right image are skipped; others
// are cut to halfW to nCols - halfW, the start as well.
// Kept: at nCols - halfW an odd window reaches one column beyond the image, where pixels are 0.
// False, or std::bad_alloc, without memory.
bool MatchGrid(PlaceMatcher& matcher);

// The result files of a method, as they are written one after the other, some of them again.
class ResultFiles {
 public:
  // `status` is that of the writer: 1; 0 if there is nothing to write; negative if it failed, which was told.
  void Add(const std::string& path, int status, const std::string& note = "");
  // StereoPair::kDone or kNotWritten.
  int GetStatus() const;
  // " Written: a, b (note)."; "" if there are none.
  std::string GetText() const;

 private:
  struct Written {
    std::string path;
    std::string note;
  };

  std::vector<Written> written_;
  bool hasFailed_ = false;
};

// The ground log, the points file if it has a path and there are points, and the pairs if there is a path.
void WriteGroundPoints(StereoPair& pair, const std::string& pointsPath, ResultFiles& files);
void WriteMatchPairs(const StereoPair& pair, const std::string& path, ResultFiles& files);

// "12 of 50 places matched."
std::string MatchedText(std::int64_t nMatched, std::int64_t nPlaces);

// What such a method does with its results when all places are matched: writes them and tells what has come
// of it, `note` at the end. kDone or kNotWritten.
int FinishGridMethod(StereoPair& pair, const PlaceMatcher& matcher, bool writesPairs,
                     const std::string& note = "");

// Tells that memory has run out. StereoPair::kNoInput.
int FailForMemory();

// Opens the pair, refuses results that would replace an input, asks for the column offset, runs `run` and
// lets the pair go, whatever has come of it, even std::bad_alloc. The ground log and matchPointsPath are
// among the results. kDone or the pair's codes. Kept: Cancel of the offset does not end the method: it goes
// on with -10.
int RunOnPair(StereoPair& pair, const std::vector<std::string>& results, const std::function<int()>& run);

// A method on the grid from its form to its end, with this threshold to begin with. It writes pairs if it
// keeps them.
int RunGridMethod(StereoPair& pair, double threshold, bool keepsPairs, const PlaceSearch& search);

// Warns that a file can't be written as it is an input. StereoPair::kNotWritten.
int RefuseToReplace(const std::string& path);

}  // namespace corvane
