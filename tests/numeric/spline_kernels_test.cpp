// The spline's fast paths against the plain ones written out here: the tree search and
// the search from a hint give the scan's segment, and the cubic built without a matrix
// evaluates to exactly the bits of one built through zrMatrix3Diag and zrPolynom.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "support/test_support.h"
#include "zr/numeric/numeric.h"

namespace {

using S = zrSpline<double>;
using Points = zrSimpleArray<zrColumnVector<double>>;
using Vec = std::vector<double>;
using zr_test::BadParametersText;

const double kInf = std::numeric_limits<double>::infinity();

Points MakePoints(const Vec& x, const Vec& y) {
  Points p(static_cast<int>(x.size()));
  for (int i = 0; i < p.Len(); ++i) p[i].Set(2), p[i][0] = x[i], p[i][1] = y[i];
  return p;
}

int ScanSegment(const Vec& x, double at) {
  const int n = static_cast<int>(x.size());
  for (int i = 1; i < n; ++i)
    if (x[i] > at) return i - 1;
  return n - 2;
}

bool SameBits(double a, double b) { return std::memcmp(&a, &b, sizeof a) == 0; }

// Sizes around the tree's levels (n - 2 keys fill 2^d - 1 nodes exactly or overflow them).
TEST(SplineKernels, SearchesGiveTheScansSegment) {
  std::mt19937_64 g(21);
  std::uniform_real_distribution<double> u(0.0, 1.0);
  for (const int n : {3, 4, 5, 6, 9, 10, 11, 17, 18, 33, 34, 35, 100, 1025, 1026, 1027}) {
    for (int round = 0; round < 4; ++round) {
      // Steps of 0, 1 or 2 units: ties and repeated nodes everywhere; round 3 opens and
      // closes the nodes with infinities.
      Vec x(n, -5.0);
      for (int i = 1; i < n; ++i) x[i] = x[i - 1] + std::floor(u(g) * 3);
      if (round == 3) x.front() = -kInf, x.back() = kInf;
      const S s(MakePoints(x, Vec(n, 0.0)));
      std::vector<double> at(x);
      for (int k = 0; k < 300; ++k) at.push_back(x[1] - 1 + u(g) * (x[n - 2] - x[1] + 2));
      at.push_back(-0.0);
      at.push_back(0.0);
      int hint = 0;
      for (std::size_t k = 0; k < at.size(); ++k) {
        const double a = at[k];
        if (!(x.front() <= a && a <= x.back())) continue;
        const int want = ScanSegment(x, a);
        ASSERT_EQ(want, s.GetSegmentNum(a)) << n << ' ' << round << ' ' << a;
        if (k % 3 == 0) hint = static_cast<int>(u(g) * (n + 4)) - 2;  // any hint, wild too
        const int from = hint;
        ASSERT_EQ(want, s.GetSegmentNum(a, hint)) << n << " hint " << from << ' ' << a;
        ASSERT_EQ(want, hint);
      }
      // Queries in increasing order from every kind of hint, stale ones included.
      std::sort(at.begin(), at.end());
      for (const int start : {-1, 0, n / 2, n - 2, n - 1, n + 7}) {
        hint = start;
        for (const double a : at) {
          if (!(x.front() <= a && a <= x.back())) continue;
          ASSERT_EQ(ScanSegment(x, a), s.GetSegmentNum(a, hint)) << n << " from " << start;
        }
      }
    }
  }
}

TEST(SplineKernels, OutsideTheNodesAndUnbuiltSegments) {
  S s(MakePoints({0, 1, 2, 4}, {2, 4, 4, 1}));
  const std::string out = "Invalid parameters : zrSpline: Out of range.";
  int hint = 1;
  for (const double a : {-0.5, 4.25, kInf, -kInf, std::nan("")}) {
    EXPECT_EQ(out, BadParametersText([&] { s.GetSegmentNum(a, hint); })) << a;
    EXPECT_EQ(out, BadParametersText([&] { s.Value(a, hint); })) << a;
    EXPECT_EQ(1, hint);
  }
  // Before any builder the segments have no coefficients: the value is 0.
  EXPECT_EQ(0.0, s(0.5));
  s.Make(1, zrSimpleArray<int>(), zrMatrix<double>());
  EXPECT_EQ(3.0, s(0.5));
  EXPECT_EQ(2.5, s.Value(3.0, hint));
  EXPECT_EQ(2, hint);
  // New points drop the built segments again.
  s.Set(MakePoints({0, 2, 4}, {1, 1, 1}));
  EXPECT_EQ(0.0, s(3.0));
}

// The cubic spline exactly as the library defines it: the matrix, the sweep, the
// coefficients and their polynomials, and whether the check refuses it.
struct Reference {
  std::vector<zrPolynom<double>> segs;
  bool refused = false;
};

Reference PlainCubic(const Vec& x, const Vec& y, int first, int second, const zrMatrix<double>& v) {
  const int n = static_cast<int>(x.size());
  Vec h(n - 1);
  for (int i = 0; i < n - 1; ++i) h[i] = x[i + 1] - x[i];
  zrMatrix3Diag<double> a(n);
  a.Diag().Fill(2.0);
  zrColumnVector<double> d(n);
  a.Up()[0] = 0, a.Down()[n - 2] = 0, d[0] = 0, d[n - 1] = 0;
  for (int i = 1; i < n - 1; ++i) {
    const double s = h[i - 1] + h[i];
    const double l = h[i] / s;
    a.Down()[i - 1] = 1 - l;
    a.Up()[i] = l;
    d[i] = 6 / s * ((y[i + 1] - y[i]) / h[i] - (y[i] - y[i - 1]) / h[i - 1]);
  }
  if (first & 1) a.Up()[0] = 1, d[0] = (6 / h[0]) * ((y[1] - y[0]) / h[0] - v(0, 0));
  if (first & 2)
    a.Down()[n - 2] = 1, d[n - 1] = (6 / h[n - 2]) * (v(0, 1) - (y[n - 1] - y[n - 2]) / h[n - 2]);
  if (second & 1) a.Diag()[0] = 1, a.Up()[0] = 0, d[0] = v(1, 0);
  if (second & 2) a.Diag()[n - 1] = 1, a.Down()[n - 2] = 0, d[n - 1] = v(1, 1);
  zrColumnVector<double> m;
  a.SolveEquationChaserMethod(m, d);
  Reference r;
  for (int i = 0; i < n - 1; ++i) {
    zrColumnVector<double> k(4);
    k[0] = (m[i + 1] - m[i]) / (6 * h[i]);
    k[1] = 0.5 * m[i];
    k[2] = (y[i + 1] - y[i]) / h[i] - (m[i + 1] / 6 + m[i] / 3) * h[i];
    k[3] = y[i];
    r.segs.emplace_back();
    r.segs.back().SetKoef(k, x[i], zrPolynom<double>::PowerKoef);
  }
  const auto close = [](double p, double q) { return std::fabs(p - q) <= 0.01; };
  for (int i = 0; i < n - 1; ++i)
    if (!close(r.segs[i](x[i]), y[i]) || !close(r.segs[i](x[i + 1]), y[i + 1])) r.refused = true;
  for (int i = 1; i < n - 1; ++i)
    for (int j = 1; j <= 2; ++j)
      if (!close(r.segs[i - 1].Derivative(x[i], j), r.segs[i].Derivative(x[i], j)))
        r.refused = true;
  return r;
}

TEST(SplineKernels, CubicHasThePlainBuildsBits) {
  std::mt19937_64 g(22);
  std::uniform_real_distribution<double> u(0.0, 1.0);
  const int codes[][2] = {{0, 3}, {3, 0}, {1, 2}, {2, 1}, {1, 1}, {0, 3}};
  int refusals = 0;
  for (const int n : {3, 4, 5, 8, 31, 200}) {
    for (int c = 0; c < 6; ++c) {
      // The last code pair is tried with ordinates far too large for the check's fixed
      // tolerance, so that both builds must refuse alike.
      const double scale = c == 5 ? 1e15 : 1.0;
      Vec x(n), y(n);
      for (int i = 0; i < n; ++i) {
        x[i] = (i == 0 ? -1.0 : x[i - 1]) + 0.01 + u(g);
        y[i] = scale * std::sin(3 * x[i]) + u(g);
      }
      zrMatrix<double> v(2, 2);
      v(0, 0) = u(g), v(0, 1) = -u(g), v(1, 0) = u(g), v(1, 1) = u(g);
      const Reference r = PlainCubic(x, y, codes[c][0], codes[c][1], v);
      zrSimpleArray<int> cd(2);
      cd[0] = codes[c][0], cd[1] = codes[c][1];
      // A fresh spline, and one rebuilt over an earlier cubic (its segments are then
      // written in place).
      S fresh(MakePoints(x, y));
      S rebuilt(MakePoints(x, y));
      zrMatrix<double> earlier(2, 2);
      earlier.Fill(0.25);
      try {
        rebuilt.MkSpline3(cd, earlier);
      } catch (const BadParameters&) {
      }
      for (S* const sp : {&fresh, &rebuilt}) {
        S& s = *sp;
        bool refused = false;
        try {
          s.MkSpline3(cd, v);
        } catch (const BadParameters&) {
          refused = true;
        }
        ASSERT_EQ(r.refused, refused) << n << ' ' << c;
        refusals += refused ? 1 : 0;
        EXPECT_EQ(refused ? 0 : 1, s.Check());
        // Refused or not, the segments stay built and must match.
        for (int i = 0; i < n - 1; ++i) {
          for (int k = 0; k <= 4; ++k) {
            const double at = x[i] + (x[i + 1] - x[i]) * k / 4;
            const zrPolynom<double>& p = r.segs[i];
            ASSERT_TRUE(SameBits(p(at), s(at, i))) << n << ' ' << c << ' ' << i << ' ' << k;
            for (int m = 0; m <= 3; ++m)
              ASSERT_TRUE(SameBits(p.Derivative(at, m), s.Derivative(at, m, i))) << m;
            int hint = i;
            ASSERT_TRUE(SameBits(r.segs[ScanSegment(x, at)](at), s.Value(at, hint)));
            ASSERT_TRUE(SameBits(r.segs[ScanSegment(x, at)](at), s(at)));
          }
        }
      }
    }
  }
  EXPECT_GT(refusals, 0);
}

// Copies keep their own records (rebuilding one spline leaves the other alone), and a
// build over another degree replaces every coefficient.
TEST(SplineKernels, SegmentsOfCopiesAndRebuildsStayTheirOwn) {
  const Vec x = {0, 1, 2.5, 3, 4.5, 6}, y = {1, 3, 2, 2.5, 0, 1};
  Points p = MakePoints(x, y);
  p[2].Set(3), p[2][0] = x[2], p[2][1] = y[2], p[2][2] = 99;  // a third element is ignored
  zrSimpleArray<int> natural(2);
  natural[0] = 0, natural[1] = 3;
  zrMatrix<double> zero(2, 2), v(2, 2);
  zero.Fill(0.0), v.Fill(0.5);
  S s(p);
  p[1][1] = 100;  // the spline took its own copy of the points
  s.MkSpline3(natural, zero);
  const Reference r = PlainCubic(x, y, 0, 3, zero);
  const S copy(s);
  S assigned;
  assigned = s;
  s.Make(1, zrSimpleArray<int>(), zrMatrix<double>());
  EXPECT_EQ(2.0, s(0.5));
  s.MkSpline3(natural, v);  // over a broken line, then a clamped build over a cubic
  zrSimpleArray<int> clamped(2);
  clamped[0] = 3, clamped[1] = 0;
  S other(copy);
  other.MkSpline3(clamped, v);
  const Reference rv = PlainCubic(x, y, 0, 3, v);
  const Reference rc = PlainCubic(x, y, 3, 0, v);
  for (int i = 0; i + 1 < static_cast<int>(x.size()); ++i) {
    for (const double at : {x[i], 0.5 * (x[i] + x[i + 1])}) {
      for (int m = 0; m <= 3; ++m) {
        const double want = r.segs[i].Derivative(at, m);
        ASSERT_TRUE(SameBits(want, copy.Derivative(at, m, i))) << i << ' ' << m;
        ASSERT_TRUE(SameBits(want, assigned.Derivative(at, m, i))) << i << ' ' << m;
        ASSERT_TRUE(SameBits(rv.segs[i].Derivative(at, m), s.Derivative(at, m, i))) << i;
        ASSERT_TRUE(SameBits(rc.segs[i].Derivative(at, m), other.Derivative(at, m, i))) << i;
      }
      ASSERT_TRUE(SameBits(r.segs[i](at), copy(at)));
    }
    EXPECT_TRUE(SameBits(r.segs[i].Derivative(x[i], 1), copy.Derivative(1, i)));
  }
  EXPECT_EQ(1, copy.Check());
  EXPECT_EQ(1, other.Check());
}

}  // namespace
