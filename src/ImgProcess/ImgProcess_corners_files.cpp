// The response for corners of images that leave no room for images of floats.

#include <cstring>
#include <new>

#include "ImgProcess/CornerResponse.h"
#include "ImgProcess/ImageFilter.h"
#include "ImgProcess/ImgProcess.h"
#include "ImgProcess/ScratchFile.h"
#include "ImgProcess/SmoothedRows.h"
#include "io/InputFile.h"
#include "ui/ErrorTexts.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

constexpr int kNoMemory = -2;
constexpr int kFileFailure = -3;
constexpr int kOtherGeometry = -4;

// What the steps hand on to each other.
struct ResponseFiles {
  explicit ResponseFiles(const std::string& name)
      : gradX(NameBeforeExtension(name, "_GradX")),
        gradY(NameBeforeExtension(name, "_GradY")),
        smoothX2(NameBeforeExtension(name, "_SmoothX2")),
        smoothY2(NameBeforeExtension(name, "_SmoothY2")),
        smoothProduct(NameBeforeExtension(name, "_SmoothProduct")) {}

  ScratchFile gradX;
  ScratchFile gradY;
  ScratchFile smoothX2;
  ScratchFile smoothY2;
  ScratchFile smoothProduct;
};

// The pixels of a .lan line by line: for each row, a line of each band.
template <typename Number>
class LanLines {
 public:
  // The file is to have the geometry of `shape`.
  LanLines(const std::string& path, const ErdasImg& shape)
      : path_(path), file_(path), line_(static_cast<std::size_t>(shape.GetSize().cx)) {
    ErdasImg image;
    isGood_ = file_.Read(&image.m_header, sizeof image.m_header) == sizeof image.m_header;
    hasShape_ = image.SameGeometry(shape);
  }

  // The next line; only IsGood tells if it could not be read.
  const Number* Next() {
    const std::size_t size = line_.size() * sizeof(Number);
    isGood_ = isGood_ && file_.Read(line_.data(), size) == size;
    return line_.data();
  }

  // 1; kFileFailure, with a warning, if something could not be read; kOtherGeometry.
  int GetStatus() const {
    if (isGood_) return hasShape_ ? 1 : kOtherGeometry;
    ShowWarning(OpenErrorText(path_));
    return kFileFailure;
  }

 private:
  std::string path_;
  InputFile file_;
  std::vector<Number> line_;
  bool isGood_ = false;
  bool hasShape_ = false;
};

// The first status that is a failure, or 1.
template <typename... Lines>
int StatusOf(const Lines&... lines) {
  int status = 1;
  ((status = status == 1 ? lines.GetStatus() : status), ...);
  return status;
}

int FailToWrite(const ScratchFile& file) {
  ShowWarning(WriteErrorText(file.GetPath()));
  return kFileFailure;
}

// Writes the central differences as a .lan of that shape, row by row.
int WriteDifferences(const ErdasImg& image, const FilterKernels& difference, const ErdasImg& shape,
                     ScratchFile& file) {
  if (!file.IsOpen()) return FailToWrite(file);
  const auto write = [&](const void* bytes, std::size_t size) { return file.Write(bytes, size); };
  const int status = WriteFiltered(image, difference, shape.m_header, write);
  if (status == -1 || status == kNoMemory) return status;
  return status == 1 && file.Close() ? 1 : FailToWrite(file);
}

// Multiplies two files pixel by pixel and smooths the products as their rows come by.
template <typename Number>
class ProductFile {
 public:
  ProductFile(const std::string& a, const std::string& b, const ErdasImg& shape, const Kernel1D& gaussian)
      : a_(a, shape),
        b_(b, shape),
        header_(shape.m_header),
        reach_(gaussian.GetReach()),
        line_(static_cast<std::size_t>(header_.cols)) {
    for (int band = 0; band < header_.bandCount; ++band) {
      bands_.emplace_back(gaussian, header_.rows, header_.cols);
    }
  }

  int Write(ScratchFile& file) {
    int status = StatusOf(a_, b_);
    if (status != 1) return status;
    bool isWritten = file.IsOpen() && file.Write(&header_, sizeof header_);
    for (std::int64_t row = -reach_; row < header_.rows && isWritten; ++row) {
      if (row + reach_ < header_.rows) PushProducts();
      if (row >= 0) isWritten = WriteRow(row, file);
    }
    status = StatusOf(a_, b_);
    if (status != 1) return status;
    return isWritten && file.Close() ? 1 : FailToWrite(file);
  }

 private:
  void PushProducts() {
    for (auto& band : bands_) {
      MultiplyLine(a_.Next(), b_.Next(), line_.data(), header_.cols);
      band.Push(line_.data());
    }
  }

  bool WriteRow(std::int64_t row, ScratchFile& file) {
    for (auto& band : bands_) {
      band.Get(row, line_.data());
      if (!file.Write(line_.data(), line_.size() * sizeof(Number))) return false;
    }
    return true;
  }

  LanLines<Number> a_;
  LanLines<Number> b_;
  ErdasHeader header_;
  std::int64_t reach_;
  std::vector<SmoothedRows<Number>> bands_;
  std::vector<Number> line_;
};

// The response of the three smoothed files.
template <typename Number>
int MeasureFiles(const ResponseFiles& files, const ErdasImg& shape, double k, ResultImage& result) {
  LanLines<Number> x2(files.smoothX2.GetPath(), shape);
  LanLines<Number> y2(files.smoothY2.GetPath(), shape);
  LanLines<Number> product(files.smoothProduct.GetPath(), shape);
  int status = StatusOf(x2, y2, product);
  if (status == 1) status = MakeMissing(shape.m_header, result);
  if (status != 1) return status;
  const auto [cols, rows] = shape.GetSize();
  std::vector<Number> line(static_cast<std::size_t>(cols));
  for (std::int32_t row = 0; row < rows; ++row) {
    for (std::int32_t band = 0; band < shape.GetBandCount(); ++band) {
      MeasureCorners(x2.Next(), y2.Next(), product.Next(), static_cast<Number>(k), line.data(), cols);
      std::uint8_t* to = nullptr;
      result->GetRowPointer(row, band, to);
      std::memcpy(to, line.data(), line.size() * sizeof(Number));
    }
  }
  return StatusOf(x2, y2, product);
}

template <typename Number>
int RespondFromFiles(const ErdasImg& image, const ErdasImg& shape, const Kernel1D& gaussian, double k,
                     ResultImage& result) {
  ResponseFiles files(image.GetFileName());
  Kernel1D difference;
  ImgProcess::MakeCentralDifference(difference);
  int status = WriteDifferences(image, {&difference, nullptr}, shape, files.gradX);
  if (status == 1) status = WriteDifferences(image, {nullptr, &difference}, shape, files.gradY);
  const auto smooth = [&](const ScratchFile& a, const ScratchFile& b, ScratchFile& product) {
    if (status != 1) return;
    status = ProductFile<Number>(a.GetPath(), b.GetPath(), shape, gaussian).Write(product);
  };
  smooth(files.gradX, files.gradY, files.smoothProduct);
  smooth(files.gradX, files.gradX, files.smoothX2);
  smooth(files.gradY, files.gradY, files.smoothY2);
  return status == 1 ? MeasureFiles<Number>(files, shape, k, result) : status;
}

}  // namespace

int ImgProcess::CornerResponseFromFiles(const ErdasImg& image, ResultImage& result,
                                        const HarrisParam& param) {
  ErdasImg shape;  // of the files and the response, without pixels
  shape.m_header = image.m_header;
  shape.m_header.packType = m_outPack;
  const bool isFiltered = WithFilterTypes(image, shape.m_header, [](auto&&...) {});
  if (!isFiltered) return CornerResponse(image, result, param);  // needs no files
  Kernel1D gaussian;
  if (!CanRespond(image, m_outPack, result) || MakeGaussian(param.sigma, gaussian) < 0) return -1;
  try {
    return m_outPack == kPackDouble ? RespondFromFiles<double>(image, shape, gaussian, param.k, result)
                                    : RespondFromFiles<float>(image, shape, gaussian, param.k, result);
  } catch (const std::bad_alloc&) {
    return kNoMemory;
  }
}

}  // namespace corvane
