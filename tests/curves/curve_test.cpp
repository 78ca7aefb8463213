#include <gtest/gtest.h>

#include <cmath>
#include <initializer_list>

#include "support/test_support.h"
#include "zr/zr.h"

namespace {

zrCurve2D MakeCurve(std::initializer_list<zrVec2> points) {
  zrCurve2D c;
  for (const zrVec2& p : points) c.push_back(p);
  return c;
}

TEST(Curve2D, CenterAndRect) {
  zrCurve2D c = MakeCurve({{0, 0}, {2, 0}, {2, 2}, {0, 2}});
  EXPECT_STREQ(c.GetTypeString(), "zrCurve2D");
  EXPECT_EQ(c.GetCenter(), zrVec2(1, 1));
  zrCurve2D d = MakeCurve({{3, -1}, {-2, 4}, {1, 7}});
  const zrRect<zrVec2> r = d.GetRect();
  EXPECT_EQ(r.Min(), zrVec2(-2, -1));
  EXPECT_EQ(r.Max(), zrVec2(3, 7));
  EXPECT_EQ(d.GetCenter(), zrVec2(2.0 / 3.0, 10.0 / 3.0));
}

TEST(Curve2D, NearestAndFarthestPoints) {
  // Points 1 and 3 are equally near (1, 1); points 0 and 2 equally far.
  zrCurve2D c = MakeCurve({{0, 0}, {2, 1}, {1, 4}, {0, 1}, {1, -2}});
  double dist = 0;
  EXPECT_EQ(c.GetIndexOfMinDistance(dist, {1, 1}), 1);
  EXPECT_EQ(dist, 1.0);
  EXPECT_EQ(c.GetIndexOfMaxDistance(dist, {1, 1}), 2);
  EXPECT_EQ(dist, 3.0);
  EXPECT_EQ(c.GetIndexOfMinDistance(dist, {4, 5}), 2);
  EXPECT_EQ(dist, std::sqrt(10.0));
}

TEST(Curve2D, OneSidedHausdorffQuery) {
  zrCurve2D c = MakeCurve({{0, 0}, {1, 0}, {2, 0}, {3, 0}});
  // Point 2 of other lies farthest from this curve, nearest to point 1.
  zrCurve2D other = MakeCurve({{0, 0.5}, {3, -1}, {1.2, 2}, {2, 2}});
  int index = -1;
  EXPECT_EQ(c.GetIndexOfMaxDistance(index, other), 2);
  EXPECT_EQ(index, 1);
  // Ties keep the first point of other.
  zrCurve2D tie = MakeCurve({{3, 1}, {0, -1}});
  EXPECT_EQ(c.GetIndexOfMaxDistance(index, tie), 0);
  EXPECT_EQ(index, 3);
  // One point: 0, and the nearest point to it.
  EXPECT_EQ(c.GetIndexOfMaxDistance(index, MakeCurve({{2.2, 9}})), 0);
  EXPECT_EQ(index, 2);
  // The query is one-sided: swapping the curves asks another question.
  EXPECT_EQ(other.GetIndexOfMaxDistance(index, c), 2);
  EXPECT_EQ(index, 1);
}

TEST(Curve2D, SwapHandsTheBlockOver) {
  zrCurve2D c = MakeCurve({{0, 0}, {1, 1}});
  zrArray<zrVec2> view = c.Left(2);
  zrCurve2D other = MakeCurve({{1, 2}});
  c.swap(other);
  EXPECT_EQ(c.Len(), 1);
  EXPECT_EQ(other.GetPointer(), view.GetPointer());
}

}  // namespace

namespace {

using zr_test::BadParametersText;

const double kPi = std::acos(-1.0);

TEST(Curve2D, SplineTakesTheVertices) {
  zrCurve2D c(3);
  c[0] = zrVec2(0, 0);
  c[1] = zrVec2(1, 1);
  c[2] = zrVec2(2, 0);
  zrSpline<double> s;
  s.Set(c);
  EXPECT_EQ(s.GetNumberOfPoint(), 3);
  zrSimpleArray<int> codes(2);
  codes[0] = 0;
  codes[1] = 3;
  zrMatrix<double> values(2, 2);
  values.Fill(0);
  s.MkSpline3(codes, values);
  EXPECT_EQ(s(0.5), 0.6875);  // the natural spline through these three points
  EXPECT_EQ(BadParametersText([&] { s.Set(zrCurve2D(2)); }),
            "Invalid parameters : Spline: number of point must be >= 3");
  EXPECT_EQ(s(1.0), 1.0);  // a refused curve leaves the spline as it was
}

TEST(SplineCurve2D, Construction) {
  zrCurve2D three = MakeCurve({{0, 0}, {1, 1}, {2, 0}});
  EXPECT_EQ(BadParametersText([&] { zrSplineCurve2D s(three); }),
            "Invalid parameters : Spline must have 4 points at least");
  EXPECT_EQ(BadParametersText([&] {
              zrSplineCurve2D s(MakeCurve({{0, 0}, {1, 1}}), 1);
            }),
            "Invalid parameters : Spline must have 3 points at least");
  for (int type : {0, 3, -1}) {
    EXPECT_EQ(BadParametersText([&] { zrSplineCurve2D s(three, type); }),
              "Invalid parameters : zrSplineCurve2D: Wrong type");
  }
  // The nodes are evenly spread in t.
  zrSplineCurve2D s(MakeCurve({{0, 0}, {1, 1}, {5, 0}}), 2);
  EXPECT_EQ(s.X().GetNumberOfPoint(), 3);
  EXPECT_NEAR(s.X()(0.5), 1.0, 1e-12);
  // Type 1 takes the end chords' slopes: dx/dt = 2 at both ends, dy/dt = 2 then -2.
  zrSplineCurve2D clamped(three, 1);
  EXPECT_NEAR(clamped.X().Derivative(0.0, 1), 2.0, 1e-12);
  EXPECT_NEAR(clamped.Y().Derivative(0.0, 1), 2.0, 1e-12);
  EXPECT_NEAR(clamped.Y().Derivative(1.0, 1), -2.0, 1e-12);
  // Type 2 leaves the ends free of curvature.
  zrSplineCurve2D natural(three, 2);
  EXPECT_NEAR(natural.Y().Derivative(0.0, 2), 0.0, 1e-12);
  EXPECT_NEAR(natural.Y().Derivative(1.0, 2), 0.0, 1e-12);
}

TEST(SplineCurve2D, CopiesAreIndependent) {
  zrSplineCurve2D a(MakeCurve({{0, 0}, {1, 1}, {2, 0}}), 2);
  zrSplineCurve2D b(a);
  b = zrSplineCurve2D(MakeCurve({{0, 0}, {1, 5}, {2, 0}}), 2);
  EXPECT_NEAR(a.Y()(0.5), 1.0, 1e-12);
  EXPECT_NEAR(b.Y()(0.5), 5.0, 1e-12);
}

TEST(SplineCurve2D, Length) {
  // A straight, evenly spaced polyline: the speed is constant.
  zrSplineCurve2D line(MakeCurve({{0, 0}, {1, 0}, {2, 0}}), 1);
  EXPECT_NEAR(line.GetLengthOfCurve(), 2.0, 1e-3);
  // A closed curve through 16 points of the unit circle: close to 2 pi.
  zrCurve2D circle;
  for (int i = 0; i <= 16; ++i) {
    const double a = 2.0 * kPi * i / 16.0;
    circle.push_back(zrVec2(std::cos(a), std::sin(a)));
  }
  circle.Last() = circle[0];
  zrSplineCurve2D closed(circle);
  EXPECT_NEAR(closed.X()(0.0), 1.0, 1e-12);
  EXPECT_NEAR(closed.GetLengthOfCurve(), 2.0 * kPi, 2e-3);
  // The stopping rule compares successive estimates: a slow curve still ends.
  zrSplineCurve2D wavy(MakeCurve({{0, 0}, {1, 40}, {2, -40}, {3, 40}, {4, 0}}), 2);
  EXPECT_GT(wavy.GetLengthOfCurve(), 240.0);
}

}  // namespace
