#include "zr/curves/contour.h"

#include <cmath>
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
// and fl(s + x) >= s for x >= 0: a partial sum only grows, and a rotation whose partial
// sum / 2 already exceeds the best measure (or equals it, for a later rotation) cannot win
// and is abandoned. The rotations are tried from the one that pairs the nearest points
// outward, so a good measure is found early and the others end after part of their sum.
// Rotation 0 is summed first and in full: when its measure is NaN or 0, or when a later
// one turns out exactly 0, the plain loop runs instead. Otherwise the loop's result is the
// earliest rotation of the smallest measure that is not NaN, which is what is kept.
//
// The gain depends on the shapes. The lift 100 puts a floor of about 43 under every term,
// so on contours whose extent is small against 10 all rotations measure within a few per
// cent of each other and are abandoned only near the end of their sums: no gain. On wider
// contours (pixel coordinates) a rotation k points away from the best gives up after about
// n (d / (k h))^2 terms, d being the distance between the two outlines and h the spacing of
// the points, so the rotations within d / h points of the best are summed nearly in full:
// about n^2 d / L terms in all, L the perimeter. That is still quadratic as the sampling
// gets finer, a small share of n^2 when the outlines nearly match. Proving the winner
// needs every competing rotation's exact sum, so no faster order can remove that part.
constexpr int kMinRotations = 32;

// The band measure of rotation r of p (r points moved from the front to the back) against
// q, summed as GetTriS sums it on the rotated copy. Returns false as soon as the partial
// measure is NaN, or above best, or equal to it when `later` (a tie with an earlier
// rotation loses); else v receives the measure.
bool RotationMeasure(const zrSimpleContour2D& p, const zrSimpleContour2D& q, int r, double best,
                     bool later, double& v) {
  const int n = p.Len();
  double sum = 0.0;
  int a = r;
  for (int i = 0; i < n; ++i) {
    const int a1 = a + 1 == n ? 0 : a + 1;
    const int i1 = i + 1 == n ? 0 : i + 1;
    sum += Heron(p[a], q[i], q[i1], 100.0);
    sum += Heron(p[a], p[a1], q[i1], 100.0);
    const double half = sum / 2.0;
    if (half > best || std::isnan(half) || (later && half == best)) return false;
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
  if (!RotationMeasure(p, q, 0, inf, false, best) || best == 0.0) return false;
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
    if (r == 0 || !RotationMeasure(p, q, r, best, r > kept, v)) continue;
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
