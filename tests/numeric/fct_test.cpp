#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include "support/array_builders.h"
#include "support/test_support.h"
#include "zr/numeric/numeric.h"

namespace {

using Vec = zrVector<double>;
using zr_test::Of;
using CVec = zrVector<zrComplex>;
constexpr zrFCTScale kPlain = zrFCTScale::Plain;
constexpr zrFCTScale kOrtho = zrFCTScale::Orthonormal;

// The bound holds where long double has its 64-bit mantissa: the reference sums are
// computed in it. Under an emulator that runs long double at double precision (valgrind
// does), the large lengths pass 1e-14 by a small factor, so the bound there is the one
// double precision can promise.
const double kBound = [] {
  volatile long double one = 1.0L, tiny = std::numeric_limits<long double>::epsilon();
  return one + tiny != one ? 1e-14 : 1e-13;
}();

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

// Both directions against sums in long double, relative to the largest coefficient; a round trip is
// then exact to the same bound. The cosines cos(pi a / (2n)) come from a half-wave table.
void ExpectAccurate(int n, zrFCTScale scale) {
  SCOPED_TRACE(testing::Message() << "n = " << n << " scale " << static_cast<int>(scale));
  const std::int64_t n2 = 2 * static_cast<std::int64_t>(n);
  std::vector<long double> q(n2 + 1);
  for (std::int64_t i = 0; i <= n2; ++i)
    q[i] = std::cos(3.141592653589793238462643383279502884L * i / n2);
  const auto cosine = [&](std::int64_t a) {
    a %= 2 * n2;
    return q[a <= n2 ? a : 2 * n2 - a];
  };
  // The weights of coefficient 0 and of the others, forward and inverse.
  const bool ortho = scale == kOrtho;
  const long double w[2][2] = {
      {ortho ? std::sqrt(1.0L / n) : 1.0L, ortho ? std::sqrt(2.0L / n) : 1.0L},
      {ortho ? std::sqrt(1.0L / n) : 1.0L / n, ortho ? std::sqrt(2.0L / n) : 2.0L / n}};
  const Vec x = Random(n, 1000u + static_cast<unsigned>(n));
  zrFCTT plan(n, scale);
  Vec fx, ix;
  plan.Forward(x, fx);
  plan.Inverse(x, ix);
  double err[2] = {0, 0};  // forward, inverse
  for (int i = 0; i < n; ++i) {
    long double forward = 0, inverse = 0;
    for (int m = 0; m < n; ++m) {
      forward += x[m] * cosine(static_cast<std::int64_t>(i) * (2 * m + 1));
      inverse += w[1][m != 0] * x[m] * cosine(static_cast<std::int64_t>(m) * (2 * i + 1));
    }
    err[0] = std::fmax(err[0], static_cast<double>(std::fabs(fx[i] - w[0][i != 0] * forward)));
    err[1] = std::fmax(err[1], static_cast<double>(std::fabs(ix[i] - inverse)));
  }
  EXPECT_LE(err[0] / MaxAbs(fx), kBound);
  EXPECT_LE(err[1] / MaxAbs(ix), kBound);
}

// Every length to 64 (every mix of radices and the generic prime one), composite lengths,
// and Bluestein for a prime factor above 64 on the even (half-length) and the odd path.
TEST(FctTest, MatchesTheDirectSum) {
  std::vector<int> lengths = {96, 100, 128, 243, 250, 343, 366, 1000, 67, 134, 127, 254};
  for (int n = 1; n <= 64; ++n) lengths.push_back(n);
  for (int n : lengths) {
    ExpectAccurate(n, kPlain);
    ExpectAccurate(n, kOrtho);
  }
}

// Complex data: the transforms of the real and of the imaginary parts, which the lengths and
// scales above cover.
TEST(FctTest, ComplexDataIsTwoRealTransforms) {
  const int n = 67;
  const Vec re = Random(n, 7u), im = Random(n, 9u);
  CVec z(n), fz;
  for (int i = 0; i < n; ++i) z[i] = zrComplex(re[i], im[i]);
  zrFCTTC plan(n, kOrtho);
  zrFCTT real(n, kOrtho);
  plan.Forward(z, fz);
  Vec fre, fim;
  real.Forward(re, fre);
  real.Forward(im, fim);
  for (int k = 0; k < n; ++k) EXPECT_TRUE(fre[k] == fz[k].Re() && fim[k] == fz[k].Im()) << k;
  plan.Inverse(fz);
  for (int i = 0; i < n; ++i)
    EXPECT_LE(std::fabs(fz[i].Re() - re[i]) + std::fabs(fz[i].Im() - im[i]), 2 * kBound);
  CVec three(3);
  EXPECT_EQ("Invalid parameters : zrFCTTC: the data's length differs from the transform's.",
            zr_test::BadParametersText([&] { plan.Forward(three); }));
}

TEST(FctTest, StepsWindowsAndSharing) {
  const int n = 10;
  zrFCTT plan(n);
  const Vec data = Random(2 * n + 1, 5u);
  // The reference: the even-indexed elements, reversed, in a contiguous vector.
  Vec plainx(n), expect;
  for (int i = 0; i < n; ++i) plainx[i] = data[2 * (n - 1 - i)];
  plan.Forward(plainx, expect);

  // A window of step -2 over a block that others share, into an output with a sharer.
  Vec block(2 * n + 1), view, out(n);
  block = data;
  view.Set(block, 2 * (n - 1), n, -2);
  Vec sharer(out);
  plan.Forward(view, out);
  for (int k = 0; k < n; ++k) EXPECT_TRUE(expect[k] == out[k] && expect[k] == sharer[k]) << k;
  // In place through the window: written back with the step.
  plan.Forward(view);
  for (int k = 0; k < n; ++k) EXPECT_EQ(expect[k], block[2 * (n - 1 - k)]);

  // An output of another length takes a fresh block; its old sharer keeps the old values.
  Vec small = Of<Vec>({4, 4, 4});
  const Vec old(small);
  plan.Forward(plainx, small);
  EXPECT_TRUE(small.Len() == n && small[0] == expect[0] && old.Len() == 3 && old[0] == 4.0);
}

TEST(FctTest, BadInputThrowsAndChangesNothing) {
  EXPECT_EQ("Invalid parameters : zrFCTT: the length must be at least 1.",
            zr_test::BadParametersText([] { zrFCTT plan(0); }));
  EXPECT_EQ("Invalid parameters : zrFCTTC: the length must be at least 1.",
            zr_test::BadParametersText([] { zrFCTTC plan(-4, kOrtho); }));
  zrFCTT plan(4);
  Vec x = Of<Vec>({1, 1, 1, 1, 1}), out = Of<Vec>({3, 3, 3, 3});
  EXPECT_EQ("Invalid parameters : zrFCTT: the data's length differs from the transform's.",
            zr_test::BadParametersText([&] { plan.Forward(x, out); }));
  EXPECT_TRUE(out[0] == 3.0 && x[4] == 1.0);
}

}  // namespace
