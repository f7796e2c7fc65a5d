#include <algorithm>
#include <new>

#include "ImgProcess/ImageFilter.h"
#include "ImgProcess/ImgProcess.h"
#include "ImgProcess/ScratchFile.h"
#include "ui/ErrorTexts.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

// The magnitude of the gradient, row by row, so that its two parts are never there as images.
template <typename Pixel, typename Sum>
void MagnitudeOfGradient(const ErdasImg& image, const Kernel1D& kernel, ErdasImg& result) {
  const auto [cols, rows] = image.GetSize();
  std::vector<Sum> gx(static_cast<std::size_t>(cols));
  std::vector<Sum> gy(static_cast<std::size_t>(cols));
  for (std::int32_t band = 0; band < image.GetBandCount(); ++band) {
    SeparableFilter<Pixel, Sum> alongRows(image, band, {&kernel, nullptr}, {0, cols});
    SeparableFilter<Pixel, Sum> alongColumns(image, band, {nullptr, &kernel}, {0, cols});
    for (std::int32_t row = 0; row < rows; ++row) {
      std::uint8_t* pixels = nullptr;
      result.GetRowPointer(row, band, pixels);
      alongRows.NextRow(gx.data());
      alongColumns.NextRow(gy.data());
      MagnitudeLine(gx.data(), gy.data(), reinterpret_cast<Sum*>(pixels), cols);
    }
  }
}

// Calls `calculate` with the pixels of each band of the three images, which are of one shape and pixel type,
// if these are floats or doubles, and their number.
template <typename Calculate>
void WithRealBands(const ErdasImg& a, const ErdasImg& b, ErdasImg& result, Calculate calculate) {
  WithPixelType(a.GetPackType(), [&](auto pixel) {
    using Pixel = decltype(pixel);
    if constexpr (std::is_floating_point_v<Pixel>) {
      const std::int64_t n = a.GetImageBytes() / static_cast<std::int64_t>(sizeof pixel);
      for (std::int32_t band = 0; band < a.GetBandCount(); ++band) {
        calculate(reinterpret_cast<const Pixel*>(a.m_bands[band]),
                  reinterpret_cast<const Pixel*>(b.m_bands[band]),
                  reinterpret_cast<Pixel*>(result.m_bands[band]), n);
      }
    }
  });
}

bool SamePixels(const ErdasImg& a, const ErdasImg& b) {
  return SameShape(a, b) && a.GetPackType() == b.GetPackType() && HoldsItsPixels(a) && HoldsItsPixels(b);
}

}  // namespace

int ImgProcess::GaussianSmooth(const ErdasImg& image, double sigma, ResultImage& result) {
  Kernel1D kernel;
  if (!image.HasPixels() || MakeGaussian(sigma, kernel) < 0) return -1;
  ErdasHeader header = *image.GetHeader();
  if (header.packType != kPackDouble) header.packType = kPackFloat;
  const bool fits = result && SameShape(image, *result) && result->GetPackType() == header.packType;
  ResultImage smoothed = fits ? std::move(result) : nullptr;  // the old result may be the image
  int status = MakeMissing(header, smoothed);
  if (status < 0) return status;
  *smoothed->GetHeader() = header;
  status = FilterImage(image, {{&kernel, &kernel}}, *smoothed);
  result = std::move(smoothed);
  return status;
}

int ImgProcess::Gradient(const ErdasImg& image, std::uint16_t pack, ResultImage& result) {
  if (!image.HasPixels()) return -1;
  Kernel1D kernel;
  MakeCentralDifference(kernel);
  ErdasHeader header = *image.GetHeader();
  header.packType = pack;
  const int status = MakeMissing(header, result);
  if (status < 0) return status;
  const bool fits = SameShape(image, *result) && result->GetPackType() == pack && HoldsItsPixels(*result);
  if (!fits) return -1;
  const int writtenX = ConvolveToFile(image, kernel, 1, pack, "GradientX.lan");
  const int writtenY = ConvolveToFile(image, kernel, 2, pack, "GradientY.lan");
  try {
    WithFilterTypes(image, *result->GetHeader(), [&](auto pixel, auto sum) {
      MagnitudeOfGradient<decltype(pixel), decltype(sum)>(image, kernel, *result);
    });
  } catch (const std::bad_alloc&) {
    return -2;
  }
  return std::min(writtenX, writtenY);
}

int ImgProcess::Magnitude(const ErdasImg& gx, const ErdasImg& gy, ResultImage& result) {
  if (!SamePixels(gx, gy)) return -1;
  const int status = MakeMissing(*gx.GetHeader(), result);
  if (status < 0) return status;
  if (!SamePixels(gx, *result)) return -1;
  WithRealBands(gx, gy, *result,
                [](auto* x, auto* y, auto* to, std::int64_t n) { MagnitudeLine(x, y, to, n); });
  return 1;
}

int ImgProcess::LaplacianOfGaussian(const ErdasImg& image, double sigma, ErdasImg& result) {
  Kernel1D smooth;
  Kernel1D curve;
  if (MakeGaussian(sigma, smooth) < 0 || MakeGaussian2nd(sigma, curve) < 0) return -1;
  return FilterImage(image, {{&smooth, &curve}, {&curve, &smooth}}, result);
}

int ImgProcess::LaplacianOfGaussianLowMemory(const ErdasImg& image, double sigma, ErdasImg& result) {
  Kernel1D smooth;
  Kernel1D curve;
  if (MakeGaussian(sigma, smooth) < 0 || MakeGaussian2nd(sigma, curve) < 0) return -1;
  if (!SameShape(image, result) || !HoldsItsPixels(result)) return -1;
  // AddImage takes no file for an image whose place or cell is not a number.
  if (!result.SameGeometry(result)) return LaplacianOfGaussian(image, sigma, result);
  // Kept: whatever was there under this name is lost.
  ScratchFile file(NameBeforeExtension(image.GetFileName(), "_temp"));
  const auto write = [&](const void* bytes, std::size_t size) { return file.Write(bytes, size); };
  int status = file.IsOpen() ? WriteFiltered(image, {&smooth, &curve}, *result.GetHeader(), write) : -3;
  if (status == 1 && !file.Close()) status = -3;
  if (status == -3) ShowWarning(WriteErrorText(file.GetPath()));
  if (status < 0) return status;
  status = FilterImage(image, {{&curve, &smooth}}, result);
  if (status < 0) return status;
  return result.AddImage(file.GetPath()) < 0 ? -3 : 1;
}

int ImgProcess::Square(ErdasImg& image) {
  if (!HoldsItsPixels(image)) return -1;
  WithRealBands(image, image, image,
                [](auto* a, auto* b, auto* to, std::int64_t n) { MultiplyLine(a, b, to, n); });
  return 1;
}

int ImgProcess::Multiply(const ErdasImg& a, const ErdasImg& b, ResultImage& result) {
  if (!a.SameGeometry(b) || !SamePixels(a, b)) return -1;
  const int status = MakeMissing(*a.GetHeader(), result);
  if (status < 0) return status;
  if (!SamePixels(a, *result)) return -1;
  WithRealBands(a, b, *result, [](auto* x, auto* y, auto* to, std::int64_t n) { MultiplyLine(x, y, to, n); });
  return 1;
}

}  // namespace corvane
