#include "zr/numeric/fct.h"

#include <cmath>
#include <cstddef>

#include "zr/numeric/detail/fft.h"

namespace zr::detail {

// The cosine transform of one length on strided doubles. Data x_j is reordered into
// v_m = x_(2m) for m < ceil(n / 2) and v_m = x_(2n - 1 - 2m) above; with V its Fourier
// transform, W_k = exp(-i pi k / (2n)) V_k gives X_k = Re W_k and X_(n - k) = -Im W_k.
// For even n, v is real and is transformed as n / 2 complex pairs (v_(2j), v_(2j + 1)),
// split afterwards into the transforms of its even and odd halves. The inverse runs the
// same steps backwards, with the inverse Fourier transform as the conjugate of the forward
// one of the conjugate. The scale of each coefficient lives in the twiddle tables.
class Dct : public zrUsingNew {
 public:
  Dct(int n, zrFCTScale scale);

  void Forward(const double* in, std::ptrdiff_t istep, double* out, std::ptrdiff_t ostep);
  void Inverse(const double* in, std::ptrdiff_t istep, double* out, std::ptrdiff_t ostep);

 private:
  // Where v_m comes from in x.
  std::ptrdiff_t Source(std::ptrdiff_t m) const { return m < first_ ? 2 * m : 2 * n_ - 1 - 2 * m; }

  std::ptrdiff_t n_;
  std::ptrdiff_t half_;   // n / 2 for even n, else 0
  std::ptrdiff_t first_;  // ceil(n / 2): the v_m taken from even x indices
  Fft fft_;
  FftBuffer<Cx> data_;
  FftBuffer<Cx> work_;
  FftBuffer<Cx> forward_;  // s_k exp(-i pi k / (2n)) (halved for even n)
  FftBuffer<Cx> inverse_;  // exp(i pi k / (2n)) / (n s_k)
  FftBuffer<Cx> split_;    // even n: exp(-2 pi i k / n), k = 0 ... n / 2
};

namespace {

inline Cx Mul(Cx a, Cx b) { return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re}; }

}  // namespace

Dct::Dct(int n, zrFCTScale scale)
    : n_(n),
      half_(n % 2 == 0 ? n / 2 : 0),
      first_((static_cast<std::ptrdiff_t>(n) + 1) / 2),
      fft_(n % 2 == 0 ? n / 2 : n) {
  const std::ptrdiff_t len = fft_.Len();
  data_.Reset(len);
  work_.Reset(len);
  // Tables for k = 0 ... last: n / 2 for even n, (n - 1) / 2 for odd.
  const std::ptrdiff_t last = half_ != 0 ? half_ : (n_ - 1) / 2;
  forward_.Reset(last + 1);
  inverse_.Reset(last + 1);
  const long double ln = static_cast<long double>(n);
  for (std::ptrdiff_t k = 0; k <= last; ++k) {
    long double s = 1.0L;
    if (scale == zrFCTScale::Orthonormal) s = std::sqrt((k == 0 ? 1.0L : 2.0L) / ln);
    long double re = 0;
    long double im = 0;
    RootOfUnity(k, n_, re, im);  // exp(-i pi k / (2n))
    const long double f = half_ != 0 ? s / 2 : s;
    forward_[k] = {static_cast<double>(re * f), static_cast<double>(im * f)};
    const long double g = 1.0L / (ln * s);
    inverse_[k] = {static_cast<double>(re * g), static_cast<double>(-im * g)};
  }
  if (half_ != 0) {
    split_.Reset(half_ + 1);
    for (std::ptrdiff_t k = 0; k <= half_; ++k) {
      long double re = 0;
      long double im = 0;
      RootOfUnity(4 * static_cast<std::int64_t>(k), n_, re, im);
      split_[k] = {static_cast<double>(re), static_cast<double>(im)};
    }
  }
}

void Dct::Forward(const double* in, std::ptrdiff_t istep, double* out, std::ptrdiff_t ostep) {
  Cx* z = data_.get();
  if (half_ != 0) {
    const std::ptrdiff_t h = half_;
    for (std::ptrdiff_t j = 0; j < h; ++j) {
      z[j] = {in[Source(2 * j) * istep], in[Source(2 * j + 1) * istep]};
    }
    const Cx* r = fft_.Forward(z, work_.get());
    for (std::ptrdiff_t k = 0; k <= h; ++k) {
      const Cx a = r[k == h ? 0 : k];
      const Cx b = r[k == 0 ? 0 : h - k];  // conjugated below
      const Cx sum = {a.re + b.re, a.im - b.im};
      const Cx rot = {a.im + b.im, -(a.re - b.re)};  // -i (a - conj b)
      const Cx t = Mul(rot, split_[k]);
      const Cx w = Mul({sum.re + t.re, sum.im + t.im}, forward_[k]);
      out[k * ostep] = w.re;
      if (k != 0 && k != h) out[(n_ - k) * ostep] = -w.im;
    }
    return;
  }
  for (std::ptrdiff_t m = 0; m < n_; ++m) z[m] = {in[Source(m) * istep], 0.0};
  const Cx* r = fft_.Forward(z, work_.get());
  const std::ptrdiff_t last = (n_ - 1) / 2;
  for (std::ptrdiff_t k = 0; k <= last; ++k) {
    const Cx w = Mul(r[k], forward_[k]);
    out[k * ostep] = w.re;
    if (k != 0) out[(n_ - k) * ostep] = -w.im;
  }
}

void Dct::Inverse(const double* in, std::ptrdiff_t istep, double* out, std::ptrdiff_t ostep) {
  Cx* z = data_.get();
  const std::ptrdiff_t n = n_;
  // X_k - i X_(n - k), X_n being 0.
  auto x = [&](std::ptrdiff_t k) { return in[k * istep]; };
  if (half_ != 0) {
    const std::ptrdiff_t h = half_;
    for (std::ptrdiff_t k = 0; k < h; ++k) {
      const std::ptrdiff_t c = h - k;  // 1 ... h
      const Cx a = Mul({x(k), k == 0 ? 0.0 : -x(n - k)}, inverse_[k]);
      const Cx b = Mul({x(c), -x(n - c)}, inverse_[c]);
      const Cx sum = {a.re + b.re, a.im - b.im};   // V_k + conj V_(h - k)
      const Cx dif = {a.re - b.re, a.im + b.im};   // V_k - conj V_(h - k)
      const Cx u = {split_[k].re, -split_[k].im};  // exp(2 pi i k / n)
      const Cx t = Mul(dif, u);
      // Z_k = sum + i t, handed to the forward transform conjugated.
      z[k] = {sum.re - t.im, -(sum.im + t.re)};
    }
    const Cx* r = fft_.Forward(z, work_.get());
    for (std::ptrdiff_t j = 0; j < h; ++j) {
      out[Source(2 * j) * ostep] = r[j].re;
      out[Source(2 * j + 1) * ostep] = -r[j].im;
    }
    return;
  }
  const std::ptrdiff_t last = (n - 1) / 2;
  for (std::ptrdiff_t k = 0; k <= last; ++k) {
    const Cx v = Mul({x(k), k == 0 ? 0.0 : -x(n - k)}, inverse_[k]);
    z[k] = {v.re, -v.im};
    // V_(n - k) = conj V_k for the real v.
    if (k != 0) z[n - k] = v;
  }
  const Cx* r = fft_.Forward(z, work_.get());
  for (std::ptrdiff_t m = 0; m < n; ++m) out[Source(m) * ostep] = r[m].re;
}

}  // namespace zr::detail

ZR_DEFINE_TYPE_IDENTITY(zrFCTT)
ZR_DEFINE_TYPE_IDENTITY(zrFCTTC)

namespace {

zr::detail::Dct* NewDct(int n, zrFCTScale scale, const char* too_short) {
  if (n < 1) throw BadParameters(too_short);
  return new zr::detail::Dct(n, scale);
}

template <class V>
void CheckLength(const V& x, int n, const char* text) {
  if (x.Len() != n) throw BadParameters(text);
}

constexpr const char* kRealShort = "zrFCTT: the length must be at least 1.";
constexpr const char* kRealLength = "zrFCTT: the data's length differs from the transform's.";
constexpr const char* kComplexShort = "zrFCTTC: the length must be at least 1.";
constexpr const char* kComplexLength = "zrFCTTC: the data's length differs from the transform's.";

// The output's storage: its own elements when the length is n, else a fresh block.
template <class V>
void Prepare(V& out, int n) {
  if (out.Len() != n) out.Set(n);
}

std::ptrdiff_t Step(const zrVector<double>& v) { return v.Tab(); }
std::ptrdiff_t Step(const zrArray<double>&) { return 1; }
std::ptrdiff_t Step(const zrVector<zrComplex>& v) { return v.Tab(); }
std::ptrdiff_t Step(const zrArray<zrComplex>&) { return 1; }

// The transform of real data; in is read whole before out is written.
template <class V>
void RealRun(zr::detail::Dct* dct, int n, bool forward, const V& x, V& out) {
  CheckLength(x, n, kRealLength);
  const double* in = x.GetPointer();
  const std::ptrdiff_t istep = Step(x);
  // A fresh output block cannot overlap x, and x keeps its own block alive.
  Prepare(out, n);
  if (forward) {
    dct->Forward(in, istep, out.GetPointer(), Step(out));
  } else {
    dct->Inverse(in, istep, out.GetPointer(), Step(out));
  }
}

// Complex data as two real transforms, of the real parts and then of the imaginary parts:
// the two are disjoint, so an output overlapping the input is still read first.
template <class V>
void ComplexRun(zr::detail::Dct* dct, int n, bool forward, const V& x, V& out) {
  CheckLength(x, n, kComplexLength);
  zrComplex* in = x.GetPointer();
  const std::ptrdiff_t istep = 2 * Step(x);
  Prepare(out, n);
  zrComplex* o = out.GetPointer();
  const std::ptrdiff_t ostep = 2 * Step(out);
  for (int part = 0; part < 2; ++part) {
    const double* ip = part == 0 ? &in->Re() : &in->Im();
    double* op = part == 0 ? &o->Re() : &o->Im();
    if (forward) {
      dct->Forward(ip, istep, op, ostep);
    } else {
      dct->Inverse(ip, istep, op, ostep);
    }
  }
}

}  // namespace

zrFCTT::zrFCTT(int n, zrFCTScale scale)
    : n_(n), scale_(scale), dct_(NewDct(n, scale, kRealShort)) {}
zrFCTT::~zrFCTT() { delete dct_; }

void zrFCTT::Forward(const zrVector<double>& x, zrVector<double>& out) {
  RealRun(dct_, n_, true, x, out);
}
void zrFCTT::Forward(const zrArray<double>& x, zrArray<double>& out) {
  RealRun(dct_, n_, true, x, out);
}
void zrFCTT::Forward(zrVector<double>& x) { RealRun(dct_, n_, true, x, x); }
void zrFCTT::Forward(zrArray<double>& x) { RealRun(dct_, n_, true, x, x); }
void zrFCTT::Inverse(const zrVector<double>& x, zrVector<double>& out) {
  RealRun(dct_, n_, false, x, out);
}
void zrFCTT::Inverse(const zrArray<double>& x, zrArray<double>& out) {
  RealRun(dct_, n_, false, x, out);
}
void zrFCTT::Inverse(zrVector<double>& x) { RealRun(dct_, n_, false, x, x); }
void zrFCTT::Inverse(zrArray<double>& x) { RealRun(dct_, n_, false, x, x); }

zrFCTTC::zrFCTTC(int n, zrFCTScale scale)
    : n_(n), scale_(scale), dct_(NewDct(n, scale, kComplexShort)) {}
zrFCTTC::~zrFCTTC() { delete dct_; }

void zrFCTTC::Forward(const zrVector<zrComplex>& x, zrVector<zrComplex>& out) {
  ComplexRun(dct_, n_, true, x, out);
}
void zrFCTTC::Forward(const zrArray<zrComplex>& x, zrArray<zrComplex>& out) {
  ComplexRun(dct_, n_, true, x, out);
}
void zrFCTTC::Forward(zrVector<zrComplex>& x) { ComplexRun(dct_, n_, true, x, x); }
void zrFCTTC::Forward(zrArray<zrComplex>& x) { ComplexRun(dct_, n_, true, x, x); }
void zrFCTTC::Inverse(const zrVector<zrComplex>& x, zrVector<zrComplex>& out) {
  ComplexRun(dct_, n_, false, x, out);
}
void zrFCTTC::Inverse(const zrArray<zrComplex>& x, zrArray<zrComplex>& out) {
  ComplexRun(dct_, n_, false, x, out);
}
void zrFCTTC::Inverse(zrVector<zrComplex>& x) { ComplexRun(dct_, n_, false, x, x); }
void zrFCTTC::Inverse(zrArray<zrComplex>& x) { ComplexRun(dct_, n_, false, x, x); }
