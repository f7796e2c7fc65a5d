// Any bytes as an orientation file: places go through the photo that it makes, and what is written of it
// reads back, whatever its name.

#include <cmath>
#include <cstdlib>
#include <limits>

#include "FuzzFolder.h"
#include "OpenGL/Stereo_2Cursor/AerialPhoto.h"
#include "OpenGL/Stereo_2Cursor/PhotoIntersection.h"
#include "TIN/TINPoints.h"

namespace corvane {
namespace {

// Whether a number has been printed with six decimals and read.
bool IsPrinted(double number, double from) {
  if (!std::isfinite(from)) return !std::isfinite(number);
  return std::fabs(number - from) <= 0.51e-6 + std::numeric_limits<double>::epsilon() * std::fabs(from);
}

void UsePhoto(AerialPhoto& photo, const AerialPhoto& other) {
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
  if (!IsPrinted(again.focalLength, photo.focalLength)) std::abort();
  if (!IsPrinted(again.perspectiveZ, photo.perspectiveZ)) std::abort();
  if (!IsPrinted(again.pixelSizeY, photo.pixelSizeY)) std::abort();
  again.perspectiveX += 600.0;
  UsePhoto(photo, again);
  return 0;
}
