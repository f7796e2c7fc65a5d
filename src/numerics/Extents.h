#pragma once

namespace corvane {

// An extent is the axis-parallel box around points of d coordinates: 2 d numbers, the d minima first.
//
// A NaN is neither smaller nor larger than anything: it replaces nothing, and where it stands first nothing
// replaces it. First is the first point, and `a` of two extents.

// The extent of n points, stored point after point. Without points (n <= 0 or d <= 0) `out` stays as it is.
void ExtentOfPoints(const double* points, int n, int d, double* out);

// The overlap of two extents in the plane (minX, minY, maxX, maxY). 1; 0, with `out` as it was, if they have
// none. Boxes that merely touch overlap, and a side that is NaN keeps nothing apart.
int IntersectExtents(const double a[4], const double b[4], double out[4]);

// Widens the extent a, in the plane, so that it holds b.
void UnionExtents(double a[4], const double b[4]);

// Turns a point (x, y) about the origin, counter-clockwise by `angle` radians.
void RotatePoint(double p[2], double angle);

// Replaces the extent e (x0, y0, x1, y1) by that of its four corners turned by RotatePoint.
void RotateExtent(double e[4], double angle);

}  // namespace corvane
