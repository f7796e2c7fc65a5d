// Any bytes as an orientation file: places and images go through the photo that it makes, and what is written
// of it reads back, whatever its name.

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

#include "FuzzFolder.h"
#include "OpenGL/Stereo_2Cursor/AerialPhoto.h"
#include "OpenGL/Stereo_2Cursor/EpipolarPair.h"
#include "OpenGL/Stereo_2Cursor/PhotoIntersection.h"
#include "TIN/TINPoints.h"
#include "io/TextScanner.h"
#include "numerics/Angles.h"

namespace corvane {
namespace {

// That a number has been printed with six decimals and read. `size` is that of the numbers that it is a sum
// of, each of which is rounded.
void ExpectPrinted(double number, double from, double size) {
  constexpr double kRounding = 4.0 * std::numeric_limits<double>::epsilon();
  const bool isSame =
      std::isfinite(from) ? std::fabs(number - from) <= 0.51e-6 + kRounding * size : !std::isfinite(number);
  if (!isSame) std::abort();
}

void ExpectPrinted(double number, double from) {
  ExpectPrinted(number, from, std::fabs(from));
}

// The same for a shift: the file has it with the principal point in it.
void ExpectPrintedShift(double number, double from, double principal, double principalFrom) {
  const double size = std::fabs(from) + std::fabs(principalFrom);
  ExpectPrinted(number + principal, from + principalFrom, size);
}

void ExpectSame(const AerialPhoto& photo, const AerialPhoto& from) {
  ExpectPrinted(photo.focalLength, from.focalLength);
  ExpectPrinted(photo.perspectiveX, from.perspectiveX);
  ExpectPrinted(photo.perspectiveY, from.perspectiveY);
  ExpectPrinted(photo.perspectiveZ, from.perspectiveZ);
  ExpectPrinted(ToDegrees(photo.omega), ToDegrees(from.omega));
  ExpectPrinted(ToDegrees(photo.phi), ToDegrees(from.phi));
  ExpectPrinted(ToDegrees(photo.kappa), ToDegrees(from.kappa));
  const ConstMatrix a = photo.imageToPhoto.get();
  const ConstMatrix b = from.imageToPhoto.get();
  for (int i = 0; i < 2; ++i) {
    for (int j = 0; j < 2; ++j) ExpectPrinted(a[i][j], b[i][j]);
  }
  ExpectPrintedShift(a[0][2], b[0][2], photo.principalX, from.principalX);
  ExpectPrintedShift(a[1][2], b[1][2], photo.principalY, from.principalY);
  ExpectPrinted(photo.principalX, from.principalX);
  ExpectPrinted(photo.principalY, from.principalY);
  ExpectPrinted(photo.pixelSizeX, from.pixelSizeX);
  ExpectPrinted(photo.pixelSizeY, from.pixelSizeY);
}

void UsePlaces(AerialPhoto& photo, const AerialPhoto& other) {
  TINPoints points;
  points.AddPoint({0, 1000.0, 2000.0, 300.0, 1.0});
  points.AddPoint({1, -4000.0, 1e6, 0.0, 1.0});
  points.RecalcExtent();
  if (photo.ProjectPoints(points) != 1) std::abort();
  const double p[2] = {123.0, 456.0};
  const double q[2] = {321.0, 455.0};
  double out[3];
  double height = 100.0;
  Point3 point;
  photo.ComputeBase(other);
  photo.EpipolarLine(p, out);
  photo.Intersect(other, p, q, out);
  photo.FindPoint(out[0], out[1], 10.0);
  photo.SetViewWindow(out[0], out[1], 5, 5);
  RefineHeight(photo, other, p, q, height);
  IntersectMany({{{&photo, {p[0], p[1]}}, {&other, {q[0], q[1]}}}}, point);
}

// An image of 20 x 20 pixels of a unit, from (x, y) on.
void MakeImage(double x, double y, ErdasImg& image) {
  ErdasHeader header;
  header.cols = 20;
  header.rows = 20;
  header.xMap = static_cast<float>(x);
  header.yMap = static_cast<float>(y);
  if (image.Create(header, false) != 1) std::abort();
  image.Fill(7);
}

// An extent of 12 x 12 cells where the epipolar extent begins: as it stands it may be large, and take long.
void ResampleCorner(const AerialPhoto& source, AerialPhoto& epipolar, const EpipolarPair::Extent& extent,
                    double cell) {
  const double corner[6] = {extent[0], extent[4] - 12.5 * cell, extent[2], extent[0] + 12.5 * cell, extent[4],
                            extent[5]};
  if (epipolar.ResampleFrom(source, corner, cell) < 0 && epipolar.image.HasPixels()) std::abort();
}

void UseImages(AerialPhoto& photo, AerialPhoto& other) {
  MakeImage(0.0, 0.0, photo.image);
  MakeImage(0.0, 0.0, other.image);
  EpipolarPair pair(photo, other, 0.6);
  double extent[6] = {-5.0, -5.0, 1.0, 30.0, 30.0, 1.0};
  pair.left.MapExtentFrom(photo, extent);
  ResampleCorner(photo, pair.left, pair.leftExtent, pair.cell);
  ResampleCorner(other, pair.right, pair.rightExtent, pair.cell);

  Footprint footprint;
  photo.FootprintAtHeight({.left = 0.3, .right = 0.3, .top = 0.2, .bottom = 0.2}, 100.0, footprint);
  ErdasImg dem;
  ErdasImg output;
  MakeImage(photo.perspectiveX, photo.perspectiveY, dem);
  MakeImage(footprint[0], footprint[1], output);
  std::int64_t nPainted = -1;
  photo.OrthoFill(&footprint, false, &dem, &output, &nPainted);
  const Footprint inImage = {0.0, 0.0, 19.0, 0.0, 19.0, 19.0, 0.0, 19.0};
  photo.OrthoFill(&inImage, true, &dem, &output, &nPainted);
  if (nPainted < 0) std::abort();
}

}  // namespace
}  // namespace corvane

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace corvane;
  const std::string path = FuzzFile("in.orn", data, size);
  const std::string copy = FuzzPath("out.orn");
  AerialPhoto photo;
  if (photo.LoadOrientation(path) != 1) std::abort();
  photo.name.assign(data, data + std::min<std::size_t>(size, 20));
  if (photo.WriteOrientation(copy, photo.name) != 1) std::abort();
  AerialPhoto again;
  if (again.LoadOrientation(copy) != 1) std::abort();
  ExpectSame(again, photo);
  again.perspectiveX += 600.0;
  UsePlaces(photo, again);
  UseImages(photo, again);

  // A photo in use takes over what another file holds, in part or whole.
  TextScanner text({reinterpret_cast<const char*>(data), size});
  if (again.ReadOrientation(&text) != 1) std::abort();
  if (again.LoadOrientationChecked(path) != 1) std::abort();
  again.Recompute();
  UseImages(again, photo);
  return 0;
}
