// The command "Entropy Map".

#include <algorithm>
#include <array>
#include <cmath>
#include <exception>
#include <vector>

#include "StereoPair/DenseMaps.h"
#include "StereoPair/GridMatching.h"
#include "StereoPair/StereoPair.h"
#include "erdasimg/BandPixels.h"
#include "erdasimg/ImageFiles.h"
#include "erdasimg/PackType.h"
#include "forms/ValueInput.h"
#include "io/Paths.h"
#include "numerics/Truncate.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

const FileChooser kImageChooser{.filter = "Image Files (*.lan)|*.lan|All Files (*.*)|*.*|",
                                .title = "Choose a Image."};
constexpr double kStartSize = 19.0;

constexpr std::size_t kBins = 256;
constexpr std::size_t kNoBin = kBins;

// The bin of width 1 from 0 on in which a value falls.
template <typename Pixel>
std::size_t BinOf(Pixel pixel) {
  const auto value = static_cast<double>(pixel);
  return value >= 0.0 && value < double{kBins} ? static_cast<std::size_t>(value) : kNoBin;
}

// How many pixels of a window fall in each bin, and, behind the last, in none.
using Counts = std::array<std::int64_t, kBins + 1>;

// H = ln n - (sum of c ln c) / n over the bins of windows of n pixels, the terms added from the first bin on,
// as in HistogramEntropy: an empty bin adds 0. The sums of several windows are made side by side, as each
// addition has to wait for the one before it.
class WindowEntropies {
 public:
  static constexpr std::size_t kWindows = 8;

  explicit WindowEntropies(std::int64_t nPixels)
      : nPixels_(static_cast<double>(nPixels)), terms_(kBins * kWindows) {
    const std::size_t nKnown = static_cast<std::size_t>(std::min(nPixels, kMostKnown)) + 1;
    known_.resize(nKnown);
    for (std::size_t c = 1; c < nKnown; ++c) known_[c] = TermOf(static_cast<std::int64_t>(c));
  }

  // Takes the counts of window number 0 to kWindows - 1.
  void Set(std::size_t window, const Counts& counts) {
    for (std::size_t bin = 0; bin < kBins; ++bin) {
      const auto c = static_cast<std::size_t>(counts[bin]);
      terms_[bin * kWindows + window] = c < known_.size() ? known_[c] : TermOf(counts[bin]);
    }
  }

  std::array<double, kWindows> Get() const {
    std::array<double, kWindows> sums = {};
    for (std::size_t bin = 0; bin < kBins; ++bin) {
      for (std::size_t i = 0; i < kWindows; ++i) sums[i] += terms_[bin * kWindows + i];
    }
    for (double& sum : sums) sum = std::log(nPixels_) - sum / nPixels_;
    return sums;
  }

 private:
  static constexpr std::int64_t kMostKnown = 1 << 16;

  static double TermOf(std::int64_t count) {
    const auto c = static_cast<double>(count);
    return c * std::log(c);
  }

  double nPixels_;
  std::vector<double> known_;  // c ln c
  std::vector<double> terms_;  // kBins x kWindows
};

// Walks a window of size x size pixels over the image, which it never leaves: column `col` of the image is
// column col - size / 2 of the first window.
template <typename Pixel>
class EntropyWalk {
 public:
  EntropyWalk(const ErdasImg& image, std::int32_t size)
      : pixels_(image, 0), cols_(image.GetSize().cx), size_(size), entropies_(std::int64_t{size} * size) {}

  // The entropies of the windows that begin in the columns from 0 on. Rows come one after the other.
  void FillRow(std::int64_t top, std::vector<double>& values) {
    if (top == 0) {
      for (std::int64_t row = 0; row < size_; ++row) CountAlongRow(row, 1);
    } else {
      CountAlongRow(top - 1, -1);
      CountAlongRow(top - 1 + size_, 1);
    }
    Counts counts = firstCounts_;
    for (std::size_t i = 0; i < values.size(); i += WindowEntropies::kWindows) {
      const std::size_t n = std::min(values.size() - i, WindowEntropies::kWindows);
      for (std::size_t k = 0; k < n; ++k) {
        if (i + k > 0) MoveRight(top, static_cast<std::int64_t>(i + k), counts);
        entropies_.Set(k, counts);
      }
      std::copy_n(entropies_.Get().begin(), n, values.begin() + static_cast<std::ptrdiff_t>(i));
    }
  }

 private:
  std::size_t BinAt(std::int64_t row, std::int64_t col) const {
    return BinOf(pixels_.Get(row * cols_ + col));
  }

  // Adds one row of the first window, or takes it off.
  void CountAlongRow(std::int64_t row, std::int64_t sign) {
    for (std::int64_t col = 0; col < size_; ++col) firstCounts_[BinAt(row, col)] += sign;
  }

  // From the window that begins one column to the left.
  void MoveRight(std::int64_t top, std::int64_t left, Counts& counts) const {
    for (std::int64_t row = top; row < top + size_; ++row) {
      --counts[BinAt(row, left - 1)];
      ++counts[BinAt(row, left - 1 + size_)];
    }
  }

  BandPixels<Pixel> pixels_;
  std::int64_t cols_;
  std::int64_t size_;
  WindowEntropies entropies_;
  Counts firstCounts_ = {};
};

// Tells that so many of all rows are done, if that is another percentage than before.
void TellRows(std::int64_t nDone, std::int64_t nAll) {
  const std::int64_t percent = nDone * 100 / nAll;
  if (nDone > 0 && (nDone - 1) * 100 / nAll == percent) return;
  Ui().SetStatusText(0, "Done " + std::to_string(percent) + "% ...");
}

// The places are those at least half a window from every border.
template <typename Pixel>
void FillMap(const ErdasImg& image, std::int32_t size, ErdasImg& map) {
  const auto [nCols, nRows] = image.GetSize();
  const std::int32_t half = size / 2;
  if (nCols <= 2 * half) return;
  EntropyWalk<Pixel> walk(image, size);
  std::vector<double> values(static_cast<std::size_t>(nCols - 2 * half));
  for (std::int32_t row = half; row < nRows - half; ++row) {
    TellRows(row - half, nRows - 2 * half);
    walk.FillRow(row - half, values);
    map.SetPixelRow(0, row, half, values);
  }
}

// Null without memory.
std::unique_ptr<ErdasImg> EntropyMapOf(const ErdasImg& image, std::int32_t size) {
  auto map = MakeMap(image, kPackFloat);
  if (!map) return nullptr;
  try {
    WithPixelType(image.GetPackType(), [&](auto pixel) { FillMap<decltype(pixel)>(image, size, *map); });
  } catch (const std::exception&) {
    return nullptr;
  }
  return map;
}

// What the person should know of pixels whose values may lie outside of all bins.
std::string NoteOnBins(const ErdasImg& image) {
  return BytesOfPackType(image.GetPackType()) == 1 ? "" : " Values outside of 0 to 255 count in no bin.";
}

int Fail(const std::string& text) {
  ShowWarning(text);
  return StereoPair::kNoInput;
}

}  // namespace

int StereoPair::MakeEntropyMap() {
  const auto path = ChooseFile(kImageChooser);
  if (!path) return kCancelled;
  ErdasImg image;
  ReadImage(*path, image);
  if (!image.HasPixels()) return kNoInput;
  ValueInput window;
  window.title = "Please input the window size";
  window.value = kStartSize;
  if (!window.Ask()) return kCancelled;

  WaitCursor wait;
  const std::string result = DerivedName(*path, "_EntropyMap.lan");
  if (IsSameFile(result, *path)) return RefuseToReplace(result);
  const std::int32_t size = TruncateSaturated(window.value);
  const auto [nCols, nRows] = image.GetSize();
  if (size < 1 || size > std::min(nCols, nRows)) {
    return Fail("A window of " + std::to_string(size) + " pixels does not fit the image, which has " +
                std::to_string(nCols) + " columns and " + std::to_string(nRows) + " rows.");
  }
  const auto map = EntropyMapOf(image, size);
  if (!map) return Fail(ErdasImg::kNoMemoryText);
  ResultFiles files;
  WriteMap(result, *map, files);
  Ui().SetStatusText(0, "Entropies of " + std::to_string(size) + " x " + std::to_string(size) + " pixels." +
                            files.GetText() + NoteOnBins(image) + CutText(image));
  return files.GetStatus();
}

}  // namespace corvane
