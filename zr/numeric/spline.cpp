#include "zr/numeric/spline.h"

#include <cmath>
#include <cstdint>
#include <limits>

namespace zr::detail {
namespace {

const char kOutOfRange[] = "zrSpline: Out of range.";
const char kLengthsDiffer[] = "zrSpline: x and y differ in length.";
const double kCheckTolerance = 0.01;

// Whether |a - b| stays within the check's tolerance; a NaN does not.
int Close(double a, double b) { return std::fabs(a - b) <= kCheckTolerance ? 1 : 0; }

int CodeAt(const zrSimpleArray<int>& codes, int i) { return i < codes.Len() ? codes[i] : 0; }

// The search tree's node 0 (unused) starts a 64-byte line, so nodes 8k ... 8k + 7 share
// one.
template <class TT>
TT* AlignedNodes(TT* p) {
  const auto at = reinterpret_cast<std::uintptr_t>(p);
  return p + (64 - at % 64) % 64 / sizeof(TT);
}

// Polynomial of a record (koef coefficients, PowerKoef about r[0]) at x, m-th derivative,
// in zrPolynom's operations and order.
template <class TT>
TT RecordValue(const TT* r, int koef, TT x) {
  const TT* c = r + 2;
  const TT t = x + (TT{} - r[0]);
  TT p = c[0];
  for (int i = 1; i < koef; ++i) p = p * t + c[i];
  return p;
}

// Check()'s tests on cubic records: segment a within the tolerance of its two end points
// (the next record's abscissa and ordinate follow at a + kRecord), and the first and
// second derivatives of segments a and b (the next one) agreeing at b's node, formed as
// zrPolynom<TT>::Derivative forms them (the falling-factorial weights 3, 2, 1 and 6, 2 are
// exact).
template <class TT, int kRecord>
bool CubicEndsClose(const TT* a) {
  return Close(RecordValue(a, 4, a[0]), a[1]) &&
         Close(RecordValue(a, 4, a[kRecord]), a[kRecord + 1]);
}

template <class TT>
bool CubicJointClose(const TT* a, const TT* b) {
  const TT ta = b[0] + (TT{} - a[0]);
  const TT tb = b[0] + (TT{} - b[0]);
  const TT a1 = ((a[2] * 3.0) * ta + a[3] * 2.0) * ta + a[4] * 1.0;
  const TT b1 = ((b[2] * 3.0) * tb + b[3] * 2.0) * tb + b[4] * 1.0;
  const TT a2 = (a[2] * 6.0) * ta + a[3] * 2.0;
  const TT b2 = (b[2] * 6.0) * tb + b[3] * 2.0;
  return Close(a1, b1) && Close(a2, b2);
}

template <class TT>
TT RecordDerivative(const TT* r, int koef, TT x, int m) {
  if (m >= koef) return TT{};
  return PowerDerivative(r + 2, koef, x + (TT{} - r[0]), m);
}

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
  if (increasing_ && records_.Len() > 0) depth_ = MakeTree(records_, tree_);
}

template <class TT>
zrSpline<TT>& zrSpline<TT>::operator=(const zrSpline& other) {
  if (this == &other) return *this;
  zrSpline copy(other);  // everything that may throw happens before anything changes
  n_ = copy.n_;
  records_.swap(copy.records_);
  tree_.swap(copy.tree_);
  koef_ = copy.koef_;
  depth_ = copy.depth_;
  increasing_ = copy.increasing_;
  return *this;
}

template <class TT>
zrSpline<TT>::~zrSpline() = default;

template <class TT>
void zrSpline<TT>::Set(const zrSimpleArray<zrColumnVector<TT>>& points) {
  const int n = points.Len();
  if (n < 3) throw BadParameters("Spline: number of point must be >= 3");
  zrSimpleArray<TT> records, tree;
  const int increasing = MakeRecords(points, records);
  const int depth = increasing ? MakeTree(records, tree) : 0;
  n_ = n;
  records_.swap(records);
  tree_.swap(tree);
  koef_ = 0;
  depth_ = depth;
  increasing_ = increasing;
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
int zrSpline<TT>::MakeTree(const zrSimpleArray<TT>& records, zrSimpleArray<TT>& tree) {
  // Keys x_1 ... x_(n-2), m of them; a complete tree of depth levels holds 2^depth - 1.
  const int m = records.Len() / kRecord - 2;
  int depth = 1;
  while ((1LL << depth) - 1 < m) ++depth;
  const int size = static_cast<int>((1LL << depth) - 1);
  tree.Set(size + 1 + 64 / static_cast<int>(sizeof(TT)));
  TT* const nodes = zr::detail::AlignedNodes(tree.GetPointer());
  // The keys in sorted order are the nodes in order of an in-order walk: the one at
  // position p = 1 ... size, with t trailing zero bits, is node p >> (t + 1) of level
  // depth - 1 - t. Taking them in that order reads the records once, front to back.
  const TT* r = records.GetPointer() + kRecord;
  for (int p = 1; p <= size; ++p) {
    const int t = __builtin_ctz(static_cast<unsigned>(p));
    const int node = (1 << (depth - 1 - t)) + (p >> (t + 1));
    if (p <= m) {
      nodes[node] = *r;
      r += kRecord;
    } else {
      nodes[node] = std::numeric_limits<TT>::infinity();
    }
  }
  return depth;
}

template <class TT>
const TT* zrSpline<TT>::TreeNodes() const {
  return zr::detail::AlignedNodes(tree_.GetPointer());
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

  // The tridiagonal system for the moments, Diag = 2.0 and the interior rows as
  // documented, is set up row by row inside zrMatrix3Diag's sweep:
  //   alpha[0] = -Up[0] / Diag[0], beta[0] = d[0] / Diag[0];
  //   row i: den = Down[i-1]*alpha[i-1] + Diag[i], alpha[i] = -Up[i] / den,
  //          beta[i] = (d[i] - Down[i-1]*beta[i-1]) / den;
  //   M[n-1] = (d[n-1] - Down[n-2]*beta[n-2]) / (Down[n-2]*alpha[n-2] + Diag[n-1]);
  //   M[i] = M[i+1]*alpha[i] + beta[i],
  // the same operations in the same order, without building the matrix.
  const TT* const r = records_.GetPointer();
  const auto x = [r](int i) { return r[static_cast<std::int64_t>(i) * kRecord]; };
  const auto y = [r](int i) { return r[static_cast<std::int64_t>(i) * kRecord + 1]; };
  // The end rows start as 2*M = 0; the conditions rewrite them.
  TT diag0 = 2.0, up0 = 0, d0 = 0;
  TT diagN = 2.0, downN = 0, dN = 0;
  const TT hFirst = x(1) - x(0);
  const TT hLast = x(n - 1) - x(n - 2);
  const int first = zr::detail::CodeAt(codes, 0);
  const int second = zr::detail::CodeAt(codes, 1);
  if (first & 1) {
    up0 = 1;
    d0 = (6 / hFirst) * ((y(1) - y(0)) / hFirst - values(0, 0));
  }
  if (first & 2) {
    downN = 1;
    dN = (6 / hLast) * (values(0, 1) - (y(n - 1) - y(n - 2)) / hLast);
  }
  if (second & 1) {
    diag0 = 1;
    up0 = 0;
    d0 = values(1, 0);
  }
  if (second & 2) {
    diagN = 1;
    downN = 0;
    dN = values(1, 1);
  }

  // alpha[i] and beta[i] wait in record i's first two coefficient places, which the back
  // substitution reads just before it writes segment i's coefficients there.
  TT* const rec0 = records_.GetPointer();
  rec0[2] = -up0 / diag0;
  rec0[3] = d0 / diag0;
  TT hPrev = hFirst;
  for (int i = 1; i < n - 1; ++i) {
    TT* const rec = rec0 + static_cast<std::int64_t>(i) * kRecord;
    const TT h = rec[kRecord] - rec[0];
    const TT s = hPrev + h;
    const TT l = h / s;
    const TT down = 1 - l;  // Down[i-1]; Up[i] = l
    const TT d = 6 / s * ((rec[kRecord + 1] - rec[1]) / h - (rec[1] - rec[1 - kRecord]) / hPrev);
    const TT den = down * rec[2 - kRecord] + 2.0;
    rec[2] = -l / den;
    rec[3] = (d - down * rec[3 - kRecord]) / den;
    hPrev = h;
  }
  const TT* const last = rec0 + static_cast<std::int64_t>(n - 2) * kRecord;
  TT m1 = (dN - downN * last[3]) / (downN * last[2] + diagN);
  // Each segment is written as soon as its two moments are known, and Check()'s tests run
  // on it there: the divisions of the coefficients fill the wait of the back substitution.
  koef_ = 0;
  bool ok = true;
  for (int i = n - 2; i >= 0; --i) {
    TT* const rec = rec0 + static_cast<std::int64_t>(i) * kRecord;
    const TT m0 = m1 * rec[2] + rec[3];
    const TT h = rec[kRecord] - rec[0];
    rec[2] = (m1 - m0) / (6 * h);
    rec[3] = 0.5 * m0;
    rec[4] = (rec[kRecord + 1] - rec[1]) / h - (m1 / 6 + m0 / 3) * h;
    rec[5] = rec[1];
    ok = ok && zr::detail::CubicEndsClose<TT, kRecord>(rec) &&
         (i == n - 2 || zr::detail::CubicJointClose(rec, rec + kRecord));
    m1 = m0;
  }
  koef_ = 4;
  if (!ok) throw BadParameters("error in spline");
}

template <class TT>
void zrSpline<TT>::MkPeriodSpline3() {
  const int n = n_;
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
  if (end.GetKind() == zrSplineEnd::kPeriodic && !zr::detail::Close(yAt(n - 1), yAt(0)))
    throw BadParameters("zrSpline: periodic y must end at its first value.");

  // The records and the tree as Set makes them from the points (x_i, y_i).
  zrSimpleArray<TT> records, tree;
  records.Set(n * kRecord);
  TT* r = records.GetPointer();
  for (int i = 0; i < n; ++i, r += kRecord) {
    r[0] = xAt(i);
    r[1] = yAt(i);
    for (int j = 2; j < kRecord; ++j) r[j] = TT{};
  }
  const int depth = MakeTree(records, tree);
  n_ = n;
  records_.swap(records);
  tree_.swap(tree);
  koef_ = 0;
  depth_ = depth;
  increasing_ = 1;

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
  int hint = 0;
  for (int i = 0; i < n; ++i) {
    const TT x = xs[i];
    out[i] = f(GetSegmentNum(x, hint), x);
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
  if (increasing_) {
    // The first i >= 1 with x_i > x, less one, is the number of keys x_1 ... x_(n-2) that
    // are <= x (n - 2 at most). Descending the complete tree, right when the key is <= x,
    // ends at leaf 2^depth + that number; the padding keys (+infinity, after every real
    // key) only count for x = +infinity, where the bound takes over.
    const TT* const nodes = TreeNodes();
    const auto base = reinterpret_cast<std::uintptr_t>(nodes);
    std::uint64_t k = 1;
    for (int l = 0; l < depth_; ++l) {
      // Three levels ahead: the eight descendants of k there share one line.
      __builtin_prefetch(reinterpret_cast<const void*>(base + 8 * k * sizeof(TT)));
      k = 2 * k + (nodes[k] <= x ? 1 : 0);
    }
    const std::int64_t count = static_cast<std::int64_t>(k - (std::uint64_t{1} << depth_));
    return count < n - 2 ? static_cast<int>(count) : n - 2;
  }
  const TT* const r = records_.GetPointer();
  for (int i = 1; i < n; ++i)
    if (r[static_cast<std::int64_t>(i) * kRecord] > x) return i - 1;
  return n - 2;
}

template <class TT>
int zrSpline<TT>::GetSegmentNum(const TT& x) const {
  const int n = n_;
  const TT* const r = records_.GetPointer();
  if (n <= 1 || !(r[0] <= x && x <= r[static_cast<std::int64_t>(n - 1) * kRecord]))
    throw BadParameters(zr::detail::kOutOfRange);
  return Search(x);
}

template <class TT>
int zrSpline<TT>::GetSegmentNum(const TT& x, int& hint) const {
  const int n = n_;
  const TT* const r = records_.GetPointer();
  if (n <= 1 || !(r[0] <= x && x <= r[static_cast<std::int64_t>(n - 1) * kRecord]))
    throw BadParameters(zr::detail::kOutOfRange);
  if (increasing_ && hint >= 0 && hint <= n - 2 &&
      r[static_cast<std::int64_t>(hint) * kRecord] <= x) {
    // From lo = hint (x_lo <= x, and so is every earlier abscissa) the first i with
    // x_i > x is found by doubling steps, then halving; i = n stands for "none".
    const auto x_at = [r](int i) { return r[static_cast<std::int64_t>(i) * kRecord]; };
    int lo = hint;
    int hi = n;
    for (int step = 1; lo + step <= n - 1; step *= 2) {
      if (x_at(lo + step) > x) {
        hi = lo + step;
        break;
      }
      lo += step;
    }
    while (hi - lo > 1) {
      const int mid = lo + (hi - lo) / 2;
      if (x_at(mid) > x) {
        hi = mid;
      } else {
        lo = mid;
      }
    }
    hint = hi - 1 < n - 2 ? hi - 1 : n - 2;
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
  if (koef_ > 0) {
    // The same values from the records, which hold exactly the polynomials' data.
    const TT* const r = records_.GetPointer();
    const auto at = [r](int i) { return r + static_cast<std::int64_t>(i) * kRecord; };
    for (int i = 0; i < segs; ++i) {
      const TT* const p = at(i);
      if (!zr::detail::Close(zr::detail::RecordValue(p, koef_, p[0]), p[1]) ||
          !zr::detail::Close(zr::detail::RecordValue(p, koef_, p[kRecord]), p[kRecord + 1]))
        return 0;
    }
    if (koef_ == 4) {
      for (int i = 1; i < segs; ++i)
        if (!zr::detail::CubicJointClose(at(i - 1), at(i))) return 0;
      return 1;
    }
    for (int i = 1; i < segs; ++i) {
      const TT xi = at(i)[0];
      for (int j = 1; j <= koef_ - 2; ++j)
        if (!zr::detail::Close(zr::detail::RecordDerivative(at(i - 1), koef_, xi, j),
                               zr::detail::RecordDerivative(at(i), koef_, xi, j)))
          return 0;
    }
    return 1;
  }
  // Unbuilt segments have no coefficients: the value 0 and no derivative to compare.
  for (int i = 0; i < segs; ++i)
    if (!zr::detail::Close(TT{}, Y(i)) || !zr::detail::Close(TT{}, Y(i + 1))) return 0;
  return 1;
}

ZR_INSTANTIATE_TEMPLATE(class, zrSpline<double>);
