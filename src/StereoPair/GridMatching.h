#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "StereoPair/LeftGrid.h"
#include "erdasimg/ErdasImg.h"
#include "numerics/Point2.h"

namespace corvane {

class StereoPair;

// What the methods have in common that match places of the left image one by one.

// Columns that these methods look for a partner to either side, until the form changes it.
constexpr std::int32_t kGridDisparity = 55;

// What the message pane says while the column offset is asked for.
constexpr const char* kOffsetHint =
    "The column offset: how much further right the right image shows the same, in pixels.";

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

  // A place that is not looked at, as its columns lie beside the right image.
  void Skip() {
    ++nPlaces_;
    NoteBeside();
  }
  // The place that is looked at next has no columns in the right image.
  void NoteBeside() { ++nBeside_; }

  const StereoPair& GetPair() const { return pair_; }
  std::int64_t GetPlaceCount() const { return nPlaces_; }
  std::int64_t GetBesideCount() const { return nBeside_; }
  std::int32_t GetMatchCount() const { return nMatched_; }

 private:
  bool Keep(const Point2& left, const Point2& right, double score);

  StereoPair& pair_;
  PlaceSearch search_;
  MatchTargets targets_;
  std::int64_t nPlaces_ = 0;
  std::int64_t nBeside_ = 0;  // of these
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
  // A file that there is nothing to write to, unless it is written later.
  void AddMissing(const std::string& path, const std::string& reason);
  // StereoPair::kDone or kNotWritten.
  int GetStatus() const;
  // " Written: a, b (note)." if there are any, and " c is not written: reason." for each that is missing.
  std::string GetText() const;

 private:
  struct Result {
    std::string path;
    std::string text;  // note or reason
  };

  static void Put(std::vector<Result>& results, const Result& result);

  std::vector<Result> written_;
  std::vector<Result> missing_;
  bool hasFailed_ = false;
};

// The ground log, the points file if it has a path and there are points, and the pairs if there is a path.
// `nNew` of the points are this command's.
void WriteGroundPoints(StereoPair& pair, const std::string& pointsPath, std::int64_t nNew,
                       ResultFiles& files);
void WriteMatchPairs(const StereoPair& pair, const std::string& path, ResultFiles& files);

// "12 of 50 places matched."; without places, why there are none.
std::string MatchedText(std::int64_t nMatched, std::int64_t nPlaces,
                        std::string_view whyNone = "There is no place to match in the left image.");

// What the search has met: places beside the right image, or a range of columns below 0. A sentence with a
// blank before it, or "".
std::string RangeText(const PlaceMatcher& matcher);

// The same of places that the grid repeats.
std::string RepeatText(const LeftGrid& grid);

// What such a method does with its results when all places are matched: writes them and tells what has come
// of it, `whyNone` if there was no place, and `note` at the end. kDone or kNotWritten.
int FinishGridMethod(StereoPair& pair, const PlaceMatcher& matcher, bool writesPairs,
                     std::string_view whyNone, const std::string& note);

// Tells that memory has run out. StereoPair::kNoInput.
int FailForMemory();

// Asks for columnOffset, with -10 to begin with. Kept: Cancel leaves that, and does not end the method.
void AskColumnOffset(StereoPair& pair);

// Opens the pair, runs `run` under the wait cursor and lets the pair go, whatever has come of it, even
// std::bad_alloc. kDone or the pair's codes.
int RunOpenPair(StereoPair& pair, const std::function<int()>& run);

// The same, but results that would replace an input or each other are refused first. The ground log and
// matchPointsPath are results in any case.
int RunOnPair(StereoPair& pair, const std::vector<std::string>& results, const std::function<int()>& run);

// A method on the grid from its form to its end, with this threshold to begin with. It writes pairs if it
// keeps them. What `noteOn`, if given, has to say of the window's width comes at the end of the outcome.
int RunGridMethod(StereoPair& pair, double threshold, bool keepsPairs, const PlaceSearch& search,
                  std::string (*noteOn)(std::int32_t width) = nullptr);

// Warns that a file can't be written as it is an input. StereoPair::kNotWritten.
int RefuseToReplace(const std::string& path);

}  // namespace corvane
