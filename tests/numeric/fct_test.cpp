#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include "support/test_support.h"
#include "zr/numeric/numeric.h"

namespace {

using Vec = zrVector<double>;
using CVec = zrVector<zrComplex>;

#if defined(__SANITIZE_ADDRESS__)
constexpr bool kSanitized = true;
#else
constexpr bool kSanitized = false;
#endif

// cos(pi a / (2n)) for any integer a >= 0, from a quarter-wave table in long double.
class Cosines {
 public:
  explicit Cosines(int n) : n_(n), q_(static_cast<std::size_t>(n) + 1) {
    const long double pi = 3.141592653589793238462643383279502884L;
    for (int i = 0; i <= n; ++i) q_[i] = std::cos(pi * i / (2.0L * n));
  }
  long double operator()(std::int64_t a) const {
    a %= 4 * static_cast<std::int64_t>(n_);
    if (a <= n_) return q_[a];
    if (a <= 2 * n_) return -q_[2 * n_ - a];
    if (a <= 3 * n_) return -q_[a - 2 * n_];
    return q_[4 * n_ - a];
  }

 private:
  std::int64_t n_;
  std::vector<long double> q_;
};

long double Scale(int n, int k, zrFCTScale scale) {
  if (scale == zrFCTScale::Plain) return 1.0L;
  return std::sqrt((k == 0 ? 1.0L : 2.0L) / n);
}

// The DCT-II coefficient k of x, summed directly in long double.
long double DirectForward(const Vec& x, int k, zrFCTScale scale, const Cosines& c) {
  const int n = x.Len();
  long double sum = 0;
  for (int j = 0; j < n; ++j) sum += x[j] * c(static_cast<std::int64_t>(k) * (2 * j + 1));
  return Scale(n, k, scale) * sum;
}

// Element j of the DCT-III of X with the inverse's weights.
long double DirectInverse(const Vec& x, int j, zrFCTScale scale, const Cosines& c) {
  const int n = x.Len();
  long double sum = 0;
  for (int k = 0; k < n; ++k) {
    const long double t =
        scale == zrFCTScale::Plain ? (k == 0 ? 1.0L : 2.0L) / n : Scale(n, k, scale);
    sum += t * x[k] * c(static_cast<std::int64_t>(k) * (2 * j + 1));
  }
  return sum;
}

Vec Random(int n, unsigned seed) {
  std::mt19937_64 gen(seed);
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  Vec x(n);
  for (int i = 0; i < n; ++i) x[i] = u(gen);
  return x;
}

double MaxAbs(const Vec& x) {
  double m = 0;
  for (int i = 0; i < x.Len(); ++i) m = std::fmax(m, std::fabs(x[i]));
  return m;
}

// The largest error of the coefficients at `at` (all when empty) relative to the largest
// coefficient, for both directions, and of the round trip relative to the data.
struct Errors {
  double forward = 0;
  double inverse = 0;
  double round_trip = 0;
};

Errors Measure(int n, zrFCTScale scale, unsigned seed, const std::vector<int>& at = {}) {
  const Cosines c(n);
  const Vec x = Random(n, seed);
  zrFCTT plan(n, scale);
  Vec fx;
  plan.Forward(x, fx);
  Vec ix;
  plan.Inverse(x, ix);
  Vec back;
  plan.Inverse(fx, back);
  std::vector<int> idx = at;
  if (idx.empty()) {
    for (int k = 0; k < n; ++k) idx.push_back(k);
  }
  Errors e;
  for (int k : idx) {
    e.forward =
        std::fmax(e.forward, static_cast<double>(std::fabs(fx[k] - DirectForward(x, k, scale, c))));
    e.inverse =
        std::fmax(e.inverse, static_cast<double>(std::fabs(ix[k] - DirectInverse(x, k, scale, c))));
  }
  e.forward /= MaxAbs(fx);
  e.inverse /= MaxAbs(ix);
  for (int j = 0; j < n; ++j) e.round_trip = std::fmax(e.round_trip, std::fabs(back[j] - x[j]));
  e.round_trip /= MaxAbs(x);
  return e;
}

// The bound holds where long double has its 64-bit mantissa: the reference sums and the
// transform's own twiddles are computed in it. Under an emulator that runs long double at
// double precision (valgrind does), the large lengths pass 1e-14 by a small factor, so the
// bound there is the one double precision can promise.
bool LongDoubleIsExtended() {
  volatile long double one = 1.0L;
  volatile long double tiny = std::numeric_limits<long double>::epsilon();
  return one + tiny != one;
}
const double kBound = LongDoubleIsExtended() ? 1e-14 : 1e-13;

void ExpectAccurate(int n, zrFCTScale scale, const std::vector<int>& at = {}) {
  const Errors e = Measure(n, scale, 1000u + static_cast<unsigned>(n), at);
  EXPECT_LE(e.forward, kBound) << "n = " << n;
  EXPECT_LE(e.inverse, kBound) << "n = " << n;
  EXPECT_LE(e.round_trip, kBound) << "n = " << n;
}

TEST(FctTest, EverySmallLengthMatchesTheDirectSum) {
  for (int n = 1; n <= 64; ++n) {
    ExpectAccurate(n, zrFCTScale::Plain);
    ExpectAccurate(n, zrFCTScale::Orthonormal);
  }
}

TEST(FctTest, CompositeAndPrimeLengthsMatchTheDirectSum) {
  // Mixed radices, the generic prime radix (7, 61), Bluestein for a prime factor above 64
  // (67, 2 * 67, 127, 1009, 4099) and for an odd prime (the full-length path).
  std::vector<int> lengths = {96, 100, 128, 243, 250, 343, 366, 1000, 67, 134, 127, 254};
  if (!kSanitized) {
    for (int n : {1001, 1024, 2310, 4096, 1009, 2018, 4099}) lengths.push_back(n);
  }
  for (int n : lengths) {
    ExpectAccurate(n, zrFCTScale::Plain);
    ExpectAccurate(n, zrFCTScale::Orthonormal);
  }
}

TEST(FctTest, LargeLengthsSpotChecked) {
  std::vector<int> lengths = {999983};
  if (!kSanitized) {
    for (int n : {1 << 20, 2 * 999983}) {
      lengths.push_back(n);
    }
  }
  for (int n : lengths) {
    std::vector<int> at = {0, 1, 2, 3, n / 2 - 1, n / 2, n / 2 + 1, n - 3, n - 2, n - 1};
    std::mt19937 gen(static_cast<unsigned>(n));
    for (int i = 0; i < 14; ++i) at.push_back(static_cast<int>(gen() % static_cast<unsigned>(n)));
    const zrFCTScale scale = n % 2 == 0 ? zrFCTScale::Plain : zrFCTScale::Orthonormal;
    ExpectAccurate(n, scale, at);
  }
}

TEST(FctTest, ComplexDataTransformsBothParts) {
  for (int n : {1, 2, 7, 16, 30, 67, 134}) {
    for (zrFCTScale scale : {zrFCTScale::Plain, zrFCTScale::Orthonormal}) {
      const Vec re = Random(n, 7u + static_cast<unsigned>(n));
      const Vec im = Random(n, 9u + static_cast<unsigned>(n));
      CVec z(n);
      for (int i = 0; i < n; ++i) z[i] = zrComplex(re[i], im[i]);
      zrFCTTC plan(n, scale);
      zrFCTT real(n, scale);
      CVec fz;
      plan.Forward(z, fz);
      Vec fre;
      Vec fim;
      real.Forward(re, fre);
      real.Forward(im, fim);
      for (int k = 0; k < n; ++k) {
        EXPECT_EQ(fre[k], fz[k].Re());
        EXPECT_EQ(fim[k], fz[k].Im());
      }
      plan.Inverse(fz);
      double err = 0;
      for (int i = 0; i < n; ++i) {
        err = std::fmax(err, std::fabs(fz[i].Re() - re[i]) + std::fabs(fz[i].Im() - im[i]));
      }
      EXPECT_LE(err, kBound * 2) << "n = " << n;
    }
  }
}

TEST(FctTest, StepsWindowsAndSharing) {
  const int n = 10;
  zrFCTT plan(n);
  const Vec data = Random(2 * n + 1, 5u);
  // The reference: the even-indexed elements, reversed, in a contiguous vector.
  Vec plainx(n);
  for (int i = 0; i < n; ++i) plainx[i] = data[2 * (n - 1 - i)];
  Vec expect;
  plan.Forward(plainx, expect);

  // A window of step -2 over a block that others share.
  Vec block(2 * n + 1);
  block = data;
  Vec view;
  view.Set(block, 2 * (n - 1), n, -2);
  Vec out(n);
  Vec sharer(out);  // sees the in-place write
  plan.Forward(view, out);
  for (int k = 0; k < n; ++k) {
    EXPECT_EQ(expect[k], out[k]);
    EXPECT_EQ(expect[k], sharer[k]);
  }
  for (int i = 0; i < 2 * n + 1; ++i) EXPECT_EQ(data[i], block[i]);  // input untouched

  // In place through the window: written back with the step, odd elements untouched.
  plan.Forward(view);
  for (int k = 0; k < n; ++k) EXPECT_EQ(expect[k], block[2 * (n - 1 - k)]);
  for (int i = 1; i < 2 * n + 1; i += 2) EXPECT_EQ(data[i], block[i]);

  // An output overlapping the input (shifted by one element) gets the input read first.
  Vec line(n + 1);
  for (int i = 0; i < n; ++i) line[i] = plainx[i];
  Vec in;
  in.Set(line, 0, n);
  Vec shifted;
  shifted.Set(line, 1, n);
  plan.Forward(in, shifted);
  for (int k = 0; k < n; ++k) EXPECT_EQ(expect[k], line[k + 1]);

  // An output of another length takes a fresh block; its old sharer keeps the old values.
  Vec small(3);
  small.Fill(4.0);
  Vec old(small);
  plan.Forward(plainx, small);
  EXPECT_EQ(n, small.Len());
  EXPECT_EQ(expect[0], small[0]);
  EXPECT_EQ(3, old.Len());
  EXPECT_EQ(4.0, old[0]);

  // Arrays: the same values, in place and into another array.
  zrArray<double> a(n);
  for (int i = 0; i < n; ++i) a[i] = plainx[i];
  zrArray<double> b;
  plan.Forward(a, b);
  plan.Forward(a);
  for (int k = 0; k < n; ++k) {
    EXPECT_EQ(expect[k], a[k]);
    EXPECT_EQ(expect[k], b[k]);
  }
  plan.Inverse(b, a);
  for (int i = 0; i < n; ++i) EXPECT_NEAR(plainx[i], a[i], 1e-14);
}

TEST(FctTest, BadInputThrowsAndChangesNothing) {
  EXPECT_EQ("Invalid parameters : zrFCTT: the length must be at least 1.",
            zr_test::BadParametersText([] { zrFCTT plan(0); }));
  EXPECT_EQ("Invalid parameters : zrFCTTC: the length must be at least 1.",
            zr_test::BadParametersText([] { zrFCTTC plan(-4, zrFCTScale::Orthonormal); }));
  const std::string real =
      "Invalid parameters : zrFCTT: the data's length differs from the "
      "transform's.";
  zrFCTT plan(4);
  Vec x(5);
  x.Fill(1.0);
  Vec out(4);
  out.Fill(3.0);
  Vec empty;
  zrArray<double> a(3, 1.0);
  EXPECT_EQ(real, zr_test::BadParametersText([&] { plan.Forward(x, out); }));
  EXPECT_EQ(real, zr_test::BadParametersText([&] { plan.Inverse(x); }));
  EXPECT_EQ(real, zr_test::BadParametersText([&] { plan.Forward(empty); }));
  EXPECT_EQ(real, zr_test::BadParametersText([&] { plan.Inverse(a); }));
  EXPECT_EQ(3.0, out[0]);
  EXPECT_EQ(1.0, x[4]);
  EXPECT_EQ(1.0, a[2]);
  zrFCTTC cplan(2);
  CVec z(3);
  EXPECT_EQ("Invalid parameters : zrFCTTC: the data's length differs from the transform's.",
            zr_test::BadParametersText([&] { cplan.Forward(z); }));
}

}  // namespace
