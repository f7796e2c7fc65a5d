// Orthophotos.

#include <algorithm>
#include <exception>
#include <vector>

#include "OpenGL/Stereo_2Cursor/AerialPhoto.h"
#include "OpenGL/Stereo_2Cursor/ImageProgress.h"
#include "OpenGL/Stereo_2Cursor/PixelPlaces.h"
#include "erdasimg/BandPixels.h"
#include "io/Paths.h"
#include "numerics/Truncate.h"

namespace corvane {

namespace {

constexpr std::int32_t kMost = PixelPlaces::kMost;

// The pixel number of a coordinate cut towards zero; -1 outside of `n` pixels.
std::int32_t PixelNumber(double coordinate, std::int32_t n) {
  return coordinate > -1.0 && coordinate < n ? static_cast<std::int32_t>(coordinate) : -1;
}

// X of an image's cells, and the columns of the DEM there, -1 beyond it. X runs along a row by additions,
// from where the run begins. Two runs that agree in one cell agree in all that follow, so that what the run
// from column 0 gives serves nearly all others.
class CellColumns {
 public:
  CellColumns(const ErdasHeader& image, const ErdasHeader& dem)
      : dem_(dem),
        xMap_(image.xMap),
        xCell_(image.xCell),
        nHeld_(std::min(image.cols, kMostHeld)),
        heldX_(static_cast<std::size_t>(nHeld_) + kMost),
        heldDemCols_(heldX_.size()),
        ownX_(kMost),
        ownDemCols_(kMost) {
    Run(XOf(0), nHeld_ + 1, heldX_.data(), heldDemCols_.data());
  }

  // X in which a run begins.
  double XOf(std::int32_t col) const { return col * xCell_ + xMap_; }

  // Moves to the next `n` cells of a run, n <= kMost, the first of which is `col` at `x`; x then is that of
  // the cell behind them. The numbers have room for kMost.
  void MoveTo(std::int32_t col, std::int32_t n, double& x) {
    const bool isHeld = col <= nHeld_ - n && heldX_[static_cast<std::size_t>(col)] == x;
    x_ = isHeld ? heldX_.data() + col : ownX_.data();
    demCols_ = isHeld ? heldDemCols_.data() + col : ownDemCols_.data();
    x = isHeld ? heldX_[static_cast<std::size_t>(col + n)] : Run(x, n, ownX_.data(), ownDemCols_.data());
  }

  const double* GetX() const { return x_; }
  const std::int32_t* GetDemCols() const { return demCols_; }

 private:
  static constexpr std::int32_t kMostHeld = 1 << 20;

  // Returns the X behind the last.
  double Run(double x, std::int32_t n, double* xs, std::int32_t* demCols) const {
    for (std::int32_t i = 0; i < n; ++i, x += xCell_) xs[i] = x;
    for (std::int32_t i = 0; i < n; ++i) {
      demCols[i] = PixelNumber((xs[i] - dem_.xMap) / dem_.xCell, dem_.cols);
    }
    return x;
  }

  const ErdasHeader& dem_;
  double xMap_;
  double xCell_;
  std::int32_t nHeld_;
  std::vector<double> heldX_;  // of all columns, and the one behind them
  std::vector<std::int32_t> heldDemCols_;
  std::vector<double> ownX_;
  std::vector<std::int32_t> ownDemCols_;
  const double* x_ = nullptr;
  const std::int32_t* demCols_ = nullptr;
};

// Heights along a run of cells in one row of the DEM, or beyond it.
class RunHeights {
 public:
  RunHeights(const ErdasImg& dem, double y) : dem_(dem) {
    const ErdasHeader& header = *dem.GetHeader();
    row_ = PixelNumber(-((header.yMap - y) / header.yCell), header.rows);
  }

  // The heights of the next `n` cells. Where there is none it is that of the cell before, at first 0.0.
  void Next(const std::int32_t* demCols, std::int32_t n, double* heights) {
    if (row_ < 0) {
      std::fill_n(heights, n, last_);
      return;
    }
    WithPixelType(dem_.GetPackType(), [&](auto pixel) {
      const BandPixels<decltype(pixel)> pixels(dem_, 0);
      const std::int64_t first = pixels.IndexOf(row_, 0);
      for (std::int32_t i = 0; i < n; ++i) {
        if (demCols[i] >= 0) last_ = static_cast<double>(pixels.Get(first + demCols[i]));
        heights[i] = last_;
      }
    });
  }

 private:
  const ErdasImg& dem_;
  std::int32_t row_;
  double last_ = 0.0;
};

// What the image holds of the whole scan, in the scan's coordinates.
PlaceLimits LimitsOf(const ErdasHeader& header) {
  constexpr double kFirst = -2147483647.0;
  constexpr double kEnd = 2147483648.0;
  const double xStart = header.xStart;
  const double yStart = header.yStart;
  return {std::max(xStart, kFirst), std::min(xStart + header.cols, kEnd), std::max(yStart, kFirst),
          std::min(yStart + header.rows, kEnd)};
}

// Paints runs of cells with the pixels of one photo.
class OrthoPainter {
 public:
  OrthoPainter(const AerialPhoto& photo, const ErdasImg& dem, ErdasImg& output)
      : photo_(photo),
        dem_(dem),
        output_(output),
        limits_(LimitsOf(*photo.image.GetHeader())),
        columns_(*output.GetHeader(), *dem.GetHeader()),
        heights_(kMost),
        values_(static_cast<std::size_t>(std::max(photo.image.GetBandCount(), output.GetBandCount()))) {
    isPlain_ = photo.image.GetStart() == ImageStart{} && photo.image.GetPackType() == output.GetPackType();
  }

  void PaintRow(const ScanRow& scanRow) {
    const std::int32_t row = TruncateSaturated(scanRow.y);
    const auto crossings = scanRow.GetCrossings();
    for (std::size_t k = 0; k + 1 < crossings.size(); k += 2) {
      PaintRun(row, std::max(TruncateSaturated(crossings[k]), 0),
               std::min(TruncateSaturated(crossings[k + 1]), output_.GetSize().cx - 1));
    }
  }

  std::int64_t GetPaintedCount() const { return nPainted_; }

 private:
  // From column c0 to c1, both included.
  void PaintRun(std::int32_t row, std::int32_t c0, std::int32_t c1) {
    const ErdasHeader& header = *output_.GetHeader();
    const double y = row * double{header.yCell} + header.yMap;
    const double centre[3] = {photo_.perspectiveX, photo_.perspectiveY, photo_.perspectiveZ};
    RunHeights heights(dem_, y);
    double x = columns_.XOf(c0);
    for (std::int32_t col = c0; col <= c1;) {
      const std::int32_t n = std::min(c1 - col, kMost - 1) + 1;
      columns_.MoveTo(col, n, x);
      heights.Next(columns_.GetDemCols(), n, heights_.data());
      ProjectCells(photo_.groundToImage.get(), centre, columns_.GetX(), y, heights_.data(), n, limits_,
                   places_);
      nPainted_ += std::count_if(places_.rows, places_.rows + n,
                                 [](std::int32_t place) { return place != PixelPlaces::kNone; });
      Paint(row, col, n);
      col += n;
    }
  }

  void Paint(std::int32_t row, std::int32_t firstCol, std::int32_t n) {
    if (isPlain_) {
      TakePixels(photo_.image, places_, n, output_, row, firstCol);
      return;
    }
    for (std::int32_t i = 0; i < n; ++i) {
      if (places_.rows[i] == PixelPlaces::kNone) continue;
      // Kept: coordinates of the scan are taken for pixels of the image. Where there is no such pixel the one
      // before is painted again.
      photo_.image.GetPixels(places_.rows[i], places_.cols[i], values_.data());
      output_.SetPixels(row, firstCol + i, values_.data());
    }
  }

  const AerialPhoto& photo_;
  const ErdasImg& dem_;
  ErdasImg& output_;
  PlaceLimits limits_;
  CellColumns columns_;
  std::vector<double> heights_;
  std::vector<double> values_;  // of one pixel, in all bands of either image
  bool isPlain_;                // whether pixels are copied as they are
  PixelPlaces places_;
  std::int64_t nPainted_ = 0;
};

// Paints all rows; as OrthoFill. Few rows of the footprint are held at a time.
int PaintFootprint(const Footprint& footprint, OrthoPainter& painter, const ErdasHeader& header,
                   const ImageProgress& progress) {
  constexpr std::int32_t kRowsAtOnce = 1024;
  for (std::int32_t first = 0; first < header.rows;) {
    const std::int32_t last = first + std::min(header.rows - first, kRowsAtOnce) - 1;
    ScanRegion region;
    const int status = RasterizePolygonRows(4, footprint.data(), header.xMap, header.yMap, header.yCell,
                                            header.xCell, first, last, region);
    for (const ScanRow& row : region.GetRows()) painter.PaintRow(row);
    if (status < 0) return 0;
    first = last + 1;
    progress.Tell(first, header.rows);
  }
  return 1;
}

}  // namespace

void AerialPhoto::FootprintAtHeight(const CropFractions& fractions, double z, Footprint& out) const {
  const ErdasHeader& header = *image.GetHeader();
  const double top = header.yStart + header.rows * fractions.top;
  const double left = header.xStart + header.cols * fractions.left;
  const double bottom = header.yStart + header.rows * (1.0 - fractions.bottom);
  const double right = header.xStart + header.cols * (1.0 - fractions.right);
  const double corners[4][2] = {{top, left}, {bottom, left}, {bottom, right}, {top, right}};
  for (std::size_t i = 0; i < 4; ++i) ImageToGround(corners[i], z, out[2 * i], out[2 * i + 1]);
}

int AerialPhoto::OrthoFill(const Footprint* footprint, bool footprintIsInImage, const ErdasImg* dem,
                           ErdasImg* output, std::int64_t* nPainted) const {
  if (nPainted) *nPainted = 0;
  if (!footprint || !dem || !output) return 0;
  Footprint ground = *footprint;
  if (footprintIsInImage) {
    double z = 0.0;
    dem->GetPixelXY(0, perspectiveX, perspectiveY, z);
    for (std::size_t i = 0; i < ground.size(); i += 2) {
      ImageToGround(footprint->data() + i, z, ground[i], ground[i + 1]);
    }
  }
  if (output->GetSize().cx <= 0) return 1;
  try {
    OrthoPainter painter(*this, *dem, *output);
    const ImageProgress progress("Orthophoto: " + FileName(name), output->GetSize());
    const int status = PaintFootprint(ground, painter, *output->GetHeader(), progress);
    if (nPainted) *nPainted = painter.GetPaintedCount();
    return status;
  } catch (const std::exception&) {  // no memory
    return 0;
  }
}

}  // namespace corvane
