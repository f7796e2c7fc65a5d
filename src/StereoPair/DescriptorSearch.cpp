#include "StereoPair/DescriptorSearch.h"

#include <algorithm>
#include <cstdlib>
#include <span>

#include "StereoPair/WindowBytes.h"
#include "StereoPair/WindowSimilarity.h"
#include "numerics/SimdVersion.h"
#include "numerics/Truncate.h"

namespace corvane {

namespace {

constexpr std::int64_t kMostTerms = 32768;  // squares of differences of bytes that 32 bits hold

std::int64_t SignOf(std::int64_t n) {
  return (n > 0) - (n < 0);
}

// The step from the pixel (dy, dx) of a ring around the middle to the one next to it inwards: sideways, up or
// down, or at corners both. The middle stays where it is, so that its value is 0.
std::int64_t RowStep(std::int64_t dy, std::int64_t dx) {
  return std::abs(dy) >= std::abs(dx) ? -SignOf(dy) : 0;
}
std::int64_t ColStep(std::int64_t dy, std::int64_t dx) {
  return std::abs(dx) >= std::abs(dy) ? -SignOf(dx) : 0;
}

// Adds for each place i < nPlaces the values d = outer[c + i] - inner[c + i + step] of the columns c from
// `begin` to before `end` of a row of its window: d to b[i], d^2 to bb[i], values[c] d to ab[i].
struct AddValues {
  struct Row {
    const std::int16_t* values;  // of the left descriptor
    const std::uint8_t* outer;   // pixels
    const std::uint8_t* inner;   // of the row that vertical steps lead to
    std::int64_t dy;             // from the middle
    std::int64_t half;
    std::int64_t begin;
    std::int64_t end;
  };

  template <std::size_t>
  [[gnu::always_inline]] static inline void Run(const Row& row, std::int32_t* __restrict b,
                                                std::int32_t* __restrict bb, std::int32_t* __restrict ab,
                                                std::size_t nPlaces) {
    for (std::int64_t c = row.begin; c < row.end; ++c) {
      const std::int64_t dx = c - row.half;
      const std::uint8_t* const outer = row.outer + c;
      const std::uint8_t* const inner =
          (RowStep(row.dy, dx) == 0 ? row.outer : row.inner) + c + ColStep(row.dy, dx);
      const std::int32_t value = row.values[c];
      for (std::size_t i = 0; i < nPlaces; ++i) {
        const std::int32_t d = std::int32_t{outer[i]} - inner[i];
        b[i] += d;
        bb[i] += d * d;
        ab[i] += value * d;
      }
    }
  }
};

}  // namespace

template <typename T>
void DescriptorSearch::Sums<T>::Clear(std::size_t n) {
  b.assign(n, 0);
  bb.assign(n, 0);
  ab.assign(n, 0);
}

std::string DescriptorSearch::NoteOn(std::int32_t size) {
  return size % 2 == 0 ? " The window's width is even: there is no descriptor." : "";
}

double DescriptorSearch::Find(const ErdasImg& leftImage, const ErdasImg& rightImage, const Point2& left,
                              Point2& right, std::int32_t size, const ImageRect& rect) {
  size_ = size;
  if (!HasDescriptor(size) || !DescribeLeft(leftImage, left)) return 0.0;
  double best = 0.0;
  if (HoldsStart(rect, right)) {
    AddUp(rightImage, TruncateTo64(right.x), TruncateTo64(right.y), 1);
    best = GetScore(0);
  }
  const auto [cols, rows] = rightImage.GetSize();
  FindSearchRuns(0.0, rect.top, rect.bottom, size, rows, rowRuns_);
  FindSearchRuns(0.0, rect.left, rect.right, size, cols, colRuns_);
  const Point2 start = right;
  for (const SearchRun& run : rowRuns_) {
    for (std::int64_t row = run.first; row < run.first + run.n; ++row) {
      for (const SearchRun& places : colRuns_) SearchRow(rightImage, places, row, start, best, right);
    }
  }
  return best;
}

// Looks for a place in a row that is better than `best`, but for the start.
void DescriptorSearch::SearchRow(const ErdasImg& image, const SearchRun& places, std::int64_t row,
                                 const Point2& start, double& best, Point2& right) {
  const auto nPlaces = static_cast<std::size_t>(places.n);
  AddUp(image, places.first, row, nPlaces);
  for (std::size_t i = 0; i < nPlaces; ++i) {
    const Point2 place{static_cast<double>(places.first) + static_cast<double>(i), static_cast<double>(row)};
    const double score = GetScore(i);
    if (!(score > best) || place == start) continue;
    best = score;
    right = place;
  }
}

// Makes the descriptor of the left place. False without memory.
bool DescriptorSearch::DescribeLeft(const ErdasImg& image, const Point2& place) {
  const std::int64_t col = TruncateTo64(place.x);
  const std::int64_t row = TruncateTo64(place.y);
  const std::int64_t half = size_ / 2;
  const auto size = static_cast<std::int32_t>(size_);
  std::vector<std::uint8_t> window;
  const Point2 whole{static_cast<double>(col), static_cast<double>(row)};
  if (!CutWindow(image, WindowCorner(whole, size, size), size, size, window)) return false;
  values_.resize(window.size());
  std::int64_t sum = 0;
  std::int64_t sumSq = 0;
  for (std::int64_t i = 0; i < std::ssize(window); ++i) {
    const std::int64_t dy = i / size_ - half;
    const std::int64_t dx = i % size_ - half;
    const std::int64_t inner = i + RowStep(dy, dx) * size_ + ColStep(dy, dx);
    const int value = window[static_cast<std::size_t>(i)] - window[static_cast<std::size_t>(inner)];
    values_[static_cast<std::size_t>(i)] = static_cast<std::int16_t>(value);
    sum += value;
    sumSq += value * value;
  }
  leftSum_ = static_cast<double>(sum);
  leftSumSq_ = static_cast<double>(sumSq);
  return true;
}

// Makes the sums of `nPlaces` places of a row from (col, row) on.
void DescriptorSearch::AddUp(const ErdasImg& image, std::int64_t col, std::int64_t row, std::size_t nPlaces) {
  const std::int64_t half = size_ / 2;
  sums_.Clear(nPlaces);
  parts_.Clear(nPlaces);
  pixels_.resize(nPlaces + static_cast<std::size_t>(size_) - 1);
  innerPixels_.resize(pixels_.size());
  nTerms_ = 0;
  // All values of rows further from the image are 0.
  const std::int64_t first = std::max(-half, -1 - row);
  const std::int64_t last = std::min(half, image.GetSize().cy - row);
  for (std::int64_t dy = first; dy <= last; ++dy) {
    CopyBytes(image, row + dy, col - half, pixels_);
    CopyBytes(image, row + dy - SignOf(dy), col - half, innerPixels_);
    AddRow(dy);
  }
  Flush();
}

// Adds the values of the row of the windows that lies `dy` below the middle.
void DescriptorSearch::AddRow(std::int64_t dy) {
  const std::int64_t half = size_ / 2;
  for (std::int64_t begin = 0; begin < size_; begin += kMostTerms) {
    const std::int64_t end = std::min(begin + kMostTerms, size_);
    if (static_cast<std::int64_t>(nTerms_) + end - begin > kMostTerms) Flush();
    const AddValues::Row row = {
        values_.data() + (dy + half) * size_, pixels_.data(), innerPixels_.data(), dy, half, begin, end};
    RunSimd<AddValues>(row, parts_.b.data(), parts_.bb.data(), parts_.ab.data(), parts_.b.size());
    nTerms_ += static_cast<std::size_t>(end - begin);
  }
}

void DescriptorSearch::Flush() {
  for (std::size_t i = 0; i < sums_.b.size(); ++i) {
    sums_.b[i] += parts_.b[i];
    sums_.bb[i] += parts_.bb[i];
    sums_.ab[i] += parts_.ab[i];
  }
  parts_.Clear(sums_.b.size());
  nTerms_ = 0;
}

double DescriptorSearch::GetScore(std::size_t i) const {
  const CorrelationSums sums = {.n = static_cast<double>(size_ * size_ - 1),
                                .a = leftSum_,
                                .aa = leftSumSq_,
                                .b = static_cast<double>(sums_.b[i]),
                                .bb = static_cast<double>(sums_.bb[i]),
                                .ab = static_cast<double>(sums_.ab[i])};
  return sums.GetCoefficient();
}

}  // namespace corvane
