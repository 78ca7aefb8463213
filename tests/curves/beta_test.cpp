#include <gtest/gtest.h>

#include <type_traits>
#include <vector>

#include "support/levels.h"
#include "support/points.h"
#include "zr/curves/curves.h"

namespace {

using V3 = zrTVec3<double>;
using Points = zrVector<V3>;
using zr_test::ExpectNear;
using zr_test::Of;

// An irregular polyline in space.
Points Wiggle() { return Of<Points>({{0, 0, 0}, {1, 2, 0.5}, {3, 1, -1}, {4, 4, 2}, {6, 3, 1}}); }

// n points on the circle of radius 10 about the origin, in the x-y plane.
constexpr auto Circle = [](int n) { return zr_test::Ring<Points>(n, 10, 10); };

template <class C>
class Beta : public ::testing::Test {};
using Shapes = ::testing::Types<BetaCurve, BetaContour>;
TYPED_TEST_SUITE(Beta, Shapes);

// Point j of five is met at t = j / 4 on the open curve and at j / 5 on the closed contour,
// which runs back into point 0 as t nears 1.
TYPED_TEST(Beta, PassesThroughItsPointsAndStoringTheSameControlsChangesNothing) {
  const bool closed = std::is_same_v<TypeParam, BetaContour>;
  const Points q = Wiggle();
  const int end = closed ? 0 : 4;
  for (double skew : {1.0, 0.7, 2.0}) {
    TypeParam c(q, skew, 1.5);
    for (int j = 0; j < 5; ++j) ExpectNear(c(j / (closed ? 5.0 : 4.0)), q[j], 1e-12);
    EXPECT_EQ(c(1.0), c(closed ? 0.0 : 1.0));
    ExpectNear(c(1 - 1e-9), q[end], 1e-6);  // continuous into its end
    ExpectNear(c(1e-9), q[0], 1e-6);
    const TypeParam before(c);
    for (int i = 0; i < c.GetControlNumber(); ++i) c.SetControl(i, c.GetControl(i));
    for (double t = 0.01; t < 1; t += 0.07) ExpectNear(c(t), before(t), 1e-12);
  }
}

// Larger systems take the banded solve, which must give the dense elimination's bits:
// pivots of both signs, zero coordinates of both signs, a singular skew and a NaN point.
TYPED_TEST(Beta, BandedSolveGivesTheDenseBits) {
  const int first = std::is_same_v<TypeParam, BetaContour> ? -2 : -1;
  for (int n : {16, 17, 41, 600})
    for (const auto& [skew, tension] : {std::pair{1.0, 0.0}, {0.4, -3.0}, {-1.5, 2.0}, {0.0, 1.0}})
      for (int nan_at : {-1, 7})
        zr_test::ExpectLevelsAgree([&] {
          Points q(n);
          for (int i = 0; i < n; ++i)
            q[i] = V3(3 * std::sin(1.7 * i), i % 4 ? (i % 2 ? -0.0 : 0.0) : std::sin(i),
                      i % 3 ? -0.0 : 0.0);
          if (nan_at >= 0) q[nan_at] = V3(NAN, 1, 1);
          const TypeParam c(q, skew, tension);
          std::vector<double> out;
          for (int i = first; i <= n; ++i)
            for (int k = 0; k < 3; ++k) out.push_back(c.GetControl(i)[k]);
          return out;
        });
}

TEST(BetaSplineTest, BlendFunctions) {
  // Skew 1 and tension 0 give the uniform cubic B-spline, here in closed form on every
  // piece, the knots and beyond.
  const BetaSpline s;
  for (double t = -2.5; t <= 2.5; t += 0.125) {
    const double x = std::fabs(t);
    const double b = x <= 1  ? (3 * x * x * x - 6 * x * x + 4) / 6
                     : x < 2 ? std::pow(2 - x, 3) / 6
                             : 0;
    EXPECT_NEAR(s.BetaBlend(t), b, 1e-15) << t;
  }
  EXPECT_TRUE(s.BetaBlend(NAN) == 0.0 && s.BetaBlendDeriv(-3) == 0.0 &&
              s.BetaBlendDeriv(2.5) == 0.0);

  // A shape far from it: a, the knot values B(1) = e, B(0) = l0, B(-1) = a, the
  // partition of unity, and the derivative of every piece, with the positive sign kept on
  // (1, 2]. A wrong coefficient breaks one of them.
  const BetaSpline g(2.0, 1.5);
  const double d = 2 * 8 + 4 * 4 + 4 * 2 + 1.5 + 2;
  EXPECT_DOUBLE_EQ(g.A(), 2 / d);
  EXPECT_TRUE(g.BetaBlend(1) == g.E() && g.BetaBlend(-1) == g.A() && g.BetaBlend(0) == g.L(0));
  for (double u = 0.05; u < 1; u += 0.1)
    EXPECT_NEAR(g.BetaBlend(u + 1) + g.BetaBlend(u) + g.BetaBlend(u - 1) + g.BetaBlend(u - 2), 1.0,
                1e-14)
        << u;
  for (double t = -1.95; t < 2; t += 0.1) {
    const double h = 1e-6, slope = (g.BetaBlend(t + h) - g.BetaBlend(t - h)) / (2 * h);
    EXPECT_NEAR(g.BetaBlendDeriv(t), t > 1 ? -slope : slope, 1e-7) << t;
  }
}

TEST(BetaCurveTest, EndsTangentsSmallCurvesLengthRebuildAndCrossection) {
  const Points q = Wiggle();
  BetaCurve c(q, 2.0, 0.5);
  EXPECT_EQ(c(-1), q[0]);
  // The ends are not normalised: (P2 - P1) 3a(1 + s) and (PN-2 - PN-3) 3(s^2 a + e).
  ExpectNear(c.GetTangent(-1), (c.GetControl(1) - c.GetControl(0)) * 9.0 * c.A(), 1e-13);
  const V3 end = (c.GetControl(4) - c.GetControl(3)) * 3.0 * (4 * c.A() + c.E());
  ExpectNear(c.GetTangent(2), end, 1e-13);
  EXPECT_NEAR(c.GetTangent(0.37).Norm(), 1.0, 1e-15);
  // Moved end points: the phantom ends follow, and the curve still runs into them.
  c.SetControl(0, V3(-1, 5, 2));
  c.SetControl(4, V3(7, -2, 0));
  c.SetControl(3, V3(5, 5, 5));
  ExpectNear(c(1e-9), V3(-1, 5, 2), 1e-6);
  ExpectNear(c(1 - 1e-9), V3(7, -2, 0), 1e-6);

  // Two points give the segment; none give NaN; one leaves the solver no unique solution.
  ExpectNear(BetaCurve(Of<Points>({{0, 0, 0}, {2, 4, 6}}))(0.5), V3(1, 2, 3));
  EXPECT_TRUE(std::isnan(BetaCurve(1.0, 0.0)(0.5).X()));
  EXPECT_EQ(zr_test::BadParametersText([] {
              BetaCurve(Of<Points>({{1, 2, 3}}));
            }),
            std::string("Invalid parameters : ") + zr::text::kSystemNotUnique);

  // Collinear, equally spaced points give the curve 2t along x.
  BetaCurve line(Of<Points>({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}}));
  for (double t : {0.0, 0.3, 1.0}) ExpectNear(line.GetTangent(t), V3(1, 0, 0));
  // 49 chords from C(0): the last 0.02 of the parameter is not measured.
  EXPECT_NEAR(line.GetLength(), 1.96, 1e-12);
  line.Rebuild(10);
  const int n = line.GetControlNumber();
  ASSERT_TRUE(n >= 6 && n <= 10) << n;
  ExpectNear(line(1), V3(2, 0, 0), 1e-12);
  // The samples are 0.196 apart along x within the search's tolerance (0.1 of the
  // parameter step 0.1), the end point after them.
  for (int i = 1; i + 1 < n; ++i)
    EXPECT_NEAR(line(i / (n - 1.0)).X() - line((i - 1) / (n - 1.0)).X(), 0.196, 0.01) << i;

  BetaCurve arc(Of<Points>({{0, 0, 0}, {1, 1, 0}, {2, 0, 0}}));
  BetaCurve same(arc);
  same.Rebuild(4);  // nothing happens unless m > 4
  for (double t = 0; t <= 1; t += 0.125) EXPECT_EQ(same(t), arc(t));
  // The vertical line x = 1 (the y form) meets the arch at its top.
  EXPECT_NEAR(arc.FindCrossection(V3(0, 1, 0), V3(1, -5, 0), 0.2), 0.5, 1e-6);
  // The horizontal line y = 0.5 (the x form) meets its rising side.
  const double t = arc.FindCrossection(V3(1, 0, 0), V3(-3, 0.5, 0), 0.1);
  EXPECT_TRUE(t > 0 && t < 0.5) << t;
  EXPECT_NEAR(arc(t).Y(), 0.5, 1e-3);
  EXPECT_EQ(arc.FindCrossection(V3(0, 0, 1), V3(1, 1, 0), 0.3), 0.0);
}

TEST(BetaContourTest, CopiesOfTheWrapTangentLengthAndRebuild) {
  // The wrap-around copies: Xn-2, Xn-1 in front, X0 behind.
  BetaContour c(Wiggle(), 1.3, 0.0);
  for (int i : {0, 3, 4}) c.SetControl(i, V3(9, 9, i));
  EXPECT_TRUE(c.GetControl(5) == V3(9, 9, 0) && c.GetControl(-2) == V3(9, 9, 3));
  EXPECT_TRUE(c.GetControl(-1) == V3(9, 9, 4) && c(1.0) == c(0.0) && c(-0.3) == c(0.0));
  // Small contours: one point is a constant, two points a closed back-and-forth.
  ExpectNear(BetaContour(Of<Points>({{1, 2, 3}}))(0.4), V3(1, 2, 3), 1e-15);
  const BetaContour two(Of<Points>({{0, 0, 0}, {2, 0, 0}}));
  ExpectNear(two(0.5), V3(2, 0, 0));
  ExpectNear(two(0), V3(0, 0, 0));

  // A circle's tangent runs along it, normalised. The contour measures itself with its own
  // evaluation: its length nears the perimeter.
  ExpectNear(BetaContour(Circle(12)).GetTangent(0), V3(0, 1, 0), 1e-12);
  BetaContour circle(Circle(7));
  EXPECT_NEAR(circle.GetLength(), 2 * M_PI * 10 * 0.98, 0.5);
  circle.Rebuild(16);
  const int n = circle.GetControlNumber();
  ASSERT_TRUE(n >= 14 && n <= 16) << n;
  for (int i = 0; i < n; ++i) EXPECT_NEAR(circle(static_cast<double>(i) / n).Norm(), 10, 0.1) << i;
  ExpectNear(circle(0), Circle(7)[0], 1e-12);
}

}  // namespace
