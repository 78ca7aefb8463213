#include "zr/geometry/primitives.h"

#include <cmath>

namespace zrGeom {

StraightLine2D::StraightLine2D(const zrVec2& p1, const zrVec2& p2) : p1_(p1) {
  a_ = p2.Y() - p1.Y();
  b_ = -(p2.X() - p1.X());
  c_ = a_ * p1.X() + b_ * p1.Y();
  const double len = std::sqrt(a_ * a_ + b_ * b_);
  a_ /= len;
  b_ /= len;
  c_ /= len;
  na_ = a_;
  nb_ = b_;
  if (c_ != 0) {
    const double sign = c_ < 0 ? -1.0 : 1.0;
    a_ *= sign;
    b_ *= sign;
    c_ = std::fabs(c_);
  }
}

double StraightLine2D::GetD(const zrVec2& p) const { return a_ * p.X() + b_ * p.Y() - c_; }

double StraightLine2D::GetDist(const zrVec2& p) const {
  const double d = std::fabs(GetD(p));
  const double s = (p.X() - p1_.X()) * na_ + (p.Y() - p1_.Y()) * nb_;
  if (s < 0) return -d;
  if (s == 0) return 0;
  return d;
}

Ray2D::Ray2D(const zrVec2& p, const zrVec2& q, INIT_TYPE type)
    : point_(p), dir_(type == BY_DIRECTION ? q : q - p) {
  dir_ /= dir_.Norm();
}

zrTransformCoord3D Ray3D::GetTransZ() const {
  zrTransformCoord3D t;
  t.AddShift(-point_);
  t.AddTurn(dir_, zrTVec3<double>(0, 0, 1));
  return t;
}

Plane::Plane(const zrTVec3<double>& point, const zrTVec3<double>& normal)
    : normal_(normal), d_(-normal.ScalarMul(point)) {}

bool Intersect(const Ray2D& ray, const Segment2D& segment, zrVec2* out) {
  const zrVec2& p = ray.GetPoint();
  const zrVec2& dir = ray.GetDir();
  const zrVec2& p1 = segment.GetPoint1();
  const zrVec2& p2 = segment.GetPoint2();
  zrVec2 x;
  if (!IntersectLine2DLine2D(StraightLine2D(p, p + dir), StraightLine2D(p1, p2), &x)) return false;
  if ((p2 - x).ScalarMul(x - p1) < 0) return false;
  if ((x - p).ScalarMul(dir) < 0) return false;
  if (out) *out = x;
  return true;
}

bool Intersect(const Ray2D& ray, const zrSimpleArray<zrVec2>& curve, zrVec2* out) {
  bool found = false;
  zrVec2 best;
  double best_d2 = 0;
  for (int i = 1; i < curve.Len(); ++i) {
    zrVec2 x;
    if (!Intersect(ray, Segment2D(curve[i - 1], curve[i]), &x)) continue;
    if (!out) return true;
    const double d2 = (x - ray.GetPoint()).ScalarMul();
    if (!found || d2 < best_d2) {
      best = x;
      best_d2 = d2;
      found = true;
    }
  }
  if (found) *out = best;
  return found;
}

}  // namespace zrGeom

bool IntersectLine2DLine2D(const zrGeom::StraightLine2D& l1, const zrGeom::StraightLine2D& l2,
                           zrVec2* out) {
  const double det = l1.GetA() * l2.GetB() - l1.GetB() * l2.GetA();
  if (std::fabs(det) < 1e-10) return false;
  if (out)
    *out = zrVec2((l2.GetB() * l1.GetC() - l1.GetB() * l2.GetC()) / det,
                  (l1.GetA() * l2.GetC() - l1.GetC() * l2.GetA()) / det);
  return true;
}
