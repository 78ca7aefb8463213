#include <gtest/gtest.h>

#include <cmath>

#include "support/test_support.h"
#include "zr/geometry/geometry.h"

namespace {

using zrGeom::Ray2D;
using zrGeom::Segment2D;
using zrGeom::StraightLine2D;

void ExpectNear(const zrTVec3<double>& a, const zrTVec3<double>& b, double eps = 1e-14) {
  for (int i = 0; i < 3; ++i) EXPECT_NEAR(a[i], b[i], eps) << "component " << i;
}

TEST(StraightLine2D, HesseFormAndSides) {
  const StraightLine2D up(zrVec2(0, 1), zrVec2(1, 1));
  EXPECT_EQ(up.GetA(), 0);
  EXPECT_EQ(up.GetB(), 1);
  EXPECT_EQ(up.GetC(), 1);
  EXPECT_EQ(up.GetNA(), 0);
  EXPECT_EQ(up.GetNB(), -1);
  EXPECT_EQ(up.GetD(zrVec2(0, 0)), -1);
  EXPECT_EQ(up.GetDist(zrVec2(0, 0)), 1);  // right of the direction (1, 0)
  EXPECT_EQ(up.GetDist(zrVec2(0, 2)), -1);
  EXPECT_EQ(up.GetDist(zrVec2(7, 1)), 0);

  const StraightLine2D below(zrVec2(1, -1), zrVec2(0, -1));
  EXPECT_EQ(below.GetA(), 0);
  EXPECT_EQ(below.GetB(), -1);
  EXPECT_EQ(below.GetC(), 1);
  EXPECT_EQ(below.GetDist(zrVec2(0, 0)), 1);

  // Through the origin c is 0 and no sign step is taken.
  const StraightLine2D diag(zrVec2(0, 0), zrVec2(3, 4));
  EXPECT_EQ(diag.GetC(), 0);
  EXPECT_DOUBLE_EQ(diag.GetA(), 0.8);
  EXPECT_DOUBLE_EQ(diag.GetB(), -0.6);
  EXPECT_DOUBLE_EQ(diag.GetDist(zrVec2(5, 0)), 4);
  EXPECT_DOUBLE_EQ(diag.GetDist(zrVec2(-5, 0)), -4);
}

TEST(IntersectLine2DLine2D, CrossingAndParallelThreshold) {
  const StraightLine2D horizontal(zrVec2(0, 2), zrVec2(5, 2));
  const StraightLine2D vertical(zrVec2(3, -1), zrVec2(3, 8));
  zrVec2 x(-9, -9);
  EXPECT_TRUE(IntersectLine2DLine2D(horizontal, vertical, &x));
  EXPECT_EQ(x, zrVec2(3, 2));
  EXPECT_TRUE(IntersectLine2DLine2D(horizontal, vertical, nullptr));

  const StraightLine2D axis(zrVec2(0, 0), zrVec2(1, 0));
  const StraightLine2D nearly(zrVec2(0, 0), zrVec2(1, 1e-11));  // det 1e-11
  zrVec2 untouched(-9, -9);
  EXPECT_FALSE(IntersectLine2DLine2D(axis, nearly, &untouched));
  EXPECT_EQ(untouched, zrVec2(-9, -9));
  EXPECT_TRUE(IntersectLine2DLine2D(axis, StraightLine2D(zrVec2(0, 0), zrVec2(1, 1e-9)), &x));
  EXPECT_FALSE(IntersectLine2DLine2D(horizontal, StraightLine2D(zrVec2(0, 7), zrVec2(1, 7)), &x));
}

TEST(Ray2D, DirectionIsNormalised) {
  const Ray2D by_dir(zrVec2(1, 1), zrVec2(3, 4), Ray2D::BY_DIRECTION);
  EXPECT_EQ(by_dir.GetPoint(), zrVec2(1, 1));
  EXPECT_EQ(by_dir.GetDir(), zrVec2(0.6, 0.8));
  EXPECT_EQ(Ray2D(zrVec2(1, 1), zrVec2(4, 5), Ray2D::BY_POINTS).GetDir(), zrVec2(0.6, 0.8));
  // Any value but 0 means a second point.
  EXPECT_EQ(Ray2D(zrVec2(1, 1), zrVec2(1, -1), static_cast<Ray2D::INIT_TYPE>(7)).GetDir(),
            zrVec2(0, -1));
}

TEST(Ray2D, AgainstASegment) {
  const Segment2D seg(zrVec2(0, 0), zrVec2(0, 2));
  zrVec2 x;
  // Starting on an end point, pointing along, across, away.
  EXPECT_TRUE(Intersect(Ray2D(zrVec2(0, 0), zrVec2(1, 0), Ray2D::BY_DIRECTION), seg, &x));
  EXPECT_EQ(x, zrVec2(0, 0));
  EXPECT_TRUE(Intersect(Ray2D(zrVec2(-3, 1), zrVec2(1, 0), Ray2D::BY_DIRECTION), seg, &x));
  EXPECT_EQ(x, zrVec2(0, 1));
  EXPECT_TRUE(Intersect(Ray2D(zrVec2(-3, 2), zrVec2(1, 0), Ray2D::BY_DIRECTION), seg, nullptr));
  EXPECT_FALSE(Intersect(Ray2D(zrVec2(-3, 1), zrVec2(-1, 0), Ray2D::BY_DIRECTION), seg, &x));
  EXPECT_FALSE(Intersect(Ray2D(zrVec2(-3, 3), zrVec2(1, 0), Ray2D::BY_DIRECTION), seg, &x));
  // Collinear rays count as parallel.
  EXPECT_FALSE(Intersect(Ray2D(zrVec2(0, -1), zrVec2(0, 1), Ray2D::BY_DIRECTION), seg, &x));
}

TEST(Ray2D, AgainstAPolylineKeepsTheNearestHit) {
  // A zigzag whose first segment lies beyond the later ones along the ray.
  zrArray<zrVec2> curve(4);
  curve[0] = zrVec2(5, -1);
  curve[1] = zrVec2(5, 1);
  curve[2] = zrVec2(2, -1);
  curve[3] = zrVec2(2, 1);
  const Ray2D ray(zrVec2(0, 0), zrVec2(1, 0), Ray2D::BY_DIRECTION);
  zrVec2 x(-9, -9);
  EXPECT_TRUE(Intersect(ray, curve, &x));
  EXPECT_EQ(x, zrVec2(2, 0));
  EXPECT_TRUE(Intersect(ray, curve, nullptr));

  const Ray2D away(zrVec2(0, 0), zrVec2(-1, 0), Ray2D::BY_DIRECTION);
  x = zrVec2(-9, -9);
  EXPECT_FALSE(Intersect(away, curve, &x));
  EXPECT_EQ(x, zrVec2(-9, -9));

  zrSimpleArray<zrVec2> one(1, zrVec2(0, 0));
  EXPECT_FALSE(Intersect(ray, one, &x));
  EXPECT_FALSE(Intersect(ray, zrSimpleArray<zrVec2>(), nullptr));
}

TEST(Plane, DFromPointAndUnnormalisedNormal) {
  const zrGeom::Plane p(zrTVec3<double>(1, 2, 3), zrTVec3<double>(0, 0, 2));
  EXPECT_EQ(p.GetNormal(), zrTVec3<double>(0, 0, 2));
  EXPECT_EQ(p.GetD(), -6);
}

TEST(Ray3D, TransZFollowsTheRay) {
  const zrTVec3<double> p(1, 2, 3);
  const zrTVec3<double> dir(0, 3, 4);
  const zrGeom::Ray3D ray(p, dir);
  EXPECT_EQ(ray.GetDir(), dir);  // not normalised
  const zrTransformCoord3D t = ray.GetTransZ();
  ExpectNear(t.Transform(p), zrTVec3<double>(0, 0, 0));
  ExpectNear(t.Transform(p + dir * 2), zrTVec3<double>(0, 0, 10), 1e-13);
  // A point 2 away from the ray, level with its start.
  const zrTVec3<double> off = t.Transform(p + zrTVec3<double>(2, 0, 0));
  EXPECT_NEAR(off.Z(), 0, 1e-14);
  EXPECT_NEAR(std::hypot(off.X(), off.Y()), 2, 1e-14);
  ExpectNear(t.Inverse().Transform(zrTVec3<double>(0, 0, 5)), p + dir, 1e-13);

  // Along -z: a half turn, still rigid.
  const zrTransformCoord3D down = zrGeom::Ray3D(p, zrTVec3<double>(0, 0, -1)).GetTransZ();
  ExpectNear(down.Transform(p - zrTVec3<double>(0, 0, 3)), zrTVec3<double>(0, 0, 3));
  EXPECT_NEAR(down.GetMatrix().Det(), 1, 1e-15);
}

}  // namespace
