// Ground points projected into the image.

#include <algorithm>
#include <cmath>

#include "OpenGL/Stereo_2Cursor/AerialPhoto.h"
#include "TIN/TINPoints.h"
#include "numerics/Extents.h"
#include "numerics/Truncate.h"

namespace corvane {

namespace {

constexpr double kExtentMargin = 1000.0;  // pixels

// Kept: the image's start is cut to 16 bits here.
std::int16_t ShortStart(std::int32_t start) {
  return static_cast<std::int16_t>(start);
}

// The extent of the projected corners, (min col, min row, max col, max row), in columns and rows of the scan.
void ProjectExtent(const AerialPhoto& photo, const TINPoints& points, double extent[4]) {
  double corners[8][2];
  int n = 0;
  for (const double x : {points.minX, points.maxX}) {
    for (const double y : {points.minY, points.maxY}) {
      for (const double z : {points.minZ, points.maxZ}) {
        photo.GroundToImage(x, y, z, corners[n][0], corners[n][1]);
        ++n;
      }
    }
  }
  ExtentOfPoints(corners[0], n, 2, extent);
}

double WholePixels(double difference) {
  return std::fabs(static_cast<double>(TruncateSaturated(difference)));
}

// What a step (dx, 0) and a step (0, dy) below the perspective centre come to, in columns and in rows.
Point2 ProjectSpacing(const AerialPhoto& photo, double dx, double dy, double z) {
  const double x = photo.perspectiveX;
  const double y = photo.perspectiveY;
  double col = 0.0;
  double row = 0.0;
  double colAside = 0.0;
  double rowAhead = 0.0;
  double unused = 0.0;
  photo.GroundToImage(x, y, z, col, row);
  photo.GroundToImage(x + dx, y, z, colAside, unused);
  photo.GroundToImage(x, y + dy, z, unused, rowAhead);
  return {WholePixels(colAside - col), WholePixels(rowAhead - row)};
}

}  // namespace

PointRecord AerialPhoto::Projected(const PointRecord& point) const {
  PointRecord projected = point;
  GroundToImage(point.x, point.y, point.z, projected.x, projected.y);
  projected.x -= ShortStart(image.GetStart().x);
  projected.y -= ShortStart(image.GetStart().y);
  return projected;
}

int AerialPhoto::ProjectPoints(const TINPoints& points) {
  const std::int32_t n = points.GetCount();
  auto projected = std::make_unique<TINPoints>(n);
  if (projected->GetCount() < n) {
    groundPoints.reset();
    return -1;
  }
  for (std::int32_t i = 0; i < n; ++i) {
    projected->points[static_cast<std::size_t>(i)] = Projected(points.points[static_cast<std::size_t>(i)]);
  }

  double extent[4];
  ProjectExtent(*this, points, extent);
  const double xStart = ShortStart(image.GetStart().x);
  const double yStart = ShortStart(image.GetStart().y);
  projected->SetExtent(6, {.minX = extent[0] - (xStart + kExtentMargin),
                           .maxX = extent[2] - (xStart - kExtentMargin),
                           .minY = extent[1] - (yStart + kExtentMargin),
                           .maxY = extent[3] - (yStart - kExtentMargin),
                           .minZ = points.minZ,
                           .maxZ = points.maxZ});
  const Point2 spacing = ProjectSpacing(*this, points.spacingX, points.spacingY, points.minZ);
  projected->SetSpacing(spacing.x, spacing.y);
  groundPoints = std::move(projected);  // only now: `points` may have been these
  return 1;
}

int AerialPhoto::AddPoint(const PointRecord& point) {
  if (!groundPoints) return -1;
  const PointRecord projected = Projected(point);
  return groundPoints->SetPoint(point.id, projected.x, projected.y, point.z, point.value, point.id);
}

int AerialPhoto::RaiseToHeight(double difference, Point3& point) const {
  const double share = difference / (point.z - perspectiveZ);
  point.x += (point.x - perspectiveX) * share;
  point.y += (point.y - perspectiveY) * share;
  point.z += difference;
  return 1;
}

}  // namespace corvane
