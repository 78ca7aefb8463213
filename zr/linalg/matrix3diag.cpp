#include "zr/linalg/matrix3diag.h"

#include <cstdint>

#include "zr/core/detail/machine.h"
#include "zr/linalg/detail/sweep_kernel.h"

namespace zr::detail {
namespace {

Run RunOf(const zrVector<double>& v) { return Run{v.GetPointer(), v.Tab()}; }

Bands BandsOf(const zrMatrix3Diag<double>& a) {
  return Bands{RunOf(a.Up()), RunOf(a.Diag()), RunOf(a.Down())};
}

// The sweep for n >= 1 unknowns; alpha holds n - 1 elements, and so does beta, which may
// be x itself (then each beta[i] sits where x[i] goes and the back pass overwrites it
// with x[i] = x[i+1]*alpha[i] + beta[i], reading it first). x may be b: b[i] is read
// before x[i] (or beta[i] in x) is written. R is Run or Flat (the unit-step case, which
// the compiler keeps in plain pointer arithmetic).
template <class R>
void Sweep(int n, R up, R diag, R down, R b, R x, double* alpha, R beta) {
  if (n == 1) {
    x[0] = b[0] / diag[0];
    return;
  }
  // The previous alpha, beta and x ride in registers: reloading them from memory would put
  // a store-to-load round trip on the recurrence's critical path.
  double al = alpha[0] = -up[0] / diag[0];
  double be = beta[0] = b[0] / diag[0];
  for (int i = 1; i <= n - 2; ++i) {
    const double d = down[i - 1] * al + diag[i];
    al = alpha[i] = -up[i] / d;
    be = beta[i] = (b[i] - down[i - 1] * be) / d;
  }
  double xi = x[n - 1] = (b[n - 1] - down[n - 2] * be) / (down[n - 2] * al + diag[n - 1]);
  for (int i = n - 2; i >= 0; --i) xi = x[i] = xi * alpha[i] + beta[i];
}

// Element i of a run of doubles with unit step.
struct Flat {
  double* p;
  double& operator[](int i) const { return p[i]; }
};

void Sweep(int n, const Bands& a, Run b, Run x, double* alpha, Run beta) {
  if (a.up.step == 1 && a.diag.step == 1 && a.down.step == 1 && b.step == 1 && x.step == 1 &&
      beta.step == 1) {
    Sweep(n, Flat{a.up.p}, Flat{a.diag.p}, Flat{a.down.p}, Flat{b.p}, Flat{x.p}, alpha,
          Flat{beta.p});
  } else {
    Sweep(n, a.up, a.diag, a.down, b, x, alpha, beta);
  }
}

// Whether the solution may hold the sweep's intermediate values: its storage is a block
// of its own that none of the diagonals holds (a right-hand side in it is fine).
bool Apart(const zrPArray& x, const zrPArray& up, const zrPArray& diag, const zrPArray& down) {
  const void* const mem = x.GetMem();
  return mem && mem != up.GetMem() && mem != diag.GetMem() && mem != down.GetMem();
}

// LU factorisation of the five-diagonal matrix, n >= 3, with the forward substitution
// written into x; d holds n and u n - 1 elements. x may be b.
void Factorize(int n, const Bands& a, Run up2, Run down2, Run b, Run x, double* d, double* u) {
  d[0] = a.diag[0];
  u[0] = a.up[0];
  x[0] = b[0];
  double l = a.down[0] / d[0];
  d[1] = a.diag[1] - l * u[0];
  u[1] = a.up[1] - l * up2[0];
  x[1] = b[1] - l * x[0];
  for (int i = 2; i <= n - 1; ++i) {
    const double mu = down2[i - 2] / d[i - 2];
    l = (a.down[i - 1] - mu * u[i - 2]) / d[i - 1];
    d[i] = a.diag[i] - l * u[i - 1] - mu * up2[i - 2];
    if (i <= n - 2) u[i] = a.up[i] - l * up2[i - 1];
    x[i] = b[i] - l * x[i - 1] - mu * x[i - 2];
  }
  x[n - 1] = x[n - 1] / d[n - 1];
  x[n - 2] = (x[n - 2] - u[n - 2] * x[n - 1]) / d[n - 2];
  for (int i = n - 3; i >= 0; --i) x[i] = (x[i] - u[i] * x[i + 1] - up2[i] * x[i + 2]) / d[i];
}

}  // namespace
}  // namespace zr::detail

using zr::detail::Bands;
using zr::detail::Run;
using Work = zr::detail::Scratch<double>;

ZR_DEFINE_TYPE_IDENTITY_WITH(template <class TT>, zrMatrix3Diag<TT>, "zrMatrix3Diag")

template <class TT>
zrMatrix3Diag<TT>::zrMatrix3Diag(int n) {
  Set(n);
}

namespace {

// Refuses diagonal lengths that do not make a tridiagonal matrix: Up and Down must have
// n - 1 elements for a Diag of n, none for n <= 1 (the rule of the checked flat reader).
void CheckLengths(int up, int diag, int down) {
  const int side = diag > 1 ? diag - 1 : 0;
  if (up != side || down != side)
    throw BadParameters("zrMatrix3Diag: diagonals of inconsistent lengths");
}

// up, once the three lengths are known to fit: the constructor checks before it shares.
template <class TT>
const zrVector<TT>& CheckedUp(const zrVector<TT>& up, const zrVector<TT>& diag,
                              const zrVector<TT>& down) {
  CheckLengths(up.Len(), diag.Len(), down.Len());
  return up;
}

}  // namespace

template <class TT>
zrMatrix3Diag<TT>::zrMatrix3Diag(const zrVector<TT>& up, const zrVector<TT>& diag,
                                 const zrVector<TT>& down)
    : up_(CheckedUp(up, diag, down)), diag_(diag), down_(down) {}

template <class TT>
void zrMatrix3Diag<TT>::CheckBands() const {
  CheckLengths(up_.Len(), diag_.Len(), down_.Len());
}

template <class TT>
zrMatrix3Diag<TT>::zrMatrix3Diag(const zrMatrix<TT>& m) {
  const int n = m.ColumnLen() < m.LineLen() ? m.ColumnLen() : m.LineLen();
  if (n < 1) return;
  // The matrix keeps its own runs within 32 bits; the diagonal's may leave them.
  const std::int64_t step = std::int64_t{m.TabInLine()} + m.TabInColumn();
  if (!zr::detail::Fits32(step) || !zr::detail::Fits32(step * n))
    throw BadParameters("zrMatrix3Diag: out of range");
  diag_.SetDirectly(&m(0, 0), n, static_cast<int>(step), m);
  if (n < 2) return;
  up_.SetDirectly(&m(0, 1), n - 1, static_cast<int>(step), m);
  down_.SetDirectly(&m(1, 0), n - 1, static_cast<int>(step), m);
}

template <class TT>
zrMatrix3Diag<TT>::zrMatrix3Diag(const zrMatrix3Diag& other)
    : zrUsingNew(other), up_(other.up_), diag_(other.diag_), down_(other.down_) {}

namespace {

// Exchanges the diagonals' handles: the three sizes change together.
template <class TT>
void SwapBands(zrMatrix3Diag<TT>& a, zrMatrix3Diag<TT>& b) {
  a.Up().swap(b.Up());
  a.Diag().swap(b.Diag());
  a.Down().swap(b.Down());
}

}  // namespace

template <class TT>
zrMatrix3Diag<TT>& zrMatrix3Diag<TT>::operator=(const zrMatrix3Diag& other) {
  if (diag_.Len() == other.diag_.Len()) {  // in place, nothing allocated
    up_ = other.up_;
    diag_ = other.diag_;
    down_ = other.down_;
    return *this;
  }
  // Another size: all three new diagonals first, so that a failed allocation leaves this
  // matrix as it was rather than with diagonals of two sizes.
  zrMatrix3Diag fresh;
  fresh.up_ = other.up_;
  fresh.diag_ = other.diag_;
  fresh.down_ = other.down_;
  SwapBands(*this, fresh);
  return *this;
}

template <class TT>
zrMatrix3Diag<TT>::~zrMatrix3Diag() {
  zrFree(work_);
}

template <class TT>
void zrMatrix3Diag<TT>::Set(int n) {
  zrMatrix3Diag fresh;  // see operator=
  fresh.diag_.Set(n);
  fresh.up_.Set(n > 1 ? n - 1 : 0);
  fresh.down_.Set(n > 1 ? n - 1 : 0);
  SwapBands(*this, fresh);
}

template <class TT>
void zrMatrix3Diag<TT>::Init(int n) {
  if (n != diag_.Len()) Set(n);
}

template <class TT>
void zrMatrix3Diag<TT>::Set(const zrMatrix3Diag& src, int start, int len) {
  if (start < 0 || len < 0 || start > src.diag_.Len() - len)
    throw BadParameters("zrMatrix3Diag: out of range");
  if (len == 0) {
    up_.Clear();
    diag_.Clear();
    down_.Clear();
    return;
  }
  // Through copies, so that src may be this matrix.
  const zrMatrix3Diag s(src);
  diag_.Set(s.diag_, start, len);
  if (len > 1) {
    up_.Set(s.up_, start, len - 1);
    down_.Set(s.down_, start, len - 1);
  } else {
    up_.Clear();
    down_.Clear();
  }
}

template <class TT>
void zrMatrix3Diag<TT>::Move(zrMatrix3Diag& src) {
  if (&src == this) return;
  up_.Move(src.up_);
  diag_.Move(src.diag_);
  down_.Move(src.down_);
}

template <class TT>
void zrMatrix3Diag<TT>::Copy() {
  up_.Copy();
  diag_.Copy();
  down_.Copy();
}

template <class TT>
TT& zrMatrix3Diag<TT>::operator()(int i, int j) const {
  if (j == i) return diag_[i];
  if (j == i + 1) return up_[i];
  if (i == j + 1) return down_[j];
  throw BadParameters("zrMatrix3Diag: out of range");
}

template <class TT>
void zrMatrix3Diag<TT>::Fill(const TT& v) {
  const TT value = v;
  up_.Fill(value);
  diag_.Fill(value);
  down_.Fill(value);
}

// The scalar is read once: it may be an element of a diagonal.
#define ZR_DETAIL_M3D_SCALAR_OP(op)                                     \
  template <class TT>                                                   \
  zrMatrix3Diag<TT>& zrMatrix3Diag<TT>::operator op##=(const TT& s) {   \
    const TT value = s;                                                 \
    up_ op## = value;                                                   \
    diag_ op## = value;                                                 \
    down_ op## = value;                                                 \
    return *this;                                                       \
  }                                                                     \
  template <class TT>                                                   \
  zrMatrix3Diag<TT> zrMatrix3Diag<TT>::operator op(const TT& s) const { \
    zrMatrix3Diag r = Fresh();                                          \
    r op## = s;                                                         \
    return r;                                                           \
  }
ZR_DETAIL_M3D_SCALAR_OP(+)
ZR_DETAIL_M3D_SCALAR_OP(-)
ZR_DETAIL_M3D_SCALAR_OP(*)
ZR_DETAIL_M3D_SCALAR_OP(/)
#undef ZR_DETAIL_M3D_SCALAR_OP

template <class TT>
zrMatrix3Diag<TT>& zrMatrix3Diag<TT>::operator+=(const zrMatrix3Diag& b) {
  up_ += b.up_;
  diag_ += b.diag_;
  down_ += b.down_;
  return *this;
}

template <class TT>
zrMatrix3Diag<TT>& zrMatrix3Diag<TT>::operator-=(const zrMatrix3Diag& b) {
  up_ -= b.up_;
  diag_ -= b.diag_;
  down_ -= b.down_;
  return *this;
}

template <class TT>
zrMatrix3Diag<TT> zrMatrix3Diag<TT>::operator+(const zrMatrix3Diag& b) const {
  zrMatrix3Diag r = Fresh();
  r += b;
  return r;
}

template <class TT>
zrMatrix3Diag<TT> zrMatrix3Diag<TT>::operator-(const zrMatrix3Diag& b) const {
  zrMatrix3Diag r = Fresh();
  r -= b;
  return r;
}

template <class TT>
zrMatrix3Diag<TT> zrMatrix3Diag<TT>::operator-() const {
  zrMatrix3Diag r = Fresh();
  for (zrVector<TT>* v : {&r.up_, &r.diag_, &r.down_})
    for (int i = 0; i < v->Len(); ++i) (*v)[i] = TT(-0.0) - (*v)[i];
  return r;
}

template <class TT>
zrMatrix<TT> zrMatrix3Diag<TT>::operator+(const zrMatrix<TT>& m) const {
  return GetMatrix() + m;
}

template <class TT>
zrMatrix<TT> zrMatrix3Diag<TT>::operator-(const zrMatrix<TT>& m) const {
  return GetMatrix() - m;
}

template <class TT>
zrMatrix<TT> zrMatrix3Diag<TT>::operator*(const zrMatrix3Diag& b) const {
  CheckBands();
  b.CheckBands();
  const int n = LineLen();
  if (b.LineLen() != n) throw BadParameters("different size.");
  zrMatrix<TT> r(n, n);
  r.Fill(TT(0));
  // (i, j) = sum over k of a(i, k) * b(k, j); a(i, k) is on the band for |i - k| <= 1,
  // b(k, j) for |k - j| <= 1.
  for (int i = 0; i < n; ++i) {
    const int jlo = i - 2 < 0 ? 0 : i - 2;
    const int jhi = i + 2 > n - 1 ? n - 1 : i + 2;
    for (int j = jlo; j <= jhi; ++j) {
      const int klo = (i > j ? i : j) - 1 < 0 ? 0 : (i > j ? i : j) - 1;
      const int khi = (i < j ? i : j) + 1 > n - 1 ? n - 1 : (i < j ? i : j) + 1;
      bool first = true;
      TT sum = TT(0);
      for (int k = klo; k <= khi; ++k) {
        const TT p = (*this)(i, k) * b(k, j);
        sum = first ? p : sum + p;
        first = false;
      }
      if (!first) r(i, j) = sum;
    }
  }
  return r;
}

template <class TT>
template <class F>
TT zrMatrix3Diag<TT>::BandRow(int i, F at) const {
  const int n = LineLen();
  TT sum = i > 0 ? down_[i - 1] * at(i - 1) : TT(0);
  sum = i > 0 ? sum + diag_[i] * at(i) : diag_[i] * at(i);
  if (i < n - 1) sum = sum + up_[i] * at(i + 1);
  return sum;
}

template <class TT>
zrMatrix<TT> zrMatrix3Diag<TT>::operator*(const zrMatrix<TT>& m) const {
  CheckBands();
  const int n = LineLen();
  if (m.ColumnLen() != n) throw BadParameters("different size.");
  const int cols = m.LineLen();
  zrMatrix<TT> r(n, cols);
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j < cols; ++j)
      r(i, j) = BandRow(i, [&](int k) -> const TT& { return m(k, j); });
  }
  return r;
}

template <class TT>
zrColumnVector<TT> zrMatrix3Diag<TT>::operator*(const zrColumnVector<TT>& x) const {
  CheckBands();
  const int n = LineLen();
  if (x.Len() != n) throw BadParameters("different length.");
  zrColumnVector<TT> r(n);
  for (int i = 0; i < n; ++i) r[i] = BandRow(i, [&](int k) -> const TT& { return x[k]; });
  return r;
}

template <class TT>
zrMatrix3Diag<TT> zrMatrix3Diag<TT>::T() const {
  return zrMatrix3Diag(down_, diag_, up_);
}

template <class TT>
zrMatrix<TT> zrMatrix3Diag<TT>::GetMatrix() const {
  CheckBands();
  const int n = LineLen();
  zrMatrix<TT> r(n, n);
  if (n == 0) return r;
  r.Fill(TT(0));
  for (int i = 0; i < n; ++i) r(i, i) = diag_[i];
  for (int i = 0; i + 1 < n; ++i) {
    r(i, i + 1) = up_[i];
    r(i + 1, i) = down_[i];
  }
  return r;
}

template <class TT>
int zrMatrix3Diag<TT>::MemSize() const {
  return up_.MemSize() + diag_.MemSize() + down_.MemSize();
}

template <class TT>
int zrMatrix3Diag<TT>::ToMem(unsigned char* buffer) const {
  int n = up_.ToMem(buffer);
  n += diag_.ToMem(buffer + n);
  return n + down_.ToMem(buffer + n);
}

template <class TT>
int zrMatrix3Diag<TT>::FromMem(const unsigned char* buffer) {
  zrMatrix3Diag fresh;  // every diagonal read before any is replaced
  int n = fresh.up_.FromMem(buffer);
  n += fresh.diag_.FromMem(buffer + n);
  n += fresh.down_.FromMem(buffer + n);
  SwapBands(*this, fresh);
  return n;
}

template <class TT>
zrMatrix3Diag<TT> zrMatrix3Diag<TT>::Fresh() const {
  zrMatrix3Diag r;
  r = *this;
  return r;
}

// ---- Solvers ----

template <class TT>
TT* zrMatrix3Diag<TT>::Scratch(int n) const {
  if (n > work_len_) {
    zrFree(work_);
    work_ = nullptr;
    work_len_ = 0;
    work_ = static_cast<TT*>(zrMalloc(static_cast<std::uint64_t>(n) * sizeof(TT)));
    work_len_ = n;
  }
  return work_;
}

template <class TT>
void zrMatrix3Diag<TT>::SolveEquationChaserMethod(zrColumnVector<TT>& x,
                                                  const zrColumnVector<TT>& b) const {
  CheckBands();
  const int n = LineLen();
  if (b.Len() != n) throw BadParameters("different size.");
  // beta goes into x unless x may overlap the matrix (a new x never does). The scratch is
  // taken before x changes.
  const bool apart = x.Len() != n || zr::detail::Apart(x, up_, diag_, down_);
  double* const alpha = Scratch(apart ? n - 1 : 2 * (n - 1));
  x.Init(n);
  if (n == 0) return;
  const Run xs = zr::detail::RunOf(x);
  zr::detail::Sweep(n, zr::detail::BandsOf(*this), zr::detail::RunOf(b), xs, alpha,
                    apart ? xs : Run{alpha + (n - 1), 1});
}

template <class TT>
void zrMatrix3Diag<TT>::SolveEquationChaserMethod(zrMatrix<TT>& X, const zrMatrix<TT>& B) const {
  CheckBands();
  const int n = LineLen();
  const int cols = B.LineLen();
  if (cols > 0 && B.ColumnLen() != n) throw BadParameters("different size.");
  const bool apart = X.ColumnLen() != B.ColumnLen() || X.LineLen() != cols ||
                     zr::detail::Apart(X, up_, diag_, down_);
  double* const work = Scratch(apart ? 2 * n - 1 : 2 * (n - 1));
  X.Init(B.ColumnLen(), cols);
  if (n == 0 || cols == 0) return;
  const Bands a = zr::detail::BandsOf(*this);
  if (n > 1 && apart && zr::detail::SweepColumns(n, a, B, X, work)) return;
  for (int j = 0; j < cols; ++j)
    zr::detail::Sweep(n, a, Run{&B(0, j), B.TabInColumn()}, Run{&X(0, j), X.TabInColumn()}, work,
                      Run{work + (n - 1), 1});
}

template <class TT>
void zrMatrix3Diag<TT>::SolveEquationCycleChaserMethod(zrColumnVector<TT>& x,
                                                       const zrColumnVector<TT>& b, const TT& top,
                                                       const TT& bottom) const {
  CheckBands();
  const int n = LineLen();
  if (n < 3 || b.Len() != n) throw BadParameters("different size.");
  const TT t = top, bt = bottom;  // read before x is written: they may be its elements
  const int m = n - 1;
  // Scratch: alpha (m - 1), z (m), and beta (m - 1) when x may overlap the matrix; taken
  // before x changes.
  const bool apart = x.Len() != n || zr::detail::Apart(x, up_, diag_, down_);
  double* const alpha = Scratch(2 * m - 1 + (apart ? 0 : m - 1));
  double* const zz = alpha + (m - 1);
  x.Init(n);
  const Bands a = zr::detail::BandsOf(*this);
  const Run xs = zr::detail::RunOf(x), bs = zr::detail::RunOf(b);
  const Run z{zz, 1};
  // The coupling column z solves T'z = w, w = (top, 0, ..., 0, Up[n-2]) built in z (after
  // x is written when x may be a band).
  const auto coupling = [&] {
    for (int i = 0; i < m; ++i) zz[i] = 0;
    zz[0] = t;
    zz[m - 1] = a.up[n - 2];
  };
  // The leading block solves for u = x[0 .. m-1] and for z.
  const Run rhs[2] = {bs, z};
  const Run sol[2] = {xs, z};
  if (apart) coupling();
  if (!apart || !zr::detail::SweepPair(m, a, rhs, sol, alpha)) {
    zr::detail::Sweep(m, a, bs, xs, alpha, apart ? xs : Run{zz + m, 1});
    if (!apart) coupling();
    zr::detail::Sweep(m, a, z, z, alpha, z);
  }
  const double last = (bs[n - 1] - bt * xs[0] - a.down[n - 2] * xs[n - 2]) /
                      (a.diag[n - 1] - a.down[n - 2] * zz[n - 2] - bt * zz[0]);
  xs[n - 1] = last;
  for (int i = 0; i < m; ++i) xs[i] = xs[i] - zz[i] * last;
}

template <class TT>
void zrMatrix3Diag<TT>::SolveEquationFactorizeMethod(const zrVector<TT>& up2,
                                                     const zrVector<TT>& down2,
                                                     zrColumnVector<TT>& x,
                                                     const zrColumnVector<TT>& b) const {
  CheckBands();
  const int n = LineLen();
  if (b.Len() != n) throw BadParameters("different size.");
  if (n < 3) throw BadParameters("invalid size : size < 3.");
  if (up2.Len() < n - 2 || down2.Len() < n - 2) throw BadParameters("different size.");
  const Work d(n), u(n - 1);
  x.Init(n);
  zr::detail::Factorize(n, zr::detail::BandsOf(*this), zr::detail::RunOf(up2),
                        zr::detail::RunOf(down2), zr::detail::RunOf(b), zr::detail::RunOf(x),
                        d.get(), u.get());
}

template <class TT>
void zrMatrix3Diag<TT>::SolveEquationCycleFactorizeMethod(const zrVector<TT>& up2,
                                                          const zrVector<TT>& down2, const TT& a0n2,
                                                          const TT& a0n1, const TT& a1n1,
                                                          const TT& an20, const TT& an10,
                                                          const TT& an11, zrColumnVector<TT>& x,
                                                          const zrColumnVector<TT>& b) const {
  CheckBands();
  const int n = LineLen();
  if (n < 3 || b.Len() != n) throw BadParameters("different size.");
  if (up2.Len() < n - 2 || down2.Len() < n - 2) throw BadParameters("different size.");
  const int m = n - 2;
  if (m < 3) throw BadParameters("invalid size : size < 3.");
  // The corners are read before x is written: they may be its elements.
  const TT k02 = a0n2, k01 = a0n1, k12 = a1n1, k21 = an20, k10 = an10, k11 = an11;
  const Work d(m), u(m - 1), col0(m), col1(m), z0(m), z1(m);
  x.Init(n);
  const Bands a = zr::detail::BandsOf(*this);
  const Run p2 = zr::detail::RunOf(up2), q2 = zr::detail::RunOf(down2);
  const Run xs = zr::detail::RunOf(x), bs = zr::detail::RunOf(b);

  // The correction columns: columns n-2 and n-1 of the first m rows.
  const Run c0 = Run{col0.get(), 1}, c1 = Run{col1.get(), 1};
  for (int i = 0; i < m; ++i) c0[i] = c1[i] = 0;
  c0[0] = k02;
  c0[m - 2] = p2[n - 4];
  c0[m - 1] = a.up[n - 3];
  c1[0] = k01;
  c1[1] = k12;
  c1[m - 1] = p2[n - 3];

  // The leading block: y into x[0 .. m-1], then the two correction columns.
  zr::detail::Factorize(m, a, p2, q2, bs, xs, d.get(), u.get());
  zr::detail::Factorize(m, a, p2, q2, c0, Run{z0.get(), 1}, d.get(), u.get());
  zr::detail::Factorize(m, a, p2, q2, c1, Run{z1.get(), 1}, d.get(), u.get());

  // The trailing 2 x 2 system; R's rows are (k21 at 0, down2[n-4] at m-2, Down[n-3] at
  // m-1) and (k10 at 0, k11 at 1, down2[n-3] at m-1).
  const auto row0 = [&](Run v) {
    return k21 * v[0] + q2[n - 4] * v[m - 2] + a.down[n - 3] * v[m - 1];
  };
  const auto row1 = [&](Run v) { return k10 * v[0] + k11 * v[1] + q2[n - 3] * v[m - 1]; };
  zrMatrix<TT> s(2, 2);
  s(0, 0) = a.diag[n - 2] - row0(Run{z0.get(), 1});
  s(0, 1) = a.up[n - 2] - row0(Run{z1.get(), 1});
  s(1, 0) = a.down[n - 2] - row1(Run{z0.get(), 1});
  s(1, 1) = a.diag[n - 1] - row1(Run{z1.get(), 1});
  zrColumnVector<TT> rhs(2), tail;
  rhs[0] = bs[n - 2] - row0(xs);
  rhs[1] = bs[n - 1] - row1(xs);
  s.SolveEquationGaussMethod(tail, rhs);

  const double xa = tail[0], xb = tail[1];
  for (int i = 0; i < m; ++i) xs[i] = xs[i] - z0.get()[i] * xa - z1.get()[i] * xb;
  xs[n - 2] = xa;
  xs[n - 1] = xb;
}

ZR_INSTANTIATE_TEMPLATE(class, zrMatrix3Diag<double>);
