#include <gtest/gtest.h>

#include <cmath>

#include "support/test_support.h"
#include "zr/curves/curves.h"

namespace {

using V3 = zrTVec3<double>;

zrVector<V3> Points(std::initializer_list<V3> list) {
  zrVector<V3> v(static_cast<int>(list.size()));
  int i = 0;
  for (const V3& p : list) v[i++] = p;
  return v;
}

// An irregular open polyline in space.
zrVector<V3> Wiggle() {
  return Points({V3(0, 0, 0), V3(1, 2, 0.5), V3(3, 1, -1), V3(4, 4, 2), V3(6, 3, 1)});
}

// n points on the circle of radius 10 about the origin, in the x-y plane.
zrVector<V3> Circle(int n) {
  zrVector<V3> v(n);
  for (int i = 0; i < n; ++i)
    v[i] = V3(10 * std::cos(2 * M_PI * i / n), 10 * std::sin(2 * M_PI * i / n), 0);
  return v;
}

void ExpectNear(const V3& a, const V3& b, double tol) { EXPECT_NEAR((a - b).Norm(), 0, tol); }

TEST(BetaSplineTest, BlendFunctions) {
  // Skew 1 and tension 0 give the uniform cubic B-spline.
  const BetaSpline s;
  EXPECT_DOUBLE_EQ(s.A(), 1.0 / 6);
  EXPECT_DOUBLE_EQ(s.E(), 1.0 / 6);
  // The B-spline basis in closed form, on every piece, the knots and beyond.
  for (double t = -2.5; t <= 2.5; t += 0.125) {
    const double x = std::fabs(t);
    const double b = x <= 1  ? (3 * x * x * x - 6 * x * x + 4) / 6
                     : x < 2 ? (2 - x) * (2 - x) * (2 - x) / 6
                             : 0;
    EXPECT_NEAR(s.BetaBlend(t), b, 1e-15) << t;
  }
  EXPECT_EQ(s.BetaBlend(NAN), 0.0);
  EXPECT_EQ(s.BetaBlendDeriv(-3), 0.0);
  // The kept sign on (1, 2]: positive, +3e (2 - t)^2.
  EXPECT_DOUBLE_EQ(s.BetaBlendDeriv(1.5), 0.125);
  EXPECT_DOUBLE_EQ(s.BetaBlendDeriv(-1.5), 3 * s.A() * 0.25);
  EXPECT_DOUBLE_EQ(s.BetaBlendDeriv(0.5), -0.625);

  // Partition of unity and the knot values B(1) = e, B(0) = l0, B(-1) = a for a shape
  // far from the B-spline; a wrong coefficient breaks them.
  const BetaSpline g(2.0, 1.5);
  const double d = 2 * 8 + 4 * 4 + 4 * 2 + 1.5 + 2;
  EXPECT_DOUBLE_EQ(g.A(), 2 / d);
  EXPECT_DOUBLE_EQ(g.E(), 16 / d);
  EXPECT_DOUBLE_EQ(g.BetaBlend(1), g.E());
  EXPECT_DOUBLE_EQ(g.BetaBlend(-1), g.A());
  EXPECT_DOUBLE_EQ(g.BetaBlend(0), g.L(0));
  for (double u = 0.05; u < 1; u += 0.1) {
    const double sum =
        g.BetaBlend(u + 1) + g.BetaBlend(u) + g.BetaBlend(u - 1) + g.BetaBlend(u - 2);
    EXPECT_NEAR(sum, 1.0, 1e-14) << u;
  }
}

TEST(BetaCurveTest, PassesThroughItsPointsAndHoldsItsEnds) {
  for (double skew : {1.0, 0.7, 2.0}) {
    const zrVector<V3> q = Wiggle();
    const BetaCurve c(q, skew, 1.5);
    for (int j = 0; j < 5; ++j) ExpectNear(c(j / 4.0), q[j], 1e-12);
    EXPECT_EQ(c(-1), q[0]);
    EXPECT_EQ(c(1.0), q[4]);
    // Continuous into its ends from the inside.
    ExpectNear(c(1e-9), q[0], 1e-6);
    ExpectNear(c(1 - 1e-9), q[4], 1e-6);
  }
  // Points read with the vector's step: every other element of a longer vector.
  zrVector<V3> all = Points({V3(0, 0, 0), V3(9, 9, 9), V3(1, 1, 0), V3(9, 9, 9), V3(2, 0, 0)});
  zrVector<V3> strided;
  strided.Set(all, 0, 3, 2);
  ExpectNear(BetaCurve(strided)(0.5), V3(1, 1, 0), 1e-14);
  // Two points give the segment; none give NaN; one leaves the solver no unique solution.
  ExpectNear(BetaCurve(Points({V3(0, 0, 0), V3(2, 4, 6)}))(0.5), V3(1, 2, 3), 1e-14);
  EXPECT_TRUE(std::isnan(BetaCurve(1.0, 0.0)(0.5).X()));
  EXPECT_EQ(zr_test::BadParametersText([] { BetaCurve c(Points({V3(1, 2, 3)})); }),
            std::string("Invalid parameters : ") + zr::text::kSystemNotUnique);
}

TEST(BetaCurveTest, TangentsAndLength) {
  // Collinear, equally spaced points give the curve 2t along x.
  const BetaCurve line(Points({V3(0, 0, 0), V3(1, 0, 0), V3(2, 0, 0)}));
  for (double t : {0.0, 0.3, 1.0}) ExpectNear(line.GetTangent(t), V3(1, 0, 0), 1e-14);
  // The ends are not normalised: (P2 - P1) 3a(1 + s) and (PN-2 - PN-3) 3(s^2 a + e).
  const BetaCurve w(Wiggle(), 2.0, 0.5);
  ExpectNear(w.GetTangent(-1), (w.GetControl(1) - w.GetControl(0)) * 9.0 * w.A(), 1e-13);
  const V3 end = (w.GetControl(4) - w.GetControl(3)) * 3.0 * (4 * w.A() + w.E());
  ExpectNear(w.GetTangent(2), end, 1e-13);
  EXPECT_NEAR(w.GetTangent(0.37).Norm(), 1.0, 1e-15);
  // 49 chords from C(0): the last 0.02 of the parameter is not measured.
  EXPECT_NEAR(line.GetLength(), 1.96, 1e-12);
}

TEST(BetaCurveTest, SetControlKeepsThePhantomEndsOnTheEndConditions) {
  const zrVector<V3> q = Wiggle();
  BetaCurve c(q, 2.0, 0.5);
  const BetaCurve before(c);
  // Storing the same points changes nothing.
  for (int i = 0; i < c.GetControlNumber(); ++i) c.SetControl(i, c.GetControl(i));
  for (double t = 0.01; t < 1; t += 0.07) ExpectNear(c(t), before(t), 1e-12);
  // Moved end points: the curve still runs into them from the inside.
  const V3 first(-1, 5, 2);
  const V3 last(7, -2, 0);
  c.SetControl(0, first);
  c.SetControl(4, last);
  c.SetControl(3, V3(5, 5, 5));
  ExpectNear(c(1e-9), first, 1e-6);
  ExpectNear(c(1 - 1e-9), last, 1e-6);
}

TEST(BetaCurveTest, RebuildAndCrossection) {
  BetaCurve arc(Points({V3(0, 0, 0), V3(1, 1, 0), V3(2, 0, 0)}));
  BetaCurve same(arc);
  same.Rebuild(4);
  for (double t = 0; t <= 1; t += 0.125) EXPECT_EQ(same(t), arc(t));

  BetaCurve line(Points({V3(0, 0, 0), V3(1, 0, 0), V3(2, 0, 0)}));
  line.Rebuild(10);
  const int n = line.GetControlNumber();
  ASSERT_TRUE(n >= 6 && n <= 10) << n;
  ExpectNear(line(1), V3(2, 0, 0), 1e-12);
  // The samples are 0.196 apart along x within the search's tolerance (0.1 of the
  // parameter step 0.1), the end point after them.
  for (int i = 1; i + 1 < n; ++i)
    EXPECT_NEAR(line(i / (n - 1.0)).X() - line((i - 1) / (n - 1.0)).X(), 0.196, 0.01) << i;

  // The vertical line x = 1 (the y form) meets the arch at its top.
  EXPECT_NEAR(arc.FindCrossection(V3(0, 1, 0), V3(1, -5, 0), 0.2), 0.5, 1e-6);
  // The horizontal line y = 0.5 (the x form) meets its rising side.
  const double t = arc.FindCrossection(V3(1, 0, 0), V3(-3, 0.5, 0), 0.1);
  EXPECT_GT(t, 0);
  EXPECT_LT(t, 0.5);
  EXPECT_NEAR(arc(t).Y(), 0.5, 1e-3);
  EXPECT_EQ(arc.FindCrossection(V3(0, 0, 1), V3(1, 1, 0), 0.3), 0.0);
}

TEST(BetaContourTest, PassesThroughItsPointsAndCloses) {
  for (double skew : {1.0, 1.8}) {
    const zrVector<V3> q = Wiggle();
    const BetaContour c(q, skew, 0.5);
    for (int m = 0; m < 5; ++m) ExpectNear(c(m / 5.0), q[m], 1e-12);
    EXPECT_EQ(c(1.0), c(0.0));
    EXPECT_EQ(c(-0.3), c(0.0));
    ExpectNear(c(1 - 1e-9), q[0], 1e-6);
  }
  // A circle's tangent runs along it, normalised.
  ExpectNear(BetaContour(Circle(12)).GetTangent(0), V3(0, 1, 0), 1e-12);
  // Small contours: one point is a constant, two points a closed back-and-forth.
  ExpectNear(BetaContour(Points({V3(1, 2, 3)}))(0.4), V3(1, 2, 3), 1e-15);
  const BetaContour two(Points({V3(0, 0, 0), V3(2, 0, 0)}));
  ExpectNear(two(0.5), V3(2, 0, 0), 1e-14);
  ExpectNear(two(0), V3(0, 0, 0), 1e-14);
}

TEST(BetaContourTest, SetControlKeepsTheCopiesAndRebuild) {
  // The wrap-around copies: Xn-2, Xn-1 in front, X0 behind.
  BetaContour c(Wiggle(), 1.3, 0.0);
  for (int i : {0, 3, 4}) c.SetControl(i, V3(9, 9, i));
  EXPECT_EQ(c.GetControl(5), V3(9, 9, 0));
  EXPECT_EQ(c.GetControl(-2), V3(9, 9, 3));
  EXPECT_EQ(c.GetControl(-1), V3(9, 9, 4));
  EXPECT_EQ(c(1.0), c(0.0));

  BetaContour circle(Circle(7));
  const double len = circle.GetLength();
  // The contour measures itself with its own evaluation: its length nears the perimeter.
  EXPECT_NEAR(len, 2 * M_PI * 10 * 0.98, 0.5);
  circle.Rebuild(16);
  const int n = circle.GetControlNumber();
  ASSERT_TRUE(n >= 14 && n <= 16) << n;
  for (int i = 0; i < n; ++i) EXPECT_NEAR(circle(static_cast<double>(i) / n).Norm(), 10, 0.1) << i;
  ExpectNear(circle(0), Circle(7)[0], 1e-12);
  EXPECT_NEAR(circle.GetLength(), len, len * 0.01);
}

}  // namespace
