// Point lists and closeness of points, for the geometry and curve tests.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <initializer_list>

#include "support/test_support.h"
#include "zr/values/values.h"

namespace zr_test {

// An array of the given points: Of<zrSimpleContour2D>({{0, 0}, {1, 0}}).
template <class A>
A Of(std::initializer_list<typename A::value_type> list) {
  A a(static_cast<int>(list.size()));
  int i = 0;
  for (const auto& p : list) a[i++] = p;
  return a;
}

// The point (x, y) in the plane, or at z = 0 in space.
inline void SetPoint(zrVec2& p, double x, double y) { p = zrVec2(x, y); }
inline void SetPoint(zrTVec3<double>& p, double x, double y) { p = zrTVec3<double>(x, y, 0); }

// n points of the ellipse with half axes rx, ry about the origin, counter-clockwise from
// (rx, 0): a contour, a curve or a vector of space points.
template <class A>
A Ring(int n, double rx, double ry) {
  A a(n);
  for (int i = 0; i < n; ++i)
    SetPoint(a[i], rx * std::cos(2 * M_PI * i / n), ry * std::sin(2 * M_PI * i / n));
  return a;
}

// The points a and b (zrVec2 or zrTVec3<double>) lie within eps of each other.
template <class V>
void ExpectNear(const V& a, const V& b, double eps = 1e-14) {
  EXPECT_NEAR((a - b).Norm(), 0, eps);
}

}  // namespace zr_test
