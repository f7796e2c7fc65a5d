#include "StereoPair/WindowSearch.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <span>

#include "StereoPair/WindowBytes.h"
#include "StereoPair/WindowSimilarity.h"
#include "io/NumberText.h"
#include "io/OutputFile.h"
#include "numerics/SimdVersion.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

constexpr double kNone = -std::numeric_limits<double>::infinity();

// The largest number; kNone if there is none.
struct FindLargest {
  template <std::size_t width>
  [[gnu::always_inline]] static inline double Run(const double* values, std::size_t n) {
    SimdPack<double, width> largest, pack;
    largest.Fill(kNone);
    std::size_t i = 0;
    for (; i + pack.kLanes <= n; i += pack.kLanes) {
      pack.Load(values + i);
      largest.lanes = pack.lanes > largest.lanes ? pack.lanes : largest.lanes;
    }
    double result = kNone;
    for (; i < n; ++i) result = values[i] > result ? values[i] : result;
    for (std::size_t k = 0; k < pack.kLanes; ++k) result = std::max(result, largest.lanes[k]);
    return result;
  }
};

double LargestOf(std::span<const double> values) {
  return RunSimd<FindLargest>(values.data(), values.size());
}

void DumpWindow(const std::string& path, const std::vector<std::uint8_t>& pixels, std::int32_t perRow) {
  std::string text;
  std::int64_t n = 0;
  for (const std::uint8_t pixel : pixels) {
    AppendInt(text, pixel);
    text += ++n % std::max(perRow, 1) == 0 ? "\n" : " ";
  }
  if (!WriteWholeFile(path, text)) Ui().Trace("Unable to open file for dump\n");
}

// The place that a walk row by row over the field comes to last.
std::optional<Point2> LastPlaceOf(const SearchField& field) {
  if (field.firstCol > field.lastCol || field.firstRow > field.lastRow) return std::nullopt;
  const Point2 last{static_cast<double>(field.lastCol), static_cast<double>(field.lastRow)};
  if (last != field.given) return last;
  if (field.firstCol < field.lastCol) return Point2{last.x - 1.0, last.y};
  if (field.firstRow < field.lastRow) return Point2{last.x, last.y - 1.0};
  return std::nullopt;
}

}  // namespace

// The best places so far.
class WindowSearch::Walk {
 public:
  explicit Walk(const SearchField& field) : given_(field.given), wantsSecond_(field.wantsSecond) {}

  // Takes the values at places from (col, row) on, and overwrites some. Rows come in any order.
  void Take(std::int64_t row, std::int64_t col, std::span<double> values) {
    if (given_.y == static_cast<double>(row)) TakeGiven(col, values);
    const double largest = LargestOf(values);
    if (largest > best_ || (largest == best_ && row < row_)) {
      second_ = std::max(second_, best_);
      best_ = largest;
      row_ = row;
      const auto found = std::find(values.begin(), values.end(), largest);
      col_ = col + (found - values.begin());
      *found = kNone;
    }
    if (wantsSecond_) second_ = std::max(second_, LargestOf(values));
  }

  const std::optional<double>& GetGivenValue() const { return givenValue_; }

  SearchResult ResultFrom(double start) const {
    constexpr double kLowest = std::numeric_limits<double>::lowest();
    if (!(best_ > start)) return {start, std::max(best_, kLowest), given_};
    return {
        best_, std::max({second_, start, kLowest}), {static_cast<double>(col_), static_cast<double>(row_)}};
  }

 private:
  void TakeGiven(std::int64_t col, std::span<double> values) {
    const double index = given_.x - static_cast<double>(col);
    if (!(index >= 0.0 && index < static_cast<double>(values.size()))) return;
    const auto k = static_cast<std::size_t>(index);
    if (static_cast<double>(k) != index) return;
    givenValue_ = values[k];
    values[k] = kNone;
  }

  Point2 given_;
  bool wantsSecond_;
  std::optional<double> givenValue_;
  double best_ = kNone;
  double second_ = kNone;
  std::int64_t row_ = std::numeric_limits<std::int64_t>::min();
  std::int64_t col_ = 0;
};

bool WindowSearch::SetLeft(const ErdasImg& left, const Point2& place, std::int32_t width,
                           std::int32_t height) {
  width_ = width;
  height_ = height;
  left_.clear();
  return left.HasPixels() && CutWindow(left, {place, width, height}, width, height, left_);
}

double WindowSearch::Compare(const ErdasImg& right, const Point2& position,
                             const std::optional<double>& maxDiffStdev) {
  if (left_.empty() || !right.HasPixels()) return -1.0;
  if (!CutWindow(right, {position, width_, height_}, width_, height_, right_)) return -1.0;
  const double value = CorrelationCoefficient(left_, right_);
  if (!maxDiffStdev) return value;
  const double spread = DiffStdev(left_, right_);
  Ui().Trace("CCC: " + GeneralText(value, 6) + ", diffStdev: " + GeneralText(spread, 6) + "\n");
  return *maxDiffStdev < spread ? -1.0 : value;
}

SearchResult WindowSearch::Find(const ErdasImg& right, const SearchField& field,
                                const std::optional<double>& maxDiffStdev) {
  Walk walk(field);
  std::optional<double> start;
  if (left_.empty() || !right.HasPixels()) return walk.ResultFrom(field.isGivenTaken ? -1.0 : 0.0);
  const auto [cols, rows] = right.GetSize();
  FindSearchRuns(field.origin.y, field.firstRow, field.lastRow, height_, rows, rowRuns_);
  FindSearchRuns(field.origin.x, field.firstCol, field.lastCol, width_, cols, colRuns_);
  if (maxDiffStdev) {
    if (field.isGivenTaken) start = Compare(right, field.PositionOf(field.given), maxDiffStdev);
    CompareOneByOne(right, field, maxDiffStdev, walk);
  } else {
    scores_.SetLeft(left_, width_, height_);
    const auto take = [&walk](auto... values) { walk.Take(values...); };
    for (const SearchRun& rowRun : rowRuns_) {
      for (const SearchRun& colRun : colRuns_) scores_.Score(right, rowRun, colRun, take);
    }
    start = walk.GetGivenValue();
  }
  if (!field.isGivenTaken) return walk.ResultFrom(0.0);
  // Positions between pixels, and those far outside, are not among the places.
  if (!start) start = Compare(right, field.PositionOf(field.given), maxDiffStdev);
  return walk.ResultFrom(*start);
}

void WindowSearch::CompareOneByOne(const ErdasImg& right, const SearchField& field,
                                   const std::optional<double>& maxDiffStdev, Walk& walk) {
  for (const SearchRun& rowRun : rowRuns_) {
    for (std::int64_t row = rowRun.first; row < rowRun.first + rowRun.n; ++row) {
      for (const SearchRun& colRun : colRuns_) {
        for (std::int64_t col = colRun.first; col < colRun.first + colRun.n; ++col) {
          const Point2 place{static_cast<double>(col), static_cast<double>(row)};
          if (place == field.given) continue;
          double value = Compare(right, field.PositionOf(place), maxDiffStdev);
          walk.Take(row, col, std::span(&value, 1));
        }
      }
    }
  }
}

void WindowSearch::DumpCompared(std::int32_t perRow) const {
  if (left_.empty() || right_.empty()) return;
  DumpWindow("leftSubImg.txt", left_, perRow);
  DumpWindow("rightSubImg.txt", right_, perRow);
}

void WindowSearch::DumpLast(const ErdasImg& right, const SearchField& field, std::int32_t perRow) {
  std::optional<Point2> last = LastPlaceOf(field);
  if (!last && field.isGivenTaken) last = field.given;
  if (!last || left_.empty() || !right.HasPixels()) return;
  if (!CutWindow(right, {field.PositionOf(*last), width_, height_}, width_, height_, right_)) return;
  DumpCompared(perRow);
}

}  // namespace corvane
