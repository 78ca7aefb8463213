#include "zr/numeric/detail/fft.h"

#include <cmath>

namespace zr::detail {

namespace {

constexpr long double kPi = 3.141592653589793238462643383279502884L;

// The largest prime factor a length may have for the mixed-radix passes; a longer one
// goes through Bluestein.
constexpr std::ptrdiff_t kLargestRadix = 64;

inline Cx Mul(Cx a, Cx b) { return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re}; }
inline Cx Add(Cx a, Cx b) { return {a.re + b.re, a.im + b.im}; }
inline Cx Sub(Cx a, Cx b) { return {a.re - b.re, a.im - b.im}; }
// -i * a
inline Cx MulMinusI(Cx a) { return {a.im, -a.re}; }

Cx Root(std::int64_t j, std::int64_t n) {
  long double re = 0;
  long double im = 0;
  RootOfUnity(j, n, re, im);
  return {static_cast<double>(re), static_cast<double>(im)};
}

// exp(-2 pi i k / n) for k = 0 ... n - 1, from the first octant by symmetry where n is a
// multiple of 8.
void FillRoots(Cx* w, std::ptrdiff_t n) {
  if (n % 8 != 0) {
    for (std::ptrdiff_t k = 0; k < n; ++k) w[k] = Root(4 * static_cast<std::int64_t>(k), n);
    return;
  }
  const std::ptrdiff_t n8 = n / 8;
  const std::ptrdiff_t n4 = n / 4;
  const std::ptrdiff_t n2 = n / 2;
  for (std::ptrdiff_t k = 0; k <= n8; ++k) w[k] = Root(4 * static_cast<std::int64_t>(k), n);
  for (std::ptrdiff_t k = n8 + 1; k <= n4; ++k) w[k] = {-w[n4 - k].im, -w[n4 - k].re};
  for (std::ptrdiff_t k = n4 + 1; k <= n2; ++k) w[k] = {w[k - n4].im, -w[k - n4].re};
  for (std::ptrdiff_t k = n2 + 1; k < n; ++k) w[k] = {-w[k - n2].re, -w[k - n2].im};
}

std::ptrdiff_t SmallestFactor(std::ptrdiff_t n) {
  if (n % 2 == 0) return 2;
  for (std::ptrdiff_t p = 3; p * p <= n; p += 2) {
    if (n % p == 0) return p;
  }
  return n;
}

}  // namespace

void RootOfUnity(std::int64_t j, std::int64_t n, long double& re, long double& im) {
  // The angle is pi j / (2 n): a quarter turn per n.
  const std::int64_t full = 4 * n;
  j %= full;
  if (j < 0) j += full;
  const std::int64_t quarter = j / n;
  std::int64_t rest = j - quarter * n;  // angle pi rest / (2 n) within the quarter
  long double c = 0;
  long double s = 0;
  if (2 * rest <= n) {
    const long double a = kPi * static_cast<long double>(rest) / static_cast<long double>(2 * n);
    c = std::cos(a);
    s = std::sin(a);
  } else {
    rest = n - rest;
    const long double a = kPi * static_cast<long double>(rest) / static_cast<long double>(2 * n);
    c = std::sin(a);
    s = std::cos(a);
  }
  long double cq = c;
  long double sq = s;
  switch (quarter) {
    case 1:
      cq = -s;
      sq = c;
      break;
    case 2:
      cq = -c;
      sq = -s;
      break;
    case 3:
      cq = s;
      sq = -c;
      break;
    default:
      break;
  }
  re = cq;
  im = -sq;
}

Fft::Fft(std::ptrdiff_t n) : n_(n) {
  std::ptrdiff_t rest = n;
  std::ptrdiff_t largest = 1;
  while (rest > 1) {
    const std::ptrdiff_t p = SmallestFactor(rest);
    if (p > largest) largest = p;
    rest /= p;
  }
  if (largest > kLargestRadix) {
    Bluestein(n);
  } else {
    Plan(n);
  }
}

Fft::~Fft() = default;

void Fft::Plan(std::ptrdiff_t n) {
  // Radices: fours first, then a two, then the odd primes in increasing order.
  int radices[64];
  int count = 0;
  std::ptrdiff_t rest = n;
  while (rest % 4 == 0) {
    radices[count++] = 4;
    rest /= 4;
  }
  if (rest % 2 == 0) {
    radices[count++] = 2;
    rest /= 2;
  }
  while (rest > 1) {
    const std::ptrdiff_t p = SmallestFactor(rest);
    radices[count++] = static_cast<int>(p);
    rest /= p;
  }
  std::ptrdiff_t size = 0;
  std::ptrdiff_t len = n;
  for (int i = 0; i < count; ++i) {
    const int p = radices[i];
    len /= p;
    size += (p - 1) * len;
    if (p > 5) size += p;
  }
  twiddles_.Reset(size);
  FftBuffer<Cx> roots(n);
  FillRoots(roots.get(), n);
  Cx* next = twiddles_.get();
  len = n;
  std::ptrdiff_t stride = 1;
  for (int i = 0; i < count; ++i) {
    Stage& st = stage_[i];
    st.radix = radices[i];
    st.m = len / st.radix;
    st.stride = stride;
    st.twiddles = next;
    // exp(-2 pi i q r / len) = roots[q r stride] (len * stride == n).
    for (std::ptrdiff_t q = 0; q < st.m; ++q) {
      for (int r = 1; r < st.radix; ++r) *next++ = roots[q * r * stride];
    }
    st.roots = nullptr;
    if (st.radix > 5) {
      st.roots = next;
      for (int k = 0; k < st.radix; ++k) *next++ = roots[k * (n / st.radix)];
    }
    len = st.m;
    stride *= st.radix;
  }
  stages_ = count;
}

void Fft::Bluestein(std::ptrdiff_t n) {
  std::ptrdiff_t m = 1;
  while (m < 2 * n - 1) m *= 2;
  inner_.reset(new Fft(m));
  chirp_.Reset(n);
  kernel_.Reset(m);
  a_.Reset(m);
  b_.Reset(m);
  // k^2 modulo 2n, stepped: (k + 1)^2 = k^2 + 2k + 1.
  std::int64_t sq = 0;
  const std::int64_t period = 2 * static_cast<std::int64_t>(n);
  for (std::ptrdiff_t k = 0; k < n; ++k) {
    chirp_[k] = Root(2 * sq, n);
    sq = (sq + 2 * static_cast<std::int64_t>(k) + 1) % period;
  }
  // The kernel conj(chirp) at -(n - 1) ... n - 1, wrapped to length m, scaled by 1 / m
  // (a power of two: exact).
  const double scale = 1.0 / static_cast<double>(m);
  for (std::ptrdiff_t k = 0; k < m; ++k) a_[k] = {0.0, 0.0};
  for (std::ptrdiff_t k = 0; k < n; ++k) {
    const Cx c = {chirp_[k].re * scale, -chirp_[k].im * scale};
    a_[k] = c;
    if (k > 0) a_[m - k] = c;
  }
  Cx* r = inner_->Forward(a_.get(), b_.get());
  for (std::ptrdiff_t k = 0; k < m; ++k) kernel_[k] = r[k];
}

Cx* Fft::Forward(Cx* data, Cx* work) const {
  if (inner_ == nullptr) return Stockham(data, work);
  const std::ptrdiff_t n = n_;
  const std::ptrdiff_t m = inner_->Len();
  Cx* a = a_.get();
  for (std::ptrdiff_t k = 0; k < n; ++k) a[k] = Mul(data[k], chirp_[k]);
  for (std::ptrdiff_t k = n; k < m; ++k) a[k] = {0.0, 0.0};
  Cx* r = inner_->Forward(a, b_.get());
  // The inverse transform as the conjugate of the forward one of the conjugate.
  for (std::ptrdiff_t k = 0; k < m; ++k) {
    const Cx p = Mul(r[k], kernel_[k]);
    r[k] = {p.re, -p.im};
  }
  Cx* other = r == a ? b_.get() : a;
  Cx* c = inner_->Forward(r, other);
  for (std::ptrdiff_t k = 0; k < n; ++k) data[k] = Mul({c[k].re, -c[k].im}, chirp_[k]);
  return data;
}

namespace {

// One pass of radix p over s interleaved sub-transforms of length m * p: element j of
// sub-transform k's piece q is x[k + s (q + m j)], and output r of that piece goes to
// y[k + s (p q + r)], times exp(-2 pi i q r / (m p)).
void Radix2(const Cx* x, Cx* y, std::ptrdiff_t m, std::ptrdiff_t s, const Cx* tw) {
  for (std::ptrdiff_t q = 0; q < m; ++q) {
    const Cx w1 = tw[q];
    const Cx* xq = x + s * q;
    Cx* yq = y + s * 2 * q;
    for (std::ptrdiff_t k = 0; k < s; ++k) {
      const Cx a0 = xq[k];
      const Cx a1 = xq[k + s * m];
      yq[k] = Add(a0, a1);
      yq[k + s] = Mul(Sub(a0, a1), w1);
    }
  }
}

// The radix-4 butterflies of one piece; the first piece's twiddles are all 1 and are not
// multiplied in.
template <bool kTwiddled>
void Radix4Piece(const Cx* xq, Cx* yq, std::ptrdiff_t s, std::ptrdiff_t sm, Cx w1, Cx w2, Cx w3) {
  for (std::ptrdiff_t k = 0; k < s; ++k) {
    const Cx a0 = xq[k];
    const Cx a1 = xq[k + sm];
    const Cx a2 = xq[k + 2 * sm];
    const Cx a3 = xq[k + 3 * sm];
    const Cx t0 = Add(a0, a2);
    const Cx t1 = Sub(a0, a2);
    const Cx t2 = Add(a1, a3);
    const Cx t3 = MulMinusI(Sub(a1, a3));
    yq[k] = Add(t0, t2);
    if constexpr (kTwiddled) {
      yq[k + s] = Mul(Add(t1, t3), w1);
      yq[k + 2 * s] = Mul(Sub(t0, t2), w2);
      yq[k + 3 * s] = Mul(Sub(t1, t3), w3);
    } else {
      yq[k + s] = Add(t1, t3);
      yq[k + 2 * s] = Sub(t0, t2);
      yq[k + 3 * s] = Sub(t1, t3);
    }
  }
}

void Radix4(const Cx* x, Cx* y, std::ptrdiff_t m, std::ptrdiff_t s, const Cx* tw) {
  const std::ptrdiff_t sm = s * m;
  for (std::ptrdiff_t q = 0; q < m; ++q) {
    const Cx* xq = x + s * q;
    Cx* yq = y + s * 4 * q;
    if (q == 0) {
      Radix4Piece<false>(xq, yq, s, sm, tw[0], tw[1], tw[2]);
    } else {
      Radix4Piece<true>(xq, yq, s, sm, tw[3 * q], tw[3 * q + 1], tw[3 * q + 2]);
    }
  }
}

void Radix3(const Cx* x, Cx* y, std::ptrdiff_t m, std::ptrdiff_t s, const Cx* tw) {
  const double h = 0.86602540378443864676;  // sin(pi / 3)
  const std::ptrdiff_t sm = s * m;
  for (std::ptrdiff_t q = 0; q < m; ++q) {
    const Cx w1 = tw[2 * q];
    const Cx w2 = tw[2 * q + 1];
    const Cx* xq = x + s * q;
    Cx* yq = y + s * 3 * q;
    for (std::ptrdiff_t k = 0; k < s; ++k) {
      const Cx a0 = xq[k];
      const Cx a1 = xq[k + sm];
      const Cx a2 = xq[k + 2 * sm];
      const Cx t = Add(a1, a2);
      const Cx d = Sub(a1, a2);
      const Cx c = {a0.re - 0.5 * t.re, a0.im - 0.5 * t.im};
      const Cx e = {h * d.im, -h * d.re};  // -i sin(pi / 3) (a1 - a2)
      yq[k] = Add(a0, t);
      yq[k + s] = Mul(Add(c, e), w1);
      yq[k + 2 * s] = Mul(Sub(c, e), w2);
    }
  }
}

void Radix5(const Cx* x, Cx* y, std::ptrdiff_t m, std::ptrdiff_t s, const Cx* tw) {
  const double c1 = 0.30901699437494742410;   // cos(2 pi / 5)
  const double c2 = -0.80901699437494742410;  // cos(4 pi / 5)
  const double s1 = 0.95105651629515357212;   // sin(2 pi / 5)
  const double s2 = 0.58778525229247312917;   // sin(4 pi / 5)
  const std::ptrdiff_t sm = s * m;
  for (std::ptrdiff_t q = 0; q < m; ++q) {
    const Cx* w = tw + 4 * q;
    const Cx* xq = x + s * q;
    Cx* yq = y + s * 5 * q;
    for (std::ptrdiff_t k = 0; k < s; ++k) {
      const Cx a0 = xq[k];
      const Cx a1 = xq[k + sm];
      const Cx a2 = xq[k + 2 * sm];
      const Cx a3 = xq[k + 3 * sm];
      const Cx a4 = xq[k + 4 * sm];
      const Cx b1 = Add(a1, a4);
      const Cx b4 = Sub(a1, a4);
      const Cx b2 = Add(a2, a3);
      const Cx b3 = Sub(a2, a3);
      const Cx ta = {a0.re + c1 * b1.re + c2 * b2.re, a0.im + c1 * b1.im + c2 * b2.im};
      const Cx tb = {a0.re + c2 * b1.re + c1 * b2.re, a0.im + c2 * b1.im + c1 * b2.im};
      const Cx tc = {s1 * b4.re + s2 * b3.re, s1 * b4.im + s2 * b3.im};
      const Cx td = {s2 * b4.re - s1 * b3.re, s2 * b4.im - s1 * b3.im};
      // -i tc and -i td
      const Cx ic = MulMinusI(tc);
      const Cx id = MulMinusI(td);
      yq[k] = {a0.re + b1.re + b2.re, a0.im + b1.im + b2.im};
      yq[k + s] = Mul(Add(ta, ic), w[0]);
      yq[k + 2 * s] = Mul(Add(tb, id), w[1]);
      yq[k + 3 * s] = Mul(Sub(tb, id), w[2]);
      yq[k + 4 * s] = Mul(Sub(ta, ic), w[3]);
    }
  }
}

// Any odd prime p: the plain sum per output, the roots indexed by j r modulo p.
void RadixAny(const Cx* x, Cx* y, std::ptrdiff_t m, std::ptrdiff_t s, int p, const Cx* tw,
              const Cx* roots) {
  const std::ptrdiff_t sm = s * m;
  for (std::ptrdiff_t q = 0; q < m; ++q) {
    const Cx* xq = x + s * q;
    Cx* yq = y + s * p * q;
    for (std::ptrdiff_t k = 0; k < s; ++k) {
      for (int r = 0; r < p; ++r) {
        Cx sum = xq[k];
        int jr = 0;
        for (int j = 1; j < p; ++j) {
          jr += r;
          if (jr >= p) jr -= p;
          sum = Add(sum, Mul(xq[k + j * sm], roots[jr]));
        }
        yq[k + r * s] = r == 0 ? sum : Mul(sum, tw[(p - 1) * q + r - 1]);
      }
    }
  }
}

}  // namespace

Cx* Fft::Stockham(Cx* x, Cx* y) const {
  for (int i = 0; i < stages_; ++i) {
    const Stage& st = stage_[i];
    switch (st.radix) {
      case 2:
        Radix2(x, y, st.m, st.stride, st.twiddles);
        break;
      case 3:
        Radix3(x, y, st.m, st.stride, st.twiddles);
        break;
      case 4:
        Radix4(x, y, st.m, st.stride, st.twiddles);
        break;
      case 5:
        Radix5(x, y, st.m, st.stride, st.twiddles);
        break;
      default:
        RadixAny(x, y, st.m, st.stride, st.radix, st.twiddles, st.roots);
        break;
    }
    Cx* t = x;
    x = y;
    y = t;
  }
  return x;
}

}  // namespace zr::detail
