#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "support/levels.h"
#include "support/test_support.h"
#include "zr/numeric/numeric.h"

namespace {

using S = zrSpline<double>;
using Points = zrSimpleArray<zrColumnVector<double>>;
using Vec = std::vector<double>;
using zr_test::BadParametersText;
using zr_test::Bits;

const std::string kOutOfRange = "Invalid parameters : zrSpline: Out of range.";
const std::string kBadCount = "Invalid parameters : Invalid number of bound condition.";
const std::string kError = "Invalid parameters : error in spline";
const std::string kFew = "Invalid parameters : Spline: number of point must be >= 3";
const double kInf = std::numeric_limits<double>::infinity();

Points MakePoints(const Vec& x, const Vec& y) {
  Points p(static_cast<int>(x.size()));
  for (int i = 0; i < p.Len(); ++i) p[i].Set(2), p[i][0] = x[i], p[i][1] = y[i];
  return p;
}

// An array of the values: Array(x), Array({0, 1}), Array<int>({0, 3}) for end codes.
template <class T = double, class V = std::initializer_list<T>>
zrArray<T> Array(const V& v) {
  zrArray<T> a;
  for (T e : v) a.push_back(e);
  return a;
}

// values(0, .) first derivatives, values(1, .) second derivatives; (., 0) the left end.
zrMatrix<double> Values(double d1l, double d1r, double d2l, double d2r) {
  zrMatrix<double> v(2, 2);
  v(0, 0) = d1l, v(0, 1) = d1r, v(1, 0) = d2l, v(1, 1) = d2r;
  return v;
}

TEST(SplineTest, BuildersGiveTheirSplines) {
  Points p = MakePoints({0, 1, 2}, {0, 1, 0});
  S nat(p);
  p[1][1] = 10;              // the caller's points are not the spline's
  EXPECT_EQ(0.0, nat(0.5));  // no segments built yet
  nat.MkSpline3(Array<int>({0, 3}), Values(0, 0, 0, 0));
  EXPECT_TRUE(nat(0.5) == 0.6875 && nat(3.0, 1) == -1);  // an explicit segment extrapolates

  // A cubic is reproduced with any two end conditions that hold for it.
  auto f = [](double x) { return ((0.5 * x - 1) * x + 2) * x - 3; };
  auto f1 = [](double x) { return (1.5 * x - 2) * x + 2; };
  auto f2 = [](double x) { return 3 * x - 2; };
  const Vec xs = {-1, -0.4, 0.3, 1.5, 2, 3.25};
  Vec ys;
  for (double v : xs) ys.push_back(f(v));
  for (const auto& c :
       {Array<int>({3, 0}), Array<int>({0, 3}), Array<int>({1, 2}), Array<int>({2, 1})}) {
    S s(MakePoints(xs, ys));
    s.MkSpline3(c, Values(f1(xs[0]), f1(xs[5]), f2(xs[0]), f2(xs[5])));
    for (double t = xs[0]; t <= xs[5]; t += 0.125) {
      const double want[] = {f(t), f1(t), f2(t), 3.0};
      EXPECT_NEAR(f(t), s(t), 1e-12) << c[0] << c[1] << ' ' << t;
      for (int m = 1; m <= 3; ++m) EXPECT_NEAR(want[m], s.Derivative(t, m), 1e-9) << m;
    }
  }
  // (1, 1): a first and then a second derivative at the left end; the right end keeps its
  // starting row, a zero moment. A missing codes element counts as no condition.
  S four(MakePoints({0, 1, 3, 4}, {1, -1, 2, 0}));
  four.MkSpline3(Array<int>({1, 1}), Values(5, 0, 0.5, 0));
  EXPECT_TRUE(std::fabs(four.Derivative(2, 0) - 0.5) < 1e-14 &&
              std::fabs(four.Derivative(2, 3)) < 1e-14);
  four.MkSpline3(Array<int>({3}), Values(1, 2, 0, 0));
  EXPECT_NEAR(2.0, four.Derivative(1, 3), 1e-12);

  // Make by degree, over earlier builds; copies keep their own segments. A third element
  // of a point is ignored.
  Points q = MakePoints({0, 1, 2.5, 4}, {1, 3, 0, 2});
  q[2].Set(3), q[2][0] = 2.5, q[2][1] = 0, q[2][2] = 99;
  const auto ends = Values(1, -1, 0, 0);
  S cubic(q), made(q), assigned(MakePoints({0, 1, 2}, {0, 0, 0}));
  cubic.MkSpline3(Array<int>({3, 0}), ends);
  made.Make(3, Array<int>({3, 0}), ends);
  const S copy(cubic);
  assigned = cubic;
  cubic.Make(1, zrSimpleArray<int>(), zrMatrix<double>());
  for (double t = 0; t <= 4; t += 0.125)
    EXPECT_TRUE(copy(t) == made(t) && assigned(t) == made(t)) << t;
  EXPECT_TRUE(cubic(0.5) == 2 && cubic(1.75) == 1.5 && cubic.Derivative(1.75, 1) == -2);
}

TEST(SplineTest, ErrorsHaveTheirTexts) {
  S s(MakePoints({0, 1, 2}, {0, 1, 0}));
  const auto v = Values(0, 0, 0, 0);
  zrMatrix<double> row(1, 2);
  row.Fill(0.0);
  s.MkSpline3(Array<int>({3, 0}), row);  // only the first row is read; the second is missing:
  EXPECT_EQ(kOutOfRange, BadParametersText([&] { s.MkSpline3(Array<int>({0, 3}), row); }));
  int hint = 1;
  const std::function<void()> outside[] = {
      [&] { s(std::nextafter(2.0, 3.0)); }, [&] { s.Derivative(std::nextafter(0.0, -1.0), 1); },
      [&] { s.GetSegmentNum(NAN); },        [&] { s.GetSegmentNum(-kInf, hint); },
      [&] { s.Derivative(1, -1); },         [&] { s(0.5, 2); },
      [&] { s.Derivative(0.5, 1, -1); },    [&] { s.Derivative(1, 3); },
      [] { S().GetSegmentNum(0); }};
  for (const auto& call : outside) EXPECT_EQ(kOutOfRange, BadParametersText(call));
  EXPECT_EQ(1, hint);  // a refused search leaves the hint
  for (const auto& c : {Array<int>({3, 3}), Array<int>({0, 1})})
    EXPECT_EQ(kBadCount, BadParametersText([&] { s.MkSpline3(c, v); }));
  EXPECT_EQ(kBadCount, BadParametersText([&] { s.Make(1, Array<int>({1, 0}), v); }));
  EXPECT_EQ("Invalid parameters : zrSpline: wrong degree.",
            BadParametersText([&] { s.Make(2, zrSimpleArray<int>(), v); }));
  EXPECT_EQ(kFew, BadParametersText([] { (void)S(MakePoints({0, 1}, {0, 1})); }));
  Points thin = MakePoints({0, 1, 2}, {0, 1, 0});
  thin[1].Set(1);
  EXPECT_EQ("Invalid parameters : Spline: point must have 2 coordinates",
            BadParametersText([&] { S t(thin); }));
  // The check refuses coincident abscissas (the segments stay built) and a period that
  // does not close.
  S flat(MakePoints({0, 1, 1, 2}, {0, 1, 1, 0}));
  EXPECT_EQ(kError, BadParametersText([&] { flat.MkSpline3(Array<int>({0, 3}), v); }));
  EXPECT_EQ(0, flat.Check());
  EXPECT_EQ(kError, BadParametersText([] {
              S(MakePoints({0, 1, 2}, {0, 1, 0.5})).MkPeriodSpline3();
            }));

  const auto cubic = [](const Vec& x, const Vec& y, zrSplineEnd end = zrSplineEnd::Natural()) {
    return BadParametersText([&] { (void)S::Cubic(Array(x), Array(y), end); });
  };
  const std::string order = "Invalid parameters : zrSpline: x must be strictly increasing.";
  EXPECT_EQ("Invalid parameters : zrSpline: x and y differ in length.",
            cubic({0, 1, 2, 3}, {0, 1, 2}));
  EXPECT_EQ(kFew, cubic({0, 1}, {0, 1}));
  EXPECT_TRUE(cubic({0, 1, 1, 2}, {0, 1, 1, 0}) == order && cubic({0, NAN, 2}, {0, 1, 0}) == order);
  EXPECT_EQ("Invalid parameters : zrSpline: periodic y must end at its first value.",
            cubic({0, 1, 2}, {0, 1, 0.5}, zrSplineEnd::Periodic()));
  EXPECT_EQ(kError, cubic({0, 1, 2}, {0, 1, INFINITY}));
  // More points than the spline's one block holds: refused before any is read.
  const double three[3] = {0, 1, 2};
  EXPECT_THROW((void)S::Cubic(three, three, INT32_MAX / 6 + 1, zrSplineEnd::Natural()),
               zrErrNoMemory);
}

// Cubic from x and y builds the same spline, bit for bit, from arrays and strided vectors,
// and it holds its ends' conditions; the periodic one is smooth across the period (three
// points fold its corners into the band) and, within the check's tolerance, takes y[0] at the end.
TEST(SplineTest, CubicFromXAndYHoldsItsEnds) {
  std::mt19937 gen(2024);
  std::uniform_real_distribution<double> step(0.05, 2.0), value(-3.0, 3.0);
  for (int n : {3, 4, 5, 8, 12, 40}) {
    Vec x(n, -2.5), y(n);
    for (int i = 1; i < n; ++i) x[i] = x[i - 1] + step(gen);
    for (int i = 0; i < n; ++i) y[i] = i < n - 1 ? value(gen) : y[0];
    // The same values through steps of 2 and -1: x every other of a buffer, y reversed.
    zrVector<double> xBuf(2 * n), yRev(n), xv, yv;
    for (int i = 0; i < n; ++i) xBuf[2 * i] = x[i], xBuf[2 * i + 1] = NAN, yRev[n - 1 - i] = y[i];
    xv.Set(xBuf, 0, n, 2);
    yv.Set(yRev, n - 1, n, -1);
    for (const zrSplineEnd& end :
         {zrSplineEnd::Natural(), zrSplineEnd::Clamped(0.75, -1.25), zrSplineEnd::Periodic()}) {
      const S arrays = S::Cubic(Array(x), Array(y), end), vectors = S::Cubic(xv, yv, end);
      // The ends hold their conditions: no curvature, the slopes, or the period's joins.
      const int kind = end.GetKind(), m = kind == zrSplineEnd::kClamped ? 1 : 2;
      if (kind != zrSplineEnd::kPeriodic) {
        EXPECT_NEAR(end.Left(), arrays.Derivative(m, 0), 1e-9) << n;
        EXPECT_NEAR(end.Right(), arrays.Derivative(m, n - 1), 1e-9) << n;
      }
      for (int j = 0; kind == zrSplineEnd::kPeriodic && j <= 2; ++j)
        EXPECT_NEAR(arrays.Derivative(x[0], j, 0), arrays.Derivative(x[n - 1], j, n - 2), 1e-9)
            << n << j;
      for (int i = 0; i < n; ++i) EXPECT_NEAR(y[i], arrays(x[i]), 1e-12);
      for (int k = 0; k < 8 * n; ++k) {
        const double t = x[0] + (x[n - 1] - x[0]) * k / (8 * n), want = arrays(t);
        ASSERT_EQ(Bits(vectors(t)), Bits(want)) << n << ' ' << end.GetKind() << ' ' << t;
      }
    }
  }
  EXPECT_EQ(0.0, S::Cubic(Array({0, 1, 2}), Array({0, 1, 0.005}), zrSplineEnd::Periodic())(2.0));
}

// The outputs follow the arrays' rule: in place at the same length, a new block otherwise;
// a refusal writes nothing; xs may be its own output. Each value is the single point's.
TEST(SplineTest, ManyPointsWriteInPlaceOrAFreshBlock) {
  const S s = S::Cubic(Array({0, 1, 2, 3}), Array({0, 1, 0, 1}), zrSplineEnd::Natural());
  const zrArray<double> xs = Array({0.5, 3, 0, 1.25});  // out of order: the hint must not need it
  zrArray<double> base(6, -7.0), shorter = base.Left(2), slopes, curvature(4);
  s.Value(xs, shorter);  // another length than xs: a block of its own, base no longer shared
  s.Derivative(xs, 1, slopes);
  s.Derivative(xs.GetPointer(), 4, 2, curvature.GetPointer());
  EXPECT_TRUE(base[0] == -7.0 && shorter.Len() == 4 && base.GetNumOfRef() == 0);
  for (int i = 0; i < 4; ++i)
    EXPECT_TRUE(shorter[i] == s(xs[i]) && slopes[i] == s.Derivative(xs[i], 1) &&
                curvature[i] == s.Derivative(xs[i], 2))
        << i;
  // Out of range anywhere: nothing written; a wrong order is refused for no points too.
  zrArray<double> window = base.Mid(1, 3);
  EXPECT_EQ(kOutOfRange, BadParametersText([&] { s.Value(Array({0.5, 3.5, 1}), window); }));
  EXPECT_EQ("Invalid parameters : zrPolynom : wrong derivative order",
            BadParametersText([&] { s.Derivative(zrArray<double>(), -1, window); }));
  EXPECT_EQ(base[2], -7.0);

  // At the same length in place: xs as its own output, and outputs overlapping xs one
  // element on either side.
  for (int shift : {0, 1, -1}) {
    for (int pointers = 0; pointers < 2; ++pointers) {
      zrArray<double> buf = Array({0, 0.5, 3, 0, 1.25, 0});
      zrArray<double> in = buf.Mid(1, 4), out = buf.Mid(1 + shift, 4);
      pointers ? s.Value(buf.GetPointer() + 1, 4, buf.GetPointer() + 1 + shift) : s.Value(in, out);
      for (int i = 0; i < 4; ++i) EXPECT_EQ(buf[1 + shift + i], s(xs[i])) << shift << i;
    }
  }
}

// Every level builds and searches alike: sizes around the search tree's levels (n - 2 keys
// fill 2^d - 1 nodes exactly or overflow them) and the sweep's ends; every kind of end row;
// ties, unordered nodes, infinite ends and ordinates far beyond the check's fixed
// tolerance (every level refuses); a build over an earlier one; wild and stale hints; sorted
// runs.
TEST(SplineLevels, BuildsAndSearchesAgree) {
  // The scan's answers by hand, ties included: segment i - 1 for the first x_i > x.
  const S tied(MakePoints({0, 1, 1, 2, 3}, Vec(5, 0.0)));
  const S unordered(MakePoints({0, 2, 1, 3}, Vec(4, 0.0)));
  int hint = 7;
  EXPECT_TRUE(tied.GetSegmentNum(0.5) == 0 && tied.GetSegmentNum(1) == 2 &&
              tied.GetSegmentNum(3) == 3);
  EXPECT_TRUE(tied.GetSegmentNum(2, hint) == 3 && hint == 3 && tied.GetSegmentNum(1, hint) == 2);
  EXPECT_TRUE(unordered.GetSegmentNum(1.5) == 0 && unordered.GetSegmentNum(2.5, hint) == 2);

  // Round 1 has ties and 3 infinite ends, searched only (a build of them is all NaN, whose
  // sign an optimiser may take from either operand); 2 unordered nodes, 5 huge ordinates.
  const int codes[][2] = {{0, 3}, {0, 3}, {1, 1}, {0, 3}, {3, 0}, {0, 3}, {1, 2}, {2, 1}};
  for (const int n : {3, 4, 5, 6, 8, 9, 10, 11, 17, 18, 31, 33, 34, 35, 200, 1025, 1026, 1027}) {
    for (int round = 0; round < 8; ++round) {
      std::mt19937_64 g(21 + n * 8 + round);
      std::uniform_real_distribution<double> u(0.0, 1.0);
      Vec x(n, -1.0), y(n);
      for (int i = 1; i < n; ++i)
        x[i] = x[i - 1] + (round == 1 ? std::floor(u(g) * 3) : 0.01 + u(g));
      for (int i = 0; i < n; ++i) y[i] = (round == 5 ? 1e15 : 1.0) * std::sin(3 * x[i]) + u(g);
      if (round == 2) std::swap(x[1], x[n - 2]);
      if (round == 3) x.front() = -kInf, x.back() = kInf;
      Vec at(x);
      for (int k = 0; k < 200; ++k)  // around the inner nodes, the ends included
        at.push_back(std::clamp(x[1] - 1 + u(g) * (x[n - 2] - x[1] + 2), x.front(), x.back()));
      const auto v = Values(u(g), -u(g), u(g), u(g));
      zr_test::ExpectLevelsAgree([&] {
        S s(MakePoints(x, y));
        Vec out;
        const int builds = round == 1 || round == 3 ? 0 : 2;  // a fresh one, then one over it
        for (int build = 0; build < builds; ++build) {
          try {
            if (build == 0) s.MkSpline3(Array<int>({3, 0}), Values(0.25, 0.25, 0, 0));
            if (build == 1) s.MkSpline3(Array<int>({codes[round][0], codes[round][1]}), v);
          } catch (const BadParameters&) {
            out.push_back(-1);  // refused: the segments stay built and must agree too
          }
          out.push_back(s.Check());
        }
        const S copy(s);
        for (std::size_t k = 0; k < at.size(); ++k) {
          if (k % 3 == 0) hint = static_cast<int>(k * 7919 % (n + 4)) - 2;
          out.push_back(s.GetSegmentNum(at[k]));
          out.push_back(copy.Value(at[k], hint));
          out.push_back(hint);
          for (int m = 1; m <= 3; ++m) out.push_back(s.Derivative(at[k], m));
        }
        // A sorted run, then steps back and far jumps, in one call and with hints.
        Vec run(at), many(at.size() + 4), third(many.size());
        std::sort(run.begin(), run.end());
        run.insert(run.end(), {x[n / 2], x[1], x.back(), x.front()});
        s.Value(run.data(), static_cast<int>(run.size()), many.data());
        s.Derivative(run.data(), static_cast<int>(run.size()), 3, third.data());
        for (std::size_t k = 0; k < run.size(); ++k)
          out.insert(out.end(), {many[k], third[k], double(s.GetSegmentNum(run[k], hint))});
        return out;
      });
    }
  }
}

}  // namespace
