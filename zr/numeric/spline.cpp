#include "zr/numeric/spline.h"

#include <cmath>

namespace zr::detail {
namespace {

const char kOutOfRange[] = "zrSpline: Out of range.";
const double kCheckTolerance = 0.01;

// Whether |a - b| stays within the check's tolerance; a NaN does not.
int Close(double a, double b) { return std::fabs(a - b) <= kCheckTolerance ? 1 : 0; }

int CodeAt(const zrSimpleArray<int>& codes, int i) { return i < codes.Len() ? codes[i] : 0; }

}  // namespace
}  // namespace zr::detail

ZR_DEFINE_TYPE_IDENTITY_WITH(template <class TT>, zrSpline<TT>, "zrSpline")

template <class TT>
zrSpline<TT>::zrSpline(const zrSimpleArray<zrColumnVector<TT>>& points) {
  Set(points);
}

template <class TT>
zrSpline<TT>::zrSpline(const zrSpline& other)
    : zrUsingNew(other),
      segments_(other.segments_),
      points_(other.points_),
      increasing_(other.increasing_) {}

template <class TT>
zrSpline<TT>& zrSpline<TT>::operator=(const zrSpline& other) {
  if (this == &other) return *this;
  zrSpline copy(other);  // everything that may throw happens before anything changes
  segments_.swap(copy.segments_);
  points_.swap(copy.points_);
  increasing_ = copy.increasing_;
  return *this;
}

template <class TT>
zrSpline<TT>::~zrSpline() = default;

template <class TT>
void zrSpline<TT>::Set(const zrSimpleArray<zrColumnVector<TT>>& points) {
  const int n = points.Len();
  if (n < 3) throw BadParameters("Spline: number of point must be >= 3");
  for (int i = 0; i < n; ++i)
    if (points[i].Len() < 2) throw BadParameters("Spline: point must have 2 coordinates");
  zrSimpleArray<zrColumnVector<TT>> copy(points);
  zrSimpleArray<zrPolynom<TT>> segments(n - 1);
  int increasing = 1;
  for (int i = 1; i < n; ++i)
    if (!(copy[i][0] >= copy[i - 1][0])) increasing = 0;
  points_.swap(copy);
  segments_.swap(segments);
  increasing_ = increasing;
}

template <class TT>
int zrSpline<TT>::CountConditions(const zrSimpleArray<int>& codes,
                                  const zrMatrix<TT>& values) const {
  const int first = zr::detail::CodeAt(codes, 0);
  const int second = zr::detail::CodeAt(codes, 1);
  // (row, column) of values that each applied condition reads
  const int used[4][3] = {
      {first & 1, 0, 0}, {first & 2, 0, 1}, {second & 1, 1, 0}, {second & 2, 1, 1}};
  int count = 0;
  for (const auto& u : used) count += u[0] != 0 ? 1 : 0;
  if (count != 2) return count;
  for (const auto& u : used)
    if (u[0] != 0 && (u[1] >= values.ColumnLen() || u[2] >= values.LineLen()))
      throw BadParameters(zr::detail::kOutOfRange);
  return count;
}

template <class TT>
void zrSpline<TT>::BuildSegments3(const zrColumnVector<TT>& moments, int periodic) {
  const int n = points_.Len();
  zrColumnVector<TT> k(4);
  for (int i = 0; i < n - 1; ++i) {
    const int wrap = periodic != 0 && i == n - 2;
    const TT h = X(i + 1) - X(i);
    const TT m0 = moments[i];
    const TT m1 = wrap ? moments[0] : moments[i + 1];
    const TT y1 = wrap ? Y(0) : Y(i + 1);
    k[0] = (m1 - m0) / (6 * h);
    k[1] = 0.5 * m0;
    k[2] = (y1 - Y(i)) / h - (m1 / 6 + m0 / 3) * h;
    k[3] = Y(i);
    segments_[i].SetKoef(k, X(i), zrPolynom<TT>::PowerKoef);
  }
}

template <class TT>
void zrSpline<TT>::MkSpline3(const zrSimpleArray<int>& codes, const zrMatrix<TT>& values) {
  const int n = points_.Len();
  if (n < 3) throw BadParameters("Spline: number of point must be >= 3");
  if (CountConditions(codes, values) != 2)
    throw BadParameters("Invalid number of bound condition.");

  zrColumnVector<TT> h(n - 1);
  for (int i = 0; i < n - 1; ++i) h[i] = X(i + 1) - X(i);

  zrMatrix3Diag<TT> a(n);
  a.Diag().Fill(2.0);
  zrVector<TT>& up = a.Up();
  zrVector<TT>& down = a.Down();
  zrColumnVector<TT> d(n);
  // The end rows start as 2*M = 0; the conditions below rewrite them.
  up[0] = 0;
  down[n - 2] = 0;
  d[0] = 0;
  d[n - 1] = 0;
  for (int i = 1; i < n - 1; ++i) {
    const TT s = h[i - 1] + h[i];
    const TT l = h[i] / s;
    down[i - 1] = 1 - l;
    up[i] = l;
    d[i] = 6 / s * ((Y(i + 1) - Y(i)) / h[i] - (Y(i) - Y(i - 1)) / h[i - 1]);
  }

  const int first = zr::detail::CodeAt(codes, 0);
  const int second = zr::detail::CodeAt(codes, 1);
  if (first & 1) {
    up[0] = 1;
    d[0] = (6 / h[0]) * ((Y(1) - Y(0)) / h[0] - values(0, 0));
  }
  if (first & 2) {
    down[n - 2] = 1;
    d[n - 1] = (6 / h[n - 2]) * (values(0, 1) - (Y(n - 1) - Y(n - 2)) / h[n - 2]);
  }
  if (second & 1) {
    a.Diag()[0] = 1;
    up[0] = 0;
    d[0] = values(1, 0);
  }
  if (second & 2) {
    a.Diag()[n - 1] = 1;
    down[n - 2] = 0;
    d[n - 1] = values(1, 1);
  }

  zrColumnVector<TT> moments;
  a.SolveEquationChaserMethod(moments, d);
  BuildSegments3(moments, 0);
  if (!Check()) throw BadParameters("error in spline");
}

template <class TT>
void zrSpline<TT>::MkPeriodSpline3() {
  const int n = points_.Len();
  if (n < 3) throw BadParameters("Spline: number of point must be >= 3");
  const int m = n - 1;  // unknowns M_0 ... M_(n-2); M_(n-1) is M_0

  zrColumnVector<TT> h(m);
  for (int i = 0; i < m; ++i) h[i] = X(i + 1) - X(i);

  zrMatrix3Diag<TT> a(m);
  a.Diag().Fill(2.0);
  zrVector<TT>& up = a.Up();
  zrVector<TT>& down = a.Down();
  zrColumnVector<TT> d(m);
  TT top = 0;
  TT bottom = 0;
  for (int i = 0; i < m; ++i) {
    const TT hp = i == 0 ? h[m - 1] : h[i - 1];
    const TT yp = i == 0 ? Y(m - 1) : Y(i - 1);
    const TT yn = i == m - 1 ? Y(0) : Y(i + 1);
    const TT s = hp + h[i];
    const TT l = h[i] / s;
    if (i == 0) {
      top = 1 - l;
    } else {
      down[i - 1] = 1 - l;
    }
    if (i == m - 1) {
      bottom = l;
    } else {
      up[i] = l;
    }
    d[i] = 6 / s * ((yn - Y(i)) / h[i] - (Y(i) - yp) / hp);
  }

  zrColumnVector<TT> moments;
  if (m == 2) {
    // Both neighbours of each unknown are the other one: the corners join the band.
    up[0] = up[0] + top;
    down[0] = down[0] + bottom;
    a.SolveEquationChaserMethod(moments, d);
  } else {
    a.SolveEquationCycleChaserMethod(moments, d, top, bottom);
  }
  BuildSegments3(moments, 1);
  if (!Check()) throw BadParameters("error in spline");
}

template <class TT>
void zrSpline<TT>::Make(int degree, const zrSimpleArray<int>& codes, const zrMatrix<TT>& values) {
  if (degree == 3) {
    MkSpline3(codes, values);
    return;
  }
  if (degree != 1) throw BadParameters("zrSpline: wrong degree.");
  const int n = points_.Len();
  if (n < 3) throw BadParameters("Spline: number of point must be >= 3");
  if (CountConditions(codes, values) != 0)
    throw BadParameters("Invalid number of bound condition.");
  zrColumnVector<TT> k(2);
  for (int i = 0; i < n - 1; ++i) {
    k[0] = (Y(i + 1) - Y(i)) / (X(i + 1) - X(i));
    k[1] = Y(i);
    segments_[i].SetKoef(k, X(i), zrPolynom<TT>::PowerKoef);
  }
  if (!Check()) throw BadParameters("error in spline");
}

template <class TT>
int zrSpline<TT>::GetSegmentNum(const TT& x) const {
  const int n = points_.Len();
  if (n <= 1 || !(X(0) <= x && x <= X(n - 1))) throw BadParameters(zr::detail::kOutOfRange);
  if (increasing_) {
    // x_i > x is false, then true along i, so the first true one is found by halving.
    int first = 1;
    int len = n - 1;
    while (len > 0) {
      const int half = len / 2;
      if (X(first + half) > x) {
        len = half;
      } else {
        first += half + 1;
        len -= half + 1;
      }
    }
    return first < n ? first - 1 : n - 2;
  }
  for (int i = 1; i < n; ++i)
    if (X(i) > x) return i - 1;
  return n - 2;
}

template <class TT>
const zrPolynom<TT>& zrSpline<TT>::Segment(int seg) const {
  if (seg < 0 || seg >= points_.Len() - 1) throw BadParameters(zr::detail::kOutOfRange);
  return segments_[seg];
}

template <class TT>
TT zrSpline<TT>::operator()(const TT& x) const {
  return segments_[GetSegmentNum(x)](x);
}

template <class TT>
TT zrSpline<TT>::operator()(const TT& x, int seg) const {
  return Segment(seg)(x);
}

template <class TT>
TT zrSpline<TT>::Derivative(const TT& x, int m) const {
  return segments_[GetSegmentNum(x)].Derivative(x, m);
}

template <class TT>
TT zrSpline<TT>::Derivative(const TT& x, int m, int seg) const {
  return Segment(seg).Derivative(x, m);
}

template <class TT>
TT zrSpline<TT>::Derivative(int m, int i) const {
  const int n = points_.Len();
  if (i < 0 || i >= n) throw BadParameters(zr::detail::kOutOfRange);
  return Segment(i < n - 1 ? i : n - 2).Derivative(X(i), m);
}

template <class TT>
int zrSpline<TT>::Check() const {
  const int segs = segments_.Len();
  for (int i = 0; i < segs; ++i) {
    const zrPolynom<TT>& p = segments_[i];
    if (!zr::detail::Close(p(X(i)), Y(i)) || !zr::detail::Close(p(X(i + 1)), Y(i + 1))) return 0;
  }
  for (int i = 1; i < segs; ++i) {
    const zrPolynom<TT>& left = segments_[i - 1];
    const zrPolynom<TT>& right = segments_[i];
    for (int j = 1; j <= left.Len() - 2; ++j)
      if (!zr::detail::Close(left.Derivative(X(i), j), right.Derivative(X(i), j))) return 0;
  }
  return 1;
}

ZR_INSTANTIATE_TEMPLATE(class, zrSpline<double>);
