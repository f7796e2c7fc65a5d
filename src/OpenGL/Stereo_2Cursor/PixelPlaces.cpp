#include "OpenGL/Stereo_2Cursor/PixelPlaces.h"

#include <cstring>

#include "erdasimg/BandPixels.h"
#include "numerics/SimdVersion.h"

namespace corvane {

namespace {

// Some cells next to each other. `PixelPlaces` has room for whole packs.
template <std::size_t width>
struct CellPack {
  using Pack = SimdPack<double, width>;
  static constexpr auto kCells = static_cast<std::int32_t>(Pack::kLanes);
  static_assert(PixelPlaces::kMost % kCells == 0);
  typedef std::int32_t Numbers __attribute__((vector_size(kCells * sizeof(std::int32_t))));

  Pack u, v, w;  // homogeneous coordinates of the pixels

  // Stores the pixels at u / w + shift and v / w + shift.
  [[gnu::always_inline]] void Store(double shift, const PlaceLimits& limits, PixelPlaces& places,
                                    std::int32_t at) {
    u.lanes = u.lanes / w.lanes + shift;
    v.lanes = v.lanes / w.lanes + shift;
    Pack none;
    none.Fill(PixelPlaces::kNone);
    u.lanes = u.lanes >= limits.firstCol ? u.lanes : none.lanes;
    u.lanes = u.lanes < limits.endCol ? u.lanes : none.lanes;
    v.lanes = v.lanes >= limits.firstRow ? v.lanes : none.lanes;
    v.lanes = v.lanes < limits.endRow ? v.lanes : none.lanes;
    v.lanes = u.lanes > none.lanes ? v.lanes : none.lanes;
    const Numbers cols = __builtin_convertvector(u.lanes, Numbers);
    const Numbers rows = __builtin_convertvector(v.lanes, Numbers);
    std::memcpy(places.cols + at, &cols, sizeof cols);
    std::memcpy(places.rows + at, &rows, sizeof rows);
  }
};

struct MapKernel {
  template <std::size_t width>
  [[gnu::always_inline]] static inline void Run(ConstMatrix h, double row, double firstCol, std::int32_t n,
                                                const PlaceLimits* limits, PixelPlaces* places) {
    using Cells = CellPack<width>;
    double numbers[Cells::kCells];
    for (std::int32_t k = 0; k < Cells::kCells; ++k) numbers[k] = firstCol + k;
    typename Cells::Pack col;
    col.Load(numbers);
    const double rowU = h[0][1] * row;
    const double rowV = h[1][1] * row;
    const double rowW = h[2][1] * row;
    for (std::int32_t i = 0; i < n; i += Cells::kCells) {
      Cells cells;
      cells.u.lanes = h[0][0] * col.lanes + rowU + h[0][2];
      cells.v.lanes = h[1][0] * col.lanes + rowV + h[1][2];
      cells.w.lanes = h[2][0] * col.lanes + rowW + h[2][2];
      cells.Store(0.5, *limits, *places, i);
      col.lanes += static_cast<double>(Cells::kCells);
    }
  }
};

struct ProjectKernel {
  template <std::size_t width>
  [[gnu::always_inline]] static inline void Run(ConstMatrix p, const double* centre, const double* x,
                                                double y, const double* z, std::int32_t n,
                                                const PlaceLimits* limits, PixelPlaces* places) {
    using Cells = CellPack<width>;
    const double dy = y - centre[1];
    const double rowU = p[0][1] * dy;
    const double rowV = p[1][1] * dy;
    const double rowW = p[2][1] * dy;
    for (std::int32_t i = 0; i < n; i += Cells::kCells) {
      typename Cells::Pack dx, dz;
      dx.Load(x + i);
      dz.Load(z + i);
      dx.lanes -= centre[0];
      dz.lanes -= centre[2];
      Cells cells;
      cells.u.lanes = p[0][0] * dx.lanes + rowU + p[0][2] * dz.lanes;
      cells.v.lanes = p[1][0] * dx.lanes + rowV + p[1][2] * dz.lanes;
      cells.w.lanes = p[2][0] * dx.lanes + rowW + p[2][2] * dz.lanes;
      cells.Store(0.0, *limits, *places, i);
    }
  }
};

template <typename Pixel>
void TakeBand(const BandPixels<Pixel>& from, const PixelPlaces& places, std::int32_t n,
              const BandPixels<Pixel>& to, std::int64_t first) {
  const bool isPlain = from.IsPlain() && to.IsPlain();
  for (std::int32_t i = 0; i < n; ++i) {
    if (places.rows[i] == PixelPlaces::kNone) continue;
    const std::int64_t at = from.IndexOf(places.rows[i], places.cols[i]);
    if (isPlain) {
      to.SetPlain(first + i, from.GetPlain(at));
    } else {
      to.Set(first + i, from.Get(at));
    }
  }
}

}  // namespace

void MapCells(ConstMatrix h, std::int32_t row, std::int32_t firstCol, std::int32_t n,
              const PlaceLimits& limits, PixelPlaces& places) {
  RunSimd<MapKernel>(h, static_cast<double>(row), static_cast<double>(firstCol), n, &limits, &places);
}

void ProjectCells(ConstMatrix p, const double centre[3], const double* x, double y, const double* z,
                  std::int32_t n, const PlaceLimits& limits, PixelPlaces& places) {
  RunSimd<ProjectKernel>(p, centre, x, y, z, n, &limits, &places);
}

void TakePixels(const ErdasImg& from, const PixelPlaces& places, std::int32_t n, ErdasImg& to,
                std::int32_t row, std::int32_t firstCol) {
  WithPixelType(to.GetPackType(), [&](auto pixel) {
    using Pixels = BandPixels<decltype(pixel)>;
    for (std::int32_t band = 0; band < to.GetBandCount(); ++band) {
      const Pixels source(from, band < from.GetBandCount() ? band : -1);
      const Pixels target(to, band);
      TakeBand(source, places, n, target, target.IndexOf(row, firstCol));
    }
  });
}

}  // namespace corvane
