#include <gtest/gtest.h>

#include "support/points.h"
#include "zr/zr.h"

namespace {

using zr_test::BadParametersText;
using zr_test::Of;

TEST(Curve2D, CenterRectAndDistances) {
  const zrCurve2D d = Of<zrCurve2D>({{3, -1}, {-2, 4}, {1, 7}});
  EXPECT_TRUE(d.GetRect().Min() == zrVec2(-2, -1) && d.GetRect().Max() == zrVec2(3, 7));
  EXPECT_EQ(d.GetCenter(), zrVec2(2.0 / 3.0, 10.0 / 3.0));

  // Points 1 and 3 are equally near (1, 1); points 0 and 2 equally far: the first wins.
  const zrCurve2D c = Of<zrCurve2D>({{0, 0}, {2, 1}, {1, 4}, {0, 1}, {1, -2}});
  double dist = 0;
  EXPECT_TRUE(c.GetIndexOfMinDistance(dist, {1, 1}) == 1 && dist == 1.0);
  EXPECT_TRUE(c.GetIndexOfMaxDistance(dist, {1, 1}) == 2 && dist == 3.0);

  // The one-sided query: point 2 of other lies farthest from this curve, nearest to point
  // 1; swapping the curves asks another question. Ties keep the first point of other; one
  // point gives 0 and the nearest point to it.
  const zrCurve2D line = Of<zrCurve2D>({{0, 0}, {1, 0}, {2, 0}, {3, 0}});
  const zrCurve2D other = Of<zrCurve2D>({{0, 0.5}, {3, -1}, {1.2, 2}, {2, 2}});
  const struct {
    const zrCurve2D &a, b;
    int farthest, nearest;
  } cases[] = {{line, other, 2, 1},
               {line, Of<zrCurve2D>({{3, 1}, {0, -1}}), 0, 3},
               {line, Of<zrCurve2D>({{2.2, 9}}), 0, 2},
               {other, line, 2, 1}};
  for (const auto& q : cases) {
    int index = -1;
    EXPECT_EQ(q.a.GetIndexOfMaxDistance(index, q.b), q.farthest);
    EXPECT_EQ(index, q.nearest);
  }
}

TEST(SplineCurve2D, SplinesTakeTheVerticesConstructionCopiesAndLength) {
  zrSpline<double> s;
  s.Set(Of<zrCurve2D>({{0, 0}, {1, 1}, {2, 0}}));
  zrMatrix<double> values(2, 2);
  values.Fill(0);
  s.MkSpline3(Of<zrSimpleArray<int>>({0, 3}), values);
  EXPECT_EQ(s(0.5), 0.6875);  // the natural spline through these three points
  EXPECT_EQ(BadParametersText([&] { s.Set(zrCurve2D(2)); }),
            "Invalid parameters : Spline: number of point must be >= 3");
  EXPECT_EQ(s(1.0), 1.0);  // a refused curve leaves the spline as it was

  // The curve of two splines.
  const zrCurve2D three = Of<zrCurve2D>({{0, 0}, {1, 1}, {2, 0}});
  EXPECT_EQ(BadParametersText([&] { zrSplineCurve2D s(three); }),
            "Invalid parameters : Spline must have 4 points at least");
  EXPECT_EQ(BadParametersText([&] { zrSplineCurve2D s(zrCurve2D(three.Left(2)), 1); }),
            "Invalid parameters : Spline must have 3 points at least");
  for (int type : {0, 3})
    EXPECT_EQ(BadParametersText([&] { zrSplineCurve2D s(three, type); }),
              "Invalid parameters : zrSplineCurve2D: Wrong type");
  // The nodes are evenly spread in t. Type 1 takes the end chords' slopes: dx/dt = 2 at both
  // ends, dy/dt = 2 then -2; type 2 leaves the ends free of curvature.
  EXPECT_NEAR(zrSplineCurve2D(Of<zrCurve2D>({{0, 0}, {1, 1}, {5, 0}}), 2).X()(0.5), 1.0, 1e-12);
  const zrSplineCurve2D clamped(three, 1), natural(three, 2);
  EXPECT_NEAR(clamped.X().Derivative(0.0, 1), 2.0, 1e-12);
  EXPECT_NEAR(clamped.Y().Derivative(1.0, 1), -2.0, 1e-12);
  EXPECT_NEAR(natural.Y().Derivative(0.0, 2), 0.0, 1e-12);
  EXPECT_NEAR(natural.Y().Derivative(1.0, 2), 0.0, 1e-12);
  zrSplineCurve2D copy(natural);  // copies are independent
  copy = zrSplineCurve2D(Of<zrCurve2D>({{0, 0}, {1, 5}, {2, 0}}), 2);
  EXPECT_TRUE(std::fabs(natural.Y()(0.5) - 1) < 1e-12 && std::fabs(copy.Y()(0.5) - 5) < 1e-12);

  // A straight, evenly spaced polyline: the speed is constant; a closed curve through 16
  // points of the unit circle: close to 2 pi. The stopping rule compares successive
  // estimates: a slow curve still ends.
  EXPECT_NEAR(zrSplineCurve2D(Of<zrCurve2D>({{0, 0}, {1, 0}, {2, 0}}), 1).GetLengthOfCurve(), 2.0,
              1e-3);
  zrCurve2D circle(17);
  for (int i = 0; i < 17; ++i) circle[i] = zrVec2(std::cos(M_PI * i / 8), std::sin(M_PI * i / 8));
  circle.Last() = circle[0];
  const zrSplineCurve2D closed(circle);
  EXPECT_NEAR(closed.GetLengthOfCurve(), 2.0 * M_PI, 2e-3);
  zrSplineCurve2D wavy(Of<zrCurve2D>({{0, 0}, {1, 40}, {2, -40}, {3, 40}, {4, 0}}), 2);
  EXPECT_GT(wavy.GetLengthOfCurve(), 240.0);
}

}  // namespace
