#include "zr/curves/contour.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <limits>

#include "zr/arrays/simple_array_impl.h"
#include "zr/core/detail/machine.h"

namespace {

int Sign(double v) { return v < 0.0 ? -1 : (v > 0.0 ? 1 : 0); }

// u.x * v.y - u.y * v.x.
double Cross(const zrVec2& u, const zrVec2& v) { return u.X() * v.Y() - u.Y() * v.X(); }

// i modulo n, in [0, n).
int Wrap(int i, int n) {
  const int r = i % n;
  return r < 0 ? r + n : r;
}

// The distance of a and b lifted by a squared height.
double Lifted(const zrVec2& a, const zrVec2& b, double lift) {
  const double dx = a.X() - b.X();
  const double dy = a.Y() - b.Y();
  return std::sqrt(dx * dx + dy * dy + lift);
}

// Heron's formula for the triangle (u, v, w) with lifted sides.
double Heron(const zrVec2& u, const zrVec2& v, const zrVec2& w, double lift) {
  const double a = Lifted(u, v, lift);
  const double b = Lifted(v, w, lift);
  const double c = Lifted(u, w, lift);
  const double s = (a + b + c) / 2.0;
  return std::sqrt(s * (s - a) * (s - b) * (s - c));
}

// Whether the edge (start, end) with end distances dp, d is tested for a crossing;
// before is the distance of the point before start.
bool TestEdge(double dp, double d, double before) {
  return dp * d < 0.0 || (dp > 0.0 && d == 0.0) || (dp == 0.0 && d > 0.0 && before < 0.0);
}

// The alignment by the band measure, below quadratic cost where the measure allows it.
//
// MakeCoherentS keeps the earliest rotation of the smallest band measure, with the odd
// rules of its loop: the first rotation is always taken, a NaN first measure is kept, a
// later NaN never replaces, and a measure of exactly 0 lets the next rotation replace it.
// Each measure is an ordered sum, so a winner can only be proved by the exact sums. The
// terms are Heron areas, never negative (a rounding that makes one NaN makes the sum NaN),
// and every term is at least a known floor (TermFloor): a rotation whose partial sum plus
// the floors of the terms to come, less the rounding the additions can still lose, already
// exceeds twice the best measure (or equals it, for a later rotation) cannot win and is
// abandoned. The rotations are tried from the one that pairs the nearest points outward,
// so a good measure is found early. Rotation 0 is summed first and in full: when its
// measure is NaN, 0 or above 1e300, or when a later one turns out exactly 0, the plain
// loop runs instead. Otherwise the loop's result is the earliest rotation of the smallest
// measure that is not NaN, which is what is kept.
//
// The cost: a rotation gives up once its terms' excess over the floor outgrows the best
// rotation's whole excess. On two outlines a distance d apart, points h apart along a
// perimeter L, the rotations within about d / h points of the best are summed nearly in
// full and the others after a few terms: about n^2 d / L terms in all, still quadratic as
// the sampling gets finer but a small share of n^2 when the outlines nearly match (close
// to linear for equal ones). Shapes whose rotations all measure alike (a contour of one
// repeated point, circles far off centre) stay quadratic: each competing rotation needs
// its exact sum. Contours wider than about 2000 have no floor and rely on the partial sums.
constexpr int kMinRotations = 32;

// A floor under every band term not yet summed, so that a rotation is abandoned before its
// partial sum alone exceeds the best. For lifted sides D^2 = d^2 + 100 (d the distance in
// the plane), Heron's formula gives area^2 = (plane area)^2 + 12.5 (sum of the three d^2)
// + 1875 >= 1875 exactly. The computed term is within (2 rho + 8u) of the exact area, u the
// unit roundoff and rho = 10.1 u s^4 / 1875, s bounding every half perimeter: the sides
// and s carry at most 4u and 6.1u, so each difference s - x is off by at most 10.1 u s,
// against s - x >= area^2 / s^3 as the other two factors are below s. The floor is
// sqrt(1875) less a generous share for that, or 0 when the contours are too wide (rho
// above 1e-4) or not finite.
double TermFloor(const zrSimpleContour2D& p, const zrSimpleContour2D& q) {
  double x0 = p[0].X(), x1 = x0, y0 = p[0].Y(), y1 = y0;
  for (const zrSimpleContour2D* c : {&p, &q}) {
    for (int i = 0; i < c->Len(); ++i) {
      const zrVec2& v = (*c)[i];
      x0 = std::min(x0, v.X());
      x1 = std::max(x1, v.X());
      y0 = std::min(y0, v.Y());
      y1 = std::max(y1, v.Y());
    }
  }
  const double u = std::numeric_limits<double>::epsilon() / 2.0;
  const double w = x1 - x0, h = y1 - y0;
  const double s = 1.01 * 1.5 * std::sqrt(w * w + h * h + 100.0);
  const double rho = 1.01 * 11.0 * u * (s * s) * (s * s) / 1875.0;
  if (!std::isfinite(rho) || !(rho <= 1e-4)) return 0.0;
  return std::sqrt(1875.0) * (1.0 - (2.0 * rho + 64.0 * u));
}

// The band measure of rotation r of p (r points moved from the front to the back) against
// q, summed as GetTriS sums it on the rotated copy. Returns false as soon as the measure
// is shown NaN, or above best, or equal to it when `later` (a tie with an earlier rotation
// loses); else v receives the measure. The test: every later addition fl(t + x) is at
// least (t + x)(1 - u), so the final sum is at least (partial + m * least)(1 - u)^m for m
// terms to come; the factor c, below (1 - u)^(2n + 3), also covers the test's own roundings.
bool RotationMeasure(const zrSimpleContour2D& p, const zrSimpleContour2D& q, int r, double best,
                     bool later, double least, double& v) {
  const int n = p.Len();
  const double c = 1.0 - (4.0 * n + 16.0) * (std::numeric_limits<double>::epsilon() / 2.0);
  const double twice = 2.0 * best;
  double sum = 0.0;
  int a = r;
  for (int i = 0; i < n; ++i) {
    const int a1 = a + 1 == n ? 0 : a + 1;
    const int i1 = i + 1 == n ? 0 : i + 1;
    sum += Heron(p[a], q[i], q[i1], 100.0);
    sum += Heron(p[a], p[a1], q[i1], 100.0);
    const double low = (sum + 2.0 * (n - 1 - i) * least) * c;
    if (low > twice || std::isnan(sum) || (later && low == twice)) return false;
    a = a1;
  }
  v = sum / 2.0;
  return true;
}

// The rotation MakeCoherentS keeps, for p already oriented as q; false when the fast path
// does not apply or meets an odd case (the caller runs the plain loop).
bool BestRotation(const zrSimpleContour2D& p, const zrSimpleContour2D& q, int& kept) {
  using zr::detail::Level;
  const int n = p.Len();
  if (zr::detail::CurrentLevel() == Level::kPlain || n < kMinRotations) return false;
  double best = 0.0;
  const double inf = std::numeric_limits<double>::infinity();
  // Near the top of the range the tests below could overflow: the plain loop then.
  if (!RotationMeasure(p, q, 0, inf, false, 0.0, best) || best == 0.0 || best > 1e300) {
    return false;
  }
  const double least = TermFloor(p, q);
  // The rotation that pairs q's point 0 with its nearest point of p comes first, then
  // the others by their distance from it, alternately after and before.
  int guess = 0;
  double nearest = (p[0] - q[0]).ScalarMul();
  for (int a = 1; a < n; ++a) {
    const double d = (p[a] - q[0]).ScalarMul();
    if (d < nearest) {
      nearest = d;
      guess = a;
    }
  }
  kept = 0;
  for (int step = 0; step < n; ++step) {
    const int r = (guess + (step % 2 ? (step + 1) / 2 : n - step / 2)) % n;
    double v = 0.0;
    if (r == 0 || !RotationMeasure(p, q, r, best, r > kept, least, v)) continue;
    if (v == 0.0) return false;
    if (v < best || (v == best && r < kept)) {
      best = v;
      kept = r;
    }
  }
  return true;
}

}  // namespace

ZR_DEFINE_TYPE_IDENTITY(zrSimpleContour2D)

zrSimpleContour2D::~zrSimpleContour2D() = default;

double zrSimpleContour2D::GetLengthOfCurve() const {
  const zrSimpleContour2D& c = *this;
  const int n = Len();
  double sum = 0.0;
  for (int i = 0; i < n; ++i) sum += (c[(i + 1) % n] - c[i]).Norm();
  return sum;
}

double zrSimpleContour2D::GetSignS() const {
  const zrSimpleContour2D& c = *this;
  const int n = Len();
  double sum = 0.0;
  for (int i = 0; i < n; ++i) {
    const zrVec2& a = c[i];
    const zrVec2& b = c[(i + 1) % n];
    sum += a.X() * b.Y() - a.Y() * b.X();
  }
  return sum / 2.0;
}

double zrSimpleContour2D::GetS() const { return std::fabs(GetSignS()); }

int zrSimpleContour2D::GetOrient() const { return GetSignS() > 0.0 ? 0 : 1; }

void zrSimpleContour2D::SetOrient(int o) {
  if (GetOrient() != o) InverseOrder();
}

zrVec2 zrSimpleContour2D::operator()(double t) const {
  const zrSimpleContour2D& c = *this;
  const int n = Len();
  const double s = t * n;
  if (n == 0 || !std::isfinite(s)) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    return zrVec2(nan, nan);
  }
  // floor is the truncation for s >= 0; below 0 it keeps the parameter periodic.
  const double k = std::floor(s);
  const double f = s - k;
  const int i = Wrap(static_cast<int>(std::fmod(k, static_cast<double>(n))), n);
  return c[i] * (1.0 - f) + c[(i + 1) % n] * f;
}

zrVec2 zrSimpleContour2D::GetPt(double d, int i) const {
  const zrSimpleContour2D& c = *this;
  const int n = Len();
  int cur = Wrap(i, n);
  if (d == 0.0) return c[cur];
  const int step = d > 0.0 ? 1 : n - 1;
  const double sign = d > 0.0 ? 1.0 : -1.0;
  double rest = std::fabs(d);
  // A whole lap that shortens nothing means a contour of zero perimeter.
  double lapStart = rest;
  int walked = 0;
  int next = (cur + step) % n;
  double len = (c[next] - c[cur]).Norm();
  while (rest > len) {
    rest -= len;
    cur = next;
    if (++walked == n) {
      if (rest == lapStart) return c[Wrap(i, n)];
      lapStart = rest;
      walked = 0;
    }
    next = (cur + step) % n;
    len = (c[next] - c[cur]).Norm();
  }
  return c[cur] + (c[next] - c[cur]) * (rest / len * sign);
}

zrVec2 zrSimpleContour2D::GetPtNdiv2(double d, int i) const {
  const zrSimpleContour2D& c = *this;
  const int n = Len();
  const int cur = Wrap(i, n);
  if (d == 0.0) return c[cur];
  const int next = d > 0.0 ? (cur + 1) % n : (cur + n - 1) % n;
  const double sign = d > 0.0 ? 1.0 : -1.0;
  const zrVec2 edge = c[next] - c[cur];
  const double len = edge.Norm();
  if (len == 0.0) return c[cur];
  const double half = len / 2.0;
  const double dist = std::fabs(d) < half ? std::fabs(d) : half;
  return c[cur] + edge * (dist / len * sign);
}

int zrSimpleContour2D::IsIntersect() const {
  const zrSimpleContour2D& c = *this;
  const int n = Len();
  for (int i = 0; i + 2 <= n; ++i) {
    const zrVec2& a = c[i];
    const zrVec2& b = c[(i + 1) % n];
    for (int j = i + 2; j <= n; ++j) {
      const zrVec2& cc = c[j - 1];
      const zrVec2& d = c[j % n];
      const int s1 = Sign(Cross(b - a, d - a));
      const int s2 = Sign(Cross(b - a, cc - a));
      const int s3 = Sign(Cross(d - cc, b - cc));
      const int s4 = Sign(Cross(d - cc, a - cc));
      if (s1 != 0 && s2 != s1 && s3 != 0 && s4 != s3) return 1;
    }
  }
  return 0;
}

int zrSimpleContour2D::IsInsidePoint(const zrVec2& p) const {
  const zrSimpleContour2D& c = *this;
  const int n = Len();
  int count = 0;
  for (int i = 0; i < n; ++i) {
    const zrVec2& a = c[i];
    const zrVec2& b = c[(i + 1) % n];
    if (a.Y() == b.Y()) {
      if (p.Y() == a.Y() &&
          ((a.X() <= p.X() && p.X() <= b.X()) || (b.X() <= p.X() && p.X() <= a.X()))) {
        return 0;
      }
      continue;
    }
    if (a == p || b == p) return 0;
    const zrVec2& lo = a.Y() < b.Y() ? a : b;
    const zrVec2& hi = a.Y() < b.Y() ? b : a;
    if (!(lo.Y() <= p.Y() && hi.Y() > p.Y())) continue;
    const double x =
        lo.Y() == p.Y() ? lo.X() : a.X() + (b.X() - a.X()) * (p.Y() - a.Y()) / (b.Y() - a.Y());
    if (x == p.X()) return 0;
    if (x > p.X()) ++count;
  }
  return count % 2 == 1 ? 1 : -1;
}

void zrSimpleContour2D::MakeCoherent(const zrSimpleContour2D& other) {
  if (Len() != other.Len()) {
    throw BadParameters("zrSimpleContour2D::MakeCoherent: both length Must be equal.");
  }
  if (Len() == 0) return;
  SetOrient(other.GetOrient());
  int k = 0;
  const int j = GetIndexOfMaxDistance(k, other);
  if (j > k) {
    CycleRightShift(j - k);
  } else if (j < k) {
    CycleLeftShift(k - j);
  }
}

void zrSimpleContour2D::MakeCoherentS(const zrSimpleContour2D& other) {
  if (Len() != other.Len()) {
    throw BadParameters("zrSimpleContour2D::MakeCoherent: both length Must be equal.");
  }
  const int n = Len();
  if (n == 0) return;
  SetOrient(other.GetOrient());
  zrSimpleContour2D work(*this);
  int kept = 0;
  if (BestRotation(work, other, kept)) {
    CycleLeftShift(kept);
    return;
  }
  double best = 0.0;
  for (int r = 0; r < n; ++r) {
    const double v = work.GetTriS(other);
    if (best == 0.0 || v < best) {
      best = v;
      kept = r;
    }
    work.CycleLeftShift(1);
  }
  CycleLeftShift(kept);
}

double zrSimpleContour2D::GetTriS(const zrSimpleContour2D& other) const {
  const zrSimpleContour2D& p = *this;
  const int n = Len();
  double sum = 0.0;
  for (int i = 0; i < n; ++i) {
    const int i1 = (i + 1) % n;
    sum += Heron(p[i], other[i], other[i1], 100.0);
    sum += Heron(p[i], p[i1], other[i1], 100.0);
  }
  return sum / 2.0;
}

double zrSimpleContour2D::GetPartTriS(const zrSimpleContour2D& other, const zrVec2& x,
                                      int k) const {
  const zrSimpleContour2D& p = *this;
  const int n = Len();
  const int kk = Wrap(k, n);
  const int a = (n + kk - 1) % n;
  const int b = (kk + 1) % n;
  const double sum = Heron(p[a], other[kk], x, 1.0) + Heron(x, other[kk], other[b], 1.0) +
                     Heron(x, p[b], other[b], 1.0);
  return sum / 2.0;
}

zrSimpleContour2D zrSimpleContour2D::CutByStraightLine(const zrGeom::StraightLine2D& line) const {
  const zrSimpleContour2D& c = *this;
  const int n = Len();
  if (n < 3) throw BadParameters("Contour2D must have larger two of point.");
  zrSimpleContour2D out(2 * n + 1);
  int count = 0;
  // Appends the crossing of the edge (start, end) with the line when it lies on the edge.
  auto cross = [&](const zrVec2& start, const zrVec2& end) {
    zrVec2 x;
    if (!IntersectLine2DLine2D(line, zrGeom::StraightLine2D(start, end), &x)) return;
    if ((end - x).ScalarMul(x - start) >= 0.0) out[count++] = x;
  };
  double dp = 0.0;
  for (int i = 0; i < n; ++i) {
    const double d = line.GetDist(c[i]);
    if (i > 0 && TestEdge(dp, d, line.GetDist(c[(i - 2 + n) % n]))) cross(c[i - 1], c[i]);
    if (d >= 0.0) out[count++] = c[i];
    dp = d;
  }
  if (TestEdge(dp, line.GetDist(c[0]), line.GetDist(c[n - 2]))) cross(c[n - 1], c[0]);
  out.ReSet(count);
  return out;
}

zrSimpleContour2D zrSimpleContour2D::zrPolyLineToRange(const zrArray<int>& range) const {
  if (range.Len() != 2) throw BadParameters("Dimension must equal 2 in GetLine.");
  const double w = static_cast<double>(range[0]) - 1.0;
  const double h = static_cast<double>(range[1]) - 1.0;
  zrSimpleContour2D out =
      CutByStraightLine(zrGeom::StraightLine2D(zrVec2(w, 0.0), zrVec2(0.0, 0.0)));
  out = out.CutByStraightLine(zrGeom::StraightLine2D(zrVec2(0.0, h), zrVec2(w, h)));
  out = out.CutByStraightLine(zrGeom::StraightLine2D(zrVec2(0.0, 0.0), zrVec2(0.0, h)));
  out = out.CutByStraightLine(zrGeom::StraightLine2D(zrVec2(w, h), zrVec2(w, 0.0)));
  return out;
}

ZR_INSTANTIATE_TEMPLATE(class, zrSimpleArray<zrSimpleContour2D>);
