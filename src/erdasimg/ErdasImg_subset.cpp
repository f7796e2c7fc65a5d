#include <algorithm>
#include <limits>
#include <span>
#include <vector>

#include "erdasimg/ErdasImg.h"
#include "erdasimg/PixelCopy.h"
#include "numerics/Truncate.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

std::int32_t Saturated(std::int64_t value) {
  using Limits = std::numeric_limits<std::int32_t>;
  return static_cast<std::int32_t>(std::clamp<std::int64_t>(value, Limits::min(), Limits::max()));
}

// Whether the present subset has this shape, and nobody else has its pixels.
bool CanReuseSubset(const ErdasImg& image, std::int64_t width, std::int64_t height, bool contiguous) {
  const BandArray& subset = image.m_subset;
  if (!subset || subset.IsShared() || (contiguous && image.m_subsetContiguous == 0)) return false;
  if (static_cast<std::int64_t>(subset.size()) != image.GetBandCount()) return false;
  if (width > Saturated(width) || height > Saturated(height)) return false;
  std::int64_t bandBytes = 0;
  if (__builtin_mul_overflow(width * height, std::int64_t{image.m_bytesPerPixel}, &bandBytes)) return false;
  return bandBytes >= 0 && static_cast<std::size_t>(bandBytes) == subset.GetBandBytes();
}

void ClearSubset(const BandArray& subset) {
  for (std::size_t band = 0; band < subset.size(); ++band) {
    const auto bytes = subset.GetBand(static_cast<std::int64_t>(band));
    std::fill(bytes.begin(), bytes.end(), std::uint8_t{0});
  }
}

// Makes room in `m_subset`: the buffers that are there, cleared if `clear`, or else new ones, which are zero.
// False without memory.
bool PrepareSubset(ErdasImg& image, const ImageRect& rect, std::int64_t width, std::int64_t height,
                   bool contiguous, bool clear) {
  image.m_subsetRect = rect;
  image.m_subsetSize = {Saturated(width), Saturated(height)};
  if (CanReuseSubset(image, width, height, contiguous)) {
    if (clear) ClearSubset(image.m_subset);
    return true;
  }
  ErdasImg::FreeBands(image.m_subset);
  if (width == Saturated(width) && height == Saturated(height)) {
    const std::uint8_t bandsContiguous = image.m_bandsContiguous;
    image.m_subset = image.AllocateBands(image.GetBandCount(), image.m_subsetSize.cy, image.m_subsetSize.cx,
                                         image.m_bytesPerPixel, contiguous);
    image.m_bandsContiguous = bandsContiguous;  // it tells of the image's own bands
  }
  image.m_subsetContiguous = contiguous ? 1 : 0;
  if (!image.m_subset) ShowWarning(ErdasImg::kNoMemoryText);
  return static_cast<bool>(image.m_subset);
}

// Whether the image's bands hold all pixels of the window, so that nothing of it needs to be zero.
bool IsCovered(const ErdasImg& image, const ImageRect& rect) {
  const ErdasHeader& header = image.m_header;
  const bool isInside =
      rect.left >= 0 && rect.right < header.cols && rect.top >= 0 && rect.bottom < header.rows;
  const std::int64_t nRowBytes = std::int64_t{header.cols} * image.m_bytesPerPixel;
  return isInside && nRowBytes > 0 && static_cast<std::int64_t>(image.m_bands.size()) >= header.bandCount &&
         static_cast<std::int64_t>(image.m_bands.GetBandBytes()) / nRowBytes >= header.rows;
}

// One band's place in the subset: a plane of its own, or every so many bytes among those of the other bands.
struct SubsetPlane {
  std::uint8_t* first;
  std::size_t pixelStep;  // bytes from a pixel to the next
};

SubsetPlane PlaneOf(const ErdasImg& image, std::int32_t band, bool interleaved) {
  const auto pixelSize = static_cast<std::size_t>(image.m_bytesPerPixel);
  if (!interleaved) return {image.m_subset[band], pixelSize};
  return {image.m_subset[0] + static_cast<std::size_t>(band) * pixelSize,
          pixelSize * static_cast<std::size_t>(image.GetBandCount())};
}

// Copies the pixels of an image row from column `begin` to before `end`, as far as they are there, to the
// plane's pixel `index` and those behind it.
void CopyRun(const ErdasImg& image, std::int32_t band, std::int64_t row, std::int64_t begin, std::int64_t end,
             const SubsetPlane& plane, std::int64_t index) {
  const auto held = HeldRow(image, row, band);
  if (held.empty()) return;
  const auto size = static_cast<std::size_t>(image.m_bytesPerPixel);
  const std::int64_t first = std::max<std::int64_t>(begin, 0);
  const std::int64_t count = std::min(end, static_cast<std::int64_t>(held.size() / size)) - first;
  if (count <= 0) return;
  CopyPixels(held.data() + static_cast<std::size_t>(first) * size, size,
             plane.first + static_cast<std::size_t>(index + first - begin) * plane.pixelStep, plane.pixelStep,
             count, size);
}

// Cuts the window out; with `flipped` its rows count from the bottom of the image.
void CutWindow(ErdasImg& image, const ImageRect& rect, bool flipped, bool interleaved) {
  const std::int64_t width = std::int64_t{rect.right} - rect.left + 1;
  const std::int64_t height = std::int64_t{rect.bottom} - rect.top + 1;
  if (width <= 0 || height <= 0) return;
  if (!PrepareSubset(image, rect, width, height, interleaved, !IsCovered(image, rect))) return;
  const std::int64_t nRows = image.m_header.rows;
  const std::int64_t firstRow = std::max(rect.top, 0);
  const std::int64_t endRow = std::min(std::int64_t{rect.bottom} + 1, nRows);
  for (std::int32_t band = 0; band < image.GetBandCount(); ++band) {
    const SubsetPlane plane = PlaneOf(image, band, interleaved);
    for (std::int64_t y = firstRow; y < endRow; ++y) {
      CopyRun(image, band, flipped ? nRows - y - 1 : y, rect.left, std::int64_t{rect.right} + 1, plane,
              (y - rect.top) * width);
    }
  }
}

// Copies the runs of a region end to end into a subset of one row.
void CopyRegion(const ErdasImg& image, const ScanRegion& region, std::int32_t band) {
  const SubsetPlane plane = PlaneOf(image, band, false);
  std::int64_t index = 0;
  for (const ScanRow& row : region.GetRows()) {
    const auto x = row.GetCrossings();
    if (x.size() % 2 != 0) return;
    for (std::size_t k = 0; k < x.size(); k += 2) {
      const std::int64_t begin = TruncateSaturated(x[k]);
      const std::int64_t end = TruncateSaturated(x[k + 1]);
      if (end <= begin) continue;
      if (end - begin > region.area - index) return;
      CopyRun(image, band, TruncateSaturated(row.y), begin, end, plane, index);
      index += end - begin;
    }
  }
}

// A subset whose pixels are cleared by its rows and by columns of the image.
class SubsetEraser {
 public:
  explicit SubsetEraser(ErdasImg& image) : image_(image), isRowLeft_(RowCount(image), true) {}

  // Clears the row outside of its runs.
  void ClearOutside(const ScanRow& row) {
    const std::int64_t y = std::int64_t{TruncateSaturated(row.y)} - image_.m_subsetRect.top;
    if (y < 0 || y >= static_cast<std::int64_t>(isRowLeft_.size())) return;
    isRowLeft_[static_cast<std::size_t>(y)] = false;
    const auto x = row.GetCrossings();
    std::int64_t cleared = 0;
    for (std::size_t k = 0; k + 1 < x.size(); k += 2) {
      ClearColumns(y, cleared, ColumnOf(x[k]));
      cleared = std::max(cleared, ColumnOf(x[k + 1]));
    }
    ClearColumns(y, cleared, image_.m_subsetSize.cx);
  }

  // Clears the rows that have had no runs.
  void ClearRest() {
    for (std::size_t y = 0; y < isRowLeft_.size(); ++y) {
      if (isRowLeft_[y]) ClearColumns(static_cast<std::int64_t>(y), 0, image_.m_subsetSize.cx);
    }
  }

 private:
  // Rows of the subset that its buffers hold whole.
  static std::size_t RowCount(const ErdasImg& image) {
    const std::int64_t nRowBytes = std::int64_t{image.m_subsetSize.cx} * image.m_bytesPerPixel;
    if (!image.m_subset || image.m_subsetSize.cx <= 0 || nRowBytes <= 0) return 0;
    const auto nHeld = static_cast<std::int64_t>(image.m_subset.GetBandBytes()) / nRowBytes;
    return static_cast<std::size_t>(std::clamp<std::int64_t>(image.m_subsetSize.cy, 0, nHeld));
  }

  std::int64_t ColumnOf(double x) const {
    return std::int64_t{TruncateSaturated(x)} - image_.m_subsetRect.left;
  }

  void ClearColumns(std::int64_t y, std::int64_t begin, std::int64_t end) {
    end = std::min<std::int64_t>(end, image_.m_subsetSize.cx);
    if (begin >= end) return;
    const auto pixelSize = static_cast<std::size_t>(image_.m_bytesPerPixel);
    const auto first = static_cast<std::size_t>(y * image_.m_subsetSize.cx + begin) * pixelSize;
    for (std::size_t band = 0; band < image_.m_subset.size(); ++band) {
      const auto bytes = image_.m_subset.GetBand(static_cast<std::int64_t>(band));
      std::fill_n(bytes.data() + first, static_cast<std::size_t>(end - begin) * pixelSize, std::uint8_t{0});
    }
  }

  ErdasImg& image_;
  std::vector<bool> isRowLeft_;
};

// Cuts an interval to the image's of `length` pixels from `start` on.
void CutTo(std::int64_t start, std::int64_t length, std::int32_t& first, std::int32_t& last) {
  first = Saturated(std::max<std::int64_t>(first, start));
  last = Saturated(std::min<std::int64_t>(last, start + length - 1));
}

}  // namespace

const BandArray& ErdasImg::GetSubset(std::int32_t x0, std::int32_t x1, std::int32_t y0, std::int32_t y1) {
  CutWindow(*this, {x0, y0, x1, y1}, false, false);
  return m_subset;
}

const BandArray& ErdasImg::GetSubsetFlipped(std::int32_t x0, std::int32_t x1, std::int32_t y0,
                                            std::int32_t y1, bool interleaved) {
  CutWindow(*this, {x0, y0, x1, y1}, true, interleaved && GetBandCount() > 1);
  return m_subset;
}

const BandArray& ErdasImg::GetSubsetRegion(const ScanRegion& region) {
  if (region.area <= 0) return m_subset;
  const ImageRect box = {TruncateSaturated(region.minX), TruncateSaturated(region.minY),
                         TruncateSaturated(region.maxX), TruncateSaturated(region.maxY)};
  if (!PrepareSubset(*this, box, region.area, 1, false, true)) return m_subset;
  for (std::int32_t band = 0; band < GetBandCount(); ++band) CopyRegion(*this, region, band);
  return m_subset;
}

void ErdasImg::ClearSubsetRegion(const ScanRegion& region) {
  SubsetEraser eraser(*this);
  for (const ScanRow& row : region.GetRows()) eraser.ClearOutside(row);
  eraser.ClearRest();
}

void ErdasImg::ExtractTo(std::int32_t x0, std::int32_t x1, std::int32_t y0, std::int32_t y1, bool straight,
                         ErdasImg& dest) {
  if (x1 < x0 || y1 < y0) return;
  CutWindow(*this, {x0, y0, x1, y1}, !straight, false);
  const std::int64_t xStart = m_header.xStart;
  const std::int64_t yStart = m_header.yStart;
  dest.m_header = m_header;
  dest.m_bytesPerPixel = m_bytesPerPixel;
  dest.SetBands(m_subset);
  dest.SetSize(m_subsetSize.cx, m_subsetSize.cy);
  dest.m_header.xStart = Saturated(xStart + x0);
  dest.m_header.yStart = Saturated(yStart + y0);
}

int ErdasImg::ClipToImage(ImageRect& rect) const {
  CutTo(m_header.xStart, m_header.cols, rect.left, rect.right);
  CutTo(m_header.yStart, m_header.rows, rect.top, rect.bottom);
  return rect.left <= rect.right && rect.top <= rect.bottom ? 1 : -1;
}

void ErdasImg::ClipToExtent(GroundExtent& rect) const {
  const double right = m_header.cols * double{m_header.xCell} + m_header.xMap;
  const double otherY = m_header.rows * double{m_header.yCell} + m_header.yMap;
  const double firstY = m_header.yMap;
  rect.minX = std::max<double>(rect.minX, m_header.xMap);
  rect.maxX = std::min(rect.maxX, right);
  rect.minY = std::max(rect.minY, std::min(firstY, otherY));
  rect.maxY = std::min(rect.maxY, std::max(firstY, otherY));
}

}  // namespace corvane
