// The window of the image that a display shows, and the points picked in it.

#include <algorithm>
#include <limits>
#include <unordered_set>

#include "OpenGL/Stereo_2Cursor/AerialPhoto.h"
#include "TIN/TINPoints.h"
#include "numerics/Truncate.h"

namespace corvane {

namespace {

// A run of pixels, both ends included, and what cutting has taken off before it.
struct PixelRun {
  std::int32_t first = 0;
  std::int32_t last = -1;
  std::int32_t offset = 0;

  bool IsEmpty() const { return last < first; }
};

// The `count` pixels around a place that are among the first `size`.
PixelRun RunAround(double place, std::int32_t count, std::int32_t size) {
  const auto middle = TruncateToInt(place);
  if (!middle || count <= 0) return {};
  const std::int64_t begin = std::int64_t{*middle} - count / 2;
  const std::int64_t first = std::max<std::int64_t>(begin, 0);
  const std::int64_t last = std::min<std::int64_t>(begin + count, size) - 1;
  if (last < first) return {};
  return {static_cast<std::int32_t>(first), static_cast<std::int32_t>(last),
          static_cast<std::int32_t>(first - begin)};
}

bool IsLive(const PointRecord& point) {
  return point.id >= 0;
}

}  // namespace

int AerialPhoto::SetViewWindow(double col, double row, int nCols, int nRows) {
  const ImageSize size = image.HasPixels() ? image.GetSize() : ImageSize();
  PixelRun cols = RunAround(col, nCols, size.cx);
  PixelRun rows = RunAround(row, nRows, size.cy);
  const bool isEmpty = cols.IsEmpty() || rows.IsEmpty();
  if (isEmpty) cols = rows = {};
  const bool isSame = windowLeft == cols.first && windowRight == cols.last && windowTop == rows.first &&
                      windowBottom == rows.last;
  windowChanged = windowChanged || !isSame;
  windowLeft = cols.first;
  windowRight = cols.last;
  windowTop = rows.first;
  windowBottom = rows.last;
  windowOffsetX = cols.offset;
  windowOffsetY = rows.offset;
  return isEmpty ? 0 : 1;
}

int AerialPhoto::FetchWindow() {
  if (windowRight < windowLeft || windowBottom < windowTop || !image.HasPixels()) return -1;
  const ImageRect rect = {windowLeft, windowTop, windowRight, windowBottom};
  // A search may have cut something else out of the image meanwhile.
  if (!windowChanged && image.GetSubsetBands() && image.m_subsetRect == rect) return 0;
  if (!image.GetSubset(rect.left, rect.right, rect.top, rect.bottom)) return -1;
  windowChanged = false;
  return 1;
}

std::int32_t AerialPhoto::FindPoint(double col, double row, double radius) const {
  if (!groundPoints || !(radius > 0.0)) return -1;
  std::int32_t nearest = -1;
  double least = radius * radius;
  for (std::int32_t i = 0; i < groundPoints->GetCount(); ++i) {
    const PointRecord& point = *groundPoints->GetPoint(i);
    const double dx = point.x - col;
    const double dy = point.y - row;
    const double distance = dx * dx + dy * dy;
    if (!IsLive(point) || !(distance < least)) continue;
    nearest = i;
    least = distance;
  }
  return nearest;
}

std::int32_t AerialPhoto::PickPoint(double col, double row, double radius) {
  const std::int32_t i = FindPoint(col, row, radius);
  if (i >= 0) AddPicked(*groundPoints->GetPoint(i));
  return i;
}

std::int32_t AerialPhoto::PickPointIntoList(double col, double row, double radius,
                                            std::vector<PointRecord>& list) const {
  const std::int32_t i = FindPoint(col, row, radius);
  if (i >= 0) list.push_back(*groundPoints->GetPoint(i));
  return i;
}

std::int32_t AerialPhoto::PickInRegion(double left, double top, double right, double bottom) {
  if (!groundPoints) return 0;
  std::unordered_set<std::int32_t> pickedIds;
  for (const PointRecord& point : pickedPoints) pickedIds.insert(point.id);
  std::int32_t nNew = 0;
  for (std::int32_t i = 0; i < groundPoints->GetCount(); ++i) {
    const PointRecord& point = *groundPoints->GetPoint(i);
    const bool isIn = point.x >= left && point.x <= right && point.y >= top && point.y <= bottom;
    if (!isIn || !IsLive(point) || !pickedIds.insert(point.id).second) continue;
    pickedPoints.push_back(point);
    ++nNew;
  }
  return nNew;
}

int AerialPhoto::AddPicked(const PointRecord& point) {
  const auto isSame = [&](const PointRecord& picked) { return picked.id == point.id; };
  if (std::any_of(pickedPoints.begin(), pickedPoints.end(), isSame)) return 0;
  pickedPoints.push_back(point);
  return 1;
}

void AerialPhoto::CopyPicked(std::vector<PointRecord>& list) const {
  const std::vector<PointRecord> picked = pickedPoints;  // the list may be pickedPoints
  list.insert(list.end(), picked.begin(), picked.end());
}

bool AerialPhoto::TakeFirstMarked(PointRecord& point) {
  if (markedPoints.empty()) return false;
  point = markedPoints.front();
  markedPoints.erase(markedPoints.begin());
  return true;
}

}  // namespace corvane
