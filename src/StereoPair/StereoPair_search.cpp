#include <algorithm>
#include <cstdint>
#include <optional>

#include "StereoPair/StereoPair.h"
#include "numerics/Truncate.h"

namespace corvane {

namespace {

constexpr Point2 kDumpedPlace{272.0, 866.0};

// The last place whose window ends within the pixels.
std::int32_t LastPlace(std::int32_t nPixels, std::int32_t window) {
  return static_cast<std::int32_t>(std::max<std::int64_t>(std::int64_t{nPixels} - 1 - window / 2, INT32_MIN));
}

SearchField FieldOf(const ImageRect& rect, const Point2& given) {
  return {.origin = {},
          .firstCol = rect.left,
          .lastCol = rect.right,
          .firstRow = rect.top,
          .lastRow = rect.bottom,
          .given = given,
          .isGivenTaken = HoldsStart(rect, given)};
}

}  // namespace

double StereoPair::CompareWindows(const Point2& left, const Point2& right, bool extractsLeft, int width,
                                  int height, bool checksDiff) {
  if (!leftImage || !rightImage) return -1.0;
  if (extractsLeft) search_.SetLeft(*leftImage, left, width, height);
  if (!search_.HasLeft(width, height)) return -1.0;
  const double value = search_.Compare(*rightImage, right, LimitOfDiff(checksDiff));
  if (left == kDumpedPlace) search_.DumpCompared(targetHeight);
  return value;
}

SearchResult StereoPair::Search(const Point2& left, int width, int height, const SearchField& field,
                                bool checksDiff) {
  if (!leftImage || !rightImage) return {.best = field.isGivenTaken ? -1.0 : 0.0, .place = field.given};
  search_.SetLeft(*leftImage, left, width, height);
  const SearchResult result = search_.Find(*rightImage, field, LimitOfDiff(checksDiff));
  if (left == kDumpedPlace) search_.DumpLast(*rightImage, field, targetHeight);
  return result;
}

std::optional<double> StereoPair::LimitOfDiff(bool checksDiff) const {
  return checksDiff ? std::optional(maxDiffStdev) : std::nullopt;
}

double StereoPair::SearchCorrelation(const Point2& left, Point2& right, int width, int height,
                                     const ImageRect& rect, bool checksDiff) {
  const SearchResult result = Search(left, width, height, FieldOf(rect, right), checksDiff);
  right = result.place;
  return result.best;
}

double StereoPair::SearchCorrelationInWindow(const Point2& left, Point2& right, int rowRange, int colRange) {
  const SearchField field = {.origin = right,
                             .firstCol = -std::int64_t{colRange},
                             .lastCol = colRange,
                             .firstRow = -std::int64_t{rowRange},
                             .lastRow = rowRange,
                             .given = {}};
  const SearchResult result = Search(left, targetWidth, targetHeight, field, false);
  right = field.PositionOf(result.place);
  return result.best;
}

double StereoPair::SearchCorrelationRatio(const Point2& left, Point2& right, int width, int height,
                                          const ImageRect& rect, double& ratio) {
  SearchField field = FieldOf(rect, right);
  field.wantsSecond = true;
  const SearchResult result = Search(left, width, height, field, false);
  right = result.place;
  ratio = IsMatched(result.best) ? result.best / result.second : 0.0;
  return result.best;
}

void StereoPair::WindowEntropy(ErdasImg& image, const Point2& place, int width, int height,
                               std::vector<double>& values) {
  const auto col = TruncateToInt(place.x - width / 2);
  const auto row = TruncateToInt(place.y - height / 2);
  if (!col || !row || *col > INT32_MAX - width / 2 || *row > INT32_MAX - height / 2) return;
  image.GetWindowEntropy(*col + width / 2, *row + height / 2, width, height, values);
}

ImageRect StereoPair::BuildSearchRect(const Point2& centre, double hx, double hy, const ImageSize& size,
                                      int width, int height) {
  ImageRect rect{TruncateSaturated(centre.x - hx), TruncateSaturated(centre.y - hy),
                 TruncateSaturated(hx + centre.x), TruncateSaturated(hy + centre.y)};
  ClipRect(rect, size, width, height);
  return rect;
}

void StereoPair::ClipRect(ImageRect& rect, const ImageSize& size, int width, int height) {
  rect.left = std::max(rect.left, width / 2);
  rect.right = std::min(rect.right, LastPlace(size.cx, width));
  rect.top = std::max(rect.top, height / 2);
  rect.bottom = std::min(rect.bottom, LastPlace(size.cy, height));
}

}  // namespace corvane
