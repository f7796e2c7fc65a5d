#pragma once

namespace corvane {

constexpr double kPi = 3.141592653589793;

// Angles are computed with in radians and written in degrees. The products are in this order.
constexpr double ToRadians(double degrees) {
  return degrees / 180.0 * kPi;
}
constexpr double ToDegrees(double radians) {
  return radians * 180.0 / kPi;
}

// The functions of the C library, but correctly rounded: the one double nearest to the true value (for
// results from 2^-1022 on; smaller ones may be the next but one), and so the same bits on every machine. (The
// C library's own ones come in several versions, of which it takes the one that fits the processor; their
// last bits differ.) NaN where those give it. Arguments in radians.
//
// Cost: some microseconds a call. Take them out of loops over pixels and points.
double Sin(double angle);
double Cos(double angle);
double Asin(double sine);
double Atan2(double y, double x);

}  // namespace corvane
