#include "sample_survey/PhotoBlock.h"

#include <algorithm>
#include <cmath>

#include "sample_survey/GroundTone.h"

namespace corvane {

namespace {

// The ground's brightness is painted in squares of this side.
constexpr int kSquaresPerCell = 4;
constexpr double kSquare = GroundRaster::kCellSize / kSquaresPerCell;  // metres
constexpr std::int64_t kPaintCols = GroundRaster::kCols * kSquaresPerCell;
constexpr std::int64_t kPaintRows = GroundRaster::kRows * kSquaresPerCell;

// Between the cells of a raster whose first cell has its centre at (0, 0).
template <typename CellAt>
double Bilinear(double col, double row, std::int64_t nCols, std::int64_t nRows, CellAt cellAt) {
  const double atCol = std::clamp(col, 0.0, static_cast<double>(nCols - 1));
  const double atRow = std::clamp(row, 0.0, static_cast<double>(nRows - 1));
  const auto c = std::min(static_cast<std::int64_t>(atCol), nCols - 2);
  const auto r = std::min(static_cast<std::int64_t>(atRow), nRows - 2);
  const double fc = atCol - static_cast<double>(c);
  const double fr = atRow - static_cast<double>(r);
  const double lower = cellAt(r, c) * (1.0 - fc) + cellAt(r, c + 1) * fc;
  const double upper = cellAt(r + 1, c) * (1.0 - fc) + cellAt(r + 1, c + 1) * fc;
  return lower * (1.0 - fr) + upper * fr;
}

std::size_t PaintIndex(std::int64_t row, std::int64_t col) {
  return static_cast<std::size_t>(row * kPaintCols + col);
}

// Metres from the survey's corner of the centre of a square.
double SquareEast(std::int64_t col) {
  return GroundRaster::kEast + (static_cast<double>(col) + 0.5) * kSquare;
}
double SquareNorth(std::int64_t row) {
  return GroundRaster::kNorth + (static_cast<double>(row) + 0.5) * kSquare;
}

// The share of the light of level ground.
double Light(const GroundRaster& ground, double east, double north) {
  const double step = GroundRaster::kCellSize;
  const double slopeEast =
      (ground.HeightAt(east + step, north) - ground.HeightAt(east - step, north)) / (2.0 * step);
  const double slopeNorth =
      (ground.HeightAt(east, north + step) - ground.HeightAt(east, north - step)) / (2.0 * step);
  return SunLight(slopeEast, slopeNorth);
}

// Places from the survey's corner in metres, angles in degrees.
BlockPhoto PhotoAt(int strip, int photo) {
  constexpr double kFirstEast = 34.0;
  constexpr double kFirstNorth = 124.0;
  constexpr double kBase = 160.0;           // 40 % of the 400 metres that a photo shows
  constexpr double kStripDistance = 144.0;  // 36 %
  constexpr double kHeight = 785.0;
  // What the aeroplane strays by: omega, phi, kappa in degrees, east, north, up in metres.
  constexpr double kStray[PhotoBlock::kStrips][PhotoBlock::kPhotos][6] = {
      {{0.412, -0.873, 0.655, 2.318, -3.127, 4.566},
       {-0.731, 0.294, -0.518, -1.842, 2.655, -2.914},
       {0.186, 0.967, 1.137, 3.075, 1.438, 1.207}},
      {{-0.948, 0.535, -0.842, -2.561, -1.973, -4.382},
       {0.627, -0.381, 0.329, 1.296, 3.814, 3.043},
       {-0.273, -0.716, -1.264, -3.437, -2.269, -1.658}}};
  const double* const stray = kStray[strip][photo];
  const auto millionths = [](double degrees) {
    return static_cast<std::int64_t>(std::floor(degrees * 1e6 + 0.5));
  };
  return {.name = "s" + std::to_string(strip + 1) + "p" + std::to_string(photo + 1),
          .exterior = {.omega = millionths(stray[0]),
                       .phi = millionths(stray[1]),
                       .kappa = millionths(stray[2]),
                       .x = ToMillimetres(kSurveyWest + kFirstEast + photo * kBase + stray[3]),
                       .y = ToMillimetres(kSurveySouth + kFirstNorth + strip * kStripDistance + stray[4]),
                       .z = ToMillimetres(kHeight + stray[5])}};
}

}  // namespace

GroundRaster::GroundRaster(const Scene& scene) {
  for (std::int64_t row = 0; row < kRows; ++row) {
    for (std::int64_t col = 0; col < kCols; ++col) {
      const double x = kSurveyWest + kEast + (static_cast<double>(col) + 0.5) * kCellSize;
      const double y = kSurveySouth + kNorth + (static_cast<double>(row) + 0.5) * kCellSize;
      z_.push_back(static_cast<float>(scene.GroundHeight(x, y)));
    }
  }
}

double GroundRaster::HeightAt(double east, double north) const {
  return Bilinear((east - kEast) / kCellSize - 0.5, (north - kNorth) / kCellSize - 0.5, kCols, kRows,
                  [this](std::int64_t row, std::int64_t col) { return double{GetCell(row, col)}; });
}

GroundPlace SignalPoint::GetPlace() const {
  return {static_cast<double>(x) / 1000.0, static_cast<double>(y) / 1000.0, static_cast<double>(z) / 1000.0};
}

PhotoBlock::PhotoBlock(const SampleSurvey& survey)
    : seed_(survey.GetOptions().seed), ground_(survey.GetScene()) {
  for (int strip = 0; strip < kStrips; ++strip) {
    for (int photo = 0; photo < kPhotos; ++photo) photos_.push_back(PhotoAt(strip, photo));
  }
  PlaceSignals(seed_);
  PaintGround(survey);
  PaintSoil(seed_);
  for (const SignalPoint& point : signals_) PaintSignal(point);
}

// Tone and light change little from square to square: one value for 2 x 2 of them.
void PhotoBlock::PaintGround(const SampleSurvey& survey) {
  paint_.resize(static_cast<std::size_t>(kPaintRows * kPaintCols));
  for (std::int64_t row = 0; row < kPaintRows; row += 2) {
    for (std::int64_t col = 0; col < kPaintCols; col += 2) {
      const double east = SquareEast(col) + kSquare / 2.0;
      const double north = SquareNorth(row) + kSquare / 2.0;
      const auto value =
          static_cast<float>(GroundTone(survey.GetScene(), seed_, east, north) * Light(ground_, east, north));
      for (const std::int64_t dRow : {0, 1}) {
        for (const std::int64_t dCol : {0, 1}) paint_[PaintIndex(row + dRow, col + dCol)] = value;
      }
    }
  }
}

// Clods, tufts and patches of all sizes: bilinear noise on lattices of falling width.
void PhotoBlock::PaintSoil(std::uint64_t seed) {
  struct Octave {
    std::int64_t squares;  // of the lattice's width
    double strength;
  };
  constexpr Octave kOctaves[] = {{3, 17.0}, {6, 16.0}, {13, 12.0}, {29, 10.0}, {61, 9.0}};
  for (const Octave& octave : kOctaves) {
    const std::int64_t nCols = kPaintCols / octave.squares + 2;
    const auto latticeRow = [&](std::int64_t number) {
      std::vector<double> row;
      for (std::int64_t col = 0; col < nCols; ++col) {
        row.push_back(octave.strength * Grain(seed, Random::kSoil, number * 1000 + octave.squares, col));
      }
      return row;
    };
    std::vector<double> lower = latticeRow(0);
    std::vector<double> upper = latticeRow(1);
    for (std::int64_t row = 0; row < kPaintRows; ++row) {
      const std::int64_t number = row / octave.squares;
      if (row > 0 && row % octave.squares == 0) {
        lower.swap(upper);
        upper = latticeRow(number + 1);
      }
      const double fr = static_cast<double>(row % octave.squares) / static_cast<double>(octave.squares);
      for (std::int64_t col = 0; col < kPaintCols; ++col) {
        const auto c = static_cast<std::size_t>(col / octave.squares);
        const double fc = static_cast<double>(col % octave.squares) / static_cast<double>(octave.squares);
        const double value = (lower[c] * (1.0 - fc) + lower[c + 1] * fc) * (1.0 - fr) +
                             (upper[c] * (1.0 - fc) + upper[c + 1] * fc) * fr;
        paint_[PaintIndex(row, col)] += static_cast<float>(value);
      }
    }
  }
}

// In five columns and ten rows over what the photos show in pairs.
void PhotoBlock::PlaceSignals(std::uint64_t seed) {
  constexpr int kCols = 5;
  constexpr int kRows = 10;
  constexpr char kLetters[] = {'c', 'p', 'k'};
  int counts[3] = {};
  for (int row = 0; row < kRows; ++row) {
    for (int col = 0; col < kCols; ++col) {
      Random random(seed, Random::kSignal, row, col);
      const std::int64_t east = 22000 + col * 86000 + random.Between(-6000, 6000);
      const std::int64_t north = -45000 + row * 53000 + random.Between(-9000, 9000);
      const bool isControl = row % 3 == 0 && col % 2 == 0;
      const bool isCheck = !isControl && (row + col) % 2 == 0;
      const auto role = isControl ? SignalPoint::Role::Control
                        : isCheck ? SignalPoint::Role::Check
                                  : SignalPoint::Role::Pass;
      const double z =
          ground_.HeightAt(static_cast<double>(east) / 1000.0, static_cast<double>(north) / 1000.0);
      const std::string number = std::to_string(100 + ++counts[static_cast<int>(role)]).substr(1);
      signals_.push_back({.role = role,
                          .name = kLetters[static_cast<int>(role)] + number,
                          .x = ToMillimetres(kSurveyWest) + east,
                          .y = ToMillimetres(kSurveySouth) + north,
                          .z = ToMillimetres(z)});
    }
  }
}

// A white disc on a black one.
void PhotoBlock::PaintSignal(const SignalPoint& point) {
  constexpr double kWhite = 1.0;  // radii in metres
  constexpr double kBlack = 2.0;
  const double east = static_cast<double>(point.x) / 1000.0 - kSurveyWest;
  const double north = static_cast<double>(point.y) / 1000.0 - kSurveySouth;
  const auto firstCol = static_cast<std::int64_t>((east - kBlack - GroundRaster::kEast) / kSquare);
  const auto firstRow = static_cast<std::int64_t>((north - kBlack - GroundRaster::kNorth) / kSquare);
  const auto nSquares = static_cast<std::int64_t>(2.0 * kBlack / kSquare) + 2;
  for (std::int64_t row = firstRow; row < firstRow + nSquares; ++row) {
    for (std::int64_t col = firstCol; col < firstCol + nSquares; ++col) {
      const double dx = SquareEast(col) - east;
      const double dy = SquareNorth(row) - north;
      const double square = dx * dx + dy * dy;
      if (square > kBlack * kBlack) continue;
      paint_[PaintIndex(row, col)] = square > kWhite * kWhite ? 20.0f : 245.0f;
    }
  }
}

double PhotoBlock::BrightnessAt(double east, double north) const {
  return Bilinear(
      (east - GroundRaster::kEast) / kSquare - 0.5, (north - GroundRaster::kNorth) / kSquare - 0.5,
      kPaintCols, kPaintRows,
      [this](std::int64_t row, std::int64_t col) { return double{paint_[PaintIndex(row, col)]}; });
}

// Goes back and forth between the ray and the ground. Each step comes nearer by the slope of the ground times
// that of the ray: at most 1.2, in the scarp, times 0.6, in a corner of the photo.
double PhotoBlock::ExposeRay(const SampleCamera& camera, const PhotoPlace& place) const {
  constexpr double kNear = 0.0005;  // metres
  constexpr int kMostSteps = 100;
  const SampleCamera::Ray ray = camera.RayOf(place);
  const GroundPlace& centre = camera.GetCentre();
  double z = 285.0;
  double east = 0.0;
  double north = 0.0;
  for (int step = 0; step < kMostSteps; ++step) {
    east = centre.x - kSurveyWest + ray.east * (centre.z - z);
    north = centre.y - kSurveySouth + ray.north * (centre.z - z);
    const double height = ground_.HeightAt(east, north);
    if (std::abs(height - z) < kNear) break;
    z = height;
  }
  return BrightnessAt(east, north);
}

std::vector<std::uint8_t> PhotoBlock::Expose(std::size_t photo) const {
  constexpr double kNoise = 1.5;
  constexpr double kOffsets[] = {-0.25, 0.25};
  const SampleCamera camera(photos_[photo].exterior);
  const auto number = static_cast<std::int64_t>(photo);
  std::vector<std::uint8_t> pixels;
  pixels.reserve(std::size_t{SampleCamera::kSize} * SampleCamera::kSize);
  for (int row = 0; row < SampleCamera::kSize; ++row) {
    for (int col = 0; col < SampleCamera::kSize; ++col) {
      double sum = 0.0;
      for (const double dRow : kOffsets) {
        for (const double dCol : kOffsets) sum += ExposeRay(camera, {col + dCol, row + dRow});
      }
      const double noise =
          kNoise * Grain(seed_, Random::kSensor, -1 - number, std::int64_t{row} * SampleCamera::kSize + col);
      pixels.push_back(static_cast<std::uint8_t>(std::clamp(sum / 4.0 + noise + 0.5, 0.0, 255.0)));
    }
  }
  return pixels;
}

bool PhotoBlock::IsShown(const PhotoPlace& place) {
  constexpr double kMargin = 6.0;  // pixels
  const auto isWithin = [](double at) {
    return at >= kMargin && at <= static_cast<double>(SampleCamera::kSize - 1) - kMargin;
  };
  return isWithin(place.col) && isWithin(place.row);
}

}  // namespace corvane
