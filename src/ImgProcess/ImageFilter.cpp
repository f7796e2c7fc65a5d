#include "ImgProcess/ImageFilter.h"

#include <new>

#include "erdasimg/BandPixels.h"

namespace corvane {

namespace {

// Bytes of filtered rows that are kept for the columns: what stays in a fast cache beside the rest.
constexpr std::int64_t kCacheBytes = std::int64_t{1} << 18;
constexpr std::int64_t kLeastStrip = 256;  // columns
constexpr std::int64_t kStripStep = 64;    // columns, so that strips begin at cache lines

bool AreWhole(std::initializer_list<FilterKernels> filters) {
  return std::all_of(filters.begin(), filters.end(), [](const FilterKernels& filter) {
    return (!filter.alongRows || filter.alongRows->IsWhole()) &&
           (!filter.alongColumns || filter.alongColumns->IsWhole());
  });
}

// In place, a strip would find its neighbours' columns filtered already.
bool NeedsWholeRows(const ErdasImg& image, std::initializer_list<FilterKernels> filters,
                    const ErdasImg& result) {
  const bool alongRows = std::any_of(filters.begin(), filters.end(),
                                     [](const FilterKernels& filter) { return filter.alongRows != nullptr; });
  return alongRows && image.m_bands[0] == result.m_bands[0];
}

// The width of strips, nearly equal, that cover the columns.
std::int32_t StripWidth(const ErdasImg& image, std::initializer_list<FilterKernels> filters,
                        std::int64_t numberBytes) {
  const auto [cols, rows] = image.GetSize();
  std::int64_t columnBytes = 0;
  for (const FilterKernels& filter : filters) {
    if (filter.alongColumns) columnBytes += std::min(filter.alongColumns->size, rows) * numberBytes;
  }
  if (columnBytes == 0) return cols;
  const std::int64_t mostCols = std::max(kCacheBytes / columnBytes, kLeastStrip);
  const std::int64_t nStrips = (cols + mostCols - 1) / mostCols;
  const std::int64_t evenly = (cols + nStrips - 1) / nStrips;
  return static_cast<std::int32_t>(
      std::min<std::int64_t>((evenly + kStripStep - 1) / kStripStep * kStripStep, cols));
}

template <typename Pixel, typename Sum>
void FilterStrip(const ErdasImg& image, std::int32_t band, std::initializer_list<FilterKernels> filters,
                 ColumnStrip strip, ErdasImg& result) {
  std::vector<SeparableFilter<Pixel, Sum>> parts;
  for (const FilterKernels& filter : filters) parts.emplace_back(image, band, filter, strip);
  const auto nCols = static_cast<std::size_t>(strip.count);
  std::vector<Sum> lines(nCols * (parts.size() - 1));
  for (std::int32_t row = 0; row < image.m_header.rows; ++row) {
    std::uint8_t* pixels = nullptr;
    result.GetRowPointer(row, band, pixels);
    Sum* const to = reinterpret_cast<Sum*>(pixels) + strip.first;
    // The first filter is the last to run, because it may overwrite what the others read.
    for (std::size_t i = 1; i < parts.size(); ++i) parts[i].NextRow(&lines[(i - 1) * nCols]);
    parts[0].NextRow(to);
    for (std::size_t i = 1; i < parts.size(); ++i) AddLine(to, &lines[(i - 1) * nCols], strip.count);
  }
}

template <typename Pixel, typename Sum>
void FilterBands(const ErdasImg& image, std::initializer_list<FilterKernels> filters, ErdasImg& result) {
  const std::int32_t cols = image.m_header.cols;
  const bool isWhole = NeedsWholeRows(image, filters, result);
  const std::int32_t width = isWhole ? cols : StripWidth(image, filters, sizeof(FilteredNumber<Pixel, Sum>));
  for (std::int32_t band = 0; band < image.GetBandCount(); ++band) {
    for (std::int64_t first = 0; first < cols; first += width) {
      const auto count = static_cast<std::int32_t>(std::min<std::int64_t>(width, cols - first));
      FilterStrip<Pixel, Sum>(image, band, filters, {static_cast<std::int32_t>(first), count}, result);
    }
  }
}

// Writes all rows, those of the bands in turn, which `nextRow` puts into the line for a band.
template <typename NextRow>
bool WriteRows(const ErdasHeader& header, NextRow nextRow, const WriteBytes& write) {
  std::vector<std::uint8_t> line(static_cast<std::size_t>(header.cols) *
                                 static_cast<std::size_t>(BytesOfPackType(header.packType)));
  for (std::int32_t row = 0; row < header.rows; ++row) {
    for (std::size_t band = 0; band < header.bandCount; ++band) {
      nextRow(band, line);
      if (!write(line.data(), line.size())) return false;
    }
  }
  return true;
}

template <typename Pixel, typename Sum>
bool WriteFilteredRows(const ErdasImg& image, const FilterKernels& filter, const ErdasHeader& header,
                       const WriteBytes& write) {
  std::vector<SeparableFilter<Pixel, Sum>> bands;
  for (std::int32_t band = 0; band < image.GetBandCount(); ++band) {
    bands.emplace_back(image, band, filter, ColumnStrip{0, image.m_header.cols});
  }
  const auto nextRow = [&](std::size_t band, std::vector<std::uint8_t>& line) {
    bands[band].NextRow(reinterpret_cast<Sum*>(line.data()));
  };
  return WriteRows(header, nextRow, write);
}

}  // namespace

bool SameShape(const ErdasImg& a, const ErdasImg& b) {
  return a.GetSize() == b.GetSize() && a.GetBandCount() == b.GetBandCount();
}

bool HoldsItsPixels(const ErdasImg& image) {
  if (!image.HasPixels()) return false;
  return WithPixelType(image.GetPackType(), [&](auto pixel) {
    for (std::int32_t band = 0; band < image.GetBandCount(); ++band) {
      const auto place = reinterpret_cast<std::uintptr_t>(image.m_bands[band]);
      if (!BandPixels<decltype(pixel)>(image, band).IsPlain() || place % alignof(decltype(pixel)) != 0) {
        return false;
      }
    }
    return true;
  });
}

int MakeMissing(const ErdasHeader& header, std::unique_ptr<ErdasImg>& result) {
  if (result) return 1;
  result.reset(new (std::nothrow) ErdasImg);
  const int status = result ? result->Create(header, false) : -2;
  if (status < 0) result.reset();
  return status;
}

int FilterImage(const ErdasImg& image, std::initializer_list<FilterKernels> filters, ErdasImg& result) {
  if (!image.HasPixels() || !SameShape(image, result) || !HoldsItsPixels(result) || !AreWhole(filters)) {
    return -1;
  }
  try {
    WithFilterTypes(image, result.m_header, [&](auto pixel, auto sum) {
      FilterBands<decltype(pixel), decltype(sum)>(image, filters, result);
    });
  } catch (const std::bad_alloc&) {
    return -2;
  }
  return 1;
}

int WriteFiltered(const ErdasImg& image, const FilterKernels& filter, const ErdasHeader& header,
                  const WriteBytes& write) {
  if (!image.HasPixels() || !AreWhole({filter})) return -1;
  if (!write(&header, sizeof header)) return -3;
  bool isWritten = false;
  try {
    const bool isFiltered = WithFilterTypes(image, header, [&](auto pixel, auto sum) {
      isWritten = WriteFilteredRows<decltype(pixel), decltype(sum)>(image, filter, header, write);
    });
    if (!isFiltered)
      isWritten = WriteRows(
          header, [](auto&&...) {}, write);
  } catch (const std::bad_alloc&) {
    return -2;
  }
  return isWritten ? 1 : -3;
}

}  // namespace corvane
