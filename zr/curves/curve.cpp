#include "zr/curves/curve.h"

#include <cmath>

#include "zr/curves/detail/nearest.h"
#include "zr/numeric/spline.h"

ZR_DEFINE_TYPE_IDENTITY(zrCurve2D)

zrCurve2D::~zrCurve2D() = default;

zrVec2 zrCurve2D::GetCenter() const {
  const zrCurve2D& c = *this;
  double sx = 0.0;
  double sy = 0.0;
  for (int i = 0; i < Len(); ++i) {
    sx += c[i].X();
    sy += c[i].Y();
  }
  return zrVec2(sx / Len(), sy / Len());
}

zrRect<zrVec2> zrCurve2D::GetRect() const {
  const zrCurve2D& c = *this;
  zrVec2 lo = c[0];
  zrVec2 hi = c[0];
  for (int i = 1; i < Len(); ++i) {
    lo = c[i].Min(lo);
    hi = c[i].Max(hi);
  }
  return zrRect<zrVec2>(lo, hi);
}

int zrCurve2D::GetIndexOfMinDistance(double& dist, const zrVec2& p) const {
  const zrCurve2D& c = *this;
  int best = 0;
  double bestSq = (c[0] - p).ScalarMul();
  for (int i = 1; i < Len(); ++i) {
    const double sq = (c[i] - p).ScalarMul();
    if (sq < bestSq) {
      bestSq = sq;
      best = i;
    }
  }
  dist = std::sqrt(bestSq);
  return best;
}

int zrCurve2D::GetIndexOfMaxDistance(double& dist, const zrVec2& p) const {
  const zrCurve2D& c = *this;
  int best = 0;
  double bestSq = (c[0] - p).ScalarMul();
  for (int i = 1; i < Len(); ++i) {
    const double sq = (c[i] - p).ScalarMul();
    if (sq > bestSq) {
      bestSq = sq;
      best = i;
    }
  }
  dist = std::sqrt(bestSq);
  return best;
}

// For each point j of other, its nearest point here; the plain loop measures every pair.
// The kernel (detail/nearest.h) finds the same j and index through a k-d tree over this
// curve's points, in expected O((n + m) log n), when both curves are large and finite.
int zrCurve2D::GetIndexOfMaxDistance(int& index, const zrCurve2D& other) const {
  int j = 0;
  if (other.Len() >= 2 && zr::detail::FarthestNearest(*this, other, j, index)) return j;
  double best = 0.0;
  index = GetIndexOfMinDistance(best, other[0]);
  if (other.Len() < 2) return 0;
  int bestJ = 0;
  for (int j = 1; j < other.Len(); ++j) {
    double dist = 0.0;
    const int k = GetIndexOfMinDistance(dist, other[j]);
    if (dist > best) {
      best = dist;
      bestJ = j;
      index = k;
    }
  }
  return bestJ;
}

// The spline lies below the curves, so its constructor from a curve lives here.
template <>
void zrSpline<double>::Set(const zrCurve2D& curve) {
  if (curve.Len() < 3) throw BadParameters("Spline: number of point must be >= 3");
  zrSimpleArray<zrColumnVector<double>> points(curve.Len());
  for (int i = 0; i < curve.Len(); ++i) {
    zrColumnVector<double> p(2);
    p[0] = curve[i].X();
    p[1] = curve[i].Y();
    points[i] = p;
  }
  Set(points);
}
