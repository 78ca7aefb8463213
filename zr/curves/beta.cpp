#include "zr/curves/beta.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <limits>
#include <vector>

#include "zr/core/detail/allocator.h"
#include "zr/curves/detail/beta_band.h"

namespace zr::detail {
namespace {

using V3 = zrTVec3<double>;

// A coefficient of the interpolation systems: the same number in all three coordinates.
V3 Same(double b) { return V3(b, b, b); }

V3 NaN3() {
  const double q = std::numeric_limits<double>::quiet_NaN();
  return V3(q, q, q);
}

// i modulo n, never negative.
int Wrap(int i, int n) { return ((i % n) + n) % n; }

// The segment of a parameter u in [0, last]: u truncated, held at last against rounding.
int Segment(double u, int last) {
  const int i = static_cast<int>(u);
  return i > last ? last : i;
}

// The sum over j = i ... i + 3 of B(u - j + 1) * P(j), or of B'(...) when deriv is set.
template <class P>
V3 Stencil(const BetaSpline& s, double u, int i, bool deriv, P point) {
  auto term = [&](int j) {
    const double x = u - j + 1;
    return point(j) * (deriv ? s.BetaBlendDeriv(x) : s.BetaBlend(x));
  };
  V3 sum = term(i);
  for (int j = i + 1; j <= i + 3; ++j) sum = sum + term(j);
  return sum;
}

// The control points of the open curve through the n points of q: n + 2 of them, or none
// for no points.
void OpenControl(const BetaSpline& s, const zrVector<V3>& q, zrVector<V3>& out) {
  const int n = q.Len();
  if (n == 0) {
    out.Clear();
    return;
  }
  const int N = n + 2;
  const double b1 = s.BetaBlend(1.0);
  const double b0 = s.BetaBlend(0.0);
  const double bm1 = s.BetaBlend(-1.0);
  const double bm2 = s.BetaBlend(-2.0);
  if (n >= 4) {
    // The banded kernel first (see detail/beta_band.h); it declines at the plain level.
    Vector<BandRow> rows(N);
    Vector<V3> rhs(N);
    const auto set = [&](int row, int lo, std::initializer_list<double> v) {
      rows[row].lo = lo;
      rows[row].count = static_cast<int>(v.size());
      std::copy(v.begin(), v.end(), rows[row].v);
    };
    set(0, 0, {0.0, 1.0});
    set(1, 0, {b1, b0, bm1, bm2});
    for (int m = 2; m <= n; ++m) set(m, m - 1, {b1, b0, bm1});
    set(N - 1, n, {1.0});
    rhs[0] = q[0];
    for (int k = 1; k <= n; ++k) rhs[k] = q[k - 1];
    rhs[N - 1] = q[n - 1];
    zrColumnVector<V3> x(N);
    if (SolveBand(N, 0, rows.data(), rhs.data(), x.GetPointer())) {
      out.Move(x);
      return;
    }
  }
  zrMatrix<V3> a(N, N);
  a.Fill(Same(0.0));
  zrColumnVector<V3> r(N);
  r[0] = q[0];
  for (int k = 1; k <= n; ++k) r[k] = q[k - 1];
  r[N - 1] = q[n - 1];
  a(0, 1) = Same(1.0);
  a(N - 1, n) = Same(1.0);
  const double first[4] = {b1, b0, bm1, bm2};
  for (int c = 0; c < 4 && c < N; ++c) a(1, c) = Same(first[c]);
  for (int m = 2; m <= n; ++m) {
    a(m, m - 1) = Same(b1);
    a(m, m) = Same(b0);
    a(m, m + 1) = Same(bm1);
  }
  zrColumnVector<V3> x;
  a.SolveEquationGaussMethod(x, r);
  out.Move(x);
}

// The cyclic system of ClosedControl through the banded kernel: row r holds B(1), B(0) and
// B(-1) in columns r - 2, r - 1 and r (modulo n), each added to a zero as the dense form
// does; columns n - 2 and n - 1 are the kernel's tail. False when the kernel declines.
bool ClosedBand(const BetaSpline& s, const zrVector<V3>& q, V3* x) {
  const int n = q.Len();
  if (n < 8) return false;
  const double coef[3] = {s.BetaBlend(1.0), s.BetaBlend(0.0), s.BetaBlend(-1.0)};
  Vector<BandRow> rows(n);
  Vector<V3> rhs(n);
  for (int row = 0; row < n; ++row) {
    BandRow& br = rows[row];
    br.lo = row < 2 ? 0 : row - 2;
    const int hi = row < n - 2 ? row : n - 3;
    br.count = hi - br.lo + 1;
    for (int t = 0; t < 3; ++t) {
      const int c = Wrap(row - 2 + t, n);
      if (c >= n - 2) {
        br.tail[c - (n - 2)] = 0.0 + coef[t];
      } else {
        br.v[c - br.lo] = 0.0 + coef[t];
      }
    }
    rhs[row] = q[row];
  }
  return SolveBand(n, 2, rows.data(), rhs.data(), x);
}

// The control points of the contour through the n points of q: the cyclic solution X
// with its wrap-around copies, n + 3 points with point c = X((c - 2) mod n).
void ClosedControl(const BetaSpline& s, const zrVector<V3>& q, zrVector<V3>& out) {
  const int n = q.Len();
  if (n == 0) {
    out.Clear();
    return;
  }
  zrColumnVector<V3> x(n);
  if (!ClosedBand(s, q, x.GetPointer())) {
    zrMatrix<V3> a(n, n);
    a.Fill(Same(0.0));
    zrColumnVector<V3> r(n);
    const V3 b1 = Same(s.BetaBlend(1.0));
    const V3 b0 = Same(s.BetaBlend(0.0));
    const V3 bm1 = Same(s.BetaBlend(-1.0));
    for (int row = 0; row < n; ++row) {
      a(row, Wrap(row - 2, n)) += b1;
      a(row, Wrap(row - 1, n)) += b0;
      a(row, row) += bm1;
      r[row] = q[row];
    }
    a.SolveEquationGaussMethod(x, r);
  }
  zrVector<V3> ctrl(n + 3);
  for (int c = 0; c < n + 3; ++c) ctrl[c] = x[Wrap(c - 2, n)];
  out.Move(ctrl);
}

}  // namespace
}  // namespace zr::detail

using zr::detail::NaN3;
using zr::detail::Segment;
using zr::detail::Stencil;
using V3 = zrTVec3<double>;

// ---- BetaSpline ----------------------------------------------------------------------

void BetaSpline::_SetSkewTension(double skew, double tension) {
  const double s = skew;
  const double tau = tension;
  const double s2 = s * s;
  const double s3 = s * s * s;
  const double d = 2 * s3 + 4 * s2 + 4 * s + tau + 2;
  tension_ = tension;
  skew_ = skew;
  a_ = 2 / d;
  e_ = 2 * s3 / d;
  l_[0] = (4 * s2 + 4 * s + tau) / d;
  r_[0] = l_[0];
  l_[1] = -6 * (1 - s2) / d;
  l_[2] = -3 * (2 * s + tau + 2) / d;
  l_[3] = -2 * (tau + 1 + s + s2) / d;
  r_[1] = -6 * (s - s3) / d;
  r_[2] = -3 * (2 * (s3 + s2) + tau) / d;
  r_[3] = 2 * (s + tau + s2 + s3) / d;
}

double BetaSpline::BetaBlend(double t) const {
  if (t > -2 && t <= -1) {
    const double x = t + 2;
    return a_ * (x * x * x);
  }
  if (t > -1 && t <= 0) return ((l_[3] * t + l_[2]) * t + l_[1]) * t + l_[0];
  if (t > 0 && t <= 1) return ((r_[3] * t + r_[2]) * t + r_[1]) * t + r_[0];
  if (t > 1 && t <= 2) {
    const double x = 2 - t;
    return e_ * (x * x * x);
  }
  return 0;
}

double BetaSpline::BetaBlendDeriv(double t) const {
  if (t > -2 && t <= -1) {
    const double x = t + 2;
    return 3 * a_ * (x * x);
  }
  if (t > -1 && t <= 0) return (3 * l_[3] * t + 2 * l_[2]) * t + l_[1];
  if (t > 0 && t <= 1) return (3 * r_[3] * t + 2 * r_[2]) * t + r_[1];
  if (t > 1 && t <= 2) {
    const double x = 2 - t;
    return 3 * e_ * (x * x);
  }
  return 0;
}

void* BetaSpline::operator new(std::size_t size) { return zrMalloc(size); }
void BetaSpline::operator delete(void* p) noexcept { zrFree(p); }

// ---- BetaCurve -----------------------------------------------------------------------

BetaCurve::BetaCurve(double skew, double tension) : BetaSpline(skew, tension) {}

BetaCurve::BetaCurve(const zrVector<V3>& points, double skew, double tension) {
  Init(points, skew, tension);
}

BetaCurve::BetaCurve(const zrVector<V3>& points) { Init(points, 1.0, 0.0); }

BetaCurve::BetaCurve(const BetaCurve& other) : BetaSpline(other), ctrl_(other.ctrl_) {
  ctrl_.Copy();
}

BetaCurve& BetaCurve::operator=(const BetaCurve& other) {
  if (this != &other) {
    BetaSpline::operator=(other);
    ctrl_ = other.ctrl_;
  }
  return *this;
}

BetaCurve::~BetaCurve() = default;

void BetaCurve::Init(const zrVector<V3>& points, double skew, double tension) {
  _SetSkewTension(skew, tension);
  MakeInterpolation(points);
}

void BetaCurve::MakeInterpolation(const zrVector<V3>& points) {
  zr::detail::OpenControl(*this, points, ctrl_);
}

V3 BetaCurve::operator()(double t) const {
  const int N = ctrl_.Len();
  if (N == 0) return NaN3();
  if (t <= 0) return ctrl_[1];
  if (t >= 1) return ctrl_[N - 2];
  if (std::isnan(t)) return NaN3();
  const double u = (N - 3) * t;
  return Stencil(*this, u, Segment(u, N - 4), false, [this](int j) { return ctrl_[j]; });
}

V3 BetaCurve::GetTangent(double t) const {
  const int N = ctrl_.Len();
  if (N == 0) return NaN3();
  const double s = GetSkew();
  if (t <= 0) return (ctrl_[2] - ctrl_[1]) * 3.0 * A() * (1 + s);
  if (t >= 1) return (ctrl_[N - 2] - ctrl_[N - 3]) * 3.0 * (s * s * A() + E());
  if (std::isnan(t)) return NaN3();
  const double u = (N - 3) * t;
  const V3 d = Stencil(*this, u, Segment(u, N - 4), true, [this](int j) { return ctrl_[j]; });
  return d / d.Norm();
}

V3 BetaCurve::GetControl(int i) const { return ctrl_[i + 1]; }

int BetaCurve::GetControlNumber() const { return ctrl_.Len() == 0 ? 0 : ctrl_.Len() - 2; }

void BetaCurve::SetControl(int i, const V3& p) {
  const int N = ctrl_.Len();
  const int c = i + 1;
  ctrl_[c] = p;
  const double s = GetSkew();
  const double s3 = s * s * s;
  if (c == 1) ctrl_[0] = ctrl_[1] + (ctrl_[1] - ctrl_[2]) / s3;
  if (c == N - 3 || c == N - 2) ctrl_[N - 1] = ctrl_[N - 2] + (ctrl_[N - 2] - ctrl_[N - 3]) * s3;
}

double BetaCurve::GetLength() const {
  V3 p = (*this)(0.0);
  double len = 0;
  for (double t = 0.02; t <= 1; t += 0.02) {
    const V3 q = (*this)(t);
    len += (q - p).Norm();
    p = q;
  }
  return len;
}

void BetaCurve::Resample(int m, bool closed, zrVector<V3>& out) const {
  const double L = GetLength() / m;
  const double D = 1.0 / m;
  const int wanted = closed ? m : m - 1;
  // Gathered aside and handed over in one block of the final size: zrVector grows by exact
  // steps, so appending one sample at a time would copy all the earlier ones.
  zr::detail::Vector<V3> samples;
  samples.reserve(static_cast<std::size_t>(m));
  double tp = 0;
  V3 prev = (*this)(0.0);
  samples.push_back(prev);
  while (static_cast<int>(samples.size()) < wanted) {
    double step = D;
    int dir = 1;
    double t = tp + D < 1 ? tp + D : 1.0;
    for (int move = 0;; ++move) {
      const double d = ((*this)(t)-prev).Norm();
      if (std::fabs(d - L) / D < 0.1 || (t == 1.0 && !(d > L)) || move == 200) break;
      const int want = d < L ? 1 : -1;
      if (want != dir) {
        dir = want;
        step /= 2;
      }
      t += dir * step;
      if (t > 1.0) t = 1.0;
    }
    if (t == 1.0) break;
    tp = t;
    prev = (*this)(t);
    samples.push_back(prev);
  }
  if (!closed) samples.push_back((*this)(1.0));
  zrColumnVector<V3> block(static_cast<int>(samples.size()));
  std::copy(samples.begin(), samples.end(), block.GetPointer());
  out.Move(block);
}

void BetaCurve::Rebuild(int m) {
  if (m <= 4 || ctrl_.Len() == 0) return;
  zrVector<V3> samples;
  Resample(m, false, samples);
  MakeInterpolation(samples);
}

double BetaCurve::FindCrossection(const V3& dir, const V3& point, double t0) const {
  return dir.X() != 0 ? FindCrosX(dir, point, t0) : FindCrosY(dir, point, t0);
}

namespace zr::detail {
namespace {

// Newton's method for the parameter where the curve meets the line through point along
// dir in the plane of the coordinates a (abscissa) and b; see BetaCurve::FindCrosX.
double FindCros(const BetaCurve& curve, const V3& dir, const V3& point, double t0, int a, int b,
                double tol) {
  if (dir[a] == 0) return 0;
  const double k = dir[b] / dir[a];
  const double h = 0.001;
  double t = t0;
  for (int step = 0; step < 100; ++step) {
    const V3 c = curve(t);
    const V3 ch = curve(t + h);
    const double f = (c[b] - k * c[a]) - (point[b] - k * point[a]);
    const double fd = (ch[b] - c[b]) / h - k * (ch[a] - c[a]) / h;
    const double next = fd == 0 ? t + 0.001 : t - f / fd;
    if (std::fabs(f) <= tol || std::fabs(next - t) <= tol) return next;
    t = next;
  }
  return 0;
}

}  // namespace
}  // namespace zr::detail

double BetaCurve::FindCrosX(const V3& dir, const V3& point, double t0) const {
  return zr::detail::FindCros(*this, dir, point, t0, 0, 1, 0.0001);
}

double BetaCurve::FindCrosY(const V3& dir, const V3& point, double t0) const {
  return zr::detail::FindCros(*this, dir, point, t0, 1, 0, 0.000001);
}

// ---- BetaContour ---------------------------------------------------------------------

BetaContour::BetaContour(double skew, double tension) : BetaCurve(skew, tension) {}

BetaContour::BetaContour(const zrVector<V3>& points, double skew, double tension)
    : BetaCurve(skew, tension) {
  MakeInterpolation(points);
}

BetaContour::BetaContour(const zrVector<V3>& points) : BetaCurve(1.0, 0.0) {
  MakeInterpolation(points);
}

BetaContour::BetaContour(const BetaContour& other) = default;

BetaContour& BetaContour::operator=(const BetaContour& other) {
  BetaCurve::operator=(other);
  return *this;
}

BetaContour::~BetaContour() = default;

void BetaContour::Init(const zrVector<V3>& points, double skew, double tension) {
  _SetSkewTension(skew, tension);
  MakeInterpolation(points);
}

void BetaContour::MakeInterpolation(const zrVector<V3>& points) {
  zr::detail::ClosedControl(*this, points, ctrl_);
}

V3 BetaContour::operator()(double t) const {
  const int N = ctrl_.Len();
  if (N == 0) return NaN3();
  if (!(t >= 0 && t < 1)) t = 0;
  const double u = (N - 3) * t;
  return Stencil(*this, u, Segment(u, N - 4), false, [this](int j) { return ctrl_[j]; });
}

V3 BetaContour::GetTangent(double t) const {
  const int N = ctrl_.Len();
  if (N == 0) return NaN3();
  if (!(t >= 0 && t < 1)) t = 0;
  const double u = (N - 3) * t;
  const V3 d = Stencil(*this, u, Segment(u, N - 4), true, [this](int j) { return ctrl_[j]; });
  return d / d.Norm();
}

V3 BetaContour::GetControl(int i) const { return ctrl_[i + 2]; }

int BetaContour::GetControlNumber() const { return ctrl_.Len() == 0 ? 0 : ctrl_.Len() - 3; }

void BetaContour::SetControl(int i, const V3& p) {
  const int N = ctrl_.Len();
  const int n = N - 3;
  ctrl_[i + 2] = p;
  const int copies[3] = {0, 1, N - 1};
  for (int c : copies)
    if (zr::detail::Wrap(c - 2, n) == i) ctrl_[c] = p;
}

void BetaContour::Rebuild(int m) {
  if (m <= 4 || ctrl_.Len() == 0) return;
  zrVector<V3> samples;
  Resample(m, true, samples);
  MakeInterpolation(samples);
}

// ---- BetaTube ------------------------------------------------------------------------

BetaTube::BetaTube(double skew, double tension) : BetaSpline(skew, tension) {}

BetaTube::BetaTube(const zrMatrix<V3>& points, double skew, double tension) {
  Init(points, skew, tension);
}

BetaTube::BetaTube(const zrMatrix<V3>& points) { Init(points, 1.0, 0.0); }

BetaTube::BetaTube(const BetaTube& other) : BetaSpline(other), net_(other.net_) { net_.Copy(); }

BetaTube& BetaTube::operator=(const BetaTube& other) {
  if (this != &other) {
    BetaSpline::operator=(other);
    net_ = other.net_;
  }
  return *this;
}

BetaTube::~BetaTube() = default;

void BetaTube::Init(const zrMatrix<V3>& points, double skew, double tension) {
  _SetSkewTension(skew, tension);
  MakeInterpolation(points);
}

void BetaTube::MakeInterpolation(const zrMatrix<V3>& points) {
  const int m = points.ColumnLen();
  const int k = points.LineLen();
  if (m == 0 || k == 0) {
    net_.Clear();
    return;
  }
  // Around first: every row becomes k + 3 cyclic control points.
  zrMatrix<V3> around(m, k + 3);
  zrVector<V3> ctrl;
  for (int i = 0; i < m; ++i) {
    zrLineVector<V3> row;
    points.GetLine(row, i);
    zr::detail::ClosedControl(*this, row, ctrl);
    for (int c = 0; c < k + 3; ++c) around(i, c) = ctrl[c];
  }
  // Then along: every one of those columns becomes m + 2 open control points.
  zrMatrix<V3> net(m + 2, k + 3);
  for (int c = 0; c < k + 3; ++c) {
    zrColumnVector<V3> column;
    around.GetColumn(column, c);
    zr::detail::OpenControl(*this, column, ctrl);
    for (int r = 0; r < m + 2; ++r) net(r, c) = ctrl[r];
  }
  net_.Move(net);
}

void BetaTube::MakeInterpolation(zrSimpleArray<zrSimpleContour2D> contours,
                                 const zrSimpleArray<double>& heights) {
  const int m = contours.Len();
  if (heights.Len() != m)
    throw BadParameters("BetaTube: number of heights must equal number of contours.");
  int k = 0;
  bool differ = false;
  for (int i = 0; i < m; ++i) {
    if (contours[i].Len() > k) k = contours[i].Len();
    if (contours[i].Len() != contours[0].Len()) differ = true;
  }
  if (k == 0) {
    net_.Clear();
    return;
  }
  if (differ || k > 200) {
    if (k > 200) k = 200;
    for (int i = 0; i < m; ++i) {
      zrSimpleContour2D sampled(k);
      for (int j = 0; j < k; ++j) sampled[j] = contours[i](static_cast<double>(j) / k);
      contours[i].swap(sampled);
    }
  }
  for (int i = 1; i < m; ++i) contours[i].MakeCoherentS(contours[i - 1]);
  zrMatrix<V3> points(m, k);
  for (int i = 0; i < m; ++i)
    for (int j = 0; j < k; ++j)
      points(i, j) = V3(contours[i][j].X(), contours[i][j].Y(), heights[i]);
  MakeInterpolation(points);
}

V3 BetaTube::vSum(double v, int c) const {
  const int M = net_.ColumnLen();
  if (v <= 0) return net_(1, c);
  if (v >= 1) return net_(M - 2, c);
  if (std::isnan(v)) return NaN3();
  const double z = (M - 3) * v;
  return Stencil(*this, z, Segment(z, M - 4), false, [this, c](int q) { return net_(q, c); });
}

V3 BetaTube::operator()(double u, double v) const {
  const int K = net_.LineLen();
  if (K == 0) return NaN3();
  if (!(u >= 0 && u < 1)) u = 0;
  const double w = (K - 3) * u;
  return Stencil(*this, w, Segment(w, K - 4), false, [this, v](int c) { return vSum(v, c); });
}

int BetaTube::GetRowNumber() const { return net_.ColumnLen() == 0 ? 0 : net_.ColumnLen() - 2; }

int BetaTube::GetColumnNumber() const { return net_.LineLen() == 0 ? 0 : net_.LineLen() - 3; }
