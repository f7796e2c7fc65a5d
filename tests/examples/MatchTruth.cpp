#include "MatchTruth.h"

#include <cmath>
#include <stdexcept>

namespace corvane {

TrueGround::TrueGround(const std::string& path) {
  if (dem_.Read(path) != 1) throw std::runtime_error("no heights in " + path);
}

std::optional<double> TrueGround::HeightAt(double x, double y) const {
  const ErdasHeader& header = *dem_.GetHeader();
  const double col = (x - header.xMap) / header.xCell - 0.5;
  const double row = (y - header.yMap) / header.yCell - 0.5;
  const double col0 = std::floor(col);
  const double row0 = std::floor(row);
  if (!(col0 >= 0.0 && row0 >= 0.0 && col0 + 1.0 < header.cols && row0 + 1.0 < header.rows)) return {};
  double height = 0.0;
  for (int i = 0; i < 4; ++i) {
    double z = 0.0;
    const int down = i / 2;
    const int across = i % 2;
    dem_.GetPixel(0, static_cast<std::int32_t>(row0) + down, static_cast<std::int32_t>(col0) + across, z);
    height += (down ? row - row0 : 1.0 - (row - row0)) * (across ? col - col0 : 1.0 - (col - col0)) * z;
  }
  return height;
}

std::optional<Point3> TrueGround::Meet(const AerialPhoto& photo, const Point2& place) const {
  constexpr int kRounds = 60;
  const ErdasHeader& header = *dem_.GetHeader();
  const double p[2] = {place.x, place.y};
  double z = 0.0;
  dem_.GetPixel(0, header.rows / 2, header.cols / 2, z);
  for (int round = 0; round < kRounds; ++round) {
    Point3 point;
    photo.ImageToGround(p, z, point.x, point.y);
    const auto height = HeightAt(point.x, point.y);
    if (!height) return {};
    point.z = *height;
    if (std::fabs(*height - z) < 1e-6) return point;
    z = *height;
  }
  return {};
}

std::optional<Point2> TrueRight(const TrueGround& ground, const AerialPhoto& left, const AerialPhoto& right,
                                const Point2& place) {
  const auto point = ground.Meet(left, place);
  if (!point) return {};
  Point2 shown;
  right.GroundToImage(point->x, point->y, point->z, shown.x, shown.y);
  return shown;
}

ErrorFigures ErrorFigures::Of(const std::vector<double>& errors) {
  ErrorFigures figures;
  figures.count = errors.size();
  if (errors.empty()) return figures;
  const auto n = static_cast<double>(errors.size());
  double sum = 0.0;
  double sumSq = 0.0;
  double nOne = 0.0;
  double nTwo = 0.0;
  for (const double error : errors) {
    sum += error;
    sumSq += error * error;
    nOne += std::fabs(error) <= 1.0;
    nTwo += std::fabs(error) <= 2.0;
  }
  figures.mean = sum / n;
  figures.rms = std::sqrt(sumSq / n);
  figures.stdev = std::sqrt(std::fmax(sumSq / n - figures.mean * figures.mean, 0.0));
  figures.withinOne = nOne / n;
  figures.withinTwo = nTwo / n;
  return figures;
}

}  // namespace corvane
