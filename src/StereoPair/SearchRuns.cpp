#include "StereoPair/SearchRuns.h"

#include <algorithm>
#include <cmath>

#include "numerics/Truncate.h"

namespace corvane {

namespace {

// Whole numbers up to here are exact doubles, with room for sums.
constexpr double kExact = 4503599627370496.0;  // 2^52

constexpr std::int64_t kBefore = 3;  // places that are taken of those before the image
constexpr std::int64_t kMargin = 4;  // at least as many behind it, whatever is rounded

class Axis {
 public:
  Axis(double base, std::int32_t length, std::vector<SearchRun>& runs)
      : base_(base), half_(length / 2), runs_(runs) {}

  // Appends the places from `first` to `last`, both included.
  void Add(std::int64_t first, std::int64_t last) {
    if (first > last) return;
    if (std::abs(base_) < kExact && base_ == std::trunc(base_)) {
      runs_.push_back({first, CornerOf(first), last - first + 1});
      return;
    }
    // Positions between pixels: truncation gives two of them the first pixel, and sums are rounded.
    for (std::int64_t place = first; place <= last; ++place) {
      const std::int64_t corner = CornerOf(place);
      if (place > first && corner == runs_.back().corner + runs_.back().n) {
        ++runs_.back().n;
      } else {
        runs_.push_back({place, corner, 1});
      }
    }
  }

 private:
  std::int64_t CornerOf(std::int64_t place) const {
    return TruncateTo64(base_ + static_cast<double>(place) - half_);
  }

  double base_;
  std::int32_t half_;
  std::vector<SearchRun>& runs_;
};

}  // namespace

void FindSearchRuns(double base, std::int64_t first, std::int64_t last, std::int32_t length,
                    std::int32_t size, std::vector<SearchRun>& runs) {
  runs.clear();
  if (first > last) return;
  Axis axis(base, length, runs);
  const double origin = base - length / 2;  // where the window of place 0 begins
  const std::int64_t begin = std::max(TruncateTo64(-origin - length) - kMargin, first);
  const std::int64_t end = std::min(TruncateTo64(size - origin) + kMargin, last);
  // What lies before or, where nothing touches the image, wherever it lies.
  const bool touches = begin <= end;
  axis.Add(first, std::min(first + kBefore - 1, touches ? begin - 1 : last));
  if (touches) axis.Add(begin, end);
}

bool HoldsStart(const ImageRect& rect, const Point2& start) {
  const std::int64_t col = TruncateTo64(start.x);
  const std::int64_t row = TruncateTo64(start.y);
  return col >= rect.left && col < rect.right && row >= rect.top && row < rect.bottom;
}

}  // namespace corvane
