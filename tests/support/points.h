// Point lists and closeness of points, for the geometry and curve tests.
#pragma once

#include <gtest/gtest.h>

#include <initializer_list>

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

// The points a and b (zrVec2 or zrTVec3<double>) lie within eps of each other.
template <class V>
void ExpectNear(const V& a, const V& b, double eps = 1e-14) {
  EXPECT_NEAR((a - b).Norm(), 0, eps);
}

}  // namespace zr_test
