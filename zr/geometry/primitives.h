/// \file
/// zrGeom: lines, rays, segments and planes in the plane and in space, and their
/// intersections.
///
/// Every class here is a plain value of zrVec2 or zrTVec3<double>: no virtual operations,
/// copy and assignment copy all fields, and the default constructors leave the fields
/// uninitialised, as the point types do. Nothing is checked: two equal points, or a zero
/// direction, give NaNs where a length is divided by.
///
/// The plane line is kept in Hesse normal form a*x + b*y = c with a^2 + b^2 = 1 and
/// c >= 0, so its normal (a, b) points from the origin toward the line. It also keeps the
/// normal of the directed line p1 -> p2 before that sign step, (na, nb), which points to
/// the right of the direction; GetDist measures sides against it, so "right" and "left"
/// do not depend on where the origin lies.
#pragma once

#include "zr/arrays/arrays.h"
#include "zr/core/core.h"
#include "zr/geometry/transform.h"
#include "zr/values/values.h"

namespace zrGeom {

/// A directed line of the plane through two points, kept in Hesse normal form
/// a*x + b*y = c with the normal of the direction beside it, for signed distances and
/// sides; a plain value (see primitives.h). See the example
/// docs/examples.md#guide_geometry.
class ZR_API StraightLine2D {
 public:
  /// Fields uninitialised.
  StraightLine2D() = default;
  /// The line through p1 and p2, directed from p1 to p2: a = p2.y - p1.y,
  /// b = -(p2.x - p1.x), c = a*p1.x + b*p1.y, each divided by L = sqrt(a*a + b*b);
  /// (na, nb) = (a, b) at that point; then, if c != 0, a and b are multiplied by the sign
  /// of c and c replaced by |c|. Equal points give L = 0 and NaNs.
  StraightLine2D(const zrVec2& p1, const zrVec2& p2);

  /// a*p.x + b*p.y - c: the signed distance, positive on the side away from the origin.
  double GetD(const zrVec2& p) const;
  /// |GetD(p)| with the sign of s = (p.x - p1.x)*na + (p.y - p1.y)*nb: negative for s < 0,
  /// zero for s = 0, positive otherwise (a NaN s included). Positive on the right of the
  /// directed line p1 -> p2, negative on its left.
  double GetDist(const zrVec2& p) const;

  double GetA() const { return a_; }
  double GetB() const { return b_; }
  double GetC() const { return c_; }
  const zrVec2& GetP1() const { return p1_; }
  double GetNA() const { return na_; }
  double GetNB() const { return nb_; }

 private:
  double a_, b_, c_;  // normalised: a^2 + b^2 = 1, c >= 0
  zrVec2 p1_;         // the first defining point
  double na_, nb_;    // unit normal of p1 -> p2, to its right, before the sign step
};

/// A segment of the plane between two points, stored as given; a plain value. See the
/// example docs/examples.md#guide_geometry for the intersections of the plane figures.
class ZR_API Segment2D {
 public:
  Segment2D() = default;
  Segment2D(const zrVec2& p1, const zrVec2& p2) : p1_(p1), p2_(p2) {}
  const zrVec2& GetPoint1() const { return p1_; }
  const zrVec2& GetPoint2() const { return p2_; }

 private:
  zrVec2 p1_, p2_;
};

/// A ray of the plane: a start point and a unit direction (normalised when it is built);
/// a plain value. See the example docs/examples.md#guide_geometry for the intersections
/// of the plane figures.
class ZR_API Ray2D {
 public:
  /// What the second argument of the constructor is: a direction (0) or a second point
  /// the ray passes through (any other value).
  enum INIT_TYPE { BY_DIRECTION = 0, BY_POINTS = 1 };

  Ray2D() = default;
  /// The ray from p along q (BY_DIRECTION) or toward the point q (otherwise: along q - p);
  /// the direction is then divided by its length. A zero direction gives NaNs.
  Ray2D(const zrVec2& p, const zrVec2& q, INIT_TYPE type);

  const zrVec2& GetPoint() const { return point_; }
  /// Unit length.
  const zrVec2& GetDir() const { return dir_; }

 private:
  zrVec2 point_, dir_;
};

/// A line in space through two points, stored as given.
/// A plain value. See the example docs/examples.md#guide_geometry for the geometry
/// subsystem.
class ZR_API StraightLine3D {
 public:
  StraightLine3D() = default;
  StraightLine3D(const zrTVec3<double>& p, const zrTVec3<double>& q) : p_(p), q_(q) {}
  const zrTVec3<double>& GetPoint1() const { return p_; }
  const zrTVec3<double>& GetPoint2() const { return q_; }

 private:
  zrTVec3<double> p_, q_;
};

/// A segment in space between two points, stored as given; a plain value. See the example
/// docs/examples.md#guide_geometry for the geometry subsystem.
class ZR_API Segment3D {
 public:
  Segment3D() = default;
  Segment3D(const zrTVec3<double>& p1, const zrTVec3<double>& p2) : p1_(p1), p2_(p2) {}
  const zrTVec3<double>& GetPoint1() const { return p1_; }
  const zrTVec3<double>& GetPoint2() const { return p2_; }

 private:
  zrTVec3<double> p1_, p2_;
};

/// A ray in space; unlike Ray2D the direction is stored as given, not normalised.
/// A plain value. See the example docs/examples.md#guide_geometry for the geometry
/// subsystem.
class ZR_API Ray3D {
 public:
  Ray3D() = default;
  Ray3D(const zrTVec3<double>& point, const zrTVec3<double>& dir) : point_(point), dir_(dir) {}
  const zrTVec3<double>& GetPoint() const { return point_; }
  const zrTVec3<double>& GetDir() const { return dir_; }

  /// The frame of the ray: a rigid transform (turn and shift, no scale) that takes the
  /// ray's point to the origin and its direction onto +z, so that point + t*dir goes to
  /// (0, 0, t*|dir|) and the distance of any point from the ray is the length of the
  /// (x, y) part of its image. Built from the identity by AddShift(-point) and then
  /// AddTurn(dir, (0, 0, 1)), the smallest turn taking dir onto +z (a half turn when dir
  /// points along -z); Inverse() maps the ray's frame back. A zero direction gives NaNs.
  zrTransformCoord3D GetTransZ() const;

 private:
  zrTVec3<double> point_, dir_;
};

/// The plane normal . x + d = 0; the normal is stored as given, not normalised.
/// A plain value. See the example docs/examples.md#guide_geometry for the geometry
/// subsystem.
class ZR_API Plane {
 public:
  Plane() = default;
  /// The plane through point with this normal: d = -(normal . point).
  Plane(const zrTVec3<double>& point, const zrTVec3<double>& normal);
  const zrTVec3<double>& GetNormal() const { return normal_; }
  double GetD() const { return d_; }

 private:
  zrTVec3<double> normal_;
  double d_;
};

/// Whether the ray meets the segment, end points included. The lines through the ray
/// (point, point + dir) and the segment are intersected as IntersectLine2DLine2D does;
/// the crossing X counts when (point2 - X) . (X - point1) >= 0 and (X - ray point) . dir
/// >= 0. On a hit X is written to out when out is not null. A segment parallel to the
/// ray (collinear ones included) is never hit.
ZR_API bool Intersect(const Ray2D& ray, const Segment2D& segment, zrVec2* out);

/// The ray against the polyline through the points of curve, segment (i - 1, i) for
/// i = 1 ... n - 1 in order. With out null the first segment hit answers true at once
/// (the first in polyline order, not the nearest). Otherwise every segment is tested and
/// the hit nearest to the ray's point (squared distance; a later hit replaces the kept one
/// only when strictly nearer) is written to out. Fewer than two points give false, and out
/// is left untouched when nothing is hit. Any point array will do: a zrCurve2D or a
/// contour is passed as the array it is.
ZR_API bool Intersect(const Ray2D& ray, const zrSimpleArray<zrVec2>& curve, zrVec2* out);

}  // namespace zrGeom

/// The crossing of two plane lines. det = l1.a*l2.b - l1.b*l2.a; when |det| < 1e-10 the
/// lines count as parallel and the result is false, out untouched. Otherwise the result is
/// true and, when out is not null, out = ((l2.b*l1.c - l1.b*l2.c)/det,
/// (l1.a*l2.c - l1.c*l2.a)/det).
ZR_API bool IntersectLine2DLine2D(const zrGeom::StraightLine2D& l1,
                                  const zrGeom::StraightLine2D& l2, zrVec2* out);
