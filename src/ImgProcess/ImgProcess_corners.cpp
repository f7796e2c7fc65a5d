// Harris corners.

#include <array>
#include <cstring>
#include <new>

#include "ImgProcess/CornerResponse.h"
#include "ImgProcess/ImageFilter.h"
#include "ImgProcess/ImgProcess.h"
#include "ImgProcess/SmoothedRows.h"

namespace corvane {

namespace {

constexpr const char* kResponseFile = "cornerResponse.lan";

// The response of one band: its gradients are made, multiplied and smoothed as the rows come by, so that none
// of these is ever there as an image.
template <typename Pixel, typename Number>
class ResponseRows {
 public:
  ResponseRows(const ErdasImg& image, std::int32_t band, const Kernel1D& difference, const Kernel1D& gaussian,
               double k)
      : nRows_(image.GetSize().cy),
        nCols_(image.GetSize().cx),
        k_(static_cast<Number>(k)),
        alongRows_(image, band, {&difference, nullptr}, {0, image.GetSize().cx}),
        alongColumns_(image, band, {nullptr, &difference}, {0, image.GetSize().cx}),
        smoothed_{Smoother(gaussian, nRows_, nCols_), Smoother(gaussian, nRows_, nCols_),
                  Smoother(gaussian, nRows_, nCols_)} {
    response_.resize(static_cast<std::size_t>(nCols_));
    lines_.fill(response_);
  }

  // Stores the response of all rows.
  void Store(std::uint8_t* to) {
    const std::int64_t reach = smoothed_[0].GetReach();
    const std::size_t rowBytes = response_.size() * sizeof(Number);
    for (std::int64_t row = -reach; row < nRows_; ++row) {
      if (row + reach < nRows_) PushProducts();
      if (row < 0) continue;
      Measure(row);
      std::memcpy(to, response_.data(), rowBytes);
      to += rowBytes;
    }
  }

 private:
  using Smoother = SmoothedRows<Number>;

  void PushProducts() {
    Number* const gx = lines_[0].data();
    Number* const gy = lines_[1].data();
    Number* const product = lines_[2].data();
    alongRows_.NextRow(gx);
    alongColumns_.NextRow(gy);
    MultiplyLine(gx, gy, product, nCols_);
    MultiplyLine(gx, gx, gx, nCols_);
    MultiplyLine(gy, gy, gy, nCols_);
    for (std::size_t i = 0; i < 3; ++i) smoothed_[i].Push(lines_[i].data());
  }

  void Measure(std::int64_t row) {
    for (std::size_t i = 0; i < 3; ++i) smoothed_[i].Get(row, lines_[i].data());
    MeasureCorners(lines_[0].data(), lines_[1].data(), lines_[2].data(), k_, response_.data(), nCols_);
  }

  std::ptrdiff_t nRows_;
  std::ptrdiff_t nCols_;
  Number k_;
  SeparableFilter<Pixel, Number> alongRows_;
  SeparableFilter<Pixel, Number> alongColumns_;
  std::array<Smoother, 3> smoothed_;          // the squares along rows and along columns, and the products
  std::array<std::vector<Number>, 3> lines_;  // a row of each
  std::vector<Number> response_;
};

template <typename Pixel, typename Number>
void StoreResponse(const ErdasImg& image, const Kernel1D& gaussian, double k, ErdasImg& result) {
  Kernel1D difference;
  ImgProcess::MakeCentralDifference(difference);
  for (std::int32_t band = 0; band < image.GetBandCount(); ++band) {
    ResponseRows<Pixel, Number>(image, band, difference, gaussian, k).Store(result.GetBands()[band]);
  }
}

constexpr int kNotStored = -5;

// The response for corners, written to its file. kNotStored if that fails, which is told.
int MakeResponse(ImgProcess& process, const ErdasImg& image, const HarrisParam& param,
                 ResultImage& response) {
  const auto [cols, rows] = image.GetSize();
  const auto floatBytes = static_cast<std::int64_t>(sizeof(float));
  const bool isLarge = std::int64_t{cols} * rows >= ImgProcess::kLargeResponse / floatBytes;
  const int status = isLarge ? process.CornerResponseFromFiles(image, response, param)
                             : process.CornerResponse(image, response, param);
  if (status < 0) return status;
  return response->Write(kResponseFile) < 0 ? kNotStored : 1;
}

// The response for corners, written to its file, and what `extract` makes of it.
template <typename Extract>
int FindCorners(ImgProcess& process, const ErdasImg& image, const HarrisParam& param, Extract extract) {
  ResultImage response;
  const int status = MakeResponse(process, image, param, response);
  if (status < 0 && status != kNotStored) return status;
  const int extracted = extract(*response);
  return extracted < 0 ? extracted : status;
}

}  // namespace

int ImgProcess::HarrisCorners(const ErdasImg& image, std::vector<Point2>& points, const HarrisParam& param) {
  points.clear();
  return FindCorners(*this, image, param,
                     [&](const ErdasImg& response) { return ExtractCorners(response, param, points); });
}

int ImgProcess::HarrisFeatures(const ErdasImg& image, FeaturePointList& features, const HarrisParam& param) {
  features.clear();
  return FindCorners(*this, image, param, [&](const ErdasImg& response) {
    return ExtractCornerFeatures(response, param, features);
  });
}

int ImgProcess::CornerResponse(const ErdasImg& image, ResultImage& result, const HarrisParam& param) {
  Kernel1D gaussian;
  if (!CanRespond(image, m_outPack, result) || MakeGaussian(param.sigma, gaussian) < 0) return -1;
  ErdasHeader header = *image.GetHeader();
  header.packType = m_outPack;
  const int status = MakeMissing(header, result);
  if (status < 0) return status;
  try {
    WithFilterTypes(image, header, [&](auto pixel, auto number) {
      StoreResponse<decltype(pixel), decltype(number)>(image, gaussian, param.k, *result);
    });
  } catch (const std::bad_alloc&) {
    return -2;
  }
  return 1;
}

}  // namespace corvane
