#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "StereoPair/SearchRuns.h"
#include "StereoPair/WindowBytes.h"
#include "StereoPair/WindowSimilarity.h"
#include "erdasimg/ErdasImg.h"

namespace corvane {

// Correlation coefficients of one left window with the windows of a right image, many places at a time and
// bit for bit those of CorrelationCoefficient. Each window is gone over as a whole, but side by side with its
// neighbours: one lane of a register a place.
//
// The pixels that a part of the search needs are copied to a strip once, as pairs: element (row, col) holds
// the pixels (row, col) and (row, col + 1), so that lanes of 32 bits take two columns of the window a step.
// The object keeps its buffers from one search to the next. They are small, however large a search is;
// windows of more than kMaxStripped pixels are compared one by one, as far as they lie in the image.
class WindowScores {
 public:
  static constexpr std::int64_t kMaxStripped = 65536;  // pixels of a window

  // Takes the left window, which has width * height pixels, and stays where it is as long as it is compared.
  void SetLeft(std::span<const std::uint8_t> pixels, std::int32_t width, std::int32_t height);

  // Calls take(row, col, scores) with places of the runs, the first row and column of a part of a row of them
  // and the scores there; parts of one row come from left to right. The scores may be changed.
  template <typename Take>
  void Score(const ErdasImg& right, const SearchRun& rows, const SearchRun& cols, Take take);

 private:
  // Places whose scores are made from one strip.
  struct Part {
    std::int64_t row = 0;  // corner of the first window
    std::int64_t col = 0;
    std::int64_t nRows = 0;
    std::int64_t nCols = 0;
  };

  bool IsStripped() const { return std::int64_t{width_} * height_ <= kMaxStripped; }
  std::int64_t GetMaxCols() const;
  std::int64_t GetMaxRows(std::int64_t nCols) const;
  std::int64_t GetStride(std::int64_t nCols) const;
  void CutStrip(const ErdasImg& right, const Part& part);
  std::span<double> ScoreRow(const ErdasImg& right, const Part& part, std::int64_t i);
  void ScoreLargeWindows(const ErdasImg& right, const Part& part, std::int64_t i);
  CorrelationSums SumOverlap(const ErdasImg& right, const WindowCorner& corner);

  std::int32_t width_ = 0;
  std::int32_t height_ = 0;
  CorrelationSums leftSums_;  // n, a, aa; the others are 0
  std::span<const std::uint8_t> left_;
  std::vector<std::uint32_t> leftPairs_;  // height x (width + 1) / 2: columns 0 and 1, 2 and 3, ...
  std::vector<std::uint32_t> strip_;
  std::vector<std::uint8_t>
      cut_;                   // pixels of a strip that is not wholly in the image, or of a row of a window
  std::vector<double> sums_;  // of a row of places: b, bb, ab
  std::vector<double> scores_;
};

template <typename Take>
void WindowScores::Score(const ErdasImg& right, const SearchRun& rows, const SearchRun& cols, Take take) {
  const std::int64_t maxCols = GetMaxCols();
  for (std::int64_t col = 0; col < cols.n; col += maxCols) {
    const std::int64_t nCols = std::min(maxCols, cols.n - col);
    const std::int64_t maxRows = GetMaxRows(nCols);
    for (std::int64_t row = 0; row < rows.n; row += maxRows) {
      const Part part = {rows.corner + row, cols.corner + col, std::min(maxRows, rows.n - row), nCols};
      CutStrip(right, part);
      for (std::int64_t i = 0; i < part.nRows; ++i) {
        take(rows.first + row + i, cols.first + col, ScoreRow(right, part, i));
      }
    }
  }
}

}  // namespace corvane
