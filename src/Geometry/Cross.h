#pragma once

namespace corvane {

// Twice the signed plan area of the triangle a, b, p: positive if p lies to the left of the way from a to b,
// 0 if on its line. The one form of this expression: where a point is decided by its sign, every caller must
// get the same rounding.
template <typename A, typename B, typename P>
double Cross(const A& a, const B& b, const P& p) {
  return (b.x - a.x) * (p.y - a.y) - (p.x - a.x) * (b.y - a.y);
}

}  // namespace corvane
