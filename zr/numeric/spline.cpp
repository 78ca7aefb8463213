#include "zr/numeric/spline.h"

#include <cstdint>
#include <utility>

#include "zr/numeric/detail/spline_kernel.h"
#include "zr/numeric/detail/spline_records.h"

namespace zr::detail {
namespace {

const char kOutOfRange[] = "zrSpline: Out of range.";
const char kLengthsDiffer[] = "zrSpline: x and y differ in length.";

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
      n_(other.n_),
      records_(other.records_),
      koef_(other.koef_),
      increasing_(other.increasing_) {
  // The tree's alignment belongs to its block, so the copy lays out its own.
  MakeTree();
}

template <class TT>
zrSpline<TT>& zrSpline<TT>::operator=(const zrSpline& other) {
  if (this == &other) return *this;
  zrSpline copy(other);  // everything that may throw happens before anything changes
  Exchange(copy);
  return *this;
}

template <class TT>
void zrSpline<TT>::Exchange(zrSpline& other) {
  std::swap(n_, other.n_);
  records_.swap(other.records_);
  tree_.swap(other.tree_);
  std::swap(koef_, other.koef_);
  std::swap(depth_, other.depth_);
  std::swap(treeStart_, other.treeStart_);
  std::swap(increasing_, other.increasing_);
}

template <class TT>
zrSpline<TT>::~zrSpline() = default;

template <class TT>
void zrSpline<TT>::Set(const zrSimpleArray<zrColumnVector<TT>>& points) {
  const int n = points.Len();
  if (n < 3) throw BadParameters("Spline: number of point must be >= 3");
  zrSpline s;  // no segments built
  s.increasing_ = MakeRecords(points, s.records_);
  s.n_ = n;
  s.MakeTree();
  Exchange(s);
}

// The records are one block of 32-bit count: more points cannot be held.
template <class TT>
void zrSpline<TT>::CheckRecordCount(int n) {
  if (n > INT32_MAX / kRecord)
    throw zrErrNoMemory(static_cast<std::uint64_t>(n) * kRecord * sizeof(TT));
}

template <class TT>
int zrSpline<TT>::MakeRecords(const zrSimpleArray<zrColumnVector<TT>>& points,
                              zrSimpleArray<TT>& records) {
  const int n = points.Len();
  CheckRecordCount(n);
  records.Set(n * kRecord);
  TT* r = records.GetPointer();
  int increasing = 1;
  for (int i = 0; i < n; ++i, r += kRecord) {
    const zrColumnVector<TT>& p = points[i];
    if (p.Len() < 2) throw BadParameters("Spline: point must have 2 coordinates");
    r[0] = p[0];
    r[1] = p[1];
    for (int j = 2; j < kRecord; ++j) r[j] = TT{};
    if (i > 0 && !(r[0] >= r[-kRecord])) increasing = 0;
  }
  return increasing;
}

template <class TT>
void zrSpline<TT>::MakeTree() {
  depth_ = 0;
  treeStart_ = 0;
  if (increasing_ && n_ > 0)
    depth_ = zr::detail::SplineKernels<TT>::MakeTree(records_.GetPointer(), n_, tree_);
  if (depth_ > 0)
    treeStart_ =
        static_cast<int>(zr::detail::AlignedNodes(tree_.GetPointer()) - tree_.GetPointer());
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
zr::detail::SplineEnds<TT> zrSpline<TT>::EndRows(const zrSimpleArray<int>& codes,
                                                 const zrMatrix<TT>& values) const {
  const int n = n_;
  // The end rows start as 2*M = 0; the conditions rewrite them in their order.
  zr::detail::SplineEnds<TT> e = {2.0, 0, 0, 2.0, 0, 0};
  const TT hFirst = X(1) - X(0);
  const TT hLast = X(n - 1) - X(n - 2);
  const int first = zr::detail::CodeAt(codes, 0);
  const int second = zr::detail::CodeAt(codes, 1);
  if (first & 1) {
    e.up0 = 1;
    e.d0 = (6 / hFirst) * ((Y(1) - Y(0)) / hFirst - values(0, 0));
  }
  if (first & 2) {
    e.downN = 1;
    e.dN = (6 / hLast) * (values(0, 1) - (Y(n - 1) - Y(n - 2)) / hLast);
  }
  if (second & 1) {
    e.diag0 = 1;
    e.up0 = 0;
    e.d0 = values(1, 0);
  }
  if (second & 2) {
    e.diagN = 1;
    e.downN = 0;
    e.dN = values(1, 1);
  }
  return e;
}

template <class TT>
void zrSpline<TT>::SetSegment(int i, const zrColumnVector<TT>& k) {
  TT* const r = records_.GetPointer() + static_cast<std::int64_t>(i) * kRecord;
  for (int j = 0; j < k.Len(); ++j) r[2 + j] = k[j];
}

template <class TT>
void zrSpline<TT>::BuildSegments3(const TT* moments, int periodic) {
  const int n = n_;
  koef_ = 0;
  for (int i = 0; i < n - 1; ++i) {
    TT* const r = records_.GetPointer() + static_cast<std::int64_t>(i) * kRecord;
    const int wrap = periodic != 0 && i == n - 2;
    const TT h = r[kRecord] - r[0];
    const TT m0 = moments[i];
    const TT m1 = wrap ? moments[0] : moments[i + 1];
    const TT y1 = wrap ? records_[1] : r[kRecord + 1];
    r[2] = (m1 - m0) / (6 * h);
    r[3] = 0.5 * m0;
    r[4] = (y1 - r[1]) / h - (m1 / 6 + m0 / 3) * h;
    r[5] = r[1];
  }
  koef_ = 4;
}

template <class TT>
void zrSpline<TT>::MkSpline3(const zrSimpleArray<int>& codes, const zrMatrix<TT>& values) {
  const int n = n_;
  if (n < 3) throw BadParameters("Spline: number of point must be >= 3");
  if (CountConditions(codes, values) != 2)
    throw BadParameters("Invalid number of bound condition.");
  const zr::detail::SplineEnds<TT> e = EndRows(codes, values);
  bool ok = false;
  if (zr::detail::SplineKernels<TT>::Cubic(records_.GetPointer(), n, e, ok)) {
    koef_ = 4;
  } else {
    zrMatrix3Diag<TT> a(n);
    zrVector<TT>& up = a.Up();
    zrVector<TT>& down = a.Down();
    a.Diag().Fill(2.0);
    zrColumnVector<TT> d(n);
    a.Diag()[0] = e.diag0;
    up[0] = e.up0;
    d[0] = e.d0;
    for (int i = 1; i < n - 1; ++i) {
      TT l;
      zr::detail::CubicRow(X(i) - X(i - 1), X(i + 1) - X(i), Y(i - 1), Y(i), Y(i + 1), l, d[i]);
      down[i - 1] = 1 - l;
      up[i] = l;
    }
    a.Diag()[n - 1] = e.diagN;
    down[n - 2] = e.downN;
    d[n - 1] = e.dN;
    zrColumnVector<TT> moments;
    a.SolveEquationChaserMethod(moments, d);
    BuildSegments3(&moments[0], 0);
    ok = Check() != 0;
  }
  if (!ok) throw BadParameters("error in spline");
}

template <class TT>
void zrSpline<TT>::MkPeriodSpline3() {
  const int n = n_;
  if (n < 3) throw BadParameters("Spline: number of point must be >= 3");
  const int m = n - 1;  // unknowns M_0 ... M_(n-2); M_(n-1) is M_0

  zrMatrix3Diag<TT> a(m);
  a.Diag().Fill(2.0);
  zrVector<TT>& up = a.Up();
  zrVector<TT>& down = a.Down();
  zrColumnVector<TT> d(m);
  TT top = 0;
  TT bottom = 0;
  for (int i = 0; i < m; ++i) {
    const int prev = i == 0 ? m - 1 : i - 1;
    TT l;
    zr::detail::CubicRow(X(prev + 1) - X(prev), X(i + 1) - X(i), Y(prev), Y(i),
                         i == m - 1 ? Y(0) : Y(i + 1), l, d[i]);
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
  BuildSegments3(&moments[0], 1);
  if (!Check()) throw BadParameters("error in spline");
}

template <class TT>
void zrSpline<TT>::Make(int degree, const zrSimpleArray<int>& codes, const zrMatrix<TT>& values) {
  if (degree == 3) {
    MkSpline3(codes, values);
    return;
  }
  if (degree != 1) throw BadParameters("zrSpline: wrong degree.");
  const int n = n_;
  if (n < 3) throw BadParameters("Spline: number of point must be >= 3");
  if (CountConditions(codes, values) != 0)
    throw BadParameters("Invalid number of bound condition.");
  zrColumnVector<TT> k(2);
  koef_ = 0;
  for (int i = 0; i < n - 1; ++i) {
    k[0] = (Y(i + 1) - Y(i)) / (X(i + 1) - X(i));
    k[1] = Y(i);
    SetSegment(i, k);
  }
  koef_ = 2;
  if (!Check()) throw BadParameters("error in spline");
}

template <class TT>
zrSpline<TT> zrSpline<TT>::Cubic(const zrSimpleArray<TT>& x, const zrSimpleArray<TT>& y,
                                 const zrSplineEnd& end) {
  if (x.Len() != y.Len()) throw BadParameters(zr::detail::kLengthsDiffer);
  zrSpline s;
  s.MakeCubic(x.GetPointer(), 1, y.GetPointer(), 1, x.Len(), end);
  return s;
}

template <class TT>
zrSpline<TT> zrSpline<TT>::Cubic(const zrVector<TT>& x, const zrVector<TT>& y,
                                 const zrSplineEnd& end) {
  if (x.Len() != y.Len()) throw BadParameters(zr::detail::kLengthsDiffer);
  zrSpline s;
  s.MakeCubic(x.GetPointer(), x.Tab(), y.GetPointer(), y.Tab(), x.Len(), end);
  return s;
}

template <class TT>
zrSpline<TT> zrSpline<TT>::Cubic(const TT* x, const TT* y, int n, const zrSplineEnd& end) {
  zrSpline s;
  s.MakeCubic(x, 1, y, 1, n, end);
  return s;
}

template <class TT>
void zrSpline<TT>::MakeCubic(const TT* x, int xStep, const TT* y, int yStep, int n,
                             const zrSplineEnd& end) {
  if (n < 3) throw BadParameters("Spline: number of point must be >= 3");
  CheckRecordCount(n);
  const auto xAt = [x, xStep](int i) { return x[static_cast<std::int64_t>(i) * xStep]; };
  const auto yAt = [y, yStep](int i) { return y[static_cast<std::int64_t>(i) * yStep]; };
  for (int i = 1; i < n; ++i)
    if (!(xAt(i) > xAt(i - 1))) throw BadParameters("zrSpline: x must be strictly increasing.");
  if (end.GetKind() == zrSplineEnd::kPeriodic && !zr::detail::SplineClose(yAt(n - 1), yAt(0)))
    throw BadParameters("zrSpline: periodic y must end at its first value.");

  // The records and the tree as Set makes them from the points (x_i, y_i), in the fresh
  // spline Cubic returns.
  records_.Set(n * kRecord);
  TT* r = records_.GetPointer();
  for (int i = 0; i < n; ++i, r += kRecord) {
    r[0] = xAt(i);
    r[1] = yAt(i);
    for (int j = 2; j < kRecord; ++j) r[j] = TT{};
  }
  n_ = n;
  koef_ = 0;
  increasing_ = 1;
  MakeTree();

  if (end.GetKind() == zrSplineEnd::kPeriodic) {
    MkPeriodSpline3();
    return;
  }
  zrSimpleArray<int> codes(2);
  zrMatrix<TT> values(2, 2);
  values.Fill(TT{});
  if (end.GetKind() == zrSplineEnd::kClamped) {
    codes[0] = 3;
    codes[1] = 0;
    values(0, 0) = end.Left();
    values(0, 1) = end.Right();
  } else {
    codes[0] = 0;
    codes[1] = 3;
  }
  MkSpline3(codes, values);
}

template <class TT>
void zrSpline<TT>::CheckInside(const TT* xs, int n) const {
  const TT* const r = records_.GetPointer();
  for (int i = 0; i < n; ++i)
    if (n_ <= 1 || !(r[0] <= xs[i] && xs[i] <= r[static_cast<std::int64_t>(n_ - 1) * kRecord]))
      throw BadParameters(zr::detail::kOutOfRange);
}

template <class TT>
template <class F>
void zrSpline<TT>::EachPoint(const TT* xs, int n, TT* out, F f) const {
  if (n <= 0) return;
  // An out that starts inside xs, past its origin, would overwrite values not yet read.
  const auto at = [](const TT* p) { return reinterpret_cast<std::uintptr_t>(p); };
  const std::uintptr_t bytes = static_cast<std::uintptr_t>(n) * sizeof(TT);
  if (out != xs && at(out) < at(xs) + bytes && at(xs) < at(out) + bytes) {
    zrSimpleArray<TT> values(n);
    EachPoint(xs, n, values.GetPointer(), f);
    for (int i = 0; i < n; ++i) out[i] = values[i];
    return;
  }
  int seg = 0;
  if (depth_ > 0) {
    // Each point's segment from the previous one's, or from the tree.
    const TT* const records = records_.GetPointer();
    for (int i = 0; i < n; ++i) {
      const TT x = xs[i];
      if (!zr::detail::SplineKernels<TT>::Near(records, n_, x, seg)) seg = Search(x);
      out[i] = f(seg, x);
    }
    return;
  }
  for (int i = 0; i < n; ++i) {
    const TT x = xs[i];
    out[i] = f(GetSegmentNum(x, seg), x);
  }
}

template <class TT>
void zrSpline<TT>::Value(const TT* xs, int n, TT* out) const {
  CheckInside(xs, n);
  EachPoint(xs, n, out, [this](int seg, const TT& x) { return EvalSegment(seg, x); });
}

template <class TT>
void zrSpline<TT>::Derivative(const TT* xs, int n, int m, TT* out) const {
  if (m < 0) throw BadParameters("zrPolynom : wrong derivative order");
  CheckInside(xs, n);
  EachPoint(xs, n, out, [this, m](int seg, const TT& x) { return DeriveSegment(seg, x, m); });
}

template <class TT>
void zrSpline<TT>::Value(const zrSimpleArray<TT>& xs, zrSimpleArray<TT>& out) const {
  const int n = xs.Len();
  CheckInside(xs.GetPointer(), n);
  out.Init(n);
  EachPoint(xs.GetPointer(), n, out.GetPointer(),
            [this](int seg, const TT& x) { return EvalSegment(seg, x); });
}

template <class TT>
void zrSpline<TT>::Derivative(const zrSimpleArray<TT>& xs, int m, zrSimpleArray<TT>& out) const {
  if (m < 0) throw BadParameters("zrPolynom : wrong derivative order");
  const int n = xs.Len();
  CheckInside(xs.GetPointer(), n);
  out.Init(n);
  EachPoint(xs.GetPointer(), n, out.GetPointer(),
            [this, m](int seg, const TT& x) { return DeriveSegment(seg, x, m); });
}

template <class TT>
int zrSpline<TT>::Search(const TT& x) const {
  const int n = n_;
  int seg = 0;
  if (depth_ > 0 &&
      zr::detail::SplineKernels<TT>::Search(tree_.GetPointer() + treeStart_, depth_, n, x, seg))
    return seg;
  for (int i = 1; i < n; ++i)
    if (X(i) > x) return i - 1;
  return n - 2;
}

template <class TT>
int zrSpline<TT>::GetSegmentNum(const TT& x) const {
  CheckInside(&x, 1);
  return Search(x);
}

template <class TT>
int zrSpline<TT>::GetSegmentNum(const TT& x, int& hint) const {
  CheckInside(&x, 1);
  const int n = n_;
  if (depth_ > 0) {
    // The hint's segment and the three after it first, then the tree.
    if (!zr::detail::SplineKernels<TT>::Near(records_.GetPointer(), n, x, hint)) hint = Search(x);
    return hint;
  }
  if (increasing_ && hint >= 0 && hint <= n - 2 && X(hint) <= x) {
    // Every abscissa up to x_hint is <= x: the first one above x lies further on.
    int i = hint + 1;
    while (i < n && !(X(i) > x)) ++i;
    hint = i - 1 < n - 2 ? i - 1 : n - 2;
    return hint;
  }
  hint = Search(x);
  return hint;
}

template <class TT>
TT zrSpline<TT>::EvalSegment(int seg, const TT& x) const {
  if (koef_ > 0)
    return zr::detail::RecordValue(records_.GetPointer() + static_cast<std::int64_t>(seg) * kRecord,
                                   koef_, x);
  return TT{};  // an unbuilt segment has no coefficients
}

template <class TT>
void zrSpline<TT>::CheckSegment(int seg) const {
  if (seg < 0 || seg >= n_ - 1) throw BadParameters(zr::detail::kOutOfRange);
}

template <class TT>
TT zrSpline<TT>::DeriveSegment(int seg, const TT& x, int m) const {
  if (m < 0) throw BadParameters("zrPolynom : wrong derivative order");
  if (koef_ > 0)
    return zr::detail::RecordDerivative(
        records_.GetPointer() + static_cast<std::int64_t>(seg) * kRecord, koef_, x, m);
  return TT{};
}

template <class TT>
TT zrSpline<TT>::operator()(const TT& x) const {
  return EvalSegment(GetSegmentNum(x), x);
}

template <class TT>
TT zrSpline<TT>::Value(const TT& x, int& hint) const {
  return EvalSegment(GetSegmentNum(x, hint), x);
}

template <class TT>
TT zrSpline<TT>::operator()(const TT& x, int seg) const {
  CheckSegment(seg);
  return EvalSegment(seg, x);
}

template <class TT>
TT zrSpline<TT>::Derivative(const TT& x, int m) const {
  return DeriveSegment(GetSegmentNum(x), x, m);
}

template <class TT>
TT zrSpline<TT>::Derivative(const TT& x, int m, int seg) const {
  CheckSegment(seg);
  return DeriveSegment(seg, x, m);
}

template <class TT>
TT zrSpline<TT>::Derivative(int m, int i) const {
  const int n = n_;
  if (i < 0 || i >= n) throw BadParameters(zr::detail::kOutOfRange);
  return DeriveSegment(i < n - 1 ? i : n - 2, X(i), m);
}

template <class TT>
int zrSpline<TT>::Check() const {
  const int segs = n_ > 0 ? n_ - 1 : 0;
  const TT* const r = records_.GetPointer();
  const auto at = [r](int i) { return r + static_cast<std::int64_t>(i) * kRecord; };
  if (koef_ > 0) {
    for (int i = 0; i < segs; ++i)
      if (!zr::detail::MeetsItsPoints(at(i), koef_)) return 0;
    for (int i = 0; i + 1 < segs; ++i)
      if (!zr::detail::JoinsTheNext(at(i), koef_)) return 0;
    return 1;
  }
  // Unbuilt segments have no coefficients: the value 0 and no derivative to compare.
  for (int i = 0; i < segs; ++i)
    if (!zr::detail::SplineClose(TT{}, Y(i)) || !zr::detail::SplineClose(TT{}, Y(i + 1))) return 0;
  return 1;
}

ZR_INSTANTIATE_TEMPLATE(class, zrSpline<double>);
