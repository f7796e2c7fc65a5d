#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "StereoPair/SearchRuns.h"
#include "StereoPair/WindowScores.h"
#include "erdasimg/ErdasImg.h"
#include "numerics/Point2.h"

namespace corvane {

// The places of a search: columns and rows, both ends included, counted from `origin`.
struct SearchField {
  Point2 origin;
  std::int64_t firstCol = 0;
  std::int64_t lastCol = 0;
  std::int64_t firstRow = 0;
  std::int64_t lastRow = 0;
  Point2 given;  // the place to begin with, which is left out of the walk; counted from `origin`, too
  bool isGivenTaken = true;  // whether it is compared at all
  bool wantsSecond = false;  // whether SearchResult::second is made

  Point2 PositionOf(const Point2& place) const { return {origin.x + place.x, origin.y + place.y}; }
};

struct SearchResult {
  double best = 0.0;
  double second = 0.0;  // of SearchField::wantsSecond; the lowest double if there is no other value
  Point2 place;         // counted from the field's origin
};

// Compares one window of a left image with windows of its size in a right image (WindowBytes.h) by their
// correlation coefficient. Keeps its buffers from one search to the next.
class WindowSearch {
 public:
  // Cuts the left window out, in place of the one before. False, with none, not even that before, without
  // pixels, a positive size or memory.
  bool SetLeft(const ErdasImg& left, const Point2& place, std::int32_t width, std::int32_t height);

  // The value of the window at that position; -1.0 without a left window or memory. With `maxDiffStdev` a
  // line with the value and the standard deviation of the differences goes to the debug stream, and the value
  // is -1.0 if that exceeds the limit.
  double Compare(const ErdasImg& right, const Point2& position, const std::optional<double>& maxDiffStdev);

  // The best place: the given one, or else the first, row by row, of those of the highest value above that of
  // the given one, or above 0.0 if it is not taken. With `maxDiffStdev` as in Compare, if no places are left
  // out as SearchRuns.h tells.
  SearchResult Find(const ErdasImg& right, const SearchField& field,
                    const std::optional<double>& maxDiffStdev);

  // Write both windows as text: the right one of Compare, or that which Find would compare last. Nothing
  // without windows.
  void DumpCompared(std::int32_t perRow) const;
  void DumpLast(const ErdasImg& right, const SearchField& field, std::int32_t perRow);

  bool HasLeft(std::int32_t width, std::int32_t height) const {
    return !left_.empty() && width == width_ && height == height_;
  }

 private:
  class Walk;
  void CompareOneByOne(const ErdasImg& right, const SearchField& field,
                       const std::optional<double>& maxDiffStdev, Walk& walk);

  std::int32_t width_ = 0;
  std::int32_t height_ = 0;
  std::vector<std::uint8_t> left_;
  std::vector<std::uint8_t> right_;
  WindowScores scores_;
  std::vector<SearchRun> rowRuns_;
  std::vector<SearchRun> colRuns_;
};

}  // namespace corvane
