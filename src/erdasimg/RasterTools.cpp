#include "erdasimg/RasterTools.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include "io/MachineMemory.h"

namespace corvane {

namespace {

// A row of an image as pixels of type T: as they stand, or converted if its own type is another. Zeros where
// there is no row.
template <typename T>
class RowsAs {
 public:
  RowsAs(const ErdasImg& image, std::uint16_t packType, std::int32_t nCols)
      : image_(image),
        isSame_(image.GetPackType() == packType),
        values_(isSame_ ? 0 : static_cast<std::size_t>(nCols)),
        pixels_(static_cast<std::size_t>(nCols)) {}

  const std::vector<T>& Get(std::int32_t band, std::int32_t row) {
    if (isSame_) {
      std::uint8_t* from = nullptr;
      image_.GetRowPointer(row, band, from);
      if (from) {
        std::memcpy(pixels_.data(), from, pixels_.size() * sizeof(T));
      } else {
        std::ranges::fill(pixels_, T{});
      }
    } else {
      image_.GetPixelRow(band, row, 0, values_);
      std::transform(values_.begin(), values_.end(), pixels_.begin(), PixelFrom<T>);
    }
    return pixels_;
  }

 private:
  const ErdasImg& image_;
  bool isSame_;
  std::vector<double> values_;
  std::vector<T> pixels_;
};

template <typename T>
void SubtractAs(const ErdasImg& first, const ErdasImg& second, ErdasImg& difference) {
  const std::int32_t nBands = std::min(first.GetBandCount(), second.GetBandCount());
  const std::int32_t nRows = std::min(first.GetSize().cy, second.GetSize().cy);
  const std::int32_t nCols = std::min(first.GetSize().cx, second.GetSize().cx);
  if (nRows <= 0 || nCols <= 0) return;
  RowsAs<T> firstRows(first, first.GetPackType(), nCols);
  RowsAs<T> secondRows(second, first.GetPackType(), nCols);
  std::vector<T> result(static_cast<std::size_t>(nCols));
  for (std::int32_t band = 0; band < nBands; ++band) {
    for (std::int32_t row = 0; row < nRows; ++row) {
      const auto& a = firstRows.Get(band, row);
      const auto& b = secondRows.Get(band, row);
      std::uint8_t* to = nullptr;
      difference.GetRowPointer(row, band, to);
      std::transform(a.begin(), a.end(), b.begin(), result.begin(),
                     [](T x, T y) { return static_cast<T>(x - y); });
      if (to) std::memcpy(to, result.data(), result.size() * sizeof(T));
    }
  }
}

// Copies every Nth of the pixels of a band, as SampleImage counts them.
void SampleBand(const ErdasImg& image, std::int32_t band, std::int32_t n, ErdasImg& sampled) {
  const ImageSize size = image.GetSize();
  const ImageSize sampledSize = sampled.GetSize();
  const std::span<const std::uint8_t> from = image.GetBands().GetBand(band);
  const auto pixelBytes = static_cast<std::size_t>(BytesOfPackType(image.GetPackType()));
  const auto nPixels = static_cast<std::int64_t>(from.size() / pixelBytes);
  std::uint8_t* to = sampled.GetBands()[band];
  std::int64_t at = 0;
  for (std::int32_t row = 0; row < sampledSize.cy; ++row) {
    for (std::int32_t col = 0; col < sampledSize.cx; ++col) {
      if (at < nPixels) std::memcpy(to, from.data() + static_cast<std::size_t>(at) * pixelBytes, pixelBytes);
      to += pixelBytes;
      at += n;
    }
    at += size.cy % n + (n - std::int64_t{1}) * size.cx;
  }
}

}  // namespace

int MakeImage(ErdasHeader header, double rows, double cols, ErdasImg& image) {
  image.Free();
  if (!(rows >= 1.0 && cols >= 1.0)) return -1;
  if (!(rows < 2147483648.0 && cols < 2147483648.0)) return -2;
  header.rows = static_cast<std::int32_t>(rows);
  header.cols = static_cast<std::int32_t>(cols);
  const double nBytes = 1.0 * header.rows * header.cols * header.bandCount * BytesOfPackType(header.packType);
  return nBytes > static_cast<double>(BytesOfMachine()) ? -2 : image.Create(header, false);
}

int FillDem(ErdasHeader header, double rows, double cols, double z, ErdasImg& dem) {
  const bool isGrid = header.xCell > 0.0f && header.yCell < 0.0f && rows >= 1.0 && cols >= 1.0;
  if (!isGrid || !std::isfinite(header.xCell) || !std::isfinite(header.yCell)) return -1;
  const bool fits = rows < 2147483648.0 && cols < 2147483648.0;
  const double nCells = std::trunc(rows) * std::trunc(cols);
  if (!fits || nCells > kMaxDemCells) return -3;
  header.packType = kPackFloat;
  header.mapType = 0;
  const int status = MakeImage(header, rows, cols, dem);
  if (status < 0) return status;
  dem.Fill(z);
  return 1;
}

int FlatDem(const GroundExtent& rect, float cellSize, double z, ErdasImg& dem) {
  ErdasHeader header;
  header.xMap = static_cast<float>(rect.minX + cellSize / 2);
  header.yMap = static_cast<float>(rect.maxY - cellSize / 2);
  header.xCell = cellSize;
  header.yCell = -cellSize;
  const double rows = (rect.maxY - rect.minY) / cellSize + 0.5;
  const double cols = (rect.maxX - rect.minX) / cellSize + 0.5;
  return FillDem(header, rows, cols, z, dem);
}

int SampleImage(const ErdasImg& image, std::int32_t n, ErdasImg& sampled) {
  ErdasHeader header = *image.GetHeader();
  header.rows /= n;
  header.cols /= n;
  header.xCell *= static_cast<float>(n);
  header.yCell *= static_cast<float>(n);
  const int status = sampled.Create(header, false);
  if (status < 0) return status;
  for (std::int32_t band = 0; band < image.GetBandCount(); ++band) SampleBand(image, band, n, sampled);
  return 1;
}

int DivideImage(const ErdasImg& image, std::int32_t n, ErdasImg& divided) {
  const int status = divided.Create(*image.GetHeader(), false);
  if (status < 0) return status;
  std::vector<double> values(static_cast<std::size_t>(image.GetSize().cx));
  for (std::int32_t band = 0; band < image.GetBandCount(); ++band) {
    for (std::int32_t row = 0; row < image.GetSize().cy; ++row) {
      image.GetPixelRow(band, row, 0, values);
      for (double& value : values) value /= n;
      divided.SetPixelRow(band, row, 0, values);
    }
  }
  return 1;
}

int SubtractImages(const ErdasImg& first, const ErdasImg& second, ErdasImg& difference) {
  const int status = difference.Create(*first.GetHeader(), false);
  if (status < 0) return status;
  switch (first.GetPackType()) {
    case kPackByte:
      SubtractAs<std::uint8_t>(first, second, difference);
      break;
    case kPackInt16:
      SubtractAs<std::int16_t>(first, second, difference);
      break;
    case kPackFloat:
      SubtractAs<float>(first, second, difference);
      break;
    case kPackDouble:
      SubtractAs<double>(first, second, difference);
      break;
    default:
      break;
  }
  return 1;
}

}  // namespace corvane
