#include <gtest/gtest.h>

#include <cmath>

#include "support/points.h"
#include "zr/geometry/geometry.h"

namespace {

using zrGeom::Ray2D;
using zrGeom::Segment2D;
using zrGeom::StraightLine2D;
using V3 = zrTVec3<double>;
using zr_test::ExpectNear;

TEST(StraightLine2D, HesseFormSidesAndCrossings) {
  // The normal points from the origin toward the line; the side is measured against the
  // normal of the direction, right of it positive. Through the origin no sign step is taken.
  const struct {
    zrVec2 p1, p2, at;
    double a, b, c, na, nb, d, dist;
  } cases[] = {{{0, 1}, {1, 1}, {0, 0}, 0, 1, 1, 0, -1, -1, 1},
               {{0, 1}, {1, 1}, {0, 2}, 0, 1, 1, 0, -1, 1, -1},
               {{0, 0}, {3, 4}, {5, 0}, 0.8, -0.6, 0, 0.8, -0.6, 4, 4}};
  for (const auto& c : cases) {
    const StraightLine2D l(c.p1, c.p2);
    EXPECT_TRUE(l.GetA() == c.a && l.GetB() == c.b && l.GetC() == c.c && l.GetNA() == c.na &&
                l.GetNB() == c.nb && l.GetD(c.at) == c.d && l.GetDist(c.at) == c.dist)
        << &c - cases;
  }

  // Crossing lines, and the parallel threshold.
  const StraightLine2D horizontal(zrVec2(0, 2), zrVec2(5, 2));
  zrVec2 x(-9, -9);
  EXPECT_TRUE(IntersectLine2DLine2D(horizontal, StraightLine2D({3, -1}, {3, 8}), &x) &&
              x == zrVec2(3, 2));
  EXPECT_TRUE(IntersectLine2DLine2D(StraightLine2D({3, -1}, {1, 1}), horizontal, nullptr));
  // det 1e-11 is parallel, 1e-9 is not; a refused pair leaves out alone.
  const StraightLine2D axis(zrVec2(0, 0), zrVec2(1, 0));
  EXPECT_FALSE(IntersectLine2DLine2D(axis, StraightLine2D({0, 0}, {1, 1e-11}), &x));
  EXPECT_EQ(x, zrVec2(3, 2));
  EXPECT_TRUE(IntersectLine2DLine2D(axis, StraightLine2D({0, 0}, {1, 1e-9}), &x));
}

TEST(Ray2D, DirectionIsNormalisedAndHitsSegmentsAndPolylines) {
  EXPECT_EQ(Ray2D({1, 1}, {3, 4}, Ray2D::BY_DIRECTION).GetDir(), zrVec2(0.6, 0.8));
  EXPECT_EQ(Ray2D({1, 1}, {4, 5}, Ray2D::BY_POINTS).GetDir(), zrVec2(0.6, 0.8));

  // Against the segment (0, 0)-(0, 2): from an end point, across, at the far end, away,
  // beside it, and collinear (parallel).
  const Segment2D seg(zrVec2(0, 0), zrVec2(0, 2));
  const struct {
    zrVec2 start, dir;
    bool hit;
    zrVec2 at;
  } cases[] = {{{0, 0}, {1, 0}, true, {0, 0}},  {{-3, 1}, {1, 0}, true, {0, 1}},
               {{-3, 2}, {1, 0}, true, {0, 2}}, {{-3, 1}, {-1, 0}, false, {}},
               {{-3, 3}, {1, 0}, false, {}},    {{0, -1}, {0, 1}, false, {}}};
  for (const auto& c : cases) {
    zrVec2 x(-9, -9);
    EXPECT_EQ(Intersect(Ray2D(c.start, c.dir, Ray2D::BY_DIRECTION), seg, &x), c.hit);
    EXPECT_EQ(x, c.hit ? c.at : zrVec2(-9, -9));
  }

  // A zigzag whose first segment lies beyond the later ones along the ray: the nearest hit.
  const auto curve = zr_test::Of<zrSimpleArray<zrVec2>>({{5, -1}, {5, 1}, {2, -1}, {2, 1}});
  const Ray2D ray(zrVec2(0, 0), zrVec2(1, 0), Ray2D::BY_DIRECTION);
  zrVec2 x(-9, -9);
  EXPECT_TRUE(Intersect(ray, curve, &x) && x == zrVec2(2, 0) && Intersect(ray, curve, nullptr));
  EXPECT_FALSE(Intersect(Ray2D({0, 0}, {-1, 0}, Ray2D::BY_DIRECTION), curve, &x));
  EXPECT_FALSE(Intersect(ray, curve.Left(1), &x) || Intersect(ray, zrSimpleArray<zrVec2>(), &x));
  EXPECT_EQ(x, zrVec2(2, 0));
}

TEST(Ray3D, TransZFollowsTheRay) {
  EXPECT_EQ(zrGeom::Plane(V3(1, 2, 3), V3(0, 0, 2)).GetD(), -6);  // the normal as given

  const V3 p(1, 2, 3), dir(0, 3, 4);
  const zrTransformCoord3D t = zrGeom::Ray3D(p, dir).GetTransZ();
  ExpectNear(t.Transform(p), V3(0, 0, 0));
  ExpectNear(t.Transform(p + dir * 2), V3(0, 0, 10), 1e-13);  // not normalised
}

}  // namespace
